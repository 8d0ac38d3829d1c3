#include "Devices.h"
#include "InputSubsystem.h"
#include "LogRecorder.h"
#include "RecordingHandler.h"
#include "VirtualClock.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Vorn::Sim::DeviceDescription;

const QString path = QStringLiteral("/dev/input/event0");

/// What makes the library log: a keyboard, its listener and handlers, and a device manager.
struct Scene
{
    Scene()
    {
        subsystem.plug(0, DeviceDescription::keyboard("panel", BUS_HOST, {KEY_A, KEY_B}));
        listener = std::make_unique<LinuxInputListener>(&receiver, path, LinuxInputListener::Key);
        keys.registerKey(KEY_A, InputEvent::Mute, true);
        switches.registerSwitch(0, InputEvent::SWLineIn);
        clock.settle();
    }

    void listen(LinuxInputListener::Type type) { LinuxInputListener(&receiver, path, type); }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    RecordingHandler receiver;
    std::unique_ptr<LinuxInputListener> listener;
    BasicKeyInputHandler keys{QStringLiteral("keys")};
    BasicSwInputHandler switches{QStringLiteral("switches")};
    Devices devices;
};

struct Message
{
    int level;
    std::string text; ///< the beginning
    std::function<void(Scene &)> cause;
};

std::ostream &operator<<(std::ostream &stream, const Message &message)
{
    return stream << '"' << message.text << '"';
}

/// Each message of the library.
class LogLevel : public testing::TestWithParam<Message>
{
protected:
    /// The lines that its cause writes while the loggers are set to @p level.
    static std::vector<std::string> textsAt(int level)
    {
        Scene scene;
        LogRecorder log(level);
        GetParam().cause(scene);
        scene.clock.settle();
        std::vector<std::string> texts;
        for (const LogLine &line : log.lines()) {
            EXPECT_GE(line.level, level) << line;
            texts.push_back(line.text);
        }
        return texts;
    }
};

TEST_P(LogLevel, IsJustEnoughForItsMessage)
{
    EXPECT_THAT(textsAt(GetParam().level), Contains(StartsWith(GetParam().text)));
    EXPECT_THAT(textsAt(GetParam().level + 1), Not(Contains(StartsWith(GetParam().text))));
}

void chord(Scene &scene)
{
    scene.keys.processEvent({keyRecord(KEY_A, 1), keyRecord(KEY_B, 1), keyRecord(KEY_B, 1),
                             keyRecord(KEY_C, 1), keyRecord(KEY_A, 0), keyRecord(KEY_B, 0),
                             keyRecord(KEY_B, 0)});
}

void read(Scene &scene)
{
    scene.subsystem.node(0).send({keyRecord(KEY_A, 1)});
    scene.clock.settle();
}

using log4cplus::DEBUG_LOG_LEVEL;
using log4cplus::ERROR_LOG_LEVEL;
using log4cplus::INFO_LOG_LEVEL;
using log4cplus::TRACE_LOG_LEVEL;
using log4cplus::WARN_LOG_LEVEL;

INSTANTIATE_TEST_SUITE_P(OfTheBus, LogLevel,
                         testing::Values(Message{
                             DEBUG_LOG_LEVEL, "Vorn::InputEvent(0) Unknown",
                             [](Scene &) { Input::reportInputEvent(InputEvent()); }}));

INSTANTIATE_TEST_SUITE_P(
    OfAHandler, LogLevel,
    testing::Values(Message{DEBUG_LOG_LEVEL, "Linux Input Listerner already set, ignore",
                            [](Scene &scene) {
                                // The handler takes the listener with it.
                                RecordingHandler handler;
                                handler.setListener(scene.listener.release());
                                handler.setListener(nullptr);
                            }},
                    Message{WARN_LOG_LEVEL, "Linux Input Listerner does not exists",
                            [](Scene &scene) { scene.receiver.setHandler(nullptr); }}));

