#include "ProfileData.h"

#include <gmock/gmock.h>

using namespace Vorn;

namespace {

using Bus = InputEvent::Bus;

constexpr int timeouts[] = {700, 600};
constexpr TextData identifiers[] = {u"a", u"b\0c"};
constexpr KeyData keys[] = {{1, InputEvent::Info, true, timeouts, true, Bus::USB},
                            {2, InputEvent::Stop, false, {}, false, {}}};
constexpr ChordData chords[] = {{1, 2, InputEvent::FactoryReset, Bus::I2C},
                                {3, 4, InputEvent::Mute, {}}};
constexpr SwitchData switches[] = {{13, InputEvent::SWLineIn}, {14, InputEvent::SWLineOut}};
constexpr HandlerData handlers[] = {{identifiers, true, keys, chords, switches},
                                    {{}, false, {}, {}, {}}};
constexpr RuleData rules[] = {{InputEvent::Info, InputEvent::KeyPressed, u"b"},
                              {InputEvent::Stop, InputEvent::KeyReleased, u""}};
constexpr DeviceData devices[] = {{u"panel", Bus::LocalUI, handlers}, {{}, {}, {}}};
constexpr ProfileData data{u"start", rules, devices};

} // namespace

TEST(ProfileData, IsReadWithAllItsParts)
{
    Profile expected;
    expected.initial = QStringLiteral("start");
    expected.select = {{InputEvent::Info, InputEvent::KeyPressed, QStringLiteral("b")},
                       {InputEvent::Stop, InputEvent::KeyReleased, QString()}};
    HandlerProfile handler;
    handler.identifiers = QStringList{QStringLiteral("a"), QString::fromLatin1("b\0c", 3)};
    handler.positionsAtStart = true;
    handler.keys = {{1, InputEvent::Info, true, LongPress{{700, 600}, true}, Bus::USB},
                    {2, InputEvent::Stop, false, {}, {}}};
    handler.chords = {{1, 2, InputEvent::FactoryReset, Bus::I2C}, {3, 4, InputEvent::Mute, {}}};
    handler.switches = {{13, InputEvent::SWLineIn}, {14, InputEvent::SWLineOut}};
    HandlerProfile empty;
    empty.identifiers.clear();
    expected.devices = {{QStringLiteral("panel"), Bus::LocalUI, {handler, empty}}, DeviceProfile()};
    EXPECT_TRUE(toProfile(data) == expected);
    EXPECT_TRUE(toProfile({}) == Profile());
}
