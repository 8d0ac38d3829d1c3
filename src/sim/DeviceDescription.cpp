#include "DeviceDescription.h"

namespace Vorn::Sim {

DeviceDescription DeviceDescription::keyboard(const QByteArray &name, int bus,
                                              const QVector<int> &keys)
{
    DeviceDescription device;
    device.name = name;
    device.id.bustype = static_cast<__u16>(bus);
    device.keys = keys;
    return device;
}

DeviceDescription DeviceDescription::switchBox(const QByteArray &name, int bus,
                                               const QVector<int> &switches, const QVector<int> &on)
{
    DeviceDescription device;
    device.name = name;
    device.id.bustype = static_cast<__u16>(bus);
    device.switches = switches;
    device.switchesOn = on;
    return device;
}

DeviceDescription DeviceDescription::withKeys(const QVector<int> &codes,
                                              const QVector<int> &held) const
{
    DeviceDescription device = *this;
    device.keys += codes;
    device.keysHeld += held;
    return device;
}

DeviceDescription DeviceDescription::withSwitches(const QVector<int> &codes,
                                                  const QVector<int> &on) const
{
    DeviceDescription device = *this;
    device.switches += codes;
    device.switchesOn += on;
    return device;
}

DeviceDescription DeviceDescription::withAutoRepeat() const
{
    DeviceDescription device = *this;
    device.autoRepeat = true;
    return device;
}

DeviceDescription DeviceDescription::withMode(mode_t bits) const
{
    DeviceDescription device = *this;
    device.mode = bits;
    return device;
}

DeviceDescription DeviceDescription::withId(int bus, int vendor, int product, int version) const
{
    DeviceDescription device = *this;
    device.id.bustype = static_cast<__u16>(bus);
    device.id.vendor = static_cast<__u16>(vendor);
    device.id.product = static_cast<__u16>(product);
    device.id.version = static_cast<__u16>(version);
    return device;
}

DeviceDescription DeviceDescription::withEventTypes(const QVector<int> &types) const
{
    DeviceDescription device = *this;
    device.eventTypes += types;
    return device;
}

} // namespace Vorn::Sim
