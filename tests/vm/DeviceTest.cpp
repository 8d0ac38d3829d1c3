#include "DriverBinding.h"
#include "GuestTest.h"
#include "RecordingHandler.h"
#include "UinputDevice.h"

#include <QDateTime>

#include <array>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using Bus = InputEvent::Bus;

const QString first = QStringLiteral("/dev/input/event0");

class DeviceTest : public GuestTest
{
protected:
    /// The texts that the listeners logged.
    std::vector<std::string> listenerTexts() const
    {
        std::vector<std::string> texts;
        for (const LogLine &line : log.lines()) {
            if (line.logger == "LinuxInputListener")
                texts.push_back(line.text);
        }
        return texts;
    }

    /// Starts the library with a handler that maps OK and the line-in jack for each device.
    std::unique_ptr<Devices> start()
    {
        auto devices = std::make_unique<Devices>();
        devices->onAdd = [devices = devices.get()](const QString &device, const QString &name) {
            auto *keys = new BasicKeyInputHandler(name);
            keys->registerKey(KEY_OK, InputEvent::Confirm, true);
            devices->addKeyHandler(device, keys, QString());
            auto *switches = new BasicSwInputHandler(name);
            switches->registerSwitch(SW_LID, InputEvent::SWLineOut);
            switches->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
            devices->addSwitchHandler(device, switches, QString());
        };
        EXPECT_TRUE(waitFor([&] { return !devices->calls.empty(); }));
        return devices;
    }

    /// Clicks OK and waits for both events.
    std::vector<std::string> click(UinputDevice &device)
    {
        device.press(KEY_OK);
        device.release(KEY_OK);
        return waitForEvents(2);
    }

    static std::vector<std::string> confirmed(Bus bus)
    {
        return {text(InputEvent::Confirm, InputEvent::KeyPressed, bus),
                text(InputEvent::Confirm, InputEvent::KeyReleased, bus)};
    }
};

TEST_F(DeviceTest, EachBusIsReportedAsTheProductsOrAsNone)
{
    const std::array<std::pair<unsigned int, Bus>, 11> buses = {{
        {BUS_PCI, Bus::PCI},
        {BUS_USB, Bus::USB},
        {BUS_BLUETOOTH, Bus::Bluetooth},
        {BUS_ADB, Bus::ADB},
        {BUS_I2C, Bus::I2C},
        {BUS_HOST, Bus::LocalUI},
        {BUS_SPI, Bus::SPI},
        {BUS_CEC, Bus::CEC},
        {BUS_VIRTUAL, Bus::NoBus},
        {BUS_ISA, Bus::NoBus},
        {0, Bus::NoBus},
    }};
    for (const auto &[linuxBus, bus] : buses) {
        SCOPED_TRACE(linuxBus);
        log.clear();
        UinputDevice device({"panel", linuxBus, {KEY_OK}, {}});
        const auto devices = start();
        EXPECT_THAT(click(device), ElementsAreArray(confirmed(bus)));
        EXPECT_THAT(
            listenerTexts(),
            IsSupersetOf({"bustype: " + std::to_string(linuxBus), std::string("name: panel")}));
    }
}

TEST_F(DeviceTest, OnlyTheExactNameIsTheHostLink)
{
    const std::array<std::pair<const char *, Bus>, 3> names = {{
        {"hostlink", Bus::Hostlink},
        {"Hostlink", Bus::LocalUI},
        {"hostlink ", Bus::LocalUI},
    }};
    for (const auto &[name, bus] : names) {
        SCOPED_TRACE(name);
        log.clear();
        UinputDevice device({name, BUS_HOST, {KEY_OK}, {}});
        const auto devices = start();
        EXPECT_THAT(devices->calls, ElementsAre("add /dev/input/event0 " + std::string(name)));
        EXPECT_THAT(click(device), ElementsAreArray(confirmed(bus)));
        EXPECT_THAT(listenerTexts(),
                    IsSupersetOf({std::string("bustype: 25"), "name: " + std::string(name)}));
    }
}

