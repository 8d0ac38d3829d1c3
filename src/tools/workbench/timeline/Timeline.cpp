#include "Timeline.h"

#include "LibraryFacts.h"
#include "Session.h"
#include "TimelineLayout.h"
#include "TimelineSvg.h"

#include <QDateTime>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

using Anchor = TimelineSvg::Anchor;
using FlagKind = TimelineFlag::Kind;
using LegendItem = PlacedLegend::Item;
using MarkKind = TimelineMark::Kind;

constexpr qint64 tickInterval = tickMs * qint64{1000}; // µs
/// More elements than that are no picture any more, and slow to show.
constexpr int maxMarks = 20'000;
/// Marks that are closer than that look like one.
constexpr double closest = 1.5;

const char *const pressShape = "M-4.5-4h9l-4.5 8z";
const char *const releaseShape = "M-4.5 4h9l-4.5-8z";
const char *const longPressShape = "M0-5l5 5l-5 5l-5-5z";
const char *const squareShape = "M-4-4h8v8h-8z";
const char *const crossShape = "M-4.5-4.5l9 9m0-9l-9 9";
const char *const circleShape = "M-4.5 0a4.5 4.5 0 1 0 9 0a4.5 4.5 0 1 0-9 0z";
const char *const pennantShape = "M0-8l8 3.5l-8 3.5z";

struct Symbol
{
    const char *shape;
    const char *cssClass;
};

Symbol symbolOf(InputEvent::State state)
{
    switch (state) {
    case InputEvent::KeyPressed:
        return {pressShape, "press"};
    case InputEvent::KeyReleased:
        return {releaseShape, "release"};
    case InputEvent::KeyLongPress:
        return {longPressShape, "long-press"};
    case InputEvent::SwitchEnabled:
        return {squareShape, "on"};
    case InputEvent::SwitchDisabled:
        return {squareShape, "off"};
    case InputEvent::NoState:
        break;
    }
    return {squareShape, "release"};
}

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

QString barClassOf(const TimelineLane &lane)
{
    switch (lane.kind) {
    case TimelineLane::Kind::Chord:
        return lane.mapped ? QStringLiteral("bar-chord") : QStringLiteral("bar-chord-unmapped");
    case TimelineLane::Kind::Switch:
        return QStringLiteral("bar-switch");
    case TimelineLane::Kind::Key:
    case TimelineLane::Kind::Other:
        break;
    }
    return QStringLiteral("bar");
}

