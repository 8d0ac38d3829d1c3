#include "BasicInputHandler.h"

#include "Devices.h"
#include "EventRecorder.h"
#include "InputSubsystem.h"
#include "LogRecorder.h"
#include "VirtualClock.h"

#include <QFileSystemWatcher>
#include <QPointer>

#include <gmock/gmock.h>

#include <cerrno>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Vorn::Sim::DeviceDescription;

const QString panelPath = QStringLiteral("/dev/input/event0");
const QString remotePath = QStringLiteral("/dev/input/event1");
const QString browse = QStringLiteral("browse");

/// A key handler that tells when the library calls it.
class ToldKeyHandler : public BasicKeyInputHandler
{
public:
    ToldKeyHandler()
        : BasicKeyInputHandler(QStringLiteral("keys"))
    { }

    void setId(const QString &newId) override
    {
        BasicKeyInputHandler::setId(newId);
        if (onSetId)
            onSetId();
    }
    void invalidate() override
    {
        BasicKeyInputHandler::invalidate();
        if (onInvalidate)
            onInvalidate();
    }

    std::function<void()> onSetId;
    std::function<void()> onInvalidate;
};

class ToldSwitchHandler : public BasicSwInputHandler
{
public:
    ToldSwitchHandler()
        : BasicSwInputHandler(QStringLiteral("switches"))
    { }

    void invalidate() override
    {
        if (onInvalidate)
            onInvalidate();
    }

    std::function<void()> onInvalidate;
};

/// In which order the device manager does what a product can see.
class DeviceOrder : public testing::Test
{
protected:
    void plug(int number)
    {
        subsystem.plug(number, DeviceDescription::keyboard("keys", BUS_HOST, {KEY_A}));
    }

    void start()
    {
        devices = std::make_unique<Devices>();
        clock.settle();
        devices->take();
    }

    ToldKeyHandler *keys(InputEvent::Command command = InputEvent::Mute)
    {
        auto *handler = new ToldKeyHandler;
        handler->registerKey(KEY_A, command, true);
        return handler;
    }

    /// What a press of KEY_A on a device publishes.
    std::vector<std::string> press(int number)
    {
        events.take();
        subsystem.node(number).press(KEY_A);
        clock.settle();
        std::vector<std::string> result = events.take();
        subsystem.node(number).release(KEY_A);
        clock.settle();
        return result;
    }

    QStringList watched() const
    {
        return devices->findChild<QFileSystemWatcher *>()->directories();
    }

    void pass()
    {
        QMetaObject::invokeMethod(devices.get(), "on_inputWatcher_changed",
                                  Q_ARG(QString, QStringLiteral("/dev/input/")));
    }

    static std::string pressed(InputEvent::Command command)
    {
        return text(command, InputEvent::KeyPressed, InputEvent::Bus::LocalUI);
    }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    EventRecorder events;
    std::unique_ptr<Devices> devices;
};

TEST_F(DeviceOrder, AHandlerHasItsListenerWhenItIsToldItsIdentifier)
{
    plug(0);
    start();
    ToldKeyHandler *handler = keys();
    QString path;
    handler->onSetId = [&] {
        ASSERT_NE(handler->listener(), nullptr);
        path = handler->listener()->device();
    };
    devices->addKeyHandler(panelPath, handler, browse);
    EXPECT_EQ(path, panelPath);
}

TEST_F(DeviceOrder, AHandlerIsToldItsIdentifierBeforeItIsRegistered)
{
    plug(0);
    start();
    ToldKeyHandler *handler = keys();
    handler->onSetId = [&] { devices->selectKeyHandler(browse); };
    devices->addKeyHandler(panelPath, handler, browse);
    EXPECT_THAT(press(0), IsEmpty());
    devices->selectKeyHandler(browse);
    EXPECT_THAT(press(0), ElementsAre(pressed(InputEvent::Mute)));
}

TEST_F(DeviceOrder, AHandlerIsToldItsIdentifierBeforeItReceives)
{
    plug(0);
    start();
    std::vector<std::string> sequence;
    ToldKeyHandler *first = keys();
    devices->addKeyHandler(panelPath, first, QString());
    first->onInvalidate = [&] { sequence.emplace_back("the first is deselected"); };
    ToldKeyHandler *second = keys();
    second->onSetId = [&] { sequence.emplace_back("the second has its identifier"); };
    devices->addKeyHandler(panelPath, second, QString());
    EXPECT_THAT(sequence, ElementsAre("the second has its identifier", "the first is deselected"));
}

