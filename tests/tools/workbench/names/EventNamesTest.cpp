#include "EventNames.h"
#include "BusNames.h"
#include "CommandNames.h"
#include "Suggestion.h"
#include "UsualCommands.h"

#include <gmock/gmock.h>

#include <linux/input.h>

using namespace Vorn::Workbench;

namespace {

std::string closestTo(const char *unknown, const QStringList &known)
{
    return closest(QString::fromUtf8(unknown), known).toStdString();
}

} // namespace

TEST(CodeNames, TakeNamesAndNumbersOfKeys)
{
    EXPECT_EQ(keyCode("KEY_INFO"), KEY_INFO);
    EXPECT_EQ(keyCode("BTN_0"), BTN_0);
    EXPECT_EQ(keyCode("358"), 358);
    EXPECT_EQ(keyCode("0x166"), 358);
    EXPECT_EQ(keyCode("0"), 0);
    EXPECT_EQ(keyCode("767"), 767);
    // Not octal.
    EXPECT_EQ(keyCode("010"), 10);
}

TEST(CodeNames, RefuseWhatIsNoKey)
{
    for (const char *text : {"", "KEY_", "key_info", "KEY_INFO ", "SW_LINEIN_INSERT", "768", "-1",
                             "+1", "1.5", "1e2", "0x", "99999999999999999999", "VolumeUp"})
    {
        EXPECT_EQ(keyCode(text), std::nullopt) << text;
    }
}

TEST(CodeNames, TakeNamesAndNumbersOfSwitches)
{
    EXPECT_EQ(switchCode("SW_LINEIN_INSERT"), SW_LINEIN_INSERT);
    EXPECT_EQ(switchCode("13"), 13);
    EXPECT_EQ(switchCode("16"), 16);
    EXPECT_EQ(switchCode("17"), std::nullopt);
    EXPECT_EQ(switchCode("KEY_INFO"), std::nullopt);
}

TEST(CodeNames, NameEveryCodeSoThatItIsReadBack)
{
    for (int code = 0; code <= maxKeyCode; ++code)
        EXPECT_EQ(keyCode(keyName(code)), code) << keyName(code).toStdString();
    for (int code = 0; code <= maxSwitchCode; ++code)
        EXPECT_EQ(switchCode(switchName(code)), code) << switchName(code).toStdString();
    for (const QString &name : keyNames())
        EXPECT_EQ(keyName(*keyCode(name)).toStdString(), name.toStdString());
}

TEST(CodeNames, KnowOtherTypesOfEvents)
{
    EXPECT_EQ(eventType("EV_MSC"), EV_MSC);
    EXPECT_EQ(eventType("31"), 31);
    EXPECT_EQ(eventType("32"), std::nullopt);
    EXPECT_EQ(eventTypeName(EV_SW).toStdString(), "EV_SW");
    EXPECT_EQ(eventTypeName(30).toStdString(), "30");
    EXPECT_EQ(eventCode(EV_MSC, "MSC_SCAN"), MSC_SCAN);
    EXPECT_EQ(eventCode(EV_SYN, "SYN_DROPPED"), SYN_DROPPED);
    EXPECT_EQ(eventCode(EV_KEY, "65535"), 65535);
    EXPECT_EQ(eventCodeName(EV_SYN, SYN_REPORT).toStdString(), "SYN_REPORT");
    EXPECT_EQ(eventCodeName(EV_KEY, 60000).toStdString(), "60000");
}

TEST(CodeNames, SayWhatAValueMeans)
{
    EXPECT_EQ(valueName(EV_KEY, 0).toStdString(), "release");
    EXPECT_EQ(valueName(EV_KEY, 1).toStdString(), "press");
    EXPECT_EQ(valueName(EV_KEY, 2).toStdString(), "repeat");
    EXPECT_EQ(valueName(EV_KEY, 3).toStdString(), "3");
    EXPECT_EQ(valueName(EV_SW, 1).toStdString(), "on");
    EXPECT_EQ(valueName(EV_SW, 0).toStdString(), "off");
    EXPECT_EQ(valueName(EV_MSC, 1).toStdString(), "1");
}

TEST(CodeNames, KnowEveryCommandStateAndBusByItsName)
{
    EXPECT_EQ(commandNames().size(), 152);
    for (const QString &name : commandNames())
        EXPECT_EQ(commandName(*command(name)).toStdString(), name.toStdString());
    EXPECT_EQ(command("CharMore"), InputEvent::CharMore);
    EXPECT_EQ(command("volumeup"), std::nullopt);
    EXPECT_EQ(command("InputEvent::Stop"), std::nullopt);
    EXPECT_EQ(command(QString::fromLatin1("Stop\0", 5)), std::nullopt);
    EXPECT_EQ(keyCode(QString::fromLatin1("KEY_INFO\0", 9)), std::nullopt);
    EXPECT_EQ(bus("InputEvent::USB"), std::nullopt);
    EXPECT_EQ(command("16"), std::nullopt);

    EXPECT_EQ(stateNames().size(), 5);
    for (const QString &name : stateNames())
        EXPECT_EQ(stateName(*state(name)).toStdString(), name.toStdString());
    EXPECT_EQ(state("NoState"), std::nullopt);
    EXPECT_EQ(stateName(InputEvent::NoState).toStdString(), "NoState");

    EXPECT_EQ(busNames().size(), 10);
    for (const QString &name : busNames())
        EXPECT_EQ(busName(*bus(name)).toStdString(), name.toStdString());
    EXPECT_EQ(bus("usb"), std::nullopt);
}

