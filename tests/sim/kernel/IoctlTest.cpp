#include "InputSubsystem.h"
#include "OpenNode.h"
#include "VirtualClock.h"

#include <gmock/gmock.h>

#include <termios.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <vector>

using namespace Vorn::Sim;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const DeviceDescription panel =
    DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK, KEY_VOLUMEUP, 765})
        .withSwitches({SW_LID, SW_LINEIN_INSERT}, {SW_LINEIN_INSERT});

using Bitmap = std::array<unsigned char, 128>;

bool bit(const Bitmap &bitmap, int number)
{
    return ((bitmap[static_cast<std::size_t>(number / 8)] >> (number % 8)) & 1) != 0;
}

std::vector<int> bits(const Bitmap &bitmap)
{
    std::vector<int> result;
    for (int i = 0; i < 8 * static_cast<int>(bitmap.size()); ++i) {
        if (bit(bitmap, i))
            result.push_back(i);
    }
    return result;
}

} // namespace

TEST(Ioctl, TellsVersionAndIdentity)
{
    InputSubsystem subsystem;
    const OpenNode node(subsystem.plug(0, panel.withId(BUS_USB, 0x46d, 0xc31c, 0x110)).path());
    int version = 0;
    EXPECT_EQ(node.ioctl(EVIOCGVERSION, &version), 0);
    EXPECT_EQ(version, EV_VERSION);
    input_id id = {};
    EXPECT_EQ(node.ioctl(EVIOCGID, &id), 0);
    EXPECT_EQ(id.bustype, BUS_USB);
    EXPECT_EQ(id.vendor, 0x46d);
    EXPECT_EQ(id.product, 0xc31c);
    EXPECT_EQ(id.version, 0x110);
}

TEST(Ioctl, TellsTheNameWithItsEndAndTheLength)
{
    InputSubsystem subsystem;
    const OpenNode node(subsystem.plug(0, panel).path());
    char name[256];
    std::fill(std::begin(name), std::end(name), 'x');
    EXPECT_EQ(node.ioctl(EVIOCGNAME(sizeof(name)), name), 6);
    EXPECT_STREQ(name, "panel");
    EXPECT_EQ(name[6], 'x');
}

TEST(Ioctl, CutsANameThatDoesNotFitAndLeavesItsEndOut)
{
    InputSubsystem subsystem;
    DeviceDescription device = panel;
    device.name = QByteArray(300, 'n');
    const OpenNode node(subsystem.plug(0, device).path());
    char name[256];
    std::fill(std::begin(name), std::end(name), 'x');
    EXPECT_EQ(node.ioctl(EVIOCGNAME(255), name), 255);
    EXPECT_EQ(name[254], 'n');
    EXPECT_EQ(name[255], 'x');
    EXPECT_EQ(node.ioctl(EVIOCGNAME(0), name), 0);
}

TEST(Ioctl, TellsAnEmptyNameButNoMissingOne)
{
    InputSubsystem subsystem;
    DeviceDescription device = panel;
    device.name = "";
    const OpenNode empty(subsystem.plug(0, device).path());
    device.name = QByteArray();
    const OpenNode missing(subsystem.plug(1, device).path());
    char name[8] = {'x'};
    EXPECT_EQ(empty.ioctl(EVIOCGNAME(sizeof(name)), name), 1);
    EXPECT_EQ(name[0], '\0');
    EXPECT_EQ(missing.ioctl(EVIOCGNAME(sizeof(name)), name), -ENOENT);
}

TEST(Ioctl, HasNoPhysicalPathAndNoUniqueName)
{
    InputSubsystem subsystem;
    const OpenNode node(subsystem.plug(0, panel).path());
    char text[8];
    EXPECT_EQ(node.ioctl(EVIOCGPHYS(sizeof(text)), text), -ENOENT);
    EXPECT_EQ(node.ioctl(EVIOCGUNIQ(sizeof(text)), text), -ENOENT);
}

TEST(Ioctl, TellsTheDeclaredTypesInWholeLongs)
{
    InputSubsystem subsystem;
    const OpenNode node(subsystem.plug(0, panel.withAutoRepeat().withEventTypes({EV_MSC})).path());
    Bitmap bitmap = {};
    EXPECT_EQ(node.ioctl(EVIOCGBIT(0, 31), bitmap.data()), static_cast<int>(sizeof(long)));
    EXPECT_THAT(bits(bitmap), ElementsAre(EV_SYN, EV_KEY, EV_MSC, EV_SW, EV_REP));
    bitmap = {};
    EXPECT_EQ(node.ioctl(EVIOCGBIT(0, 1), bitmap.data()), 1);
    EXPECT_THAT(bits(bitmap), ElementsAre(EV_SYN, EV_KEY, EV_MSC, EV_SW));
}

