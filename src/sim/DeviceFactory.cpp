#include "DeviceFactory.h"

#include "DeviceDescription.h"
#include "SimulatedDevice.h"

#include <QVector>

#include <linux/input.h>

#include <bitset>
#include <cstddef>

namespace Vorn::Sim {

namespace {

template <std::size_t size>
void add(std::bitset<size> &set, const QVector<int> &codes)
{
    for (const int code : codes) {
        if (code >= 0 && static_cast<std::size_t>(code) < size)
            set.set(static_cast<std::size_t>(code));
    }
}

} // namespace

std::shared_ptr<SimulatedDevice> makeDevice(const DeviceDescription &description, std::mutex &lock)
{
    auto device = std::make_shared<SimulatedDevice>();
    device->id = description.id;
    // A device may have an empty name, which is not the same as none.
    if (!description.name.isNull())
        device->name = description.name;
    add(device->declaredKeys, description.keys);
    add(device->declaredKeys, description.keysHeld);
    add(device->keys, description.keysHeld);
    add(device->declaredSwitches, description.switches);
    add(device->declaredSwitches, description.switchesOn);
    add(device->switches, description.switchesOn);
    add(device->types, description.eventTypes);
    if (device->declaredKeys.any())
        device->types.set(EV_KEY);
    if (device->declaredSwitches.any())
        device->types.set(EV_SW);
    if (description.autoRepeat)
        device->enableAutoRepeat(lock);
    return device;
}

} // namespace Vorn::Sim
