#ifndef VORN_PROFILE_BUSNAMES_H
#define VORN_PROFILE_BUSNAMES_H

#include "Input.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace Vorn {

/// "Hostlink", "LocalUI", … and "NoBus".
std::optional<InputEvent::Bus> bus(const QString &name);
QString busName(InputEvent::Bus bus);
QStringList busNames();

/// The kernel's bus type by name, "BUS_USB", or number, "3" or "0x03".
std::optional<int> kernelBus(const QString &nameOrNumber);
/// "BUS_USB"; the number for one without a name.
QString kernelBusName(int bus);
/// The library's bus of a device with that kernel bus and kernel name.
InputEvent::Bus libraryBus(int kernelBus, const QString &deviceName);
/// A kernel bus that the library takes for @p bus; BUS_VIRTUAL for `NoBus`. For `Hostlink`, where
/// only the name matters, it is BUS_HOST.
int kernelBusOf(InputEvent::Bus bus);

} // namespace Vorn

#endif
