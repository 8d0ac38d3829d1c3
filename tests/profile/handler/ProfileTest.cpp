#include "Profile.h"

#include <gmock/gmock.h>

using namespace Vorn;

TEST(Profile, UsesTheFirstEntryThatFitsADevice)
{
    using Bus = InputEvent::Bus;
    Profile profile;
    DeviceProfile both;
    both.name = QStringLiteral("panel");
    both.bus = Bus::LocalUI;
    DeviceProfile named;
    named.name = QStringLiteral("panel");
    DeviceProfile onBus;
    onBus.bus = Bus::USB;
    profile.devices = {both, named, onBus};
    const auto fitting = [&profile](const char *name, Bus bus) {
        const DeviceProfile *device = profile.deviceFor(QString::fromLatin1(name), bus);
        return device ? static_cast<int>(device - profile.devices.constData()) : -1;
    };
    EXPECT_EQ(fitting("panel", Bus::LocalUI), 0);
    EXPECT_EQ(fitting("panel", Bus::USB), 1);
    EXPECT_EQ(fitting("keyboard", Bus::USB), 2);
    EXPECT_EQ(fitting("keyboard", Bus::PCI), -1);
    EXPECT_EQ(fitting("panel2", Bus::NoBus), -1);
    profile.devices.append(DeviceProfile());
    EXPECT_EQ(fitting("keyboard", Bus::PCI), 3);
}

TEST(Profile, DiffersFromOneWithOtherChords)
{
    using Bus = InputEvent::Bus;
    const auto withChord = [](const ChordMapping &chord) {
        HandlerProfile handler;
        handler.chords = {chord};
        return handler;
    };
    const HandlerProfile one = withChord({1, 2, InputEvent::Info, Bus::USB});
    EXPECT_TRUE(one == withChord({1, 2, InputEvent::Info, Bus::USB}));
    EXPECT_FALSE(one == withChord({3, 2, InputEvent::Info, Bus::USB}));
    EXPECT_FALSE(one == withChord({1, 3, InputEvent::Info, Bus::USB}));
    EXPECT_FALSE(one == withChord({1, 2, InputEvent::Confirm, Bus::USB}));
    EXPECT_FALSE(one == withChord({1, 2, InputEvent::Info, Bus::PCI}));
}

TEST(Profile, ListsEachIdentifierOnce)
{
    Profile profile;
    EXPECT_EQ(profile.identifiers(), QStringList{QString()});
    profile.initial = QStringLiteral("b");
    profile.select = {{InputEvent::Info, InputEvent::KeyReleased, QStringLiteral("c")}};
    HandlerProfile handler;
    handler.identifiers = QStringList{QStringLiteral("a"), QStringLiteral("b")};
    DeviceProfile device;
    device.handlers = {HandlerProfile(), handler, handler};
    profile.devices = {device};
    EXPECT_EQ(profile.identifiers().join('|').toStdString(), "b|c||a");
}
