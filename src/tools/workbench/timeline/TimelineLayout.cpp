#include "TimelineLayout.h"

#include "AxisRows.h"
#include "TimelineSvg.h"
#include "TimelineText.h"

#include <algorithm>

namespace Vorn::Workbench {

namespace {

using LegendItem = PlacedLegend::Item;
using MarkKind = TimelineMark::Kind;
using Half = PlacedEvent::Half;

constexpr int maxFlagRows = 4;
constexpr double minLaneHeight = 32;
constexpr double headingHeight = 24;
/// Between rows of lanes.
constexpr double rowDistance = 26;
/// To the right of the lanes, for labels that begin near their end.
constexpr double rightRoom = 130;
/// Flags closer together than this share a label.
constexpr double flagDistance = 4;
/// Nobody reads a tool tip with more lines than this.
constexpr int maxMergedTitles = 20;
constexpr double symbolHalf = 5;
/// µs. A key that is down for longer was not clicked.
constexpr qint64 longestClick = 250'000;
/// Between a symbol's middle and the label beside it.
constexpr double symbolGap = 8;

QString nodeOf(const TimelineLane &lane)
{
    const QString node = lane.device.section(QLatin1Char('/'), -1);
    return node == lane.deviceName ? QString() : node;
}

double leftOf(const TimelineModel &model)
{
    // The names of codes are capitals, in a bold font.
    constexpr double capital = 9.2;
    constexpr double letter = 7.4;
    double length = 10 * capital;
    for (const TimelineLane &lane : model.lanes) {
        const auto label = static_cast<double>(lane.label.size());
        const auto device = static_cast<double>(lane.deviceName.size() + nodeOf(lane).size() + 1);
        length = std::max({length, label * capital, device * letter});
    }
    return Metrics::margin * 2 + std::min(length, Metrics::laneLabelLength * capital);
}

/// Several devices that are added at once share one label.
void merge(TimelineFlag *flag, const TimelineFlag &next, int count)
{
    if (count <= maxMergedTitles)
        flag->title += QLatin1Char('\n') + next.title;
    flag->label =
        flag->label.section(QStringLiteral(" ("), 0, 0) + QStringLiteral(" (%1 in all)").arg(count);
}

bool isShown(const TimelineLane &lane, const TimelineAxis &axis)
{
    const auto isInside = [&axis](const auto &what) { return axis.contains(what.time); };
    return std::any_of(lane.events.begin(), lane.events.end(), isInside)
        || std::any_of(lane.marks.begin(), lane.marks.end(), isInside)
        || std::any_of(lane.bars.begin(), lane.bars.end(), [&axis](const TimelineBar &bar) {
               return axis.intersects(bar.from, bar.to);
           });
}

/// Labels a press and the release that follows it as a click, unless both labels have room.
void labelEvents(QVector<PlacedEvent> *events)
{
    for (int i = 0; i < events->size(); ++i) {
        PlacedEvent &placed = (*events)[i];
        placed.label.text = eventLabel(placed.event);
        if (i + 1 == events->size() || placed.event.state != InputEvent::KeyPressed)
            continue;
        PlacedEvent &next = (*events)[i + 1];
        const double distance = next.label.x - placed.label.x;
        const bool isClick = next.event.state == InputEvent::KeyReleased
            && next.event.time - placed.event.time <= longestClick
            && next.event.command == placed.event.command && next.event.bus == placed.event.bus
            && distance < LabelRows::width(placed.label.text) + 2 * symbolGap;
        if (!isClick)
            continue;
        placed.label.text = clickLabel(placed.event);
        if (distance < 1) {
            placed.half = Half::Press;
            next.half = Half::Release;
        }
        ++i;
    }
}

} // namespace

std::optional<qint64> PlacedRow::lateSince(const TimelineEvent &event) const
{
    const std::optional<qint64> due = event.due();
    if (!due)
        return std::nullopt;
    const qint64 since = std::max(*due, event.stated.value_or(*due));
    if (axis.x(event.time) - axis.x(since) < 1)
        return std::nullopt;
    return since;
}

TimelineLayout::TimelineLayout(const TimelineModel &model)
    : m_model(model)
{
    hasIdentifiers = std::any_of(
        model.identifiers.begin(), model.identifiers.end(),
        [](const TimelineIdentifier &selected) { return !selected.identifier.isEmpty(); });
    const QVector<TimelineAxis> axes = axisRows(model.shown, model.activity, leftOf(model));
    // Below the title and the line under it.
    double top = Metrics::margin + 48;
    for (const TimelineAxis &axis : axes) {
        width = std::max(width, axis.right() + rightRoom);
        PlacedRow row{axis};
        placeRow(&row, top);
        top = row.lanesBottom + rowDistance;
        rows.append(row);
    }
    placeLegend();
}

void TimelineLayout::placeRow(PlacedRow *row, double top)
{
    row->top = top;
    row->flagTop = top + (hasIdentifiers ? Metrics::identifierHeight + 8 : 0);
    placeFlags(row);
    placeLanes(row);
}

void TimelineLayout::placeFlags(PlacedRow *row) const
{
    QVector<int> counts;
    for (const TimelineFlag &flag : m_model.flags) {
        if (!row->axis.contains(flag.time))
            continue;
        const double x = row->axis.x(flag.time);
        const bool isNear = !row->flags.isEmpty() && row->flags.last().flag.kind == flag.kind
            && x - row->flags.last().label.x < flagDistance;
        if (isNear) {
            merge(&row->flags.last().flag, flag, ++counts.last());
            continue;
        }
        row->flags.append({flag, {x}});
        counts.append(1);
    }

    LabelRows labels(maxFlagRows, LabelRows::Lines::Below, {0, row->axis.right() + rightRoom});
    for (PlacedFlag &placed : row->flags) {
        const QString text = TimelineSvg::shortened(placed.flag.label, Metrics::flagLabelLength);
        const std::optional<LabelPlace> place = labels.place(placed.label.x, text, 4);
        if (place)
            placed.label = {placed.label.x, text, place->row, place->isLeft};
    }
    // A line without a label begins below those of the others.
    for (PlacedFlag &placed : row->flags)
        placed.label.row = placed.label.text.isEmpty() ? labels.count() : placed.label.row;
    row->axisTop = row->flagTop + labels.count() * Metrics::labelRow + 4;
    row->lanesTop = row->axisTop + 20;
}

void TimelineLayout::placeLanes(PlacedRow *row) const
{
    double top = row->lanesTop;
    for (int i = 0; i < m_model.lanes.size(); ++i) {
        const TimelineLane &lane = m_model.lanes.at(i);
        if (!isShown(lane, row->axis))
            continue;
        if (row->lanes.isEmpty() || row->lanes.last().lane->device != lane.device)
            placeHeading(row, lane, &top);
        PlacedLane placed;
        placed.lane = &lane;
        placed.index = i;
        placed.top = top;
        placeEvents(*row, &placed);
        top += placed.height;
        row->lanes.append(placed);
    }
    row->lanesBottom = row->lanes.isEmpty() ? top + minLaneHeight : top;
}

void TimelineLayout::placeHeading(PlacedRow *row, const TimelineLane &lane, double *top) const
{
    row->headings.append({lane.deviceName, nodeOf(lane), *top});
    *top += headingHeight;
}

/// Lines that labels of a lane keep away from. Those of flags give way to labels.
QVector<double> TimelineLayout::linesThrough(const PlacedRow &row, int lane) const
{
    QVector<double> lines;
    for (const TimelineLink &link : m_model.links) {
        if (row.axis.contains(link.time) && !link.lanes.isEmpty() && lane >= link.lanes.first()
            && lane < link.lanes.last())
            lines.append(row.axis.x(link.time));
    }
    return lines;
}

void TimelineLayout::placeEvents(const PlacedRow &row, PlacedLane *placed) const
{
    LabelRows labels(Metrics::maxEventRows, LabelRows::Lines::FromAbove,
                     {row.axis.left(), row.axis.right() + rightRoom});
    for (const TimelineEvent &event : placed->lane->events) {
        if (!row.axis.contains(event.time))
            continue;
        const double x = row.axis.x(event.time);
        placed->events.append({event, {x}});
        labels.addSymbol(x, symbolHalf);
    }
    const QVector<double> lines = linesThrough(row, placed->index);
    for (const double x : lines)
        labels.addLine(x);
    labelEvents(&placed->events);
    // From right to left, so that a line from above finds no label in its way.
    for (auto i = placed->events.size() - 1; i >= 0; --i) {
        PlacedLabel &label = placed->events[i].label;
        if (label.text.isEmpty())
            continue;
        const std::optional<LabelPlace> place = labels.place(label.x, label.text, symbolGap);
        if (place)
            label = {label.x, label.text, place->row, place->isLeft};
        else
            label.text.clear();
    }
    placed->height = minLaneHeight;
    if (!placed->events.isEmpty())
        placed->height =
            Metrics::eventMiddle + 10 + std::max(0, labels.count() - 1) * Metrics::labelRow;
}

// Only what occurs: a legend of everything would be larger than most pictures.
QVector<PlacedLegend> TimelineLayout::neededLegend() const
{
    const auto anyLane = [this](const auto &isTrue) {
        return std::any_of(rows.begin(), rows.end(), [&](const PlacedRow &row) {
            return std::any_of(row.lanes.begin(), row.lanes.end(),
                               [&](const PlacedLane &placed) { return isTrue(row, placed); });
        });
    };
    const auto hasMark = [&](MarkKind kind) {
        return anyLane([kind](const PlacedRow &row, const PlacedLane &placed) {
            const auto &marks = placed.lane->marks;
            return std::any_of(marks.begin(), marks.end(), [&](const TimelineMark &mark) {
                return mark.kind == kind && row.axis.contains(mark.time);
            });
        });
    };
    const auto hasEvent = [&](const auto &isTrue) {
        return anyLane([&isTrue](const PlacedRow &row, const PlacedLane &placed) {
            return std::any_of(placed.events.begin(), placed.events.end(),
                               [&](const PlacedEvent &event) { return isTrue(row, event); });
        });
    };
    const auto hasState = [&](InputEvent::State state) {
        return hasEvent([state](const PlacedRow &, const PlacedEvent &placed) {
            return placed.half == Half::None && placed.event.state == state;
        });
    };
    const auto hasLane = [&](TimelineLane::Kind kind) {
        return anyLane([kind](const PlacedRow &, const PlacedLane &placed) {
            return placed.lane->kind == kind;
        });
    };
    const bool hasTimed = anyLane([](const PlacedRow &row, const PlacedLane &placed) {
        const auto &timed = placed.lane->timed;
        return std::any_of(timed.begin(), timed.end(), [&](const TimelineSpan &span) {
            return row.axis.intersects(span.from, span.to);
        });
    });
    QVector<PlacedLegend> needed;
    const auto add = [&needed](bool isNeeded, LegendItem item, const QString &text) {
        if (isNeeded)
            needed.append({item, text});
    };
    add(hasLane(TimelineLane::Kind::Key), LegendItem::Down, QStringLiteral("key down"));
    add(hasMark(MarkKind::Repeat), LegendItem::Repeat, QStringLiteral("auto-repeat"));
    add(hasMark(MarkKind::Withdrawn), LegendItem::Withdrawn,
        QStringLiteral("withdrawn for a chord"));
    add(hasMark(MarkKind::Forgotten), LegendItem::Forgotten,
        QStringLiteral("forgotten in a reset"));
    add(hasLane(TimelineLane::Kind::Chord), LegendItem::Chord, QStringLiteral("chord"));
    add(hasMark(MarkKind::Dropped), LegendItem::Dropped, QStringLiteral("record dropped"));
    add(hasTimed, LegendItem::Timed, QStringLiteral("timed for a long press"));
    add(hasMark(MarkKind::Due), LegendItem::Due, QStringLiteral("long press due"));
    add(hasEvent([](const PlacedRow &row, const PlacedEvent &placed) {
            return row.lateSince(placed.event).has_value();
        }),
        LegendItem::Late, QStringLiteral("due, not yet published"));
    add(hasEvent(
            [](const PlacedRow &, const PlacedEvent &placed) { return placed.half != Half::None; }),
        LegendItem::Click, QStringLiteral("press and release published at once"));
    add(hasState(InputEvent::KeyPressed), LegendItem::Press, QStringLiteral("press published"));
    add(hasState(InputEvent::KeyLongPress), LegendItem::LongPress,
        QStringLiteral("long press published"));
    add(hasState(InputEvent::KeyReleased), LegendItem::Release,
        QStringLiteral("release published"));
    add(hasState(InputEvent::SwitchEnabled), LegendItem::On, QStringLiteral("switch on"));
    add(hasState(InputEvent::SwitchDisabled), LegendItem::Off, QStringLiteral("switch off"));
    return needed;
}

void TimelineLayout::placeLegend()
{
    legend = neededLegend();
    const TimelineAxis &axis = rows.first().axis;
    double x = axis.left();
    double y = rows.last().lanesBottom + 22;
    for (PlacedLegend &placed : legend) {
        const double itemWidth = 26 + LabelRows::width(placed.text) + 12;
        if (x + itemWidth > axis.right() && x > axis.left()) {
            x = axis.left();
            y += 18;
        }
        placed.x = x;
        placed.y = y;
        x += itemWidth;
    }
    height = (legend.isEmpty() ? rows.last().lanesBottom : y) + 36;
}

} // namespace Vorn::Workbench
