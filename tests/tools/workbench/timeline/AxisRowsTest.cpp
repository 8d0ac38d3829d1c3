#include "AxisRows.h"

#include "LabelRows.h"

#include <gmock/gmock.h>

#include <limits>

using namespace Vorn::Workbench;

namespace {

using testing::SizeIs;

constexpr qint64 ms = 1000;

QVector<TimelineAxis> rowsOf(const QVector<qint64> &times, double left = 100)
{
    ActivitySpans activity;
    for (const qint64 time : times)
        activity.add(time);
    return axisRows({times.first(), times.last()}, activity.spans(), left);
}

std::vector<std::pair<qint64, qint64>> pairs(const ActivitySpans &activity)
{
    std::vector<std::pair<qint64, qint64>> pairs;
    for (const TimelineSpan &span : activity.spans())
        pairs.emplace_back(span.from / ms, span.to / ms);
    return pairs;
}

} // namespace

TEST(ActivitySpans, JoinsTimesThatAreCloseInAnyOrder)
{
    using testing::ElementsAre;
    using testing::Pair;
    ActivitySpans activity;
    for (const qint64 time : {0, 1500, 9000, 5000, 3000, 20'000, 7000})
        activity.add(time * ms);
    EXPECT_THAT(pairs(activity), ElementsAre(Pair(0, 9000), Pair(20'000, 20'000)));
    EXPECT_FALSE(activity.isNew(22'000 * ms));
    EXPECT_FALSE(activity.isNew(18'000 * ms));
    EXPECT_FALSE(activity.isNew(4'000 * ms));
    EXPECT_TRUE(activity.isNew(15'000 * ms));
    EXPECT_TRUE(activity.isNew(-3000 * ms));
}

TEST(AxisRows, KeepTheOrderOfTimes)
{
    const auto axes = rowsOf({0, 1000 * ms, 9000 * ms, 9500 * ms, 500'000 * ms});
    ASSERT_THAT(axes, SizeIs(1));
    const TimelineAxis &axis = axes.first();
    EXPECT_THAT(axis.breaks(), SizeIs(2));
    double last = axis.left() - 1;
    for (const qint64 time : {qint64(0), 500 * ms, 1000 * ms, 9000 * ms, 9500 * ms, 500'000 * ms}) {
        EXPECT_GT(axis.x(time), last);
        last = axis.x(time);
    }
    EXPECT_NEAR(last, axis.right(), 0.1);
    EXPECT_NEAR(axis.x(-5 * ms), axis.left(), 0.1);
    EXPECT_NEAR(axis.x(std::numeric_limits<qint64>::max()), axis.right(), 0.1);
}

TEST(AxisRows, LabelNoTwoTicksOnTopOfEachOther)
{
    QVector<qint64> activity;
    for (qint64 i = 0; i < 30; ++i)
        activity.append(i * i * 500 * ms);
    for (const TimelineAxis &axis : rowsOf(activity, 50)) {
        double free = 0;
        for (const TimelineAxis::Tick &tick : axis.ticks()) {
            if (tick.label.isEmpty())
                continue;
            const double half = LabelRows::width(tick.label) / 2;
            EXPECT_GE(tick.x - half, free);
            free = tick.x + half;
        }
        EXPECT_GT(free, 0);
    }
}

TEST(AxisRows, ShowEachMomentOfALongSessionInOneRow)
{
    QVector<qint64> activity;
    for (qint64 time = 0; time <= 60'000; time += 300)
        activity.append(time * ms);
    const auto axes = rowsOf(activity);
    ASSERT_THAT(axes, SizeIs(6));
    for (const qint64 time : activity) {
        int rows = 0;
        for (const TimelineAxis &axis : axes) {
            rows += axis.contains(time) ? 1 : 0;
            EXPECT_LE(axis.x(time), axis.right() + 1);
        }
        EXPECT_EQ(rows, 1) << time;
    }
    for (int i = 1; i < axes.size(); ++i)
        EXPECT_EQ(axes.at(i).from(), axes.at(i - 1).to());
    // 300 ms, the pace of someone who presses a key again and again, can be told apart.
    EXPECT_GT(axes.first().x(600 * ms) - axes.first().x(300 * ms), 30);
}

TEST(AxisRows, AreNotTooMany)
{
    QVector<qint64> sparse;
    for (qint64 i = 0; i < 20'000; ++i)
        sparse.append(i * 3000 * ms);
    const auto axes = rowsOf(sparse);
    EXPECT_LE(axes.size(), 25);
    int breaks = 0;
    for (const TimelineAxis &axis : axes) {
        breaks += static_cast<int>(axis.breaks().size());
        EXPECT_LE(axis.x(axis.to()), axis.right() + 1);
    }
    EXPECT_EQ(breaks, 19'999) << "each is in one of the rows";
}

TEST(AxisRows, ShowABarInEveryRowThatItReaches)
{
    QVector<qint64> activity;
    for (qint64 time = 0; time <= 30'000; time += 500)
        activity.append(time * ms);
    const auto axes = rowsOf(activity);
    ASSERT_GE(axes.size(), 2);
    const qint64 edge = axes.first().to();
    EXPECT_TRUE(axes.at(0).intersects(0, edge));
    EXPECT_FALSE(axes.at(1).intersects(0, edge));
    EXPECT_TRUE(axes.at(1).intersects(0, edge + 1));
    EXPECT_FALSE(axes.at(0).intersects(edge, edge + 1));
    EXPECT_TRUE(axes.at(1).intersects(edge, edge));
}

TEST(ActivitySpans, JoinTimesUpToTwoSecondsApart)
{
    using testing::ElementsAre;
    using testing::Pair;
    ActivitySpans activity;
    activity.add(10'000 * ms);
    EXPECT_FALSE(activity.isNew(12'000 * ms));
    EXPECT_TRUE(activity.isNew(12'000 * ms + 1));
    EXPECT_FALSE(activity.isNew(8000 * ms));
    EXPECT_TRUE(activity.isNew(8000 * ms - 1));
    activity.add(12'001 * ms);
    activity.add(7999 * ms);
    EXPECT_THAT(pairs(activity),
                ElementsAre(Pair(7999, 7999), Pair(10'000, 10'000), Pair(12'001, 12'001)));
    activity.add(10'001 * ms);
    EXPECT_THAT(pairs(activity), ElementsAre(Pair(7999, 7999), Pair(10'000, 12'001)));
    activity.add(8000 * ms);
    EXPECT_THAT(pairs(activity), ElementsAre(Pair(7999, 12'001)));
}

TEST(AxisRows, LeaveOutWhatIsIdleForMoreThanTwoSecondsWithAMarginOnEitherSide)
{
    EXPECT_THAT(rowsOf({0, 2000 * ms}).first().breaks(), SizeIs(0));
    const TimelineAxis axis = rowsOf({0, 2001 * ms}).first();
    ASSERT_THAT(axis.breaks(), SizeIs(1));
    const TimelineAxis::Break left = axis.breaks().first();
    EXPECT_EQ(left.duration, 1501 * ms);
    EXPECT_DOUBLE_EQ(left.to - left.from, 58);
    EXPECT_DOUBLE_EQ(axis.x(250 * ms), left.from);
    EXPECT_DOUBLE_EQ(axis.x(1751 * ms), left.to);
    EXPECT_EQ(axis.to(), 2001 * ms);
}

TEST(AxisRows, AreAsWideAsTheirTimeNeedsWithinLimits)
{
    const auto widthOf = [](const QVector<qint64> &times) {
        const auto axes = rowsOf(times, 40);
        EXPECT_THAT(axes, SizeIs(1));
        EXPECT_EQ(axes.first().left(), 40);
        EXPECT_DOUBLE_EQ(axes.first().x(axes.first().to()), axes.first().right());
        return axes.first().right() - axes.first().left();
    };
    EXPECT_DOUBLE_EQ(widthOf({0}), 720);
    EXPECT_DOUBLE_EQ(widthOf({0, 2000 * ms}), 720);
    EXPECT_DOUBLE_EQ(widthOf({0, 1500 * ms, 3000 * ms}), 780);
    EXPECT_DOUBLE_EQ(widthOf({0, 2000 * ms, 4000 * ms, 5000 * ms}), 1200);
    EXPECT_DOUBLE_EQ(widthOf({0, 2000 * ms, 4000 * ms, 6000 * ms, 8000 * ms, 10'000 * ms}), 1200);
}

TEST(AxisRows, BeginAtRoundTimes)
{
    QVector<qint64> times;
    for (qint64 time = 0; time <= 10'130; time += 1013)
        times.append(time * ms);
    const auto axes = rowsOf(times);
    ASSERT_THAT(axes, SizeIs(2));
    EXPECT_EQ(axes.at(1).from() % (100 * ms), 0);
    EXPECT_TRUE(axes.at(1).contains(10'130 * ms));
    EXPECT_FALSE(axes.at(0).contains(axes.at(0).to()));
    EXPECT_EQ(axes.at(1).right(), axes.at(0).right());
}

TEST(AxisRows, ShowOnlyWhatWasAskedFor)
{
    const QVector<TimelineSpan> activity{{0, 1000 * ms}, {5000 * ms, 20'000 * ms}};
    const auto axes = axisRows({6000 * ms, 8000 * ms}, activity, 0);
    ASSERT_THAT(axes, SizeIs(1));
    EXPECT_EQ(axes.first().from(), 6000 * ms);
    EXPECT_EQ(axes.first().to(), 8000 * ms);
    EXPECT_THAT(axes.first().breaks(), SizeIs(0));
    // What is before and after it does not keep an idle part from being left out.
    const TimelineAxis idle = axisRows({1500 * ms, 4500 * ms}, activity, 0).first();
    ASSERT_THAT(idle.breaks(), SizeIs(1));
    EXPECT_EQ(idle.breaks().first().duration, 2500 * ms);
    EXPECT_THAT(axisRows({1000 * ms, 5000 * ms}, activity, 0).first().breaks(), SizeIs(1));
}

TEST(AxisRows, LeaveOutTheEndOfAPartThatIsIdleForMoreThanTwoSeconds)
{
    const QVector<TimelineSpan> activity{{0, 1000 * ms}};
    const TimelineAxis whole = axisRows({0, 3000 * ms}, activity, 0).first();
    EXPECT_THAT(whole.breaks(), SizeIs(0));
    EXPECT_EQ(whole.to(), 3000 * ms);
    const TimelineAxis cut = axisRows({0, 3000 * ms + 1}, activity, 0).first();
    ASSERT_THAT(cut.breaks(), SizeIs(1));
    EXPECT_EQ(cut.breaks().first().duration, 1500 * ms + 1);
    EXPECT_EQ(cut.to(), 3000 * ms + 1);
}

TEST(AxisRows, LeaveOutTheStartOfAPartThatIsIdleForMoreThanTwoSeconds)
{
    const QVector<TimelineSpan> activity{{3000 * ms, 4000 * ms}};
    EXPECT_THAT(axisRows({1000 * ms, 4000 * ms}, activity, 0).first().breaks(), SizeIs(0));
    const TimelineAxis cut = axisRows({1000 * ms - 1, 4000 * ms}, activity, 0).first();
    ASSERT_THAT(cut.breaks(), SizeIs(1));
    EXPECT_EQ(cut.breaks().first().duration, 1500 * ms + 1);
    EXPECT_EQ(cut.from(), 1000 * ms - 1);
}

TEST(ActivitySpans, KeepTheEndOfTheStretchThatATimeIsBefore)
{
    using testing::ElementsAre;
    using testing::Pair;
    ActivitySpans activity;
    for (const qint64 time : {10'000, 11'000, 8500})
        activity.add(time * ms);
    EXPECT_THAT(pairs(activity), ElementsAre(Pair(8500, 11'000)));
    activity.add(9000 * ms);
    EXPECT_THAT(pairs(activity), ElementsAre(Pair(8500, 11'000)));
}

TEST(AxisRows, HaveBreaksOfFullWidthUnlessThoseWouldFillThem)
{
    const auto breakOf = [](int count) {
        QVector<qint64> times;
        for (qint64 second = 0; second < 20; ++second)
            times.append(second * 1000 * ms);
        for (qint64 i = 1; i <= count; ++i)
            times.append((20'000 + i * 10'000) * ms);
        const auto axes = rowsOf(times);
        EXPECT_GE(axes.size(), 2);
        for (const TimelineAxis &axis : axes) {
            if (!axis.breaks().isEmpty())
                return axis.breaks().first().to - axis.breaks().first().from;
        }
        return 0.0;
    };
    EXPECT_DOUBLE_EQ(breakOf(0), 0);
    EXPECT_DOUBLE_EQ(breakOf(1), 58);
    EXPECT_DOUBLE_EQ(breakOf(5), 58);
    // 24 rows at most, of which two fifths are breaks.
    EXPECT_DOUBLE_EQ(breakOf(400), 24 * 1200 * 0.4 / 400);
}

TEST(AxisRows, HoldAsManySegmentsAndBreaksAsFit)
{
    QVector<qint64> times;
    for (qint64 stretch = 0; stretch < 12; ++stretch) {
        for (qint64 second = 0; second < 7; ++second)
            times.append((stretch * 20 + second) * 1000 * ms);
    }
    const auto axes = rowsOf(times);
    ASSERT_THAT(axes, SizeIs(9));
    for (int i = 0; i < axes.size(); ++i) {
        const TimelineAxis &axis = axes.at(i);
        EXPECT_LE(axis.x(axis.to()), axis.right() + 0.5) << i;
        // What is left is too little for a break and a bit of what follows it, or for a round time.
        if (i + 1 < axes.size()) {
            EXPECT_GT(axis.x(axis.to()), axis.right() - 58 - 30) << i;
        }
    }
}