QString durationText(qint64 duration)
{
    const double seconds = static_cast<double>(duration) / 1'000'000;
    if (seconds < 100)
        return QStringLiteral("%1 s").arg(seconds, 0, 'f', 1);
    if (seconds < 6000)
        return QStringLiteral("%1 min").arg(seconds / 60, 0, 'f', 0);
    if (seconds < 360'000)
        return QStringLiteral("%1 h").arg(seconds / 3600, 0, 'f', 0);
    return QStringLiteral("%1 d").arg(seconds / 86'400, 0, 'f', 0);
}

QString counted(int count, const char *what)
{
    const QString text = QStringLiteral("%1 %2").arg(count).arg(QLatin1String(what));
    return count == 1 ? text : text + QLatin1Char('s');
}

QString titleOf(const TimelineModel &model, const TimelineOptions &options)
{
    if (!options.title.isEmpty())
        return options.title;
    return model.start.source.isEmpty() ? QStringLiteral("session") : model.start.source;
}

QString description(const TimelineModel &model, const TimelineLayout &layout)
{
    int events = 0;
    for (const PlacedLane &lane : layout.lanes)
        events += lane.events.size();
    const auto isFailure = [](const PlacedFlag &placed) {
        return placed.flag.kind == FlagKind::Failure;
    };
    const auto failures = std::count_if(layout.flags.begin(), layout.flags.end(), isFailure);
    QString text = QStringLiteral("%1 and %2 from %3 to %4.")
                       .arg(counted(layout.lanes.size(), "lane"), counted(events, "event"),
                            timelineTime(layout.axis.from()), timelineTime(layout.axis.to()));
    if (failures > 0)
        text += QStringLiteral(" Expectations failed.");
    if (!model.start.profile.isEmpty())
        text += QStringLiteral(" Profile: %1.").arg(model.start.profile);
    return text;
}

class Drawing
{
public:
    Drawing(const TimelineModel &model, const TimelineOptions &options)
        : m_model(model)
        , m_layout(model, options)
        , m_axis(m_layout.axis)
        , m_title(titleOf(model, options))
        , m_svg(m_layout.width, m_layout.height, m_title, description(model, m_layout))
    { }

    QByteArray svg();

private:
    void drawHeader();
    void drawIdentifiers();
    void drawAxis();
    void drawTickLabels();
    void drawFlags();
    void drawLane(const PlacedLane &placed);
    void drawBars(const PlacedLane &placed);
    void drawTicks(const PlacedLane &placed);
    void drawLateness(const PlacedLane &placed);
    void drawMarks(const PlacedLane &placed);
    void drawLeaders(const PlacedLane &placed);
    void drawEvents(const PlacedLane &placed);
    void drawLinks();
    void drawBreaks();
    void drawLegend();
    void drawSample(const PlacedLegend &legend);
    void drawNotes();
    void drawShape(double x, double y, const char *shape, const char *cssClass,
                   const QString &title = QString());

    /// Whether there may be one more mark; counts it.
    bool mayMark();

    const TimelineModel &m_model;
    const TimelineLayout m_layout;
    const TimelineAxis &m_axis;
    const QString m_title;
    TimelineSvg m_svg;
    int m_marks = 0;
    int m_marksLeftOut = 0;
    int m_leaders = 0;
};

QByteArray Drawing::svg()
{
    drawHeader();
    drawAxis();
    for (const PlacedLane &placed : m_layout.lanes)
        drawLane(placed);
    drawBreaks();
    drawIdentifiers();
    drawFlags();
    drawTickLabels();
    drawLinks();
    for (const PlacedLane &placed : m_layout.lanes) {
        drawMarks(placed);
        drawLeaders(placed);
    }
    for (const PlacedLane &placed : m_layout.lanes)
        drawEvents(placed);
    drawLegend();
    drawNotes();
    return m_svg.finished();
}

bool Drawing::mayMark()
{
    if (m_marks < maxMarks) {
        ++m_marks;
        return true;
    }
    ++m_marksLeftOut;
    return false;
}

void Drawing::drawShape(double x, double y, const char *shape, const char *cssClass,
                        const QString &title)
{
    m_svg.shape(x, y, QString::fromLatin1(shape), QString::fromLatin1(cssClass), title);
}

void Drawing::drawHeader()
{
    m_svg.text(Metrics::margin, Metrics::margin + 14, TimelineSvg::shortened(m_title, 90),
               QStringLiteral("title"), Anchor::Start, m_title);
    QStringList parts;
    if (!m_model.start.profile.isEmpty())
        parts += TimelineSvg::shortened(m_model.start.profile, 60);
    if (m_model.hasStart)
        parts += QDateTime::fromMSecsSinceEpoch(m_model.start.wallClock / 1000, Qt::UTC)
                     .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss 'UTC'"));
    parts += QStringLiteral("%1 to %2").arg(timelineTime(m_axis.from()), timelineTime(m_axis.to()));
    m_svg.text(Metrics::margin, Metrics::margin + 32, parts.join(QStringLiteral(" · ")),
               QStringLiteral("muted"));
}

void Drawing::drawIdentifiers()
{
    if (!m_layout.hasIdentifiers)
        return;
    const double top = m_layout.identifierTop;
    m_svg.text(Metrics::margin, top + 13, QStringLiteral("identifier"), QStringLiteral("muted"));
    for (int i = 0; i < m_model.identifiers.size(); ++i) {
        const TimelineIdentifier &selected = m_model.identifiers.at(i);
        const bool isLast = i + 1 == m_model.identifiers.size();
        const qint64 end = isLast ? m_axis.to() : m_model.identifiers.at(i + 1).time;
        if (end < m_axis.from() || selected.time > m_axis.to() || !mayMark())
            continue;
        const double from = m_axis.x(selected.time);
        const double length = std::max(2.0, m_axis.x(end) - from);
        const QString name = QLatin1Char('\'') + selected.identifier + QLatin1Char('\'');
        const QString title =
            QStringLiteral("%1: %2 is selected").arg(timelineTime(selected.time), name);
        m_svg.rectangle(from, top, length, 18, QStringLiteral("identifier"), title);
        const int room = static_cast<int>((length - 8) / 7);
        if (room >= 3)
            m_svg.text(from + 5, top + 13, TimelineSvg::shortened(name, room),
                       QStringLiteral("identifier-label"), Anchor::Start, title);
    }
}

void Drawing::drawAxis()
{
    bool isStriped = true;
    for (const PlacedLane &placed : m_layout.lanes) {
        if (isStriped)
            m_svg.rectangle(0, placed.top, m_layout.width, placed.height, QStringLiteral("stripe"));
        isStriped = !isStriped;
    }
    for (const TimelineAxis::Tick &tick : m_axis.ticks()) {
        m_svg.line(tick.x, m_layout.lanesTop, tick.x, m_layout.lanesBottom, QStringLiteral("grid"));
        m_svg.line(tick.x, m_layout.lanesTop - 4, tick.x, m_layout.lanesTop,
                   QStringLiteral("axis"));
    }
    m_svg.line(m_axis.left(), m_layout.lanesTop, m_axis.right(), m_layout.lanesTop,
               QStringLiteral("axis"));
}

void Drawing::drawTickLabels()
{
    for (const TimelineAxis::Tick &tick : m_axis.ticks()) {
        if (!tick.label.isEmpty())
            m_svg.text(tick.x, m_layout.axisTop + 12, tick.label, QStringLiteral("tick"),
                       Anchor::Middle);
    }
}

void Drawing::drawFlags()
{
    for (const PlacedFlag &placed : m_layout.flags) {
        if (!mayMark())
            continue;
        const PlacedLabel &label = placed.label;
        const double top = m_layout.flagTop + label.row * Metrics::labelRow;
        m_svg.line(label.x, top + 2, label.x, m_layout.lanesBottom,
                   QString::fromLatin1(lineClassOf(placed.flag.kind)), placed.flag.title);
        if (!label.isShown)
            continue;
        const bool isFailure = placed.flag.kind == FlagKind::Failure;
        m_svg.text(label.isLeft ? label.x - 4 : label.x + 4, top + 11, placed.flag.label,
                   isFailure ? QStringLiteral("failure-label") : QStringLiteral("muted"),
                   label.isLeft ? Anchor::End : Anchor::Start, placed.flag.title);
    }
}

void Drawing::drawLane(const PlacedLane &placed)
{
    const TimelineLane &lane = *placed.lane;
    const QString title = QStringLiteral("%1, %2 %3").arg(lane.label, lane.deviceName, lane.device);
    m_svg.text(Metrics::margin, placed.top + Metrics::barMiddle + 3,
               TimelineSvg::shortened(lane.label, Metrics::laneLabelLength), QStringLiteral("lane"),
               Anchor::Start, title);
    m_svg.text(Metrics::margin, placed.top + Metrics::barMiddle + 17,
               TimelineSvg::shortened(lane.deviceName, Metrics::laneLabelLength),
               QStringLiteral("muted"), Anchor::Start, title);
    drawTicks(placed);
    drawBars(placed);
    drawLateness(placed);
}

void Drawing::drawBars(const PlacedLane &placed)
{
    const TimelineLane &lane = *placed.lane;
    const double top = placed.top + Metrics::barTop;
    const QString cssClass = barClassOf(lane);
    for (const TimelineBar &bar : lane.bars) {
        if (bar.to < m_axis.from() || bar.from > m_axis.to() || !mayMark())
            continue;
        const double from = m_axis.x(bar.from);
        const double to = std::max(m_axis.x(bar.to), from + 2);
        const QString title = QStringLiteral("%1: %2 to %3 (%4)%5")
                                  .arg(lane.label, timelineTime(bar.from), timelineTime(bar.to),
                                       timelineTime(bar.to - bar.from),
                                       bar.isOpen ? QStringLiteral(", did not end") : QString());
        const double solidTo = bar.withdrawn ? m_axis.x(*bar.withdrawn) : to;
        m_svg.rectangle(from, top, solidTo - from, Metrics::barHeight, cssClass, title);
        if (bar.withdrawn)
            m_svg.rectangle(solidTo, top, to - solidTo, Metrics::barHeight,
                            QStringLiteral("bar-withdrawn"), title);
        // A bar that goes on is drawn as if it was torn off.
        for (int i = 0; bar.isOpen && i < 3 && to - 4 - i * 6 > from; ++i)
            m_svg.rectangle(to - 4 - i * 6, top, 3, Metrics::barHeight, QStringLiteral("open"));
    }
}

void Drawing::drawTicks(const PlacedLane &placed)
{
    if (!m_layout.hasTicks)
        return;
    const double top = placed.top + Metrics::barBottom;
    for (const TimelineTimedSpan &span : placed.lane->timed) {
        const qint64 to = std::min(span.to, m_axis.to());
        qint64 time = std::max(span.from, m_axis.from());
        while (true) {
            const qint64 sinceStart = m_axis.firstShown(time) - span.timerStart;
            time = span.timerStart + (sinceStart + tickInterval - 1) / tickInterval * tickInterval;
            if (time > to)
                break;
            // Rounding up may lead out of what is shown.
            if (m_axis.firstShown(time) != time)
                continue;
            if (!mayMark())
                return;
            const double x = m_axis.x(time);
            m_svg.line(x, top, x, top + 5, QStringLiteral("timer"));
            time += tickInterval;
        }
    }
}

void Drawing::drawLateness(const PlacedLane &placed)
{
    for (const TimelineEvent &event : placed.events) {
        if (!m_layout.isLate(event) || !mayMark())
            continue;
        const double from = m_axis.x(*event.due);
        m_svg.rectangle(from, placed.top + Metrics::barTop - 3, m_axis.x(event.time) - from,
                        Metrics::barHeight + 3, QStringLiteral("late"),
                        QStringLiteral("due at %1, published at %2")
                            .arg(timelineTime(*event.due), timelineTime(event.time)));
    }
}

void Drawing::drawMarks(const PlacedLane &placed)
{
    const double top = placed.top + Metrics::barTop;
    const double middle = placed.top + Metrics::barMiddle;
    double lastRepeat = 0;
    for (const TimelineMark &mark : placed.lane->marks) {
        if (!m_axis.contains(mark.time))
            continue;
        const double x = m_axis.x(mark.time);
        if (mark.kind == MarkKind::Repeat && x - lastRepeat < closest)
            continue;
        if (!mayMark())
            return;
        switch (mark.kind) {
        case MarkKind::Repeat:
            m_svg.line(x, top + 3, x, top + Metrics::barHeight - 3, QStringLiteral("repeat"),
                       mark.title);
            lastRepeat = x;
            break;
        case MarkKind::Due:
            m_svg.line(x, top - 7, x, top + Metrics::barHeight + 5, QStringLiteral("due"),
                       mark.title);
            drawShape(x, top - 3, pennantShape, "flag", mark.title);
            break;
        case MarkKind::Withdrawn:
            drawShape(x, middle, crossShape, "withdrawn", mark.title);
            break;
        case MarkKind::Dropped:
            drawShape(x, middle, circleShape, "dropped", mark.title);
            break;
        }
    }
}

void Drawing::drawLeaders(const PlacedLane &placed)
{
    for (int i = 0; i < placed.events.size() && m_leaders < maxMarks; ++i) {
        ++m_leaders;
        const PlacedLabel &label = placed.labels.at(i);
        const bool isLongPress = placed.events.at(i).state == InputEvent::KeyLongPress;
        const double top = placed.top + (isLongPress ? Metrics::barTop - 3 : Metrics::barBottom);
        const double bottom = placed.top + Metrics::eventTop + label.row * Metrics::labelRow + 8;
        m_svg.line(label.x, top, label.x, bottom,
                   isLongPress ? QStringLiteral("leader-long-press") : QStringLiteral("leader"));
    }
}

void Drawing::drawEvents(const PlacedLane &placed)
{
    for (int i = 0; i < placed.events.size(); ++i) {
        if (!mayMark())
            continue;
        const TimelineEvent &event = placed.events.at(i);
        const PlacedLabel &label = placed.labels.at(i);
        const double y = placed.top + Metrics::eventTop + label.row * Metrics::labelRow + 8;
        const Symbol symbol = symbolOf(event.state);
        drawShape(label.x, y, symbol.shape, symbol.cssClass, event.title);
        if (label.isShown)
            m_svg.text(label.isLeft ? label.x - 8 : label.x + 8, y + 4, event.label,
                       QStringLiteral("event"), label.isLeft ? Anchor::End : Anchor::Start,
                       event.title);
    }
}

void Drawing::drawLinks()
{
    for (const TimelineLink &link : m_model.links) {
        if (!m_axis.contains(link.time))
            continue;
        QVector<double> ends;
        for (const PlacedLane &placed : m_layout.lanes) {
            if (link.lanes.contains(placed.index))
                ends.append(placed.top + Metrics::barMiddle);
        }
        if (ends.size() < 2 || !mayMark())
            continue;
        const double x = m_axis.x(link.time);
        m_svg.line(x, ends.first(), x, ends.last(), QStringLiteral("link"), link.title);
        for (const double end : qAsConst(ends))
            drawShape(x, end, circleShape, "link-end", link.title);
    }
}

void Drawing::drawBreaks()
{
    for (const TimelineAxis::Break &left : m_axis.breaks()) {
        const QString label = QStringLiteral("⋯ ") + durationText(left.duration);
        const QString title =
            QStringLiteral("%1 in which nothing happened").arg(timelineTime(left.duration));
        const double top = m_layout.lanesTop;
        m_svg.rectangle(left.from, top, left.to - left.from, m_layout.lanesBottom - top,
                        QStringLiteral("break"), title);
        m_svg.line(left.from, top, left.from, m_layout.lanesBottom, QStringLiteral("break-edge"));
        m_svg.line(left.to, top, left.to, m_layout.lanesBottom, QStringLiteral("break-edge"));
        if (LabelRows::width(label) <= left.to - left.from)
            m_svg.text((left.from + left.to) / 2, m_layout.axisTop + 12, label,
                       QStringLiteral("muted"), Anchor::Middle, title);
    }
}

void Drawing::drawLegend()
{
    for (const PlacedLegend &legend : m_layout.legend) {
        drawSample(legend);
        m_svg.text(legend.x + 24, legend.y + 4, legend.text, QStringLiteral("muted"));
    }
}

void Drawing::drawSample(const PlacedLegend &legend)
{
    const double x = legend.x;
    const double middle = x + 9;
    const double y = legend.y;
    const auto bar = [&](const char *cssClass) {
        m_svg.rectangle(x, y - 5, 18, 10, QString::fromLatin1(cssClass));
    };
    switch (legend.item) {
    case LegendItem::Down:
        bar("bar");
        break;
    case LegendItem::Repeat:
        bar("bar");
        m_svg.line(x + 6, y - 3, x + 6, y + 3, QStringLiteral("repeat"));
        m_svg.line(x + 12, y - 3, x + 12, y + 3, QStringLiteral("repeat"));
        break;
    case LegendItem::Withdrawn:
        bar("bar-withdrawn");
        drawShape(middle, y, crossShape, "withdrawn");
        break;
    case LegendItem::Chord:
        bar("bar-chord");
        break;
    case LegendItem::Dropped:
        drawShape(middle, y, circleShape, "dropped");
        break;
    case LegendItem::Timer:
        for (int i = 0; i < 4; ++i)
            m_svg.line(x + i * 6, y - 3, x + i * 6, y + 3, QStringLiteral("timer"));
        break;
    case LegendItem::Due:
        m_svg.line(middle - 4, y - 7, middle - 4, y + 7, QStringLiteral("due"));
        drawShape(middle - 4, y + 1, pennantShape, "flag");
        break;
    case LegendItem::Late:
        bar("late");
        break;
    case LegendItem::Press:
        drawShape(middle, y, pressShape, "press");
        break;
    case LegendItem::LongPress:
        drawShape(middle, y, longPressShape, "long-press");
        break;
    case LegendItem::Release:
        drawShape(middle, y, releaseShape, "release");
        break;
    case LegendItem::On:
        drawShape(middle, y, squareShape, "on");
        break;
    case LegendItem::Off:
        drawShape(middle, y, squareShape, "off");
        break;
    }
}

void Drawing::drawNotes()
{
    QStringList notes;
    if (m_model.lanesLeftOut > 0)
        notes += counted(m_model.lanesLeftOut, "lane");
    if (m_marksLeftOut > 0)
        notes += counted(m_marksLeftOut, "mark");
    if (!notes.isEmpty())
        m_svg.text(m_axis.left(), m_layout.height - 10,
                   QStringLiteral("left out: ") + notes.join(QStringLiteral(", ")),
                   QStringLiteral("failure-label"));
}

} // namespace

QByteArray timelineSvg(const QVector<SessionEntry> &entries, const TimelineOptions &options)
{
    const TimelineModel model = timelineModel(entries);
    return Drawing(model, options).svg();
}

} // namespace Vorn::Workbench
