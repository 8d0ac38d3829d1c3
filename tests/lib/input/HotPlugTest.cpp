#include "BasicInputHandler.h"

#include "Devices.h"
#include "EventRecorder.h"
#include "InputSubsystem.h"
#include "LogRecorder.h"
#include "VirtualClock.h"

#include <QFile>
#include <QFileSystemWatcher>
#include <QPointer>

#include <gmock/gmock.h>

#include <fcntl.h>

#include <cerrno>
#include <memory>

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Vorn::Sim::DeviceDescription;
using Vorn::Sim::SystemCall;

const char *const sourceFile = "src/lib/input/BasicInputHandler.cpp";

LogLine addedLine(int number)
{
    return {"BasicInputHandler", log4cplus::DEBUG_LOG_LEVEL,
            " ---> added '/dev/input/event" + std::to_string(number) + "'", sourceFile,
            "void BasicInputHandler::on_inputWatcher_changed(const QString&)"};
}

LogLine foundLine(int number, const std::string &name)
{
    return {"BasicInputHandler", log4cplus::TRACE_LOG_LEVEL,
            "Dev /dev/input/event" + std::to_string(number) + ": " + name, sourceFile,
            "QMap<QString, QString> BasicInputHandler::getDeviceNameMap() const"};
}

LogLine removingLine(int number)
{
    return {"BasicInputHandler", log4cplus::INFO_LOG_LEVEL,
            "Removing /dev/input/event" + std::to_string(number), sourceFile,
            "virtual void BasicInputHandler::removeDevice(const QString&)"};
}

class HotPlugTest : public testing::Test
{
protected:
    void plug(int number, const QByteArray &name = "keys")
    {
        subsystem.plug(number, DeviceDescription::keyboard(name, BUS_HOST, {KEY_A}));
    }

    void start()
    {
        devices = std::make_unique<Devices>();
        clock.settle();
    }

    /// Starts with a handler for an immediate key with a repeating long press.
    void startWithATimedKey()
    {
        devices = std::make_unique<Devices>();
        devices->onAdd = [this](const QString &path, const QString &) {
            auto *keys = new BasicKeyInputHandler(QStringLiteral("keys"));
            devices->addKeyHandler(path, keys, QString());
            keys->registerKey(KEY_A, InputEvent::VolumeUp, true);
            keys->enableLongPress(KEY_A, true, {500, 100});
        };
        clock.settle();
    }

    QStringList watched() const
    {
        return devices->findChild<QFileSystemWatcher *>()->directories();
    }

    /// The device manager's own log lines at a level.
    std::vector<LogLine> lines(const LogRecorder &log, int level) const
    {
        std::vector<LogLine> result;
        for (const LogLine &line : log.lines(level)) {
            if (line.logger == "BasicInputHandler")
                result.push_back(line);
        }
        return result;
    }

    int opens(const QByteArray &path) const
    {
        int count = 0;
        for (const SystemCall &call : subsystem.systemCalls(path))
            count += call.kind == SystemCall::Kind::Open ? 1 : 0;
        return count;
    }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    std::unique_ptr<Devices> devices;
};

TEST_F(HotPlugTest, NothingIsWatchedOrOpenedBeforeTheEventLoopRuns)
{
    plug(0);
    devices = std::make_unique<Devices>();
    EXPECT_THAT(watched(), IsEmpty());
    EXPECT_THAT(subsystem.systemCalls(), IsEmpty());
    EXPECT_THAT(devices->calls, IsEmpty());
}

TEST_F(HotPlugTest, TheFirstPassFindsWhatIsThere)
{
    plug(2, "remote");
    plug(0, "front-panel");
    LogRecorder log;
    start();
    EXPECT_THAT(lines(log, log4cplus::DEBUG_LOG_LEVEL), ElementsAre(addedLine(0), addedLine(2)));
    EXPECT_THAT(devices->take(),
                ElementsAre("add /dev/input/event0 front-panel", "add /dev/input/event2 remote"));
    EXPECT_THAT(watched(), ElementsAre("/dev/input/"));
    // The scan and two listeners opened each node; the switch listeners found no switches.
    EXPECT_EQ(opens("/dev/input/event0"), 3);
    EXPECT_EQ(opens("/dev/input/event2"), 3);
    EXPECT_EQ(subsystem.node(0).openDescriptors(), 1);
    EXPECT_EQ(subsystem.node(2).openDescriptors(), 1);
}

