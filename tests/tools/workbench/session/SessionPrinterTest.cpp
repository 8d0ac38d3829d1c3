#include "SessionPrinter.h"

#include <gmock/gmock.h>

#include <linux/input.h>

using namespace Vorn::Workbench;

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const char *const front = "/dev/input/event0";
const char *const plain = "\x1b[0m";

DeviceChange frontPanel()
{
    return {front, "front-panel", InputEvent::Bus::LocalUI, true};
}

EventPublished volumeUp(std::optional<qint64> latency = std::nullopt)
{
    return {InputEvent::VolumeUp,
            InputEvent::KeyPressed,
            InputEvent::Bus::LocalUI,
            front,
            EV_KEY,
            {KEY_VOLUMEUP},
            latency};
}

RecordRead record(int code, int value)
{
    return {front, EV_KEY, code, value, 1};
}

DetectorStep step(DetectorStep::What what, const QVector<int> &keys)
{
    return {what, front, keys, 0, true};
}

/// The line of the last entry, after those before it.
template <typename... What>
std::string lastLine(SessionPrinter::Options options, const What &...what)
{
    SessionPrinter text(options);
    QString line;
    ((line = text.line({1'500'000, what})), ...);
    return line.toStdString();
}

SessionPrinter::Options all()
{
    SessionPrinter::Options options;
    options.records = true;
    options.detectors = true;
    options.latency = true;
    return options;
}

} // namespace

TEST(SessionPrinter, ShowsAnEventWithItsDeviceAndKey)
{
    EXPECT_EQ(lastLine({}, frontPanel(), volumeUp()),
              "    1.500  [cmd=VolumeUp, state=KeyPressed, bus=LocalUI]  front-panel  "
              "KEY_VOLUMEUP");
}

TEST(SessionPrinter, ShowsOnlyTheEventWhereItsSourceIsNotKnown)
{
    const EventPublished event{
        InputEvent::Power, InputEvent::KeyReleased, InputEvent::Bus::NoBus, {}, 0, {},
        std::nullopt};
    EXPECT_EQ(lastLine({}, event), "    1.500  [cmd=Power, state=KeyReleased]");
}

TEST(SessionPrinter, NamesADeviceThatItWasNotToldOfByItsNode)
{
    EXPECT_THAT(lastLine({}, volumeUp()), EndsWith("  (event0)  KEY_VOLUMEUP"));
}

TEST(SessionPrinter, StillNamesADeviceThatIsGone)
{
    DeviceChange gone = frontPanel();
    gone.added = false;
    EXPECT_THAT(lastLine({}, frontPanel(), gone, volumeUp()), HasSubstr("  front-panel  "));
}

