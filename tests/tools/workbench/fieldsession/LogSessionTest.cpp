#include "LogSession.h"

#include "Session.h"
#include "WrittenLog.h"

#include <gmock/gmock.h>

#include <linux/input.h>

#include <algorithm>

namespace {

using namespace Vorn::Workbench;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr const char *handlers = WrittenLog::handlers;
constexpr const char *listeners = WrittenLog::listeners;
constexpr const char *detectors = WrittenLog::detectors;

using Log = WrittenLog;

template <typename What>
std::vector<What> all(const std::vector<SessionEntry> &entries)
{
    std::vector<What> list;
    for (const SessionEntry &entry : entries) {
        if (const auto *what = std::get_if<What>(&entry.what))
            list.push_back(*what);
    }
    return list;
}

std::vector<std::string> remarks(const std::vector<SessionEntry> &entries)
{
    std::vector<std::string> texts;
    for (const Remark &remark : all<Remark>(entries))
        texts.push_back(remark.text.toStdString());
    return texts;
}

std::vector<std::string> reasons(const std::vector<SessionEntry> &entries)
{
    std::vector<std::string> texts;
    for (const RecordOutcome &outcome : all<RecordOutcome>(entries))
        texts.push_back(outcome.reason.toStdString());
    return texts;
}

} // namespace

TEST(LogSession, SaysFirstWhichLinesAreMissing)
{
    Log log;
    log.add(listeners, "Event device /dev/input/event0 ready");
    log.add("Input", "Vorn::InputEvent(16) press");
    const std::vector<SessionEntry> session = log.session();
    ASSERT_GT(session.size(), 3U);
    EXPECT_TRUE(std::holds_alternative<SessionStart>(session[0].what));
    EXPECT_TRUE(std::holds_alternative<Remark>(session[1].what));
    EXPECT_THAT(remarks(session),
                Contains(HasSubstr("no records: the log has no line of logger "
                                   "LinuxInputListener at DEBUG")));
    EXPECT_THAT(remarks(session), Contains(HasSubstr("who reported them")));
    const std::vector<EventPublished> events = all<EventPublished>(session);
    ASSERT_THAT(events, SizeIs(1));
    EXPECT_EQ(events[0].command, InputEvent::VolumeUp);
    EXPECT_TRUE(events[0].codes.isEmpty());
    EXPECT_TRUE(events[0].device.isEmpty());
}

TEST(LogSession, DoesNotCallAQuietLogIncomplete)
{
    Log log;
    log.device(0, "panel");
    EXPECT_THAT(remarks(log.session()), Not(Contains(HasSubstr("no records"))));
}

TEST(LogSession, LeavesTheDeviceOpenWithoutDescriptors)
{
    Log log;
    log.device(0, "panel").device(1, "remote");
    log.record(KEY_A, 1).stored({"30 press"});
    log.record(KEY_B, 1).stored({"48 press"});
    log.record(KEY_A, 0).storedAgain(30, {"30 release"});
    const std::vector<SessionEntry> session = log.session();
    EXPECT_THAT(remarks(session), Contains(HasSubstr("do not say which device they are of")));
    for (const RecordRead &record : all<RecordRead>(session))
        EXPECT_EQ(record.device, "unknown device");
    EXPECT_THAT(all<DetectorStep>(session), IsEmpty()) << "two detectors, no chord";
}

TEST(LogSession, FindsTheOnlyDeviceWithoutDescriptors)
{
    Log log;
    log.device(0, "panel").record(KEY_A, 1).stored({"30 press"});
    for (const RecordRead &record : all<RecordRead>(log.session()))
        EXPECT_EQ(record.device, "/dev/input/event0");
}

TEST(LogSession, DoesNotRuleOutDevicesThatWereOpenedBeforeTheLog)
{
    Log log;
    log.record(KEY_A, 1).stored({"30 press"});
    log.device(1, "remote").record(KEY_B, 1);
    const std::vector<RecordRead> records = all<RecordRead>(log.session());
    ASSERT_THAT(records, SizeIs(4));
    EXPECT_EQ(records[2].device, "unknown device");
}

TEST(LogSession, TellsALostRelease)
{
    Log log;
    log.device(0, "panel").record(KEY_A, 1).stored({"30 press"});
    log.record(KEY_A, 1).storedAgain(30, {"30 press"});
    EXPECT_THAT(remarks(log.session()),
                Contains("KEY_A is pressed although it was down: the "
                         "release in between was lost"));
}

TEST(LogSession, TellsThatTheKernelHasDroppedRecords)
{
    Log log;
    log.device(0, "panel").add(listeners, " type: 0 code:3 value:0");
    EXPECT_THAT(remarks(log.session()), Contains(HasSubstr("SYN_DROPPED")));
}

