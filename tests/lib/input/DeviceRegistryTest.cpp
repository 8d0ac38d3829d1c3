#include "BasicInputHandler.h"

#include "Devices.h"
#include "EventRecorder.h"
#include "InputSubsystem.h"
#include "LogRecorder.h"
#include "VirtualClock.h"
#include "dbglog.h"

#include <QFileSystemWatcher>
#include <QMetaMethod>
#include <QPointer>

#include <gmock/gmock.h>

#include <memory>

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Bus = InputEvent::Bus;
using Vorn::Sim::DeviceDescription;

const char *const sourceFile = "src/lib/input/BasicInputHandler.cpp";
const QString panelPath = QStringLiteral("/dev/input/event0");
const QString remotePath = QStringLiteral("/dev/input/event1");
const QString absentPath = QStringLiteral("/dev/input/event7");

LogLine entry(const std::string &function, const std::string &arguments)
{
    return {"BasicInputHandler", log4cplus::TRACE_LOG_LEVEL,
            "Enter " + dbglog_scopedFunction(function, "BasicInputHandler") + ": " + arguments,
            sourceFile, function};
}

const std::string addKeySignature = "void BasicInputHandler::addKeyHandler(const QString&, "
                                    "BasicKeyInputHandler*, const QString&)";
const std::string addSwitchSignature = "void BasicInputHandler::addSwitchHandler(const QString&, "
                                       "BasicSwInputHandler*, const QString&)";
const std::string setKeySignature =
    "void BasicInputHandler::setKeyListener(const QString&, BasicKeyInputHandler*)";
const std::string setSwitchSignature =
    "void BasicInputHandler::setSwitchListener(const QString&, BasicSwInputHandler*)";
const std::string selectSignature = "void BasicInputHandler::selectHandler(const QString&)";
const std::string selectKeySignature = "void BasicInputHandler::selectKeyHandler(const QString&)";
const std::string selectSwitchSignature =
    "void BasicInputHandler::selectSwitchHandler(const QString&)";

/// A key handler that records its invalidations.
class TalkingKeyHandler : public BasicKeyInputHandler
{
public:
    using BasicKeyInputHandler::BasicKeyInputHandler;
    void setId(const QString &newId) override
    {
        ids.push_back(newId);
        BasicKeyInputHandler::setId(newId);
    }
    void invalidate() override
    {
        ++invalidations;
        BasicKeyInputHandler::invalidate();
    }
    QStringList ids;
    int invalidations = 0;
};

class TalkingSwitchHandler : public BasicSwInputHandler
{
public:
    using BasicSwInputHandler::BasicSwInputHandler;
    void setId(const QString &newId) override { ids.push_back(newId); }
    void invalidate() override { ++invalidations; }
    QStringList ids;
    int invalidations = 0;
};

/// Two known devices, each with keys and switches, and no handlers.
class DeviceRegistryTest : public testing::Test
{
protected:
    DeviceRegistryTest()
    {
        for (int number : {0, 1}) {
            subsystem.plug(
                number,
                DeviceDescription::keyboard("device", BUS_HOST, {KEY_A, KEY_B}).withSwitches({0}));
        }
        devices = std::make_unique<Devices>();
        clock.settle();
    }

    /// A handler that reports KEY_A as @p command.
    TalkingKeyHandler *keys(InputEvent::Command command)
    {
        auto *handler = new TalkingKeyHandler(QStringLiteral("keys"));
        handler->registerKey(KEY_A, command, true);
        return handler;
    }

    TalkingSwitchHandler *switches(InputEvent::Command command)
    {
        auto *handler = new TalkingSwitchHandler(QStringLiteral("switches"));
        handler->registerSwitch(0, command);
        return handler;
    }

    /// The commands published by a press of KEY_A and a change of switch 0 on a device.
    std::vector<std::string> commands(int number)
    {
        std::vector<std::string> result;
        events.onEvent([&](const InputEvent &event) {
            if (event.state() == InputEvent::KeyPressed
                || event.state() == InputEvent::SwitchEnabled)
                result.push_back(event.cmdToString().toStdString());
        });
        Vorn::Sim::InputNode &node = subsystem.node(number);
        node.press(KEY_A);
        clock.settle();
        node.release(KEY_A);
        node.setSwitch(0, true);
        clock.settle();
        node.setSwitch(0, false);
        clock.settle();
        events.onEvent({});
        return result;
    }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    EventRecorder events;
    std::unique_ptr<Devices> devices;
};

