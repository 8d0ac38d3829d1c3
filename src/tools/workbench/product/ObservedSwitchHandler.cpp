#include "ObservedSwitchHandler.h"

#include <utility>

namespace Vorn::Workbench {

ObservedSwitchHandler::ObservedSwitchHandler(const ObservedDevice &seen, Observation *observation,
                                             Unmapped unmapped)
    : BasicSwInputHandler(seen.name)
    , m_observer(seen, observation, std::move(unmapped))
{ }

void ObservedSwitchHandler::processEvent(const QList<input_event> &events)
{
    m_observer.processEvent(events, [this](const QList<input_event> &passed) {
        BasicSwInputHandler::processEvent(passed);
    });
}

} // namespace Vorn::Workbench
