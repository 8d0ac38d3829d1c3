#include "LogDevices.h"

#include "BusNames.h"

namespace Vorn::Workbench {

namespace {

using Result = Said::ListenerOpened::Result;

} // namespace

bool LogDevices::continuesOpening(const LibraryMessage &message) const
{
    if (!m_opening)
        return false;
    if (const auto *opened = std::get_if<Said::ListenerOpened>(&message))
        return opened->path == m_opening->device.path && m_opening->listeners < 2;
    return std::holds_alternative<Said::ListenerBus>(message)
        || std::holds_alternative<Said::ListenerName>(message)
        || std::holds_alternative<Said::TypesUnknown>(message);
}

void LogDevices::take(const LibraryMessage &message)
{
    if (const auto *node = std::get_if<Said::NodeNamed>(&message)) {
        m_names.insert(node->path, node->name);
    } else if (const auto *opened = std::get_if<Said::ListenerOpened>(&message)) {
        open(*opened);
    } else if (const auto *bus = std::get_if<Said::ListenerBus>(&message)) {
        if (m_opening) {
            m_opening->kernelBus = bus->kernelBus;
            m_opening->isBusKnown = true;
        }
    } else if (const auto *name = std::get_if<Said::ListenerName>(&message)) {
        if (m_opening)
            m_opening->listenerName = name->name;
    }
}

// The listener of the keys comes first, and what it has to say of a device without keys is a
// warning, so it is there whenever that of the switches is.
void LogDevices::open(const Said::ListenerOpened &opened)
{
    if (!m_opening) {
        m_opening = Opening();
        m_opening->device.path = opened.path;
        m_opening->device.name = m_names.value(opened.path);
    }
    const bool isForKeys = m_opening->listeners == 0;
    ++m_opening->listeners;
    if (opened.result != Result::Ready)
        return;
    if (isForKeys)
        m_opening->device.readsKeys = true;
    else
        m_opening->device.readsSwitches = true;
}

LogDevicePtr LogDevices::finishOpening()
{
    if (!m_opening)
        return nullptr;
    Opening opening = *m_opening;
    m_opening.reset();
    if (opening.isBusKnown)
        opening.device.bus = libraryBus(opening.kernelBus, opening.listenerName);
    // The name that the product got, if the log has it.
    if (opening.device.name.isEmpty())
        opening.device.name = opening.listenerName;
    auto device = std::make_shared<const LogDevice>(opening.device);
    m_devices.insert(device->path, device);
    return device;
}

LogDevicePtr LogDevices::remove(const QString &path)
{
    m_names.remove(path);
    return m_devices.take(path);
}

bool LogDevices::isNewStart(const LibraryMessage &message) const
{
    if (const auto *added = std::get_if<Said::NodeAdded>(&message))
        return m_devices.contains(added->path);
    if (const auto *opened = std::get_if<Said::ListenerOpened>(&message))
        return !continuesOpening(message) && m_devices.contains(opened->path);
    return false;
}

QVector<LogDevicePtr> LogDevices::present() const
{
    QVector<LogDevicePtr> devices;
    for (const LogDevicePtr &device : m_devices) {
        if (device->readers() > 0)
            devices += device;
    }
    return devices;
}

} // namespace Vorn::Workbench
