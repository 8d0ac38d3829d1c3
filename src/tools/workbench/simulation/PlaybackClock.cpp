#include "PlaybackClock.h"

#include <algorithm>

namespace Vorn::Workbench {

namespace {

// Within a long wait, how often to check for an interruption.
constexpr qint64 longestPiece = 10LL * 60 * 1000;

} // namespace

PlaybackClock::PlaybackClock(Bench *bench, Playback *playback, const Condition &isInterrupted)
    : m_bench(bench)
    , m_playback(playback)
    , m_isInterrupted(isInterrupted)
{ }

void PlaybackClock::settle()
{
    m_bench->settle();
    playDue();
}

void PlaybackClock::runUntil(qint64 end)
{
    settle();
    while (now() < end && !m_isInterrupted()) {
        m_bench->runUntil(nextStop(end));
        playDue();
    }
}

void PlaybackClock::runUntil(qint64 end, const Condition &condition)
{
    settle();
    while (!condition() && now() < end && !m_isInterrupted()) {
        m_bench->runUntil(nextStop(end), condition);
        // Packets due by now have to wait if it holds: the caller acts first.
        if (!condition())
            playDue();
    }
}

qint64 PlaybackClock::nextStop(qint64 end) const
{
    const qint64 piece = std::min(end, now() + longestPiece);
    return std::min(piece, m_playback->nextDue().value_or(piece));
}

void PlaybackClock::playDue()
{
    while (m_playback->nextDue().value_or(now() + 1) <= now() && !m_isInterrupted()) {
        m_playback->sendNext();
        // Packet by packet, as the library would read them on a real system.
        m_bench->settle();
    }
}

} // namespace Vorn::Workbench