INSTANTIATE_TEST_SUITE_P(
    OfTheListener, LogLevel,
    testing::Values(Message{ERROR_LOG_LEVEL, "Cannot open input device /dev/input/event0",
                            [](Scene &scene) {
                                scene.subsystem.node(0).failOpen(EACCES);
                                scene.listen(LinuxInputListener::Key);
                            }},
                    Message{INFO_LOG_LEVEL, "Event device /dev/input/event0 ready",
                            [](Scene &scene) { scene.listen(LinuxInputListener::Key); }},
                    Message{DEBUG_LOG_LEVEL, "bustype: 25",
                            [](Scene &scene) { scene.listen(LinuxInputListener::Key); }},
                    Message{DEBUG_LOG_LEVEL, "name: panel",
                            [](Scene &scene) { scene.listen(LinuxInputListener::Key); }},
                    Message{DEBUG_LOG_LEVEL,
                            "Event device /dev/input/event0 does not support EV_SW",
                            [](Scene &scene) { scene.listen(LinuxInputListener::Switch); }},
                    Message{WARN_LOG_LEVEL,
                            "Event device /dev/input/event0 does not support EV_KEY",
                            [](Scene &scene) {
                                scene.subsystem.node(0).failIoctl(EVIOCGBIT(0, 0), EIO);
                                scene.listen(LinuxInputListener::Key);
                            }},
                    Message{DEBUG_LOG_LEVEL, "ioctl error: -1",
                            [](Scene &scene) {
                                scene.listener->close();
                                scene.listener->getInputStatus();
                            }},
                    Message{TRACE_LOG_LEVEL, "Enter LinuxInputListener::readData: ", read},
                    Message{DEBUG_LOG_LEVEL, " type: 1 code:30 value:1", read},
                    Message{ERROR_LOG_LEVEL, "Error reading from event device /dev/input/event0",
                            [](Scene &scene) { scene.subsystem.node(0).failRead(EIO); }},
                    Message{ERROR_LOG_LEVEL, "Short read on event device /dev/input/event0",
                            [](Scene &scene) { scene.subsystem.node(0).sendBytes({}); }}));

INSTANTIATE_TEST_SUITE_P(
    OfTheChordDetection, LogLevel,
    testing::Values(
        Message{DEBUG_LOG_LEVEL, "Found already event for code:48", chord},
        Message{DEBUG_LOG_LEVEL, "Double key press detected and new press event received -> drop",
                chord},
        Message{DEBUG_LOG_LEVEL, "Received release for non existing press -> drop", chord},
        Message{DEBUG_LOG_LEVEL, "Stored:(input_event: code:30", chord}));

INSTANTIATE_TEST_SUITE_P(
    OfTheKeyHandler, LogLevel,
    testing::Values(
        Message{DEBUG_LOG_LEVEL, "key:30 value 1", chord},
        Message{TRACE_LOG_LEVEL, "Device: keys; id: ; command [cmd=Mute, state=KeyPressed]", chord},
        Message{TRACE_LOG_LEVEL, "Device: keys; id: ; command [cmd=Mute, state=KeyLongPress]",
                [](Scene &scene) {
                    scene.keys.enableLongPress(KEY_A, false, {100});
                    scene.keys.processEvent({keyRecord(KEY_A, 1, scene.clock.now())});
                    scene.clock.advance(std::chrono::milliseconds(100));
                }},
        Message{WARN_LOG_LEVEL, "Duplicate key in key input map: 30, overwriting old value",
                [](Scene &scene) { scene.keys.registerKey(KEY_A, InputEvent::Mute, true); }},
        Message{WARN_LOG_LEVEL, "Trying to remove a non-existing key 48",
                [](Scene &scene) { scene.keys.deregisterKey(KEY_B); }},
        Message{WARN_LOG_LEVEL,
                "Duplicate keys in double key input map: QPair(1,2), overwriting old value",
                [](Scene &scene) {
                    scene.keys.registerDoubleKey(1, 2, InputEvent::Mute);
                    scene.keys.registerDoubleKey(1, 2, InputEvent::Mute);
                }},
        Message{WARN_LOG_LEVEL, "Trying to remove a non-existing double key 1 + 2",
                [](Scene &scene) { scene.keys.deregisterDoubleKey(1, 2); }}));

