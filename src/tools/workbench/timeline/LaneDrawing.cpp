#include "LaneDrawing.h"

#include "LibraryFacts.h"
#include "TimelineText.h"

#include <QVector>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

using Anchor = TimelineSvg::Anchor;
using MarkKind = TimelineMark::Kind;

constexpr qint64 tickInterval = tickMs * qint64{1000}; // µs
/// px. Repeats closer together than this would merge into one.
constexpr double minRepeatDistance = 1.5;

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
    , m_layout(canvas->layout)
    , m_axis(canvas->axis())
{ }

void LaneDrawing::drawBars(const PlacedLane &placed)
{
    drawName(placed);
    drawTicks(placed);
    for (const TimelineBar &bar : placed.lane->bars) {
        if (bar.to >= m_axis.from() && bar.from <= m_axis.to() && m_canvas->mayMark())
            drawBar(placed, bar);
    }
    drawLateness(placed);
}

void LaneDrawing::drawName(const PlacedLane &placed)
{
    const TimelineLane &lane = *placed.lane;
    const QString title = QStringLiteral("%1, %2 %3").arg(lane.label, lane.deviceName, lane.device);
    m_svg.text(Metrics::margin, placed.top + Metrics::barMiddle + 3,
               TimelineSvg::shortened(lane.label, Metrics::laneLabelLength), "lane", Anchor::Start,
               title);
    m_svg.text(Metrics::margin, placed.top + Metrics::barMiddle + 17,
               TimelineSvg::shortened(lane.deviceName, Metrics::laneLabelLength), "muted",
               Anchor::Start, title);
}

void LaneDrawing::drawBar(const PlacedLane &placed, const TimelineBar &bar)
{
    const TimelineLane &lane = *placed.lane;
    const double top = placed.top + Metrics::barTop;
    const double from = m_axis.x(bar.from);
    const double to = std::max(m_axis.x(bar.to), from + 2);
    const QString title =
        QStringLiteral("%1: %2 to %3 (%4)%5")
            .arg(lane.label, timelineTime(bar.from), timelineTime(bar.to),
                 timelineTime(bar.to - bar.from),
                 bar.isOpen ? QStringLiteral(", still active at the end") : QString());
    const double solidTo = bar.withdrawn ? m_axis.x(*bar.withdrawn) : to;
    m_svg.rectangle(from, top, solidTo - from, Metrics::barHeight, barClassOf(lane), title);
    if (bar.withdrawn)
        m_svg.rectangle(solidTo, top, to - solidTo, Metrics::barHeight, "bar-withdrawn", title);
    // Stripes at its end make an open bar look torn off.
    for (int i = 0; bar.isOpen && i < 3 && to - 4 - i * 6 > from; ++i)
        m_svg.rectangle(to - 4 - i * 6, top, 3, Metrics::barHeight, "open");
}

void LaneDrawing::drawTicks(const PlacedLane &placed)
{
    if (!m_layout.hasTicks)
        return;
    const double top = placed.top + Metrics::barBottom;
    for (const TimelineTimedSpan &span : placed.lane->timed) {
        const qint64 to = std::min(span.to, m_axis.to());
        qint64 time = std::max(span.from, m_axis.from());
        while (true) {
            // Counting from the timer's start: a break need not be a whole number of ticks.
            const qint64 sinceStart = m_axis.firstShown(time) - span.timerStart;
            time = span.timerStart + (sinceStart + tickInterval - 1) / tickInterval * tickInterval;
            if (time > to)
                break;
            // Rounding up to a tick may lead into the next break.
            if (m_axis.firstShown(time) != time)
                continue;
            if (!m_canvas->mayMark())
                return;
            const double x = m_axis.x(time);
            m_svg.line(x, top, x, top + 5, "timer");
            time += tickInterval;
        }
    }
}

