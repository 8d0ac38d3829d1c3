#include "Product.h"
#include "ProductFixture.h"

using namespace Vorn::Sim;
using namespace Vorn::Workbench;
using testing::Contains;
using testing::ElementsAre;

namespace {

class ProductTest : public ProductFixture
{ };

} // namespace

TEST_F(ProductTest, LogsTheIdentifierAndDevicesThatComeAndGo)
{
    start(panelProfile());
    EXPECT_THAT(take(), ElementsAre("select "));
    plug(0, DeviceDescription::keyboard("front-panel", BUS_HOST, {KEY_INFO}));
    plug(3, DeviceDescription::switchBox("jacks", BUS_I2C, {SW_LINEIN_INSERT}));
    EXPECT_THAT(
        take(),
        ElementsAre("+/dev/input/event0 front-panel LocalUI", "+/dev/input/event3 jacks I2C"));
    subsystem().unplug(0);
    clock().waitUntil([&] { return devices().devices().size() == 1; });
    EXPECT_THAT(take(), ElementsAre("-/dev/input/event0 front-panel LocalUI"));
}

TEST_F(ProductTest, LogsTheRecordsOfDevicesThatTheProfileDoesNotMention)
{
    start(panelProfile());
    InputNode &other = plug(1, DeviceDescription::keyboard("other", BUS_USB, {KEY_INFO}));
    take();
    other.press(KEY_INFO);
    EXPECT_THAT(take(), ElementsAre("KEY_INFO press"));
}

TEST_F(ProductTest, LogsTheRecordsUnderAnIdentifierWithoutHandlers)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    devices().select("text");
    panel.press(KEY_STOP);
    EXPECT_THAT(take(), ElementsAre("select text", "KEY_STOP press"));
    devices().select("");
    take();
    panel.release(KEY_STOP);
    // The release of a key that was pressed under another identifier.
    EXPECT_THAT(take(), ElementsAre("KEY_STOP release", "[dropped KEY_STOP]"));
}

TEST_F(ProductTest, LeavesOtherDevicesAloneWhenAnUnknownOneArrives)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_STOP);
    wait(100);
    plug(1, DeviceDescription::keyboard("other", BUS_USB, {KEY_A}));
    take();
    panel.press(KEY_PLAY);
    // The chord that was begun before is found.
    EXPECT_THAT(take(), Contains("[chord KEY_STOP+KEY_PLAY]"));
}

TEST_F(ProductTest, LogsTheRecordsOfANodeWithKeysAndSwitchesOnce)
{
    start(Profile());
    InputNode &node = plug(
        0,
        DeviceDescription::keyboard("both", BUS_HOST, {KEY_INFO}).withSwitches({SW_LINEIN_INSERT}));
    take();
    node.press(KEY_INFO);
    node.setSwitch(SW_LINEIN_INSERT, true);
    EXPECT_THAT(take(), ElementsAre("KEY_INFO press", "SW_LINEIN_INSERT on"));
}

TEST_F(ProductTest, SelectsAnIdentifierOnAnEventAsTheProfileSays)
{
    Profile profile = panelProfile();
    profile.devices[0].handlers[0].identifiers = QStringList{"browse", "text"};
    profile.initial = "browse";
    profile.select = {{InputEvent::Stop, InputEvent::KeyReleased, "text"}};
    start(profile);
    InputNode &panel = plugPanel();
    panel.press(KEY_STOP);
    EXPECT_EQ(devices().identifier().toStdString(), "browse");
    panel.release(KEY_STOP);
    EXPECT_THAT(take(), Contains("select text"));
    EXPECT_EQ(devices().identifier().toStdString(), "text");
}

TEST_F(ProductTest, UsesTheFirstEntryThatFitsNameAndBus)
{
    const auto entry = [](const std::optional<QString> &name,
                          const std::optional<InputEvent::Bus> &bus, InputEvent::Command command) {
        HandlerProfile handler;
        handler.keys = {keyOf(KEY_INFO, command, true)};
        DeviceProfile device;
        device.name = name;
        device.bus = bus;
        device.handlers = {handler};
        return device;
    };
    Profile profile;
    profile.devices = {entry(QString("panel"), InputEvent::Bus::USB, InputEvent::Mute),
                       entry(QString("panel"), {}, InputEvent::Stop),
                       entry({}, InputEvent::Bus::I2C, InputEvent::Pause),
                       entry({}, {}, InputEvent::Info)};
    start(profile);
    const auto commandOf = [&](int number, const char *name, int bus) {
        InputNode &node = plug(number, DeviceDescription::keyboard(name, bus, {KEY_INFO}));
        take();
        node.press(KEY_INFO);
        return take().back();
    };
    EXPECT_THAT(commandOf(0, "panel", BUS_USB), testing::HasSubstr("cmd=Mute"));
    EXPECT_THAT(commandOf(1, "panel", BUS_I2C), testing::HasSubstr("cmd=Stop"));
    EXPECT_THAT(commandOf(2, "remote", BUS_I2C), testing::HasSubstr("cmd=Pause"));
    EXPECT_THAT(commandOf(3, "remote", BUS_SPI), testing::HasSubstr("cmd=Info"));
}
