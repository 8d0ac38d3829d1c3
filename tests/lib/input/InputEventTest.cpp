#include "Input.h"
#include "QtDifferences.h"

#include <QMetaEnum>

#include <gmock/gmock.h>

#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

using Bus = InputEvent::Bus;

// Deliberately separate from the declaration: registrations, applications and log filters rely on
// these numbers and spellings.
const std::vector<std::string> lowNames = {"None",
                                           "Confirm",
                                           "Cancel",
                                           "CursorLeft",
                                           "CursorRight",
                                           "CursorUp",
                                           "CursorDown",
                                           "CursorPageUp",
                                           "CursorPageDown",
                                           "StartPlay",
                                           "Pause",
                                           "Stop",
                                           "Previous",
                                           "Next",
                                           "Repeat",
                                           "Shuffle",
                                           "VolumeUp",
                                           "VolumeDown",
                                           "Mute",
                                           "PlaySpeedUp",
                                           "PlaySpeedDown",
                                           "PlayView",
                                           "Power",
                                           "Sleep",
                                           "LikeIt",
                                           "DislikeIt",
                                           "JumpHome",
                                           "JumpSettings",
                                           "JumpFavorites",
                                           "JumpStorage",
                                           "JumpVTuner",
                                           "JumpUPnP",
                                           "Info",
                                           "Search",
                                           "Context",
                                           "ContainerInfo",
                                           "Submit",
                                           "WPS",
                                           "Bluetooth",
                                           "Default",
                                           "SWLineIn",
                                           "SWLineOut",
                                           "SWMicIn",
                                           "MicMute",
                                           "FactoryReset",
                                           "FactoryResetDelayed",
                                           "PushToTalk",
                                           "Preset0",
                                           "DisconnectBluetoothAudioDevices",
                                           "RemoveBluetoothAudioDevices",
                                           "RedialLastCall",
                                           "AnswerCall",
                                           "HangupCall",
                                           "RejectCall",
                                           "HangupAllCalls",
                                           "Backspace",
                                           "Delete"};

const std::vector<std::string> characterNames = {"CharSpace",       "CharExclamation",
                                                 "CharQuotation",   "CharHash",
                                                 "CharDollar",      "CharPercentage",
                                                 "CharAnd",         "CharApostrophe",
                                                 "CharBracketLeft", "CharBracketRight",
                                                 "CharMul",         "CharPlus",
                                                 "CharComma",       "CharMinus",
                                                 "CharDot",         "CharSlash",
                                                 "Number0",         "Number1",
                                                 "Number2",         "Number3",
                                                 "Number4",         "Number5",
                                                 "Number6",         "Number7",
                                                 "Number8",         "Number9",
                                                 "CharColon",       "CharSemicolon",
                                                 "CharLess",        "CharEqual",
                                                 "CharMore",        "CharQuestionmark",
                                                 "CharAt",          "CharCapA",
                                                 "CharCapB",        "CharCapC",
                                                 "CharCapD",        "CharCapE",
                                                 "CharCapF",        "CharCapG",
                                                 "CharCapH",        "CharCapI",
                                                 "CharCapJ",        "CharCapK",
                                                 "CharCapL",        "CharCapM",
                                                 "CharCapN",        "CharCapO",
                                                 "CharCapP",        "CharCapQ",
                                                 "CharCapR",        "CharCapS",
                                                 "CharCapT",        "CharCapU",
                                                 "CharCapV",        "CharCapW",
                                                 "CharCapX",        "CharCapY",
                                                 "CharCapZ",        "CharBraceLeft",
                                                 "CharBackslash",   "CharBraceRight",
                                                 "CharCaret",       "CharUnderscore",
                                                 "CharGrave",       "CharA",
                                                 "CharB",           "CharC",
                                                 "CharD",           "CharE",
                                                 "CharF",           "CharG",
                                                 "CharH",           "CharI",
                                                 "CharJ",           "CharK",
                                                 "CharL",           "CharM",
                                                 "CharN",           "CharO",
                                                 "CharP",           "CharQ",
                                                 "CharR",           "CharS",
                                                 "CharT",           "CharU",
                                                 "CharV",           "CharW",
                                                 "CharX",           "CharY",
                                                 "CharZ",           "CharCurlyBraceLeft",
                                                 "CharPipe",        "CharCurlyBraceRight",
                                                 "CharTilde"};

