#include "TimelineAxis.h"

#include "LabelRows.h"

#include <algorithm>

namespace Vorn::Workbench {

namespace {

constexpr qint64 second = 1'000'000;
constexpr double tickDistance = 64;

/// The smallest of 1, 2 or 5 times a power of ten that keeps ticks tickDistance apart.
qint64 tickStep(double scale)
{
    qint64 step = 1000;
    while (static_cast<double>(step) * scale < tickDistance) {
        if (static_cast<double>(step * 2) * scale >= tickDistance)
            return step * 2;
        if (static_cast<double>(step * 5) * scale >= tickDistance)
            return step * 5;
        step *= 10;
    }
    return step;
}

QString tickLabel(qint64 time, qint64 step)
{
    const int decimals = step >= second ? 0
        : step >= second / 10           ? 1
        : step >= second / 100          ? 2
                                        : 3;
    return QString::number(static_cast<double>(time) / second, 'f', decimals)
        + QStringLiteral(" s");
}

} // namespace

TimelineAxis::TimelineAxis(const QVector<Segment> &segments, double scale, double breakWidth,
                           Edges edges, bool isLast)
    : m_segments(segments)
    , m_scale(scale)
    , m_breakWidth(breakWidth)
    , m_edges(edges)
    , m_isLast(isLast)
{
    double x = m_edges.left;
    for (const Segment &segment : segments) {
        x += segment.idleBefore > 0 ? m_breakWidth : 0;
        m_starts.append(x);
        x += static_cast<double>(segment.to - segment.from) * m_scale;
    }
}

bool TimelineAxis::contains(qint64 time) const
{
    return time >= from() && (m_isLast ? time <= to() : time < to());
}

bool TimelineAxis::intersects(qint64 from, qint64 to) const
{
    // What ends where the axis begins was drawn in the row above, unless it is a mere moment.
    const bool endsBefore = from == to ? to < this->from() : to <= this->from();
    return contains(from) || (from < this->from() && !endsBefore);
}

double TimelineAxis::x(qint64 time) const
{
    const QVector<Segment>::const_iterator next =
        std::upper_bound(m_segments.begin(), m_segments.end(), time,
                         [](qint64 value, const Segment &segment) { return value < segment.from; });
    if (next == m_segments.begin())
        return m_edges.left;
    const Segment &segment = *(next - 1);
    const qint64 within = std::min(time, segment.to) - segment.from;
    const double start = m_starts.at(static_cast<int>(next - 1 - m_segments.begin()));
    return start + static_cast<double>(within) * m_scale;
}

QVector<TimelineAxis::Tick> TimelineAxis::ticks() const
{
    const qint64 step = tickStep(m_scale);
    QVector<Tick> ticks;
    double free = 0;
    for (const Segment &segment : m_segments) {
        const bool isLast = segment.to == to();
        const double end = isLast ? m_edges.right + tickDistance : x(segment.to);
        // The label of a break needs the space before the segment.
        if (segment.idleBefore > 0)
            free = std::max(free, x(segment.from) - 2);
        qint64 time = segment.from / step * step;
        for (; time <= segment.to; time += step) {
            if (time < segment.from)
                continue;
            Tick tick{x(time), tickLabel(time, step)};
            const double half = LabelRows::width(tick.label) / 2;
            if (tick.x - half < free || tick.x + half > end + 2)
                tick.label.clear();
            else
                free = tick.x + half + 8;
            ticks.append(tick);
        }
    }
    return ticks;
}

QVector<TimelineAxis::Break> TimelineAxis::breaks() const
{
    QVector<Break> breaks;
    for (int i = 0; i < m_segments.size(); ++i) {
        const qint64 idle = m_segments.at(i).idleBefore;
        const double to = m_starts.at(i);
        if (idle > 0)
            breaks.append({to - m_breakWidth, to, idle});
    }
    return breaks;
}

} // namespace Vorn::Workbench
