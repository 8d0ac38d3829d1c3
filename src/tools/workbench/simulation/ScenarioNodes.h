#ifndef VORN_WORKBENCH_SIMULATEDDEVICES_H
#define VORN_WORKBENCH_SIMULATEDDEVICES_H

#include "InputSubsystem.h"
#include "RecordedDevice.h"
#include "ScenarioLoader.h"

namespace Vorn::Workbench {

/// The devices of a scenario in the simulated input subsystem.
class ScenarioNodes
{
public:
    /// Both must live longer.
    ScenarioNodes(const LoadedScenario &loaded, Sim::InputSubsystem *subsystem);

    void plug(int device);
    /// Releases the keys that are down, as the kernel does when a device goes.
    void releaseKeys(int device);
    void unplug(int device, bool losingRecords);
    /// Puts another device in the place of one, until that is unplugged.
    void replace(const Step::Replace &step);
    void permit(int device, bool readable);

    /// Plugs the devices that a recording brings, unless they are there.
    void plugRecorded(const QString &recording);

    Sim::InputNode &node(int device);

private:
    Sim::DeviceDescription describe(int device) const;

    const LoadedScenario &m_loaded;
    Sim::InputSubsystem *const m_subsystem;
    QVector<bool> m_readable;
};

/// A recorded device as it is simulated.
Sim::DeviceDescription describe(const RecordedDevice &device);

} // namespace Vorn::Workbench

#endif
