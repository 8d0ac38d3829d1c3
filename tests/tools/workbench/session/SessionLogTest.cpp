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
