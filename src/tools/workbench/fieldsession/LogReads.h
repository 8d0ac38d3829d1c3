#ifndef VORN_WORKBENCH_LOGREADS_H
#define VORN_WORKBENCH_LOGREADS_H

#include "LibraryMessage.h"
#include "LineTime.h"
#include "LogDevices.h"
#include "LogOrigins.h"
#include "LogOutcomes.h"
#include "LogQueue.h"
#include "LogRead.h"
#include "LogRecord.h"
#include "LogTwins.h"

#include <QString>

#include <deque>
#include <optional>

namespace Vorn::Workbench {

/// What the listeners read, and which record a line of a detector is about.
///
/// Most reads are done before the next one begins. A slot of the product that runs an event loop
/// holds up the read whose record it is called for:
/// ```
/// read 1: record ─▶ event ─▶ slot ────────────────────▶ returns ─▶ record …
/// read 2:                         record ─▶ event
/// ```
class LogReads
{
public:
    /// What a line of a detector is about.
    struct Cause
    {
        LogOriginPtr origin;
        LogRead *read = nullptr;
        LogRecordPtr record; ///< null if the log has none
    };

    LogReads(const LineTime *time, const LogDevices *devices, LogOrigins *origins, LogQueue *queue,
             LogOutcomes *outcomes);

    /// @param identifier for which keys are routed from now on
    void select(const QString &identifier) { m_identifier = identifier; }
    const QString &identifier() const { return m_identifier; }

    void take(const Said::ReadBegun &read);
    void take(const Said::RecordLogged &logged);
    /// Nothing could be read.
    void fail(const QString &path);
    /// Before another read: those that are done are closed.
    void leave();
    void finish();

    /// Whether there has been a record, or a line of a detector about one.
    bool hasActivity() const { return m_hasActivity; }

    /// Takes the record that a line of a detector is about, and finishes what was in hand.
    /// @param code none: any
    Cause causeOf(std::optional<int> code, KeyValue value);
    void hold(const Cause &cause, LogHand hand) const;

    /// @name Those that are not closed
    /// The last one is in progress; a slot has held up the others.
    /// @{
    using Iterator = std::deque<LogRead>::iterator;
    using ReverseIterator = std::deque<LogRead>::reverse_iterator;
    Iterator begin() { return m_reads.begin(); }
    Iterator end() { return m_reads.end(); }
    ReverseIterator rbegin() { return m_reads.rbegin(); }
    ReverseIterator rend() { return m_reads.rend(); }
    /// Null if there is none.
    LogRead *last() { return m_reads.empty() ? nullptr : &m_reads.back(); }
    /// That of the last one; null if there is none.
    LogHand *hand();
    /// A slot that ran an event loop has returned: @p read is in progress again.
    void closeAfter(const LogRead *read);
    /// @}

private:
    void close(LogRead *read);
    void leaveOld(LogRead *read);
    void untaken(const LogRecordPtr &record, const LogRead &read);

    const LineTime *const m_time;
    LogOrigins *const m_origins;
    LogQueue *const m_queue;
    LogOutcomes *const m_outcomes;
    LogTwins m_twins;
    std::deque<LogRead> m_reads;
    QString m_identifier;
    bool m_hasActivity = false;
};

} // namespace Vorn::Workbench

#endif