INSTANTIATE_TEST_SUITE_P(
    OfTheSwitchHandler, LogLevel,
    testing::Values(
        Message{TRACE_LOG_LEVEL,
                "Device: switches; id: ; command [cmd=SWLineIn, state=SwitchEnabled]",
                [](Scene &scene) { scene.switches.processEvent({switchRecord(0, 1)}); }},
        Message{WARN_LOG_LEVEL, "Duplicate key in switch input map: 0, overwriting old value",
                [](Scene &scene) { scene.switches.registerSwitch(0, InputEvent::SWLineIn); }},
        Message{WARN_LOG_LEVEL, "Trying to remove non-existing switch 1",
                [](Scene &scene) { scene.switches.deregisterSwitch(1); }}));

INSTANTIATE_TEST_SUITE_P(
    OfTheDeviceManager, LogLevel,
    testing::Values(
        Message{TRACE_LOG_LEVEL, "Enter BasicInputHandler::BasicInputHandler: ",
                [](Scene &) { const Devices other; }},
        Message{TRACE_LOG_LEVEL, "Enter BasicInputHandler::addKeyHandler: ",
                [](Scene &scene) {
                    scene.devices.addKeyHandler(path, new BasicKeyInputHandler(QString()),
                                                QString());
                }},
        Message{TRACE_LOG_LEVEL, "Enter BasicInputHandler::addSwitchHandler: ",
                [](Scene &scene) {
                    scene.devices.addSwitchHandler(path, new BasicSwInputHandler(QString()),
                                                   QString());
                }},
        Message{TRACE_LOG_LEVEL, "Enter BasicInputHandler::setKeyListener: ",
                [](Scene &scene) { scene.devices.setKeyListener(path, &scene.keys); }},
        Message{TRACE_LOG_LEVEL, "Enter BasicInputHandler::setSwitchListener: ",
                [](Scene &scene) { scene.devices.setSwitchListener(path, &scene.switches); }},
        Message{TRACE_LOG_LEVEL, "Enter BasicInputHandler::selectHandler: ",
                [](Scene &scene) { scene.devices.selectHandler(QString()); }},
        Message{TRACE_LOG_LEVEL, "Enter BasicInputHandler::selectKeyHandler: ",
                [](Scene &scene) { scene.devices.selectKeyHandler(QString()); }},
        Message{TRACE_LOG_LEVEL, "Enter BasicInputHandler::selectSwitchHandler: ",
                [](Scene &scene) { scene.devices.selectSwitchHandler(QString()); }},
        Message{ERROR_LOG_LEVEL, "Handler text for device /dev/input/event0does not exists",
                [](Scene &scene) {
                    scene.devices.addKeyHandler(path, nullptr, QStringLiteral("text"));
                }},
        Message{ERROR_LOG_LEVEL, "Linux input listener for nowhere does not exists",
                [](Scene &scene) {
                    scene.devices.setKeyListener(QStringLiteral("nowhere"), &scene.keys);
                }},
        Message{ERROR_LOG_LEVEL, "Linux input listener for nowhere does not exists",
                [](Scene &scene) {
                    scene.devices.setSwitchListener(QStringLiteral("nowhere"), &scene.switches);
                }}));

INSTANTIATE_TEST_SUITE_P(
    OfTheHotPlug, LogLevel,
    testing::Values(Message{TRACE_LOG_LEVEL, "Dev /dev/input/event0: panel",
                            [](Scene &scene) { scene.devices.getDeviceNameMap(); }},
                    Message{DEBUG_LOG_LEVEL, " ---> added '/dev/input/event1'",
                            [](Scene &scene) {
                                scene.subsystem.plug(
                                    1, DeviceDescription::keyboard("other", BUS_USB, {KEY_A}));
                            }},
                    Message{INFO_LOG_LEVEL, "Removing /dev/input/event0",
                            [](Scene &scene) { scene.devices.removeDevice(path); }}));

} // namespace
