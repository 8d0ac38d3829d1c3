#include "SimulationReport.h"

#include <gmock/gmock.h>

#include <string>

namespace {

std::string progress(qint64 time, qint64 planned)
{
    return Vorn::Tools::simulationProgress(QStringLiteral("a.scenario"), time, planned)
        .toStdString();
}

} // namespace

TEST(SimulationProgress, ShowsTheTimeAndItsShareOfTheWhole)
{
    EXPECT_EQ(progress(0, 3'600'000), "0 of 3600 s (0 %), a.scenario");
    EXPECT_EQ(progress(1'832'999'999, 3'600'000), "1832 of 3600 s (50 %), a.scenario");
    EXPECT_EQ(progress(3'600'000'000, 3'600'000), "3600 of 3600 s (100 %), a.scenario");
    EXPECT_EQ(progress(100'000, 1'200), "0 of 2 s (8 %), a.scenario");
}

TEST(SimulationProgress, ShowsTheTimeAloneWhereTheWholeIsNotKnown)
{
    EXPECT_EQ(progress(4'000'000, 0), "4 s, a.scenario");
    EXPECT_EQ(progress(4'000'000, 3'999), "4 s, a.scenario");
}
