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

QString eventText(const LogEvent &event)
{
    return commandName(event.command) + QLatin1Char(' ') + stateName(event.state);
}

EventPublished publishedOf(const LogEvent &event)
{
    EventPublished published;
    published.command = event.command;
    published.state = event.state;
    return published;
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

void LogEvents::take(const Said::EventOnBus &bus)
{
    LogEvent event{static_cast<InputEvent::Command>(bus.command), bus.state, {}};
    if (const std::optional<Said::EventReported> report = std::exchange(m_report, std::nullopt))
        event.handler = report->handler;
    publish(event);
}

void LogEvents::finishReport()
{
    if (const std::optional<Said::EventReported> report = std::exchange(m_report, std::nullopt))
        publish({report->command, report->state, report->handler});
}

void LogEvents::publish(const LogEvent &event)
{
    m_hasActivity = true;
    // The event of a pair comes at once, or there is none.
    LogHand *const last = m_reads->hand();
    if (last && last->hasPairPassed()
        && !(last->accepts(event.command, event.state) && mayBeOf(*last->origin, event)))
        m_outcomes->tellChord(last, false);
    if (event.state == InputEvent::KeyLongPress)
        publishLongPress(event);
    else if (event.state == InputEvent::SwitchEnabled || event.state == InputEvent::SwitchDisabled)
        publishSwitch(event);
    else if (LogHand *hand = handFor(event))
        publishFrom(hand, event);
    else
        publishLoose(event);
}

LogHand *LogEvents::handFor(const LogEvent &event)
{
    // Handlers report each of their events, so the others are the product's own.
    if (m_coverage->hasReports() && !event.handler)
        return nullptr;
    for (auto read = m_reads->rbegin(); read != m_reads->rend(); ++read) {
        if (!read->hand || !read->hand->accepts(event.command, event.state)
            || !mayBeOf(*read->hand->origin, event))
            continue;
        const LogHand &hand = *read->hand;
        if (!event.handler && hand.events.isEmpty() && m_time->now - hand.time > LineTime::atOnce)
            continue;
        if (LogHand *outer = outerClick(read, event)) {
            for (LogHand *each : {&*read->hand, outer})
                each->openEvent = eventText(event);
            return nullptr;
        }
        LogHand *const found = &*read->hand;
        m_reads->closeAfter(&*read);
        nameBy(found->origin, event);
        return found;
    }
    return m_coverage->hasDetectors() ? nullptr : handByOrder(event);
}

/// The record whose click a slot may have held up until now, so that its release looks like that of
/// the record in hand.
LogHand *LogEvents::outerClick(const LogReads::ReverseIterator &inner, const LogEvent &event)
{
    if (event.state != InputEvent::KeyReleased || inner->hand->click)
        return nullptr;
    const auto outer = std::find_if(std::next(inner), m_reads->rend(), [&](const LogRead &read) {
        return read.hand && read.hand->click == event.command && mayBeOf(*read.hand->origin, event);
    });
    return outer == m_reads->rend() ? nullptr : &*outer->hand;
}

/// The key that an event comes of, where no line of a detector says it: the only one that can be.
LogHand *LogEvents::handByOrder(const LogEvent &event)
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
            || m_time->now - record->time > LineTime::atOnce
            || !hand.accepts(event.command, event.state))
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
bool LogEvents::mayBeOf(const LogOrigin &origin, const LogEvent &event) const
{
    if (!event.handler || !origin.isKnown())
        return true;
    const QVector<QPair<QString, QString>> names = handlerNames(*event.handler);
    return std::any_of(names.begin(), names.end(), [&](const QPair<QString, QString> &name) {
        if (!origin.device())
            return origin.text() == name.first;
        const LogDevicePtr device = m_origins->named(name.first);
        return !device || device->path == origin.device()->path;
    });
}

void LogEvents::nameBy(const LogOriginPtr &origin, const LogEvent &event)
{
    if (!event.handler || origin->isKnown())
        return;
    const QVector<QPair<QString, QString>> names = handlerNames(*event.handler);
    for (const auto &name : names) {
        if (names.size() == 1 || m_origins->named(name.first))
            m_origins->nameBy(origin, name.first);
    }
}

