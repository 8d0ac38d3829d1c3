#include "SessionFormat.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

TEST(SessionFormat, ReadsTheNameOfEveryStepBack)
{
    using What = DetectorStep::What;
    for (const What step : {What::LongPressDue, What::LongPressEnded, What::FirstKeyWithdrawn,
                            What::ChordFound, What::ChordReleased, What::Dropped, What::Forgotten})
    {
        const QString name = detectorStepName(step);
        EXPECT_FALSE(name.isEmpty());
        EXPECT_EQ(detectorStep(name), step) << name.toStdString();
    }
    EXPECT_EQ(detectorStepName(What::ChordFound).toStdString(), "chord-found");
}

TEST(SessionFormat, KnowsNoOtherSteps)
{
    EXPECT_EQ(detectorStep("moon"), std::nullopt);
    EXPECT_EQ(detectorStep({}), std::nullopt);
}

TEST(SessionFormat, ReadsTheNameOfEveryOutcomeBack)
{
    using What = RecordOutcome::What;
    for (const What what : {What::Published, What::Held, What::Chord, What::Dropped, What::Unmapped,
                            What::Unread, What::NotTaken})
    {
        const QString name = outcomeName(what);
        EXPECT_FALSE(name.isEmpty());
        EXPECT_EQ(outcome(name), what) << name.toStdString();
    }
    EXPECT_EQ(outcomeName(What::NotTaken).toStdString(), "not-taken");
    EXPECT_EQ(outcome("moon"), std::nullopt);
}
