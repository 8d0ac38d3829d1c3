#ifndef VORN_WORKBENCH_PLAYBACKCLOCK_H
#define VORN_WORKBENCH_PLAYBACKCLOCK_H

#include "Playback.h"
#include "VirtualClock.h"

#include <functional>

namespace Vorn::Workbench {

/// Moves virtual time forward while recordings play: stops at each packet that is due on the way,
/// and delivers it.
class PlaybackClock
{
public:
    using Condition = std::function<bool()>;

    /// @param isInterrupted asked often; time does not move on once it holds
    /// Both pointers must outlive this.
    PlaybackClock(Sim::VirtualClock *clock, Playback *playback, const Condition &isInterrupted);

    /// ms since the start.
    qint64 now() const { return m_clock->elapsed().count(); }

    /// Runs what is ready and plays what is due, without moving time.
    void settle();

    /// Moves time to @p end.
    void runUntil(qint64 end);

    /// Moves time until @p condition holds, but not beyond @p end.
    void runUntil(qint64 end, const Condition &condition);

private:
    qint64 nextStop(qint64 end) const;
    void playDue();

    Sim::VirtualClock *const m_clock;
    Playback *const m_playback;
    const Condition m_isInterrupted;
};

} // namespace Vorn::Workbench

#endif
