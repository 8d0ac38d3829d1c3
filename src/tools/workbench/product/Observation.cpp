#include "Observation.h"

#include "Session.h"
#include "SessionLog.h"

#include <utility>

namespace Vorn::Workbench {

CauseScope::CauseScope(std::optional<Cause> *cause, Cause value)
    : m_cause(cause)
    , m_before(std::exchange(*cause, std::move(value)))
{ }

CauseScope::~CauseScope()
{
    *m_cause = std::move(m_before);
}

qint64 stampOf(const input_event &event)
{
    return static_cast<qint64>(event.input_event_sec) * 1'000'000
        + static_cast<qint64>(event.input_event_usec);
}

void logRecord(const Observation &observation, const QString &device, const input_event &event)
{
    // The library makes a record without a time of a position that it asked for; the device did not
    // send it.
    if (observation.logsRecords && stampOf(event) != 0) {
        observation.log->add(
            RecordRead{device, event.type, event.code, event.value, stampOf(event)});
    }
}

} // namespace Vorn::Workbench
