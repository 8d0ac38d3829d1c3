#include "ExpectSteps.h"

#include "ScenarioText.h"

#include <gmock/gmock.h>

namespace {

using namespace ScenarioText;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

} // namespace

TEST(ExpectSteps, AnExpectedEventMayBeNarrowedDown)
{
    const Scenario scenario =
        parsed("device panel\nexpect Info KeyLongPress LocalUI from panel after 700ms within 2s\n"
               "expect Info KeyReleased from \"front-panel\" after 1s..1.2s\nexpect nothing for 3s")
            .scenario;
    const auto first = step<Step::ExpectEvent>(scenario, 1);
    EXPECT_EQ(first.command, InputEvent::Info);
    EXPECT_EQ(first.state, InputEvent::KeyLongPress);
    EXPECT_EQ(first.bus, InputEvent::Bus::LocalUI);
    EXPECT_EQ(first.device, 0);
    EXPECT_EQ(first.earliest, 700);
    EXPECT_EQ(first.latest, 755) << "a tick later, as coarse as ticks are";
    EXPECT_EQ(first.within, 2000);
    const auto second = step<Step::ExpectEvent>(scenario, 2);
    EXPECT_EQ(second.deviceName.toStdString(), "front-panel");
    EXPECT_EQ(second.latest, 1200);
    EXPECT_FALSE(second.bus);
    EXPECT_EQ(step<Step::ExpectNothing>(scenario, 3).duration, 3000);
    EXPECT_TRUE(scenario.hasExpectations());
}

TEST(ExpectSteps, NamesTheCommandStateOrBusThatWasProbablyMeant)
{
    EXPECT_EQ(mistakeOf("expect VolumUp KeyPressed"),
              "dir/a.scenario:2:8: error: unknown command 'VolumUp', did you mean 'VolumeUp'?");
    EXPECT_EQ(mistakeOf("expect VolumeUp KeyPresed"),
              "dir/a.scenario:2:17: error: unknown state 'KeyPresed', did you mean 'KeyPressed'?");
    EXPECT_EQ(mistakeOf("expect VolumeUp KeyPressed LocalUi"),
              "dir/a.scenario:2:28: error: unknown bus or word 'LocalUi', did you mean 'LocalUI'?");
    EXPECT_EQ(mistakeOf("expect VolumeUp KeyPressed from panl"),
              "dir/a.scenario:2:33: error: unknown device 'panl', did you mean 'panel'?");
}

TEST(ExpectSteps, ATimeEndsAfterItBegins)
{
    EXPECT_THAT(mistakeOf("expect Info KeyPressed after 2s..1s"), HasSubstr("before it begins"));
}

TEST(ExpectSteps, NameTheStateThatWasMeantOrAll)
{
    EXPECT_EQ(mistakeOf("expect Info KeyPresed"),
              "dir/a.scenario:2:13: error: unknown state 'KeyPresed', did you mean 'KeyPressed'?");
    EXPECT_EQ(mistakeOf("expect Info press"),
              "dir/a.scenario:2:13: error: unknown state 'press'; write one of KeyPressed, "
              "KeyReleased, KeyLongPress, SwitchEnabled, SwitchDisabled");
}

TEST(ExpectSteps, ATimeMayEndWhereItBegins)
{
    const auto event = step<Step::ExpectEvent>(
        parsed("device panel\nexpect Info KeyPressed after 5ms..5ms").scenario, 1);
    EXPECT_EQ(event.earliest, 5);
    EXPECT_EQ(event.latest, 5);
}

TEST(ExpectSteps, ATimeIsAtMostSevenDays)
{
    const auto mistakesOf = [](const QByteArray &after) {
        return mistakes("device panel\nexpect Info KeyPressed after " + after);
    };
    EXPECT_THAT(mistakesOf("168h"), IsEmpty());
    EXPECT_THAT(mistakesOf("604800001ms"), ElementsAre(HasSubstr("at most 7 days (168h)")));
    EXPECT_THAT(mistakesOf("1s..168h"), IsEmpty());
    EXPECT_THAT(mistakesOf("1s..169h"), ElementsAre(HasSubstr("at most 7 days (168h)")));
}