TEST_F(HotPlugTest, ADeviceHasItsTwoListenersBeforeItIsAdded)
{
    devices = std::make_unique<Devices>();
    int listeners = 0;
    devices->onAdd = [&](const QString &path, const QString &) {
        auto *keys = new BasicKeyInputHandler(QStringLiteral("keys"));
        auto *switches = new BasicSwInputHandler(QStringLiteral("switches"));
        devices->addKeyHandler(path, keys, QString());
        devices->addSwitchHandler(path, switches, QString());
        listeners += keys->listener() ? 1 : 0;
        listeners += switches->listener() ? 1 : 0;
    };
    plug(0);
    clock.settle();
    EXPECT_EQ(listeners, 2);
}

TEST_F(HotPlugTest, OnlyTheFirstTenNodesAreLookedAt)
{
    for (int number : {9, 10, 12, 99})
        plug(number);
    start();
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event9 keys"));
    EXPECT_EQ(opens("/dev/input/event10"), 0);
    EXPECT_EQ(opens("/dev/input/event12"), 0);
    subsystem.unplug(10);
    plug(10);
    clock.settle();
    EXPECT_THAT(devices->calls, IsEmpty());
    for (int number = 0; number <= 9; ++number)
        EXPECT_GE(opens("/dev/input/event" + QByteArray::number(number)), 1) << number;
}

TEST_F(HotPlugTest, AScanAsksEachNodeForItsNameAndClosesIt)
{
    plug(1, "name");
    const Devices other;
    LogRecorder log;
    EXPECT_EQ(
        other.getDeviceNameMap(),
        (QMap<QString, QString>{{QStringLiteral("/dev/input/event1"), QStringLiteral("name")}}));
    EXPECT_THAT(log.lines(), ElementsAre(foundLine(1, "name")));
    const auto calls = subsystem.systemCalls("/dev/input/event1");
    ASSERT_EQ(calls.size(), 3);
    EXPECT_EQ(calls[0].kind, SystemCall::Kind::Open);
    EXPECT_EQ(calls[0].openFlags & O_ACCMODE, O_RDONLY);
    EXPECT_EQ(calls[1].request, 0x80FF4506UL);
    EXPECT_EQ(calls[1].size, 255U);
    EXPECT_EQ(calls[2].kind, SystemCall::Kind::Close);
    for (int number = 0; number <= 9; ++number)
        EXPECT_EQ(opens("/dev/input/event" + QByteArray::number(number)), 1) << number;
}

/// Leaves no zero in the memory that the next call's variables will occupy.
[[gnu::noinline]] void fillStack()
{
    volatile char bytes[8192];
    for (volatile char &byte : bytes)
        byte = 'z';
}

TEST_F(HotPlugTest, NamesAreUtf8AndOfAnyLength)
{
    plug(0, "Gerät");
    plug(1, QByteArray(255, 'x'));
    plug(2, QByteArray(300, 'y'));
    plug(3, "short");
    plug(4, "");
    const Devices other;
    fillStack();
    const auto names = other.getDeviceNameMap();
    EXPECT_EQ(names.value(QStringLiteral("/dev/input/event0")), QString::fromUtf8("Gerät"));
    EXPECT_EQ(names.value(QStringLiteral("/dev/input/event1")), QString(255, QLatin1Char('x')));
    EXPECT_EQ(names.value(QStringLiteral("/dev/input/event2")), QString(255, QLatin1Char('y')));
    EXPECT_EQ(names.value(QStringLiteral("/dev/input/event3")), "short");
    ASSERT_TRUE(names.contains(QStringLiteral("/dev/input/event4")));
    EXPECT_EQ(names.value(QStringLiteral("/dev/input/event4")), "");
}

