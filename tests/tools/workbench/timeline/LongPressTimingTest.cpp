#include "LongPressTiming.h"

#include "SessionEntries.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using namespace Vorn::Test;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class LongPressTimingTest : public testing::Test
{
protected:
    std::vector<std::pair<int, qint64>> m_due; ///< code and time
    std::vector<std::pair<qint64, qint64>> m_timed;
    LongPressTiming m_timing{
        {[this](const QString &, int, qint64 from, qint64 to) { m_timed.emplace_back(from, to); },
         [this](const QString &, int code, qint64 due) { m_due.emplace_back(code, due); }}};
};

} // namespace

TEST_F(LongPressTimingTest, ReportsALongPressThatWasReached)
{
    m_timing.start(front, KEY_A, 0, 1000 * ms);
    m_timing.end(front, KEY_A, 1000 * ms);
    EXPECT_THAT(m_due, ElementsAre(Pair(KEY_A, 1000 * ms)));
    EXPECT_THAT(m_timed, ElementsAre(Pair(0, 1000 * ms)));
}

TEST_F(LongPressTimingTest, ReportsNoneThatWasCalledOffOrPutOff)
{
    m_timing.start(front, KEY_A, 0, 1000 * ms);
    m_timing.end(front, KEY_A, 999 * ms);
    m_timing.start(front, KEY_B, 1000 * ms, 1500 * ms);
    m_timing.start(front, KEY_B, 1200 * ms, 1700 * ms);
    m_timing.finish(5000 * ms);
    EXPECT_THAT(m_due, ElementsAre(Pair(KEY_B, 1700 * ms)));
    EXPECT_THAT(m_timed, ElementsAre(Pair(0, 999 * ms), Pair(1000 * ms, 5000 * ms)))
        << "the key stayed timed";
}

TEST_F(LongPressTimingTest, ReportsEachOfARepeatingLongPressOnce)
{
    m_timing.start(front, KEY_A, 0, 700 * ms);
    m_timing.start(front, KEY_A, 720 * ms, 1300 * ms);
    m_timing.start(front, KEY_A, 1320 * ms, 1300 * ms);
    m_timing.end(front, KEY_A, 1400 * ms);
    EXPECT_THAT(m_due, ElementsAre(Pair(KEY_A, 700 * ms), Pair(KEY_A, 1300 * ms)));
    EXPECT_THAT(m_timed, ElementsAre(Pair(0, 1400 * ms)));
}

TEST_F(LongPressTimingTest, EndsWithTheSession)
{
    m_timing.start(front, KEY_A, 0, 1000 * ms);
    m_timing.start(front, KEY_B, 0, 1001 * ms);
    m_timing.finish(1000 * ms);
    EXPECT_THAT(m_due, ElementsAre(Pair(KEY_A, 1000 * ms)));
    EXPECT_THAT(m_timed, ElementsAre(Pair(0, 1000 * ms), Pair(0, 1000 * ms)));
}

TEST_F(LongPressTimingTest, EndsWithTheDevice)
{
    m_timing.start(front, KEY_A, 0, 1000 * ms);
    m_timing.start(keyboard, KEY_A, 0, 1000 * ms);
    m_timing.endAll(front, 400 * ms);
    EXPECT_THAT(m_timed, ElementsAre(Pair(0, 400 * ms)));
}

TEST_F(LongPressTimingTest, IgnoresTheEndOfAKeyThatIsNotTimed)
{
    m_timing.end(front, KEY_A, 200 * ms);
    m_timing.finish(300 * ms);
    EXPECT_THAT(m_timed, IsEmpty());
    EXPECT_THAT(m_due, IsEmpty());
}
