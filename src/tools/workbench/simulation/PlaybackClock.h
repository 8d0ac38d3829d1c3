#ifndef VORN_WORKBENCH_PLAYBACKCLOCK_H
#define VORN_WORKBENCH_PLAYBACKCLOCK_H

#include "Bench.h"
#include "Playback.h"

namespace Vorn::Workbench {

/// Moves time forward while recordings play: stops at each packet that is due on the way,
/// and delivers it.
class PlaybackClock
{
public:
    using Condition = Bench::Condition;

    /// @param isInterrupted asked often; time does not move on once it holds
    /// Both pointers must outlive this.
    PlaybackClock(Bench *bench, Playback *playback, const Condition &isInterrupted);

    /// ms of the session.
    qint64 now() const { return m_bench->now(); }

    /// Runs what is ready and plays what is due, without moving time.
    void settle();

    /// Moves time to @p end.
    void runUntil(qint64 end);

    /// Moves time until @p condition holds, but not beyond @p end.
    void runUntil(qint64 end, const Condition &condition);

private:
    qint64 nextStop(qint64 end) const;
    void playDue();

    Bench *const m_bench;
    Playback *const m_playback;
    const Condition m_isInterrupted;
};

} // namespace Vorn::Workbench

#endif
