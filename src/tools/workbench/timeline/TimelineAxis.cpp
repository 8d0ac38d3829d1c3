#include "TimelineAxis.h"

#include "LabelRows.h"

#include <algorithm>
#include <cmath>

namespace Vorn::Workbench {

namespace {

constexpr qint64 second = 1'000'000;
/// A longer stretch without activity is left out.
constexpr qint64 longestIdle = 2 * second;
/// Still shown on either side of a break.
constexpr qint64 margin = second / 4;
constexpr double minWidth = 720;
constexpr double maxWidth = 1200;
constexpr double widthPerSecond = 260;
constexpr double breakWidth = 58;
/// Many breaks get narrower rather than take more than this share of the width.
constexpr double breakShare = 0.4;
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

TimelineAxis::TimelineAxis(qint64 from, qint64 to, const QVector<qint64> &activity, double left)
    : m_left(left)
{
    // A session of a single moment has to have a width, too.
    to = std::max(to, from + second / 2);
    m_segments.append({from, from, 0});
    const auto extendTo = [this](qint64 time) {
        if (time - m_segments.last().to <= longestIdle) {
            m_segments.last().to = time;
            return;
        }
        m_segments.last().to += margin;
        m_segments.append({time - margin, time, 0});
    };
    for (const qint64 time : activity) {
        if (time >= from && time <= to)
            extendTo(time);
    }
    extendTo(to);

    for (const Segment &segment : qAsConst(m_segments))
        m_shownTime += segment.to - segment.from;
    const double breakCount = m_segments.size() - 1;
    const double wanted = static_cast<double>(m_shownTime) / second * widthPerSecond;
    const double width = std::clamp(wanted + breakCount * breakWidth, minWidth, maxWidth);
    const double perBreak =
        breakCount > 0 ? std::min(breakWidth, width * breakShare / breakCount) : 0;
    m_scale = (width - breakCount * perBreak) / static_cast<double>(m_shownTime);
    m_right = m_left + width;

    double x = m_left;
    for (Segment &segment : m_segments) {
        segment.x = x;
        x += static_cast<double>(segment.to - segment.from) * m_scale + perBreak;
    }
}

double TimelineAxis::x(qint64 time) const
{
    const Segment *next =
        std::upper_bound(m_segments.begin(), m_segments.end(), time,
                         [](qint64 value, const Segment &segment) { return value < segment.from; });
    if (next == m_segments.begin())
        return m_left;
    const Segment &segment = *(next - 1);
    const qint64 within = std::min(time, segment.to) - segment.from;
    return segment.x + static_cast<double>(within) * m_scale;
}

qint64 TimelineAxis::firstShown(qint64 time) const
{
    const Segment *segment =
        std::find_if(m_segments.begin(), m_segments.end(),
                     [time](const Segment &candidate) { return time <= candidate.to; });
    return segment == m_segments.end() ? time : std::max(time, segment->from);
}

QVector<TimelineAxis::Tick> TimelineAxis::ticks() const
{
    const qint64 step = tickStep(m_scale);
    QVector<Tick> ticks;
    double free = 0;
    for (const Segment &segment : m_segments) {
        const bool isFirst = segment.from == from();
        const bool isLast = segment.to == to();
        const double end = isLast ? m_right + tickDistance : x(segment.to);
        // The label of a break needs the space before the segment.
        free = isFirst ? free : std::max(free, segment.x - 2);
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
    for (int i = 1; i < m_segments.size(); ++i) {
        const Segment &before = m_segments.at(i - 1);
        const Segment &after = m_segments.at(i);
        breaks.append({x(before.to), after.x, after.from - before.to});
    }
    return breaks;
}

} // namespace Vorn::Workbench