TEST_F(HotPlugTest, NodesThatCannotBeOpenedOrNamedAreSilentlyAbsent)
{
    plug(0);
    plug(1);
    plug(2);
    subsystem.node(0).failOpen(EACCES, Vorn::Sim::InputNode::Forever);
    subsystem.node(1).failIoctl(EVIOCGNAME(0), EIO, Vorn::Sim::InputNode::Forever);
    LogRecorder log;
    start();
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event2 keys"));
    EXPECT_THAT(lines(log, log4cplus::DEBUG_LOG_LEVEL), ElementsAre(addedLine(2)));
    EXPECT_THAT(lines(log, log4cplus::ERROR_LOG_LEVEL), IsEmpty());
    EXPECT_EQ(subsystem.node(1).openDescriptors(), 0);
}

TEST_F(HotPlugTest, ADeviceThatArrivesIsAddedOnce)
{
    start();
    EXPECT_THAT(devices->calls, IsEmpty());
    plug(3, "late");
    clock.settle();
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event3 late"));
    plug(4, "later");
    clock.settle();
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event4 later"));
}

TEST_F(HotPlugTest, ADeviceThatIsGoneIsRemovedOnceWithItsListeners)
{
    plug(0);
    plug(1);
    start();
    devices->take();
    LogRecorder log(log4cplus::DEBUG_LOG_LEVEL);
    subsystem.unplug(1);
    clock.settle();
    EXPECT_THAT(devices->take(), ElementsAre("remove /dev/input/event1"));
    EXPECT_THAT(lines(log, log4cplus::INFO_LOG_LEVEL), ElementsAre(removingLine(1)));
    EXPECT_THAT(lines(log, log4cplus::DEBUG_LOG_LEVEL), IsEmpty());
    EXPECT_EQ(subsystem.node(1).openDescriptors(), 0);
    EXPECT_EQ(subsystem.node(0).openDescriptors(), 1);
    plug(5);
    clock.settle();
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event5 keys"));
}

