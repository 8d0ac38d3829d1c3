// This executable's own definitions play the maker's core library: symbol interposition makes them
// replace the stand-in's.

#include "BasicInputHandler.h"
#include "KeyProcessing.h"

#include "EventRecorder.h"
#include "LogRecorder.h"
#include "Profiler.h"
#include "Records.h"
#include "dbglog.h"

#include <log4cplus/loggingmacros.h>

#include <gmock/gmock.h>

#include <ostream>
#include <sstream>

namespace {

std::vector<std::string> watchers;
int composedTexts = 0;

} // namespace

Profiler *Profiler::instance()
{
    static Profiler profiler;
    watchers.emplace_back("instance");
    return &profiler;
}

void Profiler::createWatcher(const QString &watcher, const QString &event)
{
    watchers.push_back(watcher.toStdString() + "/" + event.toStdString());
}

const QString &Profiler::UIResponseWatcher()
{
    static const QString name = QStringLiteral("response");
    return name;
}

const QString &Profiler::UIDrawEvent()
{
    static const QString name = QStringLiteral("draw");
    return name;
}

std::string dbglog_scopedFunction(const std::string &function, const std::string &logger)
{
    ++composedTexts;
    // A replacement library may itself log.
    LOG4CPLUS_TRACE(log4cplus::Logger::getInstance("maker"), "asked for " << logger);
    return "{" + function + "|" + logger + "}";
}

std::ostream &operator<<(std::ostream &stream, const QString &text)
{
    ++composedTexts;
    LOG4CPLUS_TRACE(log4cplus::Logger::getInstance("maker"), "a text");
    return stream << "'" << text.toLatin1().constData() << "'";
}

namespace {

using testing::Contains;
using testing::ElementsAre;

class Devices : public BasicInputHandler
{
    void addDevice(const QString &, const QString &) override { }
};

std::vector<std::string> textsOf(const LogRecorder &log, const std::string &logger)
{
    std::vector<std::string> result;
    for (const LogLine &line : log.lines()) {
        if (line.logger == logger)
            result.push_back(line.text);
    }
    return result;
}

TEST(CoreLibrary, OfTheMakerWritesEveryString)
{
    LogRecorder log;
    const LinuxInputListener listener(nullptr, QString::fromUtf8("/nowhere/ü"),
                                      LinuxInputListener::Key);
    // The operator decides on the encoding; the library does not convert beforehand.
    EXPECT_EQ(textsOf(log, "LinuxInputListener").front(),
              "Cannot open input device '/nowhere/\xfc'");
    EXPECT_THAT(textsOf(log, "maker"), Contains("a text"));
}

TEST(CoreLibrary, OfTheMakerNamesTheFunctionsOfEntryTraces)
{
    LogRecorder log;
    Devices devices;
    devices.selectKeyHandler(QStringLiteral("text"));
    EXPECT_THAT(textsOf(log, "BasicInputHandler"),
                ElementsAre("Enter {BasicInputHandler::BasicInputHandler()|BasicInputHandler}: ",
                            "Enter {void BasicInputHandler::selectKeyHandler(const QString&)"
                            "|BasicInputHandler}: 'text'"));
    EXPECT_THAT(textsOf(log, "maker"), Contains("asked for BasicInputHandler"));
}

TEST(CoreLibrary, OfTheMakerNamesTheFunctionThatReads)
{
    LinuxInputListener listener(nullptr, QStringLiteral("/nowhere"), LinuxInputListener::Key);
    LogRecorder log;
    listener.readData(-1);
    EXPECT_EQ(textsOf(log, "LinuxInputListener").front(),
              "Enter {void LinuxInputListener::readData(int)|LinuxInputListener}: -1");
}

TEST(CoreLibrary, OfTheMakerWritesTheTimeOfARecord)
{
    std::ostringstream stream;
    stream << keyRecord(28, 1, 1000);
    EXPECT_EQ(stream.str(), "input_event: code:28 value:press time:'00:00:01,000'");
}

TEST(CoreLibrary, OfTheMakerIsAskedForNoTextOfALineThatIsNotLogged)
{
    EventRecorder events;
    BasicKeyInputHandler keys(QStringLiteral("panel"));
    keys.registerKey(28, InputEvent::Confirm, false);
    Devices devices;
    const auto textsAt = [&](log4cplus::LogLevel level) {
        const LogRecorder log(level);
        composedTexts = 0;
        // An unregistered chord, whose records are logged as a list, and an entry trace.
        keys.processEvent({keyRecord(28, 1), keyRecord(29, 1), keyRecord(28, 0), keyRecord(29, 0)});
        keys.processEvent({keyRecord(28, 1), keyRecord(28, 0)});
        devices.selectKeyHandler(QStringLiteral("text"));
        return composedTexts;
    };
    EXPECT_EQ(textsAt(log4cplus::OFF_LOG_LEVEL), 0);
    EXPECT_EQ(textsAt(log4cplus::WARN_LOG_LEVEL), 0);
    EXPECT_GT(textsAt(log4cplus::DEBUG_LOG_LEVEL), 0);
    EXPECT_GT(textsAt(log4cplus::TRACE_LOG_LEVEL), textsAt(log4cplus::DEBUG_LOG_LEVEL));
}

TEST(CoreLibrary, OfTheMakerTimesEachEvent)
{
    watchers.clear();
    EventRecorder events;
    LogRecorder log;
    BasicKeyInputHandler keys(QStringLiteral("panel"));
    keys.registerKey(28, InputEvent::Confirm, false);
    keys.processEvent({keyRecord(28, 1), keyRecord(28, 0)});
    EXPECT_THAT(watchers, ElementsAre("instance", "response/draw", "instance", "response/draw"));
    EXPECT_THAT(log.texts(),
                Contains("Device: 'panel'; id: ''; command '[cmd=Confirm, state=KeyPressed]'"));
}

} // namespace
