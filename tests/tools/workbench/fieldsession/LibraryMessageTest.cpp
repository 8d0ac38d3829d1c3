#include "LibraryMessage.h"

#include "BasicInputHandler.h"
#include "Devices.h"
#include "InputSubsystem.h"
#include "KeyProcessing.h"
#include "LinuxInputListener.h"
#include "RecordingHandler.h"
#include "VirtualClock.h"

#include <QFile>

#include <log4cplus/appender.h>
#include <log4cplus/logger.h>
#include <log4cplus/spi/loggingevent.h>

#include <gmock/gmock.h>

#include <cerrno>
#include <map>
#include <memory>
#include <regex>
#include <set>

namespace {

using namespace std::chrono_literals;
using namespace Vorn::Workbench;
using Vorn::Sim::DeviceDescription;

struct Logged
{
    std::string logger;
    int level = 0;
    std::string text;
    std::string file;
    int line = 0;
};

class Appender : public log4cplus::Appender
{
public:
    explicit Appender(std::shared_ptr<std::vector<Logged>> lines)
        : m_lines(std::move(lines))
    { }
    ~Appender() override { destructorImpl(); }
    void close() override { }

protected:
    void append(const log4cplus::spi::InternalLoggingEvent &event) override
    {
        m_lines->push_back({event.getLoggerName(), event.getLogLevel(), event.getMessage(),
                            event.getFile(), event.getLine()});
    }

private:
    const std::shared_ptr<std::vector<Logged>> m_lines;
};

int levelOf(LogLevel level)
{
    const int levels[] = {log4cplus::TRACE_LOG_LEVEL, log4cplus::DEBUG_LOG_LEVEL,
                          log4cplus::INFO_LOG_LEVEL,  log4cplus::WARN_LOG_LEVEL,
                          log4cplus::ERROR_LOG_LEVEL, log4cplus::FATAL_LOG_LEVEL};
    return levels[static_cast<int>(level)];
}

/// Registrations that the library warns of.
void makeMistakes(BasicKeyInputHandler *keys, BasicSwInputHandler *switches)
{
    keys->registerKey(KEY_A, InputEvent::CharA, true);
    keys->registerKey(KEY_A, InputEvent::CharA, false);
    keys->deregisterKey(KEY_B);
    keys->registerDoubleKey(KEY_A, KEY_B, InputEvent::Power);
    keys->registerDoubleKey(KEY_A, KEY_B, InputEvent::Sleep);
    keys->deregisterDoubleKey(KEY_C, KEY_D);
    switches->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
    switches->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
    switches->deregisterSwitch(SW_LID);
    keys->setHandler(nullptr);
}

/// A product that meets everything the library has a line for.
class EveryLine
{
public:
    EveryLine()
    {
        m_devices.onAdd = [this](const QString &path, const QString &name) { add(path, name); };
        const DeviceDescription panel =
            DeviceDescription::keyboard("panel", BUS_HOST, {KEY_A, KEY_B, KEY_C})
                .withSwitches({SW_LINEIN_INSERT});
        m_panel = &m_subsystem.plug(0, panel);
        auto &broken =
            m_subsystem.plug(1, DeviceDescription::switchBox("broken", BUS_USB, {SW_LID}));
        broken.failIoctl(EVIOCGBIT(0, 31), EIO, 2);
        m_clock.settle();
        pressKeys();
        failToRead();
        failToOpen();
        m_devices.addKeyHandler(QStringLiteral("/dev/input/event7"), nullptr, {});
        auto *absent = new BasicKeyInputHandler(QStringLiteral("absent"));
        m_devices.addKeyHandler(QStringLiteral("/dev/input/event7"), absent, {});
        auto *absentSwitches = new BasicSwInputHandler(QStringLiteral("absent"));
        m_devices.addSwitchHandler(QStringLiteral("/dev/input/event7"), absentSwitches, {});
        m_devices.selectHandler(QStringLiteral("text"));
        m_subsystem.unplug(1);
        m_clock.settle();
    }

private:
    void add(const QString &path, const QString &name)
    {
        auto *keys = new BasicKeyInputHandler(name);
        auto *switches = new BasicSwInputHandler(name);
        makeMistakes(keys, switches);
        m_devices.addKeyHandler(path, keys, {});
        m_devices.addSwitchHandler(path, switches, {});
        LinuxInputListener another(nullptr, path, LinuxInputListener::Key);
        keys->setListener(&another);
    }

