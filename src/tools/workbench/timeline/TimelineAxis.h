#ifndef VORN_WORKBENCH_TIMELINEAXIS_H
#define VORN_WORKBENCH_TIMELINEAXIS_H

#include <QPair>
#include <QString>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// Where times (µs of the session) are in a picture. Times in which nothing happens for long are
/// left out, so that the others have room.
class TimelineAxis
{
public:
    struct Tick
    {
        double x = 0;
        QString label; ///< empty where there is no room
    };
    /// A time that is left out.
    struct Break
    {
        double from = 0;
        double to = 0;
        qint64 duration = 0; ///< µs
    };

    /// @param activity when something happens, rising
    /// @param left of the first time
    TimelineAxis(qint64 from, qint64 to, const QVector<qint64> &activity, double left);

    double left() const { return m_left; }
    double right() const { return m_right; }
    qint64 from() const { return m_segments.first().from; }
    qint64 to() const { return m_segments.last().to; }
    /// What is drawn to scale in all, µs.
    qint64 shownTime() const { return m_shownTime; }

    bool contains(qint64 time) const { return time >= from() && time <= to(); }
    /// Of the nearest time that is on the axis.
    double x(qint64 time) const;
    /// The first time from @p time on that is not left out.
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
    QVector<Segment> m_segments; ///< rising, with breaks between them
};

/// Rows of texts beside each other that must not touch.
class LabelRows
{
public:
    explicit LabelRows(int maxRows)
        : m_maxRows(maxRows)
    { }

    /// The first row with room from one x to another, which is taken then; none if all are full.
    std::optional<int> place(double from, double to);
    int count() const { return m_rows.size(); }

    /// How much room a text needs at most, in the fonts that pictures are shown with.
    static double width(const QString &text);

private:
    const int m_maxRows;
    QVector<QVector<QPair<double, double>>> m_rows;
};

} // namespace Vorn::Workbench

#endif
