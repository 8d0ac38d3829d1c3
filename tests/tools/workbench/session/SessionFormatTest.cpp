#include "SessionFormat.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

TEST(SessionFormat, ReadsTheNameOfEveryStepBack)
{
    using What = DetectorStep::What;
    for (const What step : {What::LongPressDue, What::LongPressEnded, What::FirstKeyWithdrawn,
                            What::ChordFound, What::ChordReleased, What::Dropped})
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