TEST_F(HotPlugTest, ADeviceWithoutANameComesAndGoesLikeAnyOther)
{
    start();
    plug(0, "");
    clock.settle();
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event0 "));
    subsystem.unplug(0);
    clock.settle();
    EXPECT_THAT(devices->take(), ElementsAre("remove /dev/input/event0"));
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(HotPlugTest, PassesFromInsideAddDeviceAddEachDeviceOnce)
{
    // As when a product lets events in while it waits for something.
    const auto pass = [this] {
        QMetaObject::invokeMethod(devices.get(), "on_inputWatcher_changed",
                                  Q_ARG(QString, QStringLiteral("/dev/input/")));
    };
    devices = std::make_unique<Devices>();
    devices->onAdd = [&](const QString &, const QString &) { pass(); };
    plug(0);
    plug(1);
    clock.settle();
    EXPECT_THAT(devices->take(),
                ElementsAre("add /dev/input/event0 keys", "add /dev/input/event1 keys"));
    EXPECT_EQ(subsystem.openDescriptors(), 2);
    subsystem.unplug(0);
    subsystem.unplug(1);
    clock.settle();
    EXPECT_THAT(devices->take(),
                ElementsAre("remove /dev/input/event0", "remove /dev/input/event1"));
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(HotPlugTest, ADeviceThatGoesWhileItIsAddedIsRemovedAfterwards)
{
    devices = std::make_unique<Devices>();
    plug(0);
    devices->onAdd = [&](const QString &, const QString &) {
        subsystem.unplug(0);
        QMetaObject::invokeMethod(devices.get(), "on_inputWatcher_changed",
                                  Q_ARG(QString, QStringLiteral("/dev/input/")));
        EXPECT_THAT(devices->calls, ElementsAre("add /dev/input/event0 keys"));
    };
    clock.settle();
    EXPECT_THAT(devices->calls,
                ElementsAre("add /dev/input/event0 keys", "remove /dev/input/event0"));
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(HotPlugTest, APassFromInsideAddDeviceRemovesTheOthersThatWent)
{
    start();
    plug(1);
    clock.settle();
    devices->take();
    devices->onAdd = [&](const QString &, const QString &) {
        subsystem.unplug(0);
        subsystem.unplug(1);
        QMetaObject::invokeMethod(devices.get(), "on_inputWatcher_changed",
                                  Q_ARG(QString, QStringLiteral("/dev/input/")));
    };
    plug(0);
    clock.settle();
    EXPECT_THAT(devices->calls,
                ElementsAre("add /dev/input/event0 keys", "remove /dev/input/event1",
                            "remove /dev/input/event0"));
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(HotPlugTest, APassFromInsideAddDeviceLeavesTheRestToTheOneThatFoundIt)
{
    plug(0);
    plug(1);
    plug(2);
    devices = std::make_unique<Devices>();
    devices->onAdd = [&](const QString &path, const QString &) {
        if (!path.endsWith(QLatin1Char('0')))
            return;
        subsystem.unplug(2);
        QMetaObject::invokeMethod(devices.get(), "on_inputWatcher_changed",
                                  Q_ARG(QString, QStringLiteral("/dev/input/")));
    };
    clock.settle();
    // The third was found before it went, and goes with the next pass.
    EXPECT_THAT(devices->calls,
                ElementsAre("add /dev/input/event0 keys", "add /dev/input/event1 keys",
                            "add /dev/input/event2 keys", "remove /dev/input/event2"));
    EXPECT_EQ(subsystem.openDescriptors(), 2);
}

TEST_F(HotPlugTest, ADeviceThatComesBackIsNew)
{
    plug(0, "first");
    start();
    subsystem.unplug(0);
    clock.settle();
    plug(0, "second");
    clock.settle();
    EXPECT_THAT(devices->take(),
                ElementsAre("add /dev/input/event0 first", "remove /dev/input/event0",
                            "add /dev/input/event0 second"));
    EXPECT_EQ(subsystem.node(0).openDescriptors(), 1);
}

TEST_F(HotPlugTest, RemovalsComeBeforeAdditionsInOnePass)
{
    plug(5);
    plug(8);
    start();
    devices->take();
    plug(0);
    subsystem.unplug(8);
    plug(6);
    subsystem.unplug(5);
    clock.settle();
    EXPECT_THAT(devices->take(),
                ElementsAre("remove /dev/input/event5", "remove /dev/input/event8",
                            "add /dev/input/event0 keys", "add /dev/input/event6 keys"));
}

TEST_F(HotPlugTest, ADeviceReplacedBetweenTwoPassesKeepsItsName)
{
    plug(0, "old");
    start();
    devices->take();
    subsystem.replace(0, DeviceDescription::keyboard("new", BUS_USB, {KEY_A}));
    plug(1, "other");
    clock.settle();
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event1 other"));
}

TEST_F(HotPlugTest, AKnownDeviceThatNoLongerAnswersIsRemoved)
{
    plug(0);
    start();
    devices->take();
    subsystem.node(0).failIoctl(EVIOCGNAME(0), ENODEV, Vorn::Sim::InputNode::Forever);
    plug(1, "other");
    clock.settle();
    EXPECT_THAT(devices->take(),
                ElementsAre("remove /dev/input/event0", "add /dev/input/event1 other"));
    EXPECT_EQ(subsystem.node(0).openDescriptors(), 0);
}

TEST_F(HotPlugTest, ANodeWhosePermissionsAreSetLateIsFoundThen)
{
    start();
    subsystem.plug(0, DeviceDescription::keyboard("late", BUS_HOST, {KEY_A}).withMode(0));
    clock.settle();
    EXPECT_THAT(devices->calls, IsEmpty());
    EXPECT_GE(opens("/dev/input/event0"), 1);
    subsystem.setPermissions(0, 0640);
    clock.settle();
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event0 late"));
}

TEST_F(HotPlugTest, ANodeWhosePermissionsAreTakenAwayIsRemoved)
{
    plug(0);
    start();
    devices->take();
    subsystem.setPermissions(0, 0);
    clock.settle();
    EXPECT_THAT(devices->take(), ElementsAre("remove /dev/input/event0"));
}

TEST_F(HotPlugTest, WithoutTheDirectoryWaitsForIt)
{
    subsystem.removeInputDirectory();
    start();
    EXPECT_THAT(watched(), ElementsAre("/dev/"));
    EXPECT_THAT(subsystem.systemCalls(), IsEmpty());
    subsystem.createInputDirectory();
    clock.settle();
    EXPECT_THAT(watched(), ElementsAre("/dev/input/"));
    plug(0);
    clock.settle();
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event0 keys"));
}

TEST_F(HotPlugTest, AChangeElsewhereInDevDoesNothingWhileTheDirectoryIsMissing)
{
    subsystem.removeInputDirectory();
    start();
    LogRecorder log;
    subsystem.clearSystemCalls();
    QFile other(subsystem.folder() + QStringLiteral("/other"));
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    other.close();
    clock.settle();
    EXPECT_THAT(watched(), ElementsAre("/dev/"));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(subsystem.systemCalls(), IsEmpty());
}

TEST_F(HotPlugTest, AVanishedDirectoryLeavesTheDevicesInPlace)
{
    plug(0, "stays");
    plug(1, "goes");
    start();
    devices->take();
    subsystem.removeInputDirectory();
    clock.settle();
    EXPECT_THAT(devices->calls, IsEmpty());
    EXPECT_THAT(watched(), ElementsAre("/dev/"));
    EXPECT_EQ(subsystem.node(0).openDescriptors(), 1);
    subsystem.unplug(1);
    plug(2, "comes");
    clock.settle();
    EXPECT_THAT(devices->calls, IsEmpty());
    subsystem.createInputDirectory();
    clock.settle();
    EXPECT_THAT(devices->take(),
                ElementsAre("remove /dev/input/event1", "add /dev/input/event2 comes"));
    EXPECT_THAT(watched(), ElementsAre("/dev/input/"));
}

TEST_F(HotPlugTest, EveryPassSetsTheWatchAgain)
{
    start();
    // Even a pass not caused by a change of the directory.
    devices->findChild<QFileSystemWatcher *>()->addPath(QStringLiteral("/dev/"));
    QMetaObject::invokeMethod(devices.get(), "on_inputWatcher_changed",
                              Q_ARG(QString, QStringLiteral("/dev/")));
    EXPECT_THAT(watched(), ElementsAre("/dev/input/"));
}

TEST(HotPlugOnDevtmpfs, FollowsADirectoryThatComesAndGoesWithItsNodes)
{
    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem(Vorn::Sim::InputSubsystem::Directory::ComesAndGoes);
    Devices devices;
    clock.settle();
    const auto plug = [&](int number) {
        subsystem.plug(number, DeviceDescription::keyboard("keys", BUS_USB, {KEY_A}));
    };
    for (int round = 0; round < 5; ++round) {
        SCOPED_TRACE(round);
        plug(0);
        clock.settle();
        std::vector<std::string> expected = {"add /dev/input/event0 keys"};
        if (round > 0)
            expected.insert(expected.begin(), "remove /dev/input/event1");
        EXPECT_EQ(devices.take(), expected);
        plug(1);
        clock.settle();
        EXPECT_THAT(devices.take(), ElementsAre("add /dev/input/event1 keys"));
        subsystem.unplug(0);
        clock.settle();
        EXPECT_THAT(devices.take(), ElementsAre("remove /dev/input/event0"));
        // The directory vanishes with its last node, whose device stays known until it is back.
        subsystem.unplug(1);
        clock.settle();
        EXPECT_THAT(devices.take(), IsEmpty());
    }
}

TEST_F(HotPlugTest, RemovalDeletesHandlersThenListenersEachOnce)
{
    std::vector<std::string> sequence;
    const auto watch = [&](QObject *object, const std::string &name) {
        QObject::connect(object, &QObject::destroyed, [&, name] { sequence.push_back(name); });
    };
    devices = std::make_unique<Devices>();
    devices->onAdd = [&](const QString &path, const QString &) {
        for (const char *id : {"", "text"}) {
            auto *keys = new BasicKeyInputHandler(QStringLiteral("keys"));
            auto *switches = new BasicSwInputHandler(QStringLiteral("switches"));
            devices->addKeyHandler(path, keys, QString::fromLatin1(id));
            devices->addSwitchHandler(path, switches, QString::fromLatin1(id));
            watch(keys, std::string("keys ") + id);
            watch(switches, std::string("switches ") + id);
            if (*id) {
                watch(keys->listener(), "key listener");
                watch(switches->listener(), "switch listener");
            }
        }
    };
    plug(0);
    clock.settle();
    subsystem.unplug(0);
    clock.settle();
    EXPECT_THAT(sequence,
                ElementsAre("keys text", "keys ", "switches text", "switches ", "key listener",
                            "switch listener"));
    clock.advance(1s);
    EXPECT_EQ(sequence.size(), 6U);
}

TEST_F(HotPlugTest, RemovalOfAnUnknownDeviceIsHarmless)
{
    plug(0);
    start();
    devices->take();
    LogRecorder log;
    devices->removeDevice(QStringLiteral("/dev/input/event4"));
    EXPECT_THAT(log.lines(), ElementsAre(removingLine(4)));
    EXPECT_EQ(subsystem.node(0).openDescriptors(), 1);
}

TEST_F(HotPlugTest, AnUnplugEndsAHeldKeysLongPress)
{
    EventRecorder events;
    plug(0);
    startWithATimedKey();
    subsystem.node(0).press(KEY_A);
    clock.advance(400ms);
    subsystem.unplug(0);
    clock.advance(5s);
    ASSERT_THAT(events.texts(), testing::Not(IsEmpty()));
    EXPECT_EQ(events.texts().front(), "[cmd=VolumeUp, state=KeyPressed, bus=LocalUI]");
    for (const std::string &event : events.texts())
        EXPECT_THAT(event, testing::Not(testing::HasSubstr("KeyLongPress")));
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(HotPlugTest, AReleaseThatTheKernelLosesAtTheUnplugIsNotMadeUp)
{
    EventRecorder events;
    plug(0);
    startWithATimedKey();
    subsystem.node(0).press(KEY_A);
    clock.settle();
    subsystem.unplug(0, Vorn::Sim::InputSubsystem::Unread::Lost);
    clock.advance(5s);
    EXPECT_THAT(events.take(), ElementsAre("[cmd=VolumeUp, state=KeyPressed, bus=LocalUI]"));
    // The next device on the node starts afresh.
    plug(0);
    clock.settle();
    subsystem.node(0).press(KEY_A);
    subsystem.node(0).release(KEY_A);
    clock.settle();
    EXPECT_THAT(events.texts(),
                ElementsAre("[cmd=VolumeUp, state=KeyPressed, bus=LocalUI]",
                            "[cmd=VolumeUp, state=KeyReleased, bus=LocalUI]"));
}

TEST_F(HotPlugTest, AHundredArrivalsAndDeparturesLeaveNothingBehind)
{
    start();
    for (int round = 0; round < 100; ++round) {
        plug(round % 10);
        clock.settle();
        subsystem.unplug(round % 10);
        clock.settle();
    }
    EXPECT_THAT(devices->calls, SizeIs(200));
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(HotPlugTest, TheWholePathLeadsFromTheNodeToTheBus)
{
    EventRecorder events;
    devices = std::make_unique<Devices>();
    devices->onAdd = [&](const QString &path, const QString &name) {
        auto *keys = new BasicKeyInputHandler(name);
        devices->addKeyHandler(path, keys, QString());
        keys->registerKey(KEY_A, InputEvent::Bus::Hostlink, InputEvent::Power, false);
        keys->enableLongPress(KEY_A, InputEvent::Bus::Hostlink, false, {1000});
        auto *switches = new BasicSwInputHandler(name);
        switches->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
        devices->addSwitchHandler(path, switches, QString());
        switches->getInputStatus();
    };
    subsystem.plug(0,
                   DeviceDescription::keyboard("hostlink", BUS_USB, {KEY_A})
                       .withSwitches({SW_LINEIN_INSERT}, {SW_LINEIN_INSERT}));
    clock.settle();
    Vorn::Sim::InputNode &node = subsystem.node(0);
    node.press(KEY_A);
    clock.advance(100ms);
    node.release(KEY_A);
    clock.advance(100ms);
    node.press(KEY_A);
    clock.advance(1100ms);
    node.release(KEY_A);
    // Two listeners read keys and switches, in an order that is up to the event loop.
    clock.settle();
    node.setSwitch(SW_LINEIN_INSERT, false);
    clock.settle();
    EXPECT_THAT(events.texts(),
                ElementsAre("[cmd=SWLineIn, state=SwitchEnabled, bus=Hostlink]",
                            "[cmd=Power, state=KeyPressed, bus=Hostlink]",
                            "[cmd=Power, state=KeyReleased, bus=Hostlink]",
                            "[cmd=Power, state=KeyLongPress, bus=Hostlink]",
                            "[cmd=Power, state=KeyReleased, bus=Hostlink]",
                            "[cmd=SWLineIn, state=SwitchDisabled, bus=Hostlink]"));
}

} // namespace
