#include "LogEvents.h"

#include "ReadsFixture.h"

using namespace Vorn::Workbench;

namespace {

class LogEventsTest : public ReadsFixture
{
protected:
    void event(InputEvent::State state)
    {
        m_events.take(Said::EventOnBus{InputEvent::Stop, state});
    }

    LogEvents m_events{&m_time,  &m_coverage, &m_origins, &m_detectors,
                       &m_reads, &m_queue,    &m_outcomes};
};

} // namespace

TEST_F(LogEventsTest, ShowWhichReadIsInProgress)
{
    read(5);
    record(EV_SW, SW_LINEIN_INSERT);
    EXPECT_FALSE(m_reads.last()->isBegun);
    event(InputEvent::SwitchEnabled);
    EXPECT_TRUE(m_reads.last()->isBegun);
    read(6);
    record(EV_KEY, KEY_A);
    EXPECT_FALSE(m_reads.last()->isBegun);
    event(InputEvent::KeyPressed);
    EXPECT_TRUE(m_reads.last()->isBegun);
}

TEST_F(LogEventsTest, AreTheLastLineAboutWhatIsInHand)
{
    read(5);
    record(EV_KEY, KEY_A);
    LogHand hand;
    hand.value = 1;
    m_reads.hold(stored(KEY_A), hand);
    m_time.now = 7;
    event(InputEvent::KeyPressed);
    ASSERT_NE(m_reads.hand(), nullptr);
    EXPECT_THAT(m_reads.hand()->events, testing::ElementsAre(QStringLiteral("Stop KeyPressed")));
    EXPECT_EQ(m_reads.hand()->time, 7);
}

TEST_F(LogEventsTest, OfAReportAreOnTheBusInTheNextLine)
{
    const Said::EventOnBus bus{InputEvent::Stop, InputEvent::KeyPressed};
    EXPECT_FALSE(m_events.continuesReport(bus));
    m_events.take(
        Said::EventReported{QStringLiteral("panel"), InputEvent::Stop, InputEvent::KeyPressed});
    EXPECT_TRUE(m_events.continuesReport(bus));
    EXPECT_FALSE(m_events.continuesReport(Said::EventOnBus{InputEvent::Stop}));
    EXPECT_FALSE(m_events.hasActivity());
    m_events.finishReport();
    EXPECT_TRUE(m_events.hasActivity());
    EXPECT_FALSE(m_events.continuesReport(bus));
}
