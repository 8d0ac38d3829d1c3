#include "Suggestion.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "EventNames.h"

#include <gmock/gmock.h>

#include <string>

using namespace Vorn;

namespace {

std::string closestTo(const char *unknown, const QStringList &known)
{
    return closest(QString::fromUtf8(unknown), known).toStdString();
}

} // namespace

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

TEST(Suggestion, IsTheOnlyNameThatContainsIt)
{
    const QStringList states{"KeyPressed", "KeyReleased", "KeyLongPress"};
    EXPECT_EQ(closest("pressed", states).toStdString(), "KeyPressed");
    EXPECT_EQ(closest("press", states).toStdString(), "");
    EXPECT_EQ(closest("key", {"KeyPressed"}).toStdString(), "");
}

TEST(Suggestion, IsAShortListIfNoneIsClose)
{
    EXPECT_EQ(suggestionOrList("KeyPresed", {"KeyPressed", "KeyReleased"}).toStdString(),
              ", did you mean 'KeyPressed'?");
    EXPECT_EQ(suggestionOrList("down", {"KeyPressed", "KeyReleased"}).toStdString(),
              "; write one of KeyPressed, KeyReleased");
    EXPECT_EQ(suggestionOrList("down", {"panel"}).toStdString(), "; write panel");
    EXPECT_EQ(suggestionOrList("down", {}).toStdString(), "");
    EXPECT_EQ(suggestionOrList("down", {"a", "b", "c"}).toStdString(), "; write one of a, b, c");
}

TEST(Suggestion, ComparesWhatFollowsThePrefix)
{
    const QStringList known{"KEY_ALPHA", "BTN_BRAVO", "SW_DELTA", "BUS_GOLF", "EV_KILO"};
    EXPECT_EQ(closestTo("sw_alpha", known), "KEY_ALPHA");
    EXPECT_EQ(closestTo("KEY_BRAVO", known), "BTN_BRAVO");
    EXPECT_EQ(closestTo("KEY_DELTA", known), "SW_DELTA");
    EXPECT_EQ(closestTo("KEY_GOLF", known), "BUS_GOLF");
    EXPECT_EQ(closestTo("KEY_KILO", known), "EV_KILO");
    // A wrong prefix does not use up what may be wrong.
    EXPECT_EQ(closestTo("BTN_ALPHB", known), "KEY_ALPHA");
}

TEST(Suggestion, AllowsAThirdOfTheCharactersToBeWrong)
{
    EXPECT_EQ(closestTo("abX", {"abc"}), "abc");
    EXPECT_EQ(closestTo("aXX", {"abc"}), "");
    EXPECT_EQ(closestTo("X", {"a"}), "a");
    EXPECT_EQ(closestTo("abcdXX", {"abcdef"}), "abcdef");
    EXPECT_EQ(closestTo("abcXXX", {"abcdef"}), "");
    EXPECT_EQ(closestTo("abdcef", {"abcdef"}), "abcdef") << "swapped";
    EXPECT_EQ(closestTo("badcfehgi", {"abcdefghi"}), "") << "swapped four times";
    EXPECT_EQ(closestTo("badcfeghi", {"abcdefghi"}), "abcdefghi") << "swapped three times";
    EXPECT_EQ(closestTo("abcdef", {"xbcdef", "abcdef", "abcdeg"}), "abcdef") << "the closest";
    EXPECT_EQ(closestTo("abcdef", {"abcdeg", "abcdeh"}), "abcdeg") << "the first";
}

TEST(Suggestion, TakesNoTextOfMoreThanSixtyFourCharacters)
{
    const std::string name(64, 'x');
    const QStringList known{QString::fromStdString(name)};
    EXPECT_EQ(closestTo(name.c_str(), known), name);
    EXPECT_EQ(closestTo((name + 'x').c_str(), known), "");
}