TEST_F(DeviceRegistryTest, HandlersOfTheEmptyIdentifierReceiveAtOnce)
{
    devices->addKeyHandler(panelPath, keys(InputEvent::Mute), QString());
    devices->addSwitchHandler(panelPath, switches(InputEvent::SWLineIn), QStringLiteral(""));
    EXPECT_THAT(commands(0), ElementsAre("Mute", "SWLineIn"));
    EXPECT_THAT(commands(1), IsEmpty());
}

TEST_F(DeviceRegistryTest, HandlersOfAnotherIdentifierWaitForItsSelection)
{
    TalkingKeyHandler *handler = keys(InputEvent::Mute);
    devices->addKeyHandler(panelPath, handler, QStringLiteral("browse"));
    devices->addSwitchHandler(panelPath, switches(InputEvent::SWLineIn), QStringLiteral("browse"));
    ASSERT_NE(handler->listener(), nullptr);
    EXPECT_EQ(handler->listener()->device(), panelPath);
    EXPECT_THAT(commands(0), IsEmpty());
    devices->selectHandler(QStringLiteral("browse"));
    EXPECT_THAT(commands(0), ElementsAre("Mute", "SWLineIn"));
}

TEST_F(DeviceRegistryTest, SelectionRoutesEveryDeviceAtOnce)
{
    for (const QString &path : {panelPath, remotePath}) {
        devices->addKeyHandler(path, keys(InputEvent::CursorUp), QStringLiteral("browse"));
        devices->addKeyHandler(path, keys(InputEvent::CharA), QStringLiteral("text"));
        devices->addSwitchHandler(path, switches(InputEvent::SWLineIn), QStringLiteral("browse"));
    }
    devices->selectHandler(QStringLiteral("browse"));
    EXPECT_THAT(commands(0), ElementsAre("CursorUp", "SWLineIn"));
    EXPECT_THAT(commands(1), ElementsAre("CursorUp", "SWLineIn"));
    devices->selectHandler(QStringLiteral("text"));
    // No switch handler has this identifier, so the switches have no receiver.
    EXPECT_THAT(commands(0), ElementsAre("CharA"));
    EXPECT_THAT(commands(1), ElementsAre("CharA"));
    devices->selectHandler(QStringLiteral("nobody's"));
    EXPECT_THAT(commands(0), IsEmpty());
    devices->selectHandler(QStringLiteral("browse"));
    EXPECT_THAT(commands(0), ElementsAre("CursorUp", "SWLineIn"));
}

TEST_F(DeviceRegistryTest, TheHandlerRegisteredLastUnderAnIdentifierReceives)
{
    devices->addKeyHandler(panelPath, keys(InputEvent::Mute), QString());
    devices->addSwitchHandler(panelPath, switches(InputEvent::SWLineIn), QString());
    devices->addKeyHandler(panelPath, keys(InputEvent::Power), QString());
    devices->addSwitchHandler(panelPath, switches(InputEvent::SWLineOut), QString());
    EXPECT_THAT(commands(0), ElementsAre("Power", "SWLineOut"));
}

TEST_F(DeviceRegistryTest, OneHandlerMayServeSeveralIdentifiers)
{
    TalkingKeyHandler *shared = keys(InputEvent::Mute);
    devices->addKeyHandler(panelPath, shared, QStringLiteral("browse"));
    devices->addKeyHandler(panelPath, shared, QStringLiteral("text"));
    EXPECT_THAT(shared->ids, ElementsAre("browse", "text"));
    int destroyed = 0;
    QObject::connect(shared, &QObject::destroyed, [&] { ++destroyed; });
    for (const char *id : {"browse", "text"}) {
        devices->selectHandler(QString::fromLatin1(id));
        EXPECT_THAT(commands(0), ElementsAre("Mute")) << id;
    }
    devices.reset();
    EXPECT_EQ(destroyed, 1);
}

TEST_F(DeviceRegistryTest, SelectingTheCurrentIdentifierAgainDoesNothing)
{
    TalkingKeyHandler *handler = keys(InputEvent::Mute);
    devices->addKeyHandler(panelPath, handler, QStringLiteral("browse"));
    devices->selectHandler(QStringLiteral("browse"));
    const int before = handler->invalidations;
    LogRecorder log;
    devices->selectHandler(QStringLiteral("browse"));
    EXPECT_EQ(handler->invalidations, before);
    EXPECT_THAT(log.lines(), ElementsAre(entry(selectSignature, "browse")));
}

TEST_F(DeviceRegistryTest, SelectingTheEmptyIdentifierAtFirstDoesNothing)
{
    LogRecorder log;
    devices->selectHandler(QString());
    EXPECT_THAT(log.lines(), ElementsAre(entry(selectSignature, "")));
}

