#include "InputSubsystem.h"
#include "OpenNode.h"
#include "VirtualClock.h"

#include <QFile>
#include <QSocketNotifier>

#include <gmock/gmock.h>

#include <thread>

using namespace Vorn::Sim;
using testing::ElementsAre;
using testing::IsEmpty;
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
                ElementsAre(Said{EV_KEY, KEY_OK, 1}, report, Said{EV_KEY, KEY_OK, 0}, report));
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
        ElementsAre(Said{EV_KEY, KEY_OK, 1}, report, Said{EV_SW, SW_LINEIN_INSERT, 1}, report));
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
                ElementsAre(Said{EV_KEY, KEY_OK, 2}, report, Said{EV_KEY, KEY_OK, 2}, report));
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
                ElementsAre(Said{EV_MSC, MSC_SCAN, 0x1e}, Said{EV_KEY, KEY_OK, 1},
                            Said{EV_KEY, KEY_VOLUMEUP, 1}, report));
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
    EXPECT_THAT(first.read(), ElementsAre(Said{EV_KEY, KEY_OK, 1}, report));
    EXPECT_FALSE(first.isReadable());
    EXPECT_TRUE(second.isReadable());
    EXPECT_THAT(second.read(), ElementsAre(Said{EV_KEY, KEY_OK, 1}, report));
}

TEST(Delivery, GivesALateDescriptorNothingOfWhatWasBefore)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    EXPECT_TRUE(node.press(KEY_OK));
    const OpenNode reader(node.path());
    EXPECT_FALSE(reader.isReadable());
    node.release(KEY_OK);
    EXPECT_THAT(reader.read(), ElementsAre(Said{EV_KEY, KEY_OK, 0}, report));
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

TEST(Read, ReturnsAsManyWholeRecordsAsFit)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    node.release(KEY_OK);
    char buffer[sizeof(input_event) * 3 + 5] = {};
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)),
              static_cast<ssize_t>(sizeof(input_event) * 3));
    EXPECT_TRUE(reader.isReadable());
    EXPECT_THAT(reader.read(), ElementsAre(report));
    EXPECT_FALSE(reader.isReadable());
}

TEST(Read, WithTooSmallABufferIsInvalidAndTakesNothing)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    char buffer[sizeof(input_event)];
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer) - 1), -EINVAL);
    EXPECT_EQ(reader.readInto(buffer, 0), 0);
    EXPECT_THAT(reader.read(), SizeIs(2));
    EXPECT_EQ(reader.readInto(buffer, 0), -EAGAIN);
}

TEST(Read, FollowsALaterChangeToNonBlocking)
{
    InputSubsystem subsystem;
    const OpenNode reader(subsystem.plug(0, panel).path(), O_RDONLY);
    ASSERT_EQ(::fcntl(reader.fd(), F_SETFL, O_NONBLOCK), 0);
    EXPECT_EQ(reader.readError(), EAGAIN);
}

TEST(Read, BlocksUntilThereIsSomething)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path(), O_RDONLY);
    std::vector<Said> records;
    std::thread thread([&] { records = reader.read(); });
    node.press(KEY_OK);
    thread.join();
    EXPECT_THAT(records, ElementsAre(Said{EV_KEY, KEY_OK, 1}, report));
}

TEST(Read, ThatBlocksEndsWhenTheDeviceGoes)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path(), O_RDONLY);
    int error = 0;
    std::thread thread([&] { error = reader.readError(); });
    subsystem.unplug(0);
    thread.join();
    EXPECT_EQ(error, ENODEV);
}

TEST(Read, ReturnsOddBytesExactlyAndAlone)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    node.sendBytes(QByteArray(40, 'x'));
    node.sendBytes("12345678");
    node.release(KEY_OK);
    char buffer[1024] = {};
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)),
              static_cast<ssize_t>(2 * sizeof(input_event)));
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)), 40);
    EXPECT_EQ(QByteArray(buffer, 40), QByteArray(40, 'x'));
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)), 8);
    EXPECT_EQ(QByteArray(buffer, 8), QByteArray("12345678"));
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)),
              static_cast<ssize_t>(2 * sizeof(input_event)));
    EXPECT_FALSE(reader.isReadable());
}

