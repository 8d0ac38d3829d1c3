#include "FrameDrawing.h"

#include "LabelRows.h"
#include "LaneTable.h"
#include "TimelineText.h"

#include <QDateTime>
#include <QSet>
#include <QStringList>

#include <algorithm>
#include <cmath>

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

struct Gap
{
    double from = 0;
    double to = 0;
};

/// Where a line from top to bottom gives way to texts, from top to bottom.
QVector<Gap> gapsAt(double x, const PlacedRow &row, const QVector<TimelineAxis::Tick> &ticks)
{
    QVector<Gap> gaps;
    const bool isTick = std::any_of(ticks.begin(), ticks.end(), [x](const auto &tick) {
        return std::abs(tick.x - x) < LabelRows::width(tick.label) / 2;
    });
    if (isTick)
        gaps.append({row.axisTop, row.lanesTop - 4});
    for (const PlacedLane &lane : row.lanes) {
        QSet<int> crossed;
        for (const PlacedEvent &event : lane.events) {
            const PlacedLabel &label = event.label;
            const double distance = label.isLeft ? label.x - x : x - label.x;
            if (!label.text.isEmpty() && distance > 2
                && distance < LabelRows::width(label.text) + 8)
                crossed.insert(label.row);
        }
        for (int labelRow = 0; labelRow < Metrics::maxEventRows; ++labelRow) {
            const double middle = lane.top + Metrics::eventMiddle + labelRow * Metrics::labelRow;
            if (crossed.contains(labelRow))
                gaps.append({middle - 7, middle + 7});
        }
    }
    return gaps;
}

} // namespace

FrameDrawing::FrameDrawing(TimelineCanvas *canvas)
    : m_canvas(canvas)
    , m_svg(canvas->svg)
    , m_layout(canvas->layout)
{ }

void FrameDrawing::drawHeading(const QString &title, const QString &part)
{
    const TimelineModel &model = m_canvas->model;
    m_svg.text(Metrics::margin, Metrics::margin + 14, TimelineSvg::shortened(title, 90), "title",
               Anchor::Start, title);
    QStringList parts;
    if (!part.isEmpty())
        parts += part;
    if (!model.start.profile.isEmpty())
        parts += TimelineSvg::shortened(model.start.profile, 60);
    if (model.hasStart)
        parts += QDateTime::fromMSecsSinceEpoch(model.start.wallClock / 1000, Qt::UTC)
                     .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss 'UTC'"));
    QString times = QStringLiteral("%1 to %2")
                        .arg(timelineTime(model.shown.from), timelineTime(model.shown.to));
    if (model.shown.from > model.session.from || model.shown.to < model.session.to)
        times += QStringLiteral(" of %1").arg(timelineTime(model.session.to));
    parts += times;
    m_svg.text(Metrics::margin, Metrics::margin + 32, parts.join(QStringLiteral(" · ")), "muted");
}

void FrameDrawing::drawIdentifiers(const PlacedRow &row)
{
    if (!m_layout.hasIdentifiers)
        return;
    const QVector<TimelineIdentifier> &identifiers = m_canvas->model.identifiers;
    m_svg.text(Metrics::margin, row.top + 13, QStringLiteral("identifier"), "muted");
    for (int i = 0; i < identifiers.size(); ++i) {
        const TimelineIdentifier &selected = identifiers.at(i);
        const bool isLast = i + 1 == identifiers.size();
        const qint64 end =
            isLast ? std::max(m_canvas->model.shown.to, selected.time) : identifiers.at(i + 1).time;
        if (!row.axis.intersects(selected.time, end))
            continue;
        const double from = row.axis.x(selected.time);
        // Even an identifier that is replaced at once can be pointed at.
        const double length = std::max(2.0, (isLast ? row.axis.right() : row.axis.x(end)) - from);
        const QString name = QLatin1Char('\'') + selected.identifier + QLatin1Char('\'');
        const QString title =
            QStringLiteral("%1: identifier %2 selected").arg(timelineTime(selected.time), name);
        m_svg.rectangle(from, row.top, length, Metrics::identifierHeight, "identifier", title);
        // Characters; the title has the whole name if the band is too short for it.
        const int room = static_cast<int>((length - 8) / 7);
        if (room >= 3)
            m_svg.text(from + 5, row.top + 13, TimelineSvg::shortened(name, room),
                       "identifier-label", Anchor::Start, title);
    }
}

