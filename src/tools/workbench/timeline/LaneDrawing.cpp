#include "LaneDrawing.h"

#include "TimelineText.h"

#include <QVector>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

using Anchor = TimelineSvg::Anchor;
using MarkKind = TimelineMark::Kind;

/// px. Repeats closer together than this would merge into one.
constexpr double minRepeatDistance = 1.5;
/// px, more than most.
constexpr double boldCharacter = 8;

const char *barClassOf(const TimelineLane &lane)
{
    switch (lane.kind) {
    case TimelineLane::Kind::Chord:
        return lane.mapped ? "bar-chord" : "bar-chord-unmapped";
    case TimelineLane::Kind::Switch:
        return "bar-switch";
    case TimelineLane::Kind::Key:
    case TimelineLane::Kind::Other:
        break;
    }
    return "bar";
}

} // namespace

LaneDrawing::LaneDrawing(TimelineCanvas *canvas)
    : m_canvas(canvas)
    , m_svg(canvas->svg)
{ }

void LaneDrawing::drawHeadings(const PlacedRow &row)
{
    for (const PlacedHeading &heading : row.headings) {
        const double y = heading.top + 17;
        const QString name = TimelineSvg::shortened(heading.name, Metrics::flagLabelLength);
        m_svg.text(Metrics::margin, y, name, "device-name", Anchor::Start, heading.name);
        if (!heading.node.isEmpty()) {
            const double width = static_cast<double>(name.size()) * boldCharacter;
            m_svg.text(Metrics::margin + width + 6, y, heading.node, "muted");
        }
    }
}

void LaneDrawing::drawBars(const PlacedRow &row)
{
    for (const PlacedLane &placed : row.lanes) {
        drawName(placed);
        for (const TimelineBar &bar : placed.lane->bars) {
            if (row.axis.intersects(bar.from, bar.to))
                drawBar(row, placed, bar);
        }
        drawTimed(row, placed);
        drawLateness(row, placed);
    }
}

void LaneDrawing::drawName(const PlacedLane &placed)
{
    const TimelineLane &lane = *placed.lane;
    m_svg.text(Metrics::margin, placed.top + Metrics::barMiddle + 4,
               TimelineSvg::shortened(lane.label, Metrics::laneLabelLength), "lane", Anchor::Start,
               QStringLiteral("%1, %2 %3").arg(lane.label, lane.deviceName, lane.device));
}

void LaneDrawing::drawBar(const PlacedRow &row, const PlacedLane &placed, const TimelineBar &bar)
{
    const TimelineLane &lane = *placed.lane;
    const double top = placed.top + Metrics::barTop;
    const double from = row.axis.x(bar.from);
    const double to = std::max(row.axis.x(bar.to), from + 2);
    QString title = QStringLiteral("%1: %2 to %3 (%4)")
                        .arg(lane.label, timelineTime(bar.from), timelineTime(bar.to),
                             timelineTime(bar.to - bar.from));
    if (bar.wasOpen)
        title += QStringLiteral(", active before that already");
    if (bar.isOpen)
        title += QStringLiteral(", still active at the end");
    // A withdrawal may be in the row above, or in the one below.
    const double solidTo = bar.withdrawn ? row.axis.x(*bar.withdrawn) : to;
    if (solidTo > from)
        m_svg.rectangle(from, top, solidTo - from, Metrics::barHeight, barClassOf(lane), title);
    if (to > solidTo)
        m_svg.rectangle(solidTo, top, to - solidTo, Metrics::barHeight, "bar-withdrawn", title);
    // Stripes at an end make an open bar look torn off.
    for (int i = 0; i < 3 && to - 4 - i * 6 > from; ++i) {
        if (bar.isOpen && bar.to <= row.axis.to())
            m_svg.rectangle(to - 4 - i * 6, top, 3, Metrics::barHeight, "open");
        if (bar.wasOpen && bar.from >= row.axis.from())
            m_svg.rectangle(from + 1 + i * 6, top, 3, Metrics::barHeight, "open");
    }
}

void LaneDrawing::drawTimed(const PlacedRow &row, const PlacedLane &placed)
{
    const double y = placed.top + Metrics::timedBottom;
    for (const TimelineSpan &span : placed.lane->timed) {
        if (!row.axis.intersects(span.from, span.to))
            continue;
        const double from = row.axis.x(span.from);
        m_svg.line(from, y, std::max(row.axis.x(span.to), from + 1), y, "timed",
                   QStringLiteral("%1: timed from %2 to %3")
                       .arg(placed.lane->label, timelineTime(span.from), timelineTime(span.to)));
    }
}

