#ifndef VORN_WORKBENCH_SESSIONLOG_H
#define VORN_WORKBENCH_SESSIONLOG_H

#include "Session.h"

#include <chrono>
#include <functional>

namespace Vorn::Workbench {

/// Stamps entries with the session's time and passes them on.
///
/// **Thread**: the event loop's.
class SessionLog
{
public:
    using Sink = std::function<void(const SessionEntry &)>;

    /// Starts the session now.
    explicit SessionLog(Sink sink);

    /// Passes on an entry for something that happens now.
    template <typename What>
    void add(const What &what)
    {
        m_sink(SessionEntry{now(), what});
    }

    /// µs since the start.
    qint64 now() const;

    /// The wall clock at the start, µs since the epoch.
    qint64 wallClockAtStart() const { return m_wallClockAtStart; }

    /// The wall clock now, µs since the epoch.
    static qint64 wallClock();

private:
    const Sink m_sink;
    const std::chrono::steady_clock::time_point m_start;
    const qint64 m_wallClockAtStart;
};

} // namespace Vorn::Workbench

#endif
