#include "EventCounts.h"

#include <numeric>

void EventCounts::add(InputEvent::Command command, InputEvent::State state, qint64 count)
{
    m_counts[{command, state}] += count;
}

void EventCounts::addTaps(InputEvent::Command command, qint64 count)
{
    add(command, InputEvent::KeyPressed, count);
    add(command, InputEvent::KeyReleased, count);
}

qint64 EventCounts::total() const
{
    return std::accumulate(m_counts.begin(), m_counts.end(), qint64(0),
                           [](qint64 sum, const auto &entry) { return sum + entry.second; });
}

std::string EventCounts::differencesFrom(const EventCounts &expected) const
{
    EventCounts all = expected;
    for (const auto &[kind, count] : m_counts)
        all.m_counts[kind] -= count;
    std::string lines;
    for (const auto &[kind, missing] : all.m_counts) {
        if (missing != 0)
            lines +=
                InputEvent(kind.first, kind.second, InputEvent::Bus::NoBus).toString().toStdString()
                + ": " + std::to_string(missing) + " missing\n";
    }
    return lines;
}

EventCounter::EventCounter()
{
    QObject::connect(Input::instance(), &Input::inputEvent, this, [this](const InputEvent &event) {
        counts.add(event.command(), event.state());
    });
}
