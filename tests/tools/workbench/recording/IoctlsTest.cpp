#include "Ioctls.h"

#include "Diagnostic.h"
#include "RecordedDevice.h"
#include "RecordedKeyboard.h"
#include "Umockdev.h"

#include <gmock/gmock.h>

#include <string>

using namespace Vorn;
using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

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
    RecordedDevice device = recordedKeyboard();
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
    RecordedDevice device = recordedKeyboard();
    EXPECT_THAT(parseIoctls("EVIOCGBIT(0) 8 2b\n", "x.ioctl", &device), IsEmpty());
    EXPECT_EQ(device.name.toStdString(), recordedKeyboard().name.toStdString());
    EXPECT_TRUE(device.has(EV_KEY, KEY_INFO));
    EXPECT_TRUE(device.has(EV_ABS));
}

TEST(Ioctls, AreMissingInAFileOfAnotherKind)
{
    for (const char *text : {"", "@DEV /dev/input/event0\n", "root:secret:0:0\n"})
        EXPECT_EQ(ioctlErrorOf(text),
                  "x.ioctl: error: contains no answers of a device, lines like 'EVIOCGID 0 "
                  "1900010001000100'");
}

TEST(Ioctls, SayWhichLineIsWrong)
{
    EXPECT_EQ(ioctlErrorOf("\nEVIOCGID 0 19000\n"),
              "x.ioctl:2: error: expected pairs of hexadecimal digits, found '19000'");
    EXPECT_EQ(ioctlErrorOf("EVIOCGID 0 1900\n"),
              "x.ioctl:1: error: expected an identity of 8 bytes");
    EXPECT_EQ(ioctlErrorOf("EVIOCGNAME(0) much 61\n"),
              "x.ioctl:1: error: expected the result of the ioctl, found 'much'");
    EXPECT_THAT(ioctlErrorOf("EVIOCGBIT(5) 8 000002\n"),
                HasSubstr("x.ioctl:1: error: codes above 16"));
}

TEST(Ioctls, AreWrittenForEveryRequestAndSize)
{
    RecordedDevice device;
    device.name = "panel";
    device.phys = "here";
    device.uniq = "7";
    device.id = {BUS_USB, 0x46d, 0xc31c, 0x110};
    device.properties = QByteArray("\x04", 1);
    device.declare(EV_KEY, KEY_ESC);
    device.declare(EV_SW, SW_LID);
    device.declare(EV_REP, REP_DELAY);
    device.keysDown = {KEY_ESC};
    device.switchesOn = {SW_LID};
    // The number of bytes in place of the zeros at the end.
    std::string brief;
    for (const QByteArray &line : ioctls(device).split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() != 3)
            continue;
        QByteArray bytes = fields.at(2);
        const auto size = bytes.size() / 2;
        while (bytes.endsWith("00"))
            bytes.chop(2);
        brief += (fields.at(0) + ' ' + fields.at(1) + ' ' + QByteArray::number(size) + ':' + bytes)
                     .toStdString()
            + '\n';
    }
    EXPECT_EQ(brief, R"(EVIOCGVERSION 0 4:010001
EVIOCGID 0 8:03006d041cc31001
EVIOCGNAME(0) 6 255:70616e656c
EVIOCGNAME(0) 6 256:70616e656c
EVIOCGPHYS(0) 5 255:68657265
EVIOCGPHYS(0) 5 256:68657265
EVIOCGUNIQ(0) 2 255:37
EVIOCGUNIQ(0) 2 256:37
EVIOCGPROP(0) 4 4:04
EVIOCGPROP(0) 8 8:04
EVIOCGBIT(0) 4 4:230010
EVIOCGBIT(0) 8 8:230010
EVIOCGBIT(0) 8 31:230010
EVIOCGBIT(1) 96 96:02
EVIOCGBIT(2) 4 4:
EVIOCGBIT(2) 8 8:
EVIOCGBIT(3) 4 4:
EVIOCGBIT(3) 8 8:
EVIOCGBIT(4) 4 4:
EVIOCGBIT(4) 8 8:
EVIOCGBIT(5) 4 4:01
EVIOCGBIT(5) 8 8:01
EVIOCGBIT(17) 4 4:
EVIOCGBIT(17) 8 8:
EVIOCGBIT(18) 4 4:
EVIOCGBIT(18) 8 8:
EVIOCGBIT(21) 16 16:
EVIOCGREP 0 8:fa00000021
EVIOCGKEY(0) 4 4:02
EVIOCGKEY(0) 96 96:02
EVIOCGLED(0) 4 4:
EVIOCGLED(0) 8 8:
EVIOCGSND(0) 4 4:
EVIOCGSND(0) 8 8:
EVIOCGSW(0) 4 4:01
EVIOCGSW(0) 8 8:01
)");
}

TEST(Ioctls, AreReadWhereTheyAreCallsThatSucceeded)
{
    EXPECT_EQ(parseAnswers("EVIOCGNAME#0) 4 6162\n").device.name.toStdString(), "");
    EXPECT_EQ(parseAnswers("EVIOCGNAME[0) 4 6162\n").device.name.toStdString(), "");
    EXPECT_EQ(parseAnswers("EVIOCGNAME(0] 4 6162\n").device.name.toStdString(), "");
    EXPECT_EQ(parseAnswers("EVIOCGNAME(1) 4 6162\n").device.name.toStdString(), "");
    EXPECT_EQ(parseAnswers("EVIOCGNAME(0) 0 6162\n").device.name.toStdString(), "ab");
    EXPECT_EQ(ioctlErrorOf("EVIOCGPHYS(0) -2 zz\n"), "(none)");
    EXPECT_EQ(parseAnswers("EVIOCGUNIQ(0) -1 6162\n").device.uniq.toStdString(), "");
}

TEST(Ioctls, TellSwitchesAndKeysUpToTheLast)
{
    const ParsedIoctls parsed = parseAnswers("EVIOCGSW(0) 8 0100030000000000\n"
                                             "EVIOCGKEY(0) 97 "
                                             + QByteArray("00").repeated(95) + "8001\n");
    EXPECT_THAT(parsed.device.switchesOn, ElementsAre(SW_LID, SW_MAX));
    EXPECT_THAT(parsed.device.keysDown, ElementsAre(KEY_MAX));
}