TEST_F(DeviceOrder, AnIdentifierIsCurrentWhileItsHandlersAreSelected)
{
    plug(0);
    plug(1);
    start();
    // The remote's handler is told last, when the panel has its receiver already.
    ToldKeyHandler *leaving = keys();
    devices->addKeyHandler(remotePath, leaving, QString());
    leaving->onInvalidate = [&] {
        leaving->onInvalidate = {};
        devices->addKeyHandler(panelPath, keys(InputEvent::Power), browse);
    };
    devices->selectHandler(browse);
    EXPECT_THAT(press(0), ElementsAre(pressed(InputEvent::Power)));
}

TEST_F(DeviceOrder, KeysAreSelectedBeforeSwitches)
{
    subsystem.plug(0, DeviceDescription::switchBox("jacks", BUS_HOST, {0}));
    plug(1);
    start();
    std::vector<std::string> sequence;
    auto *jacks = new ToldSwitchHandler;
    jacks->onInvalidate = [&] { sequence.emplace_back("switches"); };
    devices->addSwitchHandler(panelPath, jacks, QString());
    ToldKeyHandler *buttons = keys();
    devices->addKeyHandler(remotePath, buttons, QString());
    buttons->onInvalidate = [&] { sequence.emplace_back("keys"); };
    devices->selectHandler(browse);
    EXPECT_THAT(sequence, ElementsAre("keys", "switches"));
}

TEST_F(DeviceOrder, ASelectionIsTracedBeforeItIsMade)
{
    plug(0);
    start();
    std::vector<std::string> sequence;
    const auto deselected = [&] { sequence.emplace_back("deselected"); };
    auto *buttons = keys();
    devices->addKeyHandler(panelPath, buttons, QString());
    buttons->onInvalidate = deselected;
    auto *jacks = new ToldSwitchHandler;
    devices->addSwitchHandler(panelPath, jacks, QString());
    jacks->onInvalidate = deselected;
    LogRecorder log;
    log.onLine([&](const LogLine &line) { sequence.push_back(line.text); });
    devices->selectKeyHandler(browse);
    devices->selectSwitchHandler(browse);
    EXPECT_THAT(sequence,
                ElementsAre("Enter BasicInputHandler::selectKeyHandler: browse", "deselected",
                            "Enter BasicInputHandler::selectSwitchHandler: browse", "deselected"));
}

TEST_F(DeviceOrder, ARemovalIsLoggedBeforeItIsMade)
{
    plug(0);
    start();
    auto *handler = keys();
    devices->addKeyHandler(panelPath, handler, QString());
    std::vector<std::string> sequence;
    QObject::connect(handler, &QObject::destroyed, [&] { sequence.emplace_back("deleted"); });
    LogRecorder log;
    log.onLine([&](const LogLine &line) { sequence.push_back(line.text); });
    devices->removeDevice(panelPath);
    EXPECT_THAT(sequence, ElementsAre("Removing /dev/input/event0", "deleted"));
}

TEST_F(DeviceOrder, AHandlerOfSeveralIdentifiersDoesNotKeepOthersFromTheirDeletion)
{
    plug(0);
    plug(1);
    start();
    std::vector<QPointer<QObject>> handlers;
    for (const QString &path : {panelPath, remotePath}) {
        ToldKeyHandler *other = keys();
        ToldKeyHandler *shared = keys();
        devices->addKeyHandler(path, other, QString());
        devices->addKeyHandler(path, shared, QString());
        devices->addKeyHandler(path, shared, browse);
        handlers.insert(handlers.end(), {other, shared});
    }
    devices->removeDevice(panelPath);
    EXPECT_EQ(handlers[0], nullptr);
    EXPECT_EQ(handlers[1], nullptr);
    EXPECT_NE(handlers[2], nullptr);
    devices.reset();
    EXPECT_EQ(handlers[2], nullptr);
    EXPECT_EQ(handlers[3], nullptr);
}

TEST_F(DeviceOrder, ADeviceWithoutHandlersLosesItsReceiverToo)
{
    plug(0);
    start();
    // Given by the product itself, without a registration.
    auto guest = std::unique_ptr<ToldKeyHandler>(keys());
    int invalidations = 0;
    guest->onInvalidate = [&] { ++invalidations; };
    devices->setKeyListener(panelPath, guest.get());
    guest->setHandler(guest.get());
    EXPECT_THAT(press(0), ElementsAre(pressed(InputEvent::Mute)));
    devices->selectHandler(browse);
    EXPECT_EQ(invalidations, 1);
    EXPECT_THAT(press(0), IsEmpty());
    devices.reset();
}