TEST_F(DeviceRegistryTest, SelectionOfKeysOrSwitchesAloneIsAlwaysApplied)
{
    TalkingKeyHandler *browse = keys(InputEvent::CursorUp);
    devices->addKeyHandler(panelPath, browse, QString());
    devices->addKeyHandler(panelPath, keys(InputEvent::CharA), QStringLiteral("text"));
    devices->addSwitchHandler(panelPath, switches(InputEvent::SWLineIn), QString());
    devices->addSwitchHandler(panelPath, switches(InputEvent::SWLineOut), QStringLiteral("text"));
    const int before = browse->invalidations;
    devices->selectKeyHandler(QString());
    EXPECT_EQ(browse->invalidations, before + 1);
    devices->selectKeyHandler(QStringLiteral("text"));
    EXPECT_THAT(commands(0), ElementsAre("CharA", "SWLineIn"));
    devices->selectSwitchHandler(QStringLiteral("text"));
    EXPECT_THAT(commands(0), ElementsAre("CharA", "SWLineOut"));
    // The current identifier is still the empty one.
    devices->selectHandler(QString());
    EXPECT_THAT(commands(0), ElementsAre("CharA", "SWLineOut"));
    devices->selectHandler(QStringLiteral("text"));
    devices->selectHandler(QString());
    EXPECT_THAT(commands(0), ElementsAre("CursorUp", "SWLineIn"));
}

TEST_F(DeviceRegistryTest, ARegistrationForTheCurrentIdentifierIsAppliedToEveryDevice)
{
    TalkingKeyHandler *panel = keys(InputEvent::Mute);
    TalkingSwitchHandler *jacks = switches(InputEvent::SWLineIn);
    devices->addKeyHandler(panelPath, panel, QString());
    devices->addSwitchHandler(panelPath, jacks, QString());
    devices->addKeyHandler(remotePath, keys(InputEvent::Power), QString());
    EXPECT_EQ(panel->invalidations, 1);
    EXPECT_EQ(jacks->invalidations, 0);
    devices->addSwitchHandler(remotePath, switches(InputEvent::SWLineOut), QString());
    EXPECT_EQ(jacks->invalidations, 1);
    EXPECT_EQ(panel->invalidations, 1);
}

TEST_F(DeviceRegistryTest, ARegistrationForAnotherIdentifierDisturbsNobody)
{
    TalkingKeyHandler *panel = keys(InputEvent::Mute);
    devices->addKeyHandler(panelPath, panel, QString());
    devices->addKeyHandler(panelPath, keys(InputEvent::Power), QStringLiteral("text"));
    EXPECT_EQ(panel->invalidations, 0);
    EXPECT_THAT(commands(0), ElementsAre("Mute"));
}

TEST_F(DeviceRegistryTest, OnlyKeyHandlersAreToldTheirIdentifier)
{
    TalkingKeyHandler *panel = keys(InputEvent::Mute);
    TalkingSwitchHandler *jacks = switches(InputEvent::SWLineIn);
    devices->addKeyHandler(panelPath, panel, QStringLiteral("browse"));
    devices->addSwitchHandler(panelPath, jacks, QStringLiteral("browse"));
    EXPECT_THAT(panel->ids, ElementsAre("browse"));
    EXPECT_THAT(jacks->ids, IsEmpty());
}

TEST_F(DeviceRegistryTest, TracesARegistrationOfKeys)
{
    LogRecorder log;
    devices->addKeyHandler(panelPath, keys(InputEvent::Mute), QStringLiteral("text"));
    EXPECT_THAT(log.lines(),
                ElementsAre(entry(addKeySignature, "Device: /dev/input/event0; id: text"),
                            entry(setKeySignature, "/dev/input/event0")));
    log.clear();
    devices->addKeyHandler(panelPath, keys(InputEvent::Mute), QString());
    EXPECT_THAT(log.lines(),
                ElementsAre(entry(addKeySignature, "Device: /dev/input/event0; id: "),
                            entry(setKeySignature, "/dev/input/event0"),
                            entry(selectKeySignature, "")));
}

