#include "LongPressTiming.h"

#include "LaneTable.h"
#include "LibraryFacts.h"
#include "SessionEntries.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using namespace Vorn::Test;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr qint64 tick = tickMs * ms;

class LongPressTimingTest : public testing::Test
{
protected:
    const TimelineTimedSpan &span(int code) { return m_lanes.keyLane(front, code)->timed.last(); }

    /// Of a key's due marks.
    std::vector<qint64> dueTimes(int code)
    {
        std::vector<qint64> times;
        for (const TimelineMark &mark : m_lanes.keyLane(front, code)->marks) {
            EXPECT_EQ(mark.kind, TimelineMark::Kind::Due);
            times.push_back(mark.time);
        }
        return times;
    }

    LaneTable m_lanes;
    LongPressTiming m_timing{&m_lanes};
};

} // namespace

TEST_F(LongPressTimingTest, MarksALongPressThatWasReached)
{
    m_timing.start(front, KEY_A, 0, 1000 * ms);
    m_timing.cancel(front, KEY_A, 1000 * ms);
    EXPECT_THAT(dueTimes(KEY_A), ElementsAre(1000 * ms));
    EXPECT_EQ(span(KEY_A).from, 0);
    EXPECT_EQ(span(KEY_A).to, 1000 * ms);
}

TEST_F(LongPressTimingTest, MarksNoneThatWasCalledOffOrPutOff)
{
    m_timing.start(front, KEY_A, 0, 1000 * ms);
    m_timing.cancel(front, KEY_A, 999 * ms);
    m_timing.start(front, KEY_B, 1000 * ms, 1500 * ms);
    m_timing.start(front, KEY_B, 1200 * ms, 1700 * ms);
    m_timing.finish(5000 * ms);
    EXPECT_THAT(dueTimes(KEY_A), IsEmpty());
    EXPECT_THAT(dueTimes(KEY_B), ElementsAre(1700 * ms));
    EXPECT_THAT(m_lanes.keyLane(front, KEY_B)->timed, SizeIs(1)) << "the key stayed timed";
}

TEST_F(LongPressTimingTest, EndsWithTheSession)
{
    m_timing.start(front, KEY_A, 0, 1000 * ms);
    m_timing.start(front, KEY_B, 0, 1001 * ms);
    m_timing.finish(1000 * ms);
    EXPECT_THAT(dueTimes(KEY_A), ElementsAre(1000 * ms));
    EXPECT_THAT(dueTimes(KEY_B), IsEmpty());
    EXPECT_EQ(span(KEY_A).to, 1000 * ms);
}

TEST_F(LongPressTimingTest, IgnoresTheEndOfAKeyThatIsNotTimed)
{
    m_timing.stop(front, KEY_A, 100 * ms);
    m_timing.cancel(front, KEY_A, 200 * ms);
    m_timing.finish(300 * ms);
    EXPECT_THAT(m_lanes.lanes(), IsEmpty());
}

TEST_F(LongPressTimingTest, SharesTheTimerOfADevice)
{
    m_timing.start(front, KEY_A, 110 * ms, 9000 * ms);
    m_timing.start(front, KEY_B, 130 * ms, 9000 * ms);
    m_timing.start(keyboard, KEY_A, 130 * ms, 9000 * ms);
    EXPECT_EQ(span(KEY_B).timerStart, 110 * ms);
    EXPECT_EQ(m_lanes.keyLane(keyboard, KEY_A)->timed.last().timerStart, 130 * ms);
}

TEST_F(LongPressTimingTest, KeepsTheTimerRunningUntilTheTickAfterTheLastKey)
{
    m_timing.start(front, KEY_A, 0, 9000 * ms);
    m_timing.cancel(front, KEY_A, 2 * tick + 1);
    m_timing.start(front, KEY_A, 3 * tick, 9000 * ms);
    EXPECT_EQ(span(KEY_A).timerStart, 0);
    m_timing.cancel(front, KEY_A, 3 * tick + 1);
    m_timing.start(front, KEY_A, 4 * tick + 1, 9000 * ms);
    EXPECT_EQ(span(KEY_A).timerStart, 4 * tick + 1);
}
