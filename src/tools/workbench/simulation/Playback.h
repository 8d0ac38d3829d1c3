#ifndef VORN_WORKBENCH_PLAYBACK_H
#define VORN_WORKBENCH_PLAYBACK_H

#include "InputSubsystem.h"
#include "Recording.h"

#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// Delivers the records of recordings to simulated nodes, packet by packet, each at its time to the
/// millisecond. It does not move the time: whoever does asks when the next packet is due.
class Playback
{
public:
    /// @param subsystem must live longer
    explicit Playback(Sim::InputSubsystem *subsystem);

    /// Plays @p events on a node, the first moment of the recording being @p start (ms).
    void add(int node, const QVector<RecordedEvent> &events, qint64 start);

    /// When the next packet is due, in ms; nothing once all is played.
    std::optional<qint64> nextDue() const;

    /// When the last packet is due, in ms; nothing once all is played.
    std::optional<qint64> end() const;

    /// Delivers the next packet as it was recorded, stamped with the wall clock. A packet for a
    /// node that nothing is plugged at is lost.
    void sendNext();

private:
    struct Stream
    {
        int node = 0;
        QVector<RecordedEvent> events;
        qint64 start = 0;
        int next = 0;
        qint64 due = 0; ///< of the next packet
        qint64 end = 0;
    };

    Sim::InputSubsystem *const m_subsystem;
    QVector<Stream> m_streams; ///< that have something left
};

} // namespace Vorn::Workbench

#endif