TEST_F(DeviceTest, TheLongestNameOfUinputArrivesWhole)
{
    const std::string name(79, 'n');
    UinputDevice device({name, BUS_HOST, {KEY_OK}, {}});
    const auto devices = start();
    EXPECT_THAT(devices->calls, ElementsAre("add /dev/input/event0 " + name));
    EXPECT_THAT(listenerTexts(), Contains("name: " + name));
    EXPECT_THAT(click(device), ElementsAreArray(confirmed(Bus::LocalUI)));
}

// Longer than uinput allows, but the name of a set of GPIO keys is up to its board.
TEST_F(DeviceTest, ANameOf255CharactersArrivesWhole)
{
#ifdef __arm__
    const char *const device = "gpio-keys-named";
#else
    const char *const device = "PRP0001:00";
#endif
    const DriverBinding keys("platform/drivers/gpio-keys", device);
    const std::string name(255, 'n');
    const auto devices = start();
    EXPECT_THAT(devices->calls, ElementsAre("add /dev/input/event0 " + name));
    EXPECT_THAT(log.texts(),
                IsSupersetOf({"Dev /dev/input/event0: " + name, "name: " + name,
                              std::string("bustype: 25")}));
}

TEST_F(DeviceTest, KeysAloneLeaveTheSwitchListenerInert)
{
    UinputDevice device({"panel", BUS_HOST, {KEY_OK}, {}});
    const auto devices = start();
    EXPECT_THAT(listenerTexts(),
                ElementsAre("Event device /dev/input/event0 ready", "bustype: 25", "name: panel",
                            "Event device /dev/input/event0 does not support EV_SW"));
    EXPECT_THAT(log.texts(log4cplus::WARN_LOG_LEVEL), IsEmpty());
    EXPECT_THAT(click(device), ElementsAreArray(confirmed(Bus::LocalUI)));
}

TEST_F(DeviceTest, SwitchesAloneLeaveTheKeyListenerInert)
{
    UinputDevice device({"jacks", BUS_HOST, {}, {SW_LINEIN_INSERT}});
    const auto devices = start();
    EXPECT_THAT(listenerTexts(),
                ElementsAre("Event device /dev/input/event0 does not support EV_KEY",
                            "Event device /dev/input/event0 ready", "bustype: 25", "name: jacks"));
    EXPECT_THAT(log.texts(log4cplus::WARN_LOG_LEVEL),
                ElementsAre("Event device /dev/input/event0 does not support EV_KEY"));
    device.set(SW_LINEIN_INSERT, true);
    device.set(SW_LINEIN_INSERT, false);
    EXPECT_THAT(waitForEvents(2),
                ElementsAre(text(InputEvent::SWLineIn, InputEvent::SwitchEnabled, Bus::LocalUI),
                            text(InputEvent::SWLineIn, InputEvent::SwitchDisabled, Bus::LocalUI)));
}

TEST_F(DeviceTest, BothKindsAreReadSideBySide)
{
    UinputDevice device({"panel", BUS_HOST, {KEY_OK}, {SW_LINEIN_INSERT}});
    const auto devices = start();
    EXPECT_THAT(listenerTexts(),
                ElementsAre("Event device /dev/input/event0 ready", "bustype: 25", "name: panel",
                            "Event device /dev/input/event0 ready", "bustype: 25", "name: panel"));
    EXPECT_THAT(click(device), ElementsAreArray(confirmed(Bus::LocalUI)));
    device.set(SW_LINEIN_INSERT, true);
    EXPECT_THAT(waitForEvents(1),
                ElementsAre(text(InputEvent::SWLineIn, InputEvent::SwitchEnabled, Bus::LocalUI)));
}

TEST_F(DeviceTest, NeitherKindLeavesBothListenersInert)
{
    const UinputDevice device({"light", BUS_HOST, {}, {}});
    const auto devices = start();
    EXPECT_THAT(devices->calls, ElementsAre("add /dev/input/event0 light"));
    EXPECT_THAT(listenerTexts(),
                ElementsAre("Event device /dev/input/event0 does not support EV_KEY",
                            "Event device /dev/input/event0 does not support EV_SW"));
}

