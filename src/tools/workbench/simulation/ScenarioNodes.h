#ifndef VORN_WORKBENCH_SCENARIONODES_H
#define VORN_WORKBENCH_SCENARIONODES_H

#include "Bench.h"
#include "DeviceDescription.h"
#include "RecordedDevice.h"
#include "ScenarioLoader.h"

#include <QSet>
#include <QVector>

namespace Vorn::Workbench {

/// The devices of a scenario on its bench.
class ScenarioNodes
{
public:
    /// Both must outlive this.
    ScenarioNodes(const LoadedScenario &loaded, Bench *bench);

    /// Devices are indices into Scenario::devices.
    void plug(int device);
    void unplug(int device, bool losingRecords);
    /// Puts another device in its place. The next plug() brings the declared one back.
    void replace(const Step::Replace &step);
    /// Sets whether the node can be opened, now and after the device is plugged in again.
    void permit(int device, bool readable);

    /// Plugs in the devices that a recording brings, unless an earlier step did.
    void plugRecorded(const QString &recording);

    /// N of /dev/input/eventN.
    int number(int device) const { return m_loaded.deviceNodes[device]; }

private:
    Sim::DeviceDescription describe(int device) const;
    void plug(int node, const Sim::DeviceDescription &description);

    const LoadedScenario &m_loaded;
    Bench *const m_bench;
    QVector<bool> m_readable;
    QSet<int> m_plugged; ///< nodes with a device
};

/// How a recorded device is simulated.
Sim::DeviceDescription describe(const RecordedDevice &device);

} // namespace Vorn::Workbench

#endif
