#include "DeviceActions.h"

#include "ScenarioText.h"

#include <gmock/gmock.h>

#include <linux/input.h>

namespace {

using namespace ScenarioText;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

} // namespace

TEST(DeviceActions, SeveralKeysGoInOnePacket)
{
    const Scenario scenario = parsed("device panel\npanel press KEY_A 48").scenario;
    const auto keys = step<Step::Keys>(scenario, 1);
    EXPECT_THAT(keys.codes, ElementsAre(KEY_A, KEY_B));
    EXPECT_EQ(keys.value, 1);
    EXPECT_THAT(scenario.devices.first().usedKeys, ElementsAre(KEY_A, KEY_B));
}

TEST(DeviceActions, AHoldIsAPressAWaitAndARelease)
{
    const Scenario scenario = parsed("device panel\npanel hold KEY_A for 1.5s").scenario;
    ASSERT_THAT(scenario.steps, SizeIs(4));
    EXPECT_EQ(step<Step::Keys>(scenario, 1).value, 1);
    EXPECT_EQ(step<Step::Wait>(scenario, 2).duration, 1500);
    EXPECT_EQ(step<Step::Keys>(scenario, 3).value, 0);
    EXPECT_FALSE(scenario.steps[1].continues);
    EXPECT_TRUE(scenario.steps[2].continues && scenario.steps[3].continues);
}

TEST(DeviceActions, AClickLastsEightyMilliseconds)
{
    EXPECT_EQ(step<Step::Wait>(parsed("device panel\npanel click KEY_A").scenario, 2).duration, 80);
    EXPECT_EQ(
        step<Step::Wait>(parsed("device panel\npanel click KEY_A for 5ms").scenario, 2).duration,
        5);
}

TEST(DeviceActions, ARecordIsTakenAsItIs)
{
    const Scenario scenario =
        parsed("device panel\npanel record EV_KEY KEY_A -7 stamped -500ms\n").scenario;
    const auto record = step<Step::Record>(scenario, 1);
    EXPECT_EQ(record.type, EV_KEY);
    EXPECT_EQ(record.code, KEY_A);
    EXPECT_EQ(record.value, -7);
    EXPECT_EQ(record.offset, -500);
}

TEST(DeviceActions, TellsKeysAndSwitchesApart)
{
    EXPECT_EQ(mistakeOf("panel press SW_LINEIN_INSERT"),
              "dir/a.scenario:2:13: error: 'SW_LINEIN_INSERT' is a switch; write 'panel switch "
              "SW_LINEIN_INSERT on'");
    EXPECT_EQ(mistakeOf("panel switch KEY_A on"),
              "dir/a.scenario:2:14: error: 'KEY_A' is a key; write 'panel press KEY_A'");
}

TEST(DeviceActions, AStepThatTheKernelWouldDropIsAMistake)
{
    EXPECT_EQ(mistakeOf("panel press KEY_A\npanel press KEY_A"),
              "dir/a.scenario:3:13: error: KEY_A is already down, so the kernel would drop this; "
              "'panel record EV_KEY KEY_A 1' sends it anyway");
    EXPECT_THAT(mistakeOf("panel release KEY_A"), HasSubstr(":2:15: error: KEY_A is already up"));
    EXPECT_THAT(mistakeOf("panel press KEY_A KEY_A"),
                HasSubstr(":2:19: error: KEY_A is already down"));
    EXPECT_THAT(mistakeOf("panel press KEY_A\npanel click KEY_A"),
                HasSubstr("KEY_A is already down"));
    EXPECT_THAT(mistakeOf("panel switch SW_LID off"), HasSubstr("SW_LID is already off"));
    EXPECT_THAT(mistake("device panel held=KEY_A\npanel press KEY_A"),
                HasSubstr("KEY_A is already down"));
    EXPECT_THAT(mistakes("device panel\npanel press KEY_A\npanel unplug\npanel plug\n"
                         "panel press KEY_A\npanel replace name=x\npanel press KEY_A"),
                IsEmpty())
        << "what was down is up on another device";
}

