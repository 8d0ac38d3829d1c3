#include "AxisRows.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace Vorn::Workbench {

namespace {

using Segment = TimelineAxis::Segment;

constexpr qint64 second = 1'000'000;
/// A longer stretch without activity is left out.
constexpr qint64 longestIdle = 2 * second;
/// Still shown on either side of a break.
constexpr qint64 margin = second / 4;
/// Rows begin at round times, if they can.
constexpr qint64 roundTime = second / 10;
constexpr double minWidth = 720;
constexpr double maxWidth = 1200;
/// px per µs: where there is room, and the least at which clicks can be told apart.
constexpr double wideScale = 260.0 / second;
constexpr double narrowScale = 120.0 / second;
constexpr double breakWidth = 58;
/// A segment that would begin closer to the right edge begins a row.
constexpr double leastOfSegment = 30;
/// Many breaks get narrower rather than take more than this share of the width.
constexpr double breakShare = 0.4;
/// A picture that needs more rows than this is drawn at a smaller scale.
constexpr int maxRows = 24;

QVector<Segment> segmentsOf(TimelineSpan shown, const QVector<TimelineSpan> &activity)
{
    QVector<Segment> segments{{shown.from, shown.from, 0}};
    const auto extendTo = [&segments](qint64 from, qint64 to) {
        Segment &last = segments.last();
        if (from - last.to <= longestIdle) {
            last.to = std::max(last.to, to);
            return;
        }
        last.to += margin;
        const qint64 idle = from - margin - last.to;
        segments.append({from - margin, to, idle});
    };
    for (const TimelineSpan &span : activity) {
        if (span.to >= shown.from && span.from <= shown.to)
            extendTo(std::max(span.from, shown.from), std::min(span.to, shown.to));
    }
    extendTo(shown.to, shown.to);
    return segments;
}

/// Cuts segments into rows of the same width.
class RowFiller
{
public:
    RowFiller(double scale, double perBreak)
        : m_scale(scale)
        , m_perBreak(perBreak)
    { }

    QVector<QVector<Segment>> rows(const QVector<Segment> &segments)
    {
        m_rows = {{}};
        m_used = 0;
        for (const Segment &segment : segments)
            add(segment);
        return m_rows;
    }

private:
    void add(Segment segment)
    {
        const double gap = segment.idleBefore > 0 ? m_perBreak : 0;
        if (m_used + gap > maxWidth - leastOfSegment)
            startRow();
        m_used += gap;
        while (m_used + lengthOf(segment) > maxWidth + 0.5) {
            const qint64 cut = cutOf(segment);
            m_rows.last().append({segment.from, cut, segment.idleBefore});
            segment = {cut, segment.to, 0};
            startRow();
        }
        m_rows.last().append(segment);
        m_used += lengthOf(segment);
    }

    void startRow()
    {
        m_rows.append(QVector<Segment>());
        m_used = 0;
    }

    double lengthOf(const Segment &segment) const
    {
        return static_cast<double>(segment.to - segment.from) * m_scale;
    }

    qint64 cutOf(const Segment &segment) const
    {
        const auto room = static_cast<qint64>((maxWidth - m_used) / m_scale);
        const qint64 cut = segment.from + std::max<qint64>(room, 1);
        const qint64 round = cut / roundTime * roundTime;
        return round > segment.from ? round : cut;
    }

    const double m_scale;
    const double m_perBreak;
    QVector<QVector<Segment>> m_rows;
    double m_used = 0; ///< px of the last row
};

} // namespace

bool ActivitySpans::isNew(qint64 time) const
{
    const auto next = m_spans.upperBound(time);
    if (next != m_spans.end() && next.key() - time <= longestIdle)
        return false;
    return next == m_spans.begin() || time - std::prev(next).value() > longestIdle;
}

void ActivitySpans::add(qint64 time)
{
    const auto next = m_spans.upperBound(time);
    const bool joinsNext = next != m_spans.end() && next.key() - time <= longestIdle;
    const bool joinsLast = next != m_spans.begin() && time - std::prev(next).value() <= longestIdle;
    if (joinsLast) {
        auto last = std::prev(next);
        last.value() = std::max(last.value(), joinsNext ? next.value() : time);
        if (joinsNext)
            m_spans.erase(next);
        return;
    }
    const qint64 end = joinsNext ? next.value() : time;
    if (joinsNext)
        m_spans.erase(next);
    m_spans.insert(time, end);
}

QVector<TimelineSpan> ActivitySpans::spans() const
{
    QVector<TimelineSpan> spans;
    for (auto it = m_spans.cbegin(); it != m_spans.cend(); ++it)
        spans.append({it.key(), it.value()});
    return spans;
}

QVector<TimelineAxis> axisRows(TimelineSpan shown, const QVector<TimelineSpan> &activity,
                               double left)
{
    // A session of a single moment has to have a width, too.
    shown.to = std::max(shown.to, shown.from + second / 2);
    const QVector<Segment> segments = segmentsOf(shown, activity);
    double time = 0;
    for (const Segment &segment : segments)
        time += static_cast<double>(segment.to - segment.from);
    const auto breaks = static_cast<double>(segments.size() - 1);
    if (time * narrowScale + breaks * breakWidth <= maxWidth) {
        const double width = std::clamp(time * wideScale + breaks * breakWidth, minWidth, maxWidth);
        return {TimelineAxis(segments, (width - breaks * breakWidth) / time, breakWidth,
                             {left, left + width}, true)};
    }

    const double wanted = std::ceil((time * narrowScale + breaks * breakWidth) / maxWidth);
    const double count = std::min<double>(wanted, maxRows);
    const double room = count * maxWidth;
    const double perBreak = breaks > 0 ? std::min(breakWidth, room * breakShare / breaks) : 0;
    double scale = (room - breaks * perBreak) / time;
    // A break that does not fit leaves a row shorter, and the last one may overflow. Whatever the
    // session, drawing it ends.
    QVector<QVector<Segment>> rows = RowFiller(scale, perBreak).rows(segments);
    for (int attempt = 0; attempt < 20 && static_cast<double>(rows.size()) > count; ++attempt) {
        scale *= 0.98;
        rows = RowFiller(scale, perBreak).rows(segments);
    }
    QVector<TimelineAxis> axes;
    for (int i = 0; i < rows.size(); ++i)
        axes.append(TimelineAxis(rows.at(i), scale, perBreak, {left, left + maxWidth},
                                 i + 1 == rows.size()));
    return axes;
}

} // namespace Vorn::Workbench
