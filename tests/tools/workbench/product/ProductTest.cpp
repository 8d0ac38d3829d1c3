#include "Product.h"
#include "InputProbe.h"
#include "LogRecorder.h"
#include "ProductFixture.h"

#include <algorithm>

using namespace Vorn::Sim;
using namespace Vorn;
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
    devices().selectHandler("text");
    panel.press(KEY_STOP);
    EXPECT_THAT(take(), ElementsAre("select text", "KEY_STOP press"));
    devices().selectHandler("");
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

TEST_F(ProductTest, SaysWhyNothingTakesARecord)
{
    Profile profile = panelProfile();
    profile.devices[0].name = QStringLiteral("desk-panel");
    profile.devices[0].bus = InputEvent::Bus::SPI;
    start(profile);
    InputNode &panel = plug(0, DeviceDescription::keyboard("desk-panle", BUS_SPI, {KEY_STOP}));
    InputNode &wheel = plug(1, DeviceDescription::keyboard("desk-panel", BUS_SPI, {KEY_STOP}));
    InputNode &other = plug(2, DeviceDescription::keyboard("desk-panel", BUS_USB, {KEY_STOP}));
    take();
    panel.press(KEY_STOP);
    EXPECT_THAT(takeOutcomes(),
                ElementsAre("KEY_STOP press the device, 'desk-panle' (SPI), fits no entry of the "
                            "profile; did you mean 'desk-panel' (SPI)?"));
    other.press(KEY_STOP);
    EXPECT_THAT(takeOutcomes(),
                ElementsAre("KEY_STOP press the device, 'desk-panel' (USB), fits no entry of the "
                            "profile; did you mean 'desk-panel' (SPI)?"));
    devices().selectHandler("text");
    wheel.press(KEY_STOP);
    EXPECT_THAT(takeOutcomes(),
                ElementsAre("KEY_STOP press the listener has no receiver: no keys of the device "
                            "are mapped under identifier 'text', but under ''"));
    wheel.send({InputNode::record(EV_REL, REL_X, 3, clock().now())});
    EXPECT_THAT(takeOutcomes(), ElementsAre("REL_X 3 the library takes EV_KEY and EV_SW only"));
}

TEST_F(ProductTest, SuggestsTheEntryOfASimilarName)
{
    Profile profile = panelProfile();
    DeviceProfile any;
    HandlerProfile handler;
    handler.keys = {keyOf(KEY_A, InputEvent::CharA, true)};
    any.handlers = {handler};
    profile.devices += any;
    start(profile);
    InputNode &panel = plug(0, DeviceDescription::keyboard("front-panle", BUS_HOST, {KEY_STOP}));
    take();
    panel.press(KEY_STOP);
    EXPECT_THAT(takeOutcomes(),
                ElementsAre("KEY_STOP press not mapped under identifier ''; the device, "
                            "'front-panle' (LocalUI), fits only the entry for any device; did you "
                            "mean 'front-panel'?"));
}

TEST_F(ProductTest, LeavesTheListenerOfUnreadRecordsWithoutAReceiver)
{
    start(panelProfile());
    InputNode &other = plug(1, DeviceDescription::keyboard("other", BUS_USB, {KEY_INFO}));
    other.press(KEY_INFO);
    clock().settle();
    const auto *listener = Vorn::InputProbe::keyListener(devices(), "/dev/input/event1");
    ASSERT_TRUE(listener);
    EXPECT_EQ(Vorn::InputProbe::receiver(*listener), nullptr);
}

TEST_F(ProductTest, TellsALostReleaseByWhatTheDeviceSays)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    // As after a lost release: the library has seen the press, but on the device the key is up.
    panel.send({InputNode::record(EV_KEY, KEY_STOP, 1), InputNode::record(EV_SYN, SYN_REPORT, 0)});
    panel.press(KEY_PLAY);
    panel.press(KEY_INFO);
    take();
    wait(150);
    EXPECT_THAT(take(),
                ElementsAre(testing::AllOf(
                    testing::StartsWith("front-panel: KEY_STOP is down for the library since "),
                    testing::HasSubstr("but up on the device: its release was lost, and other "
                                       "keys of the device are dropped until"))));
}