TEST(DeviceActions, ADeviceHasTheKeysThatItDeclares)
{
    EXPECT_EQ(mistake("\ndevice panel keys=KEY_A switches=\npanel press KEY_B"),
              "dir/a.scenario:3:13: error: panel has no KEY_B; add it to its keys= in line 2");
    EXPECT_EQ(mistake("device panel switches=\npanel switch SW_LID on"),
              "dir/a.scenario:2:14: error: panel has no SW_LID; add it to its switches= in line 1");
}

TEST(DeviceActions, OnlyADeviceThatIsPluggedInDoesSomething)
{
    EXPECT_EQ(mistakeOf("panel unplug\npanel press KEY_A"),
              "dir/a.scenario:3:7: error: panel is not plugged in; write 'panel plug' first");
    EXPECT_EQ(mistakeOf("panel plug"), "dir/a.scenario:2:7: error: panel is already plugged in");
    EXPECT_THAT(mistakeOf("panel unplug\nplay \"a.evemu\" on panel"),
                HasSubstr("panel is not plugged in"));
}

TEST(DeviceActions, NamesTheKeyOrSwitchThatWasProbablyMeant)
{
    EXPECT_EQ(mistakeOf("panel press KEY_INOF"),
              "dir/a.scenario:2:13: error: unknown key 'KEY_INOF', did you mean 'KEY_INFO'?");
    EXPECT_EQ(mistakeOf("panel switch SW_LINEIN_INSRT on"),
              "dir/a.scenario:2:14: error: unknown switch 'SW_LINEIN_INSRT', did you mean "
              "'SW_LINEIN_INSERT'?");
}

TEST(DeviceActions, WhatIsMissingIsNamed)
{
    EXPECT_EQ(mistakeOf("panel"), "dir/a.scenario:2:6: error: what panel does is missing");
    EXPECT_EQ(mistakeOf("panel press # KEY_A"),
              "dir/a.scenario:2:13: error: a key like KEY_OK is missing");
    EXPECT_THAT(mistakeOf("panel hold KEY_A"), HasSubstr("write 'panel hold KEY_A for 2s'"));
    EXPECT_THAT(mistakeOf("panel unplug losing"), HasSubstr("'unplug losing records'"));
    EXPECT_THAT(mistakeOf("panel replace bus=USB"), HasSubstr("name=\"…\" is missing"));
}

TEST(DeviceActions, OnlyTheRecordingKnowsTheFirstStateOfARecordedDevice)
{
    const QByteArray device = "device panel from \"x.evemu\"\n";
    EXPECT_THAT(mistakes(device + "panel release KEY_A\npanel switch SW_LID off"), IsEmpty());
    EXPECT_THAT(mistake(device + "panel press KEY_A\npanel press KEY_A"),
                HasSubstr("KEY_A is already down"));
}

TEST(DeviceActions, ARecordChangesNoKeys)
{
    EXPECT_THAT(mistakes("device panel\npanel record EV_KEY KEY_A 1\npanel press KEY_A"),
                IsEmpty());
    EXPECT_THAT(mistake("device panel\npanel record EV_KEY KEY_A x"),
                HasSubstr(":27: error: 'x' is not a value"));
    EXPECT_THAT(mistake("device panel\npanel record EV_KEY KEY_A 1 stamped soon"),
                HasSubstr("'soon' is not an offset"));
}

TEST(DeviceActions, AKeyThatIsHeldAndASwitchThatIsOnAreThoseOfTheDevice)
{
    EXPECT_THAT(mistakes("device panel keys= held=KEY_A switches= on=SW_LID\n"
                         "panel release KEY_A\npanel switch SW_LID off"),
                IsEmpty());
    EXPECT_THAT(mistake("device panel keys= held=KEY_A\npanel press KEY_B"),
                HasSubstr("panel has no KEY_B"));
    EXPECT_THAT(mistake("device panel switches= on=SW_LID\npanel switch SW_DOCK on"),
                HasSubstr("panel has no SW_DOCK"));
}

