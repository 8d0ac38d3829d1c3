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
