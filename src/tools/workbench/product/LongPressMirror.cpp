#include "LongPressMirror.h"

#include "SessionLog.h"

#include <algorithm>
#include <utility>

namespace Vorn::Workbench {

namespace {

// Rounded down as the library does it.
qint64 millisecondsOf(const input_event &event)
{
    return static_cast<qint64>(event.input_event_sec) * 1000
        + static_cast<qint64>(event.input_event_usec) / 1000;
}

} // namespace

/*
 *  timeouts {T0, T1}, repeat; the library publishes at the tick after a key is due
 *
 *  press               due     tick                  due     tick            release
 *    ├─── T0 ─────────────┼───────┼─── T1 ──────────────┼───────┼── …           │
 *    │ stage 0, count 1           │ stage 1, count 2            │ count 3       │ forgotten
 *    │ due: stamp + T0            │ due: tick + T1              │ tick + T1     │ stage 0
 *    LongPressDue                 LongPressDue                  LongPressDue    LongPressEnded
 *
 *  Without repeat only the first one is published; the stages go on in silence.
 */

LongPressMirror::LongPressMirror(Tell tell)
    : m_tell(std::move(tell))
{ }

// In the library, registering a key anew drops its long press; the bus-filtered form keeps it.
void LongPressMirror::registerKey(const KeyMapping &key)
{
    KeyMapping &registered = m_keys[key.code];
    const std::optional<LongPress> before = registered.longPress;
    registered = key;
    if (key.bus && !key.longPress)
        registered.longPress = before;
}

void LongPressMirror::process(const input_event &event)
{
    const int code = event.code;
    const std::optional<LongPress> longPress = m_keys.value(code).longPress;
    if (!longPress)
        return;
    if (event.value == 0) {
        if (m_holds.remove(code) > 0)
            m_tell(DetectorStep::What::LongPressEnded, code, 0);
        // A single timeout has no further stage to come back from.
        if (longPress->timeouts.size() > 1)
            m_stages[code] = 0;
        return;
    }
    // A press during a hold: timeouts that ran out unpublished have moved the stage on.
    const auto hold = m_holds.find(code);
    const qint64 now = SessionLog::wallClock() / 1000;
    while (hold != m_holds.end() && hold->count > 1 && !longPress->repeat && hold->due <= now
           && m_stages.value(code) < longPress->timeouts.size() - 1)
    {
        advance(code, &*hold, hold->due);
    }
    const qint64 due = millisecondsOf(event) + longPress->timeouts.at(m_stages.value(code));
    m_holds.insert(code, Hold{due, 1});
    m_tell(DetectorStep::What::LongPressDue, code, due);
}

std::optional<LongPressMirror::DueKey> LongPressMirror::dueKey(InputEvent::Command command,
                                                               qint64 now) const
{
    std::optional<DueKey> found;
    for (auto it = m_holds.cbegin(); it != m_holds.cend(); ++it) {
        const KeyMapping key = m_keys.value(it.key());
        const bool isPublished = key.command == command && key.longPress
            && (it->count == 1 || key.longPress->repeat) && it->due <= now;
        // By code among equals: the order of a hash is another one in every process.
        const bool isFirst =
            !found || std::make_pair(it->due, it.key()) < std::make_pair(found->due, found->code);
        if (isPublished && isFirst)
            found = DueKey{it.key(), it->due};
    }
    return found;
}

void LongPressMirror::reported(int code, qint64 now)
{
    const auto hold = m_holds.find(code);
    if (hold != m_holds.end())
        advance(code, &*hold, now);
}

void LongPressMirror::advance(int code, Hold *hold, qint64 from)
{
    const std::optional<LongPress> longPress = m_keys.value(code).longPress;
    if (!longPress)
        return;
    int &stage = m_stages[code];
    stage = std::min(stage + 1, longPress->timeouts.size() - 1);
    ++hold->count;
    hold->due = from + longPress->timeouts.at(stage);
    if (longPress->repeat)
        m_tell(DetectorStep::What::LongPressDue, code, hold->due);
}

} // namespace Vorn::Workbench