    void pressKeys()
    {
        for (const int code : {KEY_A, KEY_B, KEY_C}) {
            m_panel->press(code);
            m_clock.settle();
        }
        for (const int code : {KEY_C, KEY_A, KEY_B}) {
            m_panel->release(code);
            m_clock.settle();
        }
        m_panel->send({Vorn::Sim::InputNode::record(EV_KEY, KEY_B, 0, m_clock.now())});
        m_panel->setSwitch(SW_LINEIN_INSERT, true);
        m_clock.settle();
    }

    void failToRead()
    {
        m_panel->sendBytes(QByteArray(3, '\0'));
        m_clock.settle();
        m_panel->failRead(EIO);
        m_panel->press(KEY_A);
        m_clock.settle();
    }

    void failToOpen()
    {
        const LinuxInputListener listener(nullptr, QStringLiteral("/dev/input/event9"),
                                          LinuxInputListener::Key);
    }

    Vorn::Sim::VirtualClock m_clock;
    Vorn::Sim::InputSubsystem m_subsystem;
    Devices m_devices;
    Vorn::Sim::InputNode *m_panel = nullptr;
};

std::vector<Logged> everyLine()
{
    auto lines = std::make_shared<std::vector<Logged>>();
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    const int level = root.getLogLevel();
    log4cplus::SharedAppenderPtr appender(new Appender(lines));
    root.addAppender(appender);
    root.setLogLevel(log4cplus::TRACE_LOG_LEVEL);
    {
        const EveryLine product;
    }
    root.setLogLevel(level);
    root.removeAppender(appender);
    return *lines;
}

/// How many statements of the library write to a log, by file.
std::map<std::string, int> statements()
{
    const std::regex statement(R"((LOG4CPLUS_[A-Z]+|ENTRY_TRACE|forcedLog)\()");
    std::map<std::string, int> counts;
    for (const char *name : {"BasicInputHandler", "Input", "KeyProcessing", "LinuxInputListener"}) {
        const std::string path = std::string("src/lib/input/").append(name).append(".cpp");
        QFile file(QStringLiteral(VORN_SOURCE_DIR "/") + QString::fromStdString(path));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
        const std::string text = file.readAll().toStdString();
        const auto count = std::distance(std::sregex_iterator(text.begin(), text.end(), statement),
                                         std::sregex_iterator());
        counts[path] = static_cast<int>(count);
    }
    // The macro is defined by one LOG4CPLUS_TRACE.
    counts["src/lib/input/BasicInputHandler.cpp"] -= 2;
    // In the definition of the logger.
    for (auto &[path, count] : counts) {
        QFile file(QStringLiteral(VORN_SOURCE_DIR "/") + QString::fromStdString(path));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        count -= static_cast<int>(file.readAll().count("LOG4CPLUS_TEXT("));
    }
    return counts;
}

template <typename What>
What said(LibraryLogger logger, const char *message)
{
    const std::optional<LibraryLine> line = libraryLine(logger, QString::fromUtf8(message));
    EXPECT_TRUE(line && std::holds_alternative<What>(line->what)) << message;
    return line && std::holds_alternative<What>(line->what) ? std::get<What>(line->what) : What();
}

constexpr LibraryLogger handlers = LibraryLogger::BasicInputHandler;
constexpr LibraryLogger listeners = LibraryLogger::LinuxInputListener;
constexpr LibraryLogger detectors = LibraryLogger::KeyProcessing;

} // namespace

TEST(LibraryMessage, EveryLineOfTheLibraryIsKnown)
{
    std::map<std::string, std::set<int>> reached;
    std::set<std::size_t> kinds;
    for (const Logged &logged : everyLine()) {
        const auto logger = libraryLogger(QString::fromStdString(logged.logger));
        if (!logger)
            continue;
        reached[logged.file].insert(logged.line);
        const QString text = QString::fromStdString(logged.text);
        const std::optional<LibraryLine> line = libraryLine(*logger, text);
        ASSERT_TRUE(line) << logged.logger << ": " << logged.text;
        EXPECT_EQ(levelOf(line->level), logged.level) << logged.text;
        EXPECT_EQ(line->logger, *logger) << logged.text;
        kinds.insert(line->what.index());
        const std::optional<LibraryLine> anonymous = libraryLine(text);
        ASSERT_TRUE(anonymous) << logged.text;
        EXPECT_EQ(anonymous->what.index(), line->what.index()) << logged.text;
    }
    EXPECT_EQ(kinds.size(), std::variant_size_v<LibraryMessage>);
    for (const auto &[file, count] : statements())
        EXPECT_EQ(static_cast<int>(reached[file].size()), count) << file;
}