void FrameDrawing::drawAxis(const PlacedRow &row)
{
    bool isStriped = true;
    for (const PlacedLane &placed : row.lanes) {
        if (isStriped)
            m_svg.rectangle(0, placed.top, m_layout.width, placed.height, "stripe");
        isStriped = !isStriped;
    }
    const QVector<TimelineAxis::Tick> ticks = row.axis.ticks();
    for (const TimelineAxis::Tick &tick : ticks) {
        m_svg.line(tick.x, row.lanesTop, tick.x, row.lanesBottom, "grid");
        m_svg.line(tick.x, row.lanesTop - 4, tick.x, row.lanesTop, "axis");
    }
    m_svg.line(row.axis.left(), row.lanesTop, row.axis.right(), row.lanesTop, "axis");
}

void FrameDrawing::drawTickLabels(const PlacedRow &row)
{
    const QVector<TimelineAxis::Tick> ticks = row.axis.ticks();
    for (const TimelineAxis::Tick &tick : ticks) {
        if (!tick.label.isEmpty())
            m_svg.text(tick.x, row.axisTop + 12, tick.label, "tick", Anchor::Middle);
    }
}

void FrameDrawing::drawFlags(const PlacedRow &row)
{
    const QVector<TimelineAxis::Tick> ticks = row.axis.ticks();
    for (const PlacedFlag &placed : row.flags) {
        const PlacedLabel &label = placed.label;
        const double top = row.flagTop + label.row * Metrics::labelRow;
        const char *lineClass = lineClassOf(placed.flag.kind);
        double y = top + 2;
        const QVector<Gap> gaps = gapsAt(label.x, row, ticks);
        for (const Gap &gap : gaps) {
            m_svg.line(label.x, y, label.x, gap.from, lineClass, placed.flag.title);
            y = gap.to;
        }
        m_svg.line(label.x, y, label.x, row.lanesBottom, lineClass, placed.flag.title);
        // The line stays even without room for its label: the title says what it is.
        if (label.text.isEmpty())
            continue;
        const bool isFailure = placed.flag.kind == FlagKind::Failure;
        m_svg.text(label.isLeft ? label.x - 4 : label.x + 4, top + 11, label.text,
                   isFailure ? "failure-label" : "flag-label",
                   label.isLeft ? Anchor::End : Anchor::Start, placed.flag.title);
    }
}

void FrameDrawing::drawBreaks(const PlacedRow &row)
{
    // Nearly opaque: a bar that spans the break shows through, so that it does not look
    // interrupted.
    const QVector<TimelineAxis::Break> breaks = row.axis.breaks();
    for (const TimelineAxis::Break &left : breaks) {
        const QString label = QStringLiteral("⋯ ") + timelineDuration(left.duration);
        const QString title = timelineTime(left.duration) + QStringLiteral(" without activity");
        const double top = row.lanesTop;
        m_svg.rectangle(left.from, top, left.to - left.from, row.lanesBottom - top, "break", title);
        // Beside the bars only: labels reach across.
        for (const PlacedLane &placed : row.lanes) {
            for (const double x : {left.from, left.to})
                m_svg.line(x, placed.top, x, placed.top + Metrics::timedBottom + 2, "break-edge");
        }
        if (LabelRows::width(label) <= left.to - left.from)
            m_svg.text((left.from + left.to) / 2, row.axisTop + 12, label, "muted", Anchor::Middle,
                       title);
    }
}

void FrameDrawing::drawNotes()
{
    const TimelineModel &model = m_canvas->model;
    QStringList notes;
    if (model.lanesLeftOut >= maxCountedLanes)
        notes += QStringLiteral("at least %1 lanes").arg(model.lanesLeftOut);
    else if (model.lanesLeftOut > 0)
        notes += counted(model.lanesLeftOut, "lane");
    if (model.marksLeftOut > 0)
        notes += counted(model.marksLeftOut, "mark")
            + QStringLiteral(" from %1 on").arg(timelineTime(model.shown.to));
    if (!notes.isEmpty())
        m_svg.text(m_layout.rows.first().axis.left(), m_layout.height - 10,
                   QStringLiteral("not shown: ") + notes.join(QStringLiteral(", ")),
                   "failure-label");
}

} // namespace Vorn::Workbench
