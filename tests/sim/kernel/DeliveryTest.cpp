#include "InputSubsystem.h"
#include "OpenNode.h"
#include "VirtualClock.h"

#include <QObject>
#include <QSocketNotifier>

#include <gmock/gmock.h>

#include <chrono>
#include <thread>
#include <vector>

using namespace Vorn::Sim;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

const DeviceDescription panel =
    DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK, KEY_VOLUMEUP})
        .withSwitches({SW_LINEIN_INSERT});

} // namespace

TEST(Delivery, GivesThePressAndTheReleaseOfAKeyWithTheirReports)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    EXPECT_TRUE(node.press(KEY_OK));
    EXPECT_TRUE(node.isKeyDown(KEY_OK));
    EXPECT_TRUE(node.release(KEY_OK));
    EXPECT_FALSE(node.isKeyDown(KEY_OK));
    EXPECT_THAT(reader.read(),
                ElementsAre(Event{EV_KEY, KEY_OK, 1}, report, Event{EV_KEY, KEY_OK, 0}, report));
}

TEST(Delivery, OfAnUnchangedKeyOrSwitchDoesNotTakePlace)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    EXPECT_FALSE(node.release(KEY_OK));
    EXPECT_FALSE(node.setSwitch(SW_LINEIN_INSERT, false));
    EXPECT_TRUE(node.press(KEY_OK));
    EXPECT_FALSE(node.press(KEY_OK));
    EXPECT_TRUE(node.setSwitch(SW_LINEIN_INSERT, true));
    EXPECT_FALSE(node.setSwitch(SW_LINEIN_INSERT, true));
    EXPECT_TRUE(node.isSwitchOn(SW_LINEIN_INSERT));
    EXPECT_THAT(
        reader.read(),
        ElementsAre(Event{EV_KEY, KEY_OK, 1}, report, Event{EV_SW, SW_LINEIN_INSERT, 1}, report));
}

TEST(Delivery, OfUndeclaredCodesDoesNotTakePlace)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    EXPECT_FALSE(node.press(KEY_A));
    EXPECT_FALSE(node.press(-1));
    EXPECT_FALSE(node.press(KEY_CNT));
    EXPECT_FALSE(node.repeat(KEY_A));
    EXPECT_FALSE(node.setSwitch(SW_LID, true));
    EXPECT_FALSE(node.report(EV_MSC, MSC_SCAN, 1));
    EXPECT_FALSE(node.report(EV_SYN, SYN_REPORT, 0));
    node.sync();
    EXPECT_FALSE(reader.isReadable());
    EXPECT_EQ(reader.readError(), EAGAIN);
}

TEST(Delivery, OfARepeatDoesNotNeedAPress)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    EXPECT_TRUE(node.repeat(KEY_OK));
    EXPECT_TRUE(node.repeat(KEY_OK));
    EXPECT_FALSE(node.isKeyDown(KEY_OK));
    EXPECT_THAT(reader.read(),
                ElementsAre(Event{EV_KEY, KEY_OK, 2}, report, Event{EV_KEY, KEY_OK, 2}, report));
}

TEST(Delivery, PutsSeveralEventsIntoOnePacket)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel.withEventTypes({EV_MSC}));
    const OpenNode reader(node.path());
    EXPECT_TRUE(node.report(EV_MSC, MSC_SCAN, 0x1e));
    EXPECT_TRUE(node.report(EV_KEY, KEY_OK, 1));
    EXPECT_TRUE(node.report(EV_KEY, KEY_VOLUMEUP, 1));
    EXPECT_FALSE(reader.isReadable());
    node.sync();
    EXPECT_THAT(reader.read(),
                ElementsAre(Event{EV_MSC, MSC_SCAN, 0x1e}, Event{EV_KEY, KEY_OK, 1},
                            Event{EV_KEY, KEY_VOLUMEUP, 1}, report));
}

TEST(Delivery, OfARefusedEventEndsThePacketAllTheSame)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    EXPECT_TRUE(node.report(EV_KEY, KEY_OK, 1));
    EXPECT_FALSE(node.press(KEY_OK));
    EXPECT_THAT(reader.read(), ElementsAre(Event{EV_KEY, KEY_OK, 1}, report));
}

TEST(Delivery, KnowsNoCodesOutsideTheirRange)
{
    InputSubsystem subsystem;
    InputNode &node =
        subsystem.plug(0,
                       DeviceDescription::keyboard("odd", BUS_HOST, {-1, KEY_CNT, KEY_MAX})
                           .withSwitches({SW_MAX}, {-1, SW_CNT}));
    EXPECT_TRUE(node.press(KEY_MAX));
    EXPECT_TRUE(node.isKeyDown(KEY_MAX));
    EXPECT_TRUE(node.setSwitch(SW_MAX, true));
    EXPECT_TRUE(node.isSwitchOn(SW_MAX));
    for (const int code : {-1, KEY_CNT}) {
        EXPECT_FALSE(node.press(code));
        EXPECT_FALSE(node.isKeyDown(code));
    }
    for (const int code : {-1, SW_CNT}) {
        EXPECT_FALSE(node.setSwitch(code, true));
        EXPECT_FALSE(node.isSwitchOn(code));
    }
}

