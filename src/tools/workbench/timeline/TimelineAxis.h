#ifndef VORN_WORKBENCH_TIMELINEAXIS_H
#define VORN_WORKBENCH_TIMELINEAXIS_H

#include "TimelineModel.h"

#include <QString>
#include <QVector>

namespace Vorn::Workbench {

/// Maps times (µs of the session) to x coordinates. Long stretches without activity are left out,
/// to make room for the rest.
class TimelineAxis
{
public:
    struct Tick
    {
        double x = 0;
        QString label; ///< empty if there is no room for it
    };
    /// A stretch of time that is left out.
    struct Break
    {
        double from = 0;
        double to = 0;
        qint64 duration = 0; ///< µs
    };
    /// A stretch of time that is shown.
    struct Segment
    {
        qint64 from = 0;
        qint64 to = 0;
        qint64 idleBefore = 0; ///< µs that are left out before it
    };
    struct Edges
    {
        double left = 0;
        double right = 0;
    };

    /// @param segments ascending; at least one
    /// @param scale px per µs
    /// @param isLast whether the session's picture ends here
    TimelineAxis(const QVector<Segment> &segments, double scale, double breakWidth, Edges edges,
                 bool isLast);

    double left() const { return m_edges.left; }
    double right() const { return m_edges.right; }
    qint64 from() const { return m_segments.first().from; }
    qint64 to() const { return m_segments.last().to; }

    /// A moment at which one axis ends and the next one begins is part of the next one.
    bool contains(qint64 time) const;
    /// Whether any of a stretch of time is shown.
    bool intersects(qint64 from, qint64 to) const;
    /// A time that is left out, or outside the axis, is mapped to the nearest one that is shown.
    double x(qint64 time) const;

    QVector<Tick> ticks() const;
    QVector<Break> breaks() const;

private:
    QVector<Segment> m_segments; ///< with breaks between them
    double m_scale;
    double m_breakWidth;
    Edges m_edges;
    bool m_isLast;
    QVector<double> m_starts; ///< x of each segment
};

} // namespace Vorn::Workbench

#endif
