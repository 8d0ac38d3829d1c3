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
