#ifndef VORN_WORKBENCH_LOGKEYS_H
#define VORN_WORKBENCH_LOGKEYS_H

#include "LibraryMessage.h"
#include "LineTime.h"
#include "LogDetectors.h"
#include "LogOutcomes.h"
#include "LogQueue.h"
#include "LogRead.h"
#include "LogReads.h"

#include <QString>

#include <optional>

namespace Vorn::Workbench {

/// What the lines of the chord detectors say of keys: a record is stored, and is in hand until its
/// events have come, or it is dropped.
class LogKeys
{
public:
    LogKeys(const LineTime *time, LogDetectors *detectors, LogReads *reads, LogQueue *queue,
            LogOutcomes *outcomes);

    void take(const Said::FoundAlready &found);
    void take(const Said::KeysStored &stored);
    void take(const Said::ThirdKeyDropped &);
    void take(const Said::ReleaseDropped &);
    void take(const Said::KeyPassedOn &key);

    /// The detectors of the handlers that are selected forget their keys.
    void forget();

private:
    LogHand::Kind store(const LogDetectorPtr &detector, const Said::KeysStored &stored, int code,
                        int value);
    void tellStored(LogRead *read);
    void tellDropped(const LogReads::Cause &cause, const LogDetectorPtr &detector,
                     const QString &reason);

    const LineTime *const m_time;
    LogDetectors *const m_detectors;
    LogReads *const m_reads;
    LogQueue *const m_queue;
    LogOutcomes *const m_outcomes;
    std::optional<Said::FoundAlready> m_found; ///< whose other line is to come
};

} // namespace Vorn::Workbench

#endif
