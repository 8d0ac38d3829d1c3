#include "GeneralSteps.h"

#include "ScenarioText.h"

#include <gmock/gmock.h>

namespace {

using namespace ScenarioText;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

} // namespace

TEST(GeneralSteps, ReadsWhatConcernsNoDevice)
{
    const Scenario scenario = parsed("start 2026-03-04T05:06:07Z\nclock -5s\nselect \"\"\n"
                                     "input-directory remove\ninput-directory create\nwait end\n"
                                     "ignore events\nplay \"../b.evemu\"\n")
                                  .scenario;
    ASSERT_THAT(scenario.steps, SizeIs(7));
    EXPECT_EQ(scenario.start, 1'772'600'767'000);
    EXPECT_EQ(step<Step::StepClock>(scenario, 0).delta, -5000);
    EXPECT_EQ(step<Step::Select>(scenario, 1).identifier.toStdString(), "");
    EXPECT_FALSE(step<Step::InputDirectory>(scenario, 2).exists);
    EXPECT_TRUE(step<Step::InputDirectory>(scenario, 3).exists);
    step<Step::WaitForEnd>(scenario, 4);
    step<Step::IgnoreEvents>(scenario, 5);
    EXPECT_EQ(step<Step::Play>(scenario, 6).file.toStdString(), "b.evemu");
    EXPECT_EQ(step<Step::Play>(scenario, 6).device, -1);
}

TEST(GeneralSteps, TimesAreLimited)
{
    EXPECT_THAT(mistake("wait 169h"), HasSubstr("at most 7 days (168h)"));
    EXPECT_THAT(mistake(QByteArray("wait 168h\n").repeated(15)),
                HasSubstr(":15:6: error: a scenario lasts at most 100 days in all"));
    EXPECT_THAT(mistake("clock +1"), HasSubstr("'+1' is not a clock step"));
    EXPECT_THAT(mistake("clock +87601h"), HasSubstr("at most 10 years"));
    EXPECT_THAT(mistake("start 1970-01-02T00:00:00Z\nclock -25h"), HasSubstr("1970 to 2104"));
    EXPECT_THAT(mistake("start 2105-01-01T00:00:00Z"), HasSubstr("1970 to 2104"));
}

TEST(GeneralSteps, StartNeedsATimeZoneAndComesFirst)
{
    EXPECT_THAT(mistake("start 2026-01-02T10:00:00"), HasSubstr("is not a time like"));
    EXPECT_THAT(mistakeOf("start 2026-01-02T10:00:00Z"),
                HasSubstr(":2:1: error: 'start' must come"));
}

TEST(GeneralSteps, WhatMakesNoSenseIsAMistake)
{
    EXPECT_THAT(mistakeOf("ignore event"), HasSubstr("'ignore events'"));
    EXPECT_THAT(mistake("input-directory create"), HasSubstr("/dev/input already exists"));
}

TEST(GeneralSteps, TimesMayReachTheirLimits)
{
    EXPECT_THAT(mistakes("wait 168h"), IsEmpty());
    EXPECT_THAT(mistake("wait 604800001ms"), HasSubstr("at most 7 days (168h)"));
    const QByteArray hundredDays = QByteArray("wait 168h\n").repeated(14) + "wait 48h\n";
    EXPECT_THAT(mistakes(hundredDays), IsEmpty());
    EXPECT_THAT(mistake(hundredDays + "wait 1ms"), HasSubstr(":16:6: error: a scenario lasts"));
    EXPECT_THAT(mistakes("clock +87600h"), IsEmpty());
    EXPECT_THAT(mistakes("clock -87600h"), IsEmpty());
    EXPECT_THAT(mistake("clock +315360000001ms"), HasSubstr("at most 10 years"));
    EXPECT_THAT(mistake("clock -315360000001ms"), HasSubstr("at most 10 years"));
    EXPECT_THAT(mistakes("start 1970-01-01T00:00:00Z\nclock +1ms\nclock -1ms"), IsEmpty());
    EXPECT_THAT(mistake("start 1970-01-01T00:00:00Z\nclock -1ms"), HasSubstr("1970 to 2104"));
    EXPECT_THAT(mistakes("start 2104-12-29T13:20:00Z"), IsEmpty());
    EXPECT_THAT(mistake("start 2104-12-29T13:20:00.001Z"), HasSubstr("1970 to 2104"));
    EXPECT_THAT(mistake("start 2104-12-29T13:20:00Z\nclock +1ms"), HasSubstr("1970 to 2104"));
}

