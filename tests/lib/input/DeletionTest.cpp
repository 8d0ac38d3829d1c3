#include "BasicInputHandler.h"
#include "KeyProcessing.h"

#include "Devices.h"
#include "EventRecorder.h"
#include "InputSubsystem.h"
#include "RecordingHandler.h"
#include "VirtualClock.h"

#include <QFile>
#include <QFileSystemWatcher>

#include <gmock/gmock.h>

#include <memory>

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Vorn::Sim::DeviceDescription;

const QString node = QStringLiteral("/dev/input/event0");

/// A product's key handler that reacts to its invalidation.
class InvalidatedKeys : public BasicKeyInputHandler
{
public:
    using BasicKeyInputHandler::BasicKeyInputHandler;

    void invalidate() override
    {
        BasicKeyInputHandler::invalidate();
        if (const auto react = std::exchange(onInvalidate, {}))
            react();
    }

    std::function<void()> onInvalidate;
};

/// Whatever the library calls may delete the object that it is called from, as a product does that
/// shuts down, or gives up a device, from inside a slot.
class Deletion : public testing::Test
{
protected:
    Deletion()
    {
        subsystem.plug(0,
                       DeviceDescription::keyboard("panel", BUS_HOST, {KEY_A, KEY_B})
                           .withSwitches({SW_LID, SW_LINEIN_INSERT}));
    }

    /// Makes a device manager whose handlers are registered for each device.
    void start()
    {
        devices = new Devices;
        devices->onAdd = [this](const QString &path, const QString &name) {
            keys = new InvalidatedKeys(name);
            keys->registerKey(KEY_A, InputEvent::VolumeUp, isImmediate);
            keys->registerKey(KEY_B, InputEvent::VolumeDown, isImmediate);
            for (int code : {KEY_A, KEY_B})
                keys->enableLongPress(code, true, {500, 100});
            keys->registerDoubleKey(KEY_A, KEY_B, InputEvent::FactoryReset);
            devices->addKeyHandler(path, keys, QString());
            switches = new BasicSwInputHandler(name);
            switches->registerSwitch(SW_LID, InputEvent::Sleep);
            switches->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
            devices->addSwitchHandler(path, switches, QString());
        };
        clock.settle();
        ASSERT_THAT(devices->take(), SizeIs(1));
    }

    /// Deletes the device manager with all that it owns.
    void shutDown() { delete std::exchange(devices, nullptr); }

    void shutDownOn(InputEvent::State state)
    {
        events.onEvent([this, state](const InputEvent &event) {
            if (event.state() == state)
                shutDown();
        });
    }

    void report(const std::vector<std::pair<int, int>> &keyValues)
    {
        for (const auto &[code, value] : keyValues)
            subsystem.node(0).report(EV_KEY, code, value);
        subsystem.node(0).sync();
        clock.settle();
    }

    ~Deletion() override { delete devices; }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    EventRecorder events;
    bool isImmediate = true;
    Devices *devices = nullptr;
    InvalidatedKeys *keys = nullptr;
    BasicSwInputHandler *switches = nullptr;
};

