#include "SessionWriter.h"

#include <gmock/gmock.h>

#include <linux/input.h>

using namespace Vorn::Workbench;

namespace {

const qint64 somewhen = 1'700'000'000'123'456;

} // namespace

TEST(SessionWriter, WritesOneStableLineForAnEntry)
{
    const RecordRead record{"/dev/input/event0", EV_KEY, KEY_INFO, 1, somewhen};
    EXPECT_EQ(toJsonLine({1500, record}).toStdString(),
              "{\"code\":\"KEY_INFO\",\"codeNumber\":358,\"device\":\"/dev/input/event0\","
              "\"kind\":\"record\",\"stamp\":1700000000123.456,\"time\":1.5,\"type\":\"EV_KEY\","
              "\"typeNumber\":1,\"value\":1}\n");
    const SessionStart start{"monitor", "p.toml", somewhen};
    EXPECT_EQ(toJsonLine({0, start}).toStdString(),
              "{\"kind\":\"start\",\"profile\":\"p.toml\",\"source\":\"monitor\",\"time\":0,"
              "\"version\":1,\"wallClock\":\"2023-11-14T22:13:20.123456Z\"}\n");
    const EventPublished event{
        InputEvent::Info, InputEvent::KeyPressed, InputEvent::Bus::LocalUI, {}, 0, {},
        std::nullopt};
    EXPECT_EQ(toJsonLine({2, event}).toStdString(),
              "{\"bus\":\"LocalUI\",\"command\":\"Info\",\"kind\":\"event\","
              "\"state\":\"KeyPressed\",\"time\":0.002}\n");
}

TEST(SessionWriter, WritesLineBreaksOfTextsAsPartOfTheLine)
{
    EXPECT_EQ(toJsonLine({0, Remark{"a\nb\r\n"}}).count('\n'), 1);
}

TEST(SessionWriter, WritesAValueWithoutANameAsItsNumber)
{
    const EventPublished event{static_cast<InputEvent::Command>(57),
                               InputEvent::NoState,
                               static_cast<InputEvent::Bus>(12),
                               {},
                               0,
                               {},
                               std::nullopt};
    const QByteArray line = toJsonLine({0, event});
    EXPECT_THAT(line.toStdString(), testing::HasSubstr("\"command\":\"57\""));
    EXPECT_THAT(line.toStdString(), testing::HasSubstr("\"bus\":\"12\""));
}

TEST(SessionWriter, WritesWhatBecameOfARecord)
{
    RecordOutcome outcome;
    outcome.what = RecordOutcome::What::Dropped;
    outcome.device = "/dev/input/event0";
    outcome.type = EV_KEY;
    outcome.code = KEY_INFO;
    outcome.value = 1;
    outcome.reason = "KEY_STOP + KEY_PLAY are down";
    EXPECT_EQ(toJsonLine({1500, outcome}).toStdString(),
              "{\"code\":\"KEY_INFO\",\"codeNumber\":358,\"device\":\"/dev/input/event0\","
              "\"kind\":\"outcome\",\"outcome\":\"dropped\",\"reason\":\"KEY_STOP + KEY_PLAY are "
              "down\",\"time\":1.5,\"type\":\"EV_KEY\",\"typeNumber\":1,\"value\":1}\n");
    outcome.what = RecordOutcome::What::Published;
    outcome.reason.clear();
    outcome.events = QStringList{"Info KeyPressed", "Info KeyReleased"};
    EXPECT_THAT(toJsonLine({1500, outcome}).toStdString(),
                testing::HasSubstr("\"events\":[\"Info KeyPressed\",\"Info KeyReleased\"]"));
}

TEST(SessionWriter, WritesWhatTheLibraryBelieves)
{
    KeyStates states;
    states.device = "/dev/input/event0";
    states.hasHandler = true;
    KeyState key;
    key.code = KEY_INFO;
    key.isDown = true;
    key.isCounting = true;
    key.count = 1;
    key.due = 2'000'000;
    states.keys = {key};
    EXPECT_EQ(toJsonLine({1500, states}).toStdString(),
              "{\"chord\":false,\"device\":\"/dev/input/event0\",\"handler\":true,"
              "\"keys\":[{\"count\":1,\"down\":true,\"due\":2000,\"held\":false,"
              "\"key\":\"KEY_INFO\",\"withdrawn\":false}],\"kind\":\"state\",\"time\":1.5}\n");
}

