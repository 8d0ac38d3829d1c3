#include "LogRecorder.h"

#include <log4cplus/appender.h>
#include <log4cplus/logger.h>
#include <log4cplus/spi/loggingevent.h>

#include <ostream>
#include <string>
#include <tuple>
#include <utility>

struct LogRecorder::State
{
    std::vector<LogLine> lines;
    std::function<void(const LogLine &)> callback;
};

namespace {

const char *const appenderName = "LogRecorder";

// The tests expect function names as GCC spells them: "QString&", not "QString &".
std::string asGccSpellsIt(std::string text)
{
#ifdef __clang__
    for (const char *const reference : {" &", " *"}) {
        for (auto at = text.find(reference); at != std::string::npos; at = text.find(reference, at))
            text.erase(at, 1);
    }
#endif
    return text;
}

class RecordingAppender : public log4cplus::Appender
{
public:
    explicit RecordingAppender(std::shared_ptr<LogRecorder::State> state)
        : m_state(std::move(state))
    {
        setName(appenderName);
    }
    ~RecordingAppender() override { destructorImpl(); }

    void close() override { }

protected:
    void append(const log4cplus::spi::InternalLoggingEvent &event) override
    {
        m_state->lines.push_back({event.getLoggerName(), event.getLogLevel(),
                                  asGccSpellsIt(event.getMessage()), event.getFile(),
                                  asGccSpellsIt(event.getFunction())});
        if (m_state->callback)
            m_state->callback(m_state->lines.back());
    }

private:
    std::shared_ptr<LogRecorder::State> m_state;
};

} // namespace

bool LogLine::operator==(const LogLine &other) const
{
    return std::tie(logger, level, text, file, function)
        == std::tie(other.logger, other.level, other.text, other.file, other.function);
}

std::ostream &operator<<(std::ostream &stream, const LogLine &line)
{
    return stream << line.logger << " " << line.level << " \"" << line.text << "\" " << line.file
                  << " \"" << line.function << "\"";
}

LogRecorder::LogRecorder(int level)
    : m_state(std::make_shared<State>())
    , m_oldLevel(log4cplus::Logger::getRoot().getLogLevel())
{
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.setLogLevel(level);
    root.addAppender(log4cplus::SharedAppenderPtr(new RecordingAppender(m_state)));
}

LogRecorder::~LogRecorder()
{
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.removeAppender(LOG4CPLUS_TEXT(appenderName));
    root.setLogLevel(m_oldLevel);
}

const std::vector<LogLine> &LogRecorder::lines() const
{
    return m_state->lines;
}

std::vector<LogLine> LogRecorder::lines(int level) const
{
    std::vector<LogLine> result;
    for (const LogLine &line : m_state->lines) {
        if (line.level == level)
            result.push_back(line);
    }
    return result;
}

std::vector<std::string> LogRecorder::texts() const
{
    std::vector<std::string> result;
    for (const LogLine &line : m_state->lines)
        result.push_back(line.text);
    return result;
}

std::vector<std::string> LogRecorder::texts(int level) const
{
    std::vector<std::string> result;
    for (const LogLine &line : lines(level))
        result.push_back(line.text);
    return result;
}

void LogRecorder::clear()
{
    m_state->lines.clear();
}

void LogRecorder::onLine(std::function<void(const LogLine &)> callback)
{
    m_state->callback = std::move(callback);
}
