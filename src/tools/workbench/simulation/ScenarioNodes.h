#ifndef VORN_WORKBENCH_SCENARIONODES_H
#define VORN_WORKBENCH_SCENARIONODES_H

#include "InputSubsystem.h"
#include "RecordedDevice.h"
#include "ScenarioLoader.h"

namespace Vorn::Workbench {

/// The devices of a scenario in the simulated input subsystem.
class ScenarioNodes
{
public:
    /// Both must outlive this.
    ScenarioNodes(const LoadedScenario &loaded, Sim::InputSubsystem *subsystem);

    /// Devices are indices into Scenario::devices.
    void plug(int device);
    /// Releases the keys that are down, as the kernel does when a device is unplugged.
    void releaseKeys(int device);
    void unplug(int device, bool losingRecords);
    /// Puts another device in its place. The next plug() brings the declared one back.
    void replace(const Step::Replace &step);
    /// Sets whether the node can be opened, now and after the device is plugged in again.
    void permit(int device, bool readable);

    /// Plugs in the devices that a recording brings, unless an earlier step did.
    void plugRecorded(const QString &recording);

    Sim::InputNode &node(int device);

private:
    Sim::DeviceDescription describe(int device) const;

    const LoadedScenario &m_loaded;
    Sim::InputSubsystem *const m_subsystem;
    QVector<bool> m_readable;
};

/// How a recorded device is simulated.
Sim::DeviceDescription describe(const RecordedDevice &device);

} // namespace Vorn::Workbench

#endif