TEST(LogSession, SaysThatLinesAreMissing)
{
    Log log;
    log.device(0, "panel").record(KEY_A, 1).stored({"30 press"});
    log.record(KEY_B, 1).stored({"48 press"});
    log.storedAgain(99, {"48 press"});
    const std::vector<SessionEntry> session = log.session();
    EXPECT_THAT(remarks(session), Contains(HasSubstr("contradict each other")));
}

TEST(LogSession, AStartIsASession)
{
    Log log;
    log.device(0, "panel").record(KEY_A, 1);
    log.device(0, "panel").record(KEY_A, 1);
    EXPECT_THAT(all<SessionStart>(log.session()), SizeIs(2));
}

TEST(LogSession, ProcessesAreSessionsOneAfterTheOther)
{
    Log log;
    log.of("1").device(0, "panel");
    log.of("2").device(0, "other");
    log.of("1").record(KEY_A, 1);
    log.of("2").record(KEY_B, 1);
    const std::vector<SessionEntry> session = log.session();
    std::vector<int> codes;
    std::vector<std::string> sources;
    for (const RecordRead &record : all<RecordRead>(session)) {
        if (record.type == EV_KEY)
            codes.push_back(record.code);
    }
    for (const SessionStart &start : all<SessionStart>(session))
        sources.push_back(start.source.toStdString());
    EXPECT_THAT(codes, ElementsAre(KEY_A, KEY_B));
    EXPECT_THAT(sources, ElementsAre("a.log, process 1", "a.log, process 2"));
    EXPECT_TRUE(std::holds_alternative<SessionStart>(session.front().what));
}

TEST(LogSession, TwoListenersReadEachRecordOnce)
{
    Log log;
    log.add(handlers, " ---> added '/dev/input/event0'");
    for (int i = 0; i < 2; ++i)
        log.add(listeners, "Event device /dev/input/event0 ready");
    for (const int descriptor : {5, 6}) {
        log.add(listeners,
                QStringLiteral("Enter LinuxInputListener::readData: %1").arg(descriptor));
        log.record(KEY_A, 1);
        if (descriptor == 5)
            log.stored({"30 press"});
    }
    EXPECT_THAT(all<RecordRead>(log.session()), SizeIs(2));
}

TEST(LogSession, ARecordThatNoHandlerTakesIsUnread)
{
    Log log;
    log.device(0, "panel");
    log.read(5).record(KEY_A, 1);
    log.add("Input", "Vorn::InputEvent(16) release");
    log.read(5).record(KEY_B, 1);
    log.stored({"48 press"});
    EXPECT_THAT(reasons(log.session()), Contains(HasSubstr("no key handler took it")));
}

// It may be the listener of the panel's switches, which have a handler, or that of the remote,
// which has none.
TEST(LogSession, LeavesOpenWhyNobodyTookTheRecordOfAnUnknownListener)
{
    Log log;
    log.device(0, "panel").add(listeners, "Event device /dev/input/event0 ready");
    log.device(1, "remote");
    log.press(5, KEY_A).event("", "Confirm", "KeyPressed");
    log.read(6).record(KEY_A, 1);
    const std::vector<RecordOutcome> outcomes = all<RecordOutcome>(log.session());
    ASSERT_THAT(outcomes, SizeIs(2));
    EXPECT_EQ(outcomes[1].what, RecordOutcome::What::Open);
    EXPECT_THAT(outcomes[1].reason.toStdString(), HasSubstr("or it is that of the switches"));
}

TEST(LogSession, AKeyWithoutACommandIsTold)
{
    Log log;
    log.device(0, "panel").add("Input", "Vorn::InputEvent(16) release");
    log.record(KEY_A, 1).stored({"30 press"}).add(handlers, "key:30 value 1");
    log.record(KEY_A, 0).add(detectors, "Found already event for code:30");
    log.stored({"30 release"}).add(handlers, "key:30 value 0");
    EXPECT_THAT(reasons(log.session()),
                testing::Each(HasSubstr("neither for the press nor for the release")));
}

TEST(LogSession, WarningsNameTheKeys)
{
    Log log;
    log.add(handlers, "Trying to remove a non-existing key 30");
    EXPECT_THAT(remarks(log.session()),
                Contains("the library complains: Trying to remove a non-existing key 30 (KEY_A)"));
}

TEST(LogSession, SaysWhichLineIsNotTheLibrarys)
{
    Log log;
    log.device(0, "panel").add(detectors, "Stored:(half a li");
    EXPECT_THAT(remarks(log.session()),
                Contains("line 6 of logger KeyProcessing is none of the library's: "
                         "'Stored:(half a li'"));
}

