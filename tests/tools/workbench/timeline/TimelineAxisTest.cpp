#include "TimelineAxis.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace Vorn::Workbench;

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr qint64 second = 1'000'000;

/// From 0 to @p end, 100 px from the left, without a break.
TimelineAxis axisTo(qint64 end, double pxPerSecond, bool isLast = true)
{
    const double scale = pxPerSecond / second;
    return TimelineAxis({{0, end, 0}}, scale, 50, {100, 100 + static_cast<double>(end) * scale},
                        isLast);
}

/// 1 s, a break of 50 px for 8 s, 2 s, a break for 7 s, 1 s; 100 px a second, 10 px from the left.
TimelineAxis broken(bool isLast = true)
{
    return TimelineAxis({{0, second, 0},
                         {9 * second, 11 * second, 8 * second},
                         {18 * second, 19 * second, 7 * second}},
                        100.0 / second, 50, {10, 510}, isLast);
}

std::vector<std::string> labels(const TimelineAxis &axis)
{
    std::vector<std::string> result;
    for (const TimelineAxis::Tick &tick : axis.ticks())
        result.push_back(tick.label.toStdString());
    return result;
}

/// The distance of two ticks, in px.
double distance(double pxPerSecond)
{
    const QVector<TimelineAxis::Tick> ticks = axisTo(1000 * second, pxPerSecond).ticks();
    return ticks.at(1).x - ticks.at(0).x;
}

} // namespace

TEST(TimelineAxis, ContainsItsEndOnlyWhereThePictureEnds)
{
    for (const bool isLast : {true, false}) {
        const TimelineAxis axis = axisTo(second, 100, isLast);
        EXPECT_FALSE(axis.contains(-1));
        EXPECT_TRUE(axis.contains(0));
        EXPECT_TRUE(axis.contains(second - 1));
        EXPECT_EQ(axis.contains(second), isLast);
        EXPECT_FALSE(axis.contains(second + 1));
    }
}

TEST(TimelineAxis, ShowsWhateverReachesIntoIt)
{
    const TimelineAxis axis({{second, 2 * second, 0}}, 100.0 / second, 50, {0, 100}, false);
    EXPECT_TRUE(axis.intersects(0, 3 * second));
    EXPECT_TRUE(axis.intersects(0, second + 1));
    EXPECT_FALSE(axis.intersects(0, second));
    EXPECT_TRUE(axis.intersects(second, second));
    EXPECT_FALSE(axis.intersects(second - 1, second - 1));
    EXPECT_TRUE(axis.intersects(2 * second - 1, 3 * second));
    EXPECT_FALSE(axis.intersects(2 * second, 3 * second));
    EXPECT_FALSE(axis.intersects(2 * second, 2 * second));
}

TEST(TimelineAxis, MapsTimesToTheNearestThatIsShown)
{
    const TimelineAxis axis = broken();
    EXPECT_DOUBLE_EQ(axis.x(-second), 10);
    EXPECT_DOUBLE_EQ(axis.x(0), 10);
    EXPECT_DOUBLE_EQ(axis.x(second / 2), 60);
    EXPECT_DOUBLE_EQ(axis.x(second), 110);
    EXPECT_DOUBLE_EQ(axis.x(5 * second), 110) << "left out";
    EXPECT_DOUBLE_EQ(axis.x(9 * second), 160);
    EXPECT_DOUBLE_EQ(axis.x(11 * second), 360);
    EXPECT_DOUBLE_EQ(axis.x(18 * second), 410);
    EXPECT_DOUBLE_EQ(axis.x(19 * second), 510);
    EXPECT_DOUBLE_EQ(axis.x(99 * second), 510);
}

TEST(TimelineAxis, HasItsBreaksBeforeTheSegments)
{
    const QVector<TimelineAxis::Break> breaks = broken().breaks();
    ASSERT_THAT(breaks, SizeIs(2));
    EXPECT_DOUBLE_EQ(breaks.at(0).from, 110);
    EXPECT_DOUBLE_EQ(breaks.at(0).to, 160);
    EXPECT_EQ(breaks.at(0).duration, 8 * second);
    EXPECT_DOUBLE_EQ(breaks.at(1).from, 360);
    EXPECT_DOUBLE_EQ(breaks.at(1).to, 410);
    EXPECT_EQ(breaks.at(1).duration, 7 * second);
    EXPECT_THAT(axisTo(second, 100).breaks(), IsEmpty());
}

TEST(TimelineAxis, MayBeginWithABreak)
{
    const TimelineAxis axis({{5 * second, 6 * second, 3 * second}}, 100.0 / second, 50, {10, 160},
                            true);
    EXPECT_DOUBLE_EQ(axis.x(5 * second), 60);
    ASSERT_THAT(axis.breaks(), SizeIs(1));
    EXPECT_DOUBLE_EQ(axis.breaks().first().from, 10);
}

