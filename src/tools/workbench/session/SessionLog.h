#ifndef VORN_WORKBENCH_SESSIONLOG_H
#define VORN_WORKBENCH_SESSIONLOG_H

#include "Session.h"

#include <chrono>
#include <functional>

namespace Vorn::Workbench {

/// Stamps entries with the session's time and passes them on: at once, or together when the library
/// has returned. A slow terminal must not delay what the library does next, nor be measured.
///
/// **Thread**: the event loop's.
class SessionLog
{
public:
    using Sink = std::function<void(const SessionEntry &)>;

    /// Whether hold() has an effect.
    enum class Holding { Yes, No };

    /// Starts the session now.
    explicit SessionLog(Sink sink, Holding holding = Holding::Yes);

    /// Adds an entry for something that happens now.
    template <typename What>
    void add(const What &what)
    {
        m_held.append(SessionEntry{now(), what});
        if (m_holds == 0)
            passOn();
    }

    /// Keeps entries back until the matching release(). Holds nest: a slot of the product may run
    /// an event loop.
    void hold() { m_holds += m_isHolding ? 1 : 0; }
    void release();

    /// µs since the start.
    qint64 now() const;

    /// The wall clock at the start, µs since the epoch.
    qint64 wallClockAtStart() const { return m_wallClockAtStart; }

    /// The wall clock now, µs since the epoch.
    static qint64 wallClock();

private:
    void passOn();

    const Sink m_sink;
    const bool m_isHolding;
    QVector<SessionEntry> m_held;
    int m_holds = 0;
    const std::chrono::steady_clock::time_point m_start;
    const qint64 m_wallClockAtStart;
};

/// Holds a log for as long as it lives.
class SessionHold
{
public:
    explicit SessionHold(SessionLog *log)
        : m_log(log)
    {
        m_log->hold();
    }
    ~SessionHold() { m_log->release(); }
    SessionHold(const SessionHold &) = delete;
    SessionHold &operator=(const SessionHold &) = delete;

private:
    SessionLog *const m_log;
};

} // namespace Vorn::Workbench

#endif
