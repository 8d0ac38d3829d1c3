#include "SessionLog.h"

#include <utility>

namespace Vorn::Workbench {

SessionLog::SessionLog(Sink sink, Holding holding)
    : m_sink(std::move(sink))
    , m_isHolding(holding == Holding::Yes)
    , m_start(std::chrono::steady_clock::now())
    , m_wallClockAtStart(wallClock())
{ }

// Setting the wall clock must neither reorder the entries nor stretch the session.
qint64 SessionLog::now() const
{
    const auto elapsed = std::chrono::steady_clock::now() - m_start;
    return std::chrono::duration_cast<std::chrono::microseconds>(elapsed).count();
}

void SessionLog::release()
{
    if (m_isHolding && --m_holds == 0)
        passOn();
}

// The sink may add entries of its own, which come after those that are waiting.
void SessionLog::passOn()
{
    ++m_holds;
    while (!m_held.isEmpty()) {
        const QVector<SessionEntry> entries = std::exchange(m_held, {});
        for (const SessionEntry &entry : entries)
            m_sink(entry);
    }
    --m_holds;
}

qint64 SessionLog::wallClock()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

} // namespace Vorn::Workbench
