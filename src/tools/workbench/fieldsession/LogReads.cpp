#include "LogReads.h"

#include <linux/input.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace Vorn::Workbench {

namespace {

using Outcome = RecordOutcome::What;
using Doubt = LogQueue::Doubt;

constexpr std::size_t maxReads = 4;

} // namespace

LogReads::LogReads(const LineTime *time, const LogDevices *devices, LogOrigins *origins,
                   LogQueue *queue, LogOutcomes *outcomes)
    : m_time(time)
    , m_origins(origins)
    , m_queue(queue)
    , m_outcomes(outcomes)
    , m_twins(time, devices, origins)
{ }

void LogReads::take(const Said::ReadBegun &read)
{
    leave();
    LogRead begun;
    begun.hasDescriptor = true;
    begun.origin = m_origins->ofDescriptor(read.descriptor);
    begun.identifier = m_identifier;
    m_reads.push_back(begun);
}

void LogReads::take(const Said::RecordLogged &logged)
{
    m_hasActivity = true;
    if (m_reads.empty() || m_reads.back().isBegun) {
        leave();
        m_reads.emplace_back();
        m_reads.back().identifier = m_identifier;
    }
    LogRead &read = m_reads.back();
    leaveOld(&read);
    if (!read.origin)
        read.origin = LogOrigins::unnamed();
    const auto record = std::make_shared<LogRecord>();
    record->origin = read.origin;
    record->type = logged.type;
    record->code = logged.code;
    record->value = logged.value;
    record->time = m_time->now;
    // 0 is that of a position that was asked for.
    m_queue->addRecord(record, m_time->wallClock == 0 ? 1 : m_time->wallClock);
    if (logged.type == EV_KEY || logged.type == EV_SW) {
        bool &has = logged.type == EV_KEY ? read.origin->hasKeys : read.origin->hasSwitches;
        has = true;
        read.records.push_back(record);
    } else if (logged.type != EV_SYN) {
        m_queue->addOutcome(m_time->now, record,
                            outcomeOf(Outcome::NotTaken,
                                      QStringLiteral("the library takes EV_KEY and EV_SW only")));
    } else if (logged.code == SYN_DROPPED) {
        m_queue->add(m_time->now,
                     Remark{QStringLiteral("the kernel has dropped records here "
                                           "(SYN_DROPPED); releases may be among them")});
    }
    m_origins->settle(read.origin);
    if (!read.hasDescriptor)
        m_twins.add(record, &read);
}

void LogReads::fail(const QString &path)
{
    if (m_reads.empty() || !m_reads.back().hasDescriptor || !m_reads.back().records.empty())
        return;
    m_origins->nameByPath(m_reads.back().origin, path);
    m_origins->close(*m_reads.back().origin);
}

void LogReads::leave()
{
    std::deque<LogRead> kept;
    for (LogRead &read : m_reads) {
        if (read.isSuspended())
            kept.push_back(read);
        else
            close(&read);
    }
    // A read would wait for ever for a line that the log has lost.
    for (; kept.size() > maxReads; kept.pop_front())
        close(&kept.front());
    m_reads = std::move(kept);
}

void LogReads::finish()
{
    while (!m_reads.empty()) {
        close(&m_reads.front());
        m_reads.pop_front();
    }
}

LogHand *LogReads::hand()
{
    return m_reads.empty() || !m_reads.back().hand ? nullptr : &*m_reads.back().hand;
}

LogReads::Cause LogReads::causeOf(std::optional<int> code, KeyValue value)
{
    m_hasActivity = true;
    // An outer read goes on only when the slots within it have returned.
    for (auto read = m_reads.rbegin(); read != m_reads.rend(); ++read) {
        if (const LogRecordPtr record = read->nextKey(code, value)) {
            LogRead *const found = &*read;
            closeAfter(found);
            m_outcomes->finishHand(found);
            record->isTaken = true;
            found->isBegun = true;
            return {record->origin, found, record};
        }
    }
    if (m_reads.empty())
        m_reads.emplace_back();
    LogRead *read = &m_reads.back();
    m_outcomes->finishHand(read);
    if (const LogRecordPtr record = m_twins.takeBack(code, value)) {
        read->isBegun = true;
        return {record->origin, read, record};
    }
    // The log has no line of the record.
    if (!read->origin || !read->hasDescriptor)
        read->origin = LogOrigins::unnamed();
    read->isBegun = true;
    read->identifier = m_identifier;
    m_origins->settle(read->origin);
    return {read->origin, read, nullptr};
}

void LogReads::hold(const Cause &cause, LogHand hand) const
{
    hand.record = cause.record;
    hand.origin = cause.origin;
    hand.time = m_time->now;
    cause.read->hand = std::move(hand);
}

void LogReads::closeAfter(const LogRead *read)
{
    while (&m_reads.back() != read) {
        close(&m_reads.back());
        m_reads.pop_back();
    }
}

void LogReads::close(LogRead *read)
{
    m_outcomes->finishHand(read);
    for (const LogRecordPtr &record : read->records)
        untaken(record, *read);
    read->records.clear();
}

/// Without descriptors, what belongs to one read shows in the times only.
void LogReads::leaveOld(LogRead *read)
{
    while (!read->hasDescriptor && !read->records.empty()
           && (read->records.size() >= LogRead::maxRecords
               || m_time->now - read->records.front()->time > LineTime::atOnce))
    {
        untaken(read->records.front(), *read);
        read->records.pop_front();
    }
}

void LogReads::untaken(const LogRecordPtr &record, const LogRead &read)
{
    if (record->isTaken)
        return;
    const bool mayBeTwin = !record->origin->descriptor() && !record->isPaired && m_twins.mayExist();
    if (record->type == EV_KEY && record->value != 0 && !mayBeTwin)
        m_outcomes->leaveWaiting(m_time->now, *record->origin, record->code);
    const bool isPassedOver =
        record->type == EV_KEY
        && std::any_of(read.records.begin(), read.records.end(), [&](const LogRecordPtr &other) {
               return other->isTaken && other->type == EV_KEY && other->origin == record->origin;
           });
    if (mayBeTwin && record->type == EV_KEY && !isPassedOver)
        m_queue->addOutcome(m_time->before, record,
                            outcomeOf(Outcome::Open,
                                      QStringLiteral("no line of a handler follows it; if both "
                                                     "listeners of a device have read it, this is "
                                                     "said of the other line")));
    else if (isPassedOver)
        m_queue->addOutcome(
            m_time->before, record,
            outcomeOf(Outcome::Open,
                      QStringLiteral("the log has no line of the detector about it")));
    else
        m_queue->addOutcome(m_time->before, record, outcomeOf(Outcome::Open, {}), Doubt::Unread);
}

} // namespace Vorn::Workbench
