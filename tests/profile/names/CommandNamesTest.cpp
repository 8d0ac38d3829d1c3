#include "CommandNames.h"

#include <gmock/gmock.h>

using namespace Vorn;

TEST(CommandNames, AreThoseOfTheLibrary)
{
    EXPECT_EQ(commandNames().size(), 152);
    for (const QString &name : commandNames())
        EXPECT_EQ(commandName(*command(name)).toStdString(), name.toStdString());
    EXPECT_EQ(command("CharMore"), InputEvent::CharMore);
}

TEST(CommandNames, RefuseEverythingElse)
{
    for (const char *text : {"", "volumeup", "InputEvent::Stop", "16"})
        EXPECT_EQ(command(text), std::nullopt) << text;
    EXPECT_EQ(command(QString::fromLatin1("Stop\0", 5)), std::nullopt);
}

TEST(CommandNames, KnowWhichCommandsAreTyped)
{
    EXPECT_TRUE(isCharacter(InputEvent::CharSpace));
    EXPECT_TRUE(isCharacter(InputEvent::Number0));
    EXPECT_TRUE(isCharacter(InputEvent::CharTilde));
    EXPECT_FALSE(isCharacter(InputEvent::Backspace));
    EXPECT_FALSE(isCharacter(static_cast<InputEvent::Command>(1031)));
    EXPECT_FALSE(isCharacter(static_cast<InputEvent::Command>(1127)));
}

TEST(StateNames, AreReadBack)
{
    EXPECT_EQ(stateNames().size(), 5);
    for (const QString &name : stateNames())
        EXPECT_EQ(stateName(*state(name)).toStdString(), name.toStdString());
    EXPECT_EQ(state("NoState"), std::nullopt);
    EXPECT_EQ(stateName(InputEvent::NoState).toStdString(), "NoState");
}

TEST(CommandNames, HaveAWordForEachState)
{
    EXPECT_EQ(stateWord(InputEvent::KeyPressed).toStdString(), "press");
    EXPECT_EQ(stateWord(InputEvent::KeyReleased).toStdString(), "release");
    EXPECT_EQ(stateWord(InputEvent::KeyLongPress).toStdString(), "long press");
    EXPECT_EQ(stateWord(InputEvent::SwitchEnabled).toStdString(), "on");
    EXPECT_EQ(stateWord(InputEvent::SwitchDisabled).toStdString(), "off");
    EXPECT_EQ(stateWord(InputEvent::NoState), stateName(InputEvent::NoState));
}
