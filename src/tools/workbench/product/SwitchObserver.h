#ifndef VORN_WORKBENCH_SWITCHOBSERVER_H
#define VORN_WORKBENCH_SWITCHOBSERVER_H

#include "Observation.h"

#include <QList>
#include <QString>

#include <functional>

namespace Vorn::Workbench {

/// Logs the records on their way into a switch handler of the library, and what becomes of them.
class SwitchObserver
{
public:
    /// Why a code has no command now.
    using Unmapped = std::function<QString(int code)>;
    /// What the library does with records, on the handler that is observed.
    using ProcessEvent = std::function<void(const QList<input_event> &)>;

    /// @param observation must live longer
    SwitchObserver(const ObservedDevice &seen, Observation *observation, Unmapped unmapped);

    void processEvent(const QList<input_event> &events, const ProcessEvent &library);

private:
    const ObservedDevice m_device;
    Observation *const m_observation;
    const Unmapped m_unmapped;
};

} // namespace Vorn::Workbench

#endif
