#include "LogOrigins.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

/// Devices that were opened.
class LogOriginsTest : public testing::Test
{
protected:
    void open(const QString &path, const QString &name, bool hasKeys, bool hasSwitches)
    {
        using Result = Said::ListenerOpened::Result;
        m_devices.take(Said::NodeNamed{path, name});
        m_devices.take(Said::ListenerOpened{path, hasKeys ? Result::Ready : Result::NoKeys});
        m_devices.take(
            Said::ListenerOpened{path, hasSwitches ? Result::Ready : Result::NoSwitches});
        m_devices.finishOpening();
    }

    LogOriginPtr withKeys(int descriptor)
    {
        LogOriginPtr origin = m_origins.ofDescriptor(descriptor);
        origin->hasKeys = true;
        m_origins.settle(origin);
        return origin;
    }

    std::string named(const QString &name)
    {
        const LogDevicePtr device = m_origins.named(name);
        return device ? device->path.toStdString() : "none";
    }

    LogDevices m_devices;
    LogOrigins m_origins{&m_devices};
};

std::string text(const LogOriginPtr &origin)
{
    return origin->text().toStdString();
}

} // namespace

TEST_F(LogOriginsTest, AreNamedByWhatIsKnownOfThem)
{
    EXPECT_EQ(text(LogOrigins::unnamed()), "unknown device");
    const LogOriginPtr origin = m_origins.ofDescriptor(5);
    EXPECT_EQ(text(origin), "descriptor 5");
    EXPECT_FALSE(origin->isKnown());
    origin->setLabel("panel");
    EXPECT_EQ(text(origin), "panel");
    EXPECT_TRUE(origin->isKnown());
    open("/dev/input/event0", "panel", true, false);
    origin->setDevice(m_devices.at("/dev/input/event0"));
    EXPECT_EQ(text(origin), "/dev/input/event0");
    EXPECT_EQ(m_origins.ofDescriptor(5), origin);
    EXPECT_NE(m_origins.ofDescriptor(6), origin);
}

TEST_F(LogOriginsTest, ThatAreJoinedAreTheSameDevice)
{
    const LogOriginPtr one = m_origins.ofDescriptor(5);
    const LogOriginPtr other = LogOrigins::unnamed();
    const LogOriginPtr third = LogOrigins::unnamed();
    EXPECT_FALSE(one->isSame(*other));
    LogOrigin::join(one, other);
    EXPECT_TRUE(one->isSame(*other));
    LogOrigin::join(third, one);
    EXPECT_TRUE(third->isSame(*other));
    LogOrigin::join(other, third);
    EXPECT_EQ(text(one), "descriptor 5");
    EXPECT_EQ(text(other), "unknown device");
    third->setLabel("panel");
    EXPECT_EQ(text(one), "panel");
    EXPECT_EQ(text(other), "panel");
}

TEST_F(LogOriginsTest, ThatAreJoinedKeepWhatIsKnown)
{
    open("/dev/input/event0", "panel", true, false);
    open("/dev/input/event1", "remote", true, false);
    const LogDevicePtr panel = m_devices.at("/dev/input/event0");
    const LogOriginPtr known = LogOrigins::unnamed();
    known->setDevice(panel);
    const LogOriginPtr other = LogOrigins::unnamed();
    LogOrigin::join(known, other);
    EXPECT_EQ(other->device(), panel);
    const LogOriginPtr labelled = LogOrigins::unnamed();
    labelled->setLabel("x");
    const LogOriginPtr unknown = LogOrigins::unnamed();
    LogOrigin::join(labelled, unknown);
    EXPECT_EQ(text(unknown), "x");
    const LogOriginPtr remote = LogOrigins::unnamed();
    remote->setDevice(m_devices.at("/dev/input/event1"));
    remote->setLabel("y");
    LogOrigin::join(unknown, remote);
    EXPECT_EQ(text(labelled), "/dev/input/event1");
    LogOrigin::join(LogOrigins::unnamed(), remote);
    EXPECT_EQ(text(remote), "/dev/input/event1");
    const LogOriginPtr both = LogOrigins::unnamed();
    both->setDevice(panel);
    LogOrigin::join(both, remote);
    EXPECT_EQ(text(both), "/dev/input/event1") << "what the other one is stays";
}

/// A log with lines missing can have more of them than there are devices.
TEST_F(LogOriginsTest, AreSettledInTheOrderOfTheirDescriptors)
{
    open("/dev/input/event0", "panel", true, false);
    for (int descriptor = 20; descriptor >= 5; --descriptor)
        withKeys(descriptor);
    m_origins.setComplete(true);
    m_origins.settleAll();
    for (int descriptor = 5; descriptor <= 20; ++descriptor)
        EXPECT_EQ(m_origins.ofDescriptor(descriptor)->isKnown(), descriptor == 5) << descriptor;
}

TEST_F(LogOriginsTest, FindADeviceByItsNameIfThereIsOne)
{
    open("/dev/input/event0", "panel", true, false);
    open("/dev/input/event1", "remote", true, false);
    open("/dev/input/event2", "remote", false, true);
    open("/dev/input/event3", "dead", false, false);
    EXPECT_EQ(named("panel"), "/dev/input/event0");
    EXPECT_EQ(named("/dev/input/event2"), "/dev/input/event2");
    EXPECT_EQ(named("remote"), "none") << "two of them";
    EXPECT_EQ(named("dead"), "none") << "nothing reads it";
    EXPECT_EQ(named("x"), "none");
}

