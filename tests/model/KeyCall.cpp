#include "KeyCall.h"

namespace Model {

KeyCall KeyCall::immediate(int code, int command)
{
    return {Kind::RegisterKey, code, 0, command, true, {}, AnyBus};
}

KeyCall KeyCall::deferred(int code, int command)
{
    return {Kind::RegisterKey, code, 0, command, false, {}, AnyBus};
}

KeyCall KeyCall::longPress(int code, bool repeat, const std::vector<int> &timeouts)
{
    return {Kind::EnableLongPress, code, 0, 0, repeat, timeouts, AnyBus};
}

KeyCall KeyCall::chord(int first, int second, int command)
{
    return {Kind::RegisterChord, first, second, command, false, {}, AnyBus};
}

KeyCall KeyCall::withoutKey(int code)
{
    return {Kind::DeregisterKey, code, 0, 0, false, {}, AnyBus};
}

KeyCall KeyCall::withoutChord(int first, int second)
{
    return {Kind::DeregisterChord, first, second, 0, false, {}, AnyBus};
}

KeyCall KeyCall::on(int newBus) const
{
    KeyCall call = *this;
    call.bus = newBus;
    return call;
}

std::string text(const KeyCall &call)
{
    const std::string keys = " " + std::to_string(call.code)
        + (call.second != 0 ? "+" + std::to_string(call.second) : std::string());
    const std::string end =
        call.bus == KeyCall::AnyBus ? std::string() : " on bus " + std::to_string(call.bus);
    switch (call.kind) {
    case KeyCall::Kind::RegisterKey:
        return std::string(call.flag ? "immediate" : "deferred") + keys + " is "
            + std::to_string(call.command) + end;
    case KeyCall::Kind::DeregisterKey:
        return "without key" + keys;
    case KeyCall::Kind::EnableLongPress: {
        std::string timeouts;
        for (const int timeout : call.timeouts)
            timeouts += " " + std::to_string(timeout);
        return "long press" + keys + (call.flag ? " repeating" : " once") + timeouts + end;
    }
    case KeyCall::Kind::RegisterChord:
        return "chord" + keys + " is " + std::to_string(call.command) + end;
    case KeyCall::Kind::DeregisterChord:
        return "without chord" + keys;
    }
    return {};
}

} // namespace Model