std::string commandText(int command)
{
    return InputEvent(static_cast<InputEvent::Command>(command), InputEvent::NoState, Bus::NoBus)
        .cmdToString()
        .toStdString();
}

std::string text(int state, int bus)
{
    return InputEvent(InputEvent::VolumeUp, static_cast<InputEvent::State>(state),
                      static_cast<Bus>(bus))
        .toString()
        .toStdString();
}

TEST(InputEventCommand, HasAllNamesAtTheirNumbers)
{
    ASSERT_EQ(lowNames.size(), 57U);
    ASSERT_EQ(characterNames.size(), 95U);
    for (int command = 0; command <= 56; ++command)
        EXPECT_EQ(commandText(command), lowNames[static_cast<std::size_t>(command)]) << command;
    for (int command = 1032; command <= 1126; ++command) {
        EXPECT_EQ(commandText(command), characterNames[static_cast<std::size_t>(command - 1032)])
            << command;
    }
    EXPECT_EQ(QMetaEnum::fromType<InputEvent::Command>().keyCount(), 152);
}

TEST(InputEventCommand, PrintsNumbersWithoutANameInDecimal)
{
    for (int command = 57; command <= 1031; ++command)
        EXPECT_EQ(commandText(command), std::to_string(command));
    EXPECT_EQ(commandText(1127), "1127");
    EXPECT_EQ(commandText(-1), "-1");
    EXPECT_EQ(commandText(2147483647), "2147483647");
    EXPECT_EQ(commandText(-2147483647 - 1), "-2147483648");
}

TEST(InputEventCommand, IsOneThousandPlusAsciiForCharacters)
{
    EXPECT_EQ(InputEvent::CharSpace, 1000 + ' ');
    EXPECT_EQ(InputEvent::CharMul, 1000 + '*');
    EXPECT_EQ(InputEvent::Number0, 1000 + '0');
    EXPECT_EQ(InputEvent::CharMore, 1000 + '>');
    EXPECT_EQ(InputEvent::CharQuestionmark, 1000 + '?');
    EXPECT_EQ(InputEvent::CharCapA, 1065);
    EXPECT_EQ(InputEvent::CharBraceLeft, 1000 + '[');
    EXPECT_EQ(InputEvent::CharBraceRight, 1000 + ']');
    EXPECT_EQ(InputEvent::CharA, 1000 + 'a');
    EXPECT_EQ(InputEvent::CharCurlyBraceLeft, 1000 + '{');
    EXPECT_EQ(InputEvent::CharTilde, 1000 + '~');
}

TEST(InputEventEnums, AreIntegersWithTheCommandInBothSpellings)
{
    static_assert(std::is_same_v<std::underlying_type_t<InputEvent::Command>, int>);
    static_assert(std::is_same_v<std::underlying_type_t<InputEvent::State>, int>);
    static_assert(std::is_same_v<std::underlying_type_t<InputEvent::Bus>, int>);
    static_assert(InputEvent::Confirm == InputEvent::Command::Confirm);
    static_assert(!std::is_convertible_v<InputEvent::Bus, int>);
    EXPECT_EQ(InputEvent::Bluetooth, 38);
    EXPECT_EQ(static_cast<int>(Bus::Bluetooth), 3);
}

TEST(InputEventText, NamesEachState)
{
    EXPECT_EQ(text(0, 0), "[cmd=VolumeUp, state=Unknown]");
    EXPECT_EQ(text(1, 0), "[cmd=VolumeUp, state=KeyPressed]");
    EXPECT_EQ(text(2, 0), "[cmd=VolumeUp, state=KeyReleased]");
    EXPECT_EQ(text(3, 0), "[cmd=VolumeUp, state=KeyLongPress]");
    EXPECT_EQ(text(4, 0), "[cmd=VolumeUp, state=SwitchEnabled]");
    EXPECT_EQ(text(5, 0), "[cmd=VolumeUp, state=SwitchDisabled]");
    EXPECT_EQ(text(6, 0), "[cmd=VolumeUp, state=6]");
    EXPECT_EQ(text(-3, 0), "[cmd=VolumeUp, state=-3]");
}

