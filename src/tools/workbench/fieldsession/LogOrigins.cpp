#include "LogOrigins.h"

#include <algorithm>
#include <iterator>

namespace Vorn::Workbench {

LogOrigin *LogOrigin::root() const
{
    auto *origin = const_cast<LogOrigin *>(this);
    while (origin->m_joined)
        origin = origin->m_joined.get();
    return origin;
}

void LogOrigin::join(const LogOriginPtr &one, const LogOriginPtr &other)
{
    if (one->isSame(*other))
        return;
    LogOriginPtr to = other;
    while (to->m_joined)
        to = to->m_joined;
    LogOrigin *from = one->root();
    if (!to->m_device)
        to->m_device = from->m_device;
    if (to->m_label.isEmpty())
        to->m_label = from->m_label;
    from->m_joined = to;
}

QString LogOrigin::text() const
{
    const LogOrigin *origin = root();
    if (origin->m_device)
        return origin->m_device->path;
    if (!origin->m_label.isEmpty())
        return origin->m_label;
    if (m_descriptor)
        return QStringLiteral("descriptor %1").arg(*m_descriptor);
    return QStringLiteral("unknown device");
}

LogOriginPtr LogOrigins::ofDescriptor(int descriptor)
{
    LogOriginPtr &origin = m_descriptors[descriptor];
    if (!origin)
        origin = std::make_shared<LogOrigin>(descriptor);
    return origin;
}

LogDevicePtr LogOrigins::named(const QString &name) const
{
    LogDevicePtr found;
    const QVector<LogDevicePtr> present = m_devices->present();
    for (const LogDevicePtr &device : present) {
        if (device->path == name)
            return device;
        if (device->name != name)
            continue;
        if (found)
            return nullptr;
        found = device;
    }
    return found;
}

void LogOrigins::nameBy(const LogOriginPtr &origin, const QString &name)
{
    if (origin->device())
        return;
    if (const LogDevicePtr device = named(name)) {
        origin->setDevice(device);
        settleAll();
        return;
    }
    const QVector<LogDevicePtr> present = m_devices->present();
    const bool isAmbiguous =
        std::any_of(present.cbegin(), present.cend(),
                    [&name](const LogDevicePtr &device) { return device->name == name; });
    if (!isAmbiguous)
        origin->setLabel(name);
}

void LogOrigins::nameByPath(const LogOriginPtr &origin, const QString &path)
{
    if (const LogDevicePtr device = m_devices->at(path))
        origin->setDevice(device);
    settleAll();
}

bool LogOrigins::fits(const LogOrigin &origin, const LogDevice &device)
{
    return (!origin.hasKeys || device.readsKeys) && (!origin.hasSwitches || device.readsSwitches);
}

// A node with keys and switches has two descriptors, any other one.
bool LogOrigins::mayBe(const LogOrigin &origin, const LogDevice &device) const
{
    if (!fits(origin, device))
        return false;
    int taken = 0;
    for (const LogOriginPtr &other : m_descriptors) {
        const LogDevicePtr known = other->device();
        if (other.get() != &origin && known && known->path == device.path)
            ++taken;
    }
    return !origin.descriptor() || taken < device.readers();
}

void LogOrigins::settle(const LogOriginPtr &origin)
{
    if (origin->isKnown() || !m_isComplete)
        return;
    LogDevicePtr only;
    const QVector<LogDevicePtr> present = m_devices->present();
    for (const LogDevicePtr &device : present) {
        if (!mayBe(*origin, *device))
            continue;
        if (only)
            return;
        only = device;
    }
    origin->setDevice(only);
}

void LogOrigins::settleAll()
{
    // One that is settled leaves less to choose from for the others.
    bool isChanged = true;
    while (isChanged) {
        isChanged = false;
        for (const LogOriginPtr &origin : qAsConst(m_descriptors)) {
            if (origin->isKnown())
                continue;
            settle(origin);
            isChanged = isChanged || origin->isKnown();
        }
    }
}

void LogOrigins::close(const LogOrigin &origin)
{
    if (origin.descriptor())
        m_descriptors.remove(*origin.descriptor());
}

void LogOrigins::forget(const std::function<bool(const LogOrigin &)> &isGone)
{
    for (auto it = m_descriptors.begin(); it != m_descriptors.end();)
        it = isGone(*it.value()) ? m_descriptors.erase(it) : std::next(it);
}

} // namespace Vorn::Workbench