TEST(LibraryMessage, SaysWhatWasPublished)
{
    const auto bus =
        said<Said::EventOnBus>(LibraryLogger::Input, "Vorn::InputEvent(16) long press");
    EXPECT_EQ(bus.command, InputEvent::VolumeUp);
    EXPECT_EQ(bus.state, InputEvent::KeyLongPress);
    const auto odd = said<Said::EventOnBus>(LibraryLogger::Input, "Vorn::InputEvent(-7) Unknown");
    EXPECT_EQ(odd.command, -7);
    const auto report = said<Said::EventReported>(
        handlers, "Device: front-panel; id: browse; command [cmd=Stop, state=KeyPressed]");
    EXPECT_EQ(report.handler, "front-panel; id: browse");
    EXPECT_EQ(report.command, InputEvent::Stop);
    EXPECT_EQ(report.state, InputEvent::KeyPressed);
}

TEST(LibraryMessage, SaysWhatHasNoName)
{
    const auto reported = [](const char *event) {
        const auto line = libraryLine(
            handlers, QStringLiteral("Device: a; id: b; command ") + QString::fromLatin1(event));
        if (!line || !std::holds_alternative<Said::EventReported>(line->what))
            return std::string("none");
        const auto report = std::get<Said::EventReported>(line->what);
        return std::to_string(report.command) + " " + std::to_string(report.state);
    };
    EXPECT_EQ(reported("[cmd=5000, state=KeyReleased]"), "5000 2");
    EXPECT_EQ(reported("[cmd=-1, state=7]"), "-1 7");
    EXPECT_EQ(reported("[cmd=Stop, state=Unknown]"), "11 0");
    EXPECT_EQ(reported("[cmd=Halt, state=KeyPressed]"), "none");
    EXPECT_EQ(reported("[cmd=Stop, state=Pressed]"), "none");
    EXPECT_EQ(reported("[cmd=Stop, state=KeyPressed"), "none");
    EXPECT_EQ(reported("[cmd=Stop; state=KeyPressed]"), "none");
}

TEST(LibraryMessage, TakesNumbersOfTheirRange)
{
    const auto isKnown = [](LibraryLogger logger, const std::string &message) {
        return libraryLine(logger, QString::fromStdString(message)).has_value();
    };
    for (const char *value : {"-2147483648", "2147483647", "0", "9"}) {
        EXPECT_TRUE(isKnown(listeners, std::string(" type: 1 code:1 value:") + value)) << value;
        EXPECT_TRUE(isKnown(handlers, std::string("Trying to remove a non-existing key ") + value))
            << value;
        EXPECT_TRUE(
            isKnown(LibraryLogger::Input, "Vorn::InputEvent(" + std::string(value) + ") press"))
            << value;
    }
    for (const char *value : {"-2147483649", "2147483648", "", "-", "x", "1x", "/", ":"})
        EXPECT_FALSE(isKnown(listeners, std::string(" type: 1 code:1 value:") + value)) << value;
    EXPECT_TRUE(isKnown(listeners, " type: 65535 code:65535 value:1"));
    EXPECT_FALSE(isKnown(listeners, " type: 65536 code:1 value:1"));
    EXPECT_FALSE(isKnown(listeners, " type: 1 code:65536 value:1"));
    EXPECT_FALSE(isKnown(listeners, " type: -1 code:1 value:1"));
    EXPECT_TRUE(isKnown(listeners, "bustype: 65535"));
    EXPECT_FALSE(isKnown(listeners, "bustype: 65536"));
    const auto isTime = [&isKnown](const char *time) {
        return isKnown(detectors,
                       "Stored:(input_event: code:1 value:press time:" + std::string(time) + ")");
    };
    EXPECT_TRUE(isTime("23:59:59,999"));
    EXPECT_TRUE(isTime("00:00:00,000"));
    for (const char *time : {"24:00:00,000", "00:60:00,000", "00:00:60,000", "00:00:00,1000",
                             "-1:00:00,000", "00:00:00"})
        EXPECT_FALSE(isTime(time)) << time;
    EXPECT_FALSE(isKnown(detectors, "Stored:(input_event: code:1 value:pres time:10:00:00,000)"));
    EXPECT_FALSE(isKnown(detectors,
                         "Stored:(input_event: code:65536 value:press "
                         "time:10:00:00,000)"));
}

