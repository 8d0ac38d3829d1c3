#include "ProductLog.h"

#include <log4cplus/helpers/property.h>
#include <log4cplus/helpers/timehelper.h>
#include <log4cplus/spi/loggingevent.h>

#include <chrono>
#include <sstream>

using Vorn::Workbench::LogLevel;

std::vector<ProductMessage> keyPress()
{
    // log4cplus counts relative times from the start of the process.
    using std::chrono::duration_cast;
    using std::chrono::microseconds;
    const qint64 now =
        duration_cast<microseconds>(std::chrono::system_clock::now().time_since_epoch()).count()
        + 1'000'000;
    return {
        {"player.Playlist", LogLevel::Info, "42 tracks", now},
        {"LinuxInputListener", LogLevel::Info, "Event device /dev/input/event0 ready", now + 1000},
        {"BasicInputHandler", LogLevel::Warn,
         "Duplicate key in key input map: 115, overwriting old value", now + 2000},
        {"LinuxInputListener", LogLevel::Debug, " type: 1 code:115 value:1", now + 3456},
        {"KeyProcessing", LogLevel::Debug, "Stored:(time: 1.2 type: 1 code: 115 value: 1)",
         now + 4000},
        {"Input", LogLevel::Debug, "Vorn::InputEvent(3) click", now + 5000},
        {"player.Playlist", LogLevel::Error, "no such file - [/music/a: b.flac]", now + 6000},
        {"BasicInputHandler", LogLevel::Trace,
         "Enter BasicInputHandler::on_keyLongPress: Device: /dev/input/event0; id: ", now + 7000}};
}

std::string written(log4cplus::Layout &layout, const ProductMessage &message)
{
    const int level = (static_cast<int>(message.level)) * 10'000;
    const log4cplus::spi::InternalLoggingEvent event(
        message.logger, level, productContext, {}, message.message, productThread, "4711",
        log4cplus::helpers::Time(std::chrono::microseconds(message.time)),
        "src/lib/input/LinuxInputListener.cpp", 166, "void LinuxInputListener::readData(int)");
    std::ostringstream text;
    layout.formatAndAppend(text, event);
    return text.str();
}

std::string writtenBy(const std::string &pattern, const ProductMessage &message)
{
    return written(*patternLayout(pattern), message);
}

std::unique_ptr<log4cplus::Layout> patternLayout(const std::string &pattern)
{
    return std::make_unique<log4cplus::PatternLayout>(pattern);
}

std::unique_ptr<log4cplus::Layout> ttccLayout(const std::vector<std::string> &properties)
{
    log4cplus::helpers::Properties parsed;
    for (const std::string &property : properties) {
        const std::size_t equals = property.find('=');
        parsed.setProperty(property.substr(0, equals), property.substr(equals + 1));
    }
    return std::make_unique<log4cplus::TTCCLayout>(parsed);
}
