#ifndef VORN_WORKBENCH_SIMULATEDNODES_H
#define VORN_WORKBENCH_SIMULATEDNODES_H

#include "DeviceDescription.h"
#include "InputSubsystem.h"
#include "Recording.h"

#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// What a scenario does to devices, done to the simulated /dev/input of this process; see Bench.
class SimulatedNodes
{
public:
    SimulatedNodes();

    void plug(int node, const Sim::DeviceDescription &device);
    void unplug(int node, bool losingRecords);
    void replace(int node, const Sim::DeviceDescription &device);
    void setMode(int node, mode_t mode);
    void setInputDirectory(bool exists);
    std::optional<int> changeKeys(int node, const QVector<int> &codes, int value);
    void releaseKeys(int node);
    bool setSwitch(int node, int code, bool on);
    void send(int node, const QVector<RecordedEvent> &records, qint64 offset);

    /// The folder that stands in for /dev.
    QString folder() const { return m_subsystem.folder(); }

private:
    Sim::InputSubsystem m_subsystem;
};

} // namespace Vorn::Workbench

#endif