TEST(CodeNames, KnowWhichCommandsAreTyped)
{
    EXPECT_TRUE(isCharacter(InputEvent::CharSpace));
    EXPECT_TRUE(isCharacter(InputEvent::Number0));
    EXPECT_TRUE(isCharacter(InputEvent::CharTilde));
    EXPECT_FALSE(isCharacter(InputEvent::Backspace));
    EXPECT_FALSE(isCharacter(static_cast<InputEvent::Command>(1031)));
    EXPECT_FALSE(isCharacter(static_cast<InputEvent::Command>(1127)));
}

TEST(CodeNames, MapTheKernelsBusesAsTheLibraryDoes)
{
    const std::pair<int, InputEvent::Bus> buses[] = {
        {BUS_PCI, InputEvent::Bus::PCI},
        {BUS_USB, InputEvent::Bus::USB},
        {BUS_BLUETOOTH, InputEvent::Bus::Bluetooth},
        {BUS_ADB, InputEvent::Bus::ADB},
        {BUS_I2C, InputEvent::Bus::I2C},
        {BUS_HOST, InputEvent::Bus::LocalUI},
        {BUS_SPI, InputEvent::Bus::SPI},
        {BUS_CEC, InputEvent::Bus::CEC},
        {BUS_VIRTUAL, InputEvent::Bus::NoBus},
        {BUS_I8042, InputEvent::Bus::NoBus},
        {999, InputEvent::Bus::NoBus},
    };
    for (const auto &[kernel, library] : buses) {
        EXPECT_EQ(libraryBus(kernel, "panel"), library) << kernel;
        EXPECT_EQ(libraryBus(kernel, "hostlink"), InputEvent::Bus::Hostlink) << kernel;
    }
    for (const QString &name : busNames()) {
        const InputEvent::Bus known = *bus(name);
        if (known != InputEvent::Bus::Hostlink) {
            EXPECT_EQ(libraryBus(kernelBusOf(known), "panel"), known) << name.toStdString();
        }
    }
    EXPECT_EQ(libraryBus(BUS_USB, "Hostlink"), InputEvent::Bus::USB);
    EXPECT_EQ(kernelBus("BUS_CEC"), BUS_CEC);
    EXPECT_EQ(kernelBus("25"), BUS_HOST);
    EXPECT_EQ(kernelBusName(BUS_HOST).toStdString(), "BUS_HOST");
    EXPECT_EQ(kernelBusName(77).toStdString(), "77");
}

TEST(CodeNames, ProposeTheUsualCommand)
{
    EXPECT_EQ(usualKeyCommand(KEY_VOLUMEUP), InputEvent::VolumeUp);
    EXPECT_EQ(usualKeyCommand(KEY_A), InputEvent::CharA);
    EXPECT_EQ(usualKeyCommand(KEY_7), InputEvent::Number7);
    EXPECT_EQ(usualKeyCommand(KEY_F12), std::nullopt);
    EXPECT_EQ(usualSwitchCommand(SW_LINEIN_INSERT), InputEvent::SWLineIn);
    EXPECT_EQ(usualSwitchCommand(SW_LID), std::nullopt);
}

TEST(CodeNames, KnowWhichKeysTellWhatIsTyped)
{
    for (const int code : {KEY_A, KEY_Z, KEY_1, KEY_0, KEY_SPACE, KEY_KP5, KEY_DOT, KEY_MINUS})
        EXPECT_TRUE(isTypingKey(code)) << keyName(code).toStdString();
    for (const int code : {KEY_ENTER, KEY_UP, KEY_VOLUMEUP, KEY_BACKSPACE, KEY_LEFTSHIFT, KEY_F1})
        EXPECT_FALSE(isTypingKey(code)) << keyName(code).toStdString();
}

TEST(Suggestion, IsTheNameThatWasProbablyMeant)
{
    EXPECT_EQ(closestTo("VolumUp", commandNames()), "VolumeUp");
    EXPECT_EQ(closestTo("volumeup", commandNames()), "VolumeUp");
    EXPECT_EQ(closestTo("Inof", commandNames()), "Info");
    EXPECT_EQ(closestTo("VOLUMEUP", keyNames()), "KEY_VOLUMEUP");
    EXPECT_EQ(closestTo("KEY_VOLUME_UP", keyNames()), "KEY_VOLUMEUP");
    EXPECT_EQ(closestTo("LocalUi", busNames()), "LocalUI");
}

TEST(Suggestion, IsLeftOutWhereNothingIsClose)
{
    EXPECT_EQ(closestTo("Xyzzy", commandNames()), "");
    EXPECT_EQ(closestTo("", commandNames()), "");
    EXPECT_EQ(closestTo(std::string(100'000, 'x').c_str(), commandNames()), "");
    EXPECT_EQ(suggestion("Xyzzy", commandNames()).toStdString(), "");
    EXPECT_EQ(suggestion("VolumUp", commandNames()).toStdString(), ", did you mean 'VolumeUp'?");
}
