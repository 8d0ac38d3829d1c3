#include "TimelineCollector.h"

#include "BusNames.h"
#include "Quoting.h"
#include "TimelineSvg.h"
#include "TimelineText.h"

#include <linux/input.h>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

/// Of a text in a session, which may be megabytes long.
constexpr int maxTextLength = 1000;
/// Marks that may still be added to a picture that is full.
constexpr int lateMarks = maxTimelineLanes;

QString bounded(const QString &text)
{
    return TimelineSvg::shortened(printable(text), maxTextLength);
}

TimelineBar *openBar(TimelineLane *lane)
{
    const bool isOpen = !lane->bars.isEmpty() && lane->bars.last().isOpen;
    return isOpen ? &lane->bars.last() : nullptr;
}

template <typename Timed>
void sortByTime(QVector<Timed> *list)
{
    std::stable_sort(list->begin(), list->end(),
                     [](const Timed &a, const Timed &b) { return a.time < b.time; });
}

} // namespace

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

TimelineCollector::TimelineCollector(TimelineSpan wanted)
    : m_wanted(wanted)
    , m_timing({[this](const QString &device, int code, qint64 from, qint64 to) {
                    addSpan(device, code, {from, to});
                },
                [this](const QString &device, int code, qint64 due) {
                    addMark(device, code, TimelineMark::Kind::Due, due);
                }})
{ }

void TimelineCollector::add(const SessionEntry &entry)
{
    m_time = entry.time;
    if (!m_session)
        m_session = TimelineSpan{m_time, m_time};
    m_session = TimelineSpan{std::min(m_session->from, m_time), std::max(m_session->to, m_time)};
    if (isWanted(m_time) && !m_cut) {
        if (m_kept >= maxTimelineMarks)
            m_cut = m_time;
        // A break is drawn between stretches of activity, so it counts as well.
        m_kept += m_activity.isNew(m_time) ? 1 : 0;
        m_activity.add(m_time);
    }
    std::visit([this](const auto &what) { take(what); }, entry.what);
}

void TimelineCollector::extendTo(qint64 end)
{
    if (!m_session)
        m_session = TimelineSpan();
    m_session->to = std::max(m_session->to, end);
}

bool TimelineCollector::isWanted(qint64 time) const
{
    return time >= m_wanted.from && time <= m_wanted.to;
}

/// Whether there is room for one more element, which is then counted; counts those left out, too.
bool TimelineCollector::mayKeep(qint64 time)
{
    if (!isWanted(time))
        return false;
    // That a long press was due is known only later.
    const bool isBeforeCut = m_cut && time < *m_cut && m_kept < maxTimelineMarks + lateMarks;
    if (!m_cut || isBeforeCut) {
        ++m_kept;
        return true;
    }
    ++m_model.marksLeftOut;
    return false;
}

/// Whether nothing that begins now is in the picture.
bool TimelineCollector::isOver() const
{
    return m_cut || m_time > m_wanted.to;
}

/// Null also for a lane that would come too late for the picture.
TimelineLane *TimelineCollector::laneAt(const QString &device, int type, const QVector<int> &codes)
{
    return isOver() ? m_lanes.find(device, type, codes) : m_lanes.lane(device, type, codes);
}

void TimelineCollector::startBar(TimelineLane *lane, qint64 time, bool wasOpen)
{
    // A bar from before the picture may reach into it.
    if (time < m_wanted.from || mayKeep(time))
        lane->bars.append({time, time, true, wasOpen, std::nullopt});
}

void TimelineCollector::endBar(TimelineLane *lane, qint64 time) const
{
    TimelineBar *bar = openBar(lane);
    if (!bar)
        return;
    bar->to = time;
    bar->isOpen = false;
    if (time < m_wanted.from)
        lane->bars.removeLast();
}

void TimelineCollector::addMark(const QString &device, int code, TimelineMark::Kind kind,
                                qint64 time, int value)
{
    TimelineLane *lane = laneAt(device, EV_KEY, {code});
    if ((lane || m_cut) && mayKeep(time))
        lane->marks.append({kind, time, value});
}