TEST(SessionWriter, WritesDevicesThatComeAndGo)
{
    const QString device = "/dev/input/event0";
    const std::string rest =
        "\"device\":\"/dev/input/event0\",\"kind\":\"device\",\"name\":\"panel\","
        "\"time\":0}\n";
    EXPECT_EQ(
        toJsonLine({0, DeviceChange{device, "panel", InputEvent::Bus::USB, true}}).toStdString(),
        "{\"bus\":\"USB\",\"change\":\"added\"," + rest);
    EXPECT_EQ(
        toJsonLine({0, DeviceChange{device, "panel", InputEvent::Bus::USB, false}}).toStdString(),
        "{\"bus\":\"USB\",\"change\":\"removed\"," + rest);
}

TEST(SessionWriter, WritesWhatTheDetectorsDid)
{
    using What = DetectorStep::What;
    const auto written = [](What what, const QVector<int> &keys) {
        return toJsonLine({0, DetectorStep{what, "a", keys, 1500, true, "text"}}).toStdString();
    };
    const std::string start = "{\"device\":\"a\",";
    const std::string pair = "\"identifier\":\"text\",\"keys\":[\"KEY_STOP\",\"KEY_PLAY\"],"
                             "\"kind\":\"detector\",";
    EXPECT_EQ(
        written(What::LongPressDue, {KEY_1}),
        start
            + "\"due\":1.5,\"identifier\":\"text\",\"keys\":[\"KEY_1\"],\"kind\":\"detector\","
              "\"time\":0,\"what\":\"long-press-due\"}\n");
    EXPECT_EQ(written(What::ChordFound, {KEY_STOP, KEY_PLAY}),
              start + pair + "\"mapped\":true,\"time\":0,\"what\":\"chord-found\"}\n");
    EXPECT_EQ(written(What::ChordReleased, {KEY_STOP, KEY_PLAY}),
              start + pair + "\"time\":0,\"what\":\"chord-released\"}\n");
}

TEST(SessionWriter, WritesAnEventWithItsCause)
{
    EXPECT_EQ(toJsonLine({0,
                          EventPublished{InputEvent::SWLineIn,
                                         InputEvent::SwitchEnabled,
                                         InputEvent::Bus::USB,
                                         "a",
                                         EV_SW,
                                         {SW_LINEIN_INSERT},
                                         -1500}})
                  .toStdString(),
              "{\"bus\":\"USB\",\"codeType\":\"EV_SW\",\"codes\":[\"SW_LINEIN_INSERT\"],"
              "\"command\":\"SWLineIn\",\"device\":\"a\",\"kind\":\"event\",\"latency\":-1.5,"
              "\"state\":\"SwitchEnabled\",\"time\":0}\n");
}

TEST(SessionWriter, WritesIdentifiersExpectationsAndRemarks)
{
    EXPECT_EQ(toJsonLine({0, IdentifierSelected{"text"}}).toStdString(),
              "{\"identifier\":\"text\",\"kind\":\"identifier\",\"time\":0}\n");
    EXPECT_EQ(toJsonLine({0, Remark{"a"}}).toStdString(),
              "{\"kind\":\"remark\",\"text\":\"a\",\"time\":0}\n");
    EXPECT_EQ(toJsonLine({0, ExpectationChecked{"a", 12, "b", false, "c"}}).toStdString(),
              "{\"file\":\"a\",\"found\":\"c\",\"kind\":\"expectation\",\"line\":12,"
              "\"met\":false,\"text\":\"b\",\"time\":0}\n");
    EXPECT_EQ(toJsonLine({0, ExpectationChecked{"a", 12, "b", true, {}}}).toStdString(),
              "{\"file\":\"a\",\"kind\":\"expectation\",\"line\":12,\"met\":true,"
              "\"text\":\"b\",\"time\":0}\n");
}

TEST(SessionWriter, WritesWhatIsKnownOfAKeyOnly)
{
    KeyStates states;
    states.device = "a";
    states.isChord = true;
    states.keys = {KeyState{KEY_1, false, true, false, false, 3, {}},
                   KeyState{KEY_2, true, false, true, true, 0, {}}};
    EXPECT_EQ(toJsonLine({0, states}).toStdString(),
              "{\"chord\":true,\"device\":\"a\",\"handler\":false,\"keys\":["
              "{\"down\":false,\"held\":false,\"key\":\"KEY_1\",\"withdrawn\":true},"
              "{\"count\":0,\"down\":true,\"held\":true,\"key\":\"KEY_2\",\"withdrawn\":false}],"
              "\"kind\":\"state\",\"time\":0}\n");
}
