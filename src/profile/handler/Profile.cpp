#include "Profile.h"

namespace Vorn {

const DeviceProfile *Profile::deviceFor(const QString &name, InputEvent::Bus bus) const
{
    for (const DeviceProfile &device : devices) {
        if (device.name.value_or(name) == name && device.bus.value_or(bus) == bus)
            return &device;
    }
    return nullptr;
}

QStringList Profile::identifiers() const
{
    QStringList all{initial};
    for (const SelectRule &rule : select)
        all += rule.identifier;
    for (const DeviceProfile &device : devices) {
        for (const HandlerProfile &handler : device.handlers)
            all += handler.identifiers;
    }
    all.removeDuplicates();
    return all;
}

bool operator==(const LongPress &one, const LongPress &other)
{
    return one.timeouts == other.timeouts && one.repeat == other.repeat;
}

bool operator==(const KeyMapping &one, const KeyMapping &other)
{
    return one.code == other.code && one.command == other.command
        && one.immediate == other.immediate && one.longPress == other.longPress
        && one.bus == other.bus;
}

bool operator==(const ChordMapping &one, const ChordMapping &other)
{
    return one.first == other.first && one.second == other.second && one.command == other.command
        && one.bus == other.bus;
}

bool operator==(const SwitchMapping &one, const SwitchMapping &other)
{
    return one.code == other.code && one.command == other.command;
}

bool operator==(const HandlerProfile &one, const HandlerProfile &other)
{
    return one.identifiers == other.identifiers && one.keys == other.keys
        && one.chords == other.chords && one.switches == other.switches
        && one.positionsAtStart == other.positionsAtStart;
}

bool operator==(const DeviceProfile &one, const DeviceProfile &other)
{
    return one.name == other.name && one.bus == other.bus && one.handlers == other.handlers;
}

bool operator==(const SelectRule &one, const SelectRule &other)
{
    return one.command == other.command && one.state == other.state
        && one.identifier == other.identifier;
}

bool operator==(const Profile &one, const Profile &other)
{
    return one.initial == other.initial && one.devices == other.devices
        && one.select == other.select;
}

} // namespace Vorn
