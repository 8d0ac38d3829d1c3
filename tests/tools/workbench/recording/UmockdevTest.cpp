#include "Umockdev.h"

#include "Diagnostic.h"
#include "RecordedDevice.h"
#include "RecordedKeyboard.h"
#include "Recording.h"

#include <gmock/gmock.h>

#include <string>

using namespace Vorn;
using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;

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
    const QByteArray text = umockdevBlock(0, recordedKeyboard()) + '\n' + umockdevBlock(40, {});
    EXPECT_THAT(text.toStdString(), HasSubstr("\nN: input/event0\n"));
    EXPECT_THAT(text.toStdString(), HasSubstr("\nA: dev=13:64\n"));
    EXPECT_THAT(text.toStdString(), HasSubstr("\nA: dev=13:264\n"));
    const ParsedRecording recording = parse(text);
    ASSERT_TRUE(recording.diagnostics.isEmpty()) << errorOf(text);
    ASSERT_EQ(recording.nodes.size(), 2);
    EXPECT_EQ(recording.nodes.at(0).device->name.toStdString(),
              recordedKeyboard().name.toStdString());
    EXPECT_EQ(recording.nodes.at(1).number, 40);
    EXPECT_EQ((umockdevBlock(0, *recording.nodes.at(0).device) + '\n'
               + umockdevBlock(40, *recording.nodes.at(1).device))
                  .toStdString(),
              text.toStdString());
}

TEST(Umockdev, TakesNamesThatAreNoText)
{
    const ParsedRecording recording = parse("P: /devices/a\nN: input/event1\nH: name=610D62E4\n"
                                            "H: descriptors=not for us\n");
    EXPECT_TRUE(recording.diagnostics.isEmpty());
    ASSERT_EQ(recording.nodes.size(), 1);
    EXPECT_EQ(recording.nodes.first().device->name.toStdString(), "a\rb\xe4");
    EXPECT_EQ(errorOf("P: /devices/a\nN: input/event1\nH: name=6x\n"),
              "x.umockdev:3: error: expected pairs of hexadecimal digits, found '6x'");
}

