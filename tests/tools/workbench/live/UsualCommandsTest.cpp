#include "UsualCommands.h"

#include <gmock/gmock.h>

#include <linux/input-event-codes.h>

using namespace Vorn::Workbench;

TEST(UsualCommands, AreProposedWhereThereIsOne)
{
    EXPECT_EQ(usualKeyCommand(KEY_VOLUMEUP), InputEvent::VolumeUp);
    EXPECT_EQ(usualKeyCommand(KEY_A), InputEvent::CharA);
    EXPECT_EQ(usualKeyCommand(KEY_7), InputEvent::Number7);
    EXPECT_EQ(usualKeyCommand(KEY_F12), std::nullopt);
    EXPECT_EQ(usualSwitchCommand(SW_LINEIN_INSERT), InputEvent::SWLineIn);
    EXPECT_EQ(usualSwitchCommand(SW_LID), std::nullopt);
}