void LaneDrawing::drawLateness(const PlacedRow &row, const PlacedLane &placed)
{
    for (const PlacedEvent &late : placed.events) {
        const std::optional<qint64> since = row.lateSince(late.event);
        if (!since)
            continue;
        const double from = row.axis.x(*since);
        // Above the bar: a delay may be long, and the key's own story continues below it.
        m_svg.rectangle(from, placed.top + Metrics::barTop - 5, row.axis.x(late.event.time) - from,
                        4, "late",
                        QStringLiteral("due at %1, published at %2")
                            .arg(timelineTime(*late.event.due()), timelineTime(late.event.time)));
    }
}

void LaneDrawing::drawMarks(const PlacedRow &row)
{
    for (const PlacedLane &placed : row.lanes) {
        double lastRepeat = 0;
        for (const TimelineMark &mark : placed.lane->marks) {
            if (!row.axis.contains(mark.time))
                continue;
            const double x = row.axis.x(mark.time);
            // Thinned, not merged: what remains still has its exact time as a title.
            if (mark.kind == MarkKind::Repeat && x - lastRepeat < minRepeatDistance)
                continue;
            drawMark(placed, mark, x);
            if (mark.kind == MarkKind::Repeat)
                lastRepeat = x;
        }
        drawLeaders(placed);
    }
}

void LaneDrawing::drawMark(const PlacedLane &placed, const TimelineMark &mark, double x)
{
    const double top = placed.top + Metrics::barTop;
    const double middle = placed.top + Metrics::barMiddle;
    const QString title = markTitle(*placed.lane, mark);
    switch (mark.kind) {
    case MarkKind::Repeat:
        m_svg.line(x, top + 3, x, top + Metrics::barHeight - 3, "repeat", title);
        break;
    case MarkKind::Due:
        m_svg.line(x, top - 7, x, top + Metrics::barHeight + 5, "due", title);
        m_canvas->symbol(x, top - 3, Symbols::due, title);
        break;
    case MarkKind::Withdrawn:
        m_canvas->symbol(x, middle, Symbols::withdrawn, title);
        break;
    case MarkKind::Forgotten:
        m_canvas->symbol(x, middle, Symbols::forgotten, title);
        break;
    case MarkKind::Dropped:
        m_canvas->symbol(x, middle, Symbols::dropped, title);
        break;
    }
}

void LaneDrawing::drawLeaders(const PlacedLane &placed)
{
    for (const PlacedEvent &event : placed.events) {
        const bool isLongPress = event.event.state == InputEvent::KeyLongPress;
        const double top = placed.top + (isLongPress ? Metrics::barTop - 3 : Metrics::barBottom);
        const int row = event.label.text.isEmpty() ? 0 : event.label.row;
        const double bottom =
            placed.top + Metrics::eventMiddle + row * Metrics::labelRow + (row > 0 ? 2 : 0);
        m_svg.line(event.label.x, top, event.label.x, bottom,
                   isLongPress ? "leader-long-press" : "leader");
    }
}

void LaneDrawing::drawEvents(const PlacedRow &row)
{
    for (const PlacedLane &placed : row.lanes) {
        for (const PlacedEvent &event : placed.events)
            drawEvent(placed, event);
    }
}

void LaneDrawing::drawEvent(const PlacedLane &placed, const PlacedEvent &event)
{
    const PlacedLabel &label = event.label;
    const double y = placed.top + Metrics::eventMiddle;
    const QString title = eventTitle(*placed.lane, event.event);
    m_canvas->symbol(label.x, y,
                     event.half == PlacedEvent::Half::Press         ? Symbols::clickPress
                         : event.half == PlacedEvent::Half::Release ? Symbols::clickRelease
                                                                    : symbolOf(event.event.state),
                     title);
    if (label.text.isEmpty())
        return;
    const double gap = label.row == 0 ? 8 : 4;
    m_svg.text(label.isLeft ? label.x - gap : label.x + gap, y + 4 + label.row * Metrics::labelRow,
               label.text, "event", label.isLeft ? Anchor::End : Anchor::Start, title);
}

void LaneDrawing::drawLinks(const PlacedRow &row)
{
    for (const TimelineLink &link : m_canvas->model.links) {
        if (!row.axis.contains(link.time))
            continue;
        // Lanes that are not shown, or had to be left out, have no end.
        QVector<double> ends;
        for (const PlacedLane &placed : row.lanes) {
            if (link.lanes.contains(placed.index))
                ends.append(placed.top + Metrics::barMiddle);
        }
        if (ends.size() < 2)
            continue;
        const double x = row.axis.x(link.time);
        m_svg.line(x, ends.first(), x, ends.last(), "link", link.title);
        for (const double end : qAsConst(ends))
            m_canvas->symbol(x, end, Symbols::linkEnd, link.title);
    }
}

} // namespace Vorn::Workbench