TEST(SessionPrinter, ShowsLatencyWhenAsked)
{
    SessionPrinter::Options options;
    EXPECT_THAT(lastLine(options, volumeUp(345)), EndsWith("KEY_VOLUMEUP"));
    options.latency = true;
    EXPECT_THAT(lastLine(options, volumeUp(345)), EndsWith("KEY_VOLUMEUP  +0.3 ms"));
    EXPECT_THAT(lastLine(options, volumeUp(-12'000)), EndsWith("  -12.0 ms"));
    EXPECT_THAT(lastLine(options, volumeUp()), EndsWith("KEY_VOLUMEUP"));
}

TEST(SessionPrinter, NamesBothKeysOfAChord)
{
    EventPublished chord = volumeUp();
    chord.codes = {KEY_STOP, KEY_PLAY};
    EXPECT_THAT(lastLine({}, chord), EndsWith("  KEY_STOP + KEY_PLAY"));
}

TEST(SessionPrinter, PutsRecordsIntoAColumnOfTheirOwn)
{
    EXPECT_EQ(lastLine(all(), frontPanel(), record(KEY_INFO, 1)),
              "    1.500  front-panel KEY_INFO press         │");
    EXPECT_EQ(lastLine(all(), frontPanel(), volumeUp()),
              "    1.500                                     │ [cmd=VolumeUp, "
              "state=KeyPressed, bus=LocalUI]  front-panel  KEY_VOLUMEUP");
}

TEST(SessionPrinter, CutsALongNameSoThatColumnsLineUp)
{
    DeviceChange change = frontPanel();
    change.name = "A keyboard with a very long name indeed";
    EXPECT_EQ(lastLine(all(), change, record(KEY_VOLUMEUP, 0)),
              "    1.500  A keyboard w… KEY_VOLUMEUP release │");
}

TEST(SessionPrinter, ShowsRecordsAndStepsOnlyWhenAsked)
{
    EXPECT_EQ(lastLine({}, record(KEY_INFO, 1)), "");
    EXPECT_EQ(lastLine({}, step(DetectorStep::What::Dropped, {KEY_INFO})), "");
    EXPECT_EQ(lastLine({}, SessionStart{}), "");
    EXPECT_EQ(lastLine(all(), RecordRead{front, EV_SYN, SYN_REPORT, 0, 1}), "");
}

TEST(SessionPrinter, CanShowRecordsFromSomePointOn)
{
    SessionPrinter text({});
    EXPECT_FALSE(text.records());
    EXPECT_TRUE(text.line({0, record(KEY_INFO, 1)}).isEmpty());
    text.setRecords(true);
    EXPECT_TRUE(text.records());
    EXPECT_FALSE(text.line({0, record(KEY_INFO, 0)}).isEmpty());
}

TEST(SessionPrinter, TellsWhatTheDetectorsDid)
{
    using What = DetectorStep::What;
    SessionPrinter::Options options;
    options.detectors = true;
    const auto line = [&](What what, const QVector<int> &keys) {
        return lastLine(options, step(what, keys)).substr(11);
    };
    EXPECT_EQ(line(What::LongPressEnded, {KEY_INFO}), "KEY_INFO no longer timed");
    EXPECT_EQ(line(What::FirstKeyWithdrawn, {KEY_STOP}), "KEY_STOP withdrawn");
    EXPECT_EQ(line(What::ChordFound, {KEY_STOP, KEY_PLAY}), "chord KEY_STOP + KEY_PLAY");
    EXPECT_EQ(line(What::ChordReleased, {KEY_STOP, KEY_PLAY}),
              "chord KEY_STOP + KEY_PLAY released");
    EXPECT_EQ(line(What::Dropped, {KEY_INFO}), "KEY_INFO dropped");

    DetectorStep due = step(What::LongPressDue, {KEY_INFO});
    due.due = 1'950'000;
    EXPECT_THAT(lastLine(options, due), EndsWith("KEY_INFO timed, long press due at 1.950"));
    DetectorStep unmapped = step(What::ChordFound, {KEY_STOP, KEY_PLAY});
    unmapped.mapped = false;
    EXPECT_THAT(lastLine(options, unmapped), EndsWith("chord KEY_STOP + KEY_PLAY, no command"));
}

TEST(SessionPrinter, TellsOfDevicesIdentifiersAndRemarks)
{
    DeviceChange gone = frontPanel();
    gone.added = false;
    EXPECT_EQ(lastLine({}, frontPanel()), "    1.500  + event0 front-panel (LocalUI)");
    EXPECT_EQ(lastLine({}, gone), "    1.500  - event0 front-panel");
    EXPECT_EQ(lastLine({}, IdentifierSelected{"text"}), "    1.500  identifier 'text'");
    EXPECT_EQ(lastLine({}, Remark{"the profile was reloaded"}),
              "    1.500  the profile was reloaded");
}

TEST(SessionPrinter, TellsWhetherExpectationsWereMet)
{
    EXPECT_EQ(lastLine({}, ExpectationChecked{"a.scenario", 3, "expect nothing", true, {}}),
              "    1.500  met: expect nothing");
    EXPECT_EQ(lastLine({}, ExpectationChecked{"a.scenario", 3, "expect nothing", false, "Info"}),
              "    1.500  a.scenario:3: failed: expect nothing, but found Info");
}

TEST(SessionPrinter, ShowsTimesThatWereNotReachedAsTheMillisecondBefore)
{
    SessionPrinter text({});
    EXPECT_THAT(text.line({999'999, Remark{"a"}}).toStdString(), StartsWith("    0.999  "));
    EXPECT_THAT(text.line({-1'500, Remark{"a"}}).toStdString(), StartsWith("   -0.001  "));
    EXPECT_THAT(text.line({123'456'789'000'000, Remark{"a"}}).toStdString(),
                StartsWith("123456789.000  "));
}

TEST(SessionPrinter, IndentsLines)
{
    SessionPrinter::Options options;
    options.indent = 2;
    EXPECT_EQ(lastLine(options, Remark{"a"}), "      1.500  a");
}

TEST(SessionPrinter, ColoursOnlyWhenAsked)
{
    SessionPrinter::Options options = all();
    EXPECT_EQ(lastLine(options, volumeUp()).find('\x1b'), std::string::npos);
    options.coloured = true;
    EXPECT_THAT(lastLine(options, volumeUp()), HasSubstr("\x1b[1;32m"));
    EXPECT_THAT(lastLine(options, volumeUp()), EndsWith(plain));
    EXPECT_THAT(lastLine(options, record(KEY_INFO, 1)), HasSubstr("\x1b[2m"));
    EventPublished held = volumeUp();
    held.state = InputEvent::KeyLongPress;
    EXPECT_THAT(lastLine(options, held), HasSubstr("\x1b[1;33m"));
    EXPECT_THAT(lastLine(options, ExpectationChecked{"a", 1, "b", false, {}}),
                HasSubstr("\x1b[31m"));
}

TEST(SessionPrinter, KeepsEscapeSequencesOfNamesOutOfTheTerminal)
{
    DeviceChange change = frontPanel();
    change.name = "evil\x1b[2J\nname";
    const std::string line = lastLine({}, change);
    EXPECT_EQ(line.find('\x1b'), std::string::npos);
    EXPECT_EQ(line.find('\n'), std::string::npos);
    EXPECT_THAT(lastLine({}, Remark{"a\x1b]0;title\x07"}), testing::Not(HasSubstr("\x1b")));
}