TEST(Read, CutsOddBytesThatDoNotFit)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.sendBytes(QByteArray(100, 'x'));
    char buffer[sizeof(input_event)];
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)), static_cast<ssize_t>(sizeof(buffer)));
    EXPECT_EQ(reader.readError(), EAGAIN);
}

TEST(Read, OfNoBytesIsAnEndOfFile)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.sendBytes(QByteArray());
    EXPECT_TRUE(reader.isReadable());
    char buffer[1024];
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)), 0);
    EXPECT_FALSE(reader.isReadable());
    EXPECT_EQ(reader.readError(), EAGAIN);
}

TEST(Read, ThroughAQtFileGivesTheRecords)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    QFile file(node.path());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    EXPECT_TRUE(file.isSequential());
    node.press(KEY_OK);
    // It reads on until it has all that it was asked for.
    const int size = 2 * sizeof(input_event);
    EXPECT_EQ(file.read(size).size(), size);
}

TEST(Read, OfAReaderThatLagsKeepsTheOrder)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    int expected = 0;
    for (int i = 0; i < 3000; ++i) {
        node.send({InputNode::record(EV_MSC, 0, i, 0), InputNode::record(EV_SYN, 0, i, 0)});
        // Always two records behind.
        if (i == 0)
            continue;
        const std::vector<input_event> records = reader.readRecords(2);
        ASSERT_THAT(records, SizeIs(2));
        ASSERT_EQ(records[0].value, expected);
        ASSERT_EQ(records[1].value, expected);
        ++expected;
    }
    EXPECT_THAT(reader.read(), SizeIs(2));
    EXPECT_THAT(reader.read(), IsEmpty());
}

TEST(Unplug, ReleasesTheHeldKeysAndFailsAfterThat)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    node.press(KEY_VOLUMEUP);
    node.setSwitch(SW_LINEIN_INSERT, true);
    subsystem.unplug(0);
    EXPECT_FALSE(node.isPlugged());
    // In the order of the codes, and a switch stays as it is.
    EXPECT_THAT(reader.read(),
                ElementsAre(Said{EV_KEY, KEY_OK, 1}, report, Said{EV_KEY, KEY_VOLUMEUP, 1}, report,
                            Said{EV_SW, SW_LINEIN_INSERT, 1}, report, Said{EV_KEY, KEY_VOLUMEUP, 0},
                            Said{EV_KEY, KEY_OK, 0}, madeUpReport));
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(reader.isReadable());
        EXPECT_EQ(reader.readError(), ENODEV);
    }
    input_id id;
    EXPECT_EQ(reader.ioctl(EVIOCGID, &id), -ENODEV);
    EXPECT_EQ(node.openDescriptors(), 1);
    EXPECT_EQ(OpenNode(node.path()).openError(), ENOENT);
}

TEST(Unplug, MayLoseWhatIsUnread)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    subsystem.unplug(0, InputSubsystem::Unread::Lost);
    EXPECT_TRUE(reader.isReadable());
    EXPECT_EQ(reader.readError(), ENODEV);
}

TEST(Unplug, OfAnIdleDeviceDeliversNothing)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    subsystem.unplug(0);
    EXPECT_EQ(reader.readError(), ENODEV);
}

TEST(Unplug, LeavesTheNextDeviceOnTheNodeAlone)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode before(node.path());
    subsystem.unplug(0);
    EXPECT_EQ(&subsystem.plug(0, panel), &node);
    const OpenNode after(node.path());
    EXPECT_TRUE(node.press(KEY_OK));
    EXPECT_EQ(before.readError(), ENODEV);
    EXPECT_THAT(after.read(), SizeIs(2));
    EXPECT_EQ(node.openDescriptors(), 2);
}