TEST(LogSession, LinesOfTheLibraryInAnyOrderDoNoHarm)
{
    const std::pair<const char *, const char *> lines[] = {
        {handlers, "key:30 value 0"},
        {handlers, "Device: ; id: ; id: ; command [cmd=Stop, state=KeyLongPress]"},
        {handlers, "Removing /dev/input/event3"},
        {handlers, "Enter BasicInputHandler::selectKeyHandler: "},
        {detectors, "Found already event for code:30"},
        {detectors, "Double key press detected and new press event received -> drop"},
        {detectors, "Received release for non existing press -> drop"},
        {detectors,
         "Stored:(input_event: code:30 value:press time:00:00:00,000, input_event: "
         "code:48 value:press time:00:00:00,000)"},
        {detectors, "Stored:(input_event: code:30 value:release time:00:00:00,000)"},
        {listeners, "Enter LinuxInputListener::readData: -1"},
        {listeners, " type: 1 code:30 value:0"},
        {listeners, " type: 5 code:13 value:1"},
        {listeners, "Error reading from event device /dev/input/event3"},
        {listeners, "Event device /dev/input/event3 ready"},
        {listeners, "name: "},
        {"Input", "Vorn::InputEvent(11) press"},
        {"Input", "Vorn::InputEvent(11) release"},
        {"Input", "Vorn::InputEvent(40) switch enable"},
    };
    // Each line after each other two: 5832 times three lines, in one log.
    Log log;
    for (const auto &first : lines) {
        for (const auto &second : lines) {
            for (const auto &third : lines) {
                for (const auto *line : {&first, &second, &third})
                    log.add(line->first, QString::fromLatin1(line->second));
            }
        }
    }
    const std::vector<SessionEntry> session = log.session();
    EXPECT_GT(session.size(), 1000U);
    qint64 time = 0;
    for (const SessionEntry &entry : session) {
        if (std::holds_alternative<SessionStart>(entry.what))
            time = 0;
        EXPECT_GE(entry.time, time);
        time = entry.time;
    }
}

TEST(LogSession, LeavesAKeyTimedWhoseReleaseWentToAnotherHandler)
{
    Log log;
    log.device(0, "panel");
    log.add(handlers, "Enter BasicInputHandler::selectKeyHandler: ");
    log.read(5).record(KEY_D, 1).record(KEY_A, 1);
    log.stored({"32 press"}).passedOn(KEY_D, 1).event("", "CharD", "KeyPressed");
    // The rest of the read goes to the handler that began it.
    log.add(handlers, "Enter BasicInputHandler::selectKeyHandler: text");
    log.stored({"30 press"}).passedOn(KEY_A, 1).event("", "CharA", "KeyPressed");
    log.read(5).record(KEY_A, 0);
    log.add(detectors, "Received release for non existing press -> drop");
    log.press(5, KEY_B).event("", "CharA", "KeyLongPress");
    const std::vector<SessionEntry> session = log.session();
    EXPECT_THAT(reasons(session),
                Contains("dropped: its press went to the handler of identifier ''"));
    const std::vector<EventPublished> events = all<EventPublished>(session);
    ASSERT_THAT(events, SizeIs(3));
    EXPECT_EQ(events[2].state, InputEvent::KeyLongPress);
    EXPECT_EQ(events[2].codes, QVector<int>{KEY_A});
}

TEST(LogSession, LeavesOpenWhichOfTwoKeysAReleaseIsOf)
{
    Log log;
    log.device(0, "panel");
    log.press(5, KEY_A);
    log.release(5, KEY_A).event("", "CharA", "KeyPressed");
    // A slot runs an event loop between the two events of a click.
    log.press(5, KEY_D);
    log.release(5, KEY_D).event("", "CharA", "KeyReleased");
    const std::vector<SessionEntry> session = log.session();
    const std::vector<EventPublished> events = all<EventPublished>(session);
    ASSERT_THAT(events, SizeIs(2));
    EXPECT_EQ(events[0].codes, QVector<int>{KEY_A});
    EXPECT_THAT(events[1].codes, IsEmpty());
    EXPECT_THAT(reasons(session),
                testing::UnorderedElementsAre(HasSubstr("held back until"),
                                              HasSubstr("of this record or of another one"),
                                              HasSubstr("of this record or of another one"),
                                              HasSubstr("of this record or of another one")));
}

