#include "SimulationReport.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;

std::string progress(qint64 time, qint64 planned)
{
    return Vorn::Tools::simulationProgress(QStringLiteral("a.scenario"), time, planned)
        .toStdString();
}

/// The lines of a failure in a file.
std::vector<std::string> failure(const char *file, const QString &expected, const QString &found)
{
    std::vector<std::string> lines;
    for (const QString &line : Vorn::Tools::failureLines({file, 5, expected, false, found}))
        lines.push_back(line.toStdString());
    return lines;
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

TEST(SimulationFailure, IsOneLineIfItFits)
{
    EXPECT_THAT(failure("a.scenario", "expect  Info KeyReleased", "nothing"),
                ElementsAre("a.scenario:5: expected Info KeyReleased, found nothing"));
    EXPECT_THAT(failure("a.scenario", "expect nothing more at the end", QString(26, 'x')),
                ElementsAre("a.scenario:5: expected nothing more at the end, found "
                            "xxxxxxxxxxxxxxxxxxxxxxxxxx"));
}

TEST(SimulationFailure, GoesOnInFurtherLines)
{
    EXPECT_THAT(failure("a.scenario", "expect nothing more at the end", QString(27, 'x')),
                ElementsAre("a.scenario:5: expected nothing more at the end,",
                            "    found xxxxxxxxxxxxxxxxxxxxxxxxxxx"));
    const std::string path(90, 'p');
    EXPECT_THAT(failure(path.c_str(), "expect Info KeyReleased", "nothing"),
                ElementsAre(path + ":5:", "    expected Info KeyReleased,", "    found nothing"));
    EXPECT_THAT(
        failure("a", "expect Info KeyReleased from \"" + QString(80, 'n') + "\"", "nothing"),
        ElementsAre("a:5:", "    expected Info KeyReleased from", "    \"" + std::string(75, 'n'),
                    "    nnnnn\",", "    found nothing"));
}

TEST(SimulationFailure, KeepsEscapeSequencesOfNamesOutOfTheTerminal)
{
    EXPECT_THAT(
        failure("a", "expect nothing", "Info KeyPressed from \"evil\x1b[2J\""),
        ElementsAre("a:5: expected nothing, found Info KeyPressed from \"evil\\u001b[2J\""));
}
