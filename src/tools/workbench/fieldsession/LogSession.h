#ifndef VORN_WORKBENCH_LOGSESSION_H
#define VORN_WORKBENCH_LOGSESSION_H

#include "LibraryMessage.h"
#include "LineTime.h"
#include "LogCoverage.h"
#include "LogDetectors.h"
#include "LogDevices.h"
#include "LogEvents.h"
#include "LogKeys.h"
#include "LogOrigins.h"
#include "LogOutcomes.h"
#include "LogQueue.h"
#include "LogReads.h"
#include "Session.h"

#include <QString>

namespace Vorn::Workbench {

/// The session of one process, from its start to its end, as its log tells it.
///
/// ```
/// readData: 12 ─▶ type: 1 code:128 … ─▶ Stored:(…) ─▶ key:128 … ─▶ Device: … ─▶ InputEvent(11)
/// press
///   origin          records, a LogRead   a LogHand: the record in hand, and its detector    event
/// ```
///
/// The library does all this in one go, so what follows a line comes of it, unless a slot of the
/// product runs an event loop: then the read before it goes on later.
class LogSession
{
public:
    using Sink = LogQueue::Sink;

    /// @param start what is known of the log; its time of day comes with the first line
    /// @param manner the first remark: how the log is read
    LogSession(const SessionStart &start, const QString &manner, Sink sink);

    /// Whether a line belongs to another start of the program.
    bool isNewStart(const LibraryLine &line) const;

    /// @param time µs of the session
    /// @param wallClock µs since the epoch, or whatever the log counts from
    void add(const LibraryLine &line, const QString &message, qint64 time, qint64 wallClock);
    void remark(const QString &text, qint64 time);
    void finish();

private:
    void take(const Said::EventOnBus &event) { m_events.take(event); }
    void take(const Said::EventReported &report) { m_events.take(report); }
    void take(const Said::KeyPassedOn &key) { m_keys.take(key); }
    void take(const Said::Entered &entered);
    void take(const Said::ReadBegun &read) { m_reads.take(read); }
    void take(const Said::NodeAdded &added);
    void take(const Said::NodeRemoved &removed);
    void take(const Said::ListenerOpened &);
    void take(const Said::RecordLogged &logged) { m_reads.take(logged); }
    void take(const Said::ReadFailed &failed);
    void take(const Said::FoundAlready &found) { m_keys.take(found); }
    void take(const Said::ThirdKeyDropped &dropped) { m_keys.take(dropped); }
    void take(const Said::ReleaseDropped &dropped) { m_keys.take(dropped); }
    void take(const Said::KeysStored &stored) { m_keys.take(stored); }
    void take(const Said::Complaint &complaint);
    /// What LogDevices takes.
    template <typename Other>
    void take(const Other &)
    { }

    /// Beside that of devices.
    bool hasActivity() const { return m_events.hasActivity() || m_reads.hasActivity(); }
    void begin();
    void finishOpening();

    SessionStart m_start;
    const QString m_manner;
    const Sink m_sink;
    QString m_text; ///< of the line
    LineTime m_time;
    LogCoverage m_coverage;
    LogCoverage m_coverageAtBegin;
    LogQueue m_queue;
    LogDevices m_devices;
    LogOrigins m_origins;
    LogDetectors m_detectors;
    LogOutcomes m_outcomes;
    LogReads m_reads;
    LogKeys m_keys;
    LogEvents m_events;
    bool m_isFirst = true;
    int m_deviceCount = 0; ///< that were opened
};

} // namespace Vorn::Workbench

#endif
