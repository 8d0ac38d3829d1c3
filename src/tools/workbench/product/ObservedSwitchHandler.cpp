#include "ObservedSwitchHandler.h"

namespace Vorn::Workbench {

ObservedSwitchHandler::ObservedSwitchHandler(const QString &path, const QString &name,
                                             const Observation &observation)
    : BasicSwInputHandler(name)
    , m_device(path)
    , m_observation(observation)
{ }

void ObservedSwitchHandler::registerAll(const HandlerProfile &handlers)
{
    for (const SwitchMapping &mapping : handlers.switches)
        registerSwitch(mapping.code, mapping.command);
}

// One record at a time, so that each event is logged after the record it comes from.
void ObservedSwitchHandler::processEvent(const QList<input_event> &events)
{
    for (const input_event &event : events) {
        logRecord(m_observation, m_device, event);
        if (event.type != EV_SW)
            continue;
        const CauseScope scope(m_observation.cause,
                               Cause{m_device, EV_SW, {event.code}, stampOf(event), {}});
        BasicSwInputHandler::processEvent({event});
    }
}

} // namespace Vorn::Workbench
