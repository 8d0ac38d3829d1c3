#include "SwitchObserver.h"

#include "Session.h"
#include "SessionLog.h"

#include <utility>

namespace Vorn::Workbench {

SwitchObserver::SwitchObserver(const ObservedDevice &seen, Observation *observation,
                               Unmapped unmapped)
    : m_device(seen)
    , m_observation(observation)
    , m_unmapped(std::move(unmapped))
{ }

// One record at a time, so that each event is logged after the record it comes from.
void SwitchObserver::processEvent(const QList<input_event> &events, const ProcessEvent &library)
{
    SessionLog *log = m_observation->log();
    const SessionHold hold(log);
    for (const input_event &event : events) {
        if (!takeRecord(log, m_device, EV_SW, event))
            continue;
        Cause cause{m_device.path, EV_SW, {event.code}, stampOf(event), {}};
        if (stampOf(event) == 0)
            cause.since.reset();
        m_observation->begin(cause);
        library({event});
        const QStringList published = m_observation->end();
        if (published.isEmpty())
            logOutcome(log, m_device, event, RecordOutcome::What::Unmapped, m_unmapped(event.code));
        else
            logOutcome(log, m_device, event, RecordOutcome::What::Published, {}, published);
    }
}

} // namespace Vorn::Workbench
