#include "InputSubsystem.h"
#include "OpenNode.h"

#include <gmock/gmock.h>

using namespace Vorn::Sim;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

const DeviceDescription panel =
    DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK, KEY_VOLUMEUP})
        .withSwitches({SW_LINEIN_INSERT});

} // namespace

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
    // Keys are released in the order of their codes; switches keep their state.
    EXPECT_THAT(reader.read(),
                ElementsAre(Event{EV_KEY, KEY_OK, 1}, report, Event{EV_KEY, KEY_VOLUMEUP, 1},
                            report, Event{EV_SW, SW_LINEIN_INSERT, 1}, report,
                            Event{EV_KEY, KEY_VOLUMEUP, 0}, Event{EV_KEY, KEY_OK, 0},
                            syntheticReport));
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
    EXPECT_FALSE(reader.isReadable());
    subsystem.unplug(0);
    EXPECT_TRUE(reader.isReadable());
    EXPECT_EQ(reader.readError(), ENODEV);
    EXPECT_TRUE(reader.isReadable());
}

TEST(Unplug, EndsAPacketThatTheDriverHasBegun)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.report(EV_SW, SW_LINEIN_INSERT, 1);
    EXPECT_FALSE(reader.isReadable());
    subsystem.unplug(0);
    EXPECT_THAT(reader.read(), ElementsAre(Event{EV_SW, SW_LINEIN_INSERT, 1}, syntheticReport));
    EXPECT_EQ(reader.readError(), ENODEV);
}

TEST(Unplug, MayLoseWhatAReaderHasNotFinished)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    const OpenNode other(node.path());
    node.press(KEY_OK);
    node.release(KEY_OK);
    EXPECT_THAT(reader.read(1), ElementsAre(Event{EV_KEY, KEY_OK, 1}));
    subsystem.unplug(0, InputSubsystem::Unread::Lost);
    for (const OpenNode *open : {&reader, &other}) {
        EXPECT_TRUE(open->isReadable());
        EXPECT_EQ(open->readError(), ENODEV);
    }
}

TEST(Unplug, OfAReplacedDeviceWakesItsReaders)
{
    InputSubsystem subsystem;
    const OpenNode reader(subsystem.plug(0, panel).path());
    subsystem.replace(0, panel);
    EXPECT_TRUE(reader.isReadable());
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
