#include "SessionWords.h"

#include <linux/input.h>

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

TEST(SessionWords, NameTimesAndKeys)
{
    EXPECT_EQ(timeText(12'402'000).toStdString(), "12.402 s");
    EXPECT_EQ(joinedKeys({KEY_STOP}).toStdString(), "KEY_STOP");
    EXPECT_EQ(joinedKeys({KEY_STOP, KEY_PLAY}).toStdString(), "KEY_STOP + KEY_PLAY");
}
