#include "ObservedSwitchHandler.h"

#include <utility>

namespace Vorn::Workbench {

ObservedSwitchHandler::ObservedSwitchHandler(const ObservedDevice &seen, Observation *observation,
                                             Unmapped unmapped)
    : BasicSwInputHandler(seen.name)
    , m_device(seen)
    , m_observation(observation)
    , m_unmapped(std::move(unmapped))
{ }

// One record at a time, so that each event is logged after the record it comes from.
void ObservedSwitchHandler::processEvent(const QList<input_event> &events)
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
        BasicSwInputHandler::processEvent({event});
        const QStringList published = m_observation->end();
        if (published.isEmpty())
            logOutcome(log, m_device, event, RecordOutcome::What::Unmapped, m_unmapped(event.code));
        else
            logOutcome(log, m_device, event, RecordOutcome::What::Published, {}, published);
    }
}

} // namespace Vorn::Workbench
