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

#include <QVector>

#include <optional>

namespace Vorn::Workbench {

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
    void take(const Said::EventOnBus &event);

    /// Whether there has been an event.
    bool hasActivity() const { return m_hasActivity; }

private:
    void publish(InputEvent::Command command, InputEvent::State state,
                 const std::optional<Said::EventReported> &report);
    LogHand *handFor(InputEvent::Command command, InputEvent::State state,
                     const std::optional<Said::EventReported> &report);
    LogHand *outerClick(const LogReads::ReverseIterator &inner, InputEvent::Command command,
                        InputEvent::State state, const std::optional<Said::EventReported> &report);
    LogHand *handByOrder(InputEvent::Command command, InputEvent::State state);
    bool mayBeOf(const LogOrigin &origin, const std::optional<Said::EventReported> &report) const;
    void nameBy(const LogOriginPtr &origin, const std::optional<Said::EventReported> &report);
    void publishFrom(LogHand *hand, InputEvent::Command command, InputEvent::State state);
    void publishSwitch(InputEvent::Command command, InputEvent::State state,
                       const std::optional<Said::EventReported> &report);
    void publishLongPress(InputEvent::Command command,
                          const std::optional<Said::EventReported> &report);
    void publishLoose(InputEvent::Command command, InputEvent::State state,
                      const std::optional<Said::EventReported> &report);
    QVector<int> pairOf(const LogHand &hand, InputEvent::Command command) const;

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
