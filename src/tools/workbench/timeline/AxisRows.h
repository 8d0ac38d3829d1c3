#ifndef VORN_WORKBENCH_AXISROWS_H
#define VORN_WORKBENCH_AXISROWS_H

#include "TimelineAxis.h"
#include "TimelineModel.h"

#include <QMap>
#include <QVector>

namespace Vorn::Workbench {

/// The stretches of a session during which something happens. Times that are close to each other
/// make one stretch, so that it does not matter how many there are.
class ActivitySpans
{
public:
    /// Whether add() would begin another stretch.
    bool isNew(qint64 time) const;
    void add(qint64 time);

    /// Ascending.
    QVector<TimelineSpan> spans() const;

private:
    QMap<qint64, qint64> m_spans; ///< beginning and end
};

/// The axes of a picture, one below the other: a single one if it is legible, or else several of
/// the same scale, each of which goes on where the one above it ends.
///
/// @param activity ascending; long stretches without are left out
/// @param left the x coordinate at which all begin
QVector<TimelineAxis> axisRows(TimelineSpan shown, const QVector<TimelineSpan> &activity,
                               double left);

} // namespace Vorn::Workbench

#endif
