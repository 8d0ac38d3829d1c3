#include "SessionLog.h"

#include <utility>

namespace Vorn::Workbench {

SessionLog::SessionLog(Sink sink)
    : m_sink(std::move(sink))
    , m_start(std::chrono::steady_clock::now())
    , m_wallClockAtStart(wallClock())
{ }

// Setting the wall clock must neither reorder the entries nor stretch the session.
qint64 SessionLog::now() const
{
    const auto elapsed = std::chrono::steady_clock::now() - m_start;
    return std::chrono::duration_cast<std::chrono::microseconds>(elapsed).count();
}

qint64 SessionLog::wallClock()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

} // namespace Vorn::Workbench
