#ifndef MODEL_KEYCALL_H
#define MODEL_KEYCALL_H

#include <string>
#include <vector>

namespace Model {

/// A call of a key handler's registrations, for the model and the library alike.
struct KeyCall
{
    enum class Kind {
        RegisterKey,
        DeregisterKey,
        EnableLongPress,
        RegisterChord,
        DeregisterChord,
    };
    static constexpr int AnyBus = -1;

    Kind kind = Kind::RegisterKey;
    int code = 0;
    int second = 0; ///< of a chord
    int command = 0;
    bool flag = false; ///< immediate, or repeat
    std::vector<int> timeouts;
    int bus = AnyBus; ///< of the form that compares it

    static KeyCall immediate(int code, int command);
    static KeyCall deferred(int code, int command);
    static KeyCall longPress(int code, bool repeat, const std::vector<int> &timeouts);
    static KeyCall chord(int first, int second, int command);
    static KeyCall withoutKey(int code);
    static KeyCall withoutChord(int first, int second);
    KeyCall on(int bus) const;
};

std::string text(const KeyCall &call);

} // namespace Model

#endif