TEST(LibraryMessage, NamesMayContainWhatSeparatesThem)
{
    const auto report = said<Said::EventReported>(
        handlers,
        "Device: a; id: b; command [cmd=Stop, state=KeyPressed]; id: c; command "
        "[cmd=Next, state=KeyReleased]");
    EXPECT_EQ(report.command, InputEvent::Next);
    const auto names = handlerNames(report.handler);
    ASSERT_EQ(names.size(), 2);
    EXPECT_EQ(names[1].second, "c");
    const auto node = said<Said::NodeNamed>(handlers, "Dev /dev/input/event3: a: b 'c'");
    EXPECT_EQ(node.path, "/dev/input/event3");
    EXPECT_EQ(node.name, "a: b 'c'");
    EXPECT_EQ(said<Said::ListenerName>(listeners, "name: ").name, "");
}

TEST(LibraryMessage, SaysWhichKeysAreStored)
{
    const auto stored = said<Said::KeysStored>(
        detectors,
        "Stored:(input_event: code:128 value:press time:10:00:00,500, input_event: "
        "code:207 value:release time:10:00:00,750)");
    ASSERT_EQ(stored.keys.size(), 2);
    EXPECT_EQ(stored.keys[0].code, 128);
    EXPECT_TRUE(stored.keys[0].isPress);
    EXPECT_EQ(stored.keys[1].code, 207);
    EXPECT_FALSE(stored.keys[1].isPress);
}

TEST(LibraryMessage, TakesNamesOfFunctionsAsAnyCoreLibraryWritesThem)
{
    using Function = Said::Entered::Function;
    for (const char *message :
         {"Enter BasicInputHandler::selectHandler: text",
          "Enter [BasicInputHandler] void selectHandler(const QString&): text",
          "Enter selectHandler: text"})
    {
        const auto entered = said<Said::Entered>(handlers, message);
        EXPECT_EQ(entered.function, Function::SelectHandler) << message;
        EXPECT_EQ(entered.argument, "text") << message;
    }
    EXPECT_EQ(said<Said::ReadBegun>(listeners, "Enter readData: 12").descriptor, 12);
}

TEST(LibraryMessage, KnowsLoggersWithoutTheirBeginning)
{
    EXPECT_EQ(libraryLogger("Input"), LibraryLogger::Input);
    EXPECT_EQ(libraryLogger("putHandler"), handlers);
    EXPECT_EQ(libraryLogger("utListener"), listeners);
    EXPECT_FALSE(libraryLogger("put"));
    EXPECT_FALSE(libraryLogger("player.Input"));
    EXPECT_FALSE(libraryLogger(""));
}

TEST(LibraryMessage, RefusesWhatTheLibraryDoesNotWrite)
{
    for (const char *message : {"",
                                " type: 1 code:128",
                                " type: 1 code:128 value:1 ",
                                " type: 1 code:99999999999 value:1",
                                "Stored:(",
                                "Stored:()",
                                "Stored:(input_event: code:1 value:press time:10:00:00,500",
                                "key:1 value ",
                                "key: value 1",
                                "Vorn::InputEvent(1) pres",
                                "Vorn::InputEvent() press",
                                "Enter somethingElse: 1",
                                "Enter ",
                                "Device: a; id: b; command [cmd=Stop, state=",
                                "bustype: ",
                                "Dev /dev/input/event0",
                                " ---> added '/dev/input/event0",
                                "Event device x",
                                "\xff\xfe",
                                "Duplicate key in key input map: , overwriting old value"})
    {
        EXPECT_FALSE(libraryLine(QString::fromUtf8(message))) << message;
    }
}
