#ifndef VORN_WORKBENCH_OBSERVEDSWITCHHANDLER_H
#define VORN_WORKBENCH_OBSERVEDSWITCHHANDLER_H

#include "BasicInputHandler.h"
#include "Observation.h"
#include "SwitchObserver.h"

namespace Vorn::Workbench {

/// The library's switch handler, which logs the records on their way into it and what becomes of
/// them.
class ObservedSwitchHandler : public BasicSwInputHandler
{
    Q_OBJECT

public:
    using Unmapped = SwitchObserver::Unmapped;

    ObservedSwitchHandler(const ObservedDevice &seen, Observation *observation, Unmapped unmapped);

    void processEvent(const QList<input_event> &events) override;

private:
    SwitchObserver m_observer;
};

} // namespace Vorn::Workbench

#endif
