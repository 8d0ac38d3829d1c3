#include "PlannedDuration.h"

#include "ScenarioFiles.h"

using namespace Vorn::Workbench;

namespace {

class PlannedDuration : public ScenarioFiles
{
protected:
    qint64 of(const QByteArray &steps) const
    {
        write("up.evemu",
              "E: 0.000000 0000 0000 0000\n"
              "E: 2.500000 0001 0073 0001\nE: 2.500000 0000 0000 0000\n"
              "E: 2.000000 0001 0073 0000\nE: 2.000000 0000 0000 0000\n");
        LoadOptions options;
        options.profile = path("keys.toml");
        return plannedDuration(
            loadScenario(write("a.scenario", "device panel\n" + steps), options));
    }
};

} // namespace

TEST_F(PlannedDuration, IsTheSumOfAllWaits)
{
    EXPECT_EQ(of(""), 0);
    EXPECT_EQ(of("panel hold KEY_INFO for 2s\nwait 1h\nexpect nothing for 5s\n"), 3'607'000);
}

TEST_F(PlannedDuration, CountsTheTimeOfAnEventFromTheLastAction)
{
    EXPECT_EQ(of("wait 1s\npanel press KEY_INFO\nwait 300ms\n"
                 "expect Info KeyLongPress after 700ms..750ms\n"),
              1'700);
    EXPECT_EQ(of("panel hold KEY_INFO for 3s\nexpect Info KeyLongPress after 700ms\n"), 3'000);
    EXPECT_EQ(of("panel press KEY_INFO\nexpect Info KeyLongPress within 5s\n"), 0)
        << "at least that long";
}

TEST_F(PlannedDuration, GoesOnUntilARecordingEnds)
{
    EXPECT_EQ(of("wait 1s\nplay \"up.evemu\" on panel\nwait 1s\n"), 3'500);
    EXPECT_EQ(of("play \"up.evemu\" on panel\nwait end\nwait 1s\n"), 3'500);
    EXPECT_EQ(of("play \"up.evemu\" on panel\nwait 9s\n"), 9'000);
}
