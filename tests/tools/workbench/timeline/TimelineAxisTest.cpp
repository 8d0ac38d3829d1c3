#include "TimelineAxis.h"

#include "LabelRows.h"

#include <gmock/gmock.h>

#include <limits>

using namespace Vorn::Workbench;

namespace {

using testing::SizeIs;

constexpr qint64 ms = 1000;

} // namespace

TEST(TimelineAxis, KeepsTheOrderOfTimes)
{
    const QVector<qint64> activity{0, 1000 * ms, 9000 * ms, 9500 * ms, 500'000 * ms};
    const TimelineAxis axis(0, 500'000 * ms, activity, 100);
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

TEST(TimelineAxis, LabelsNoTwoTicksOnTopOfEachOther)
{
    QVector<qint64> activity;
    for (qint64 i = 0; i < 30; ++i)
        activity.append(i * i * 500 * ms);
    const TimelineAxis axis(0, activity.last(), activity, 50);
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

TEST(TimelineAxis, FindsTheNextTimeThatIsNotLeftOut)
{
    const TimelineAxis axis(0, 10'000 * ms, {0, 10'000 * ms}, 0);
    EXPECT_EQ(axis.firstShown(100 * ms), 100 * ms);
    EXPECT_EQ(axis.firstShown(5000 * ms), 9750 * ms);
    EXPECT_EQ(axis.firstShown(9800 * ms), 9800 * ms);
    EXPECT_EQ(axis.firstShown(20'000 * ms), 20'000 * ms);
}
