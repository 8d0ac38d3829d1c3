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

TEST(SessionFormat, HasANameForEachStepAndOutcome)
{
    using Step = DetectorStep::What;
    using Outcome = RecordOutcome::What;
    EXPECT_EQ(detectorStepName(Step::LongPressDue).toStdString(), "long-press-due");
    EXPECT_EQ(detectorStepName(Step::LongPressEnded).toStdString(), "long-press-ended");
    EXPECT_EQ(detectorStepName(Step::FirstKeyWithdrawn).toStdString(), "first-key-withdrawn");
    EXPECT_EQ(detectorStepName(Step::ChordReleased).toStdString(), "chord-released");
    EXPECT_EQ(detectorStepName(Step::Dropped).toStdString(), "dropped");
    EXPECT_EQ(detectorStepName(Step::Forgotten).toStdString(), "forgotten");
    EXPECT_EQ(outcomeName(Outcome::Published).toStdString(), "published");
    EXPECT_EQ(outcomeName(Outcome::Held).toStdString(), "held");
    EXPECT_EQ(outcomeName(Outcome::Chord).toStdString(), "chord");
    EXPECT_EQ(outcomeName(Outcome::Dropped).toStdString(), "dropped");
    EXPECT_EQ(outcomeName(Outcome::Unmapped).toStdString(), "unmapped");
    EXPECT_EQ(outcomeName(Outcome::Unread).toStdString(), "unread");
    EXPECT_EQ(outcomeName(Outcome::Open).toStdString(), "open");
    EXPECT_EQ(outcome("open"), Outcome::Open);
}
