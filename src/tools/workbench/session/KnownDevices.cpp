#include "KnownDevices.h"

#include "Quoting.h"

#include <algorithm>

namespace Vorn::Workbench {

void KnownDevices::add(const DeviceChange &change)
{
    m_devices.insert(change.device, change);
}

QString KnownDevices::name(const QString &path) const
{
    return printable(kernelName(path));
}

QString KnownDevices::mark(const QString &path) const
{
    const QString own = name(path);
    const bool isShared =
        std::any_of(m_devices.begin(), m_devices.end(), [&](const DeviceChange &other) {
            return other.added && other.device != path && printable(other.name) == own;
        });
    return own.isEmpty() || isShared ? QStringLiteral("(%1)").arg(node(path)) : QString();
}

std::optional<InputEvent::Bus> KnownDevices::bus(const QString &path) const
{
    const auto device = m_devices.find(path);
    return device == m_devices.end() ? std::nullopt : std::make_optional(device->bus);
}

QString KnownDevices::node(const QString &path)
{
    return printable(path.section(QLatin1Char('/'), -1));
}

} // namespace Vorn::Workbench
