#include "FrameDrawing.h"

#include "LabelRows.h"
#include "TimelineText.h"

#include <QDateTime>
#include <QStringList>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

using Anchor = TimelineSvg::Anchor;
using FlagKind = TimelineFlag::Kind;

const char *lineClassOf(FlagKind kind)
{
    switch (kind) {
    case FlagKind::Failure:
        return "failure";
    case FlagKind::Remark:
        return "remark";
    case FlagKind::Added:
    case FlagKind::Removed:
        break;
    }
    return "device";
}

} // namespace

FrameDrawing::FrameDrawing(TimelineCanvas *canvas)
    : m_canvas(canvas)
    , m_svg(canvas->svg)
    , m_layout(canvas->layout)
    , m_axis(canvas->axis())
{ }

void FrameDrawing::drawHeading(const QString &title)
{
    m_svg.text(Metrics::margin, Metrics::margin + 14, TimelineSvg::shortened(title, 90), "title",
               Anchor::Start, title);
    QStringList parts;
    if (!m_canvas->model.start.profile.isEmpty())
        parts += TimelineSvg::shortened(m_canvas->model.start.profile, 60);
    if (m_canvas->model.hasStart)
        parts += QDateTime::fromMSecsSinceEpoch(m_canvas->model.start.wallClock / 1000, Qt::UTC)
                     .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss 'UTC'"));
    parts += QStringLiteral("%1 to %2").arg(timelineTime(m_axis.from()), timelineTime(m_axis.to()));
    m_svg.text(Metrics::margin, Metrics::margin + 32, parts.join(QStringLiteral(" · ")), "muted");
}

void FrameDrawing::drawIdentifiers()
{
    if (!m_layout.hasIdentifiers)
        return;
    const double top = m_layout.identifierTop;
    m_svg.text(Metrics::margin, top + 13, QStringLiteral("identifier"), "muted");
    for (int i = 0; i < m_canvas->model.identifiers.size(); ++i) {
        const TimelineIdentifier &selected = m_canvas->model.identifiers.at(i);
        const bool isLast = i + 1 == m_canvas->model.identifiers.size();
        const qint64 end = isLast ? m_axis.to() : m_canvas->model.identifiers.at(i + 1).time;
        if (end < m_axis.from() || selected.time > m_axis.to() || !m_canvas->mayMark())
            continue;
        const double from = m_axis.x(selected.time);
        // Even an identifier that is replaced at once can be pointed at.
        const double length = std::max(2.0, m_axis.x(end) - from);
        const QString name = QLatin1Char('\'') + selected.identifier + QLatin1Char('\'');
        const QString title =
            QStringLiteral("%1: identifier %2 selected").arg(timelineTime(selected.time), name);
        m_svg.rectangle(from, top, length, 18, "identifier", title);
        // Characters; the title has the whole name if the band is too short for it.
        const int room = static_cast<int>((length - 8) / 7);
        if (room >= 3)
            m_svg.text(from + 5, top + 13, TimelineSvg::shortened(name, room), "identifier-label",
                       Anchor::Start, title);
    }
}

void FrameDrawing::drawAxis()
{
    bool isStriped = true;
    for (const PlacedLane &placed : m_layout.lanes) {
        if (isStriped)
            m_svg.rectangle(0, placed.top, m_layout.width, placed.height, "stripe");
        isStriped = !isStriped;
    }
    for (const TimelineAxis::Tick &tick : m_axis.ticks()) {
        m_svg.line(tick.x, m_layout.lanesTop, tick.x, m_layout.lanesBottom, "grid");
        m_svg.line(tick.x, m_layout.lanesTop - 4, tick.x, m_layout.lanesTop, "axis");
    }
    m_svg.line(m_axis.left(), m_layout.lanesTop, m_axis.right(), m_layout.lanesTop, "axis");
}

void FrameDrawing::drawTickLabels()
{
    for (const TimelineAxis::Tick &tick : m_axis.ticks()) {
        if (!tick.label.isEmpty())
            m_svg.text(tick.x, m_layout.axisTop + 12, tick.label, "tick", Anchor::Middle);
    }
}

void FrameDrawing::drawFlags()
{
    for (const PlacedFlag &placed : m_layout.flags) {
        if (!m_canvas->mayMark())
            continue;
        const PlacedLabel &label = placed.label;
        const double top = m_layout.flagTop + label.row * Metrics::labelRow;
        m_svg.line(label.x, top + 2, label.x, m_layout.lanesBottom, lineClassOf(placed.flag.kind),
                   placed.flag.title);
        // The line stays even without room for its label: the title says what it is.
        if (!label.isShown)
            continue;
        const bool isFailure = placed.flag.kind == FlagKind::Failure;
        m_svg.text(label.isLeft ? label.x - 4 : label.x + 4, top + 11, placed.flag.label,
                   isFailure ? "failure-label" : "muted",
                   label.isLeft ? Anchor::End : Anchor::Start, placed.flag.title);
    }
}

void FrameDrawing::drawBreaks()
{
    // Nearly opaque: a bar that spans the break shows through, so that it does not look
    // interrupted.
    for (const TimelineAxis::Break &left : m_axis.breaks()) {
        const QString label = QStringLiteral("⋯ ") + timelineDuration(left.duration);
        const QString title =
            QStringLiteral("%1 without activity").arg(timelineTime(left.duration));
        const double top = m_layout.lanesTop;
        m_svg.rectangle(left.from, top, left.to - left.from, m_layout.lanesBottom - top, "break",
                        title);
        m_svg.line(left.from, top, left.from, m_layout.lanesBottom, "break-edge");
        m_svg.line(left.to, top, left.to, m_layout.lanesBottom, "break-edge");
        if (LabelRows::width(label) <= left.to - left.from)
            m_svg.text((left.from + left.to) / 2, m_layout.axisTop + 12, label, "muted",
                       Anchor::Middle, title);
    }
}

void FrameDrawing::drawNotes()
{
    QStringList notes;
    if (m_canvas->model.lanesLeftOut > 0)
        notes += counted(m_canvas->model.lanesLeftOut, "lane");
    if (m_canvas->marksLeftOut > 0)
        notes += counted(m_canvas->marksLeftOut, "mark");
    if (!notes.isEmpty())
        m_svg.text(m_axis.left(), m_layout.height - 10,
                   QStringLiteral("not shown: ") + notes.join(QStringLiteral(", ")),
                   "failure-label");
}

} // namespace Vorn::Workbench
