#include "Umockdev.h"
#include "Diagnostic.h"
#include "Ioctls.h"
#include "Keyboard.h"
#include "RecordedDevice.h"
#include "Recording.h"

#include <gmock/gmock.h>

#include <string>

using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

ParsedRecording parse(const QByteArray &text)
{
    return parseUmockdev(text, "x.umockdev");
}

std::string errorOf(const QByteArray &text)
{
    const Diagnostics diagnostics = parse(text).diagnostics;
    return diagnostics.isEmpty() ? "(none)" : diagnostics.first().toString().toStdString();
}

RecordedDevice keyboard()
{
    RecordedDevice device;
    device.name = "A \\ \"Keyboard\"\nof two lines";
    device.id = {BUS_USB, 0x46d, 0xc31c, 0x110};
    device.phys = "usb-0000:00:14.0-1/input0";
    device.uniq = "77";
    device.properties = QByteArray("\x04", 1);
    for (const int code : {KEY_ESC, KEY_A, KEY_VOLUMEUP, KEY_INFO, KEY_MAX})
        device.declare(EV_KEY, code);
    device.declare(EV_SW, SW_MAX);
    device.declare(EV_MSC, MSC_SCAN);
    return device;
}

constexpr char recorded[] = R"(P: /devices/platform/panel/input/input4
E: EV=3
E: KEY=40 0 0 0 0 0 1c000000000000 0
E: NAME="front-panel"
E: PHYS="gpio-keys/input0"
E: PRODUCT=19/46d/c31c/110
E: PROP=0
E: SUBSYSTEM=input
A: capabilities/key=40 0 0 0 0 0 1c000000000000 0
A: uevent=PRODUCT=19/1/1/100\nNAME="front-panel"
L: device=../../../panel

P: /devices/platform/panel/input/input4/event4
N: input/event4
E: DEVNAME=/dev/input/event4
E: SUBSYSTEM=input
A: dev=13:68

P: /devices/platform/panel/input/input4/js0
N: input/js0
E: SUBSYSTEM=input

P: /devices/platform/panel
E: DRIVER=gpio-keys
E: EV=this is no bitmap

P: /devices/absent/event5
N: input/event5=00
E: DEVNAME=/dev/input/event5

P: /devices/bare/event6
N: input/event6
E: DEVNAME=/dev/input/event6
)";

} // namespace

TEST(Umockdev, TellsOfANodeWhatItsInputDeviceSays)
{
    const ParsedRecording recording = parse(recorded);
    ASSERT_TRUE(recording.diagnostics.isEmpty()) << errorOf(recorded);
    ASSERT_EQ(recording.nodes.size(), 2);
    EXPECT_EQ(recording.nodes.at(0).number, 4);
    ASSERT_TRUE(recording.nodes.at(0).device);
    const RecordedDevice &device = *recording.nodes.at(0).device;
    EXPECT_EQ(device.name.toStdString(), "front-panel");
    EXPECT_EQ(device.phys.toStdString(), "gpio-keys/input0");
    EXPECT_EQ(device.id.bustype, BUS_HOST);
    EXPECT_EQ(device.id.version, 0x110);
    EXPECT_THAT(device.codesOf(EV_KEY), ElementsAre(KEY_MUTE + 1, KEY_VOLUMEUP, KEY_POWER, 0x1c6));
}

TEST(Umockdev, LeavesOutFilesAndTellsNothingOfBareNodes)
{
    const ParsedRecording recording = parse(recorded);
    EXPECT_EQ(recording.nodes.at(1).number, 6);
    EXPECT_FALSE(recording.nodes.at(1).device);
}

TEST(Umockdev, FindsOutHowLargeTheWordsAre)
{
    const auto keysOf = [](const QByteArray &lines) {
        const ParsedRecording recording = parse("P: /devices/a/event0\nN: input/event0\n" + lines);
        return recording.nodes.first().device->codesOf(EV_KEY);
    };
    EXPECT_THAT(keysOf("E: EV=3\nE: KEY=1 0\n"), ElementsAre(64));
    // More words than a machine of 64 bits has for keys.
    EXPECT_THAT(keysOf("E: EV=3\nE: KEY=1 0 0 0 0 0 0 0 0 0 0 0 0\n"), ElementsAre(12 * 32));
    // The alias names the codes.
    EXPECT_THAT(
        keysOf("E: EV=3\nE: KEY=1 0\nE: MODALIAS=input:b0019v0001p0001e0001-e0,1,k20,ram\n"),
        ElementsAre(32));
    EXPECT_THAT(
        keysOf("E: EV=3\nE: KEY=1 1\nE: MODALIAS=input:b0019v0001p0001e0001-e0,1,k0,40,ram\n"),
        ElementsAre(0, 64));
}