TEST_F(DeviceOrder, TheDirectoryIsWatchedBeforeItIsScanned)
{
    plug(3);
    LogRecorder log;
    QStringList watchedInTheScan;
    log.onLine([&](const LogLine &line) {
        if (line.text != "Dev /dev/input/event3: keys" || subsystem.node(0).isPlugged())
            return;
        watchedInTheScan = watched();
        // The scan is past this number; only the watch can tell of it.
        plug(0);
    });
    devices = std::make_unique<Devices>();
    clock.settle();
    EXPECT_THAT(watchedInTheScan, ElementsAre("/dev/input/"));
    EXPECT_THAT(devices->calls,
                ElementsAre("add /dev/input/event3 keys", "add /dev/input/event0 keys"));
}

TEST_F(DeviceOrder, AWatchThatFailsOnceIsTriedAgainAndIsTheOnlyOneThen)
{
    bool hasFailed = false;
    subsystem.setPathHook([&](Vorn::Sim::InputSubsystem::PathCall call, const QByteArray &path) {
        if (call != Vorn::Sim::InputSubsystem::PathCall::Watch || path != "/dev/input/"
            || std::exchange(hasFailed, true))
            return 0;
        return ENOSPC;
    });
    start();
    EXPECT_TRUE(hasFailed);
    EXPECT_THAT(watched(), ElementsAre("/dev/input/"));
}

TEST_F(DeviceOrder, ADeviceRemovedDuringASelectionDoesNotKeepOthersFromIt)
{
    for (const int number : {0, 1, 2})
        plug(number);
    start();
    ToldKeyHandler *leaving = keys();
    devices->addKeyHandler(panelPath, leaving, QString());
    devices->addKeyHandler(QStringLiteral("/dev/input/event2"), keys(InputEvent::Power), browse);
    leaving->onInvalidate = [&] { devices->removeDevice(remotePath); };
    devices->selectHandler(browse);
    EXPECT_THAT(press(2), ElementsAre(pressed(InputEvent::Power)));
}

TEST_F(DeviceOrder, ADeviceThatTheProductRemovesStaysRemovedUntilItComesBack)
{
    plug(0);
    start();
    QPointer<QObject> handler = keys();
    devices->addKeyHandler(panelPath, static_cast<BasicKeyInputHandler *>(handler.data()),
                           QString());
    devices->removeDevice(panelPath);
    EXPECT_EQ(handler, nullptr);
    EXPECT_EQ(subsystem.openDescriptors(), 0);
    devices->take();
    // It is still plugged in and known, so no pass adds it again.
    pass();
    EXPECT_THAT(devices->take(), IsEmpty());
    subsystem.unplug(0);
    clock.settle();
    EXPECT_THAT(devices->take(), ElementsAre("remove /dev/input/event0"));
    plug(0);
    clock.settle();
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event0 keys"));
}

TEST_F(DeviceOrder, AHandlerOfARemovedDeviceIsSelectedNoMore)
{
    plug(0);
    plug(1);
    start();
    devices->addKeyHandler(panelPath, keys(), browse);
    devices->addKeyHandler(remotePath, keys(InputEvent::Power), browse);
    devices->removeDevice(panelPath);
    devices->selectHandler(browse);
    EXPECT_THAT(press(0), IsEmpty());
    EXPECT_THAT(press(1), ElementsAre(pressed(InputEvent::Power)));
}

TEST_F(DeviceOrder, ADeviceWithoutANameOfItsOwnIsAdded)
{
    subsystem.plug(0, DeviceDescription::keyboard("", BUS_HOST, {KEY_A}));
    devices = std::make_unique<Devices>();
    clock.settle();
    EXPECT_THAT(devices->calls, ElementsAre("add /dev/input/event0 "));
}

TEST_F(DeviceOrder, AChangeElsewhereLeavesTheWatchAloneWhileTheDirectoryIsMissing)
{
    subsystem.removeInputDirectory();
    start();
    auto *watcher = devices->findChild<QFileSystemWatcher *>();
    watcher->removePath(QStringLiteral("/dev/"));
    for (const char *file : {"/dev/", "/dev/other/", "/DEV/INPUT/"}) {
        QMetaObject::invokeMethod(devices.get(), "on_inputWatcher_changed",
                                  Q_ARG(QString, QString::fromLatin1(file)));
        EXPECT_THAT(watched(), IsEmpty()) << file;
    }
    for (const char *file : {"/dev/input/", "/dev/input/event3"}) {
        watcher->removePath(QStringLiteral("/dev/"));
        QMetaObject::invokeMethod(devices.get(), "on_inputWatcher_changed",
                                  Q_ARG(QString, QString::fromLatin1(file)));
        EXPECT_THAT(watched(), ElementsAre("/dev/")) << file;
    }
}

} // namespace
