#include "TimelineText.h"

#include <gmock/gmock.h>

#include <linux/input.h>

using namespace Vorn::Workbench;

TEST(TimelineText, GivesTimesToTheMillisecond)
{
    EXPECT_EQ(timelineTime(1'850'000).toStdString(), "1.850 s");
    EXPECT_EQ(timelineTime(-500).toStdString(), "-0.001 s");
    EXPECT_EQ(timelineTime(3'600'000'000).toStdString(), "3600.000 s");
}

TEST(TimelineText, GivesDurationsInAUnitThatKeepsThemShort)
{
    constexpr qint64 second = 1'000'000;
    EXPECT_EQ(timelineDuration(2'440'000).toStdString(), "2.4 s");
    EXPECT_EQ(timelineDuration(99 * second).toStdString(), "99.0 s");
    EXPECT_EQ(timelineDuration(100 * second).toStdString(), "2 min");
    EXPECT_EQ(timelineDuration(6000 * second).toStdString(), "2 h");
    EXPECT_EQ(timelineDuration(360'000 * second).toStdString(), "4 d");
}

TEST(TimelineText, UsesThePluralUnlessThereIsOne)
{
    EXPECT_EQ(counted(0, "lane").toStdString(), "0 lanes");
    EXPECT_EQ(counted(1, "lane").toStdString(), "1 lane");
    EXPECT_EQ(counted(2, "lane").toStdString(), "2 lanes");
}

TEST(TimelineText, JoinsTheNamesOfCodes)
{
    EXPECT_EQ(joinedNames(EV_KEY, {KEY_STOP, KEY_PLAY}).toStdString(), "KEY_STOP + KEY_PLAY");
    EXPECT_EQ(joinedNames(EV_KEY, {}).toStdString(), "");
}

TEST(TimelineText, LabelsEventsByTheirCommand)
{
    TimelineEvent event;
    event.command = InputEvent::StartPlay;
    event.state = InputEvent::KeyLongPress;
    EXPECT_EQ(eventLabel(event).toStdString(), "StartPlay long press");
    EXPECT_EQ(clickLabel(event).toStdString(), "StartPlay click");
    event.state = InputEvent::SwitchDisabled;
    EXPECT_EQ(eventLabel(event).toStdString(), "StartPlay off");
}

TEST(TimelineText, TellsWhatAMarkStandsFor)
{
    TimelineLane lane;
    lane.label = QStringLiteral("KEY_STOP");
    const auto titleOf = [&lane](TimelineMark::Kind kind) {
        return markTitle(lane, {kind, 1'850'000, 0}).toStdString();
    };
    EXPECT_EQ(titleOf(TimelineMark::Kind::Due), "1.850 s: KEY_STOP long press due");
    EXPECT_EQ(titleOf(TimelineMark::Kind::Withdrawn), "1.850 s: KEY_STOP withdrawn for a chord");
    EXPECT_EQ(titleOf(TimelineMark::Kind::Forgotten), "1.850 s: KEY_STOP forgotten in a reset");
    EXPECT_EQ(titleOf(TimelineMark::Kind::Dropped), "1.850 s: KEY_STOP record dropped");
}
