#include "TimelineLanes.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "EventNames.h"
#include "LibraryFacts.h"
#include "Session.h"

#include <QMap>
#include <QPair>
#include <QSet>

#include <linux/input.h>

#include <algorithm>
#include <utility>

namespace Vorn::Workbench {

namespace {

/// Of the detector's timer.
constexpr qint64 tickInterval = tickMs * qint64{1000}; // µs

using LaneKey = QPair<QString, QPair<int, QVector<int>>>;

QString joinedNames(int type, const QVector<int> &codes)
{
    QStringList names;
    for (const int code : codes)
        names += eventCodeName(type, code);
    return names.join(QStringLiteral(" + "));
}

QString stateLabel(InputEvent::State state)
{
    switch (state) {
    case InputEvent::KeyPressed:
        return QStringLiteral("press");
    case InputEvent::KeyReleased:
        return QStringLiteral("release");
    case InputEvent::KeyLongPress:
        return QStringLiteral("long press");
    case InputEvent::SwitchEnabled:
        return QStringLiteral("on");
    case InputEvent::SwitchDisabled:
        return QStringLiteral("off");
    case InputEvent::NoState:
        break;
    }
    return stateName(state);
}

class ModelBuilder
{
public:
    void add(const SessionEntry &entry)
    {
        m_time = entry.time;
        m_model.activity.append(entry.time);
        std::visit([this](const auto &what) { take(what); }, entry.what);
    }

    TimelineModel finished();

private:
    /// The timer of a device's detector.
    struct Timer
    {
        qint64 start = 0;
        qint64 lastEnd = 0;
        QSet<int> keys;
    };

    /// Null once there are too many lanes.
    TimelineLane *lane(const QString &device, int type, QVector<int> codes);
    TimelineLane *laneOf(const EventPublished &event);
    void describe(TimelineLane *lane) const;
    void mark(const QString &device, int code, TimelineMark::Kind kind, qint64 time,
              const QString &title);
    void endBar(TimelineLane *lane) const;
    void startTiming(const QString &device, int code);
    void endTiming(const QString &device, int code);
    /// Sets when the long press of the step's key is due; nothing: it is not.
    void setDue(const DetectorStep &step, std::optional<qint64> due);
    void takeChord(const DetectorStep &step);

    void take(const SessionStart &start);
    void take(const DeviceChange &change);
    void take(const RecordRead &record);
    void take(const DetectorStep &step);
    void take(const EventPublished &event);
    void take(const IdentifierSelected &selected);
    void take(const ExpectationChecked &expectation);
    void take(const Remark &remark);

