#ifndef VORN_WORKBENCH_OBSERVEDSWITCHHANDLER_H
#define VORN_WORKBENCH_OBSERVEDSWITCHHANDLER_H

#include "BasicInputHandler.h"
#include "Observation.h"

#include <functional>

namespace Vorn::Workbench {

/// The library's switch handler, which logs the records on their way into it and what becomes of
/// them.
class ObservedSwitchHandler : public BasicSwInputHandler
{
    Q_OBJECT

public:
    /// Why a code has no command now.
    using Unmapped = std::function<QString(int code)>;

    ObservedSwitchHandler(const ObservedDevice &seen, Observation *observation, Unmapped unmapped);

    void processEvent(const QList<input_event> &events) override;

private:
    const ObservedDevice m_device;
    Observation *const m_observation;
    const Unmapped m_unmapped;
};

} // namespace Vorn::Workbench

#endif