TEST(Umockdev, SaysWhichLineIsWrong)
{
    EXPECT_EQ(
        errorOf("# comment\n"),
        "x.umockdev:1: error: this is no device file: it does not begin with the path of a device, "
        "as in 'P: /devices/…'");
    EXPECT_EQ(
        errorOf("P: /devices/a\n\nhello\n"),
        "x.umockdev:3: error: expected a device to start with its path, as in 'P: /devices/…', "
        "found 'hello'");
    EXPECT_EQ(errorOf("P: /devices/a\nhello\n"),
              "x.umockdev:2: error: expected a line starting with P:, N:, S:, L:, E:, A: or H:, "
              "found 'hello'");
    EXPECT_THAT(errorOf("P: /devices/a\nE: EV\n"),
                HasSubstr("x.umockdev:2: error: expected a name"));
    EXPECT_THAT(
        errorOf("P: /a\nN: input/event99999999999\n"),
        HasSubstr("x.umockdev:2: error: expected the number of a node, up to 99999, as in "));
    EXPECT_EQ(errorOf("P: /a\nN: input/event1\n\nP: /b\nN: input/event1\n"),
              "x.umockdev:4: error: event1 is already described in line 1");
    EXPECT_EQ(errorOf("P: /a\nN: input/event1\nE: KEY=xyz\n"),
              "x.umockdev:1: error: the capabilities of '/a' are not valid bitmaps");
    EXPECT_THAT(errorOf("P: /a\nN: input/event1\nE: SW=80000\n"), HasSubstr("not valid bitmaps"));
    EXPECT_THAT(errorOf("P: /a\nN: input/event1\nE: KEY=" + QByteArray("1 ").repeated(100'000)),
                HasSubstr("not valid bitmaps"));
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

TEST(Umockdev, WritesADeviceAndItsNode)
{
    RecordedDevice device;
    device.name = "panel";
    device.phys = "port\\0";
    device.uniq = "7";
    device.id = {BUS_USB, 0x46d, 0xc, 0x110};
    device.properties = QByteArray("\x04", 1);
    device.declare(EV_KEY, KEY_ESC);
    device.declare(EV_KEY, 64);
    device.declare(EV_SW, SW_LINEIN_INSERT);
    device.declare(EV_REP, REP_DELAY);
    EXPECT_EQ(umockdevBlock(3, device).toStdString(),
              R"(P: /devices/virtual/input/input3
E: SUBSYSTEM=input
A: id/bustype=0003
A: id/vendor=046d
A: id/product=000c
A: id/version=0110
A: name=panel
A: phys=port\\0
A: uniq=7
A: properties=0000000000000004
A: capabilities/ev=0000000000100023
A: capabilities/key=0000000000000001 0000000000000002
A: capabilities/sw=0000000000002000

P: /devices/virtual/input/input3/event3
N: input/event3
E: DEVNAME=/dev/input/event3
E: SUBSYSTEM=input
A: dev=13:67
)");
    EXPECT_THAT(umockdevBlock(31, device).toStdString(), HasSubstr("\nA: dev=13:95\n"));
    EXPECT_THAT(umockdevBlock(32, device).toStdString(), HasSubstr("\nA: dev=13:256\n"));
    device.name = "caf\xe9";
    EXPECT_THAT(umockdevBlock(3, device).toStdString(), HasSubstr("\nH: name=636166E9\nA: phys="));
}

TEST(Umockdev, TakesOneBlankOrNoneAfterTheKind)
{
    const auto nodesOf = [](const QByteArray &line) {
        const ParsedRecording recording = parse("P: /a\n" + line + '\n');
        EXPECT_TRUE(recording.diagnostics.isEmpty());
        return recording.nodes.size();
    };
    EXPECT_EQ(nodesOf("N: input/event1"), 1);
    EXPECT_EQ(nodesOf("N:input/event1"), 1);
    EXPECT_EQ(nodesOf("N:\tinput/event1"), 0);
    EXPECT_EQ(nodesOf("N:  input/event1"), 0);
    EXPECT_EQ(nodesOf("N:"), 0);
}

TEST(Umockdev, TakesAProductOfFourNumbersOnly)
{
    const auto versionOf = [](const QByteArray &product) {
        const ParsedRecording recording =
            parse("P: /a\nN: input/event1\nA: name=a\nE: PRODUCT=" + product + '\n');
        EXPECT_TRUE(recording.diagnostics.isEmpty());
        return recording.nodes.first().device->id.version;
    };
    EXPECT_EQ(versionOf("19/46d/c31c/110"), 0x110);
    EXPECT_EQ(versionOf("\"19/46d/c31c/110\""), 0x110);
    // Of USB and of PCI.
    EXPECT_EQ(versionOf("46d/c31c/110"), 0);
    EXPECT_EQ(versionOf("/19/46d/c31c/110"), 0);
}

TEST(Umockdev, TakesTheIdentityAndTheCapabilitiesAsAttributes)
{
    const ParsedRecording recording =
        parse("P: /a\nN: input/event1\nA: id/bustype=0003\nA: id/vendor=046d\n"
              "A: id/product=c31c\nA: id/version=0110\nA: properties=4\n"
              "A: capabilities/ev=3\nA: capabilities/key=2\nA: phys=here\nA: uniq=7\n");
    ASSERT_TRUE(recording.diagnostics.isEmpty());
    const RecordedDevice &device = *recording.nodes.first().device;
    EXPECT_EQ(device.id.bustype, BUS_USB);
    EXPECT_EQ(device.id.vendor, 0x46d);
    EXPECT_EQ(device.id.product, 0xc31c);
    EXPECT_EQ(device.id.version, 0x110);
    EXPECT_EQ(device.properties.toHex().toStdString(), "04");
    EXPECT_THAT(device.codesOf(EV_KEY), ElementsAre(KEY_ESC));
    EXPECT_EQ(device.phys.toStdString(), "here");
    EXPECT_EQ(device.uniq.toStdString(), "7");
    EXPECT_EQ(errorOf("P: /a\nN: input/event1\nA: id/vendor=x\n"),
              "x.umockdev:3: error: expected up to four hexadecimal digits");
}

TEST(Umockdev, TakesNodesUpToTheLastNumber)
{
    EXPECT_EQ(parse("P: /a\nN: input/event99999\n").nodes.first().number, 99'999);
    EXPECT_EQ(errorOf("P: /a\nN: input/event100000\n"),
              "x.umockdev:2: error: expected the number of a node, up to 99999, as in "
              "'input/event0', found '100000'");
    EXPECT_EQ(errorOf("P: /a\nE: EV\n"),
              "x.umockdev:2: error: expected a name and a value, as in 'E: NAME=value', found "
              "'EV'");
}

TEST(Umockdev, SkipsLinksAndWhatItHasNoUseFor)
{
    EXPECT_EQ(errorOf("P: /a\nN: input/event1\nS: input/by-id/a\nL: driver\n"
                      "H: descriptors=0g\nA: size=x\n"),
              "(none)");
    for (const char *line : {"P; a=b", "PA a=b", "N", "Q: a=b"})
        EXPECT_EQ(errorOf("P: /a\n" + QByteArray(line) + '\n'),
                  "x.umockdev:2: error: expected a line starting with P:, N:, S:, L:, E:, A: or "
                  "H:, found '"
                      + std::string(line) + "'");
}

TEST(Umockdev, TakesTextsOfBytes)
{
    const ParsedRecording recording =
        parse("P: /a\nN: input/event1\nH: name=61\nH: phys=62\nH: uniq=63\n");
    EXPECT_EQ(recording.nodes.first().device->name.toStdString(), "a");
    EXPECT_EQ(recording.nodes.first().device->phys.toStdString(), "b");
    EXPECT_EQ(recording.nodes.first().device->uniq.toStdString(), "c");
}

TEST(Umockdev, TellsNothingOfANodeWhoseParentSaysNothing)
{
    const ParsedRecording recording =
        parse("P: /devices/a\nE: DRIVER=x\n\nP: /devices/a/event1\nN: input/event1\n");
    ASSERT_EQ(recording.nodes.size(), 1);
    EXPECT_FALSE(recording.nodes.first().device);
}