TEST(GeneralSteps, StartMayHaveTheLongestTimeThereIs)
{
    const QByteArray text = "2026-03-04T05:06:07.000000+00:00";
    ASSERT_THAT(text, SizeIs(32));
    EXPECT_EQ(parsed("start " + text).scenario.start, 1'772'600'767'000);
    EXPECT_THAT(mistake("start 2026-03-04T05:06:07.0000000+00:00"),
                HasSubstr("is not a time like"));
}

TEST(GeneralSteps, WhatIsMissingIsNamed)
{
    EXPECT_EQ(mistake("start"),
              "dir/a.scenario:1:6: error: a time like 2026-01-02T10:00:00Z is missing");
    EXPECT_EQ(mistake("wait"),
              "dir/a.scenario:1:5: error: a duration like 1200ms or 1.5s is missing");
    EXPECT_EQ(mistake("clock"),
              "dir/a.scenario:1:6: error: a clock step like +1h or -5s is missing");
    EXPECT_EQ(mistake("select"), "dir/a.scenario:1:7: error: the identifier is missing");
    EXPECT_EQ(mistake("input-directory"),
              "dir/a.scenario:1:16: error: 'remove' or 'create' is missing");
    EXPECT_EQ(mistake("play"),
              "dir/a.scenario:1:5: error: the recording's name in quotes is missing");
    EXPECT_EQ(mistake("play \"a\" on"),
              "dir/a.scenario:1:12: error: the device to play it on is missing");
    EXPECT_EQ(mistake("ignore"), "dir/a.scenario:1:1: error: the step is 'ignore events'");
}

TEST(GeneralSteps, SayWhatIsWrong)
{
    EXPECT_EQ(mistake("start soon"),
              "dir/a.scenario:1:7: error: 'soon' is not a time like 2026-01-02T10:00:00Z, in UTC");
    EXPECT_EQ(mistakeOf("start 2026-01-02T10:00:00Z"),
              "dir/a.scenario:2:1: error: 'start' must come before the first step with an effect");
    EXPECT_EQ(mistake("wait soon"),
              "dir/a.scenario:1:6: error: 'soon' is not a duration; write one like 1200ms, 1.5s, "
              "2min or 1h, in whole milliseconds, at most 7 days");
    EXPECT_EQ(mistake("clock soon"),
              "dir/a.scenario:1:7: error: 'soon' is not a clock step; write one like +1h or -5s, "
              "at most 10 years");
    EXPECT_EQ(mistake("input-directory delete"),
              "dir/a.scenario:1:17: error: unknown word 'delete'; write one of create, remove");
    EXPECT_EQ(mistake("input-directory create"),
              "dir/a.scenario:1:17: error: /dev/input already exists");
    EXPECT_EQ(mistake("input-directory remove\ninput-directory remove"),
              "dir/a.scenario:2:17: error: /dev/input has already been removed");
    EXPECT_EQ(mistake("ignore event"), "dir/a.scenario:1:8: error: the step is 'ignore events'");
    EXPECT_EQ(mistakeOf("play \"a\" on pannel"),
              "dir/a.scenario:2:13: error: unknown device 'pannel', did you mean 'panel'?");
    EXPECT_EQ(mistakeOf("panel unplug\nplay \"a\" on panel"),
              "dir/a.scenario:3:13: error: panel is not plugged in");
    EXPECT_EQ(mistake("start 2105-01-01T00:00:00Z"),
              "dir/a.scenario:1:7: error: the wall clock can only show 1970 to 2104, the range of "
              "the records' time stamps");
}

TEST(GeneralSteps, WithAMistakeAreNoSteps)
{
    EXPECT_THAT(parsed("wait soon\nclock soon\nselect\nplay\nignore\ninput-directory x\n"
                       "start soon\nexpect nothing for x\nexpect Info\n")
                    .scenario.steps,
                IsEmpty());
    EXPECT_EQ(parsed("wait end\nwait 1s\n").scenario.steps.size(), 2);
}

TEST(GeneralSteps, AScenarioStartsAtAFixedTime)
{
    EXPECT_EQ(parsed("wait 1s").scenario.start, 1'767'348'000'000);
}
