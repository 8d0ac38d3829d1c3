#include "LogReads.h"

#include "ReadsFixture.h"

#include <iterator>

using namespace Vorn::Workbench;

namespace {

using LogReadsTest = ReadsFixture;

} // namespace

TEST_F(LogReadsTest, GoOnWithAReadThatASlotHeldUp)
{
    read(5);
    record(EV_KEY, KEY_A);
    record(EV_KEY, KEY_B);
    stored(KEY_A);
    read(6);
    record(EV_KEY, KEY_C);
    const LogReads::Cause inner = stored(KEY_C);
    EXPECT_EQ(inner.read, m_reads.last());
    EXPECT_EQ(inner.origin->descriptor(), 6);
    const LogReads::Cause outer = stored(KEY_B);
    EXPECT_EQ(outer.read, m_reads.last());
    EXPECT_EQ(outer.origin->descriptor(), 5);
    EXPECT_EQ(std::distance(m_reads.begin(), m_reads.end()), 1);
}

TEST_F(LogReadsTest, HaveNoRecordInHandUnlessItIsHeld)
{
    EXPECT_EQ(m_reads.hand(), nullptr);
    read(5);
    record(EV_KEY, KEY_A);
    const LogReads::Cause cause = stored(KEY_A);
    EXPECT_EQ(m_reads.hand(), nullptr);
    m_time.now = 7;
    m_reads.hold(cause, {});
    ASSERT_NE(m_reads.hand(), nullptr);
    EXPECT_EQ(m_reads.hand()->record, cause.record);
    EXPECT_EQ(m_reads.hand()->time, 7);
}

TEST_F(LogReadsTest, HaveInHandWhatTheInnermostReadHolds)
{
    read(5);
    record(EV_KEY, KEY_A);
    record(EV_KEY, KEY_B);
    stored(KEY_A);
    read(6);
    record(EV_KEY, KEY_C);
    const LogReads::Cause inner = stored(KEY_C);
    ASSERT_EQ(std::distance(m_reads.begin(), m_reads.end()), 2);
    m_reads.hold(inner, {});
    ASSERT_NE(m_reads.hand(), nullptr);
    EXPECT_EQ(m_reads.hand()->record, inner.record);
}

TEST_F(LogReadsTest, KnowWhoTakesAKeyThatTheLogHasNoRecordOf)
{
    m_reads.select(QStringLiteral("browse"));
    const LogReads::Cause cause = stored(KEY_A);
    EXPECT_EQ(cause.record, nullptr);
    EXPECT_EQ(cause.read->identifier.toStdString(), "browse");
    EXPECT_FALSE(cause.origin->descriptor());
    EXPECT_TRUE(cause.read->isBegun);
}

TEST_F(LogReadsTest, TakeBackARecordThatTheOtherListenerSeemedToHaveRead)
{
    for (int i = 0; i < 2; ++i) {
        record(EV_KEY, KEY_A);
        record(EV_SYN, SYN_REPORT, 0);
    }
    const LogRecordPtr first = stored(KEY_A).record;
    read(5);
    const LogReads::Cause again = stored(KEY_A);
    ASSERT_NE(again.record, nullptr);
    EXPECT_NE(again.record, first);
    EXPECT_EQ(again.read, m_reads.last());
    EXPECT_TRUE(again.read->isBegun);
}

TEST_F(LogReadsTest, ShowActivityFromTheFirstRecordOn)
{
    read(5);
    EXPECT_FALSE(m_reads.hasActivity());
    record(EV_KEY, KEY_A);
    EXPECT_TRUE(m_reads.hasActivity());
}
