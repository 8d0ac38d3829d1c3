#include "KnownDevices.h"

#include <gtest/gtest.h>

using namespace Vorn::Workbench;

namespace {

const QString first = QStringLiteral("/dev/input/event0");
const QString second = QStringLiteral("/dev/input/event3");

DeviceChange plugged(const QString &path, const char *name)
{
    return {path, QString::fromUtf8(name), InputEvent::Bus::USB, true};
}

DeviceChange unplugged(const QString &path, const char *name)
{
    return {path, QString::fromUtf8(name), InputEvent::Bus::USB, false};
}

} // namespace

TEST(KnownDevices, KnowNothingOfADeviceThatNobodyTold)
{
    const KnownDevices devices;
    EXPECT_TRUE(devices.name(first).isEmpty());
    EXPECT_EQ(devices.mark(first), QStringLiteral("(event0)"));
    EXPECT_FALSE(devices.bus(first));
}

TEST(KnownDevices, RememberADeviceThatIsGone)
{
    KnownDevices devices;
    devices.add(plugged(first, "panel"));
    devices.add(unplugged(first, "panel"));
    EXPECT_EQ(devices.name(first), QStringLiteral("panel"));
    EXPECT_EQ(devices.bus(first), InputEvent::Bus::USB);
    EXPECT_TRUE(devices.mark(first).isEmpty());
}

TEST(KnownDevices, MarkNamesThatAreEmptyOrThatAnotherOneHas)
{
    KnownDevices devices;
    devices.add(plugged(first, ""));
    EXPECT_EQ(devices.mark(first), QStringLiteral("(event0)"));
    devices.add(plugged(first, "panel"));
    EXPECT_TRUE(devices.mark(first).isEmpty());
    devices.add(plugged(second, "panel"));
    EXPECT_EQ(devices.mark(first), QStringLiteral("(event0)"));
    EXPECT_EQ(devices.mark(second), QStringLiteral("(event3)"));
    devices.add(unplugged(first, "panel"));
    EXPECT_TRUE(devices.mark(second).isEmpty());
    EXPECT_EQ(devices.mark(first), QStringLiteral("(event0)"))
        << "what still comes of it is not of the one that is there";
}

TEST(KnownDevices, KeepTheKernelsNameBesideThePrintableOne)
{
    KnownDevices devices;
    devices.add(plugged(first, "a\x1b[2J"));
    EXPECT_EQ(devices.kernelName(first), QStringLiteral("a\x1b[2J"));
    EXPECT_EQ(devices.name(first), QStringLiteral("a\\u001b[2J"));
}