TEST_F(DeviceRegistryTest, TracesARegistrationOfSwitches)
{
    LogRecorder log;
    devices->addSwitchHandler(panelPath, switches(InputEvent::SWLineIn), QStringLiteral("text"));
    EXPECT_THAT(log.lines(),
                ElementsAre(entry(addSwitchSignature, "Device: /dev/input/event0; id: text"),
                            entry(setSwitchSignature, "/dev/input/event0")));
    log.clear();
    devices->addSwitchHandler(panelPath, switches(InputEvent::SWLineIn), QString());
    EXPECT_THAT(log.lines(),
                ElementsAre(entry(addSwitchSignature, "Device: /dev/input/event0; id: "),
                            entry(setSwitchSignature, "/dev/input/event0"),
                            entry(selectSwitchSignature, "")));
}

TEST_F(DeviceRegistryTest, TracesASelection)
{
    LogRecorder log;
    devices->selectHandler(QStringLiteral("text"));
    EXPECT_THAT(log.lines(),
                ElementsAre(entry(selectSignature, "text"), entry(selectKeySignature, "text"),
                            entry(selectSwitchSignature, "text")));
}

TEST_F(DeviceRegistryTest, TracesItsConstruction)
{
    LogRecorder log;
    const Devices other;
    EXPECT_THAT(log.lines(), ElementsAre(entry("BasicInputHandler::BasicInputHandler()", "")));
}

TEST_F(DeviceRegistryTest, RefusesANullKeyHandlerWithOneLine)
{
    LogRecorder log;
    devices->addKeyHandler(panelPath, nullptr, QStringLiteral("text"));
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"BasicInputHandler", log4cplus::ERROR_LOG_LEVEL,
                                    "Handler text for device /dev/input/event0does not exists",
                                    sourceFile, addKeySignature}));
    devices->selectHandler(QStringLiteral("text"));
    EXPECT_THAT(commands(0), IsEmpty());
}

TEST_F(DeviceRegistryTest, KeepsAHandlerOfAnAbsentDeviceWithoutAListener)
{
    TalkingKeyHandler *handler = keys(InputEvent::Mute);
    TalkingSwitchHandler *jacks = switches(InputEvent::SWLineIn);
    QPointer<QObject> guard = handler;
    LogRecorder log(log4cplus::INFO_LOG_LEVEL);
    devices->addKeyHandler(absentPath, handler, QString());
    devices->addSwitchHandler(absentPath, jacks, QString());
    const std::string message = "Linux input listener for /dev/input/event7 does not exists";
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"BasicInputHandler", log4cplus::ERROR_LOG_LEVEL, message,
                                    sourceFile, setKeySignature},
                            LogLine{"BasicInputHandler", log4cplus::ERROR_LOG_LEVEL, message,
                                    sourceFile, setSwitchSignature}));
    EXPECT_EQ(handler->listener(), nullptr);
    EXPECT_EQ(jacks->listener(), nullptr);
    EXPECT_THAT(handler->ids, ElementsAre(QString()));
    // The device's later arrival does not fix that.
    subsystem.plug(7, DeviceDescription::keyboard("late", BUS_HOST, {KEY_A}));
    clock.settle();
    EXPECT_EQ(handler->listener(), nullptr);
    // Selecting routes by device, not by the handler's listener.
    devices->selectKeyHandler(QString());
    EXPECT_THAT(commands(7), ElementsAre("Mute"));
    devices.reset();
    EXPECT_EQ(guard, nullptr);
}

TEST_F(DeviceRegistryTest, NeverReplacesAListener)
{
    TalkingKeyHandler *handler = keys(InputEvent::Mute);
    TalkingSwitchHandler *jacks = switches(InputEvent::SWLineIn);
    devices->setKeyListener(panelPath, handler);
    devices->setSwitchListener(panelPath, jacks);
    LinuxInputListener *const keyListener = handler->listener();
    LinuxInputListener *const switchListener = jacks->listener();
    ASSERT_NE(keyListener, nullptr);
    ASSERT_NE(switchListener, nullptr);
    EXPECT_NE(keyListener, switchListener);
    LogRecorder log;
    devices->setKeyListener(remotePath, handler);
    devices->setKeyListener(absentPath, handler);
    devices->setSwitchListener(remotePath, jacks);
    EXPECT_EQ(handler->listener(), keyListener);
    EXPECT_EQ(jacks->listener(), switchListener);
    EXPECT_THAT(log.lines(),
                ElementsAre(entry(setKeySignature, "/dev/input/event1"),
                            entry(setKeySignature, "/dev/input/event7"),
                            entry(setSwitchSignature, "/dev/input/event1")));
    devices->addKeyHandler(panelPath, handler, QString());
    devices->addSwitchHandler(panelPath, jacks, QString());
}