void LogEvents::publishFrom(LogHand *hand, const LogEvent &event)
{
    EventPublished published = publishedOf(event);
    published.type = EV_KEY;
    published.codes = hand->codes;
    if (hand->kind == Kind::ChordBegun && !hand->isPairPassedOn
        && event.state == InputEvent::KeyReleased)
    {
        published.codes = {hand->codes.first()};
    } else if (hand->isPair()) {
        hand->hasPairEvent = true;
        published.codes = pairOf(*hand, event.command);
        if (hand->kind == Kind::ChordBegun)
            m_outcomes->tellChord(hand, published.codes.size() == 2);
    } else if (hand->detector) {
        m_detectors->learn(*hand->detector, hand->code, event.command);
    }
    m_queue->add(m_time->now, published, hand->origin);
    hand->events += eventText(event);
    hand->time = m_time->now;
    const bool isClick = hand->value == 0 && event.state == InputEvent::KeyPressed;
    hand->click = isClick ? std::make_optional(event.command) : std::nullopt;
}

/// Of a pair without a command the library publishes the second key. Which of the two it was the
/// log does not say; that the key publishes the same alone is a sign.
QVector<int> LogEvents::pairOf(const LogHand &hand, InputEvent::Command command) const
{
    const int second = hand.codes.last();
    return m_detectors->commandOf(*hand.detector, second) == command ? QVector<int>{second}
                                                                     : hand.codes;
}

void LogEvents::publishSwitch(const LogEvent &event)
{
    if (!m_coverage->hasReports() || event.handler) {
        for (auto read = m_reads->rbegin(); read != m_reads->rend(); ++read) {
            const LogRecordPtr record = read->nextSwitch(event.state == InputEvent::SwitchEnabled);
            if (!record || !mayBeOf(*record->origin, event))
                continue;
            LogRead *const found = &*read;
            m_reads->closeAfter(found);
            record->isTaken = true;
            found->isBegun = true;
            nameBy(record->origin, event);
            EventPublished published = publishedOf(event);
            published.type = EV_SW;
            published.codes = {record->code};
            m_queue->add(m_time->now, published, record->origin);
            m_queue->addOutcome(m_time->now, record,
                                outcomeOf(Outcome::Published, {}, {eventText(event)}));
            return;
        }
    }
    // A position that was asked for.
    publishLoose(event);
}

/// The only key that a long press can be of.
std::optional<LogEvents::Key> LogEvents::keyHeld(const LogEvent &event) const
{
    if (m_coverage->hasReports() && !event.handler)
        return std::nullopt;
    QVector<Key> all;
    QVector<Key> learnt;
    for (const LogDetectorPtr &detector : m_detectors->all()) {
        if (!mayBeOf(*detector->origin, event))
            continue;
        const QVector<int> codes = detector->codesTimed();
        for (const int code : codes) {
            all += {detector, code};
            if (m_detectors->commandOf(*detector, code) == event.command)
                learnt += {detector, code};
        }
    }
    const QVector<Key> &left = learnt.isEmpty() ? all : learnt;
    return left.size() == 1 ? std::make_optional(left.first()) : std::nullopt;
}

void LogEvents::publishLongPress(const LogEvent &event)
{
    const std::optional<Key> key = keyHeld(event);
    if (!key) {
        publishLoose(event);
        return;
    }
    // The press may still be in hand, as nothing need have been logged since.
    for (LogRead &read : *m_reads) {
        if (read.hand && read.hand->detector == key->detector && read.hand->code == key->code
            && read.hand->events.isEmpty())
            m_outcomes->finishHand(&read);
    }
    nameBy(key->detector->origin, event);
    m_detectors->learn(*key->detector, key->code, event.command);
    m_outcomes->tellWaiting(m_time->now, key->detector, key->code, Outcome::Held,
                            QStringLiteral("held back until the release or a long press"));
    EventPublished published = publishedOf(event);
    published.type = EV_KEY;
    published.codes = {key->code};
    m_queue->add(m_time->now, published, key->detector->origin);
}

/// An event that no record is known to be the cause of.
void LogEvents::publishLoose(const LogEvent &event)
{
    const LogOriginPtr origin = LogOrigins::unnamed();
    nameBy(origin, event);
    m_queue->add(m_time->now, publishedOf(event), origin->isKnown() ? origin : nullptr);
}

} // namespace Vorn::Workbench
