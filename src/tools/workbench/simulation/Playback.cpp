#include "Playback.h"

#include "Recording.h"

#include <linux/input.h>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

bool endsPacket(const RecordedEvent &event)
{
    return event.type == EV_SYN && event.code == SYN_REPORT;
}

// A time before the start of the recording, which a damaged file may contain, is the start.
qint64 toMilliseconds(qint64 microseconds)
{
    return std::max<qint64>(microseconds, 0) / 1000;
}

} // namespace

qint64 playbackDuration(const QVector<RecordedEvent> &events)
{
    // Not the last event: times of a recording may go back, as when the clock was set.
    qint64 latest = 0;
    for (const RecordedEvent &event : events)
        latest = std::max(latest, toMilliseconds(event.time));
    return latest;
}

Playback::Playback(Bench *bench)
    : m_bench(bench)
{ }

void Playback::add(int node, const QVector<RecordedEvent> &events, qint64 start)
{
    if (events.isEmpty())
        return;
    Stream stream;
    stream.node = node;
    stream.events = events;
    stream.start = start;
    stream.due = start + toMilliseconds(events.first().time);
    stream.end = start + playbackDuration(events);
    m_streams.append(stream);
}

std::optional<qint64> Playback::nextDue() const
{
    std::optional<qint64> due;
    for (const Stream &stream : m_streams)
        due = std::min(due.value_or(stream.due), stream.due);
    return due;
}

std::optional<qint64> Playback::end() const
{
    std::optional<qint64> end;
    for (const Stream &stream : m_streams)
        end = std::max(end.value_or(stream.end), stream.end);
    return end;
}

void Playback::sendNext()
{
    // Of packets that are due together, that of the recording started first: min_element() takes
    // the first one, so that each run gives the same order.
    const QVector<Stream>::iterator next =
        std::min_element(m_streams.begin(), m_streams.end(),
                         [](const Stream &a, const Stream &b) { return a.due < b.due; });
    if (next == m_streams.end())
        return;
    QVector<RecordedEvent> packet;
    bool isComplete = false;
    while (!isComplete && next->next < next->events.size()) {
        const RecordedEvent &event = next->events[next->next];
        // A packet without a SYN_REPORT ends where the time changes.
        if (!packet.isEmpty() && next->start + toMilliseconds(event.time) > next->due)
            break;
        packet.append(event);
        isComplete = endsPacket(event);
        ++next->next;
    }
    m_bench->send(next->node, packet, 0);
    // Virtual time cannot go back, so events with an earlier time follow at once.
    if (next->next < next->events.size())
        next->due =
            std::max(next->due, next->start + toMilliseconds(next->events[next->next].time));
    else
        m_streams.erase(next);
}

} // namespace Vorn::Workbench