TEST(Ioctl, DeclaresNoTypeThatTheDeviceHasNoCodesOf)
{
    InputSubsystem subsystem;
    const OpenNode keys(
        subsystem.plug(0, DeviceDescription::keyboard("k", BUS_HOST, {KEY_OK})).path());
    const OpenNode switches(
        subsystem.plug(1, DeviceDescription::switchBox("s", BUS_HOST, {SW_LID})).path());
    Bitmap bitmap = {};
    keys.ioctl(EVIOCGBIT(0, 31), bitmap.data());
    EXPECT_THAT(bits(bitmap), ElementsAre(EV_SYN, EV_KEY));
    switches.ioctl(EVIOCGBIT(0, 31), bitmap.data());
    EXPECT_THAT(bits(bitmap), ElementsAre(EV_SYN, EV_SW));
}

TEST(Ioctl, TellsTheDeclaredCodesOfEachType)
{
    InputSubsystem subsystem;
    const OpenNode node(subsystem.plug(0, panel.withEventTypes({EV_MSC})).path());
    Bitmap bitmap = {};
    EXPECT_EQ(node.ioctl(EVIOCGBIT(EV_KEY, 128), bitmap.data()), 96);
    EXPECT_THAT(bits(bitmap), ElementsAre(KEY_VOLUMEUP, KEY_OK, 765));
    bitmap = {};
    EXPECT_EQ(node.ioctl(EVIOCGBIT(EV_SW, 128), bitmap.data()), static_cast<int>(sizeof(long)));
    EXPECT_THAT(bits(bitmap), ElementsAre(SW_LID, SW_LINEIN_INSERT));
    bitmap = {};
    for (const int type : {EV_REL, EV_ABS, EV_MSC, EV_LED, EV_SND, EV_FF}) {
        EXPECT_GT(node.ioctl(EVIOCGBIT(static_cast<unsigned long>(type), 128), bitmap.data()), 0);
        EXPECT_THAT(bits(bitmap), IsEmpty());
    }
    EXPECT_EQ(node.ioctl(EVIOCGBIT(EV_REP, 128), bitmap.data()), -EINVAL);
}

TEST(Ioctl, TellsHeldKeysAndSwitchesThatAreOn)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel.withKeys({KEY_1}, {KEY_2}));
    const OpenNode node(device.path());
    device.press(765);
    Bitmap bitmap = {};
    EXPECT_EQ(node.ioctl(EVIOCGKEY(128), bitmap.data()), 96);
    EXPECT_THAT(bits(bitmap), ElementsAre(KEY_2, 765));
    bitmap = {};
    EXPECT_EQ(node.ioctl(EVIOCGKEY(4), bitmap.data()), 4);
    EXPECT_THAT(bits(bitmap), ElementsAre(KEY_2));
    bitmap = {};
    EXPECT_EQ(node.ioctl(EVIOCGSW(4), bitmap.data()), 4);
    EXPECT_THAT(bits(bitmap), ElementsAre(SW_LINEIN_INSERT));
    EXPECT_EQ(node.ioctl(EVIOCGSW(128), bitmap.data()), static_cast<int>(sizeof(long)));
    bitmap = {};
    for (const unsigned long request : {EVIOCGLED(128), EVIOCGSND(128), EVIOCGPROP(128)}) {
        EXPECT_EQ(node.ioctl(request, bitmap.data()), static_cast<int>(sizeof(long)));
        EXPECT_THAT(bits(bitmap), IsEmpty());
    }
    EXPECT_TRUE(device.release(KEY_2)) << "a held key is declared";
    InputNode &lid = subsystem.plug(1, DeviceDescription::switchBox("lid", BUS_HOST, {}, {SW_LID}));
    EXPECT_TRUE(lid.setSwitch(SW_LID, false)) << "and so is a switch that is on";
}

