#ifndef VORN_WORKBENCH_LOGTWINS_H
#define VORN_WORKBENCH_LOGTWINS_H

#include "LineTime.h"
#include "LogDevices.h"
#include "LogOrigins.h"
#include "LogRead.h"
#include "LogRecord.h"

#include <deque>
#include <optional>
#include <vector>

namespace Vorn::Workbench {

/// Finds the records that both listeners of a device have logged, in a log without descriptors: the
/// same packet once more and at once is what the other listener has read.
class LogTwins
{
public:
    LogTwins(const LineTime *time, const LogDevices *devices, const LogOrigins *origins);

    /// Whether a record may be logged twice: by both listeners of a device.
    bool mayExist() const;

    /// @param read that the record was added to; loses those that the other listener has logged
    void add(const LogRecordPtr &record, LogRead *read);

    /// A handler has taken what looked like the other listener's: it was another record after all.
    /// @param code none: any
    /// @return null if there is none
    LogRecordPtr takeBack(std::optional<int> code, KeyValue value);

private:
    void finishPacket(LogRead *read);

    const LineTime *const m_time;
    const LogDevices *const m_devices;
    const LogOrigins *const m_origins;
    std::vector<LogRecordPtr> m_packet; ///< in progress
    std::deque<std::vector<LogRecordPtr>> m_packets; ///< that another listener may read, too
    std::deque<LogRecordPtr> m_twins; ///< the last ones
};

} // namespace Vorn::Workbench

#endif
