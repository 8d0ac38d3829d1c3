#include "SessionTime.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

TEST(SessionTime, IsTruncatedToMilliseconds)
{
    EXPECT_EQ(sessionSeconds(0).toStdString(), "0.000");
    EXPECT_EQ(sessionSeconds(999'999).toStdString(), "0.999");
    EXPECT_EQ(sessionSeconds(12'402'000).toStdString(), "12.402");
    EXPECT_EQ(sessionSeconds(3'600'000'001).toStdString(), "3600.000");
    EXPECT_EQ(sessionSeconds(-1'500'000).toStdString(), "-1.500");
    EXPECT_EQ(sessionSeconds(-999).toStdString(), "0.000");
    EXPECT_EQ(sessionSeconds(-1000).toStdString(), "-0.001");
    EXPECT_EQ(sessionSeconds(-12'402'999).toStdString(), "-12.402");
}
