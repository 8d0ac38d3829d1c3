#include "Operation.h"

#include <gmock/gmock.h>

#include <linux/input.h>

#include <limits>

using namespace Vorn::Drive;
using namespace Vorn::Drive::Operations;
using testing::Eq;
using Vorn::Sim::DeviceDescription;

namespace {

template <typename Kind>
Kind sent(const Kind &kind)
{
    const QByteArray line = toLine(kind);
    EXPECT_EQ(line.count('\n'), 1) << line.constData();
    EXPECT_TRUE(line.endsWith('\n'));
    const std::optional<Operation> read = operationFrom(line);
    EXPECT_TRUE(read && std::holds_alternative<Kind>(*read)) << line.constData();
    return read ? std::get<Kind>(*read) : Kind();
}

DeviceDescription panel()
{
    auto device = DeviceDescription::keyboard("panel\n\xff", BUS_SPI, {KEY_OK, 767})
                      .withKeys({}, {KEY_OK})
                      .withSwitches({SW_LINEIN_INSERT}, {SW_LINEIN_INSERT})
                      .withEventTypes({EV_MSC})
                      .withAutoRepeat()
                      .withMode(0);
    device.id.version = 0xffff;
    return device;
}

} // namespace

TEST(OperationTest, KeepsADevice)
{
    const Plug read = sent(Plug{9, panel()});
    EXPECT_EQ(read.node, 9);
    EXPECT_EQ(read.device.name, panel().name);
    EXPECT_EQ(read.device.id.bustype, BUS_SPI);
    EXPECT_EQ(read.device.id.version, 0xffff);
    EXPECT_EQ(read.device.keys, panel().keys);
    EXPECT_EQ(read.device.keysHeld, panel().keysHeld);
    EXPECT_EQ(read.device.switches, panel().switches);
    EXPECT_EQ(read.device.switchesOn, panel().switchesOn);
    EXPECT_EQ(read.device.eventTypes, panel().eventTypes);
    EXPECT_TRUE(read.device.autoRepeat);
    EXPECT_EQ(read.device.mode, 0U);
}

TEST(OperationTest, TellsAnEmptyNameFromNone)
{
    Replace replace{0, panel()};
    replace.device.name = "";
    EXPECT_FALSE(sent(replace).device.name.isNull());
    EXPECT_TRUE(sent(replace).device.name.isEmpty());
    replace.device.name = QByteArray();
    EXPECT_TRUE(sent(replace).device.name.isNull());
}

TEST(OperationTest, KeepsRecordsOfAnyValue)
{
    constexpr int least = std::numeric_limits<int>::min();
    const Send read = sent(Send{1, {{0, EV_MSC, 0xffff, least}, {0, EV_SYN, 0, 0}}, -500});
    EXPECT_EQ(read.node, 1);
    EXPECT_EQ(read.offset, -500);
    ASSERT_EQ(read.records.size(), 2);
    EXPECT_EQ(read.records.first().type, EV_MSC);
    EXPECT_EQ(read.records.first().code, 0xffff);
    EXPECT_EQ(read.records.first().value, least);
}

TEST(OperationTest, KeepsTheOthers)
{
    const Begin begin = sent(Begin{"1.0.0", true, 1'767'348'000'000});
    EXPECT_EQ(begin.version, "1.0.0");
    EXPECT_TRUE(begin.virtualTime);
    EXPECT_EQ(begin.wallClock, 1'767'348'000'000);
    const Wait wait = sent(Wait{8'640'000'000, -1});
    EXPECT_EQ(wait.until, 8'640'000'000);
    EXPECT_EQ(wait.events, -1);
    const ChangeKeys keys = sent(ChangeKeys{2, {KEY_STOP, KEY_PLAY}, 1});
    EXPECT_THAT(keys.codes, testing::ElementsAre(KEY_STOP, KEY_PLAY));
    EXPECT_EQ(keys.value, 1);
    EXPECT_EQ(sent(Select{QStringLiteral("\u00e4\"\n")}).identifier, QStringLiteral("\u00e4\"\n"));
    EXPECT_TRUE(sent(SetSwitch{0, 13, true}).on);
    EXPECT_FALSE(sent(SetInputDirectory{false}).exists);
    EXPECT_TRUE(sent(Unplug{3, true}).losingRecords);
    EXPECT_EQ(sent(SetMode{3, 0660}).mode, 0660);
    EXPECT_EQ(sent(StepWallClock{-3'600'000}).delta, -3'600'000);
    sent(AwaitManager());
    sent(Settle());
    sent(ReleaseKeys{4});
    sent(AskIdentifier());
    sent(End());
}

TEST(OperationTest, RefusesWhatItDoesNotUnderstand)
{
    for (const char *line :
         {"", "nonsense", "[]", "{}", R"({"operation":"dance"})",
          R"({"operation":"set-mode","node":1})", R"({"operation":"set-mode","node":1.5,"mode":0})",
          R"({"operation":"set-mode","node":"1","mode":0})",
          R"({"operation":"set-mode","node":4294967296,"mode":0})",
          R"({"operation":"send","node":1,"offset":0,"records":[[1,2]]})"})
        EXPECT_FALSE(operationFrom(line)) << line;
}

TEST(OperationTest, TellsAnswersFromEntries)
{
    Answer answer;
    answer.time = 1234;
    answer.refused = KEY_OK;
    answer.identifier = "text";
    answer.error = "no";
    const std::optional<Answer> read = answerFrom(toLine(answer));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->time, 1234);
    EXPECT_EQ(read->refused, KEY_OK);
    EXPECT_EQ(read->identifier, "text");
    EXPECT_EQ(read->error, "no");
    EXPECT_FALSE(answerFrom(R"({"kind":"remark","text":"answer","time":0})"));
    EXPECT_FALSE(answerFrom(R"({"answer":{}})"));
}
