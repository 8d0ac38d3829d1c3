#include "UsualCommands.h"

#include "CommandNames.h"
#include "EventNames.h"

#include <gmock/gmock.h>

#include <linux/input-event-codes.h>

#include <string>

using namespace Vorn;
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

TEST(UsualCommands, AreTheSameForEveryone)
{
    std::string all;
    for (int code = 0; code <= KEY_MAX; ++code) {
        if (const auto command = usualKeyCommand(code))
            all += keyName(code).mid(4).toStdString() + ' ' + commandName(*command).toStdString()
                + '\n';
    }
    EXPECT_EQ(all, R"(ESC Cancel
1 Number1
2 Number2
3 Number3
4 Number4
5 Number5
6 Number6
7 Number7
8 Number8
9 Number9
0 Number0
BACKSPACE Backspace
Q CharQ
W CharW
E CharE
R CharR
T CharT
Y CharY
U CharU
I CharI
O CharO
P CharP
ENTER Confirm
A CharA
S CharS
D CharD
F CharF
G CharG
H CharH
J CharJ
K CharK
L CharL
Z CharZ
X CharX
C CharC
V CharV
B CharB
N CharN
M CharM
SPACE CharSpace
F3 Search
HOME JumpHome
UP CursorUp
PAGEUP CursorPageUp
LEFT CursorLeft
RIGHT CursorRight
DOWN CursorDown
PAGEDOWN CursorPageDown
DELETE Delete
MUTE Mute
VOLUMEDOWN VolumeDown
VOLUMEUP VolumeUp
POWER Power
PAUSE Pause
STOP Stop
MENU Context
SETUP JumpSettings
SLEEP Sleep
BACK Cancel
NEXTSONG Next
PLAYPAUSE StartPlay
PREVIOUSSONG Previous
STOPCD Stop
REWIND PlaySpeedDown
PHONE AnswerCall
CONFIG JumpSettings
HOMEPAGE JumpHome
EXIT Cancel
PLAYCD StartPlay
PAUSECD Pause
PLAY StartPlay
FASTFORWARD PlaySpeedUp
SEARCH Search
CANCEL Cancel
BLUETOOTH Bluetooth
MICMUTE MicMute
OK Confirm
SELECT Confirm
INFO Info
FAVORITES JumpFavorites
NEXT Next
SHUFFLE Shuffle
PREVIOUS Previous
CONTEXT_MENU Context
MEDIA_REPEAT Repeat
WPS_BUTTON WPS
)");
}

TEST(UsualCommands, OfSwitchesAreThoseOfTheJacks)
{
    EXPECT_EQ(usualSwitchCommand(SW_LINEOUT_INSERT), InputEvent::SWLineOut);
    EXPECT_EQ(usualSwitchCommand(SW_HEADPHONE_INSERT), InputEvent::SWLineOut);
    EXPECT_EQ(usualSwitchCommand(SW_MICROPHONE_INSERT), InputEvent::SWMicIn);
}