TEST(Ioctl, ForStatesTakesTheirRecordsOutOfTheAskersQueueOnly)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode asker(device.path());
    const OpenNode other(device.path());
    device.press(KEY_OK);
    device.setSwitch(SW_LID, true);
    device.press(KEY_VOLUMEUP);
    device.report(EV_KEY, KEY_OK, 0);
    device.report(EV_SW, SW_LID, 0);
    device.sync();
    Bitmap bitmap = {};
    asker.ioctl(EVIOCGKEY(96), bitmap.data());
    // A packet that is empty now is dropped, but a report at the front stays: it may end a packet
    // whose start was read already.
    EXPECT_THAT(
        asker.read(),
        ElementsAre(report, Event{EV_SW, SW_LID, 1}, report, Event{EV_SW, SW_LID, 0}, report));
    EXPECT_THAT(other.read(), SizeIs(9));
}

TEST(Ioctl, ForStatesGoesOnWhereAReaderHasStoppedInAPacket)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode node(device.path());
    device.press(KEY_OK);
    device.setSwitch(SW_LID, true);
    device.release(KEY_OK);
    EXPECT_THAT(node.read(1), ElementsAre(Event{EV_KEY, KEY_OK, 1}));
    Bitmap bitmap = {};
    node.ioctl(EVIOCGKEY(96), bitmap.data());
    EXPECT_THAT(node.read(), ElementsAre(report, Event{EV_SW, SW_LID, 1}, report));
    EXPECT_FALSE(node.isReadable());

    device.setSwitch(SW_LID, false);
    device.press(KEY_OK);
    EXPECT_THAT(node.read(1), ElementsAre(Event{EV_SW, SW_LID, 0}));
    node.ioctl(EVIOCGKEY(96), bitmap.data());
    EXPECT_THAT(node.read(), ElementsAre(report));
    EXPECT_FALSE(node.isReadable());
}

TEST(Ioctl, ForStatesLeavesOddBytesErrorsAndDroppedMarksInTheQueue)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode node(device.path());
    device.setSwitch(SW_LID, true);
    device.press(KEY_OK);
    device.send({InputNode::record(EV_SYN, SYN_DROPPED, 0), InputNode::record(EV_SYN, 0, 0)});
    device.sendBytes("odd");
    device.failRead(EIO);
    device.release(KEY_OK);
    Bitmap bitmap = {};
    node.ioctl(EVIOCGKEY(96), bitmap.data());
    EXPECT_THAT(
        node.read(),
        ElementsAre(Event{EV_SW, SW_LID, 1}, report, Event{EV_SYN, SYN_DROPPED, 0}, report));
    char buffer[64] = {};
    EXPECT_EQ(node.readInto(buffer, sizeof(buffer)), 3);
    EXPECT_STREQ(buffer, "odd");
    EXPECT_EQ(node.readError(), EIO);
    // The report of the release ends no packet any more, but neither does it follow another report.
    EXPECT_THAT(node.read(), ElementsAre(report));
}

TEST(Ioctl, ForStatesLeavesADescriptorUnreadableWithoutRecords)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode node(device.path());
    device.send({InputNode::record(EV_SW, SW_LID, 1)});
    EXPECT_TRUE(node.isReadable());
    Bitmap bitmap = {};
    node.ioctl(EVIOCGSW(4), bitmap.data());
    EXPECT_FALSE(node.isReadable());
    EXPECT_EQ(node.readError(), EAGAIN);
}

TEST(Ioctl, HasNoRepeatSettingsWithoutAutoRepeat)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode node(device.path());
    unsigned int repeat[2] = {1, 2};
    EXPECT_EQ(node.ioctl(EVIOCGREP, repeat), -ENOSYS);
    EXPECT_EQ(node.ioctl(EVIOCSREP, repeat), -ENOSYS);
    device.press(KEY_OK);
    EXPECT_THAT(node.read(), ElementsAre(Event{EV_KEY, KEY_OK, 1}, report));
}

