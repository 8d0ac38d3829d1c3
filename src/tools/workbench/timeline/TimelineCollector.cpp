#include "TimelineCollector.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "EventNames.h"
#include "LaneTable.h"
#include "LongPressTiming.h"
#include "TimelineText.h"

#include <QPair>

#include <linux/input.h>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

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

void startBar(TimelineLane *lane, qint64 time)
{
    lane->bars.append({time, time, true, std::nullopt});
}

TimelineBar *openBar(TimelineLane *lane)
{
    const bool isOpen = !lane->bars.isEmpty() && lane->bars.last().isOpen;
    return isOpen ? &lane->bars.last() : nullptr;
}

void endBar(TimelineLane *lane, qint64 time)
{
    if (TimelineBar *bar = openBar(lane)) {
        bar->to = time;
        bar->isOpen = false;
    }
}

/*
 *  The lane of a key that is held, then pressed again as the first key of a chord:
 *
 *  records  press       repeat       release     press       second key down       release
 *             │           │             │          │                │                 │
 *  bar        ├── down ───┼─────────────┤ released ├── down ────────┼── withdrawn ────┤ released
 *  timed      ├───────────┼─────────────┤          ├────────────────┤
 *  steps      due         due, later    ended      due              withdrawn, ended
 *  marks                  Repeat                                    Withdrawn
 *
 *  Only keys with a long press are timed. A chord that has a command is timed by its first key:
 *  a new span then begins where the key was withdrawn. Removing the device ends bar and span, and
 *  so does the end of the session, which leaves the bar open.
 */

class TimelineCollector
{
public:
    void add(const SessionEntry &entry);
    TimelineModel finished();

private:
    void take(const SessionStart &start);
    void take(const DeviceChange &change);
    void take(const RecordRead &record);
    void take(const DetectorStep &step);
    void take(const EventPublished &event);
    void take(const RecordOutcome &) { }
    void take(const KeyStates &) { }
    void take(const IdentifierSelected &selected);
    void take(const ExpectationChecked &expectation);
    void take(const Remark &remark);

    void withdraw(const DetectorStep &step);
    void takeChord(const DetectorStep &step);
    void forget(const DetectorStep &step);
    void finishLanes(qint64 end);
    TimelineLink linkOf(qint64 time, const DetectorStep &chord, const QVector<int> &order) const;

    TimelineModel m_model;
    LaneTable m_lanes;
    LongPressTiming m_timing{&m_lanes};
    QVector<QPair<qint64, DetectorStep>> m_chords;
    qint64 m_time = 0;
};

void TimelineCollector::add(const SessionEntry &entry)
{
    m_time = entry.time;
    m_model.activity.append(entry.time);
    std::visit([this](const auto &what) { take(what); }, entry.what);
}

void TimelineCollector::take(const SessionStart &start)
{
    if (m_model.hasStart)
        return;
    m_model.start = start;
    m_model.hasStart = true;
}

void TimelineCollector::take(const DeviceChange &change)
{
    m_lanes.setDeviceName(change.device, change.name);
    const QString title = QStringLiteral("%1: %2 %3 (%4)")
                              .arg(timelineTime(m_time), change.device, change.name,
                                   change.added ? busName(change.bus) : QStringLiteral("removed"));
    const QChar sign = change.added ? QLatin1Char('+') : QChar(0x2212);
    m_model.flags.append({change.added ? TimelineFlag::Kind::Added : TimelineFlag::Kind::Removed,
                          m_time, sign + QLatin1Char(' ') + change.name, title});
    if (change.added)
        return;
    // No release will follow from a device that is gone.
    for (TimelineLane &lane : m_lanes.lanes()) {
        if (lane.device != change.device)
            continue;
        endBar(&lane, m_time);
        if (lane.kind == TimelineLane::Kind::Key)
            m_timing.stop(lane.device, lane.codes.first(), m_time);
    }
}

void TimelineCollector::take(const RecordRead &record)
{
    if (record.type != EV_KEY && record.type != EV_SW)
        return;
    TimelineLane *lane = m_lanes.lane(record.device, record.type, {record.code});
    if (!lane)
        return;
    if (record.value == 0) {
        endBar(lane, m_time);
    } else if (!openBar(lane)) {
        // Even if it is an auto-repeat: the session may have begun while the key was down.
        startBar(lane, m_time);
    } else {
        lane->marks.append(
            {TimelineMark::Kind::Repeat, m_time,
             QStringLiteral("%1: %2 %3")
                 .arg(timelineTime(m_time), lane->label, valueName(record.type, record.value))});
    }
}

void TimelineCollector::take(const DetectorStep &step)
{
    if (step.keys.isEmpty())
        return;
    const int code = step.keys.first();
    switch (step.what) {
    case DetectorStep::What::LongPressDue:
        m_timing.start(step.device, code, m_time, step.due);
        break;
    case DetectorStep::What::LongPressEnded:
        m_timing.cancel(step.device, code, m_time);
        break;
    case DetectorStep::What::FirstKeyWithdrawn:
        withdraw(step);
        break;
    case DetectorStep::What::ChordFound:
    case DetectorStep::What::ChordReleased:
        takeChord(step);
        break;
    case DetectorStep::What::Forgotten:
        forget(step);
        break;
    case DetectorStep::What::Dropped:
        m_lanes.mark(step.device, code, TimelineMark::Kind::Dropped, m_time,
                     QStringLiteral("record dropped"));
        break;
    }
}