TEST(DeviceActions, ARecordIsOfAKnownTypeAndCode)
{
    EXPECT_EQ(mistakeOf("panel record EV_KYE KEY_A 1"),
              "dir/a.scenario:2:14: error: unknown event type 'EV_KYE', did you mean 'EV_KEY'?");
    EXPECT_EQ(mistakeOf("panel record EV_KEY KEY_INOF 1"),
              "dir/a.scenario:2:21: error: unknown code of EV_KEY 'KEY_INOF', did you mean "
              "'KEY_INFO'?");
    EXPECT_EQ(mistakeOf("panel record EV_SW SW_LIDD 1"),
              "dir/a.scenario:2:20: error: unknown code of EV_SW 'SW_LIDD', did you mean "
              "'SW_LID'?");
    // Of the others, nothing is known that could have been meant.
    for (const char *type : {"EV_SYN", "EV_REL", "EV_LED", "EV_REP"}) {
        for (const char *code : {"KEY_INOF", "SW_LIDD"})
            EXPECT_EQ(mistakeOf(QByteArray("panel record ") + type + ' ' + code + " 1"),
                      std::string("dir/a.scenario:2:21: error: unknown code of ") + type + " '"
                          + code + "'");
    }
    EXPECT_EQ(mistakeOf("panel record"),
              "dir/a.scenario:2:13: error: an event type like EV_KEY is missing");
    EXPECT_EQ(mistakeOf("panel record EV_SW"),
              "dir/a.scenario:2:19: error: a code of EV_SW is missing");
    EXPECT_EQ(mistakeOf("panel record EV_SW SW_LID"),
              "dir/a.scenario:2:26: error: the value, a number is missing");
    EXPECT_EQ(mistakeOf("panel record EV_SW SW_LID 1 stamped"),
              "dir/a.scenario:2:36: error: the offset from the wall clock, like -500ms is missing");
}

TEST(DeviceActions, UseTheKeysAndSwitchesOfTheDevice)
{
    const Scenario scenario = parsed("device panel\npanel press KEY_A\npanel switch SW_LID on\n"
                                     "panel record EV_KEY KEY_B 1\npanel record EV_SW SW_DOCK 1\n"
                                     "panel record EV_KEY 767 1\npanel record EV_KEY 768 1\n"
                                     "panel record EV_SW 16 1\npanel record EV_SW 17 1\n"
                                     "panel record EV_LED 5 1\npanel record EV_MSC 4 1\n"
                                     "panel press KEY_B")
                                  .scenario;
    EXPECT_THAT(scenario.devices.first().usedKeys, ElementsAre(KEY_A, KEY_B, 767));
    EXPECT_THAT(scenario.devices.first().usedSwitches, ElementsAre(SW_LID, SW_DOCK, 16));
    EXPECT_EQ(step<Step::Record>(scenario, 3).offset, 0);
    EXPECT_EQ(step<Step::Record>(scenario, 6).code, 768);
}

TEST(DeviceActions, PermitAndUnplugADevice)
{
    const Scenario scenario = parsed("device panel\npanel forbid\npanel allow\n"
                                     "panel repeat KEY_A KEY_B\npanel unplug losing records\n"
                                     "panel plug\npanel unplug\npanel plug\n"
                                     "panel replace name=x bus=USB\npanel switch SW_LID on\n"
                                     "panel switch SW_LID off")
                                  .scenario;
    ASSERT_THAT(scenario.steps, SizeIs(11));
    EXPECT_FALSE(step<Step::Permit>(scenario, 1).readable);
    EXPECT_TRUE(step<Step::Permit>(scenario, 2).readable);
    EXPECT_EQ(step<Step::Keys>(scenario, 3).value, 2);
    EXPECT_THAT(step<Step::Keys>(scenario, 3).codes, ElementsAre(KEY_A, KEY_B));
    EXPECT_TRUE(step<Step::Unplug>(scenario, 4).losingRecords);
    EXPECT_FALSE(step<Step::Unplug>(scenario, 6).losingRecords);
    EXPECT_EQ(step<Step::Replace>(scenario, 8).name.toStdString(), "x");
    EXPECT_EQ(step<Step::Replace>(scenario, 8).bus, BUS_USB);
    EXPECT_TRUE(step<Step::Switch>(scenario, 9).on);
    EXPECT_FALSE(step<Step::Switch>(scenario, 10).on);
    EXPECT_EQ(step<Step::Switch>(scenario, 10).code, SW_LID);
}