void TimelineCollector::addSpan(const QString &device, int code, TimelineSpan span)
{
    if (span.to < m_wanted.from || span.from > m_wanted.to || (m_cut && span.from >= *m_cut))
        return;
    ++m_kept;
    if (TimelineLane *lane = laneAt(device, EV_KEY, {code}))
        lane->timed.append(span);
}

void TimelineCollector::addFlag(TimelineFlag::Kind kind, const QString &label, const QString &title)
{
    if (mayKeep(m_time))
        m_model.flags.append(
            {kind, m_time, bounded(label), timelineTime(m_time) + QStringLiteral(": ") + title});
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
    const QString name = bounded(change.name);
    m_lanes.setDeviceName(change.device, name);
    const QString detail = change.added ? busName(change.bus) : QStringLiteral("removed");
    const QChar sign = change.added ? QLatin1Char('+') : QChar(0x2212);
    addFlag(change.added ? TimelineFlag::Kind::Added : TimelineFlag::Kind::Removed,
            sign + QLatin1Char(' ') + name,
            QStringLiteral("%1 %2 (%3)").arg(bounded(change.device), name, detail));
    m_added.insert(change.device, m_time);
    if (change.added)
        return;
    // No release will follow from a device that is gone.
    for (TimelineLane &lane : m_lanes.lanes()) {
        if (lane.device != change.device)
            continue;
        endBar(&lane, m_time);
        m_knownSwitches.remove({lane.device, lane.codes.value(0)});
    }
    m_timing.endAll(change.device, m_time);
}

void TimelineCollector::take(const RecordRead &record)
{
    if (record.type != EV_KEY && record.type != EV_SW)
        return;
    TimelineLane *lane = laneAt(record.device, record.type, {record.code});
    if (!lane) {
        if (m_cut && record.value != 0)
            static_cast<void>(mayKeep(m_time));
        return;
    }
    if (record.type == EV_SW)
        takeSwitch(record, lane);
    if (record.value == 0) {
        endBar(lane, m_time);
    } else if (!openBar(lane)) {
        // Even if it is an auto-repeat: the session may have begun while the key was down.
        startBar(lane, m_time);
    } else if (mayKeep(m_time)) {
        lane->marks.append({TimelineMark::Kind::Repeat, m_time, record.value});
    }
}

void TimelineCollector::takeSwitch(const RecordRead &record, TimelineLane *lane)
{
    const Codes codes(record.device, record.code);
    if (m_knownSwitches.contains(codes))
        return;
    m_knownSwitches.insert(codes);
    // The kernel reports changes only, so a switch that goes off was on. A record without a stamp
    // is not the kernel's: the library asked for the position.
    if (record.value == 0 && record.stamp != 0)
        startBar(lane, m_added.value(record.device, session().from), true);
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
        m_timing.end(step.device, code, m_time);
        break;
    case DetectorStep::What::FirstKeyWithdrawn:
        withdraw(step, TimelineMark::Kind::Withdrawn);
        break;
    case DetectorStep::What::ChordFound:
    case DetectorStep::What::ChordReleased:
        takeChord(step);
        break;
    case DetectorStep::What::Forgotten:
        forget(step);
        break;
    case DetectorStep::What::Dropped:
        addMark(step.device, code, TimelineMark::Kind::Dropped, m_time);
        break;
    }
}

void TimelineCollector::withdraw(const DetectorStep &step, TimelineMark::Kind kind)
{
    const int code = step.keys.first();
    addMark(step.device, code, kind, m_time);
    TimelineLane *lane = laneAt(step.device, EV_KEY, {code});
    TimelineBar *bar = lane ? openBar(lane) : nullptr;
    if (bar && !bar->withdrawn)
        bar->withdrawn = m_time;
}

void TimelineCollector::takeChord(const DetectorStep &step)
{
    // The keys' lanes first, so that there is something for the chord's lane to be under.
    for (const int code : step.keys)
        laneAt(step.device, EV_KEY, {code});
    const bool isFound = step.what == DetectorStep::What::ChordFound;
    TimelineLane *chord = laneAt(step.device, EV_KEY, step.keys);
    if (!chord || chord->kind != TimelineLane::Kind::Chord) {
        if (m_cut && isFound)
            static_cast<void>(mayKeep(m_time));
        return;
    }
    endBar(chord, m_time);
    if (!isFound)
        return;
    chord->mapped = step.mapped;
    startBar(chord, m_time);
    if (mayKeep(m_time))
        m_chords.append({m_time, step});
}

