#include "DriverBinding.h"
#include "EmulatorMonitor.h"
#include "GuestTest.h"
#include "RecordingHandler.h"

#include <QElapsedTimer>
#include <QFile>

#include <memory>

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using Bus = InputEvent::Bus;

const char *const keyboardName = "QEMU QEMU USB Keyboard";

/// The power button of the emulated board.
struct PowerButton
{
#ifdef __arm__
    static constexpr const char *driver = "platform/drivers/gpio-keys";
    static constexpr const char *device = "gpio-keys";
    static constexpr const char *name = "gpio-keys";
#else
    static constexpr const char *driver = "acpi/drivers/button";
    static constexpr const char *device = "LNXPWRBN:00";
    static constexpr const char *name = "Power Button";
#endif
};

class HardwareTest : public GuestTest
{
protected:
    void startWith(const std::function<void(BasicKeyInputHandler *)> &registerKeys)
    {
        devices = std::make_unique<Devices>();
        devices->onAdd = [this, registerKeys](const QString &node, const QString &name) {
            auto *keys = new BasicKeyInputHandler(name);
            devices->addKeyHandler(node, keys, QString());
            registerKeys(keys);
        };
        ASSERT_TRUE(waitFor([this] { return !devices->calls.empty(); }));
    }

    std::unique_ptr<Devices> devices;
};

TEST_F(HardwareTest, AUsbKeyboardTypesOnTheBusUsb)
{
    EmulatorMonitor monitor;
    monitor.plugKeyboard();
    startWith([](BasicKeyInputHandler *keys) {
        keys->registerKey(KEY_A, InputEvent::CharA, true);
        keys->registerKey(KEY_ENTER, InputEvent::Submit, false);
    });
    EXPECT_THAT(devices->calls, ElementsAre(std::string("add /dev/input/event0 ") + keyboardName));
    EXPECT_THAT(log.texts(),
                IsSupersetOf({std::string("bustype: 3"), std::string("name: ") + keyboardName}));
    monitor.key("a", true);
    EXPECT_THAT(waitForEvents(1),
                ElementsAre(text(InputEvent::CharA, InputEvent::KeyPressed, Bus::USB)));
    monitor.key("a", false);
    EXPECT_THAT(waitForEvents(1),
                ElementsAre(text(InputEvent::CharA, InputEvent::KeyReleased, Bus::USB)));
    monitor.key("ret", true);
    monitor.key("ret", false);
    EXPECT_THAT(waitForEvents(2),
                ElementsAre(text(InputEvent::Submit, InputEvent::KeyPressed, Bus::USB),
                            text(InputEvent::Submit, InputEvent::KeyReleased, Bus::USB)));
    // Such a keyboard sends a scan code before each key; it is read and ignored.
    EXPECT_THAT(log.texts(), Contains(HasSubstr(" type: 4 code:4 value:")));
    EXPECT_THAT(log.texts(log4cplus::WARN_LOG_LEVEL), IsEmpty());
}

TEST_F(HardwareTest, ThePowerButtonIsPartOfTheProduct)
{
    const DriverBinding button(PowerButton::driver, PowerButton::device);
    EmulatorMonitor monitor;
    startWith([](BasicKeyInputHandler *keys) {
        // Registered for this bus only.
        keys->registerKey(KEY_POWER, Bus::LocalUI, InputEvent::Power, true);
    });
    EXPECT_THAT(devices->calls,
                ElementsAre(std::string("add /dev/input/event0 ") + PowerButton::name));
    EXPECT_THAT(
        log.texts(),
        IsSupersetOf({std::string("bustype: 25"), std::string("name: ") + PowerButton::name}));
    monitor.pressPowerButton();
    EXPECT_THAT(waitForEvents(2),
                ElementsAre(text(InputEvent::Power, InputEvent::KeyPressed, Bus::LocalUI),
                            text(InputEvent::Power, InputEvent::KeyReleased, Bus::LocalUI)));
}

TEST_F(HardwareTest, TheKernelRepeatsNothingOnceTheNodeIsOpen)
{
    EmulatorMonitor monitor;
    monitor.plugKeyboard();
    const QString node = QStringLiteral("/dev/input/event0");
    ASSERT_TRUE(waitFor([&] { return QFile(node).open(QIODevice::ReadOnly); }));

    // Without the library, the kernel does repeat this keyboard's keys.
    {
        QFile bare(node);
        ASSERT_TRUE(bare.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
        monitor.key("a", true);
        input_event record = {};
        do {
            ASSERT_EQ(bare.read(reinterpret_cast<char *>(&record), sizeof(record)),
                      static_cast<qint64>(sizeof(record)));
        } while (record.type != EV_KEY || record.value != 2);
        monitor.key("a", false);
        do {
            ASSERT_EQ(bare.read(reinterpret_cast<char *>(&record), sizeof(record)),
                      static_cast<qint64>(sizeof(record)));
        } while (record.type != EV_KEY || record.value != 0);
    }

    RecordingHandler handler;
    const LinuxInputListener listener(&handler, node, LinuxInputListener::Key);
    monitor.key("a", true);
    ASSERT_TRUE(waitFor([&] { return !handler.batches.empty(); }));
    // The kernel announces before the first key that repeat is off.
    EXPECT_THAT(handler.batches.front(), AllOf(HasSubstr("20/0=0@"), HasSubstr("20/1=0@")));
    // Repeat would start after a quarter of a second.
    QElapsedTimer held;
    held.start();
    ASSERT_TRUE(waitFor([&] { return held.elapsed() >= 2000; }));
    monitor.key("a", false);
    ASSERT_TRUE(
        waitFor([&] { return handler.batches.back().find("1/30=0@") != std::string::npos; }));
    EXPECT_THAT(handler.batches, Not(Contains(HasSubstr("1/30=2@"))));
}

} // namespace
