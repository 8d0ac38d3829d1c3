#include "TimelineLayout.h"

#include "LabelRows.h"
#include "LibraryFacts.h"
#include "TimelineSvg.h"

#include <algorithm>

namespace Vorn::Workbench {

namespace {

using LegendItem = PlacedLegend::Item;
using MarkKind = TimelineMark::Kind;

/// µs. In longer pictures the detectors' ticks would be too close together.
constexpr qint64 longestWithTicks = 5'000'000;
constexpr int maxEventRows = 5;
constexpr int maxFlagRows = 4;
constexpr double minLaneHeight = 42;
/// Flags closer together than this share a label.
constexpr double flagDistance = 4;
/// Nobody reads a tool tip with more lines than this.
constexpr int maxMergedTitles = 20;
constexpr double symbolWidth = 8;

TimelineAxis axisOf(const TimelineModel &model, const TimelineOptions &options)
{
    // The names of codes are capitals, in a bold font.
    constexpr double labelCharacter = 9.2;
    int length = 10;
    for (const TimelineLane &lane : model.lanes)
        length = std::max({length, lane.label.size(), lane.deviceName.size() * 3 / 4});
    length = std::min(length, Metrics::laneLabelLength);
    const double left = Metrics::margin * 2 + length * labelCharacter;
    const qint64 end = model.activity.isEmpty() ? 0 : model.activity.last();
    return {options.from, options.to >= 0 ? options.to : end, model.activity, left};
}

/// To the right of its point, unless it would cross the edge of the picture there.
PlacedLabel placeLabel(LabelRows *rows, double x, const QString &text, double right)
{
    const double width = LabelRows::width(text) + symbolWidth;
    PlacedLabel label;
    label.x = x;
    label.isLeft = x + width > right;
    const double from = label.isLeft ? x - width : x - symbolWidth;
    const double to = label.isLeft ? x + symbolWidth : x + width;
    const std::optional<int> row = rows->place(from, to);
    label.isShown = row.has_value();
    label.row = row.value_or(0);
    return label;
}

/// Several devices that are added at once share one label.
void merge(TimelineFlag *flag, const TimelineFlag &next, int count)
{
    if (count <= maxMergedTitles)
        flag->title += QLatin1Char('\n') + next.title;
    flag->label = QStringLiteral("%1 (%2 in all)")
                      .arg(flag->label.section(QStringLiteral(" ("), 0, 0), QString::number(count));
}

} // namespace

TimelineLayout::TimelineLayout(const TimelineModel &model, const TimelineOptions &options)
    : axis(axisOf(model, options))
{
    width = axis.right() + Metrics::margin * 2;
    hasTicks = axis.shownTime() < longestWithTicks;
    hasIdentifiers = std::any_of(
        model.identifiers.begin(), model.identifiers.end(),
        [](const TimelineIdentifier &selected) { return !selected.identifier.isEmpty(); });

    identifierTop = Metrics::margin + 48;
    flagTop = identifierTop + (hasIdentifiers ? 26 : 0);
    placeFlags(model);
    placeLanes(model);
    placeLegend();
}

bool TimelineLayout::isLate(const TimelineEvent &event) const
{
    return event.due && axis.contains(*event.due) && axis.x(event.time) - axis.x(*event.due) >= 1;
}

void TimelineLayout::placeFlags(const TimelineModel &model)
{
    QVector<int> counts;
    for (const TimelineFlag &flag : model.flags) {
        if (!axis.contains(flag.time))
            continue;
        const double x = axis.x(flag.time);
        const bool isNear = !flags.isEmpty() && flags.last().flag.kind == flag.kind
            && x - flags.last().label.x < flagDistance;
        if (isNear) {
            merge(&flags.last().flag, flag, ++counts.last());
            continue;
        }
        PlacedFlag placed{flag, {}};
        placed.label.x = x;
        flags.append(placed);
        counts.append(1);
    }

    LabelRows rows(maxFlagRows);
    for (PlacedFlag &placed : flags) {
        placed.flag.label = TimelineSvg::shortened(placed.flag.label, Metrics::flagLabelLength);
        placed.label = placeLabel(&rows, placed.label.x, placed.flag.label, width);
    }
    axisTop = flagTop + rows.count() * Metrics::labelRow + 4;
    lanesTop = axisTop + 20;
}

bool TimelineLayout::isShown(const TimelineLane &lane) const
{
    const auto isInside = [this](const auto &what) { return axis.contains(what.time); };
    return std::any_of(lane.events.begin(), lane.events.end(), isInside)
        || std::any_of(lane.marks.begin(), lane.marks.end(), isInside)
        || std::any_of(lane.bars.begin(), lane.bars.end(), [this](const TimelineBar &bar) {
               return bar.to >= axis.from() && bar.from <= axis.to();
           });
}

void TimelineLayout::placeLanes(const TimelineModel &model)
{
    double top = lanesTop;
    for (int i = 0; i < model.lanes.size(); ++i) {
        const TimelineLane &lane = model.lanes.at(i);
        if (!isShown(lane))
            continue;
        PlacedLane placed;
        placed.lane = &lane;
        placed.index = i;
        placed.top = top;
        LabelRows rows(maxEventRows);
        bool isAnyHidden = false;
        for (const TimelineEvent &event : lane.events) {
            if (!axis.contains(event.time))
                continue;
            placed.events.append(event);
            placed.labels.append(placeLabel(&rows, axis.x(event.time), event.label, width));
            isAnyHidden |= !placed.labels.last().isShown;
        }
        for (PlacedLabel &label : placed.labels)
            label.row = label.isShown ? label.row : rows.count();
        const int rowCount = rows.count() + (isAnyHidden ? 1 : 0);
        placed.height =
            std::max(minLaneHeight, Metrics::eventTop + rowCount * Metrics::labelRow + 4);
        top += placed.height;
        lanes.append(placed);
    }
    lanesBottom = lanes.isEmpty() ? top + minLaneHeight : top;
}

// Only what occurs: a legend of everything would be larger than most pictures.
QVector<PlacedLegend> TimelineLayout::neededLegend() const
{
    const auto hasMark = [this](MarkKind kind) {
        return std::any_of(lanes.begin(), lanes.end(), [&](const PlacedLane &placed) {
            const auto &marks = placed.lane->marks;
            return std::any_of(marks.begin(), marks.end(), [&](const TimelineMark &mark) {
                return mark.kind == kind && axis.contains(mark.time);
            });
        });
    };
    const auto hasState = [this](InputEvent::State state) {
        return std::any_of(lanes.begin(), lanes.end(), [&](const PlacedLane &placed) {
            return std::any_of(placed.events.begin(), placed.events.end(),
                               [&](const TimelineEvent &event) { return event.state == state; });
        });
    };
    const auto hasLane = [this](TimelineLane::Kind kind) {
        return std::any_of(lanes.begin(), lanes.end(),
                           [&](const PlacedLane &placed) { return placed.lane->kind == kind; });
    };
    const bool hasLate = std::any_of(lanes.begin(), lanes.end(), [this](const PlacedLane &placed) {
        return std::any_of(placed.events.begin(), placed.events.end(),
                           [this](const TimelineEvent &event) { return isLate(event); });
    });
    const bool hasDue = hasMark(MarkKind::Due);
    QVector<PlacedLegend> needed;
    const auto add = [&needed](bool isNeeded, LegendItem item, const QString &text) {
        if (isNeeded)
            needed.append({item, text});
    };
    add(hasLane(TimelineLane::Kind::Key), LegendItem::Down, QStringLiteral("key down"));
    add(hasMark(MarkKind::Repeat), LegendItem::Repeat, QStringLiteral("auto-repeat"));
    add(hasMark(MarkKind::Withdrawn), LegendItem::Withdrawn,
        QStringLiteral("withdrawn for a chord"));
    add(hasLane(TimelineLane::Kind::Chord), LegendItem::Chord, QStringLiteral("chord"));
    add(hasMark(MarkKind::Dropped), LegendItem::Dropped, QStringLiteral("record dropped"));
    add(hasDue && hasTicks, LegendItem::Timer, QStringLiteral("%1 ms ticks").arg(tickMs));
    add(hasDue, LegendItem::Due, QStringLiteral("long press due"));
    add(hasLate, LegendItem::Late, QStringLiteral("waiting for the next tick"));
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
    double x = axis.left();
    double y = lanesBottom + 22;
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
    height = (legend.isEmpty() ? lanesBottom : y) + 36;
}

} // namespace Vorn::Workbench
