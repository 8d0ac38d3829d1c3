#ifndef VORN_WORKBENCH_PLAYBACK_H
#define VORN_WORKBENCH_PLAYBACK_H

#include "Bench.h"
#include "Recording.h"

#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// When the last packet of @p events is due, in ms of the recording; 0 without any.
qint64 playbackDuration(const QVector<RecordedEvent> &events);

/// Delivers recordings to the nodes of a bench, packet by packet, each at its time to the
/// millisecond. Moving time is left to the caller, who can ask when the next packet is due.
class Playback
{
public:
    /// @param bench must outlive this
    explicit Playback(Bench *bench);

    /// Plays @p events on a node; time 0 of the recording is @p start (ms).
    void add(int node, const QVector<RecordedEvent> &events, qint64 start);

    /// When the next packet is due, in ms; nothing if none is left.
    std::optional<qint64> nextDue() const;

    /// When the last packet is due, in ms; nothing if none is left.
    std::optional<qint64> end() const;

    /// Delivers the next packet as it was recorded, but stamped with the present wall clock. It is
    /// lost if nothing is plugged in at its node.
    void sendNext();

private:
    struct Stream
    {
        int node = 0;
        QVector<RecordedEvent> events;
        qint64 start = 0;
        int next = 0; ///< index of the next packet's first event
        qint64 due = 0; ///< when the next packet is
        qint64 end = 0; ///< when the last packet is due
    };

    Bench *const m_bench;
    QVector<Stream> m_streams; ///< with packets left
};

} // namespace Vorn::Workbench

#endif