// A chord has ended; a key on its own is still down, but its release will do nothing.
void TimelineCollector::forget(const DetectorStep &step)
{
    if (step.keys.size() == 1) {
        withdraw(step, TimelineMark::Kind::Forgotten);
    } else if (TimelineLane *chord = laneAt(step.device, EV_KEY, step.keys)) {
        endBar(chord, m_time);
    }
}

void TimelineCollector::take(const EventPublished &event)
{
    // Events whose cause is unknown share one lane.
    TimelineLane *lane =
        event.codes.isEmpty() ? laneAt({}, 0, {}) : laneAt(event.device, event.type, event.codes);
    if ((lane || m_cut) && mayKeep(m_time)) {
        TimelineEvent taken{m_time, event.command, event.state, event.bus, event.latency};
        // A chord is timed by one of its keys.
        for (const int code : event.codes) {
            if (taken.due() && !taken.stated)
                taken.stated = m_timing.stated(event.device, code, *taken.due());
        }
        lane->events.append(taken);
    }
    const Codes codes(event.device, event.codes.value(0));
    if (!lane || lane->kind != TimelineLane::Kind::Switch || m_knownSwitches.contains(codes))
        return;
    // Its position was queried when the device was added.
    m_knownSwitches.insert(codes);
    if (event.state == InputEvent::SwitchEnabled && !openBar(lane))
        startBar(lane, m_time);
}

void TimelineCollector::take(const IdentifierSelected &selected)
{
    // The one selected before the picture begins is still selected in it.
    if (m_time < m_wanted.from)
        m_model.identifiers = {{m_time, bounded(selected.identifier)}};
    else if (mayKeep(m_time))
        m_model.identifiers.append({m_time, bounded(selected.identifier)});
}

void TimelineCollector::take(const ExpectationChecked &expectation)
{
    if (expectation.met)
        return;
    QString title = QStringLiteral("%1:%2: failed: %3")
                        .arg(bounded(expectation.file), QString::number(expectation.line),
                             bounded(expectation.text));
    if (!expectation.found.isEmpty())
        title += QStringLiteral(", but found ") + bounded(expectation.found);
    addFlag(TimelineFlag::Kind::Failure, QStringLiteral("✗ ") + expectation.text, title);
}

void TimelineCollector::take(const Remark &remark)
{
    addFlag(TimelineFlag::Kind::Remark, remark.text, bounded(remark.text));
}

void TimelineCollector::finishLanes(qint64 end)
{
    m_timing.finish(end);
    for (TimelineLane &lane : m_lanes.lanes()) {
        // A due mark is added when it is known to have been reached, which is after its time.
        sortByTime(&lane.marks);
        sortByTime(&lane.events);
        for (TimelineBar &bar : lane.bars)
            bar.to = bar.isOpen ? end : bar.to;
    }
    sortByTime(&m_model.flags);
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
            link.lanes.append(static_cast<int>(order.indexOf(index)));
    }
    std::sort(link.lanes.begin(), link.lanes.end());
    link.title = QStringLiteral("%1: chord %2%3")
                     .arg(timelineTime(time), joinedNames(EV_KEY, chord.keys),
                          chord.mapped ? QString() : QStringLiteral(", no command"));
    return link;
}

TimelineModel TimelineCollector::finished()
{
    m_model.session = session();
    m_model.shown = {std::max(m_wanted.from, m_model.session.from),
                     std::min(m_wanted.to, m_model.session.to)};
    if (m_cut && m_model.marksLeftOut > 0)
        m_model.shown.to = std::min(m_model.shown.to, *m_cut);
    finishLanes(m_model.session.to);
    m_model.activity = m_activity.spans();

    const QVector<int> order = m_lanes.drawingOrder();
    for (const int index : order)
        m_model.lanes.append(m_lanes.lanes().at(index));
    for (const auto &[time, step] : qAsConst(m_chords))
        m_model.links.append(linkOf(time, step, order));
    m_model.lanesLeftOut = m_lanes.leftOutCount();
    return m_model;
}

} // namespace Vorn::Workbench