TEST_F(Deletion, OfAListenerByTheReceiverOfItsPositions)
{
    // Held keys are told of up to code 31.
    subsystem.unplug(0);
    subsystem.plug(0,
                   DeviceDescription::keyboard("panel", BUS_HOST, {KEY_1, KEY_2})
                       .withSwitches({SW_LID, SW_LINEIN_INSERT}));
    subsystem.node(0).press(KEY_1);
    subsystem.node(0).press(KEY_2);
    for (auto type : {LinuxInputListener::Switch, LinuxInputListener::Key}) {
        RecordingHandler receiver;
        auto *listener = new LinuxInputListener(&receiver, node, type);
        receiver.onBatch = [&] { delete listener; };
        listener->getInputStatus();
        EXPECT_THAT(receiver.batches, SizeIs(1));
    }
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(Deletion, OfAListenerByTheReceiverThatItLeaves)
{
    InvalidatedKeys receiver(QStringLiteral("keys"));
    auto *listener = new LinuxInputListener(&receiver, node, LinuxInputListener::Key);
    receiver.onInvalidate = [&] { delete listener; };
    RecordingHandler next;
    listener->setHandler(&next);
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(Deletion, OfADoubleKeyDetectorByTheReceiverOfEachOfItsSignals)
{
    for (int last : {1, 2, 3, 4}) {
        SCOPED_TRACE(last);
        auto *detector = new DoubleKeyDetect;
        int signalCount = 0;
        QObject::connect(detector, &DoubleKeyDetect::keyDoubleDetect, [&] {
            if (++signalCount == last)
                delete std::exchange(detector, nullptr);
        });
        for (const input_event &event :
             {keyRecord(KEY_A, 1), keyRecord(KEY_B, 1), keyRecord(KEY_A, 0), keyRecord(KEY_B, 0)})
        {
            if (detector)
                detector->checkDoubleKeyDetect(event);
        }
        EXPECT_EQ(signalCount, last);
    }
}

TEST_F(Deletion, OfALongPressDetectorByTheReceiverOfItsSignal)
{
    auto *detector = new LongPressDetect;
    int signalCount = 0;
    QObject::connect(detector, &LongPressDetect::keyLongPress, [&] {
        ++signalCount;
        delete detector;
    });
    for (int code : {KEY_A, KEY_B}) {
        detector->registerEvent(code, true, {100});
        input_event press = keyRecord(code, 1);
        detector->process(press);
    }
    clock.advance(1s);
    EXPECT_EQ(signalCount, 1);
}

TEST_F(Deletion, OfEverythingByTheReceiverOfAPress)
{
    start();
    shutDownOn(InputEvent::KeyPressed);
    report({{KEY_A, 1}, {KEY_B, 1}});
    EXPECT_THAT(events.texts(), ElementsAre("[cmd=VolumeUp, state=KeyPressed, bus=LocalUI]"));
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(Deletion, OfEverythingByTheReceiverOfARelease)
{
    start();
    shutDownOn(InputEvent::KeyReleased);
    report({{KEY_A, 1}, {KEY_A, 0}, {KEY_B, 1}});
    EXPECT_THAT(events.texts(),
                ElementsAre("[cmd=VolumeUp, state=KeyPressed, bus=LocalUI]",
                            "[cmd=VolumeUp, state=KeyReleased, bus=LocalUI]"));
}

TEST_F(Deletion, BetweenThePressAndTheReleaseOfAClickLosesNothing)
{
    isImmediate = false;
    start();
    shutDownOn(InputEvent::KeyPressed);
    report({{KEY_A, 1}, {KEY_A, 0}});
    EXPECT_THAT(events.texts(),
                ElementsAre("[cmd=VolumeUp, state=KeyPressed, bus=LocalUI]",
                            "[cmd=VolumeUp, state=KeyReleased, bus=LocalUI]"));
}

TEST_F(Deletion, OfEverythingWhenAChordWithdrawsItsFirstKey)
{
    start();
    report({{KEY_A, 1}});
    shutDownOn(InputEvent::KeyReleased);
    report({{KEY_B, 1}});
    EXPECT_THAT(events.texts(),
                ElementsAre("[cmd=VolumeUp, state=KeyPressed, bus=LocalUI]",
                            "[cmd=VolumeUp, state=KeyReleased, bus=LocalUI]"));
}

TEST_F(Deletion, OfEverythingByTheReceiverOfALongPress)
{
    start();
    subsystem.node(0).press(KEY_A);
    subsystem.node(0).press(KEY_B);
    clock.settle();
    events.take();
    shutDownOn(InputEvent::KeyLongPress);
    clock.advance(5s);
    EXPECT_THAT(events.texts(), SizeIs(1));
}

TEST_F(Deletion, OfEverythingByTheReceiverOfASwitch)
{
    start();
    shutDownOn(InputEvent::SwitchEnabled);
    subsystem.node(0).report(EV_SW, SW_LID, 1);
    subsystem.node(0).report(EV_SW, SW_LINEIN_INSERT, 1);
    subsystem.node(0).sync();
    clock.settle();
    EXPECT_THAT(events.texts(), ElementsAre("[cmd=Sleep, state=SwitchEnabled, bus=LocalUI]"));
}

TEST_F(Deletion, OfEverythingByTheReceiverOfAPosition)
{
    start();
    shutDownOn(InputEvent::SwitchDisabled);
    switches->getInputStatus();
    EXPECT_THAT(events.texts(), ElementsAre("[cmd=Sleep, state=SwitchDisabled, bus=LocalUI]"));
}

TEST_F(Deletion, OfOneDeviceByTheReceiverOfItsEvent)
{
    start();
    events.onEvent([this](const InputEvent &) { devices->removeDevice(node); });
    report({{KEY_A, 1}, {KEY_B, 1}});
    EXPECT_THAT(events.texts(), SizeIs(1));
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(Deletion, OfTheManagerFromInsideAddDeviceInTheFirstPass)
{
    devices = new Devices;
    devices->onAdd = [this](const QString &, const QString &) { shutDown(); };
    clock.settle();
    EXPECT_EQ(devices, nullptr);
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(Deletion, OfTheManagerFromInsideAddDeviceOfALaterOne)
{
    start();
    devices->onAdd = [this](const QString &, const QString &) { shutDown(); };
    // Two changes arrive at once, and the watcher still has the second in hand.
    devices->findChild<QFileSystemWatcher *>()->addPath(QStringLiteral("/dev/"));
    subsystem.plug(1, DeviceDescription::keyboard("remote", BUS_USB, {KEY_A}));
    QFile other(subsystem.folder() + QStringLiteral("/other"));
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    clock.settle();
    EXPECT_EQ(devices, nullptr);
    clock.advance(1s);
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

class LeavingDevices : public Devices
{
public:
    void removeDevice(const QString &device) override
    {
        Devices::removeDevice(device);
        onRemoved();
    }

    std::function<void()> onRemoved;
};

TEST_F(Deletion, OfTheManagerFromInsideRemoveDevice)
{
    subsystem.plug(1, DeviceDescription::keyboard("remote", BUS_USB, {KEY_A}));
    auto *leaving = new LeavingDevices;
    devices = leaving;
    leaving->onRemoved = [this] { shutDown(); };
    clock.settle();
    subsystem.unplug(0);
    subsystem.unplug(1);
    clock.settle();
    EXPECT_EQ(devices, nullptr);
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(Deletion, OfTheManagerByAHandlerThatIsInvalidated)
{
    subsystem.plug(1, DeviceDescription::keyboard("remote", BUS_USB, {KEY_A}));
    devices = new Devices;
    clock.settle();
    auto *first = new InvalidatedKeys(QStringLiteral("panel"));
    first->onInvalidate = [this] { shutDown(); };
    devices->addKeyHandler(node, first, QStringLiteral("browse"));
    devices->addKeyHandler(QStringLiteral("/dev/input/event1"),
                           new InvalidatedKeys(QStringLiteral("remote")), QStringLiteral("browse"));
    devices->selectHandler(QStringLiteral("browse"));
    devices->selectHandler(QStringLiteral("text"));
    EXPECT_EQ(devices, nullptr);
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(Deletion, OfAnotherDeviceByAHandlerThatIsInvalidated)
{
    subsystem.plug(1, DeviceDescription::keyboard("remote", BUS_USB, {KEY_A}));
    const QString other = QStringLiteral("/dev/input/event1");
    Devices manager;
    clock.settle();
    auto *first = new InvalidatedKeys(QStringLiteral("panel"));
    manager.addKeyHandler(node, first, QStringLiteral("browse"));
    manager.addKeyHandler(other, new InvalidatedKeys(QStringLiteral("remote")),
                          QStringLiteral("browse"));
    manager.selectHandler(QStringLiteral("browse"));
    first->onInvalidate = [&] { manager.removeDevice(other); };
    manager.selectHandler(QString());
    EXPECT_EQ(subsystem.node(1).openDescriptors(), 0);
    EXPECT_EQ(subsystem.node(0).openDescriptors(), 2);
}

TEST_F(Deletion, OfAHandlerMayBeFollowedBySelections)
{
    start();
    for (QObject *handler : {static_cast<QObject *>(keys), static_cast<QObject *>(switches)}) {
        QObject::connect(handler, &QObject::destroyed, [this] {
            devices->selectHandler(QStringLiteral("text"));
            devices->selectHandler(QString());
        });
    }
    devices->removeDevice(node);
    EXPECT_EQ(subsystem.openDescriptors(), 0);
    // The same at the end of the manager.
    subsystem.unplug(0);
    clock.settle();
    subsystem.plug(0, DeviceDescription::keyboard("panel", BUS_HOST, {KEY_A}));
    clock.settle();
    QObject::connect(keys, &QObject::destroyed,
                     [manager = devices] { manager->selectHandler(QStringLiteral("text")); });
    shutDown();
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(Deletion, OfTheManagerMayFollowThatOfAHandler)
{
    start();
    QObject::connect(keys, &QObject::destroyed, [this] { shutDown(); });
    devices->removeDevice(node);
    EXPECT_EQ(devices, nullptr);
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

} // namespace