TEST(DeviceActions, SayWhatTheStepWouldBe)
{
    EXPECT_EQ(mistakeOf("panel unplug losing"),
              "dir/a.scenario:2:14: error: the step is 'unplug losing records'");
    EXPECT_EQ(mistakeOf("panel unplug losing it"),
              "dir/a.scenario:2:14: error: the step is 'unplug losing records'");
    EXPECT_EQ(mistakeOf("panel hold KEY_A"),
              "dir/a.scenario:2:1: error: how long is missing; write 'panel hold KEY_A for 2s'");
    EXPECT_EQ(mistakeOf("panel hold KEY_A 2s"),
              "dir/a.scenario:2:18: error: how long is missing; write 'panel hold KEY_A for 2s'");
    EXPECT_EQ(mistakeOf("panel switch SW_LID up"),
              "dir/a.scenario:2:21: error: a switch goes 'on' or 'off', not 'up'");
    EXPECT_EQ(mistakeOf("panel switch SW_LID"),
              "dir/a.scenario:2:20: error: 'on' or 'off' is missing");
    EXPECT_EQ(mistakeOf("panel switch"),
              "dir/a.scenario:2:13: error: a switch like SW_LINEIN_INSERT is missing");
    EXPECT_EQ(mistakeOf("panel record EV_KEY KEY_A x"),
              "dir/a.scenario:2:27: error: 'x' is not a value; write a number, for a key 1 press, "
              "0 release, 2 repeat");
    EXPECT_EQ(mistakeOf("panel click KEY_A for"),
              "dir/a.scenario:2:22: error: a duration like 1200ms or 1.5s is missing");
}

TEST(DeviceActions, SayHowToSendWhatTheKernelWouldDrop)
{
    EXPECT_EQ(mistakeOf("panel release KEY_A"),
              "dir/a.scenario:2:15: error: KEY_A is already up, so the kernel would drop this; "
              "'panel record EV_KEY KEY_A 0' sends it anyway");
    EXPECT_EQ(mistakeOf("panel switch SW_LID off"),
              "dir/a.scenario:2:21: error: SW_LID is already off, so the kernel would drop this; "
              "'panel record EV_SW SW_LID 0' sends it anyway");
    EXPECT_EQ(mistakeOf("panel switch SW_LID on\npanel switch SW_LID on"),
              "dir/a.scenario:3:21: error: SW_LID is already on, so the kernel would drop this; "
              "'panel record EV_SW SW_LID 1' sends it anyway");
    EXPECT_THAT(mistakes("device panel\npanel switch SW_LID on\npanel switch SW_LID off\n"
                         "panel switch SW_LID on\npanel press KEY_A\npanel release KEY_A\n"
                         "panel click KEY_A\npanel press KEY_A"),
                IsEmpty());
    // A step with a mistake adds nothing, so that only it is told.
    EXPECT_THAT(mistakes("device panel\npanel switch SW_LID up\npanel switch SW_LID on\n"
                         "panel press KEY_INOF\npanel press KEY_A"),
                SizeIs(2));
}

TEST(DeviceActions, AnOffsetIsAtMostSevenDays)
{
    const auto mistakesOf = [](const QByteArray &offset) {
        return mistakes("device panel\npanel record EV_KEY KEY_A 1 stamped " + offset);
    };
    EXPECT_THAT(mistakesOf("168h"), IsEmpty());
    EXPECT_THAT(mistakesOf("-168h"), IsEmpty());
    for (const char *offset : {"604800001ms", "-604800001ms", "soon", "1"})
        EXPECT_THAT(mistakesOf(offset),
                    ElementsAre(std::string("dir/a.scenario:2:37: error: '") + offset
                                + "' is not an offset like -500ms or +1h, at most 7 days"));
}

TEST(DeviceActions, NameEveryActionOrTypeThatWasProbablyMeant)
{
    for (const char *action : {"press", "release", "repeat", "click", "hold", "switch", "record",
                               "plug", "unplug", "replace", "forbid", "allow"})
    {
        EXPECT_EQ(mistakeOf(QByteArray("panel ") + action + "x"),
                  std::string("dir/a.scenario:2:7: error: unknown action '") + action
                      + "x', did you mean '" + action + "'?");
    }
    for (const char *type : {"EV_SYN", "EV_KEY", "EV_REL", "EV_MSC", "EV_SND", "EV_FF_STATUS"}) {
        EXPECT_EQ(mistakeOf(QByteArray("panel record ") + type + "x"),
                  std::string("dir/a.scenario:2:14: error: unknown event type '") + type
                      + "x', did you mean '" + type + "'?");
    }
}
