#include "SessionPrinter.h"

#include "CommandNames.h"
#include "EventNames.h"
#include "TerminalText.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>

#include <linux/input.h>

using namespace Vorn;
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
    options.outcomes = true;
    options.latency = true;
    return options;
}

} // namespace

TEST(SessionPrinter, ShowsAnEventWithItsDeviceAndKey)
{
    EXPECT_EQ(lastLine({}, frontPanel(), volumeUp()),
              "    1.500  VolumeUp press          front-panel  KEY_VOLUMEUP");
}

TEST(SessionPrinter, ShowsOnlyTheEventWhereItsSourceIsNotKnown)
{
    const EventPublished event{
        InputEvent::Power, InputEvent::KeyReleased, InputEvent::Bus::NoBus, {}, 0, {},
        std::nullopt};
    EXPECT_EQ(lastLine({}, event), "    1.500  Power release");
}

TEST(SessionPrinter, NamesEachState)
{
    const auto shown = [](InputEvent::State state) {
        EventPublished event{InputEvent::Info, state, InputEvent::Bus::NoBus, {}, 0, {}, {}};
        return lastLine({}, event).substr(11);
    };
    EXPECT_EQ(shown(InputEvent::KeyPressed), "Info press");
    EXPECT_EQ(shown(InputEvent::KeyReleased), "Info release");
    EXPECT_EQ(shown(InputEvent::KeyLongPress), "Info long press");
    EXPECT_EQ(shown(InputEvent::SwitchEnabled), "Info on");
    EXPECT_EQ(shown(InputEvent::SwitchDisabled), "Info off");
    EXPECT_EQ(shown(InputEvent::NoState), "Info NoState");
}

