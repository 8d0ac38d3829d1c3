#include "SessionReader.h"

#include "Diagnostic.h"
#include "SessionWriter.h"

#include <QBuffer>
#include <QIODevice>

#include <gmock/gmock.h>

#include <linux/input.h>

using namespace Vorn;
using namespace Vorn::Workbench;

namespace {

using testing::Each;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

const qint64 somewhen = 1'700'000'000'123'456;

/// One entry of every kind, and of every form that a kind has.
QVector<SessionEntry> everyKind()
{
    using What = DetectorStep::What;
    const QString front = "/dev/input/event0";
    QVector<SessionEntry> entries{
        {0, SessionStart{"monitor", "player.toml", somewhen}},
        {1, DeviceChange{front, "front-panel", InputEvent::Bus::LocalUI, true}},
        {1500, RecordRead{front, EV_KEY, KEY_INFO, 1, somewhen}},
        {1500, RecordRead{front, EV_MSC, MSC_SCAN, -7, somewhen + 1}},
        {1501, RecordRead{front, 30, 65535, 2147483647, 0}},
        {1999, DetectorStep{What::LongPressDue, front, {KEY_INFO}, 801'999, false, {}}},
        {2000, DetectorStep{What::LongPressEnded, front, {KEY_INFO}, 0, false, "text"}},
        {2001, DetectorStep{What::FirstKeyWithdrawn, front, {KEY_STOP}, 0, false, {}}},
        {2002, DetectorStep{What::ChordFound, front, {KEY_STOP, 700}, 0, true, {}}},
        {2003, DetectorStep{What::ChordFound, front, {KEY_STOP, KEY_PLAY}, 0, false, {}}},
        {2004, DetectorStep{What::ChordReleased, front, {KEY_STOP, KEY_PLAY}, 0, false, {}}},
        {2005, DetectorStep{What::Dropped, front, {KEY_1}, 0, false, {}}},
        {2005, DetectorStep{What::Forgotten, front, {KEY_1, KEY_2}, 0, false, {}}},
        {2005,
         RecordOutcome{RecordOutcome::What::Dropped, front, EV_KEY, KEY_1, 1, {}, "a third key"}},
        {2005,
         RecordOutcome{RecordOutcome::What::Published,
                       front,
                       EV_KEY,
                       KEY_1,
                       0,
                       {"Info KeyPressed", "Info KeyReleased"},
                       {}}},
        {2005, KeyStates{front, true, false, {{KEY_1, true, false, true, true, 2, 5000}}}},
        {2005, KeyStates{front, false, true, {{KEY_2, true, true, false, true, 3, {}}}}},
        {2006,
         EventPublished{InputEvent::Info,
                        InputEvent::KeyLongPress,
                        InputEvent::Bus::LocalUI,
                        front,
                        EV_KEY,
                        {KEY_INFO},
                        321}},
        {2007,
         EventPublished{InputEvent::SWLineIn,
                        InputEvent::SwitchDisabled,
                        InputEvent::Bus::NoBus,
                        front,
                        EV_SW,
                        {SW_LINEIN_INSERT},
                        -1000}},
        {2008,
         EventPublished{static_cast<InputEvent::Command>(57),
                        InputEvent::NoState,
                        static_cast<InputEvent::Bus>(12),
                        {},
                        0,
                        {},
                        std::nullopt}},
        {2009, IdentifierSelected{"text \"quoted\"\nand broken"}},
        {2010, ExpectationChecked{"a.scenario", 12, "expect Info KeyPressed", false, "nothing"}},
        {2011, ExpectationChecked{"a.scenario", 13, "expect nothing", true, {}}},
        {3'600'000'000'001, Remark{QString::fromUtf8("überraschend \xe2\x80\xa6")}},
    };
    return entries;
}

QByteArray written(const QVector<SessionEntry> &entries)
{
    QByteArray text;
    for (const SessionEntry &entry : entries)
        text += toJsonLine(entry);
    return text;
}

std::vector<std::string> messagesOf(const QByteArray &text)
{
    std::vector<std::string> messages;
    const ParsedSession session = parseSession(text, "a.jsonl");
    for (const Diagnostic &diagnostic : session.diagnostics)
        messages.push_back(diagnostic.toString().toStdString());
    return messages;
}

/// Repeats a text for ever.
class Endless : public QIODevice
{
public:
    explicit Endless(const QByteArray &text)
        : m_text(text)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        for (qint64 i = 0; i < size; ++i)
            data[i] = m_text.at(static_cast<int>(m_position++ % m_text.size()));
        return size;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    const QByteArray m_text;
    qint64 m_position = 0;
};

template <typename What>
const What &only(const ParsedSession &session)
{
    EXPECT_THAT(session.diagnostics, SizeIs(0));
    EXPECT_THAT(session.entries, SizeIs(1));
    return std::get<What>(session.entries.first().what);
}

} // namespace

TEST(SessionReader, IsReadBackAsItWasWritten)
{
    const QByteArray text = written(everyKind());
    const ParsedSession session = parseSession(text, "a.jsonl");
    EXPECT_THAT(session.diagnostics, SizeIs(0));
    ASSERT_EQ(session.entries.size(), everyKind().size());
    EXPECT_EQ(written(session.entries).toStdString(), text.toStdString());
}

TEST(SessionReader, KeepsTheValuesOfAnEvent)
{
    const EventPublished event{InputEvent::VolumeUp,
                               InputEvent::KeyPressed,
                               InputEvent::Bus::USB,
                               "/dev/input/event3",
                               EV_KEY,
                               {KEY_VOLUMEUP},
                               345};
    const ParsedSession session = parseSession(toJsonLine({1'234'567, event}), {});
    const auto &read = only<EventPublished>(session);
    EXPECT_EQ(session.entries.first().time, 1'234'567);
    EXPECT_EQ(read.command, InputEvent::VolumeUp);
    EXPECT_EQ(read.state, InputEvent::KeyPressed);
    EXPECT_EQ(read.bus, InputEvent::Bus::USB);
    EXPECT_EQ(read.device.toStdString(), "/dev/input/event3");
    EXPECT_EQ(read.type, EV_KEY);
    EXPECT_EQ(read.codes, QVector<int>{KEY_VOLUMEUP});
    EXPECT_EQ(read.latency, 345);
}

TEST(SessionReader, KeepsTheValuesOfARecord)
{
    const RecordRead record{"/dev/input/event3", EV_KEY, KEY_VOLUMEUP, 2, somewhen};
    const ParsedSession session = parseSession(toJsonLine({0, record}), {});
    const auto &read = only<RecordRead>(session);
    EXPECT_EQ(read.type, EV_KEY);
    EXPECT_EQ(read.code, KEY_VOLUMEUP);
    EXPECT_EQ(read.value, 2);
    EXPECT_EQ(read.stamp, somewhen);
}

TEST(SessionReader, KeepsTheValuesOfADetectorStep)
{
    const DetectorStep step{
        DetectorStep::What::LongPressDue, "/dev/input/event3", {KEY_INFO}, 1'800'001, false};
    const ParsedSession session = parseSession(toJsonLine({0, step}), {});
    const auto &read = only<DetectorStep>(session);
    EXPECT_EQ(read.what, DetectorStep::What::LongPressDue);
    EXPECT_EQ(read.keys, QVector<int>{KEY_INFO});
    EXPECT_EQ(read.due, 1'800'001);
}

TEST(SessionReader, KeepsTheWallClockToTheMicrosecond)
{
    for (const qint64 time : {somewhen, qint64(0), qint64(-1), qint64(4'102'444'799'999'999)}) {
        const SessionEntry entry{0, SessionStart{"monitor", {}, time}};
        EXPECT_EQ(only<SessionStart>(parseSession(toJsonLine(entry), {})).wallClock, time);
    }
}

TEST(SessionReader, KeepsEveryMicrosecondOfALongTime)
{
    for (qint64 time = 4'000'000'000'000'000; time < 4'000'000'000'003'000; ++time) {
        const ParsedSession session = parseSession(toJsonLine({time, Remark{}}), {});
        ASSERT_THAT(session.entries, SizeIs(1));
        ASSERT_EQ(session.entries.first().time, time);
    }
}

TEST(SessionReader, SkipsWhatItDoesNotKnow)
{
    const ParsedSession session =
        parseSession(R"({"kind":"weather","time":1,"sun":true})"
                     "\n"
                     R"({"kind":"detector","what":"moon","time":1})"
                     "\n"
                     R"({"kind":"remark","time":1,"text":"a","colour":{"red":[1,2]}})"
                     "\n\n  \r\n",
                     "a.jsonl");
    EXPECT_EQ(only<Remark>(session).text.toStdString(), "a");
}

TEST(SessionReader, AcceptsLineEndsOfOtherSystemsAndNoneAtTheEnd)
{
    const ParsedSession session = parseSession("{\"kind\":\"remark\",\"time\":1,\"text\":\"a\"}\r\n"
                                               "{\"kind\":\"remark\",\"time\":1,\"text\":\"b\"}",
                                               {});
    EXPECT_THAT(session.diagnostics, SizeIs(0));
    EXPECT_THAT(session.entries, SizeIs(2));
}

TEST(SessionReader, TellsWhereALineIsNoJson)
{
    EXPECT_THAT(messagesOf("\n{\"kind\":\"remark\",\n"),
                testing::ElementsAre(StartsWith("a.jsonl:2:18: error: invalid JSON: ")));
    EXPECT_THAT(messagesOf("[1]"),
                testing::ElementsAre("a.jsonl:1: error: must be a JSON object, {…}"));
}

TEST(SessionReader, TellsWhatALineLacks)
{
    const auto message = [](const QByteArray &line) {
        const auto messages = messagesOf(line);
        return messages.size() == 1 ? messages.front() : std::string("(not one message)");
    };
    EXPECT_EQ(message("{}"), "a.jsonl:1: error: 'kind' is missing");
    EXPECT_EQ(message(R"({"kind":"remark","text":"a"})"), "a.jsonl:1: error: 'time' is missing");
    EXPECT_EQ(message(R"({"kind":"remark","time":1,"text":2})"),
              "a.jsonl:1: error: 'text' must be a string");
    EXPECT_EQ(
        message(R"({"kind":"device","time":1,"change":"moved","device":"","name":"","bus":"USB"})"),
        "a.jsonl:1: error: 'change' must be 'added' or 'removed'");
    EXPECT_EQ(
        message(R"({"kind":"event","time":1,"command":"Inof","state":"KeyPressed","bus":"USB"})"),
        "a.jsonl:1: error: 'command' has the unknown value 'Inof'");
    EXPECT_EQ(message(R"({"kind":"detector","what":"dropped","time":1,"device":"a","keys":[]})"),
              "a.jsonl:1: error: 'keys' must name at least one key");
    EXPECT_EQ(message(R"({"kind":"detector","what":"dropped","time":1,"device":"a","keys":["X"]})"),
              "a.jsonl:1: error: 'keys' contains 'X', an unknown code");
    EXPECT_EQ(message(R"({"kind":"start","time":0,"source":"","profile":"","version":2,)"
                      R"("wallClock":"2024-01-01T00:00:00.000000Z"})"),
              "a.jsonl:1: error: 'version' is 2, but this vorn-input reads only version 1");
    EXPECT_EQ(message(R"({"kind":"start","time":0,"source":"","profile":"","version":1,)"
                      R"("wallClock":"yesterday"})"),
              "a.jsonl:1: error: 'wallClock' must be a time like '2024-03-01T12:00:00.000000Z'");
}

TEST(SessionReader, GivesUpAfterTwentyMistakes)
{
    QByteArray text;
    for (int i = 0; i < 50; ++i)
        text += "{}\n";
    const auto messages = messagesOf(text);
    ASSERT_THAT(messages, SizeIs(21));
    EXPECT_THAT(messages.at(19), StartsWith("a.jsonl:20:"));
    EXPECT_EQ(messages.back(), "a.jsonl: error: 20 lines are wrong; the rest is not read");
}

TEST(SessionReader, ReadsNoMoreThanItIsAskedFor)
{
    const QByteArray line = toJsonLine({5, Remark{"a"}});
    Endless device(line);
    SessionReader reader(&device, "a.jsonl");
    for (int i = 1; i <= 3000; ++i) {
        ASSERT_TRUE(reader.next());
        EXPECT_EQ(reader.line(), i);
        EXPECT_EQ(reader.bytesRead(), qint64{i} * line.size());
    }
    EXPECT_THAT(reader.diagnostics(), SizeIs(0));
}

TEST(SessionReader, EndsWhereTheInputHasNoEnd)
{
    Endless mistakes("{}\n");
    SessionReader wrong(&mistakes, "a.jsonl");
    EXPECT_FALSE(wrong.next());
    EXPECT_THAT(wrong.diagnostics(), SizeIs(21));
    EXPECT_FALSE(wrong.next());

    Endless zeros("0");
    SessionReader lineless(&zeros, "a.jsonl");
    EXPECT_FALSE(lineless.next());
    ASSERT_THAT(lineless.diagnostics(), SizeIs(1));
    EXPECT_EQ(lineless.diagnostics().first().toString().toStdString(),
              "a.jsonl:1: error: the line is longer than 64 MiB");
}

TEST(SessionReader, TellsThatAFileCannotBeRead)
{
    Diagnostics diagnostics;
    InputFile null;
    EXPECT_TRUE(openSession(QStringLiteral(VORN_SOURCE_DIR "/README.md"), &null, &diagnostics));
    EXPECT_THAT(diagnostics, SizeIs(0));
    InputFile absent;
    EXPECT_FALSE(openSession("/absent.jsonl", &absent, &diagnostics));
    InputFile folder;
    EXPECT_FALSE(openSession("/", &folder, &diagnostics));
    ASSERT_THAT(diagnostics, SizeIs(2));
    EXPECT_THAT(diagnostics.first().toString().toStdString(),
                StartsWith("/absent.jsonl: error: cannot be read: "));
    EXPECT_EQ(diagnostics.last().toString().toStdString(),
              "/: error: cannot be read: it is a folder");

    // Nothing is mapped at the address that this file begins with.
    InputFile memory;
    ASSERT_TRUE(openSession("/proc/self/mem", &memory, &diagnostics));
    SessionReader reader(&memory, "mem");
    EXPECT_FALSE(reader.next());
    ASSERT_THAT(reader.diagnostics(), SizeIs(1));
    EXPECT_THAT(reader.diagnostics().first().toString().toStdString(),
                StartsWith("mem: error: cannot be read: "));
}

TEST(SessionReader, ReadsTheGoodLinesBesideTheBad)
{
    const ParsedSession session =
        parseSession("{}\n" + toJsonLine({5, Remark{"a"}}) + "}\n", "a.jsonl");
    EXPECT_THAT(session.entries, SizeIs(1));
    EXPECT_THAT(session.diagnostics, SizeIs(2));
}

TEST(SessionReader, ReadsLinesOfAnyLength)
{
    const QString text(3'000'000, 'x');
    EXPECT_EQ(only<Remark>(parseSession(toJsonLine({0, Remark{text}}), {})).text, text);
}

TEST(SessionReader, IsNotUpsetByAnyBytes)
{
    QByteArray bytes;
    for (int i = 0; i < 1024; ++i)
        bytes += static_cast<char>(i * 37);
    EXPECT_THAT(messagesOf(bytes), Each(StartsWith("a.jsonl:")));
    EXPECT_THAT(messagesOf(bytes), Not(SizeIs(0)));
    EXPECT_THAT(parseSession(bytes, {}).entries, SizeIs(0));
    EXPECT_THAT(messagesOf(QByteArray(100'000, '[')), SizeIs(1));
    EXPECT_THAT(messagesOf({}), SizeIs(0));
}

TEST(SessionReader, TellsHowManyLinesAndBytesItHasRead)
{
    for (const char *end : {"", "\n"}) {
        QBuffer buffer;
        buffer.setData("\n" + toJsonLine({5, Remark{"a"}}).trimmed() + end);
        ASSERT_TRUE(buffer.open(QIODevice::ReadOnly));
        SessionReader reader(&buffer, "a.jsonl");
        EXPECT_TRUE(reader.next());
        EXPECT_EQ(reader.line(), 2);
        EXPECT_FALSE(reader.next());
        EXPECT_EQ(reader.line(), 2);
        EXPECT_EQ(reader.bytesRead(), buffer.size());
    }
}

TEST(SessionReader, TakesNumbersUpToTheirLimits)
{
    const auto errorOf = [](QByteArray line, const char *member, const QByteArray &number) {
        const QByteArray name = '"' + QByteArray(member) + "\":";
        const auto begin = line.indexOf(name) + name.size();
        auto end = begin;
        while (line.at(end) != ',' && line.at(end) != '}')
            ++end;
        const auto messages = messagesOf(line.replace(begin, end - begin, number));
        return messages.empty() ? std::string() : messages.front();
    };
    const QString front = "/dev/input/event0";
    const QByteArray record = toJsonLine({0, RecordRead{front, EV_KEY, KEY_1, 1, 1}});
    const QByteArray outcome =
        toJsonLine({0, RecordOutcome{RecordOutcome::What::Held, front, EV_KEY, KEY_1, 1, {}, "a"}});
    const std::string range = " must be a whole number from ";
    for (const QByteArray &line : {record, outcome}) {
        for (const char *member : {"typeNumber", "codeNumber"}) {
            const std::string error = "a.jsonl:1: error: '" + std::string(member) + "'" + range;
            EXPECT_EQ(errorOf(line, member, "0"), "");
            EXPECT_EQ(errorOf(line, member, "65535"), "");
            EXPECT_EQ(errorOf(line, member, "-1"), error + "0 to 65535");
            EXPECT_EQ(errorOf(line, member, "65536"), error + "0 to 65535");
        }
        EXPECT_EQ(errorOf(line, "value", "-2147483648"), "");
        EXPECT_EQ(errorOf(line, "value", "2147483647"), "");
        EXPECT_EQ(errorOf(line, "value", "2147483648"),
                  "a.jsonl:1: error: 'value'" + range + "-2147483648 to 2147483647");
    }
    const QByteArray states =
        toJsonLine({0, KeyStates{front, true, false, {{KEY_1, true, false, true, true, 2, {}}}}});
    EXPECT_EQ(errorOf(states, "count", "0"), "");
    EXPECT_EQ(errorOf(states, "count", "2147483647"), "");
    EXPECT_EQ(errorOf(states, "count", "-1"),
              "a.jsonl:1: error: 'keys' has an invalid entry: 'count'" + range + "0 to 2147483647");
    EXPECT_EQ(errorOf(states, "key", "\"KEY_NONE\""),
              "a.jsonl:1: error: 'keys' has an invalid entry: 'key' is not a key");
    const QByteArray checked = toJsonLine({0, ExpectationChecked{"a", 1, "b", true, {}}});
    EXPECT_EQ(errorOf(checked, "line", "0"), "");
    EXPECT_EQ(errorOf(checked, "line", "-1"),
              "a.jsonl:1: error: 'line'" + range + "0 to 2147483647");
    const QByteArray begin = toJsonLine({0, SessionStart{"a", "b", 0}});
    EXPECT_EQ(errorOf(begin, "version", "1"), "");
    EXPECT_EQ(errorOf(begin, "version", "0"),
              "a.jsonl:1: error: 'version'" + range + "1 to 2147483647");
    const QByteArray event = toJsonLine({0,
                                         EventPublished{InputEvent::Info,
                                                        InputEvent::KeyPressed,
                                                        InputEvent::Bus::USB,
                                                        front,
                                                        EV_KEY,
                                                        {KEY_INFO},
                                                        1}});
    EXPECT_EQ(errorOf(event, "codeType", "\"EV_NONE\""),
              "a.jsonl:1: error: 'codeType' is not an event type");
}

TEST(SessionReader, NamesTheFirstMemberThatIsMissing)
{
    const auto missing = [](const QByteArray &kind, const QByteArray &rest = {}) {
        const auto messages = messagesOf("{\"kind\":\"" + kind + "\",\"time\":0" + rest + "}");
        return messages.empty() ? std::string()
                                : messages.front().substr(std::size("a.jsonl:1: error:"));
    };
    EXPECT_EQ(missing("start"), "'version' is missing");
    EXPECT_EQ(missing("start", ",\"version\":1"), "'source' is missing");
    EXPECT_EQ(missing("start", ",\"version\":1,\"source\":\"\""), "'profile' is missing");
    EXPECT_EQ(missing("device"), "'change' is missing");
    EXPECT_EQ(missing("device", ",\"change\":\"added\""), "'device' is missing");
    EXPECT_EQ(missing("device", ",\"change\":\"added\",\"device\":\"\""), "'name' is missing");
    EXPECT_EQ(missing("record"), "'device' is missing");
    EXPECT_EQ(missing("record", ",\"device\":\"a\""), "'typeNumber' is missing");
    EXPECT_EQ(missing("record", ",\"device\":\"a\",\"typeNumber\":1"), "'codeNumber' is missing");
    EXPECT_EQ(missing("outcome"), "'outcome' is missing");
    EXPECT_EQ(missing("outcome", ",\"outcome\":\"held\""), "'device' is missing");
    EXPECT_EQ(missing("state"), "'device' is missing");
    EXPECT_EQ(missing("state", ",\"device\":\"a\""), "'handler' is missing");
    EXPECT_EQ(missing("state", ",\"device\":\"a\",\"handler\":true"), "'chord' is missing");
    EXPECT_EQ(missing("detector"), "'what' is missing");
    EXPECT_EQ(missing("detector", ",\"what\":\"dropped\",\"identifier\":1"), "'device' is missing");
    EXPECT_EQ(missing("detector", ",\"what\":\"dropped\",\"device\":\"a\",\"identifier\":1"),
              "'identifier' must be a string");
    EXPECT_EQ(missing("event"), "'command' is missing");
    EXPECT_EQ(missing("event", ",\"command\":\"Info\""), "'state' is missing");
    EXPECT_EQ(missing("identifier"), "'identifier' is missing");
    EXPECT_EQ(missing("expectation"), "'file' is missing");
    EXPECT_EQ(missing("expectation", ",\"file\":\"a\""), "'line' is missing");
    EXPECT_EQ(missing("expectation", ",\"file\":\"a\",\"line\":1"), "'text' is missing");
    EXPECT_EQ(missing("expectation", ",\"file\":\"a\",\"line\":1,\"text\":\"b\""),
              "'met' is missing");
    EXPECT_EQ(missing("remark"), "'text' is missing");
}
