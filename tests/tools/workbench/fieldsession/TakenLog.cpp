#include "TakenLog.h"

#include <log4cplus/appender.h>
#include <log4cplus/spi/loggingevent.h>

#include <utility>

using namespace Vorn::Workbench;

namespace {

LogLevel levelOf(int level)
{
    if (level >= log4cplus::ERROR_LOG_LEVEL)
        return LogLevel::Error;
    if (level >= log4cplus::WARN_LOG_LEVEL)
        return LogLevel::Warn;
    if (level >= log4cplus::INFO_LOG_LEVEL)
        return LogLevel::Info;
    return level >= log4cplus::DEBUG_LOG_LEVEL ? LogLevel::Debug : LogLevel::Trace;
}

class Appender : public log4cplus::Appender
{
public:
    explicit Appender(std::shared_ptr<std::vector<LogLine>> lines)
        : m_lines(std::move(lines))
    { }
    ~Appender() override { destructorImpl(); }
    void close() override { }

protected:
    void append(const log4cplus::spi::InternalLoggingEvent &event) override
    {
        LogLine line;
        line.number = static_cast<qint64>(m_lines->size()) + 1;
        line.time = std::chrono::duration_cast<std::chrono::microseconds>(
                        event.getTimestamp().time_since_epoch())
                        .count();
        line.hasDate = true;
        line.level = levelOf(event.getLogLevel());
        line.logger = QString::fromStdString(event.getLoggerName());
        line.message = QString::fromStdString(event.getMessage());
        m_lines->push_back(line);
    }

private:
    const std::shared_ptr<std::vector<LogLine>> m_lines;
};

} // namespace

TakenLog::TakenLog()
    : m_lines(std::make_shared<std::vector<LogLine>>())
    , m_level(log4cplus::Logger::getRoot().getLogLevel())
    , m_appender(new Appender(m_lines))
{
    log4cplus::Logger::getRoot().addAppender(m_appender);
    log4cplus::Logger::getRoot().setLogLevel(log4cplus::TRACE_LOG_LEVEL);
}

TakenLog::~TakenLog()
{
    log4cplus::Logger::getRoot().setLogLevel(m_level);
    log4cplus::Logger::getRoot().removeAppender(m_appender);
}
