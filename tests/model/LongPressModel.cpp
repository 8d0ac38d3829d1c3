#include "LongPressModel.h"

#include <algorithm>

namespace Model {

void LongPressModel::enable(int code, bool repeat, const std::vector<int> &timeouts)
{
    m_registrations[code] = {timeouts, repeat};
    m_stages[code] = 0;
}

void LongPressModel::disable(int code)
{
    m_registrations.erase(code);
    m_stages.erase(code);
}

void LongPressModel::take(const Record &record)
{
    const auto registration = m_registrations.find(record.code);
    if (record.value == 0) {
        m_holds.erase(record.code);
        if (registration != m_registrations.end() && registration->second.timeouts.size() > 1)
            m_stages[record.code] = 0;
        return;
    }
    if (registration == m_registrations.end())
        return;
    m_holds[record.code] = {1, record.msecs};
    if (!m_isTiming) {
        m_isTiming = true;
        ++m_starts;
    }
}

void LongPressModel::reset()
{
    m_isTiming = false;
}

void LongPressModel::end()
{
    m_isTiming = false;
    m_isGone = true;
}

void LongPressModel::tick(std::int64_t now, const std::vector<int> &order, const Slot &slot)
{
    std::vector<int> codes = order;
    for (const auto &hold : m_holds) {
        if (std::find(order.begin(), order.end(), hold.first) == order.end())
            codes.push_back(hold.first);
    }
    for (const int code : codes) {
        const auto hold = m_holds.find(code);
        if (hold == m_holds.end())
            continue; // released in a slot of this tick
        const Registration &registration = m_registrations.at(code);
        std::size_t &stage = m_stages[code];
        if (now - hold->second.since < registration.timeouts.at(stage))
            continue;
        const int count = hold->second.count;
        const bool isNotified = count == 1 || registration.repeat;
        if (stage + 1 < registration.timeouts.size())
            ++stage;
        hold->second = {count + 1, now};
        if (isNotified) {
            ++m_notifications;
            slot(code, count);
            if (m_isGone)
                return;
        }
    }
    if (m_holds.empty())
        m_isTiming = false;
}

void LongPressModel::writeState(std::string &text, std::int64_t now) const
{
    text += m_isTiming ? 't' : '-';
    for (const auto &hold : m_holds) {
        text += std::to_string(hold.first) + "#" + std::to_string(hold.second.count) + "@"
            + std::to_string(hold.second.since - now) + " ";
    }
    text += '|';
    for (const auto &stage : m_stages)
        text += std::to_string(stage.first) + ":" + std::to_string(stage.second) + " ";
}

} // namespace Model
