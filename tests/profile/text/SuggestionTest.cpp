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
}
