#include "InputSubsystem.h"
#include "OpenNode.h"
#include "VirtualClock.h"

#include <gmock/gmock.h>

#include <chrono>
#include <thread>
#include <vector>

using namespace Vorn::Sim;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

const DeviceDescription panel =
    DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK, KEY_VOLUMEUP});

} // namespace

TEST(AutoRepeat, RepeatsAHeldKeyAfterTheDelayAndThenEachPeriod)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel.withAutoRepeat());
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    clock.advance(std::chrono::milliseconds(249));
    EXPECT_THAT(reader.read(), ElementsAre(Event{EV_KEY, KEY_OK, 1}, report));
    clock.advance(std::chrono::milliseconds(1));
    EXPECT_THAT(reader.read(), ElementsAre(Event{EV_KEY, KEY_OK, 2}, syntheticReport));
    clock.advance(std::chrono::milliseconds(66));
    const std::vector<input_event> repeats = reader.readRecords();
    ASSERT_THAT(repeats, SizeIs(4));
    EXPECT_EQ(msecsOf(repeats[0]), VirtualClock::DefaultStart + 283);
    EXPECT_EQ(msecsOf(repeats[2]), VirtualClock::DefaultStart + 316);
    node.release(KEY_OK);
    clock.advance(std::chrono::seconds(5));
    EXPECT_THAT(reader.read(), ElementsAre(Event{EV_KEY, KEY_OK, 0}, report));
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
    EXPECT_THAT(reader.read(), ElementsAre(Event{EV_KEY, KEY_VOLUMEUP, 2}, syntheticReport));
    node.release(KEY_OK);
    clock.advance(std::chrono::seconds(1));
    EXPECT_THAT(reader.read(), ElementsAre(Event{EV_KEY, KEY_OK, 0}, report));
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
                ElementsAre(Event{EV_REP, REP_DELAY, 0}, Event{EV_REP, REP_PERIOD, 0},
                            Event{EV_KEY, KEY_OK, 1}, report));
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
    // The timer is running already, and the kernel does not stop it.
    EXPECT_THAT(reader.read(),
                ElementsAre(Event{EV_REP, REP_DELAY, 0}, Event{EV_REP, REP_PERIOD, 0},
                            Event{EV_KEY, KEY_OK, 2}, syntheticReport));
}

TEST(AutoRepeat, IsNotMadeForADeviceWithoutIt)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    clock.advance(std::chrono::seconds(10));
    EXPECT_THAT(reader.read(), ElementsAre(Event{EV_KEY, KEY_OK, 1}, report));
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
        ElementsAre(Event{EV_KEY, KEY_OK, 1}, report, Event{EV_KEY, KEY_OK, 2}, syntheticReport));
}

TEST(AutoRepeat, NeedsADelayAndAPeriod)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel.withAutoRepeat());
    const OpenNode reader(node.path());
    const unsigned int settings[][2] = {{0, 33}, {250, 0}};
    for (const auto &setting : settings) {
        ASSERT_EQ(reader.ioctl(EVIOCSREP, setting), 0);
        node.press(KEY_OK);
        reader.read();
        clock.advance(std::chrono::seconds(1));
        EXPECT_FALSE(reader.isReadable());
        node.release(KEY_OK);
        reader.read();
    }
}

TEST(AutoRepeat, IsNotPutOffByRepeatsOfTheDriver)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel.withAutoRepeat());
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    clock.advance(std::chrono::milliseconds(200));
    node.repeat(KEY_OK);
    reader.read();
    clock.advance(std::chrono::milliseconds(50));
    EXPECT_THAT(reader.read(), ElementsAre(Event{EV_KEY, KEY_OK, 2}, syntheticReport));
}

TEST(AutoRepeat, WakesNobodyAfterTheDeviceIsGone)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel.withAutoRepeat());
    // Keeps what is left of the device.
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    subsystem.unplug(0);
    clock.settle();
    const quint64 before = clock.wakeUps();
    clock.advance(std::chrono::seconds(10));
    EXPECT_EQ(clock.wakeUps(), before);
}