TEST(Delivery, StampsThePacketWithTheWallClock)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    clock.advance(std::chrono::milliseconds(1234));
    node.release(KEY_OK);
    clock.stepWallClock(std::chrono::hours(-1));
    node.press(KEY_OK);
    const std::vector<input_event> records = reader.readRecords();
    ASSERT_THAT(records, SizeIs(6));
    EXPECT_EQ(msecsOf(records[0]), VirtualClock::DefaultStart);
    EXPECT_EQ(msecsOf(records[1]), VirtualClock::DefaultStart);
    EXPECT_EQ(msecsOf(records[2]), VirtualClock::DefaultStart + 1234);
    EXPECT_EQ(msecsOf(records[4]), VirtualClock::DefaultStart + 1234 - 3'600'000);
}

TEST(Delivery, GivesEveryDescriptorEverything)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode first(node.path());
    const OpenNode second(node.path());
    node.press(KEY_OK);
    EXPECT_THAT(first.read(), ElementsAre(Event{EV_KEY, KEY_OK, 1}, report));
    EXPECT_FALSE(first.isReadable());
    EXPECT_TRUE(second.isReadable());
    EXPECT_THAT(second.read(), ElementsAre(Event{EV_KEY, KEY_OK, 1}, report));
}

TEST(Delivery, GivesALateDescriptorNothingOfWhatWasBefore)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    EXPECT_TRUE(node.press(KEY_OK));
    const OpenNode reader(node.path());
    EXPECT_FALSE(reader.isReadable());
    node.release(KEY_OK);
    EXPECT_THAT(reader.read(), ElementsAre(Event{EV_KEY, KEY_OK, 0}, report));
}

TEST(Delivery, OfRawRecordsChangesNothingInThem)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.send({InputNode::record(EV_KEY, KEY_A, 7, -1), InputNode::record(EV_KEY, KEY_OK, 1, 1500),
               InputNode::record(EV_SYN, SYN_DROPPED, 0, 0)});
    EXPECT_FALSE(node.isKeyDown(KEY_OK));
    const std::vector<input_event> records = reader.readRecords();
    ASSERT_THAT(records, SizeIs(3));
    EXPECT_EQ(records[0].code, KEY_A);
    EXPECT_EQ(records[0].value, 7);
    EXPECT_EQ(static_cast<long>(records[0].input_event_sec), -1);
    EXPECT_EQ(records[0].input_event_usec, 999'000);
    EXPECT_EQ(msecsOf(records[1]), 1500);
    EXPECT_EQ(records[2].code, SYN_DROPPED);
}

TEST(Delivery, StampsMadeRecordsWithTheClock)
{
    VirtualClock clock(42'001);
    EXPECT_EQ(msecsOf(InputNode::record(EV_KEY, KEY_OK, 1)), 42'001);
}

TEST(Delivery, WithoutADeviceGoesNowhere)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.node(3);
    EXPECT_FALSE(node.isPlugged());
    EXPECT_FALSE(node.press(KEY_OK));
    EXPECT_FALSE(node.report(EV_KEY, KEY_OK, 1));
    node.sync();
    node.send({InputNode::record(EV_KEY, KEY_OK, 1)});
    node.sendBytes("x");
    EXPECT_FALSE(node.isKeyDown(KEY_OK));
    EXPECT_FALSE(node.isSwitchOn(SW_LID));
}

TEST(Delivery, WorksFromAnotherThread)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path(), O_RDONLY);
    std::thread feeder([&node] {
        for (int i = 0; i < 500; ++i) {
            node.press(KEY_OK);
            node.release(KEY_OK);
        }
    });
    std::size_t count = 0;
    while (count < 2000)
        count += reader.readRecords().size();
    feeder.join();
    EXPECT_EQ(count, 2000U);
    pollfd descriptor = {reader.fd(), POLLIN, 0};
    EXPECT_EQ(::poll(&descriptor, 1, 0), 0);
}

TEST(Delivery, WakesAnEventLoop)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    QSocketNotifier notifier(reader.fd(), QSocketNotifier::Read);
    int activations = 0;
    QObject::connect(&notifier, &QSocketNotifier::activated, [&] {
        ++activations;
        reader.read();
    });
    clock.settle();
    EXPECT_EQ(activations, 0);
    node.press(KEY_OK);
    clock.settle();
    EXPECT_EQ(activations, 1);
}