TEST_F(DeviceRegistryTest, MaySelectFromInsideAddDevice)
{
    devices->onAdd = [&](const QString &path, const QString &) {
        devices->addKeyHandler(path, keys(InputEvent::Mute), QStringLiteral("browse"));
        devices->selectHandler(QStringLiteral("browse"));
    };
    subsystem.plug(2, DeviceDescription::keyboard("third", BUS_HOST, {KEY_A}));
    clock.settle();
    EXPECT_THAT(commands(2), ElementsAre("Mute"));
}

TEST_F(DeviceRegistryTest, MaySelectFromInsideAReport)
{
    devices->addKeyHandler(panelPath, keys(InputEvent::Search), QString());
    devices->addKeyHandler(panelPath, keys(InputEvent::CharA), QStringLiteral("text"));
    events.onEvent([&](const InputEvent &event) {
        if (event.command() == InputEvent::Search && event.state() == InputEvent::KeyReleased)
            devices->selectHandler(QStringLiteral("text"));
    });
    for (int i = 0; i < 2; ++i) {
        subsystem.node(0).press(KEY_A);
        subsystem.node(0).release(KEY_A);
        clock.settle();
    }
    EXPECT_THAT(events.texts(),
                ElementsAre("[cmd=Search, state=KeyPressed, bus=LocalUI]",
                            "[cmd=Search, state=KeyReleased, bus=LocalUI]",
                            "[cmd=CharA, state=KeyPressed, bus=LocalUI]",
                            "[cmd=CharA, state=KeyReleased, bus=LocalUI]"));
}

TEST_F(DeviceRegistryTest, ASelectionWhileAKeyIsDownLosesItsRelease)
{
    devices->addKeyHandler(panelPath, keys(InputEvent::CursorUp), QString());
    devices->addKeyHandler(panelPath, keys(InputEvent::CharA), QStringLiteral("text"));
    subsystem.node(0).press(KEY_A);
    clock.settle();
    devices->selectHandler(QStringLiteral("text"));
    subsystem.node(0).release(KEY_A);
    clock.settle();
    EXPECT_THAT(events.texts(), ElementsAre("[cmd=CursorUp, state=KeyPressed, bus=LocalUI]"));
}

TEST_F(DeviceRegistryTest, DestructionDeletesHandlersThenListenersEachOnce)
{
    std::vector<std::string> sequence;
    const auto watch = [&](QObject *object, const std::string &name) {
        QObject::connect(object, &QObject::destroyed, [&, name] { sequence.push_back(name); });
    };
    TalkingKeyHandler *first = keys(InputEvent::Mute);
    TalkingKeyHandler *second = keys(InputEvent::Power);
    TalkingSwitchHandler *jacks = switches(InputEvent::SWLineIn);
    devices->addKeyHandler(panelPath, first, QString());
    devices->addKeyHandler(panelPath, second, QStringLiteral("text"));
    devices->addSwitchHandler(panelPath, jacks, QString());
    EXPECT_EQ(first->listener(), second->listener());
    watch(first->listener(), "key listener");
    watch(jacks->listener(), "switch listener");
    watch(first, "first");
    watch(second, "second");
    watch(jacks, "jacks");
    LogRecorder log;
    devices.reset();
    clock.settle();
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(sequence,
                ElementsAre("second", "first", "jacks", "key listener", "switch listener"));
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(DeviceRegistryTest, OwnsItsWatcher)
{
    const auto watchers = devices->findChildren<QFileSystemWatcher *>();
    ASSERT_EQ(watchers.size(), 1);
    QPointer<QFileSystemWatcher> watcher = watchers.first();
    EXPECT_EQ(devices->parent(), nullptr);
    devices.reset();
    EXPECT_EQ(watcher, nullptr);
}

TEST(DeviceManagerMetaObject, HasTwoPrivateSlotsAndNoSignal)
{
    const QMetaObject &meta = BasicInputHandler::staticMetaObject;
    EXPECT_STREQ(meta.className(), "BasicInputHandler");
    EXPECT_EQ(meta.superClass(), &QObject::staticMetaObject);
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 2);
    const QMetaMethod init = meta.method(meta.methodOffset());
    const QMetaMethod changed = meta.method(meta.methodOffset() + 1);
    EXPECT_EQ(init.methodSignature(), "on_init()");
    EXPECT_EQ(changed.methodSignature(), "on_inputWatcher_changed(QString)");
    EXPECT_THAT(changed.parameterNames(), ElementsAre(QByteArray("file")));
    for (const QMetaMethod &slot : {init, changed}) {
        EXPECT_EQ(slot.methodType(), QMetaMethod::Slot);
        EXPECT_EQ(slot.access(), QMetaMethod::Private);
    }
}

} // namespace