TEST_F(DeviceTest, ASwitchSetBeforeTheStartIsReadBack)
{
    UinputDevice device({"jacks", BUS_HOST, {}, {SW_LID, SW_LINEIN_INSERT}});
    device.set(SW_LINEIN_INSERT, true);
    Devices devices;
    devices.onAdd = [&devices](const QString &node, const QString &name) {
        auto *switches = new BasicSwInputHandler(name);
        switches->registerSwitch(SW_LID, InputEvent::SWLineOut);
        switches->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
        devices.addSwitchHandler(node, switches, QString());
        switches->getInputStatus();
    };
    ASSERT_TRUE(waitFor([&] { return !devices.calls.empty(); }));
    EXPECT_THAT(events.take(),
                ElementsAre(text(InputEvent::SWLineOut, InputEvent::SwitchDisabled, Bus::LocalUI),
                            text(InputEvent::SWLineIn, InputEvent::SwitchEnabled, Bus::LocalUI)));
    EXPECT_THAT(log.texts(),
                IsSupersetOf({"Device: jacks; id: ; command [cmd=SWLineOut, state=SwitchDisabled]",
                              "Device: jacks; id: ; command [cmd=SWLineIn, state=SwitchEnabled]"}));
    // None of this arrives a second time as a record.
    device.set(SW_LID, true);
    EXPECT_THAT(waitForEvents(1),
                ElementsAre(text(InputEvent::SWLineOut, InputEvent::SwitchEnabled, Bus::LocalUI)));
}

TEST_F(DeviceTest, AKeyHeldAtTheQuestionIsReportedBelowCode32Only)
{
    UinputDevice device({"panel", BUS_HOST, {KEY_2, KEY_VOLUMEUP}, {}});
    device.press(KEY_2);
    device.press(KEY_VOLUMEUP);
    RecordingHandler handler;
    LinuxInputListener listener(&handler, first, LinuxInputListener::Key);
    listener.getInputStatus();
    EXPECT_THAT(handler.take(), ElementsAre("1/3=1@0"));
    device.release(KEY_2);
    device.release(KEY_VOLUMEUP);
    ASSERT_TRUE(waitFor(
        [&] { return testing::Matches(Contains(HasSubstr("1/115=0@")))(handler.batches); }));
    handler.take();
    listener.getInputStatus();
    EXPECT_THAT(handler.batches, IsEmpty());
}

TEST_F(DeviceTest, AKeyHeldAtTheQuestionIsPublished)
{
    UinputDevice device({"panel", BUS_HOST, {KEY_2, KEY_OK}, {}});
    device.press(KEY_2);
    Devices devices;
    BasicKeyInputHandler *keys = nullptr;
    devices.onAdd = [&](const QString &node, const QString &name) {
        keys = new BasicKeyInputHandler(name);
        keys->registerKey(KEY_2, InputEvent::Number2, true);
        devices.addKeyHandler(node, keys, QString());
    };
    ASSERT_TRUE(waitFor([&] { return keys != nullptr; }));
    keys->listener()->getInputStatus();
    EXPECT_THAT(events.take(),
                ElementsAre(text(InputEvent::Number2, InputEvent::KeyPressed, Bus::LocalUI)));
    device.release(KEY_2);
    EXPECT_THAT(waitForEvents(1),
                ElementsAre(text(InputEvent::Number2, InputEvent::KeyReleased, Bus::LocalUI)));
}

TEST_F(DeviceTest, ARecordIsStampedByTheWallClock)
{
    UinputDevice device({"panel", BUS_HOST, {KEY_OK}, {}});
    RecordingHandler handler;
    const LinuxInputListener listener(&handler, first, LinuxInputListener::Key);
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    device.press(KEY_OK);
    ASSERT_TRUE(waitFor([&] { return !handler.batches.empty(); }));
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    const std::string batch = handler.batches.front();
    const qint64 stamp = std::stoll(batch.substr(batch.find('@') + 1));
    EXPECT_GE(stamp, before);
    EXPECT_LE(stamp, after);
    EXPECT_EQ(batch, "1/352=1@" + std::to_string(stamp) + " 0/0=0@" + std::to_string(stamp));
}

} // namespace
