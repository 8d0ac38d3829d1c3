#include "Playback.h"

#include "IdleBench.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace Vorn::Workbench;
using testing::ElementsAre;

namespace {

/// Keeps what is sent, "3: 30 1, 0 0" for two records to event3.
class SendingBench : public IdleBench
{
public:
    void send(int node, const QVector<RecordedEvent> &records, qint64 offset) override
    {
        EXPECT_EQ(offset, 0);
        QStringList texts;
        for (const RecordedEvent &record : records)
            texts += QStringLiteral("%1 %2").arg(record.code).arg(record.value);
        m_sent.push_back(std::to_string(node) + ": " + texts.join(", ").toStdString());
    }

    std::vector<std::string> m_sent;
};

RecordedEvent event(qint64 ms, int code, int value)
{
    return {ms * 1000, EV_KEY, code, value};
}

RecordedEvent synchronisation(qint64 ms)
{
    return {ms * 1000, EV_SYN, SYN_REPORT, 0};
}

} // namespace

TEST(Playback, SendsAPacketAtATime)
{
    SendingBench bench;
    Playback playback(&bench);
    playback.add(3,
                 {event(10, 30, 1), event(10, 31, 1), synchronisation(10), event(10, 30, 0),
                  synchronisation(10), event(250, 31, 0), synchronisation(250)},
                 1000);
    EXPECT_EQ(playback.end(), 1250);
    EXPECT_EQ(playback.nextDue(), 1010);
    playback.sendNext();
    EXPECT_THAT(bench.m_sent, ElementsAre("3: 30 1, 31 1, 0 0"));
    EXPECT_EQ(playback.nextDue(), 1010);
    playback.sendNext();
    EXPECT_EQ(bench.m_sent.back(), "3: 30 0, 0 0");
    EXPECT_EQ(playback.nextDue(), 1250);
    EXPECT_EQ(playback.end(), 1250);
    playback.sendNext();
    EXPECT_EQ(bench.m_sent.back(), "3: 31 0, 0 0");
    EXPECT_EQ(playback.nextDue(), std::nullopt);
    EXPECT_EQ(playback.end(), std::nullopt);
    playback.sendNext();
    EXPECT_EQ(bench.m_sent.size(), 3U);
}

TEST(Playback, EndsAPacketWithoutAnEndWhereTheTimeChanges)
{
    SendingBench bench;
    Playback playback(&bench);
    playback.add(0, {event(0, 30, 1), event(0, 31, 1), event(1, 32, 1)}, 0);
    playback.sendNext();
    EXPECT_THAT(bench.m_sent, ElementsAre("0: 30 1, 31 1"));
    EXPECT_EQ(playback.nextDue(), 1);
    playback.sendNext();
    EXPECT_EQ(bench.m_sent.back(), "0: 32 1");
}

TEST(Playback, KnowsTheEndOfAPacketFromOtherRecordsWithTheNumberZero)
{
    SendingBench bench;
    Playback playback(&bench);
    playback.add(0, {{0, EV_SYN, SYN_DROPPED, 0}, {0, EV_SW, SW_LID, 1}, synchronisation(0)}, 0);
    playback.sendNext();
    EXPECT_THAT(bench.m_sent, ElementsAre("0: 3 0, 0 1, 0 0"));
}

TEST(Playback, SendsWhatIsDueFirstAndOfTheSameTimeWhatWasAddedFirst)
{
    SendingBench bench;
    Playback playback(&bench);
    playback.add(0, {event(20, 30, 1), synchronisation(20)}, 0);
    playback.add(1, {event(10, 31, 1), synchronisation(10), event(20, 31, 0)}, 0);
    playback.add(2, {}, 0);
    EXPECT_EQ(playback.nextDue(), 10);
    EXPECT_EQ(playback.end(), 20);
    for (int i = 0; i < 3; ++i)
        playback.sendNext();
    EXPECT_THAT(bench.m_sent, ElementsAre("1: 31 1, 0 0", "0: 30 1, 0 0", "1: 31 0"));
}

TEST(Playback, LastsUntilTheLatestOfSeveralRecordings)
{
    SendingBench bench;
    Playback playback(&bench);
    playback.add(0, {event(0, 30, 1), event(500, 30, 0)}, 100);
    playback.add(1, {event(0, 30, 1), event(300, 30, 0)}, 100);
    EXPECT_EQ(playback.end(), 600);
}

TEST(Playback, TakesATimeThatGoesBackForTheOneBefore)
{
    SendingBench bench;
    Playback playback(&bench);
    const QVector<RecordedEvent> events{event(-5, 30, 1), synchronisation(-5), event(40, 30, 0),
                                        synchronisation(40), event(20, 31, 1)};
    EXPECT_EQ(playbackDuration(events), 40);
    EXPECT_EQ(playbackDuration({}), 0);
    playback.add(0, events, 0);
    EXPECT_EQ(playback.nextDue(), 0);
    playback.sendNext();
    EXPECT_EQ(playback.nextDue(), 40);
    playback.sendNext();
    EXPECT_EQ(playback.nextDue(), 40);
}
