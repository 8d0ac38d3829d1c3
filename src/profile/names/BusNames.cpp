#include "BusNames.h"

#include "LibraryFacts.h"
#include "PlainName.h"

#include <QMetaEnum>

#include <linux/input.h>

namespace Vorn {

namespace {

constexpr int maxBus = 0xFFFF;

struct KernelBus
{
    const char *name;
    int number;
    InputEvent::Bus bus;
};

// libevdev has no names for buses. Those without a counterpart are NoBus to the library.
constexpr KernelBus kernelBuses[] = {
    {"BUS_PCI", BUS_PCI, InputEvent::Bus::PCI},
    {"BUS_ISAPNP", BUS_ISAPNP, InputEvent::Bus::NoBus},
    {"BUS_USB", BUS_USB, InputEvent::Bus::USB},
    {"BUS_HIL", BUS_HIL, InputEvent::Bus::NoBus},
    {"BUS_BLUETOOTH", BUS_BLUETOOTH, InputEvent::Bus::Bluetooth},
    {"BUS_VIRTUAL", BUS_VIRTUAL, InputEvent::Bus::NoBus},
    {"BUS_ISA", BUS_ISA, InputEvent::Bus::NoBus},
    {"BUS_I8042", BUS_I8042, InputEvent::Bus::NoBus},
    {"BUS_XTKBD", BUS_XTKBD, InputEvent::Bus::NoBus},
    {"BUS_RS232", BUS_RS232, InputEvent::Bus::NoBus},
    {"BUS_GAMEPORT", BUS_GAMEPORT, InputEvent::Bus::NoBus},
    {"BUS_PARPORT", BUS_PARPORT, InputEvent::Bus::NoBus},
    {"BUS_AMIGA", BUS_AMIGA, InputEvent::Bus::NoBus},
    {"BUS_ADB", BUS_ADB, InputEvent::Bus::ADB},
    {"BUS_I2C", BUS_I2C, InputEvent::Bus::I2C},
    {"BUS_HOST", BUS_HOST, InputEvent::Bus::LocalUI},
    {"BUS_GSC", BUS_GSC, InputEvent::Bus::NoBus},
    {"BUS_ATARI", BUS_ATARI, InputEvent::Bus::NoBus},
    {"BUS_SPI", BUS_SPI, InputEvent::Bus::SPI},
    {"BUS_RMI", BUS_RMI, InputEvent::Bus::NoBus},
    {"BUS_CEC", BUS_CEC, InputEvent::Bus::CEC},
    {"BUS_INTEL_ISHTP", BUS_INTEL_ISHTP, InputEvent::Bus::NoBus},
};

} // namespace

std::optional<InputEvent::Bus> bus(const QString &name)
{
    bool isKnown = false;
    const int value =
        QMetaEnum::fromType<InputEvent::Bus>().keyToValue(plainName(name).constData(), &isKnown);
    if (!isKnown)
        return std::nullopt;
    return static_cast<InputEvent::Bus>(value);
}

QString busName(InputEvent::Bus bus)
{
    const char *text = QMetaEnum::fromType<InputEvent::Bus>().valueToKey(static_cast<int>(bus));
    return text ? QString::fromLatin1(text) : QString::number(static_cast<int>(bus));
}

QStringList busNames()
{
    const auto buses = QMetaEnum::fromType<InputEvent::Bus>();
    QStringList list;
    for (int i = 0; i < buses.keyCount(); ++i)
        list += QString::fromLatin1(buses.key(i));
    return list;
}

std::optional<int> kernelBus(const QString &nameOrNumber)
{
    for (const KernelBus &known : kernelBuses) {
        if (nameOrNumber == QLatin1String(known.name))
            return known.number;
    }
    return plainNumber(nameOrNumber, maxBus);
}

QString kernelBusName(int bus)
{
    for (const KernelBus &known : kernelBuses) {
        if (bus == known.number)
            return QString::fromLatin1(known.name);
    }
    return QString::number(bus);
}

InputEvent::Bus libraryBus(int kernelBus, const QString &deviceName)
{
    // The name decides before the kernel's bus does.
    if (deviceName == QLatin1String(hostlinkName))
        return InputEvent::Bus::Hostlink;
    for (const KernelBus &known : kernelBuses) {
        if (kernelBus == known.number)
            return known.bus;
    }
    return InputEvent::Bus::NoBus;
}

int kernelBusOf(InputEvent::Bus bus)
{
    // Of all that are NoBus, the virtual one says the least about the hardware.
    if (bus == InputEvent::Bus::NoBus)
        return BUS_VIRTUAL;
    for (const KernelBus &known : kernelBuses) {
        if (bus == known.bus)
            return known.number;
    }
    return BUS_HOST;
}

} // namespace Vorn