TEST(Ioctl, ChangesTheRepeatSettingsAndTellsEveryReaderWithTheNextPacket)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel.withAutoRepeat());
    const OpenNode node(device.path());
    const OpenNode other(device.path());
    unsigned int repeat[2] = {};
    EXPECT_EQ(node.ioctl(EVIOCGREP, repeat), 0);
    EXPECT_THAT(repeat, ElementsAre(250, 33));
    unsigned int changed[2] = {250, 50};
    EXPECT_EQ(node.ioctl(EVIOCSREP, changed), 0);
    EXPECT_EQ(node.ioctl(EVIOCGREP, repeat), 0);
    EXPECT_THAT(repeat, ElementsAre(250, 50));
    EXPECT_FALSE(node.isReadable());
    device.press(KEY_OK);
    EXPECT_THAT(node.read(),
                ElementsAre(Event{EV_REP, REP_PERIOD, 50}, Event{EV_KEY, KEY_OK, 1}, report));
    EXPECT_THAT(other.read(), SizeIs(3));
    EXPECT_EQ(node.ioctl(EVIOCSREP, changed), 0);
    device.release(KEY_OK);
    EXPECT_THAT(node.read(), ElementsAre(Event{EV_KEY, KEY_OK, 0}, report));
    int negative[2] = {-1, 60};
    EXPECT_EQ(node.ioctl(EVIOCSREP, negative), 0);
    EXPECT_EQ(node.ioctl(EVIOCGREP, repeat), 0);
    EXPECT_THAT(repeat, ElementsAre(250, 60));
    EXPECT_FALSE(device.report(EV_REP, REP_CNT, 1));
    EXPECT_FALSE(device.report(EV_REP, REP_CNT, 2));
    EXPECT_FALSE(device.report(EV_REP, -1, 1));
}

TEST(Ioctl, GrabsTheDeviceForOneDescriptor)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    OpenNode owner(device.path());
    const OpenNode other(device.path());
    EXPECT_EQ(owner.ioctl(EVIOCGRAB, 0), -EINVAL);
    EXPECT_EQ(owner.ioctl(EVIOCGRAB, 1), 0);
    EXPECT_EQ(other.ioctl(EVIOCGRAB, 1), -EBUSY);
    EXPECT_EQ(owner.ioctl(EVIOCGRAB, 1), -EBUSY);
    EXPECT_EQ(other.ioctl(EVIOCGRAB, 0), -EINVAL);
    device.press(KEY_OK);
    device.send({InputNode::record(EV_KEY, KEY_A, 1)});
    EXPECT_THAT(owner.read(), SizeIs(3));
    EXPECT_FALSE(other.isReadable());
    owner.close();
    device.release(KEY_OK);
    EXPECT_THAT(other.read(), SizeIs(2));
    EXPECT_EQ(other.ioctl(EVIOCGRAB, 1), 0);
    EXPECT_EQ(other.ioctl(EVIOCGRAB, 0), 0);
}

TEST(Ioctl, KeepsAGrabUntilItsOwnDescriptorIsClosed)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode owner(device.path());
    const OpenNode other(device.path());
    OpenNode third(device.path());
    EXPECT_EQ(owner.ioctl(EVIOCGRAB, 1), 0);
    third.close();
    device.press(KEY_OK);
    EXPECT_THAT(owner.read(), SizeIs(2));
    EXPECT_FALSE(other.isReadable());
}

TEST(Ioctl, AnswersAsManyBytesAsATypeHasCodes)
{
    InputSubsystem subsystem;
    const OpenNode node(subsystem.plug(0, panel).path());
    // In whole longs, and without the highest code of each type.
    const auto bytesOf = [](int count) {
        const int bits = 8 * static_cast<int>(sizeof(long));
        return (count - 1 + bits - 1) / bits * static_cast<int>(sizeof(long));
    };
    char buffer[256] = {};
    EXPECT_EQ(node.ioctl(EVIOCGBIT(EV_REL, sizeof(buffer)), buffer), bytesOf(REL_CNT));
    EXPECT_EQ(node.ioctl(EVIOCGBIT(EV_ABS, sizeof(buffer)), buffer), bytesOf(ABS_CNT));
    EXPECT_EQ(node.ioctl(EVIOCGBIT(EV_MSC, sizeof(buffer)), buffer), bytesOf(MSC_CNT));
    EXPECT_EQ(node.ioctl(EVIOCGBIT(EV_LED, sizeof(buffer)), buffer), bytesOf(LED_CNT));
    EXPECT_EQ(node.ioctl(EVIOCGBIT(EV_SND, sizeof(buffer)), buffer), bytesOf(SND_CNT));
    EXPECT_EQ(node.ioctl(EVIOCGBIT(EV_FF, sizeof(buffer)), buffer), bytesOf(FF_CNT));
}

