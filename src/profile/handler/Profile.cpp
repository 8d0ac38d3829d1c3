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

} // namespace Vorn