TEST(ExpectSteps, WaitsThatRunAtTheSameTimeCountOnce)
{
    // 98 days, and up to two more.
    const QByteArray waits = "device panel\n" + QByteArray("wait 168h\n").repeated(14);
    EXPECT_THAT(mistakes(waits + "expect Info KeyPressed after 47h within 48h"), IsEmpty());
    EXPECT_THAT(mistakes(waits + "expect Info KeyPressed after 47h within 49h"),
                ElementsAre(HasSubstr("at most 100 days in all")));
    EXPECT_THAT(mistakes(waits + "expect Info KeyPressed after 48h within 1s"),
                ElementsAre(HasSubstr("at most 100 days in all")));
    EXPECT_THAT(mistakes(waits + "expect nothing for 48h"), IsEmpty());
    EXPECT_THAT(mistakes(waits + "expect nothing for 49h"),
                ElementsAre(HasSubstr("at most 100 days in all")));
}

TEST(ExpectSteps, WhatIsMissingOrWrongIsNamed)
{
    EXPECT_EQ(mistakeOf("expect"),
              "dir/a.scenario:2:7: error: a command, 'nothing' or 'identifier' is missing");
    EXPECT_EQ(mistakeOf("expect identifier"),
              "dir/a.scenario:2:18: error: the identifier is missing");
    EXPECT_EQ(mistakeOf("expect Info"),
              "dir/a.scenario:2:12: error: a state like KeyPressed is missing");
    EXPECT_EQ(mistakeOf("expect Info KeyPressed after"),
              "dir/a.scenario:2:29: error: a time like 700ms or 700ms..750ms is missing");
    EXPECT_EQ(mistakeOf("expect Info KeyPressed within"),
              "dir/a.scenario:2:30: error: a duration like 1200ms or 1.5s is missing");
    EXPECT_EQ(mistakeOf("expect Info KeyPressed from"),
              "dir/a.scenario:2:28: error: the device it comes from is missing");
    EXPECT_EQ(mistakeOf("expect nothing for"),
              "dir/a.scenario:2:19: error: a duration like 1200ms or 1.5s is missing");
    EXPECT_EQ(mistakeOf("expect Info KeyPressed after 2s..1s"),
              "dir/a.scenario:2:30: error: '2s..1s' ends before it begins");
    for (const char *time : {"soon", "1s..", "..1s", "1s..soon", "soon..1s", "1s.2s"})
        EXPECT_EQ(mistakeOf(QByteArray("expect Info KeyPressed after ") + time),
                  std::string("dir/a.scenario:2:30: error: '") + time
                      + "' is not a time like 700ms or 700ms..750ms, in whole milliseconds");
    EXPECT_EQ(mistakeOf("expect nothin"),
              "dir/a.scenario:2:8: error: unknown command 'nothin', did you mean 'nothing'?");
    EXPECT_EQ(mistakeOf("expect identifer"),
              "dir/a.scenario:2:8: error: unknown command 'identifer', did you mean 'identifier'?");
    for (const char *word : {"after", "within", "from"})
        EXPECT_EQ(mistakeOf(QByteArray("expect Info KeyPressed ") + word + "x"),
                  std::string("dir/a.scenario:2:24: error: unknown bus or word '") + word
                      + "x', did you mean '" + word + "'?");
}

TEST(ExpectSteps, MayExpectNothingAnIdentifierOrAnyEventOfACommand)
{
    const Scenario scenario =
        parsed("device panel\nexpect nothing\nexpect identifier text\nexpect Info KeyPressed\n"
               "expect Info KeyPressed from \"\"")
            .scenario;
    EXPECT_EQ(step<Step::ExpectNothing>(scenario, 1).duration, 0);
    EXPECT_EQ(step<Step::ExpectIdentifier>(scenario, 2).identifier.toStdString(), "text");
    const auto any = step<Step::ExpectEvent>(scenario, 3);
    EXPECT_FALSE(any.earliest || any.latest || any.within || any.bus);
    EXPECT_EQ(any.device, -1);
    EXPECT_TRUE(any.deviceName.isNull());
}