TEST(LogSession, TellsAPairWhoseFirstKeyWasReleasedMeanwhile)
{
    Log log;
    log.device(0, "panel");
    log.press(5, KEY_A).event("", "CharA", "KeyPressed");
    log.read(5).record(KEY_B, 1);
    log.stored({"30 press", "48 press"}).passedOn(KEY_A, 0);
    log.event("", "CharA", "KeyReleased");
    log.read(5).record(KEY_A, 0);
    log.storedAgain(30, {"30 release", "48 press"});
    log.passedOn(KEY_A, 0).passedOn(KEY_B, 1);
    log.event("", "Power", "KeyReleased");
    const std::vector<EventPublished> events = all<EventPublished>(log.session());
    ASSERT_THAT(events, SizeIs(3));
    EXPECT_EQ(events[1].codes, QVector<int>{KEY_A});
    EXPECT_EQ(events[2].codes, (QVector<int>{KEY_A, KEY_B}));
}

TEST(LogSession, TellsAPairWithoutACommandBeforeAnEventOfAnotherKey)
{
    Log log;
    log.device(0, "panel").device(1, "remote");
    log.press(5, KEY_1);
    log.press(6, KEY_A);
    log.read(6).record(KEY_B, 1);
    log.stored({"30 press", "48 press"});
    log.passedOn(KEY_A, 0).passedOn(KEY_A, 1).passedOn(KEY_B, 1);
    log.event("", "Number1", "KeyLongPress");
    const std::vector<SessionEntry> session = log.session();
    const auto found = std::find_if(session.begin(), session.end(), [](const SessionEntry &entry) {
        const auto *step = std::get_if<DetectorStep>(&entry.what);
        return step && step->what == DetectorStep::What::ChordFound;
    });
    const auto event = std::find_if(session.begin(), session.end(), [](const SessionEntry &entry) {
        return std::holds_alternative<EventPublished>(entry.what);
    });
    ASSERT_NE(event, session.end());
    EXPECT_LT(found - session.begin(), event - session.begin());
}

TEST(LogSession, BeginsAnewWithTheProgram)
{
    WrittenLog log;
    log.add(handlers, "Enter BasicInputHandler::BasicInputHandler: ");
    log.device(0, "panel").press(5, KEY_A);
    log.add(handlers, "Enter BasicInputHandler::BasicInputHandler: ").device(0, "panel");
    log.device(0, "panel");
    log.read(6).record(KEY_A, 0).event("", "CharA", "KeyPressed");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.000 # no events: the log has no line of logger Input at DEBUG\n"
              "0.050 + event0 'panel' LocalUI\n"
              "0.070 event0 KEY_A 1\n"
              "0.100 event0 KEY_A 1 open [] nothing was published for it: held back, or it has no "
              "command; still down at the end\n"
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.050 + event0 'panel' LocalUI\n"
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.000 # no steps of the detectors: the log has no line of logger KeyProcessing at "
              "DEBUG\n"
              "0.030 + event0 'panel' LocalUI\n"
              "0.050 event0 KEY_A 0\n"
              "0.080 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.080 event0 KEY_A 0 published [CharA KeyPressed]\n");
}

TEST(LogSession, TellsWhatTheLibraryComplainsOf)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_A).event("", "CharA", "KeyPressed");
    // It was read before it failed.
    log.read(5).record(KEY_B, 1).add(listeners,
                                     "Error reading from event device /dev/input/event0");
    log.release(5, KEY_A).event("", "CharA", "KeyReleased");
    EXPECT_EQ(
        log.transcript(),
        "0.000 start of a.log\n"
        "0.000 # read from a log; records have the times of their lines\n"
        "0.040 + event0 'panel' LocalUI\n"
        "0.050 identifier ''\n"
        "0.080 event0 KEY_A 1\n"
        "0.130 => CharA KeyPressed of event0 LocalUI KEY_A\n"
        "0.130 event0 KEY_A 1 published [CharA KeyPressed]\n"
        "0.150 event0 KEY_B 1\n"
        "0.170 # the library complains: Error reading from event device /dev/input/event0; it does "
        "not read it any more\n"
        "0.170 event0 KEY_B 1 unread [] no key handler took it: the listener had no receiver\n"
        "0.190 event0 KEY_A 0\n"
        "0.250 => CharA KeyReleased of event0 LocalUI KEY_A\n"
        "0.250 event0 KEY_A 0 published [CharA KeyReleased]\n");
}

TEST(LogSession, TellsADeviceThatTheLogEndsWith)
{
    WrittenLog log;
    log.device(0, "panel");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.030 + event0 'panel' LocalUI\n");
}

TEST(LogSession, BeginsAnewWhereNothingWasPressed)
{
    WrittenLog log;
    log.device(0, "panel").select("").add(handlers, "Enter BasicInputHandler::BasicInputHandler: ");
    log.device(1, "remote");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event1 'remote' LocalUI\n");
}