TEST(TimelineAxis, HasTicksAtLeastAThumbApartInStepsOfOneTwoOrFive)
{
    EXPECT_DOUBLE_EQ(distance(64), 64);
    EXPECT_DOUBLE_EQ(distance(63), 126);
    EXPECT_DOUBLE_EQ(distance(32), 64);
    EXPECT_DOUBLE_EQ(distance(31), 155);
    EXPECT_DOUBLE_EQ(distance(12.8), 64);
    EXPECT_DOUBLE_EQ(distance(12), 120);
    EXPECT_DOUBLE_EQ(distance(640), 64);
    EXPECT_DOUBLE_EQ(distance(630), 126);
}

TEST(TimelineAxis, LabelsItsTicksWithTheDecimalsOfTheirStep)
{
    EXPECT_THAT(labels(axisTo(2 * second, 64)), ElementsAre("0 s", "1 s", "2 s"));
    EXPECT_THAT(labels(axisTo(second, 128)), ElementsAre("0.0 s", "0.5 s", "1.0 s"));
    EXPECT_THAT(labels(axisTo(second / 5, 640)), ElementsAre("0.0 s", "0.1 s", "0.2 s"));
    EXPECT_THAT(labels(axisTo(second / 10, 1280)), ElementsAre("0.00 s", "0.05 s", "0.10 s"));
    EXPECT_THAT(labels(axisTo(second / 50, 6400)), ElementsAre("0.00 s", "0.01 s", "0.02 s"));
    EXPECT_THAT(labels(axisTo(second / 100, 12'800)), ElementsAre("0.000 s", "0.005 s", "0.010 s"));
    EXPECT_THAT(labels(axisTo(second / 500, 64'000)), ElementsAre("0.000 s", "0.001 s", "0.002 s"));
}

TEST(TimelineAxis, HasTicksInItsSegmentsOnly)
{
    const QVector<TimelineAxis::Tick> ticks = broken().ticks();
    std::vector<double> places;
    for (const TimelineAxis::Tick &tick : ticks)
        places.push_back(tick.x);
    EXPECT_THAT(places, ElementsAre(10, 110, 160, 260, 360, 410, 510));
    const TimelineAxis odd({{second / 3, 3 * second, 0}}, 100.0 / second, 50, {0, 267}, true);
    EXPECT_EQ(odd.ticks().first().label.toStdString(), "1 s");
}

TEST(TimelineAxis, LeavesTheSpaceOfABreakToTheBreaksLabel)
{
    // The labels at both sides of a break would reach into it, and the first beyond the picture.
    EXPECT_THAT(labels(broken()), ElementsAre("", "", "", "10 s", "", "", "19 s"));
    EXPECT_THAT(labels(axisTo(second, 100)), Not(Contains("")));
}

TEST(TimelineAxis, LabelsATickThatHasRoomBesideTheLastLabel)
{
    // A label of nine characters is 61.4 px wide, and 8 px are between two.
    const auto labelsOf = [](double pxPerSecond) {
        const qint64 from = 1'000'000 * second;
        const double scale = pxPerSecond / second;
        return labels(TimelineAxis({{from, from + 3 * second, 0}}, scale, 50, {100, 400}, true));
    };
    EXPECT_THAT(labelsOf(69.5), ElementsAre("1000000 s", "1000001 s", "1000002 s", "1000003 s"));
    EXPECT_THAT(labelsOf(69.3), ElementsAre("1000000 s", "", "1000002 s", ""));
}

TEST(TimelineAxis, LabelsATickThatTouchesTheRoomOfTheLastLabel)
{
    // Ten characters are 68 px wide.
    const qint64 from = 10'000'000 * second;
    EXPECT_THAT(
        labels(TimelineAxis({{from, from + second, 0}}, 76.0 / second, 50, {100, 200}, true)),
        ElementsAre("10000000 s", "10000001 s"));
}

TEST(TimelineAxis, LetsALabelReachTwoPixelsIntoABreak)
{
    // 8192 µs are a pixel. "100 s" is 35 px wide, and its tick is before a break.
    const auto hasLabel = [](qint64 pxToBreak, qint64 less) {
        const qint64 tick = 100 * second;
        const qint64 end = tick + pxToBreak * 8192 / 2 - less;
        const TimelineAxis axis({{99 * second, end, 0}, {200 * second, 201 * second, 5 * second}},
                                1.0 / 8192, 50, {100, 1000}, true);
        return labels(axis).at(1) == "100 s";
    };
    EXPECT_TRUE(hasLabel(31, 0)) << "15.5 px, and 2 of the break";
    EXPECT_FALSE(hasLabel(31, 1));
}

TEST(TimelineAxis, KeepsTheLabelOfABreakFreeOnItsOtherSide)
{
    // A label that begins 2 px before the end of the break is there, one that begins sooner is not.
    const auto hasLabel = [](qint64 more) {
        const qint64 tick = 100 * second;
        const qint64 from = tick - 31 * 8192 / 2 - more;
        const TimelineAxis axis({{0, second, 0}, {from, tick + second, 5 * second}}, 1.0 / 8192, 50,
                                {100, 1000}, true);
        return labels(axis).at(labels(axis).size() - 2) == "100 s";
    };
    EXPECT_TRUE(hasLabel(0));
    EXPECT_FALSE(hasLabel(-8192));
}
