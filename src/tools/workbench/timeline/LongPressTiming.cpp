#include "LongPressTiming.h"

#include "LaneTable.h"
#include "LibraryFacts.h"

#include <utility>

namespace Vorn::Workbench {

namespace {

constexpr qint64 tickInterval = tickMs * qint64{1000}; // µs

} // namespace

/*
 *  The timer of a device, on which A and B are timed:
 *
 *  A start      B start   A stop    B stop       A start          A stop, A start
 *    ├─────────────┼────────┼─────────┤             ├───────────────────┼──────────
 *    ·     ·     ·     ·     ·     ·     ·          ·     ·     ·     ·     ·     ·   ticks
 *    │ running: B shares A's ticks       │ stopped  │ a new start       │ still running
 *
 *  A due time is pending until the next start or cancel of its key. If it has been reached by then,
 *  it is marked; if not, it was put off or called off and leaves no mark.
 */

LongPressTiming::LongPressTiming(LaneTable *lanes)
    : m_lanes(lanes)
{ }

void LongPressTiming::start(const QString &device, int code, qint64 now, qint64 due)
{
    startSpan(device, code, now);
    setDue(device, code, now, due);
}

void LongPressTiming::cancel(const QString &device, int code, qint64 now)
{
    setDue(device, code, now, std::nullopt);
    stop(device, code, now);
}

void LongPressTiming::startSpan(const QString &device, int code, qint64 now)
{
    Timer &timer = m_timers[device];
    if (timer.keys.contains(code))
        return;
    // The library stops its timer only at the tick that finds no key held. A key pressed before
    // that tick is timed by the ticks that are already running.
    const qint64 ticks =
        timer.keys.isEmpty() ? (timer.lastStop - timer.start) / tickInterval + 1 : 0;
    if (timer.keys.isEmpty() && now > timer.start + ticks * tickInterval)
        timer.start = now;
    timer.keys.insert(code);
    if (TimelineLane *lane = m_lanes->keyLane(device, code))
        lane->timed.append({now, now, timer.start});
}

void LongPressTiming::stop(const QString &device, int code, qint64 now)
{
    Timer &timer = m_timers[device];
    if (!timer.keys.remove(code))
        return;
    timer.lastStop = now;
    endSpan(device, code, now);
}

void LongPressTiming::endSpan(const QString &device, int code, qint64 end)
{
    TimelineLane *lane = m_lanes->keyLane(device, code);
    if (lane && !lane->timed.isEmpty())
        lane->timed.last().to = end;
}

void LongPressTiming::setDue(const QString &device, int code, qint64 now, std::optional<qint64> due)
{
    const auto pending = m_due.find({device, code});
    if (pending != m_due.end()) {
        if (*pending <= now)
            markDue(device, code, *pending);
        m_due.erase(pending);
    }
    if (due)
        m_due.insert({device, code}, *due);
}

void LongPressTiming::markDue(const QString &device, int code, qint64 due)
{
    m_lanes->mark(device, code, TimelineMark::Kind::Due, due, QStringLiteral("long press due"));
}

void LongPressTiming::finish(qint64 end)
{
    const auto pending = std::exchange(m_due, {});
    for (auto it = pending.cbegin(); it != pending.cend(); ++it) {
        if (it.value() <= end)
            markDue(it.key().first, it.key().second, it.value());
    }
    for (auto timer = m_timers.cbegin(); timer != m_timers.cend(); ++timer) {
        for (const int code : timer->keys)
            endSpan(timer.key(), code, end);
    }
}

} // namespace Vorn::Workbench