TEST(InputEventText, NamesEachBusButNoBus)
{
    const std::vector<std::string> names = {"Hostlink", "LocalUI", "Bluetooth", "USB", "PCI",
                                            "ADB",      "I2C",     "SPI",       "CEC"};
    for (int bus = 1; bus <= 9; ++bus) {
        EXPECT_EQ(text(1, bus),
                  "[cmd=VolumeUp, state=KeyPressed, bus=" + names[static_cast<std::size_t>(bus - 1)]
                      + "]");
    }
    EXPECT_EQ(text(1, 10), "[cmd=VolumeUp, state=KeyPressed, bus=10]");
    EXPECT_EQ(text(1, -1), "[cmd=VolumeUp, state=KeyPressed, bus=-1]");
}

TEST(InputEventText, OfADefaultEventIsNoneAndUnknown)
{
    const InputEvent event;
    EXPECT_EQ(event.command(), InputEvent::None);
    EXPECT_EQ(event.state(), InputEvent::NoState);
    EXPECT_EQ(event.bus(), Bus::NoBus);
    EXPECT_EQ(event.toString(), "[cmd=None, state=Unknown]");
}

TEST(InputEventText, HasAllThreeParts)
{
    EXPECT_EQ(InputEvent(InputEvent::CharCapA, InputEvent::KeyPressed, Bus::USB).toString(),
              "[cmd=CharCapA, state=KeyPressed, bus=USB]");
    EXPECT_EQ(InputEvent(InputEvent::Bluetooth, InputEvent::KeyPressed, Bus::Bluetooth).toString(),
              "[cmd=Bluetooth, state=KeyPressed, bus=Bluetooth]");
}

TEST(InputEventValue, HoldsOnePointer)
{
    EXPECT_EQ(sizeof(InputEvent), sizeof(void *));
}

TEST(InputEventValue, KeepsItsFieldsThroughCopyAndAssignment)
{
    InputEvent assigned;
    {
        const InputEvent event(InputEvent::Mute, InputEvent::KeyReleased, Bus::CEC);
        const InputEvent copy(event);
        for (const InputEvent &each : {event, copy}) {
            EXPECT_EQ(each.command(), InputEvent::Mute);
            EXPECT_EQ(each.state(), InputEvent::KeyReleased);
            EXPECT_EQ(each.bus(), Bus::CEC);
        }
        assigned = copy;
    }
    EXPECT_EQ(assigned.toString(), "[cmd=Mute, state=KeyReleased, bus=CEC]");
    const InputEvent &itself = assigned;
    assigned = itself;
    EXPECT_EQ(assigned.toString(), "[cmd=Mute, state=KeyReleased, bus=CEC]");
}

TEST(InputEventValue, CanBeCopiedAndDestroyedOnManyThreads)
{
    const InputEvent event(InputEvent::Next, InputEvent::KeyPressed, Bus::LocalUI);
    std::vector<std::thread> threads;
    std::vector<int> failures(4, 0);
    for (int &failed : failures) {
        threads.emplace_back([&event, &failed] {
            for (int i = 0; i < 10000; ++i) {
                const InputEvent copy(event);
                InputEvent other;
                other = copy;
                failed += other.command() == InputEvent::Next ? 0 : 1;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_THAT(failures, testing::Each(0));
}

TEST(InputEventMetaType, IsDeclared)
{
    EXPECT_NE(qMetaTypeId<InputEvent>(), QMetaType::UnknownType);
    EXPECT_STREQ(QtDifferences::metaTypeName(qMetaTypeId<InputEvent>()), "InputEvent");
}

} // namespace
