#include "Evemu.h"
#include "Diagnostic.h"
#include "RecordedDevice.h"
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
    return parseEvemu(text, "x.evemu");
}

std::string errorOf(const QByteArray &text)
{
    const Diagnostics diagnostics = parse(text).diagnostics;
    return diagnostics.isEmpty() ? "(none)" : diagnostics.first().toString().toStdString();
}

std::vector<qint64> timesOf(const ParsedRecording &recording)
{
    std::vector<qint64> times;
    for (const RecordedEvent &event : recording.nodes.first().events)
        times.push_back(event.time);
    return times;
}

RecordedDevice panel()
{
    RecordedDevice device;
    device.name = "front-panel";
    device.id = {BUS_HOST, 0x46d, 0xc31c, 0x110};
    device.properties = QByteArray("\x04", 1);
    device.declare(EV_KEY, KEY_VOLUMEUP);
    device.declare(EV_KEY, KEY_INFO);
    device.declare(EV_SW, SW_LINEIN_INSERT);
    device.declare(EV_SW, SW_HEADPHONE_INSERT);
    device.declare(EV_REP, REP_DELAY);
    device.switchesOn = {SW_LINEIN_INSERT};
    return device;
}

constexpr char described[] = R"(# EVEMU 1.3
# Input device name: "front-panel"
N: front-panel
I: 0019 046d c31c 0110
P: 04 00 00 00 00 00 00 00
B: 00 23 00 10 00 00 00 00 00
B: 01 00 00 00 00 00 00 00 00
B: 01 00 00 00 00 00 00 08 00
B: 02 00 00 00 00 00 00 00 00
B: 05 04 20 00 00 00 00 00 00
B: 14 00 00 00 00 00 00 00 00
A: 00 0 255 0 0 0
L: 00 0
S: 02 0
S: 0d 1
E: 3.500000 0001 0073 0001	# EV_KEY / KEY_VOLUMEUP         1
E: 3.500000 0000 0000 0000	# ------------ SYN_REPORT (0) ----------
E: 3.700250 0003 0000 -12
)";

} // namespace

TEST(Evemu, TellsWhatTheDeviceIsAndCanDo)
{
    const ParsedRecording recording = parse(described);
    ASSERT_TRUE(recording.diagnostics.isEmpty()) << errorOf(described);
    ASSERT_EQ(recording.nodes.size(), 1);
    ASSERT_TRUE(recording.nodes.first().device);
    const RecordedDevice &device = *recording.nodes.first().device;
    EXPECT_EQ(device.name.toStdString(), "front-panel");
    EXPECT_EQ(device.id.bustype, BUS_HOST);
    EXPECT_EQ(device.id.vendor, 0x46d);
    EXPECT_EQ(device.id.product, 0xc31c);
    EXPECT_EQ(device.id.version, 0x110);
    EXPECT_EQ(device.properties.toHex().toStdString(), "04");
    EXPECT_THAT(device.codesOf(EV_KEY), ElementsAre(KEY_VOLUMEUP));
    EXPECT_THAT(device.codesOf(EV_SW), ElementsAre(SW_HEADPHONE_INSERT, SW_LINEIN_INSERT));
    EXPECT_THAT(device.codes.keys(), ElementsAre(EV_KEY, EV_SW, EV_REP));
    EXPECT_THAT(device.switchesOn, ElementsAre(SW_LINEIN_INSERT));
}