TEST(Umockdev, ReadsTheBlocksItWrites)
{
    const QByteArray text = umockdevBlock(0, keyboard()) + '\n' + umockdevBlock(40, {});
    EXPECT_THAT(text.toStdString(), HasSubstr("\nN: input/event0\n"));
    EXPECT_THAT(text.toStdString(), HasSubstr("\nA: dev=13:64\n"));
    EXPECT_THAT(text.toStdString(), HasSubstr("\nA: dev=13:264\n"));
    const ParsedRecording recording = parse(text);
    ASSERT_TRUE(recording.diagnostics.isEmpty()) << errorOf(text);
    ASSERT_EQ(recording.nodes.size(), 2);
    EXPECT_EQ(recording.nodes.at(0).device->name.toStdString(), keyboard().name.toStdString());
    EXPECT_EQ(recording.nodes.at(1).number, 40);
    EXPECT_EQ((umockdevBlock(0, *recording.nodes.at(0).device) + '\n'
               + umockdevBlock(40, *recording.nodes.at(1).device))
                  .toStdString(),
              text.toStdString());
}

TEST(Umockdev, SaysWhichLineIsWrong)
{
    EXPECT_EQ(errorOf("# comment\n"),
              "x.umockdev:1: error: a device begins with its path, as in 'P: /devices/…', found "
              "'# comment'");
    EXPECT_EQ(
        errorOf("P: /devices/a\nhello\n"),
        "x.umockdev:2: error: expected a line of P:, N:, S:, L:, E:, A: or H:, found 'hello'");
    EXPECT_THAT(errorOf("P: /devices/a\nE: EV\n"),
                HasSubstr("x.umockdev:2: error: expected a name"));
    EXPECT_THAT(errorOf("P: /a\nN: input/event99999999999\n"),
                HasSubstr("x.umockdev:2: error: expected the number of a node"));
    EXPECT_EQ(errorOf("P: /a\nN: input/event1\n\nP: /b\nN: input/event1\n"),
              "x.umockdev:4: error: event1 is described in line 1 already");
    EXPECT_EQ(errorOf("P: /a\nN: input/event1\nE: KEY=xyz\n"),
              "x.umockdev:1: error: the capabilities of '/a' are no bitmaps of codes");
    EXPECT_THAT(errorOf("P: /a\nN: input/event1\nE: SW=80000\n"), HasSubstr("no bitmaps of codes"));
    EXPECT_THAT(errorOf("P: /a\nN: input/event1\nE: KEY=" + QByteArray("1 ").repeated(100'000)),
                HasSubstr("no bitmaps of codes"));
}

TEST(Umockdev, HandlesManyNodesOfOneDevice)
{
    QByteArray text = "P: /devices/a\nE: NAME=\"a\"\nE: EV=3\n\n";
    for (int i = 0; i < 20'000; ++i) {
        const QByteArray node = "event" + QByteArray::number(i);
        text += "P: /devices/a/" + node + "\nN: input/" + node + "\n\n";
    }
    const ParsedRecording recording = parse(text);
    EXPECT_TRUE(recording.diagnostics.isEmpty()) << errorOf(text);
    ASSERT_EQ(recording.nodes.size(), 20'000);
    EXPECT_EQ(recording.nodes.last().device->name.toStdString(), "a");
}

namespace {

struct ParsedIoctls
{
    RecordedDevice device;
    Diagnostics diagnostics;
};

ParsedIoctls parseAnswers(const QByteArray &text)
{
    ParsedIoctls result;
    result.diagnostics = parseIoctls(text, "x.ioctl", &result.device);
    return result;
}

std::string ioctlErrorOf(const QByteArray &text)
{
    const Diagnostics diagnostics = parseAnswers(text).diagnostics;
    return diagnostics.isEmpty() ? "(none)" : diagnostics.first().toString().toStdString();
}

} // namespace

TEST(Ioctls, AreReadAsTheyWereWritten)
{
    RecordedDevice device = keyboard();
    device.keysDown = {KEY_ESC, KEY_INFO};
    device.switchesOn = {SW_LID, SW_MAX};
    const QByteArray text = ioctls(device);
    const ParsedIoctls parsed = parseAnswers(text);
    ASSERT_TRUE(parsed.diagnostics.isEmpty()) << ioctlErrorOf(text);
    EXPECT_EQ(ioctls(parsed.device).toStdString(), text.toStdString());
    EXPECT_EQ(umockdevBlock(0, parsed.device).toStdString(),
              umockdevBlock(0, device).toStdString());
    EXPECT_THAT(parsed.device.keysDown, ElementsAre(KEY_ESC, KEY_INFO));
    EXPECT_THAT(parsed.device.switchesOn, ElementsAre(SW_LID, SW_MAX));
}

TEST(Ioctls, AnswerWhatTheLibraryAsksFor)
{
    RecordedDevice device;
    device.name = "panel";
    device.id = {BUS_HOST, 1, 1, 0x100};
    device.declare(EV_KEY, KEY_VOLUMEUP);
    device.declare(EV_SW, SW_LINEIN_INSERT);
    device.switchesOn = {SW_HEADPHONE_INSERT};
    const std::string text = ioctls(device).toStdString();
    const auto bytes = [](const std::string &hex, std::size_t size) {
        return hex + std::string(2 * size - hex.size(), '0') + '\n';
    };
    EXPECT_THAT(text, HasSubstr("EVIOCGID 0 1900010001000001\n"));
    EXPECT_THAT(text, HasSubstr("EVIOCGNAME(0) 6 " + bytes("70616e656c", 255)));
    EXPECT_THAT(text, HasSubstr("EVIOCGNAME(0) 6 " + bytes("70616e656c", 256)));
    EXPECT_THAT(text, HasSubstr("EVIOCGBIT(0) 8 " + bytes("23", 31)));
    EXPECT_THAT(text, HasSubstr("EVIOCGKEY(0) 4 00000000\n"));
    EXPECT_THAT(text, HasSubstr("EVIOCGSW(0) 4 04000000\n"));
}

TEST(Ioctls, OfATreeWithUnknownAndFailedOnesAreReadAsFarAsTheyTell)
{
    const ParsedIoctls parsed = parseAnswers("@DEV /dev/input/event0\n# comment\n"
                                             "USBDEVFS_CONNINFO 0 11 0\n"
                                             "EVIOCGNAME(0) 4 616263\n"
                                             "  EVIOCGNAME(0) 6 6162636465660000\n"
                                             "EVIOCGPHYS(0) -2 \n"
                                             "EVIOCGREP 0 zz\n");
    EXPECT_EQ(parsed.device.name.toStdString(), "abcdef");
    EXPECT_TRUE(parsed.device.phys.isNull());
    ASSERT_EQ(parsed.diagnostics.size(), 1);
    EXPECT_EQ(parsed.diagnostics.first().line, 7);
}

TEST(Ioctls, LeaveAloneWhatTheyDoNotTell)
{
    RecordedDevice device = keyboard();
    EXPECT_THAT(parseIoctls("EVIOCGBIT(0) 8 2b\n", "x.ioctl", &device), IsEmpty());
    EXPECT_EQ(device.name.toStdString(), keyboard().name.toStdString());
    EXPECT_TRUE(device.has(EV_KEY, KEY_INFO));
    EXPECT_TRUE(device.has(EV_ABS));
}

TEST(Ioctls, SayWhichLineIsWrong)
{
    EXPECT_EQ(ioctlErrorOf("\nEVIOCGID 0 19000\n"),
              "x.ioctl:2: error: expected pairs of hexadecimal digits, found '19000'");
    EXPECT_EQ(ioctlErrorOf("EVIOCGID 0 1900\n"), "x.ioctl:1: error: an identity has 8 bytes");
    EXPECT_EQ(ioctlErrorOf("EVIOCGNAME(0) much 61\n"),
              "x.ioctl:1: error: expected the result of the ioctl, found 'much'");
    EXPECT_THAT(ioctlErrorOf("EVIOCGBIT(5) 8 000002\n"),
                HasSubstr("x.ioctl:1: error: codes beyond 16"));
}
