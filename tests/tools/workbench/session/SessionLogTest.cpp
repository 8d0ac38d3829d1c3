#include "SessionLog.h"

#include "VirtualClock.h"

#include <gmock/gmock.h>

#include <vector>

using namespace Vorn::Workbench;

TEST(SessionLog, StampsEntriesWithTheTimeSinceItsStart)
{
    Vorn::Sim::VirtualClock clock;
    std::vector<SessionEntry> added;
    SessionLog log([&added](const SessionEntry &entry) { added.push_back(entry); });
    log.add(Remark{"first"});
    clock.advance(std::chrono::milliseconds(1500));
    log.add(IdentifierSelected{"a"});

    ASSERT_THAT(added, testing::SizeIs(2));
    EXPECT_EQ(added[0].time, 0);
    EXPECT_EQ(std::get<Remark>(added[0].what).text.toStdString(), "first");
    EXPECT_EQ(added[1].time, 1'500'000);
    EXPECT_EQ(log.wallClockAtStart(), Vorn::Sim::VirtualClock::DefaultStart * 1000);
    EXPECT_EQ(SessionLog::wallClock(), log.wallClockAtStart() + 1'500'000);
    EXPECT_EQ(std::get<IdentifierSelected>(added[1].what).identifier.toStdString(), "a");
}

TEST(SessionLog, PassesOnWhatItHeldWithItsOwnTimesAndInOrder)
{
    Vorn::Sim::VirtualClock clock;
    std::vector<SessionEntry> added;
    SessionLog log([&added](const SessionEntry &entry) { added.push_back(entry); });
    {
        const SessionHold outer(&log);
        log.add(Remark{"first"});
        clock.advance(std::chrono::milliseconds(10));
        {
            const SessionHold inner(&log);
            log.add(Remark{"second"});
        }
        EXPECT_THAT(added, testing::IsEmpty());
        clock.advance(std::chrono::milliseconds(10));
    }
    ASSERT_THAT(added, testing::SizeIs(2));
    EXPECT_EQ(added[0].time, 0);
    EXPECT_EQ(added[1].time, 10'000);
    EXPECT_EQ(std::get<Remark>(added[1].what).text.toStdString(), "second");
}

TEST(SessionLog, AddsWhatTheSinkAddsBehindWhatWaits)
{
    std::vector<std::string> added;
    SessionLog *adding = nullptr;
    SessionLog log([&](const SessionEntry &entry) {
        const std::string text = std::get<Remark>(entry.what).text.toStdString();
        added.push_back(text);
        if (text == "first")
            adding->add(Remark{"third"});
    });
    adding = &log;
    {
        const SessionHold hold(&log);
        log.add(Remark{"first"});
        log.add(Remark{"second"});
    }
    EXPECT_THAT(added, testing::ElementsAre("first", "second", "third"));
}