void TimelineCollector::withdraw(const DetectorStep &step)
{
    const int code = step.keys.first();
    m_lanes.mark(step.device, code, TimelineMark::Kind::Withdrawn, m_time,
                 QStringLiteral("withdrawn for a chord"));
    TimelineLane *lane = m_lanes.keyLane(step.device, code);
    if (TimelineBar *bar = lane ? openBar(lane) : nullptr)
        bar->withdrawn = m_time;
}

void TimelineCollector::takeChord(const DetectorStep &step)
{
    // The keys' lanes first, so that there is something for the chord's lane to be under.
    for (const int code : step.keys)
        m_lanes.keyLane(step.device, code);
    TimelineLane *chord = m_lanes.lane(step.device, EV_KEY, step.keys);
    if (!chord || chord->kind != TimelineLane::Kind::Chord)
        return;
    endBar(chord, m_time);
    if (step.what == DetectorStep::What::ChordReleased)
        return;
    chord->mapped = step.mapped;
    startBar(chord, m_time);
    m_chords.append({m_time, step});
}

// A chord has ended; a key on its own is still down, and its release will tell.
void TimelineCollector::forget(const DetectorStep &step)
{
    if (TimelineLane *chord =
            step.keys.size() > 1 ? m_lanes.lane(step.device, EV_KEY, step.keys) : nullptr)
        endBar(chord, m_time);
}

void TimelineCollector::take(const EventPublished &event)
{
    // Events whose cause is unknown share one lane.
    TimelineLane *lane = event.codes.isEmpty()
        ? m_lanes.lane({}, 0, {})
        : m_lanes.lane(event.device, event.type, event.codes);
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

void TimelineCollector::take(const IdentifierSelected &selected)
{
    m_model.identifiers.append({m_time, selected.identifier});
}

void TimelineCollector::take(const ExpectationChecked &expectation)
{
    if (expectation.met)
        return;
    QString title = QStringLiteral("%1: %2:%3: failed: %4")
                        .arg(timelineTime(m_time), expectation.file,
                             QString::number(expectation.line), expectation.text);
    if (!expectation.found.isEmpty())
        title += QStringLiteral(", but found ") + expectation.found;
    m_model.flags.append(
        {TimelineFlag::Kind::Failure, m_time, QStringLiteral("✗ ") + expectation.text, title});
}

void TimelineCollector::take(const Remark &remark)
{
    m_model.flags.append({TimelineFlag::Kind::Remark, m_time, remark.text,
                          timelineTime(m_time) + QStringLiteral(": ") + remark.text});
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

void TimelineCollector::finishLanes(qint64 end)
{
    m_timing.finish(end);
    for (TimelineLane &lane : m_lanes.lanes()) {
        // A due mark is added when it is known to have been reached, which is after its time.
        std::stable_sort(
            lane.marks.begin(), lane.marks.end(),
            [](const TimelineMark &a, const TimelineMark &b) { return a.time < b.time; });
        setDueTimes(&lane);
        for (TimelineBar &bar : lane.bars)
            bar.to = bar.isOpen ? end : bar.to;
    }
}

TimelineLink TimelineCollector::linkOf(qint64 time, const DetectorStep &chord,
                                       const QVector<int> &order) const
{
    TimelineLink link{time, {}, {}};
    QVector<QVector<int>> ends{chord.keys};
    for (const int code : chord.keys)
        ends.append(QVector<int>{code});
    for (const QVector<int> &codes : qAsConst(ends)) {
        const int index = m_lanes.indexOf(chord.device, EV_KEY, codes);
        if (index >= 0)
            link.lanes.append(order.indexOf(index));
    }
    std::sort(link.lanes.begin(), link.lanes.end());
    link.title = QStringLiteral("%1: chord %2%3")
                     .arg(timelineTime(time), joinedNames(EV_KEY, chord.keys),
                          chord.mapped ? QString() : QStringLiteral(", no command"));
    return link;
}

TimelineModel TimelineCollector::finished()
{
    std::sort(m_model.activity.begin(), m_model.activity.end());
    finishLanes(m_model.activity.isEmpty() ? 0 : m_model.activity.last());

    const QVector<int> order = m_lanes.drawingOrder();
    for (const int index : order)
        m_model.lanes.append(m_lanes.lanes().at(index));
    for (const auto &[time, step] : qAsConst(m_chords))
        m_model.links.append(linkOf(time, step, order));
    m_model.lanesLeftOut = m_lanes.leftOutCount();
    return m_model;
}

} // namespace

TimelineModel timelineModel(const QVector<SessionEntry> &entries)
{
    TimelineCollector collector;
    for (const SessionEntry &entry : entries)
        collector.add(entry);
    return collector.finished();
}

} // namespace Vorn::Workbench