TEST(AutoRepeat, RepeatsAHeldKeyAfterTheDelayAndThenEachPeriod)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel.withAutoRepeat());
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    clock.advance(std::chrono::milliseconds(249));
    EXPECT_THAT(reader.read(), ElementsAre(Said{EV_KEY, KEY_OK, 1}, report));
    clock.advance(std::chrono::milliseconds(1));
    EXPECT_THAT(reader.read(), ElementsAre(Said{EV_KEY, KEY_OK, 2}, madeUpReport));
    clock.advance(std::chrono::milliseconds(66));
    const std::vector<input_event> repeats = reader.readRecords();
    ASSERT_THAT(repeats, SizeIs(4));
    EXPECT_EQ(msecsOf(repeats[0]), VirtualClock::DefaultStart + 283);
    EXPECT_EQ(msecsOf(repeats[2]), VirtualClock::DefaultStart + 316);
    node.release(KEY_OK);
    clock.advance(std::chrono::seconds(5));
    EXPECT_THAT(reader.read(), ElementsAre(Said{EV_KEY, KEY_OK, 0}, report));
}

TEST(AutoRepeat, RepeatsTheLastKeyUntilAnyKeyIsReleased)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel.withAutoRepeat());
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    node.press(KEY_VOLUMEUP);
    reader.read();
    clock.advance(std::chrono::milliseconds(250));
    EXPECT_THAT(reader.read(), ElementsAre(Said{EV_KEY, KEY_VOLUMEUP, 2}, madeUpReport));
    node.release(KEY_OK);
    clock.advance(std::chrono::seconds(1));
    EXPECT_THAT(reader.read(), ElementsAre(Said{EV_KEY, KEY_OK, 0}, report));
}

TEST(AutoRepeat, StaysOffOnceItIsSwitchedOff)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel.withAutoRepeat());
    const OpenNode reader(node.path());
    unsigned int off[2] = {0, 0};
    ASSERT_EQ(reader.ioctl(EVIOCSREP, off), 0);
    node.press(KEY_OK);
    clock.advance(std::chrono::seconds(10));
    EXPECT_THAT(reader.read(),
                ElementsAre(Said{EV_REP, REP_DELAY, 0}, Said{EV_REP, REP_PERIOD, 0},
                            Said{EV_KEY, KEY_OK, 1}, report));
}

TEST(AutoRepeat, OfAHeldKeyEndsWithOneMoreRepeatWhenItIsSwitchedOff)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel.withAutoRepeat());
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    clock.advance(std::chrono::milliseconds(250));
    reader.read();
    unsigned int off[2] = {0, 0};
    ASSERT_EQ(reader.ioctl(EVIOCSREP, off), 0);
    clock.advance(std::chrono::seconds(10));
    // The timer was already set, and the kernel does not take it back.
    EXPECT_THAT(reader.read(),
                ElementsAre(Said{EV_REP, REP_DELAY, 0}, Said{EV_REP, REP_PERIOD, 0},
                            Said{EV_KEY, KEY_OK, 2}, madeUpReport));
}

TEST(AutoRepeat, IsNotMadeForADeviceWithoutIt)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    clock.advance(std::chrono::seconds(10));
    EXPECT_THAT(reader.read(), ElementsAre(Said{EV_KEY, KEY_OK, 1}, report));
}

TEST(AutoRepeat, EndsWithTheDevice)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel.withAutoRepeat());
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    subsystem.unplug(0);
    reader.read();
    clock.advance(std::chrono::seconds(10));
    EXPECT_EQ(reader.readError(), ENODEV);
}

TEST(AutoRepeat, StartsFromAPressOnAnotherThread)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel.withAutoRepeat());
    const OpenNode reader(node.path());
    VirtualClock clock;
    std::thread([&node] { node.press(KEY_OK); }).join();
    clock.advance(std::chrono::milliseconds(250));
    EXPECT_THAT(
        reader.read(),
        ElementsAre(Said{EV_KEY, KEY_OK, 1}, report, Said{EV_KEY, KEY_OK, 2}, madeUpReport));
}
