#include "LogEvents.h"

#include "CommandNames.h"

#include <linux/input.h>

#include <algorithm>
#include <iterator>
#include <utility>
#include <variant>

namespace Vorn::Workbench {

namespace {

using Kind = LogHand::Kind;
using Outcome = RecordOutcome::What;

QString eventText(InputEvent::Command command, InputEvent::State state)
{
    return commandName(command) + QLatin1Char(' ') + stateName(state);
}

} // namespace

LogEvents::LogEvents(const LineTime *time, const LogCoverage *coverage, LogOrigins *origins,
                     LogDetectors *detectors, LogReads *reads, LogQueue *queue,
                     LogOutcomes *outcomes)
    : m_time(time)
    , m_coverage(coverage)
    , m_origins(origins)
    , m_detectors(detectors)
    , m_reads(reads)
    , m_queue(queue)
    , m_outcomes(outcomes)
{ }

bool LogEvents::continuesReport(const LibraryMessage &message) const
{
    const auto *bus = std::get_if<Said::EventOnBus>(&message);
    return m_report && bus && bus->command == m_report->command && bus->state == m_report->state;
}

void LogEvents::take(const Said::EventReported &report)
{
    m_report = report;
}

void LogEvents::take(const Said::EventOnBus &event)
{
    publish(static_cast<InputEvent::Command>(event.command), event.state,
            std::exchange(m_report, std::nullopt));
}

void LogEvents::finishReport()
{
    if (const std::optional<Said::EventReported> report = std::exchange(m_report, std::nullopt))
        publish(report->command, report->state, report);
}

void LogEvents::publish(InputEvent::Command command, InputEvent::State state,
                        const std::optional<Said::EventReported> &report)
{
    m_hasActivity = true;
    // The event of a pair comes at once, or there is none.
    LogHand *last = m_reads->hand();
    if (last && last->hasPairPassed()
        && !(last->accepts(command, state) && mayBeOf(*last->origin, report)))
        m_outcomes->tellChord(last, false);
    if (state == InputEvent::KeyLongPress)
        publishLongPress(command, report);
    else if (state == InputEvent::SwitchEnabled || state == InputEvent::SwitchDisabled)
        publishSwitch(command, state, report);
    else if (LogHand *hand = handFor(command, state, report))
        publishFrom(hand, command, state);
    else
        publishLoose(command, state, report);
}

LogHand *LogEvents::handFor(InputEvent::Command command, InputEvent::State state,
                            const std::optional<Said::EventReported> &report)
{
    // Handlers report each of their events, so the others are the product's own.
    if (m_coverage->hasReports() && !report)
        return nullptr;
    for (auto read = m_reads->rbegin(); read != m_reads->rend(); ++read) {
        if (!read->hand || !read->hand->accepts(command, state)
            || !mayBeOf(*read->hand->origin, report))
            continue;
        const LogHand &hand = *read->hand;
        if (!report && hand.events.isEmpty() && m_time->now - hand.time > LineTime::atOnce)
            continue;
        if (LogHand *outer = outerClick(read, command, state, report)) {
            for (LogHand *each : {&*read->hand, outer})
                each->openEvent = eventText(command, state);
            return nullptr;
        }
        LogHand *const found = &*read->hand;
        m_reads->closeAfter(&*read);
        nameBy(found->origin, report);
        return found;
    }
    return m_coverage->hasDetectors() ? nullptr : handByOrder(command, state);
}

/// The record whose click a slot may have held up until now, so that its release looks like that of
/// the record in hand.
LogHand *LogEvents::outerClick(const LogReads::ReverseIterator &inner, InputEvent::Command command,
                               InputEvent::State state,
                               const std::optional<Said::EventReported> &report)
{
    if (state != InputEvent::KeyReleased || inner->hand->click)
        return nullptr;
    const auto outer = std::find_if(std::next(inner), m_reads->rend(), [&](const LogRead &read) {
        return read.hand && read.hand->click == command && mayBeOf(*read.hand->origin, report);
    });
    return outer == m_reads->rend() ? nullptr : &*outer->hand;
}

/// The key that an event comes of, where no line of a detector says it: the only one that can be.
LogHand *LogEvents::handByOrder(InputEvent::Command command, InputEvent::State state)
{
    LogRead *const read = m_reads->last();
    if (!read)
        return nullptr;
    LogRecordPtr only;
    for (const LogRecordPtr &record : read->records) {
        LogHand hand;
        hand.kind = Kind::Unseen;
        hand.value = record->value;
        if (record->type != EV_KEY || record->isTaken
            || m_time->now - record->time > LineTime::atOnce || !hand.accepts(command, state))
            continue;
        if (only)
            return nullptr;
        only = record;
    }
    if (!only)
        return nullptr;
    m_outcomes->finishHand(read);
    only->isTaken = true;
    read->isBegun = true;
    LogHand hand;
    hand.kind = Kind::Unseen;
    hand.code = only->code;
    hand.value = only->value;
    hand.codes = {only->code};
    m_reads->hold({only->origin, read, only}, hand);
    return &*read->hand;
}

/// Whether what a handler has reported may be of that origin, by the name of its device.
bool LogEvents::mayBeOf(const LogOrigin &origin,
                        const std::optional<Said::EventReported> &report) const
{
    if (!report || !origin.isKnown())
        return true;
    const QVector<QPair<QString, QString>> names = handlerNames(report->handler);
    return std::any_of(names.begin(), names.end(), [&](const QPair<QString, QString> &name) {
        if (!origin.device())
            return origin.text() == name.first;
        const LogDevicePtr device = m_origins->named(name.first);
        return !device || device->path == origin.device()->path;
    });
}

void LogEvents::nameBy(const LogOriginPtr &origin, const std::optional<Said::EventReported> &report)
{
    if (!report || origin->isKnown())
        return;
    const QVector<QPair<QString, QString>> names = handlerNames(report->handler);
    for (const auto &name : names) {
        if (names.size() == 1 || m_origins->named(name.first))
            m_origins->nameBy(origin, name.first);
    }
}

void LogEvents::publishFrom(LogHand *hand, InputEvent::Command command, InputEvent::State state)
{
    EventPublished event;
    event.command = command;
    event.state = state;
    event.type = EV_KEY;
    event.codes = hand->codes;
    if (hand->kind == Kind::ChordBegun && !hand->isPairPassedOn && state == InputEvent::KeyReleased)
    {
        event.codes = {hand->codes.first()};
    } else if (hand->isPair()) {
        hand->hasPairEvent = true;
        event.codes = pairOf(*hand, command);
        if (hand->kind == Kind::ChordBegun)
            m_outcomes->tellChord(hand, event.codes.size() == 2);
    } else if (hand->detector) {
        m_detectors->learn(*hand->detector, hand->code, command);
    }
    m_queue->add(m_time->now, event, hand->origin);
    hand->events += eventText(command, state);
    hand->time = m_time->now;
    const bool isClick = hand->value == 0 && state == InputEvent::KeyPressed;
    hand->click = isClick ? std::make_optional(command) : std::nullopt;
}

/// Of a pair without a command the library publishes the second key. Which of the two it was the
/// log does not say; that the key publishes the same alone is a sign.
QVector<int> LogEvents::pairOf(const LogHand &hand, InputEvent::Command command) const
{
    const int second = hand.codes.last();
    return m_detectors->commandOf(*hand.detector, second) == command ? QVector<int>{second}
                                                                     : hand.codes;
}

void LogEvents::publishSwitch(InputEvent::Command command, InputEvent::State state,
                              const std::optional<Said::EventReported> &report)
{
    EventPublished event;
    event.command = command;
    event.state = state;
    event.type = EV_SW;
    if (!m_coverage->hasReports() || report) {
        for (auto read = m_reads->rbegin(); read != m_reads->rend(); ++read) {
            const LogRecordPtr record = read->nextSwitch(state == InputEvent::SwitchEnabled);
            if (!record || !mayBeOf(*record->origin, report))
                continue;
            LogRead *const found = &*read;
            m_reads->closeAfter(found);
            record->isTaken = true;
            found->isBegun = true;
            nameBy(record->origin, report);
            event.codes = {record->code};
            m_queue->add(m_time->now, event, record->origin);
            m_queue->addOutcome(m_time->now, record,
                                outcomeOf(Outcome::Published, {}, {eventText(command, state)}));
            return;
        }
    }
    // A position that was asked for.
    publishLoose(command, state, report);
}

void LogEvents::publishLongPress(InputEvent::Command command,
                                 const std::optional<Said::EventReported> &report)
{
    struct Candidate
    {
        LogDetectorPtr detector;
        int code;
    };
    QVector<Candidate> all;
    QVector<Candidate> learnt;
    for (const LogDetectorPtr &detector : m_detectors->all()) {
        if (!mayBeOf(*detector->origin, report))
            continue;
        const QVector<int> codes = detector->codesTimed();
        for (const int code : codes) {
            all += {detector, code};
            if (m_detectors->commandOf(*detector, code) == command)
                learnt += {detector, code};
        }
    }
    const QVector<Candidate> &left = learnt.isEmpty() ? all : learnt;
    if (left.size() != 1 || (m_coverage->hasReports() && !report)) {
        publishLoose(command, InputEvent::KeyLongPress, report);
        return;
    }
    const Candidate key = left.first();
    // The press may still be in hand, as nothing need have been logged since.
    for (LogRead &read : *m_reads) {
        if (read.hand && read.hand->detector == key.detector && read.hand->code == key.code
            && read.hand->events.isEmpty())
            m_outcomes->finishHand(&read);
    }
    nameBy(key.detector->origin, report);
    m_detectors->learn(*key.detector, key.code, command);
    m_outcomes->tellWaiting(m_time->now, key.detector, key.code, Outcome::Held,
                            QStringLiteral("held back until the release or a long press"));
    EventPublished event;
    event.command = command;
    event.state = InputEvent::KeyLongPress;
    event.type = EV_KEY;
    event.codes = {key.code};
    m_queue->add(m_time->now, event, key.detector->origin);
}

/// An event that no record is known to be the cause of.
void LogEvents::publishLoose(InputEvent::Command command, InputEvent::State state,
                             const std::optional<Said::EventReported> &report)
{
    EventPublished event;
    event.command = command;
    event.state = state;
    const LogOriginPtr origin = LogOrigins::unnamed();
    nameBy(origin, report);
    m_queue->add(m_time->now, event, origin->isKnown() ? origin : nullptr);
}

} // namespace Vorn::Workbench
