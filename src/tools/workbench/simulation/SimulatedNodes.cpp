#include "SimulatedNodes.h"

#include "EventNames.h"

#include <chrono>

namespace Vorn::Workbench {

namespace {

qint64 wallClock()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::floor<std::chrono::milliseconds>(now).count();
}

input_event stamped(const RecordedEvent &record, qint64 offset)
{
    if (offset == 0)
        return Sim::InputNode::record(record.type, record.code, record.value);
    return Sim::InputNode::record(record.type, record.code, record.value, wallClock() + offset);
}

} // namespace

SimulatedNodes::SimulatedNodes()
{
    // A long scenario makes millions of calls, and nobody here reads the list of them.
    m_subsystem.setRecording(false);
}

void SimulatedNodes::plug(int node, const Sim::DeviceDescription &device)
{
    m_subsystem.plug(node, device);
}

void SimulatedNodes::unplug(int node, bool losingRecords)
{
    m_subsystem.unplug(node,
                       losingRecords ? Sim::InputSubsystem::Unread::Lost
                                     : Sim::InputSubsystem::Unread::Delivered);
}

void SimulatedNodes::replace(int node, const Sim::DeviceDescription &device)
{
    m_subsystem.replace(node, device);
}

void SimulatedNodes::setMode(int node, mode_t mode)
{
    m_subsystem.setPermissions(node, mode);
}

void SimulatedNodes::setInputDirectory(bool exists)
{
    if (exists)
        m_subsystem.createInputDirectory();
    else
        m_subsystem.removeInputDirectory();
}

std::optional<int> SimulatedNodes::changeKeys(int node, const QVector<int> &codes, int value)
{
    Sim::InputNode &keys = m_subsystem.node(node);
    for (const int code : codes) {
        if (!keys.report(EV_KEY, code, value))
            return code;
    }
    keys.sync();
    return {};
}

void SimulatedNodes::releaseKeys(int node)
{
    Sim::InputNode &keys = m_subsystem.node(node);
    // One packet with a single SYN_REPORT.
    for (int code = 0; code <= maxKeyCode; ++code) {
        if (keys.isKeyDown(code))
            keys.report(EV_KEY, code, 0);
    }
    keys.sync();
}

bool SimulatedNodes::setSwitch(int node, int code, bool on)
{
    return m_subsystem.node(node).setSwitch(code, on);
}

void SimulatedNodes::send(int node, const QVector<RecordedEvent> &records, qint64 offset)
{
    QList<input_event> packet;
    for (const RecordedEvent &record : records)
        packet += stamped(record, offset);
    m_subsystem.node(node).send(packet);
}

} // namespace Vorn::Workbench