TEST(Ioctl, ChoosesTheClockOfTheStamps)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode node(device.path());
    const OpenNode other(device.path());
    int id = CLOCK_MONOTONIC;
    EXPECT_EQ(node.ioctl(EVIOCSCLOCKID, &id), 0);
    EXPECT_FALSE(node.isReadable()) << "nothing was dropped";
    device.press(KEY_OK);
    timespec now = {};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    EXPECT_EQ(msecsOf(node.readRecords().at(0)), now.tv_sec * 1000 + now.tv_nsec / 1'000'000);
    EXPECT_EQ(msecsOf(other.readRecords().at(0)), clock.now());
    device.release(KEY_OK);
    id = CLOCK_REALTIME;
    EXPECT_EQ(node.ioctl(EVIOCSCLOCKID, &id), 0);
    EXPECT_THAT(node.read(), ElementsAre(Event{EV_SYN, SYN_DROPPED, 0}));
    id = CLOCK_PROCESS_CPUTIME_ID;
    EXPECT_EQ(node.ioctl(EVIOCSCLOCKID, &id), -EINVAL);
}

TEST(Ioctl, OfTheSameClockDropsNothing)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode node(device.path());
    device.press(KEY_OK);
    int id = CLOCK_REALTIME;
    EXPECT_EQ(node.ioctl(EVIOCSCLOCKID, &id), 0);
    EXPECT_THAT(node.read(), ElementsAre(Event{EV_KEY, KEY_OK, 1}, report));
}

TEST(Ioctl, OfAnotherClockDropsOddBytesTooAndStampsTheMarkWithIt)
{
    VirtualClock clock;
    clock.advance(std::chrono::milliseconds(7));
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    const OpenNode node(device.path());
    device.sendBytes("old");
    int id = CLOCK_BOOTTIME;
    EXPECT_EQ(node.ioctl(EVIOCSCLOCKID, &id), 0);
    device.sendBytes("new");
    device.press(KEY_OK);
    const std::vector<input_event> mark = node.readRecords();
    ASSERT_THAT(mark, SizeIs(1));
    EXPECT_EQ(mark[0].code, SYN_DROPPED);
    EXPECT_EQ(msecsOf(mark[0]), 10'007);
    char buffer[64] = {};
    EXPECT_EQ(node.readInto(buffer, sizeof(buffer)), 3);
    EXPECT_STREQ(buffer, "new");
    EXPECT_EQ(msecsOf(node.readRecords().at(0)), 10'007);
}

TEST(Ioctl, RefusesEverythingElse)
{
    InputSubsystem subsystem;
    const OpenNode node(subsystem.plug(0, panel).path());
    char buffer[256] = {};
    EXPECT_EQ(node.ioctl(_IOR('E', 0x77, int), buffer), -EINVAL);
    EXPECT_EQ(node.ioctl(_IOW('E', 0x06, int), buffer), -EINVAL);
    EXPECT_EQ(node.ioctl(_IOR('F', 0x06, int), buffer), -EINVAL);
    EXPECT_EQ(node.ioctl(EVIOCGABS(0), buffer), -EINVAL);
    EXPECT_EQ(node.ioctl(FIONREAD, buffer), -EINVAL);
    EXPECT_EQ(node.ioctl(EVIOCGID, nullptr), -EFAULT);
    EXPECT_EQ(node.ioctl(_IO('E', 0x77), nullptr), -EINVAL);
}

TEST(Ioctl, OfTheDescriptorItselfWorks)
{
    InputSubsystem subsystem;
    const OpenNode node(subsystem.plug(0, panel).path(), O_RDONLY);
    int on = 1;
    EXPECT_EQ(node.ioctl(FIONBIO, &on), 0);
    EXPECT_EQ(node.readError(), EAGAIN);
    EXPECT_EQ(node.ioctl(FIOCLEX, nullptr), 0);
    EXPECT_EQ(::fcntl(node.fd(), F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(node.ioctl(FIONCLEX, nullptr), 0);
    EXPECT_EQ(::fcntl(node.fd(), F_GETFD), 0);
}

TEST(Ioctl, OnAForeignDescriptorIsPassedOn)
{
    InputSubsystem subsystem;
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ASSERT_EQ(::write(ends[1], "abc", 3), 3);
    int ready = 0;
    EXPECT_EQ(::ioctl(ends[0], FIONREAD, &ready), 0);
    EXPECT_EQ(ready, 3);
    termios settings = {};
    EXPECT_EQ(::ioctl(ends[0], TCGETS, &settings), -1);
    EXPECT_EQ(errno, ENOTTY);
    char buffer[8];
    EXPECT_EQ(::read(ends[0], buffer, sizeof(buffer)), 3);
    ::close(ends[0]);
    ::close(ends[1]);
    EXPECT_EQ(subsystem.callCounts().reads, 0U);
}
