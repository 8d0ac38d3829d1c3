#ifndef VORN_WORKBENCH_LOGEVENTS_H
#define VORN_WORKBENCH_LOGEVENTS_H

#include "Input.h"
#include "LibraryMessage.h"
#include "LineTime.h"
#include "LogCoverage.h"
#include "LogDetectors.h"
#include "LogOrigins.h"
#include "LogOutcomes.h"
#include "LogQueue.h"
#include "LogRead.h"
#include "LogReads.h"

#include <QString>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// An event as the log has it.
struct LogEvent
{
    InputEvent::Command command = InputEvent::None;
    InputEvent::State state = InputEvent::NoState;
    std::optional<QString> handler; ///< that has reported it, see handlerNames()
};

/// Finds out which record an event is of: a handler reports it, and then it is on the bus. A line
/// of either may be missing.
///
/// A key's event is of what is in hand, in this read or in one that a slot has held up; a long
/// press is of a key that a detector has down; a switch's is of its record.
class LogEvents
{
public:
    LogEvents(const LineTime *time, const LogCoverage *coverage, LogOrigins *origins,
              LogDetectors *detectors, LogReads *reads, LogQueue *queue, LogOutcomes *outcomes);

    /// Whether a line is that of the bus for the event that was reported last.
    bool continuesReport(const LibraryMessage &message) const;
    /// Before a line that does not: the log has none of the bus.
    void finishReport();

    void take(const Said::EventReported &report);
    void take(const Said::EventOnBus &bus);

    /// Whether there has been an event.
    bool hasActivity() const { return m_hasActivity; }

private:
    /// A key that a detector has down.
    struct Key
    {
        LogDetectorPtr detector;
        int code = 0;
    };

    void publish(const LogEvent &event);
    LogHand *handFor(const LogEvent &event);
    LogHand *outerClick(const LogReads::ReverseIterator &inner, const LogEvent &event);
    LogHand *handByOrder(const LogEvent &event);
    bool mayBeOf(const LogOrigin &origin, const LogEvent &event) const;
    void nameBy(const LogOriginPtr &origin, const LogEvent &event);
    void publishFrom(LogHand *hand, const LogEvent &event);
    QVector<int> pairOf(const LogHand &hand, InputEvent::Command command) const;
    void publishSwitch(const LogEvent &event);
    std::optional<Key> keyHeld(const LogEvent &event) const;
    void publishLongPress(const LogEvent &event);
    void publishLoose(const LogEvent &event);

    const LineTime *const m_time;
    const LogCoverage *const m_coverage;
    LogOrigins *const m_origins;
    LogDetectors *const m_detectors;
    LogReads *const m_reads;
    LogQueue *const m_queue;
    LogOutcomes *const m_outcomes;
    std::optional<Said::EventReported> m_report; ///< whose line on the bus is to come
    bool m_hasActivity = false;
};

} // namespace Vorn::Workbench

#endif
