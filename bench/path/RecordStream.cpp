#include "RecordStream.h"

#include <sys/time.h>

RecordStream::RecordStream(const std::string &name, int keyCount)
{
    const auto add = [this](int type, int code, int value) {
        m_period.push_back(record(type, code, value));
        m_period.push_back(record(EV_SYN, SYN_REPORT, 0));
    };
    if (name == "clicks") {
        for (int key = firstKey; key < firstKey + keyCount; ++key) {
            add(EV_KEY, key, 1);
            add(EV_KEY, key, 0);
        }
    } else if (name == "chords") {
        for (int key = firstKey; key < firstKey + keyCount; key += 2) {
            for (const int value : {1, 0}) {
                add(EV_KEY, key, value);
                add(EV_KEY, key + 1, value);
            }
        }
    } else if (name == "held") {
        // The auto-repeat of a driver, without the press before it.
        add(EV_KEY, firstKey, 2);
    } else {
        add(EV_SW, SW_LINEIN_INSERT, 1);
        add(EV_SW, SW_LINEIN_INSERT, 0);
    }
}

void RecordStream::fill(std::vector<input_event> &burst)
{
    timeval now;
    gettimeofday(&now, nullptr);
    for (input_event &next : burst) {
        next = m_period[m_position];
        next.time = now;
        m_position = (m_position + 1) % m_period.size();
    }
}

input_event RecordStream::record(int type, int code, int value)
{
    input_event result = {};
    result.type = static_cast<decltype(result.type)>(type);
    result.code = static_cast<decltype(result.code)>(code);
    result.value = value;
    return result;
}
