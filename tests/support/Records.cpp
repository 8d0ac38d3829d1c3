#include "Records.h"

input_event record(int type, int code, int value, qint64 msecs)
{
    input_event event = {};
    event.input_event_sec = static_cast<decltype(event.input_event_sec)>(msecs / 1000);
    event.input_event_usec = static_cast<decltype(event.input_event_usec)>(msecs % 1000 * 1000);
    event.type = static_cast<decltype(event.type)>(type);
    event.code = static_cast<decltype(event.code)>(code);
    event.value = value;
    return event;
}

input_event keyRecord(int code, int value, qint64 msecs)
{
    return record(EV_KEY, code, value, msecs);
}

input_event switchRecord(int code, int value, qint64 msecs)
{
    return record(EV_SW, code, value, msecs);
}

std::string describe(const QList<input_event> &records)
{
    std::string result;
    for (const input_event &event : records) {
        const qint64 msecs = static_cast<qint64>(event.input_event_sec) * 1000
            + static_cast<qint64>(event.input_event_usec) / 1000;
        if (!result.empty())
            result += " ";
        result += std::to_string(event.type) + "/" + std::to_string(event.code) + "="
            + std::to_string(event.value) + "@" + std::to_string(msecs);
    }
    return result;
}