TEST(Evemu, BeginsAtItsFirstEvent)
{
    EXPECT_THAT(timesOf(parse(described)), ElementsAre(0, 0, 200'250));
    const RecordedEvent last = parse(described).nodes.first().events.last();
    EXPECT_EQ(last.type, EV_ABS);
    EXPECT_EQ(last.value, -12);
}

TEST(Evemu, TakesTimesOfTheEpoch)
{
    EXPECT_THAT(timesOf(parse("E: 1795246800.999999 0001 0073 1\n"
                              "E: 1795246801.000001 0001 0073 0\n")),
                ElementsAre(0, 2));
}

TEST(Evemu, HasNoDeviceWhereNothingIsToldOfOne)
{
    const ParsedRecording recording = parse("# comment\r\nE: 0.000000 0000 0000 0000\r\n\r\n");
    EXPECT_TRUE(recording.diagnostics.isEmpty());
    EXPECT_FALSE(recording.nodes.first().device);
    EXPECT_EQ(recording.nodes.first().events.size(), 1);
}

TEST(Evemu, DeclaresCodesEvenIfTheirTypeIsMissingAmongTheTypes)
{
    const ParsedRecording recording = parse("N: x\nB: 05 04\n");
    EXPECT_TRUE(recording.nodes.first().device->has(EV_SW, SW_HEADPHONE_INSERT));
    EXPECT_FALSE(recording.nodes.first().device->has(EV_KEY));
}

TEST(Evemu, ReadsWhatItWrites)
{
    const QByteArray text = evemuDescription(panel()) + evemuEvent({0, EV_SYN, SYN_REPORT, 0})
        + evemuEvent({1'500'000, EV_KEY, KEY_INFO, 1})
        + evemuEvent({61'000'001, EV_ABS, ABS_Y, -2147483647 - 1});
    EXPECT_THAT(text.toStdString(), testing::StartsWith("# EVEMU 1.3\n"));
    EXPECT_THAT(text.toStdString(), HasSubstr("E: 1.500000 0001 0166 0001\n"));
    EXPECT_THAT(text.toStdString(), HasSubstr("E: 61.000001 0003 0001 -2147483648\n"));
    const ParsedRecording recording = parse(text);
    ASSERT_TRUE(recording.diagnostics.isEmpty()) << errorOf(text);
    QByteArray again = evemuDescription(*recording.nodes.first().device);
    for (const RecordedEvent &event : recording.nodes.first().events)
        again += evemuEvent(event);
    EXPECT_EQ(again.toStdString(), text.toStdString());
}

TEST(Evemu, KeepsANameWithALineEndOnItsLine)
{
    RecordedDevice device;
    device.name = " odd\nE: name\r# ";
    const ParsedRecording recording = parse(evemuDescription(device));
    EXPECT_TRUE(recording.diagnostics.isEmpty());
    EXPECT_EQ(recording.nodes.first().device->name.toStdString(), " odd E: name # ");
    EXPECT_TRUE(recording.nodes.first().events.isEmpty());
}

TEST(Evemu, SaysWhichLineIsWrong)
{
    EXPECT_EQ(errorOf("# fine\nN: x\nhello\n"),
              "x.evemu:3: error: expected a line like 'E: 1.500000 0001 0073 0001' or a comment, "
              "found 'hello'");
    EXPECT_EQ(errorOf("E: 1.500000 0001 0073\n"),
              "x.evemu:1: error: expected a value in decimal, found ''");
    EXPECT_EQ(errorOf("E: 1.500000 0001 0073 000a\n"),
              "x.evemu:1: error: expected a value in decimal, found '000a'");
    EXPECT_EQ(errorOf("E: 1.500000 0001 0073 1 2\n"),
              "x.evemu:1: error: expected nothing after the value, found '2'");
    EXPECT_EQ(errorOf("E: 1.500000 0020 0073 1\n"),
              "x.evemu:1: error: expected an event type from 0000 to 001f, found '0020'");
    EXPECT_EQ(errorOf("E: 1.500000 0001 10000 1\n"),
              "x.evemu:1: error: expected a code of up to four hexadecimal digits, found '10000'");
    EXPECT_EQ(errorOf("E: -1.500000 0001 0073 1\n"),
              "x.evemu:1: error: expected a time in seconds like 1.500000, found '-1.500000'");
    EXPECT_THAT(errorOf("I: 0003 046d\n"), HasSubstr("x.evemu:1: error: expected bus type"));
    EXPECT_EQ(errorOf("B: 01 0g\n"),
              "x.evemu:1: error: expected bytes of two hexadecimal digits, found '0g'");
    EXPECT_THAT(errorOf("S: 99 1\n"), HasSubstr("expected the code of a switch"));
}

TEST(Evemu, QuotesNothingOfAFileThatIsNoRecording)
{
    EXPECT_EQ(errorOf("# users\nroot:secret:0:0\nE: 1.500000 0001 0073 1\n"),
              "x.evemu:2: error: this is no recording of a device: it does not begin with a line "
              "like 'N: panel' or 'E: 1.500000 0001 0073 0001'");
}

TEST(Evemu, RefusesTimesThatOtherReadersTakeForSomethingElse)
{
    EXPECT_EQ(errorOf("E: 1.5 0001 0073 1\n"),
              "x.evemu:1: error: expected six digits after the point of a time, as in 1.500000, "
              "found '1.5'");
    EXPECT_THAT(errorOf("E: 1.1500000 0001 0073 1\n"), HasSubstr("expected six digits"));
}

TEST(Evemu, RefusesNumbersThatAreTooLarge)
{
    EXPECT_THAT(errorOf("E: 99999999999999999999.000000 0001 0073 1\n"),
                HasSubstr("expected a time"));
    EXPECT_EQ(errorOf("E: 100000000001.000000 0001 0073 1\n"),
              "x.evemu:1: error: '100000000001.000000' is out of range; a time is at most "
              "100000000000 seconds");
    EXPECT_EQ(errorOf("E: 100000000000.999999 0001 0073 1\n"), "(none)");
    EXPECT_THAT(errorOf("E: 1.000000 0001 0073 2147483648\n"), HasSubstr("expected a value"));
    EXPECT_THAT(errorOf("N: x\nB: 05 00 00 02\n"), HasSubstr("x.evemu:2: error: codes above 16"));
    EXPECT_THAT(errorOf("B: 01" + QByteArray(" 00").repeated(96) + " 01\n"),
                HasSubstr("more than 768 codes, which no device can have"));
}

TEST(Evemu, HoldsATimeThatGoesBackAndWarns)
{
    const QByteArray text = "E: 5.000000 0001 0073 1\nE: 4.000000 0001 0073 0\n"
                            "E: 6.000000 0001 0073 1\n";
    const ParsedRecording recording = parse(text);
    EXPECT_THAT(timesOf(recording), ElementsAre(0, 0, 1'000'000));
    ASSERT_EQ(recording.diagnostics.size(), 1);
    EXPECT_EQ(recording.diagnostics.first().line, 2);
    EXPECT_FALSE(hasErrors(recording.diagnostics));
}

TEST(Evemu, TellsTheFirstErrorsOnly)
{
    const ParsedRecording recording = parse("N: x\n" + QByteArray("nonsense\n").repeated(100'000));
    EXPECT_EQ(recording.diagnostics.size(), 21);
}

TEST(Evemu, StillTellsErrorsAfterManyWarnings)
{
    const ParsedRecording recording = parse(QByteArray("Q: odd\n").repeated(1000) + "nonsense\n");
    EXPECT_TRUE(hasErrors(recording.diagnostics));
    EXPECT_EQ(recording.diagnostics.last().line, 1001);
}

TEST(Evemu, HoldsATimeThatIsEarlierThanTheLastThoughNotThanTheFirst)
{
    const ParsedRecording recording = parse("E: 5.000000 0001 0073 1\nE: 7.000000 0001 0073 0\n"
                                            "E: 6.000000 0001 0073 1\nE: 7.000000 0001 0073 0\n");
    EXPECT_THAT(timesOf(recording), ElementsAre(0, 2'000'000, 2'000'000, 2'000'000));
    ASSERT_EQ(recording.diagnostics.size(), 1);
    EXPECT_EQ(recording.diagnostics.first().toString().toStdString(),
              "x.evemu:3: warning: earlier than the event before it; using that event's time");
}

TEST(Evemu, TakesACommentAfterTheValueAndNothingElse)
{
    EXPECT_EQ(errorOf("E: 1.500000 0001 0073 1 # EV_KEY\n"), "(none)");
    EXPECT_EQ(errorOf("E: 1.500000 0001 0073 1 #\n"), "(none)");
    for (const char *word : {"!", "x", "0001#"})
        EXPECT_EQ(errorOf("E: 1.500000 0001 0073 1 " + QByteArray(word) + '\n'),
                  "x.evemu:1: error: expected nothing after the value, found '" + std::string(word)
                      + "'");
}

TEST(Evemu, TakesTypesUpToTheLast)
{
    EXPECT_EQ(errorOf("E: 1.500000 001f 0073 1\n"), "(none)");
    EXPECT_EQ(errorOf("B: 1f 00\n"), "(none)");
    EXPECT_EQ(errorOf("B: 20 00\n"),
              "x.evemu:1: error: expected an event type from 00 to 1f, found '20'");
    EXPECT_EQ(errorOf("B: x 00\n"),
              "x.evemu:1: error: expected an event type from 00 to 1f, found 'x'");
    EXPECT_EQ(errorOf("S: 10 1\n"), "(none)");
    EXPECT_EQ(errorOf("S: 11 1\n"),
              "x.evemu:1: error: expected the code of a switch in hexadecimal, and 0 or 1");
}

TEST(Evemu, WritesADeviceByteByByte)
{
    const std::string description = evemuDescription(panel()).toStdString();
    EXPECT_THAT(description,
                testing::StartsWith("# EVEMU 1.3\nN: front-panel\nI: 0019 046d c31c 0110\n"
                                    "P: 04 00 00 00 00 00 00 00\n"
                                    "B: 00 23 00 10 00 00 00 00 00\n"
                                    "B: 01 00 00 00 00 00 00 00 00\n"
                                    "B: 01 00 00 00 00 00 00 08 00\n"
                                    "B: 01 00 00 00 00 00 00 00 00\n"));
    EXPECT_THAT(description,
                testing::EndsWith("B: 01 00 00 00 00 00 00 00 00\n"
                                  "B: 05 04 20 00 00 00 00 00 00\n"
                                  "B: 14 01 00 00 00 00 00 00 00\nS: 02 0\nS: 0d 1\n"));
    EXPECT_EQ(QByteArray::fromStdString(description).count("B: 01 "), 12);
}

TEST(Evemu, WarnsOfAKindOfLineThatItDoesNotKnow)
{
    EXPECT_EQ(errorOf("Q: odd\n"), "x.evemu:1: warning: unknown kind of line 'Q', ignored");
    EXPECT_EQ(errorOf("A: 00 0 255 0 0 0\nL: 00 0\n"), "(none)");
}

TEST(Evemu, HasNoEventOfALineThatIsWrong)
{
    for (const char *time : {"x.000000", "1.00000x", "150000", "1.5", "100000000001.000000"}) {
        const ParsedRecording recording =
            parse("E: " + QByteArray(time) + " 0001 0073 1\nE: 1.000000 0001 0074 1\n");
        EXPECT_EQ(recording.diagnostics.size(), 1) << time;
        ASSERT_EQ(recording.nodes.first().events.size(), 1) << time;
        EXPECT_EQ(recording.nodes.first().events.first().code, 0x74) << time;
    }
    EXPECT_EQ(errorOf("E: 150000 0001 0073 1\n"),
              "x.evemu:1: error: expected a time in seconds like 1.500000, found '150000'");
}

TEST(Evemu, KnowsLinesByACapitalAndAColon)
{
    for (const char *line : {"[: odd", "@: odd", "e: 1", "E; 1", "E"})
        EXPECT_EQ(errorOf("N: x\n" + QByteArray(line) + '\n'),
                  "x.evemu:2: error: expected a line like 'E: 1.500000 0001 0073 0001' or a "
                  "comment, found '"
                      + std::string(line) + "'");
    EXPECT_EQ(errorOf("Z: odd\n"), "x.evemu:1: warning: unknown kind of line 'Z', ignored");
}

TEST(Evemu, TakesTheLastPositionOfASwitch)
{
    const auto onOf = [](const QByteArray &text) {
        return parse("N: x\n" + text).nodes.first().device->switchesOn;
    };
    EXPECT_THAT(onOf("S: 02 1\nS: 0d 1\n"), ElementsAre(2, 0xd));
    EXPECT_THAT(onOf("S: 02 1\nS: 0d 1\nS: 02 0\n"), ElementsAre(0xd));
    EXPECT_THAT(onOf("S: 02 1\nS: 02 1\n"), ElementsAre(2));
}
