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

namespace {

/// Whether each of some values equals itself alone, either way round.
template <typename Value>
void expectAllDifferent(const QVector<Value> &values)
{
    for (int i = 0; i < values.size(); ++i) {
        for (int j = 0; j < values.size(); ++j)
            EXPECT_EQ(values[i] == values[j], i == j) << i << ' ' << j;
    }
}

} // namespace

TEST(Profile, DiffersInEachOfItsMembers)
{
    using Bus = InputEvent::Bus;
    const LongPress once{{700}, false};
    expectAllDifferent<LongPress>({once, {{700}, true}, {{700, 600}, false}, {{600}, true}});
    expectAllDifferent<KeyMapping>({{1, InputEvent::Info, false, {}, {}},
                                    {2, InputEvent::Info, false, {}, {}},
                                    {1, InputEvent::Stop, false, {}, {}},
                                    {1, InputEvent::Info, true, {}, {}},
                                    {1, InputEvent::Info, false, once, {}},
                                    {1, InputEvent::Info, false, {}, Bus::USB},
                                    {2, InputEvent::Stop, true, once, Bus::PCI}});
    expectAllDifferent<ChordMapping>({{1, 2, InputEvent::Info, {}},
                                      {2, 2, InputEvent::Info, {}},
                                      {1, 1, InputEvent::Info, {}},
                                      {1, 3, InputEvent::Info, {}},
                                      {1, 2, InputEvent::Stop, {}},
                                      {1, 2, InputEvent::Info, Bus::USB},
                                      {3, 4, InputEvent::Mute, Bus::PCI}});
    expectAllDifferent<SwitchMapping>({{1, InputEvent::SWLineIn},
                                       {2, InputEvent::SWLineIn},
                                       {1, InputEvent::SWLineOut},
                                       {3, InputEvent::Info}});
    expectAllDifferent<SelectRule>({{InputEvent::Info, InputEvent::KeyPressed, "a"},
                                    {InputEvent::Stop, InputEvent::KeyPressed, "a"},
                                    {InputEvent::Info, InputEvent::KeyReleased, "a"},
                                    {InputEvent::Info, InputEvent::KeyPressed, "b"},
                                    {InputEvent::Mute, InputEvent::KeyLongPress, "c"}});
}

TEST(Profile, DiffersInEachPartOfItsDevices)
{
    const HandlerProfile plain;
    QVector<HandlerProfile> handlers(7);
    handlers[1].identifiers = QStringList{"a"};
    handlers[2].keys = {KeyMapping()};
    handlers[3].chords = {ChordMapping()};
    handlers[4].switches = {SwitchMapping()};
    handlers[5].positionsAtStart = true;
    handlers[6] = {{"b"}, {KeyMapping()}, {ChordMapping()}, {SwitchMapping()}, true};
    expectAllDifferent(handlers);
    QVector<DeviceProfile> devices(5);
    devices[1].name = QStringLiteral("panel");
    devices[2].bus = InputEvent::Bus::USB;
    devices[3].handlers = {plain};
    devices[4] = {QStringLiteral("x"), InputEvent::Bus::PCI, {plain, plain}};
    expectAllDifferent(devices);
    QVector<Profile> profiles(5);
    profiles[1].initial = QStringLiteral("a");
    profiles[2].devices = {DeviceProfile()};
    profiles[3].select = {SelectRule()};
    profiles[4] = {QStringLiteral("b"), {devices[1]}, {{}, {}}};
    expectAllDifferent(profiles);
}
