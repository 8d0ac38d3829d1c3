#ifndef VORN_WORKBENCH_TIMELINEAXIS_H
#define VORN_WORKBENCH_TIMELINEAXIS_H

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

    /// @param activity the times at which something happens, ascending
    /// @param left the x coordinate of @p from
    TimelineAxis(qint64 from, qint64 to, const QVector<qint64> &activity, double left);

    double left() const { return m_left; }
    double right() const { return m_right; }
    qint64 from() const { return m_segments.first().from; }
    qint64 to() const { return m_segments.last().to; }
    /// Total time drawn to scale, µs.
    qint64 shownTime() const { return m_shownTime; }

    bool contains(qint64 time) const { return time >= from() && time <= to(); }
    /// A time that is left out, or outside the axis, is mapped to the nearest one that is shown.
    double x(qint64 time) const;
    /// @p time, or the end of the break that it falls into.
    qint64 firstShown(qint64 time) const;

    QVector<Tick> ticks() const;
    QVector<Break> breaks() const;

private:
    struct Segment
    {
        qint64 from = 0;
        qint64 to = 0;
        double x = 0;
    };

    double m_left = 0;
    double m_right = 0;
    double m_scale = 0; ///< per µs
    qint64 m_shownTime = 0;
    QVector<Segment> m_segments; ///< ascending, with breaks between them
};

} // namespace Vorn::Workbench

#endif
