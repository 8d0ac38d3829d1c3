#include "InputSubsystem.h"
#include "OpenNode.h"

#include <gmock/gmock.h>

using namespace Vorn::Sim;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

const DeviceDescription panel =
    DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK}).withSwitches({SW_LID});

} // namespace

TEST(ScriptedFailure, OfOpenHappensOnceUnlessToldOtherwise)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    node.failOpen(EMFILE);
    EXPECT_EQ(OpenNode(node.path()).openError(), EMFILE);
    EXPECT_TRUE(OpenNode(node.path()).isOpen());
    node.failOpen(EBUSY, 2);
    EXPECT_EQ(OpenNode(node.path()).openError(), EBUSY);
    EXPECT_EQ(OpenNode(node.path()).openError(), EBUSY);
    EXPECT_TRUE(OpenNode(node.path()).isOpen());
}

TEST(ScriptedFailure, OfOpenCanLetOthersThroughFirst)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    node.failOpen(ENXIO, 1, 2);
    EXPECT_TRUE(OpenNode(node.path()).isOpen());
    EXPECT_TRUE(OpenNode(node.path()).isOpen());
    EXPECT_EQ(OpenNode(node.path()).openError(), ENXIO);
    EXPECT_TRUE(OpenNode(node.path()).isOpen());
}

TEST(ScriptedFailure, OfOpenCanLastUntilItIsCleared)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    node.failOpen(EIO, InputNode::Forever);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(OpenNode(node.path()).openError(), EIO);
    node.clearFailures();
    EXPECT_TRUE(OpenNode(node.path()).isOpen());
}

TEST(ScriptedFailure, OfOpenConcernsOneNodeAndOutlivesItsDevice)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    InputNode &other = subsystem.plug(1, panel);
    node.failOpen(EIO);
    EXPECT_TRUE(OpenNode(other.path()).isOpen());
    subsystem.unplug(0);
    EXPECT_EQ(OpenNode(node.path()).openError(), ENOENT);
    subsystem.plug(0, panel);
    EXPECT_EQ(OpenNode(node.path()).openError(), EIO);
}

TEST(ScriptedFailure, OfAnIoctlConcernsThatRequestAloneWhateverItsSize)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel.withAutoRepeat());
    const OpenNode node(device.path());
    unsigned char buffer[256] = {};
    const struct
    {
        unsigned long scripted;
        unsigned long called;
    } requests[] = {
        {EVIOCGVERSION, EVIOCGVERSION},
        {EVIOCGID, EVIOCGID},
        {EVIOCGNAME(0), EVIOCGNAME(255)},
        {EVIOCGBIT(0, 0), EVIOCGBIT(0, 31)},
        {EVIOCGBIT(EV_KEY, 0), EVIOCGBIT(EV_KEY, 96)},
        {EVIOCGKEY(0), EVIOCGKEY(4)},
        {EVIOCGSW(0), EVIOCGSW(4)},
        {EVIOCGREP, EVIOCGREP},
        {EVIOCSREP, EVIOCSREP},
    };
    for (const auto &failing : requests) {
        device.failIoctl(failing.scripted, EIO);
        for (const auto &request : requests) {
            const bool isFailing = request.called == failing.called;
            EXPECT_EQ(node.ioctl(request.called, buffer) == -EIO, isFailing)
                << std::hex << failing.called << ' ' << request.called;
        }
        EXPECT_GE(node.ioctl(failing.called, buffer), 0);
    }
}

TEST(ScriptedFailure, OfAnIoctlCanLetOthersThroughAndLast)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode node(device.path());
    char name[8];
    device.failIoctl(EVIOCGNAME(0), EIO, InputNode::Forever, 1);
    EXPECT_EQ(node.ioctl(EVIOCGNAME(8), name), 6);
    EXPECT_EQ(node.ioctl(EVIOCGNAME(8), name), -EIO);
    EXPECT_EQ(node.ioctl(EVIOCGNAME(8), name), -EIO);
    device.clearFailures();
    EXPECT_EQ(node.ioctl(EVIOCGNAME(8), name), 6);
}

TEST(ScriptedFailure, OfReadComesAfterWhatIsQueuedAndWakesTheReader)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode node(device.path());
    const OpenNode other(device.path());
    device.press(KEY_OK);
    device.failRead(EIO, 2);
    device.release(KEY_OK);
    EXPECT_THAT(node.read(), ElementsAre(Event{EV_KEY, KEY_OK, 1}, report));
    EXPECT_TRUE(node.isReadable());
    EXPECT_EQ(node.readError(), EIO);
    EXPECT_EQ(node.readError(), EIO);
    EXPECT_THAT(node.read(), ElementsAre(Event{EV_KEY, KEY_OK, 0}, report));
    EXPECT_FALSE(node.isReadable());
    EXPECT_THAT(other.read(), SizeIs(2));
    EXPECT_EQ(other.readError(), EIO);
}

TEST(ScriptedFailure, OfReadOnceDoesNotConcernLaterDescriptors)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    device.failRead(EINTR);
    const OpenNode node(device.path());
    EXPECT_FALSE(node.isReadable());
    EXPECT_EQ(node.readError(), EAGAIN);
}

TEST(ScriptedFailure, OfReadForEverConcernsLaterDescriptors)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode before(device.path());
    device.failRead(EIO, InputNode::Forever);
    const OpenNode after(device.path());
    for (const OpenNode *node : {&before, &after}) {
        EXPECT_TRUE(node->isReadable());
        EXPECT_EQ(node->readError(), EIO);
        EXPECT_EQ(node->readError(), EIO);
    }
    device.press(KEY_OK);
    EXPECT_THAT(before.read(), SizeIs(2));
    EXPECT_EQ(before.readError(), EIO);
    device.clearFailures();
    EXPECT_EQ(before.readError(), EAGAIN);
    EXPECT_FALSE(before.isReadable());
}

TEST(ScriptedFailure, OfReadIsTakenBackFromTheQueues)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode node(device.path());
    device.failRead(EIO, 3);
    device.press(KEY_OK);
    device.clearFailures();
    EXPECT_THAT(node.read(), SizeIs(2));
    EXPECT_EQ(node.readError(), EAGAIN);
    EXPECT_FALSE(node.isReadable());
}

TEST(ScriptedFailure, OfReadNoLongerWakesTheReaderWhenItIsTakenBack)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode node(device.path());
    device.failRead(EIO);
    EXPECT_TRUE(node.isReadable());
    device.clearFailures();
    EXPECT_FALSE(node.isReadable());
}

TEST(ScriptedFailure, OfReadIsTakenBackFromWhatIsNotRead)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode node(device.path());
    device.failRead(EIO);
    device.press(KEY_OK);
    device.failRead(EIO);
    device.release(KEY_OK);
    EXPECT_EQ(node.readError(), EIO);
    EXPECT_THAT(node.read(1), ElementsAre(Event{EV_KEY, KEY_OK, 1}));
    device.clearFailures();
    EXPECT_THAT(node.read(), ElementsAre(report, Event{EV_KEY, KEY_OK, 0}, report));
    EXPECT_FALSE(node.isReadable());
}
