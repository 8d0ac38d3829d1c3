#include "InputSubsystem.h"

#include "DeviceFactory.h"
#include "NodePath.h"
#include "NodeState.h"
#include "SimulatedDevice.h"
#include "SubsystemState.h"

#include <QFile>
#include <QtGlobal>

#include <algorithm>
#include <cstddef>
#include <mutex>

namespace Vorn::Sim {

namespace {

using Lock = std::lock_guard<std::mutex>;

} // namespace

InputSubsystem::InputSubsystem(Directory directory)
    : m_state(std::make_unique<SubsystemState>(directory))
{ }

InputSubsystem::~InputSubsystem() = default;

InputNode &InputSubsystem::plug(int number, const DeviceDescription &description)
{
    const Lock lock(m_state->lock);
    NodeState &node = *m_state->nodes.node(number);
    if (node.device)
        qFatal("InputSubsystem: a device is already plugged in at %s", node.path.constData());
    node.device = makeDevice(description, m_state->lock);
    node.setMode(description.mode);
    if (m_state->directory.exists())
        m_state->directory.addNode(node.path, node.mode);
    else if (m_state->kind == Directory::ComesAndGoes)
        m_state->createDirectory(); // with this node in it
    return m_state->handle(number);
}

void InputSubsystem::unplug(int number, Unread unread)
{
    const Lock lock(m_state->lock);
    NodeState &node = m_state->nodes.pluggedNode(number);
    node.device->disconnect();
    if (unread == Unread::Lost)
        node.device->dropUnread();
    // Its clients keep it, to read what is left.
    node.device.reset();
    if (!m_state->directory.exists())
        return;
    m_state->directory.removeNode(node.path);
    if (m_state->kind == Directory::ComesAndGoes && !m_state->nodes.hasPlugged())
        m_state->removeDirectory();
}

InputNode &InputSubsystem::replace(int number, const DeviceDescription &description)
{
    const Lock lock(m_state->lock);
    NodeState &node = m_state->nodes.pluggedNode(number);
    node.device->disconnect();
    // Nothing is done to the file of the node, so watchers see nothing.
    node.device = makeDevice(description, m_state->lock);
    return m_state->handle(number);
}

InputNode &InputSubsystem::node(int number)
{
    const Lock lock(m_state->lock);
    return m_state->handle(number);
}

void InputSubsystem::setPermissions(int number, mode_t mode)
{
    const Lock lock(m_state->lock);
    NodeState &node = m_state->nodes.pluggedNode(number);
    node.setMode(mode);
    if (m_state->directory.exists())
        m_state->directory.setMode(node.path, node.mode);
}

void InputSubsystem::removeInputDirectory()
{
    const Lock lock(m_state->lock);
    if (m_state->directory.exists())
        m_state->removeDirectory();
}

void InputSubsystem::createInputDirectory()
{
    const Lock lock(m_state->lock);
    if (!m_state->directory.exists())
        m_state->createDirectory();
}

bool InputSubsystem::inputDirectoryExists() const
{
    const Lock lock(m_state->lock);
    return m_state->directory.exists();
}

QString InputSubsystem::folder() const
{
    return QFile::decodeName(m_state->directory.realPath(deviceFolder));
}

void InputSubsystem::setPathHook(const PathHook &hook)
{
    const Lock lock(m_state->lock);
    m_state->hook = hook;
}

int InputSubsystem::openDescriptors() const
{
    const Lock lock(m_state->lock);
    std::size_t count = 0;
    for (const auto &[number, node] : m_state->nodes.all())
        count += node->openDescriptors();
    return static_cast<int>(count);
}

void InputSubsystem::setRecording(bool on)
{
    const Lock lock(m_state->lock);
    m_state->log.setRecording(on);
}

QVector<SystemCall> InputSubsystem::systemCalls() const
{
    const Lock lock(m_state->lock);
    return m_state->log.calls();
}

QVector<SystemCall> InputSubsystem::systemCalls(const QByteArray &path) const
{
    QVector<SystemCall> calls = systemCalls();
    const auto isOther = [&path](const SystemCall &call) { return call.path != path; };
    calls.erase(std::remove_if(calls.begin(), calls.end(), isOther), calls.end());
    return calls;
}

void InputSubsystem::clearSystemCalls()
{
    const Lock lock(m_state->lock);
    m_state->log.clear();
}

CallCounts InputSubsystem::callCounts() const
{
    const Lock lock(m_state->lock);
    return m_state->log.counts();
}

} // namespace Vorn::Sim