TEST_F(LogOriginsTest, TakeTheNameThatAHandlerGives)
{
    open("/dev/input/event0", "panel", true, false);
    open("/dev/input/event1", "remote", true, false);
    open("/dev/input/event2", "remote", true, false);
    const LogOriginPtr origin = withKeys(5);
    m_origins.nameBy(origin, "remote");
    EXPECT_EQ(text(origin), "descriptor 5") << "one of two";
    m_origins.nameBy(origin, "keypad");
    EXPECT_EQ(text(origin), "keypad") << "of which the log does not tell";
    m_origins.nameBy(origin, "panel");
    EXPECT_EQ(text(origin), "/dev/input/event0");
    m_origins.nameBy(origin, "/dev/input/event1");
    EXPECT_EQ(text(origin), "/dev/input/event0") << "once and for all";
    const LogOriginPtr failed = withKeys(6);
    m_origins.nameByPath(failed, "/dev/input/event9");
    EXPECT_EQ(text(failed), "descriptor 6");
    m_origins.nameByPath(failed, "/dev/input/event2");
    EXPECT_EQ(text(failed), "/dev/input/event2");
}

TEST_F(LogOriginsTest, AreTheOnlyDeviceThatIsLeft)
{
    m_origins.setComplete(true);
    open("/dev/input/event0", "panel", true, false);
    open("/dev/input/event1", "remote", true, false);
    open("/dev/input/event2", "lid", false, true);
    const LogOriginPtr one = withKeys(5);
    const LogOriginPtr other = withKeys(6);
    EXPECT_EQ(text(one), "descriptor 5");
    const LogOriginPtr lid = m_origins.ofDescriptor(7);
    lid->hasSwitches = true;
    m_origins.settle(lid);
    EXPECT_EQ(text(lid), "/dev/input/event2");
    m_origins.nameBy(one, "panel");
    EXPECT_EQ(text(other), "/dev/input/event1") << "nothing else is left";
}

TEST_F(LogOriginsTest, HaveTwoDescriptorsIfTheyHaveKeysAndSwitches)
{
    m_origins.setComplete(true);
    open("/dev/input/event0", "panel", true, true);
    open("/dev/input/event1", "remote", true, false);
    const LogOriginPtr first = withKeys(5);
    const LogOriginPtr second = withKeys(6);
    const LogOriginPtr third = withKeys(7);
    m_origins.nameBy(first, "panel");
    EXPECT_EQ(text(second), "descriptor 6") << "the panel's other one, or the remote's";
    m_origins.nameBy(second, "panel");
    EXPECT_EQ(text(third), "/dev/input/event1");
    const LogOriginPtr packet = LogOrigins::unnamed();
    packet->hasKeys = true;
    m_origins.settle(packet);
    EXPECT_EQ(text(packet), "unknown device") << "of any descriptor";
}

TEST_F(LogOriginsTest, StayOpenWhileThereMayBeOtherDevices)
{
    open("/dev/input/event0", "panel", true, false);
    EXPECT_FALSE(m_origins.isComplete());
    EXPECT_EQ(text(withKeys(5)), "descriptor 5");
    m_origins.setComplete(true);
    EXPECT_TRUE(m_origins.isComplete());
    EXPECT_EQ(text(withKeys(5)), "/dev/input/event0");
}

TEST_F(LogOriginsTest, FitWhatTheDeviceHas)
{
    const auto fits = [](bool hasKeys, bool hasSwitches, bool readsKeys, bool readsSwitches) {
        LogOrigin origin(std::nullopt);
        origin.hasKeys = hasKeys;
        origin.hasSwitches = hasSwitches;
        LogDevice device;
        device.readsKeys = readsKeys;
        device.readsSwitches = readsSwitches;
        return LogOrigins::fits(origin, device);
    };
    EXPECT_TRUE(fits(false, false, false, false));
    EXPECT_TRUE(fits(true, false, true, false));
    EXPECT_FALSE(fits(true, false, false, true));
    EXPECT_TRUE(fits(false, true, false, true));
    EXPECT_FALSE(fits(false, true, true, false));
    EXPECT_FALSE(fits(true, true, true, false));
    EXPECT_FALSE(fits(true, true, false, true));
    EXPECT_TRUE(fits(true, true, true, true));
}

TEST_F(LogOriginsTest, AreOtherDevicesOnceTheirDescriptorIsClosed)
{
    const LogOriginPtr one = m_origins.ofDescriptor(5);
    const LogOriginPtr other = m_origins.ofDescriptor(6);
    m_origins.close(*LogOrigins::unnamed());
    EXPECT_EQ(m_origins.ofDescriptor(5), one);
    m_origins.close(*one);
    EXPECT_NE(m_origins.ofDescriptor(5), one);
    EXPECT_EQ(m_origins.ofDescriptor(6), other);
    const LogOriginPtr third = m_origins.ofDescriptor(5);
    m_origins.forget([](const LogOrigin &origin) { return origin.descriptor() == 6; });
    EXPECT_NE(m_origins.ofDescriptor(6), other);
    EXPECT_EQ(m_origins.ofDescriptor(5), third);
}