TEST_F(ProductTest, LogsStatesOnlyWhereTheyHaveChanged)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    plug(1, DeviceDescription::keyboard("other", BUS_USB, {KEY_A}));
    devices().logChangedStates();
    take();
    devices().logChangedStates();
    EXPECT_THAT(take(), testing::IsEmpty());
    panel.press(KEY_STOP);
    take();
    devices().logChangedStates();
    EXPECT_THAT(take(), ElementsAre("state of /dev/input/event0: KEY_STOP"));
    panel.release(KEY_STOP);
    take();
    devices().logChangedStates();
    EXPECT_THAT(take(), ElementsAre("state of /dev/input/event0: "));
}

TEST_F(ProductTest, LeavesEachLineOfTheLibraryAlone)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    LogRecorder recorder;
    panel.press(KEY_STOP);
    panel.release(KEY_STOP);
    clock().settle();
    const std::vector<std::string> lines = recorder.texts();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "key:128 value 1"), 1);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "key:128 value 0"), 1);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Found already event for code:128"), 1);
}

TEST_F(ProductTest, KnowsNoBusOfADeviceThatNobodyReads)
{
    start(panelProfile());
    const ObservedDevice none =
        observedDevice(devices(), QStringLiteral("/dev/input/event5"), QStringLiteral("panel"));
    EXPECT_EQ(none.path.toStdString(), "/dev/input/event5");
    EXPECT_EQ(none.name.toStdString(), "panel");
    EXPECT_EQ(none.bus, InputEvent::Bus::NoBus);
    EXPECT_FALSE(none.readsKeys);
    EXPECT_FALSE(none.readsSwitches);
}

TEST_F(ProductTest, TellsWhichDeviceCameAndWhichWent)
{
    start(panelProfile());
    std::vector<std::string> told;
    QObject::connect(&devices(), &Product::deviceAdded, &devices(),
                     [&](const QString &path, const QString &name) {
                         told.push_back("+" + path.toStdString() + " " + name.toStdString());
                     });
    QObject::connect(&devices(), &Product::deviceRemoved, &devices(),
                     [&](const QString &path) { told.push_back("-" + path.toStdString()); });
    plugPanel();
    subsystem().unplug(0);
    clock().waitUntil([&] { return devices().devices().isEmpty(); });
    EXPECT_THAT(told, ElementsAre("+/dev/input/event0 front-panel", "-/dev/input/event0"));
}

TEST_F(ProductTest, SuggestsTheEntryThatWasMeantAmongOthers)
{
    Profile profile = panelProfile();
    DeviceProfile receiver = profile.devices.first();
    receiver.name = QStringLiteral("ir-receiver");
    profile.devices += receiver;
    start(profile);
    InputNode &node = plug(0, DeviceDescription::keyboard("ir-reciever", BUS_I2C, {KEY_STOP}));
    take();
    node.press(KEY_STOP);
    EXPECT_THAT(takeOutcomes(),
                ElementsAre("KEY_STOP press the device, 'ir-reciever' (I2C), fits no entry of the "
                            "profile; did you mean 'ir-receiver'?"));
}

TEST_F(ProductTest, SaysUnderWhichIdentifierASwitchIsMapped)
{
    Profile profile;
    DeviceProfile jacks;
    jacks.name = QStringLiteral("jacks");
    HandlerProfile here;
    here.switches = {SwitchMapping{SW_LINEIN_INSERT, InputEvent::SWLineIn}};
    HandlerProfile there;
    there.identifiers = QStringList{"text"};
    there.switches = {SwitchMapping{SW_LINEOUT_INSERT, InputEvent::SWLineOut}};
    jacks.handlers = {here, there};
    profile.devices = {jacks};
    start(profile);
    InputNode &node = plug(
        0, DeviceDescription::switchBox("jacks", BUS_I2C, {SW_LINEIN_INSERT, SW_LINEOUT_INSERT}));
    take();
    node.setSwitch(SW_LINEOUT_INSERT, true);
    EXPECT_THAT(takeOutcomes(),
                ElementsAre("SW_LINEOUT_INSERT on not mapped under identifier '', but under "
                            "'text'"));
    devices().selectHandler("other");
    node.setSwitch(SW_LINEOUT_INSERT, false);
    EXPECT_THAT(takeOutcomes(),
                ElementsAre("SW_LINEOUT_INSERT off the listener has no receiver: no switches of "
                            "the device are mapped under identifier 'other', but under '', "
                            "'text'"));
    node.send({InputNode::record(EV_KEY, KEY_A, 1, clock().now())});
    EXPECT_THAT(takeOutcomes(),
                ElementsAre("KEY_A press the library does not read EV_KEY of this device, which "
                            "does not declare it"));
}