TEST(SessionPrinter, NamesABusThatIsNotTheDevices)
{
    EventPublished event = volumeUp();
    event.bus = InputEvent::Bus::Hostlink;
    EXPECT_EQ(lastLine({}, frontPanel(), event),
              "    1.500  VolumeUp press (Hostlink)  front-panel  KEY_VOLUMEUP");
    event.device.clear();
    EXPECT_EQ(lastLine({}, event), "    1.500  VolumeUp press (Hostlink)  KEY_VOLUMEUP");
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

TEST(SessionPrinter, IndentsWhatTheLibraryMakesOfARecord)
{
    EXPECT_EQ(lastLine(all(), frontPanel(), record(KEY_INFO, 1)),
              "    1.500  front-panel KEY_INFO press");
    EXPECT_EQ(lastLine(all(), frontPanel(), volumeUp(345)),
              "    1.500      VolumeUp press          front-panel  KEY_VOLUMEUP  +0.3 ms");
    EXPECT_EQ(lastLine(all(), step(DetectorStep::What::Dropped, {KEY_INFO})),
              "    1.500      KEY_INFO dropped");
}

TEST(SessionPrinter, TellsADeviceWithoutANameByItsNode)
{
    DeviceChange change = frontPanel();
    change.name.clear();
    EXPECT_EQ(lastLine({}, change), "    1.500  + event0 (no name) (LocalUI)");
    EXPECT_EQ(lastLine({}, change, volumeUp()),
              "    1.500  VolumeUp press          (event0)  KEY_VOLUMEUP");
    EXPECT_EQ(lastLine(all(), change, record(KEY_INFO, 1)), "    1.500  (event0) KEY_INFO press");
}

TEST(SessionPrinter, TellsDevicesOfTheSameNameByTheirNodes)
{
    DeviceChange other = frontPanel();
    other.device = "/dev/input/event3";
    EXPECT_EQ(lastLine(all(), frontPanel(), other, record(KEY_INFO, 1)),
              "    1.500  front-panel (event0) KEY_INFO press");
    EXPECT_EQ(lastLine({}, frontPanel(), other, volumeUp()),
              "    1.500  VolumeUp press          front-panel (event0)  KEY_VOLUMEUP");
    other.added = false;
    EXPECT_EQ(lastLine(all(), frontPanel(), other, record(KEY_INFO, 1)),
              "    1.500  front-panel KEY_INFO press")
        << "the other one is gone";
}

TEST(SessionPrinter, ShortensALongNameRatherThanAKey)
{
    DeviceChange change = frontPanel();
    change.name = "A keyboard with a very long name, Consumer Control";
    EXPECT_EQ(lastLine(all(), change, volumeUp(345)),
              "    1.500      VolumeUp press  A keyboard wi…umer Control  KEY_VOLUMEUP  +0.3 ms");
    DeviceChange same = change;
    same.device = "/dev/input/event3";
    EXPECT_EQ(lastLine(all(), change, same, volumeUp(345)),
              "    1.500      VolumeUp press  A keyboa… Control (event0)  KEY_VOLUMEUP  "
              "+0.3 ms");
}

TEST(SessionPrinter, FitsIntoEightyColumnsWhateverTheNames)
{
    const QString longest = QString::fromUtf8("键盘 ") + QString(250, 'n');
    const auto longestOf = [](const QStringList &names) {
        return *std::max_element(
            names.begin(), names.end(),
            [](const QString &a, const QString &b) { return a.size() < b.size(); });
    };
    const int key = *keyCode(longestOf(keyNames()));
    const auto name = longestOf(commandNames());
    DeviceChange change{front, longest, InputEvent::Bus::Hostlink, true};
    DeviceChange same = change;
    same.device = "/dev/input/event3";
    EventPublished event{*command(name),
                         InputEvent::KeyLongPress,
                         InputEvent::Bus::LocalUI,
                         front,
                         EV_KEY,
                         {key, key},
                         -3'600'000'000};
    DetectorStep unmapped = step(DetectorStep::What::ChordFound, {key, key});
    unmapped.mapped = false;
    KeyStates states;
    states.device = front;
    states.keys = {KeyState{key, true, true, true, true, 7, 1'950'000},
                   KeyState{key, true, false, false, false, 0, {}}};
    const QString text = QStringLiteral("%1 has errors; keeping the previous profile").arg(longest);
    const QVector<SessionEntry> entries{
        {0, change},
        {0, same},
        {1, record(key, 1)},
        {1, RecordRead{front, EV_ABS, ABS_MT_TRACKING_ID, std::numeric_limits<int>::min(), 1}},
        {1, RecordOutcome{RecordOutcome::What::Unmapped, front, EV_KEY, key, 2, {}, longest}},
        {1, unmapped},
        {86'400'000'000, event},
        {1, states},
        {1, IdentifierSelected{longest}},
        {1, ExpectationChecked{longest, 3, text, true, {}}},
        {1, ExpectationChecked{longest, 3, text, false, text}},
        {8'640'000'000'000, Remark{text}},
    };
    for (SessionPrinter::Options options : {SessionPrinter::Options(), all()}) {
        for (const int indent : {0, 2}) {
            options.indent = indent;
            SessionPrinter printer(options);
            for (const SessionEntry &entry : entries) {
                const QString shown = printer.line(entry);
                for (const QString &line : shown.split('\n'))
                    EXPECT_LE(textWidth(line), 80) << line.toStdString();
                // Wrapped or not, neither a key nor a command is shortened.
                if (std::holds_alternative<EventPublished>(entry.what)) {
                    EXPECT_THAT(shown.toStdString(), HasSubstr(name.toStdString()));
                    EXPECT_EQ(shown.count(keyName(key)), 2) << shown.toStdString();
                    EXPECT_TRUE(shown.contains("(event0)")) << shown.toStdString();
                }
            }
        }
    }
}

TEST(SessionPrinter, GoesOnInTheNextLineWhereNothingCanBeLeftOut)
{
    EXPECT_EQ(lastLine({},
                       Remark{"/home/somebody/a/profile/with/a/long/path.toml has errors; "
                              "keeping the previous profile"}),
              "    1.500  /home/somebody/a/profile/with/a/long/path.toml has errors;\n"
              "               keeping the previous profile");
    SessionPrinter::Options options;
    options.coloured = true;
    EXPECT_THAT(lastLine(options, Remark{QString(100, 'x')}),
                testing::MatchesRegex("    1.500  \x1b\\[33mx{65}\x1b\\[0m\n"
                                      " {15}\x1b\\[33mx{35}\x1b\\[0m"));
}

TEST(SessionPrinter, TellsWhyNothingWasPublishedWhenAsked)
{
    const RecordOutcome unmapped{RecordOutcome::What::Unmapped,      front, EV_KEY, KEY_INFO, 1, {},
                                 "the handler has no command for it"};
    EXPECT_EQ(lastLine({}, unmapped), "");
    SessionPrinter::Options options;
    options.outcomes = true;
    EXPECT_EQ(lastLine(options, unmapped),
              "    1.500  KEY_INFO press: the handler has no command for it");
    EXPECT_EQ(lastLine(all(), record(KEY_INFO, 1), unmapped),
              "    1.500      the handler has no command for it");
    EXPECT_EQ(lastLine(all(), record(KEY_INFO, 1), record(KEY_INFO, 0), unmapped),
              "    1.500      KEY_INFO press: the handler has no command for it")
        << "that is not the outcome of the line above";
    const auto afterRecord = [&unmapped](const RecordRead &record) {
        return lastLine(all(), record, unmapped);
    };
    const std::string whole = "    1.500      KEY_INFO press: the handler has no command for it";
    EXPECT_EQ(afterRecord({"/dev/input/event1", EV_KEY, KEY_INFO, 1, 1}), whole);
    EXPECT_EQ(afterRecord({front, EV_REL, KEY_INFO, 1, 1}), whole);
    EXPECT_EQ(afterRecord({front, EV_KEY, KEY_INFO - 1, 1, 1}), whole);
    EXPECT_EQ(afterRecord({front, EV_KEY, KEY_INFO + 1, 1, 1}), whole);
    EXPECT_EQ(afterRecord({front, EV_KEY, KEY_INFO, 2, 1}), whole);
}

TEST(SessionPrinter, TellsWhatTheLibraryBelieves)
{
    KeyStates states;
    states.device = front;
    states.hasHandler = true;
    EXPECT_EQ(lastLine({}, frontPanel(), states), "    1.500  state of front-panel: nothing down");
    states.keys = {KeyState{KEY_INFO, true, false, true, true, 1, 1'950'000}};
    EXPECT_EQ(lastLine({}, frontPanel(), states),
              "    1.500  state of front-panel: KEY_INFO down, held back, long press 1 due\n"
              "               at 1.950");
    states.keys = {KeyState{KEY_1, true, false, false, true, 2, {}}};
    EXPECT_EQ(lastLine({}, frontPanel(), states),
              "    1.500  state of front-panel: KEY_1 down, no further long press");
    states.keys = {KeyState{KEY_1, true, true, false, false, 0, {}},
                   KeyState{KEY_2, false, true, false, false, 0, {}}};
    states.isChord = true;
    EXPECT_EQ(lastLine({}, states),
              "    1.500  state of (event0): KEY_1 down, withdrawn; KEY_2 withdrawn; a\n"
              "               chord is in progress");
    states.keys.clear();
    states.hasHandler = false;
    EXPECT_EQ(lastLine({}, states),
              "    1.500  state of (event0): a chord is in progress; no handler for its keys");
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
                StartsWith("123456789.000 a"));
}

TEST(SessionPrinter, KeepsColumnsAlignedForElevenDays)
{
    SessionPrinter text({});
    for (const qint64 second : {0LL, 9'999LL, 10'000LL, 99'999LL, 100'000LL, 999'999LL})
        EXPECT_EQ(text.line({second * 1'000'000, Remark{"a"}}).size(), 12) << second;
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
    const auto coloured = [](const char *colour, const char *text) {
        return "    1.500  " + std::string(colour) + text + plain;
    };
    SessionPrinter::Options few;
    few.coloured = true;
    EXPECT_EQ(lastLine(few, ExpectationChecked{"a", 1, "b", false, {}}),
              coloured("\x1b[31m", "a:1: failed: b"));
    EXPECT_EQ(lastLine(few, ExpectationChecked{"a", 1, "b", true, {}}),
              coloured("\x1b[32m", "met: b"));
    EXPECT_EQ(lastLine(few, Remark{"a"}), coloured("\x1b[33m", "a"));
    EXPECT_EQ(lastLine(few, IdentifierSelected{"a"}), coloured("\x1b[36m", "identifier 'a'"));
    EXPECT_EQ(lastLine(few, frontPanel()), coloured("\x1b[36m", "+ event0 front-panel (LocalUI)"));
    EXPECT_EQ(lastLine(few, KeyStates{front, true, false, {}}),
              coloured("\x1b[36m", "state of (event0): nothing down"));
    const auto ofState = [&few](InputEvent::State state) {
        EventPublished event{InputEvent::Info, state, InputEvent::Bus::NoBus, {}, 0, {}, {}};
        return lastLine(few, event);
    };
    EXPECT_EQ(ofState(InputEvent::KeyPressed), coloured("\x1b[1;32m", "Info press"));
    EXPECT_EQ(ofState(InputEvent::SwitchEnabled), coloured("\x1b[1;32m", "Info on"));
    EXPECT_EQ(ofState(InputEvent::KeyLongPress), coloured("\x1b[1;33m", "Info long press"));
    EXPECT_EQ(ofState(InputEvent::KeyReleased), coloured("\x1b[1m", "Info release"));
    EXPECT_EQ(ofState(InputEvent::SwitchDisabled), coloured("\x1b[1m", "Info off"));
    few.records = few.detectors = few.outcomes = true;
    EXPECT_EQ(lastLine(few, record(KEY_INFO, 1)), coloured("\x1b[2m", "(event0) KEY_INFO press"));
    EXPECT_EQ(lastLine(few, step(DetectorStep::What::Dropped, {KEY_INFO})),
              "    1.500      \x1b[2mKEY_INFO dropped\x1b[0m");
    EXPECT_EQ(
        lastLine(few,
                 RecordOutcome{RecordOutcome::What::Dropped, front, EV_KEY, KEY_1, 0, {}, "a"}),
        "    1.500      \x1b[2mKEY_1 release: a\x1b[0m");
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

TEST(SessionPrinter, SaysOnceWhatIsTrueOfEveryRecordOfADevice)
{
    using What = RecordOutcome::What;
    SessionPrinter::Options options;
    options.outcomes = true;
    SessionPrinter printer(options);
    const auto line = [&printer](What what, int type, int code, const QString &reason) {
        return printer.line({0, RecordOutcome{what, front, type, code, 1, {}, reason}});
    };
    EXPECT_NE(line(What::NotTaken, EV_REL, REL_X, "not taken"), "");
    EXPECT_EQ(line(What::NotTaken, EV_REL, REL_Y, "not taken"), "");
    EXPECT_NE(line(What::NotTaken, EV_ABS, ABS_X, "not taken"), "");
    EXPECT_EQ(line(What::NotTaken, EV_MSC, MSC_SCAN, "not taken"), "");
    EXPECT_NE(line(What::Unread, EV_KEY, KEY_INFO, "no handler under 'text'"), "");
    EXPECT_EQ(line(What::Unread, EV_KEY, KEY_STOP, "no handler under 'text'"), "");
    EXPECT_NE(line(What::Unread, EV_KEY, KEY_STOP, "no handler under 'browse'"), "");
    EXPECT_NE(line(What::Unmapped, EV_KEY, KEY_INFO, "not mapped"), "");
    EXPECT_EQ(line(What::Unmapped, EV_KEY, KEY_INFO, "not mapped"), "");
    EXPECT_NE(line(What::Unmapped, EV_KEY, KEY_STOP, "not mapped"), "");
    // A lost key press is worth a line every time.
    EXPECT_NE(line(What::Dropped, EV_KEY, KEY_STOP, "dropped"), "");
    EXPECT_NE(line(What::Dropped, EV_KEY, KEY_STOP, "dropped"), "");
    // Only of interest beside its record.
    EXPECT_EQ(line(What::Held, EV_KEY, KEY_STOP, "held back"), "");
    options.records = true;
    SessionPrinter raw(options);
    EXPECT_NE(raw.line({0, RecordOutcome{What::Held, front, EV_KEY, KEY_STOP, 1, {}, "held back"}}),
              "");
}