void LaneDrawing::drawLateness(const PlacedLane &placed)
{
    for (const TimelineEvent &event : placed.events) {
        if (!m_layout.isLate(event) || !m_canvas->mayMark())
            continue;
        const double from = m_axis.x(*event.due);
        m_svg.rectangle(from, placed.top + Metrics::barTop - 3, m_axis.x(event.time) - from,
                        Metrics::barHeight + 3, "late",
                        QStringLiteral("due at %1, published at %2")
                            .arg(timelineTime(*event.due), timelineTime(event.time)));
    }
}

void LaneDrawing::drawMarks(const PlacedLane &placed)
{
    double lastRepeat = 0;
    for (const TimelineMark &mark : placed.lane->marks) {
        if (!m_axis.contains(mark.time))
            continue;
        const double x = m_axis.x(mark.time);
        if (mark.kind == MarkKind::Repeat && x - lastRepeat < minRepeatDistance)
            continue;
        if (!m_canvas->mayMark())
            break;
        drawMark(placed, mark);
        if (mark.kind == MarkKind::Repeat)
            lastRepeat = x;
    }
    drawLeaders(placed);
}

void LaneDrawing::drawMark(const PlacedLane &placed, const TimelineMark &mark)
{
    const double x = m_axis.x(mark.time);
    const double top = placed.top + Metrics::barTop;
    const double middle = placed.top + Metrics::barMiddle;
    switch (mark.kind) {
    case MarkKind::Repeat:
        m_svg.line(x, top + 3, x, top + Metrics::barHeight - 3, "repeat", mark.title);
        break;
    case MarkKind::Due:
        m_svg.line(x, top - 7, x, top + Metrics::barHeight + 5, "due", mark.title);
        m_canvas->symbol(x, top - 3, Symbols::due, mark.title);
        break;
    case MarkKind::Withdrawn:
        m_canvas->symbol(x, middle, Symbols::withdrawn, mark.title);
        break;
    case MarkKind::Dropped:
        m_canvas->symbol(x, middle, Symbols::dropped, mark.title);
        break;
    }
}

void LaneDrawing::drawLeaders(const PlacedLane &placed)
{
    // Leaders have a limit of their own: they must not use up the room for the events they lead to.
    for (int i = 0; i < placed.events.size() && m_leaders < maxTimelineMarks; ++i) {
        ++m_leaders;
        const PlacedLabel &label = placed.labels.at(i);
        const bool isLongPress = placed.events.at(i).state == InputEvent::KeyLongPress;
        const double top = placed.top + (isLongPress ? Metrics::barTop - 3 : Metrics::barBottom);
        const double bottom = placed.top + Metrics::eventTop + label.row * Metrics::labelRow + 8;
        m_svg.line(label.x, top, label.x, bottom, isLongPress ? "leader-long-press" : "leader");
    }
}

void LaneDrawing::drawEvents(const PlacedLane &placed)
{
    for (int i = 0; i < placed.events.size(); ++i) {
        if (!m_canvas->mayMark())
            continue;
        const TimelineEvent &event = placed.events.at(i);
        const PlacedLabel &label = placed.labels.at(i);
        const double y = placed.top + Metrics::eventTop + label.row * Metrics::labelRow + 8;
        m_canvas->symbol(label.x, y, symbolOf(event.state), event.title);
        if (label.isShown)
            m_svg.text(label.isLeft ? label.x - 8 : label.x + 8, y + 4, event.label, "event",
                       label.isLeft ? Anchor::End : Anchor::Start, event.title);
    }
}

void LaneDrawing::drawLinks()
{
    for (const TimelineLink &link : m_canvas->model.links) {
        if (!m_axis.contains(link.time))
            continue;
        // Lanes that are not shown, or had to be left out, have no end.
        QVector<double> ends;
        for (const PlacedLane &placed : m_layout.lanes) {
            if (link.lanes.contains(placed.index))
                ends.append(placed.top + Metrics::barMiddle);
        }
        if (ends.size() < 2 || !m_canvas->mayMark())
            continue;
        const double x = m_axis.x(link.time);
        m_svg.line(x, ends.first(), x, ends.last(), "link", link.title);
        for (const double end : qAsConst(ends))
            m_canvas->symbol(x, end, Symbols::linkEnd, link.title);
    }
}

} // namespace Vorn::Workbench
