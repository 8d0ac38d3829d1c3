#ifndef MODEL_LONGPRESSMODEL_H
#define MODEL_LONGPRESSMODEL_H

#include "Observation.h"

#include <functional>
#include <map>

namespace Model {

/// Times how long keys are held.
class LongPressModel
{
public:
    using Slot = std::function<void(int code, int repeat)>;

    void enable(int code, bool repeat, const std::vector<int> &timeouts);
    void disable(int code);
    void take(const Record &record);
    void reset();
    /// It is deleted, perhaps by its slot.
    void end();

    /// A tick of the timer. Keys are looked at in the order given, then the others.
    void tick(std::int64_t now, const std::vector<int> &order, const Slot &slot);

    bool isTiming() const { return m_isTiming; }
    /// How often the timer was started so far.
    int starts() const { return m_starts; }
    /// How often its slot was called so far.
    int notifications() const { return m_notifications; }
    /// Whether the next tick would look at a timeout of @p code.
    bool isHeld(int code) const { return m_holds.count(code) > 0; }

    /// The state, with times relative to @p now.
    void writeState(std::string &text, std::int64_t now) const;

private:
    struct Registration
    {
        std::vector<int> timeouts;
        bool repeat = false;
    };

    struct Hold
    {
        int count = 1;
        std::int64_t since = 0;
    };

    std::map<int, Registration> m_registrations;
    std::map<int, Hold> m_holds;
    std::map<int, std::size_t> m_stages;
    bool m_isTiming = false;
    bool m_isGone = false;
    int m_starts = 0;
    int m_notifications = 0;
};

} // namespace Model

#endif