    TimelineModel m_model;
    qint64 m_time = 0;
    QMap<LaneKey, int> m_indexes;
    QSet<QString> m_leftOut;
    QMap<QString, QString> m_names;
    QMap<QString, Timer> m_timers;
    QMap<QPair<QString, int>, qint64> m_due;
    QVector<QPair<qint64, DetectorStep>> m_chords;
};

TimelineLane *ModelBuilder::lane(const QString &device, int type, QVector<int> codes)
{
    std::sort(codes.begin(), codes.end());
    const LaneKey key(device, {type, codes});
    const auto known = m_indexes.constFind(key);
    if (known != m_indexes.constEnd())
        return &m_model.lanes[*known];
    if (m_model.lanes.size() >= maxTimelineLanes) {
        m_leftOut.insert(device + joinedNames(type, codes));
        return nullptr;
    }
    m_indexes.insert(key, m_model.lanes.size());
    TimelineLane lane;
    lane.device = device;
    lane.type = type;
    lane.codes = codes;
    describe(&lane);
    m_model.lanes.append(lane);
    return &m_model.lanes.last();
}

void ModelBuilder::describe(TimelineLane *lane) const
{
    const QString node = lane->device.section(QLatin1Char('/'), -1);
    lane->deviceName = m_names.value(lane->device, node);
    lane->label = joinedNames(lane->type, lane->codes);
    if (lane->codes.isEmpty())
        lane->label = QStringLiteral("events");
    else if (lane->codes.size() > 1)
        lane->kind = TimelineLane::Kind::Chord;
    else if (lane->type == EV_KEY)
        lane->kind = TimelineLane::Kind::Key;
    else if (lane->type == EV_SW)
        lane->kind = TimelineLane::Kind::Switch;
}

TimelineLane *ModelBuilder::laneOf(const EventPublished &event)
{
    if (event.codes.isEmpty())
        return lane({}, 0, {});
    return lane(event.device, event.type, event.codes);
}

void ModelBuilder::take(const SessionStart &start)
{
    if (m_model.hasStart)
        return;
    m_model.start = start;
    m_model.hasStart = true;
}

void ModelBuilder::take(const DeviceChange &change)
{
    m_names.insert(change.device, change.name);
    const QString title = QStringLiteral("%1: %2 %3 (%4)")
                              .arg(timelineTime(m_time), change.device, change.name,
                                   change.added ? busName(change.bus) : QStringLiteral("removed"));
    const QChar sign = change.added ? QLatin1Char('+') : QChar(0x2212);
    m_model.flags.append({change.added ? TimelineFlag::Kind::Added : TimelineFlag::Kind::Removed,
                          m_time, sign + QLatin1Char(' ') + change.name, title});
    if (change.added)
        return;
    // A device that is gone sends no releases.
    for (TimelineLane &lane : m_model.lanes) {
        if (lane.device != change.device)
            continue;
        endBar(&lane);
        if (lane.kind == TimelineLane::Kind::Key)
            endTiming(lane.device, lane.codes.first());
    }
}

void ModelBuilder::endBar(TimelineLane *lane) const
{
    if (lane->bars.isEmpty() || !lane->bars.last().isOpen)
        return;
    lane->bars.last().to = m_time;
    lane->bars.last().isOpen = false;
}

void ModelBuilder::take(const RecordRead &record)
{
    if (record.type != EV_KEY && record.type != EV_SW)
        return;
    TimelineLane *lane = this->lane(record.device, record.type, {record.code});
    if (!lane)
        return;
    const bool isDown = !lane->bars.isEmpty() && lane->bars.last().isOpen;
    if (record.value == 0) {
        endBar(lane);
    } else if (!isDown) {
        lane->bars.append({m_time, m_time, true, std::nullopt});
    } else {
        lane->marks.append(
            {TimelineMark::Kind::Repeat, m_time,
             QStringLiteral("%1: %2 %3")
                 .arg(timelineTime(m_time), lane->label, valueName(record.type, record.value))});
    }
}

void ModelBuilder::mark(const QString &device, int code, TimelineMark::Kind kind, qint64 time,
                        const QString &title)
{
    if (TimelineLane *lane = this->lane(device, EV_KEY, {code}))
        lane->marks.append(
            {kind, time, QStringLiteral("%1: %2 %3").arg(timelineTime(time), lane->label, title)});
}

void ModelBuilder::startTiming(const QString &device, int code)
{
    Timer &timer = m_timers[device];
    if (timer.keys.contains(code))
        return;
    // It runs on until the tick that finds no key held.
    const qint64 ticks =
        timer.keys.isEmpty() ? (timer.lastEnd - timer.start) / tickInterval + 1 : 0;
    if (timer.keys.isEmpty() && m_time > timer.start + ticks * tickInterval)
        timer.start = m_time;
    timer.keys.insert(code);
    if (TimelineLane *lane = this->lane(device, EV_KEY, {code}))
        lane->timed.append({m_time, m_time, timer.start});
}

void ModelBuilder::endTiming(const QString &device, int code)
{
    Timer &timer = m_timers[device];
    if (!timer.keys.remove(code))
        return;
    timer.lastEnd = m_time;
    TimelineLane *lane = this->lane(device, EV_KEY, {code});
    if (lane && !lane->timed.isEmpty())
        lane->timed.last().to = m_time;
}

void ModelBuilder::setDue(const DetectorStep &step, std::optional<qint64> due)
{
    // A moment that was put off or called off before it came is not shown.
    const auto pending = m_due.find({step.device, step.keys.first()});
    if (pending != m_due.end()) {
        if (*pending <= m_time)
            mark(step.device, step.keys.first(), TimelineMark::Kind::Due, *pending,
                 QStringLiteral("long press is due"));
        m_due.erase(pending);
    }
    if (due)
        m_due.insert({step.device, step.keys.first()}, *due);
}

void ModelBuilder::takeChord(const DetectorStep &step)
{
    // A chord's lane comes after the lanes of its keys.
    for (const int code : step.keys)
        lane(step.device, EV_KEY, {code});
    TimelineLane *chord = lane(step.device, EV_KEY, step.keys);
    if (!chord || chord->kind != TimelineLane::Kind::Chord)
        return;
    endBar(chord);
    if (step.what == DetectorStep::What::ChordReleased)
        return;
    chord->mapped = step.mapped;
    chord->bars.append({m_time, m_time, true, std::nullopt});
    m_chords.append({m_time, step});
}

void ModelBuilder::take(const DetectorStep &step)
{
    if (step.keys.isEmpty())
        return;
    const int code = step.keys.first();
    switch (step.what) {
    case DetectorStep::What::LongPressDue:
        startTiming(step.device, code);
        setDue(step, step.due);
        break;
    case DetectorStep::What::LongPressEnded:
        setDue(step, std::nullopt);
        endTiming(step.device, code);
        break;
    case DetectorStep::What::FirstKeyWithdrawn:
        mark(step.device, code, TimelineMark::Kind::Withdrawn, m_time,
             QStringLiteral("is withdrawn for a chord"));
        if (TimelineLane *lane = this->lane(step.device, EV_KEY, {code})) {
            if (!lane->bars.isEmpty() && lane->bars.last().isOpen)
                lane->bars.last().withdrawn = m_time;
        }
        break;
    case DetectorStep::What::ChordFound:
    case DetectorStep::What::ChordReleased:
        takeChord(step);
        break;
    case DetectorStep::What::Dropped:
        mark(step.device, code, TimelineMark::Kind::Dropped, m_time,
             QStringLiteral("record is dropped"));
        break;
    }
}

void ModelBuilder::take(const EventPublished &event)
{
    TimelineLane *lane = laneOf(event);
    if (!lane)
        return;
    const InputEvent published(event.command, event.state, event.bus);
    QString title = timelineTime(m_time) + QStringLiteral(": ") + published.toString();
    if (!event.codes.isEmpty())
        title += QLatin1Char(' ') + lane->label;
    if (event.latency)
        title += QStringLiteral(", %1 ms late")
                     .arg(static_cast<double>(*event.latency) / 1000, 0, 'f', 1);
    lane->events.append({m_time, event.state,
                         published.cmdToString() + QLatin1Char(' ') + stateLabel(event.state),
                         title, std::nullopt});
}

void ModelBuilder::take(const IdentifierSelected &selected)
{
    m_model.identifiers.append({m_time, selected.identifier});
}

void ModelBuilder::take(const ExpectationChecked &expectation)
{
    if (expectation.met)
        return;
    QString title = QStringLiteral("%1: %2:%3: failed: %4")
                        .arg(timelineTime(m_time), expectation.file)
                        .arg(expectation.line)
                        .arg(expectation.text);
    if (!expectation.found.isEmpty())
        title += QStringLiteral(", but found ") + expectation.found;
    m_model.flags.append(
        {TimelineFlag::Kind::Failure, m_time, QStringLiteral("✗ ") + expectation.text, title});
}

void ModelBuilder::take(const Remark &remark)
{
    m_model.flags.append({TimelineFlag::Kind::Remark, m_time, remark.text,
                          timelineTime(m_time) + QStringLiteral(": ") + remark.text});
}

/// Indexes of the lanes in the order in which they are drawn.
QVector<int> drawingOrder(const QVector<TimelineLane> &lanes)
{
    QVector<int> order;
    for (int i = 0; i < lanes.size(); ++i) {
        if (lanes.at(i).kind != TimelineLane::Kind::Chord)
            order.append(i);
    }
    for (int i = 0; i < lanes.size(); ++i) {
        const TimelineLane &chord = lanes.at(i);
        if (chord.kind != TimelineLane::Kind::Chord)
            continue;
        int place = 0;
        for (int at = 0; at < order.size(); ++at) {
            const TimelineLane &other = lanes.at(order.at(at));
            const bool isOfChord = other.device == chord.device && other.type == chord.type
                && std::any_of(other.codes.begin(), other.codes.end(),
                               [&](int code) { return chord.codes.contains(code); });
            if (isOfChord)
                place = at + 1;
        }
        order.insert(place, i);
    }
    return order;
}

/// Gives each long press the last moment before it at which one was due.
void setDueTimes(TimelineLane *lane)
{
    const TimelineMark *mark = lane->marks.cbegin();
    for (TimelineEvent &event : lane->events) {
        if (event.state != InputEvent::KeyLongPress)
            continue;
        for (; mark != lane->marks.cend() && mark->time <= event.time; ++mark) {
            if (mark->kind == TimelineMark::Kind::Due)
                event.due = mark->time;
        }
    }
}

TimelineModel ModelBuilder::finished()
{
    std::sort(m_model.activity.begin(), m_model.activity.end());
    const qint64 end = m_model.activity.isEmpty() ? 0 : m_model.activity.last();
    const auto due = std::exchange(m_due, {});
    for (auto it = due.cbegin(); it != due.cend(); ++it) {
        if (it.value() <= end)
            mark(it.key().first, it.key().second, TimelineMark::Kind::Due, it.value(),
                 QStringLiteral("long press is due"));
    }
    for (TimelineLane &lane : m_model.lanes) {
        std::stable_sort(
            lane.marks.begin(), lane.marks.end(),
            [](const TimelineMark &a, const TimelineMark &b) { return a.time < b.time; });
        setDueTimes(&lane);
        for (TimelineBar &bar : lane.bars)
            bar.to = bar.isOpen ? end : bar.to;
        const bool isTimed = lane.kind == TimelineLane::Kind::Key
            && m_timers.value(lane.device).keys.contains(lane.codes.first());
        if (isTimed && !lane.timed.isEmpty())
            lane.timed.last().to = end;
    }

    const QVector<int> order = drawingOrder(m_model.lanes);
    QVector<TimelineLane> lanes;
    for (const int index : order)
        lanes.append(m_model.lanes.at(index));
    for (const auto &[time, step] : qAsConst(m_chords)) {
        TimelineLink link{time, {}, {}};
        QVector<QVector<int>> ends{step.keys};
        for (const int code : step.keys)
            ends.append(QVector<int>{code});
        for (QVector<int> &codes : ends) {
            std::sort(codes.begin(), codes.end());
            const auto found = m_indexes.constFind({step.device, {EV_KEY, codes}});
            if (found != m_indexes.constEnd())
                link.lanes.append(order.indexOf(*found));
        }
        std::sort(link.lanes.begin(), link.lanes.end());
        link.title = QStringLiteral("%1: chord %2%3")
                         .arg(timelineTime(time), joinedNames(EV_KEY, step.keys),
                              step.mapped ? QString() : QStringLiteral(", no command"));
        m_model.links.append(link);
    }
    m_model.lanes = lanes;
    m_model.lanesLeftOut = m_leftOut.size();
    return m_model;
}

} // namespace

TimelineModel timelineModel(const QVector<SessionEntry> &entries)
{
    ModelBuilder builder;
    for (const SessionEntry &entry : entries)
        builder.add(entry);
    return builder.finished();
}

QString timelineTime(qint64 time)
{
    return QString::number(static_cast<double>(time) / 1'000'000, 'f', 3) + QStringLiteral(" s");
}

} // namespace Vorn::Workbench
