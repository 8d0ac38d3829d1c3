#include "PlaybackClock.h"

#include "IdleBench.h"
#include "Playback.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Notes when it stops and when it is sent a packet.
class NotingBench : public IdleBench
{
public:
    qint64 now() const override { return m_now; }
    void settle() override { ++m_settled; }
    void runUntil(qint64 end) override
    {
        m_now = end;
        m_notes.push_back("at " + std::to_string(m_now));
    }
    void runUntil(qint64 end, const Condition &condition) override
    {
        while (m_now < end && !condition())
            ++m_now;
        m_notes.push_back("at " + std::to_string(m_now));
    }
    void send(int, const QVector<RecordedEvent> &records, qint64) override
    {
        m_notes.push_back("code " + std::to_string(records.first().code));
    }

    qint64 m_now = 0;
    int m_settled = 0;
    std::vector<std::string> m_notes;
};

class PlaybackClockTest : public testing::Test
{
protected:
    void add(const QVector<qint64> &times)
    {
        QVector<RecordedEvent> events;
        int code = 0;
        for (const qint64 time : times)
            events.append({time * 1000, EV_KEY, code++, 1});
        m_playback.add(0, events, 0);
    }

    NotingBench m_bench;
    Playback m_playback{&m_bench};
    bool m_isInterrupted = false;
    PlaybackClock m_clock{&m_bench, &m_playback, [this] { return m_isInterrupted; }};
};

} // namespace

TEST_F(PlaybackClockTest, SendsEachPacketWhenItIsDue)
{
    add({0, 300, 1000, 1001});
    m_clock.runUntil(1000);
    EXPECT_THAT(m_bench.m_notes, ElementsAre("code 0", "at 300", "code 1", "at 1000", "code 2"));
    EXPECT_EQ(m_clock.now(), 1000);
    EXPECT_EQ(m_bench.m_settled, 1 + 3) << "at the start and after each packet";
}

TEST_F(PlaybackClockTest, SendsWhatIsDueAlready)
{
    m_bench.m_now = 500;
    add({100, 500, 501});
    m_clock.settle();
    EXPECT_THAT(m_bench.m_notes, ElementsAre("code 0", "code 1"));
}

TEST_F(PlaybackClockTest, LooksForAnInterruptionEveryTenMinutes)
{
    constexpr qint64 minute = 60'000;
    m_clock.runUntil(25 * minute);
    EXPECT_THAT(m_bench.m_notes, ElementsAre("at 600000", "at 1200000", "at 1500000"));
}

TEST_F(PlaybackClockTest, DoesNothingMoreOnceItIsInterrupted)
{
    add({0, 300});
    m_isInterrupted = true;
    m_clock.runUntil(1000);
    m_clock.runUntil(1000, [] { return false; });
    EXPECT_THAT(m_bench.m_notes, IsEmpty());
    EXPECT_EQ(m_clock.now(), 0);
}

TEST_F(PlaybackClockTest, StopsWhereTheConditionHolds)
{
    add({300, 600});
    m_clock.runUntil(1000, [this] { return m_bench.m_now >= 450; });
    EXPECT_THAT(m_bench.m_notes, ElementsAre("at 300", "code 0", "at 450"));
    m_clock.runUntil(1000, [] { return true; });
    EXPECT_EQ(m_clock.now(), 450);
    m_clock.runUntil(1000, [] { return false; });
    EXPECT_EQ(m_clock.now(), 1000);
}

TEST_F(PlaybackClockTest, LeavesAPacketToTheCallerWhereTheConditionHoldsInTime)
{
    add({300});
    m_clock.runUntil(1000, [this] { return m_bench.m_now >= 300; });
    EXPECT_THAT(m_bench.m_notes, ElementsAre("at 300"));
    m_clock.settle();
    EXPECT_THAT(m_bench.m_notes, ElementsAre("at 300", "code 0"));
}
