#include "BusNames.h"

#include <gmock/gmock.h>

#include <linux/input.h>

using namespace Vorn;

TEST(BusNames, AreThoseOfTheLibrary)
{
    EXPECT_EQ(busNames().size(), 10);
    for (const QString &name : busNames())
        EXPECT_EQ(busName(*bus(name)).toStdString(), name.toStdString());
    EXPECT_EQ(bus("usb"), std::nullopt);
    EXPECT_EQ(bus("InputEvent::USB"), std::nullopt);
}

TEST(BusNames, MapTheKernelsBusesAsTheLibraryDoes)
{
    const std::pair<int, InputEvent::Bus> buses[] = {
        {BUS_PCI, InputEvent::Bus::PCI},
        {BUS_USB, InputEvent::Bus::USB},
        {BUS_BLUETOOTH, InputEvent::Bus::Bluetooth},
        {BUS_ADB, InputEvent::Bus::ADB},
        {BUS_I2C, InputEvent::Bus::I2C},
        {BUS_HOST, InputEvent::Bus::LocalUI},
        {BUS_SPI, InputEvent::Bus::SPI},
        {BUS_CEC, InputEvent::Bus::CEC},
        {BUS_VIRTUAL, InputEvent::Bus::NoBus},
        {BUS_I8042, InputEvent::Bus::NoBus},
        {999, InputEvent::Bus::NoBus},
    };
    for (const auto &[kernel, library] : buses) {
        EXPECT_EQ(libraryBus(kernel, "panel"), library) << kernel;
        EXPECT_EQ(libraryBus(kernel, "hostlink"), InputEvent::Bus::Hostlink) << kernel;
    }
    for (const QString &name : busNames()) {
        const InputEvent::Bus known = *bus(name);
        if (known != InputEvent::Bus::Hostlink) {
            EXPECT_EQ(libraryBus(kernelBusOf(known), "panel"), known) << name.toStdString();
        }
    }
    EXPECT_EQ(libraryBus(BUS_USB, "Hostlink"), InputEvent::Bus::USB);
}

TEST(BusNames, KnowTheKernelsByNameAndNumber)
{
    EXPECT_EQ(kernelBus("BUS_CEC"), BUS_CEC);
    EXPECT_EQ(kernelBus("25"), BUS_HOST);
    EXPECT_EQ(kernelBusName(BUS_HOST).toStdString(), "BUS_HOST");
    EXPECT_EQ(kernelBusName(77).toStdString(), "77");
}

TEST(BusNames, NameEveryBusOfTheKernelSoThatItIsReadBack)
{
    QStringList names;
    for (int number = 0; number < 256; ++number) {
        EXPECT_EQ(kernelBus(kernelBusName(number)), number);
        if (kernelBusName(number) != QString::number(number))
            names += kernelBusName(number);
    }
    EXPECT_EQ(names.join(' ').toStdString(),
              "BUS_PCI BUS_ISAPNP BUS_USB BUS_HIL BUS_BLUETOOTH BUS_VIRTUAL BUS_ISA BUS_I8042 "
              "BUS_XTKBD BUS_RS232 BUS_GAMEPORT BUS_PARPORT BUS_AMIGA BUS_ADB BUS_I2C BUS_HOST "
              "BUS_GSC BUS_ATARI BUS_SPI BUS_RMI BUS_CEC BUS_INTEL_ISHTP");
    EXPECT_EQ(kernelBus("65535"), 65535);
    EXPECT_EQ(kernelBus("65536"), std::nullopt);
    EXPECT_EQ(kernelBus("bus_usb"), std::nullopt);
    EXPECT_EQ(kernelBus("0X19"), BUS_HOST);
    EXPECT_EQ(kernelBusOf(InputEvent::Bus::NoBus), BUS_VIRTUAL);
    EXPECT_EQ(kernelBusOf(InputEvent::Bus::Hostlink), BUS_HOST);
}
