#include "TakenLog.h"

#include "LogLine.h"
#include "LogSessions.h"

#include <log4cplus/appender.h>
#include <log4cplus/logger.h>
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

struct TakenLog::State
{
    std::shared_ptr<std::vector<LogLine>> lines = std::make_shared<std::vector<LogLine>>();
    int level = log4cplus::Logger::getRoot().getLogLevel();
    log4cplus::SharedAppenderPtr appender{new Appender(lines)};
};

TakenLog::TakenLog()
    : m_state(std::make_unique<State>())
{
    log4cplus::Logger::getRoot().addAppender(m_state->appender);
    log4cplus::Logger::getRoot().setLogLevel(log4cplus::TRACE_LOG_LEVEL);
}

TakenLog::~TakenLog()
{
    log4cplus::Logger::getRoot().setLogLevel(m_state->level);
    log4cplus::Logger::getRoot().removeAppender(m_state->appender);
}

std::vector<SessionEntry> TakenLog::session(const Filter &filter) const
{
    std::vector<SessionEntry> entries;
    LogSessions sessions(QStringLiteral("player.log"),
                         [&entries](const SessionEntry &entry) { entries.push_back(entry); });
    for (const LogLine &line : *m_state->lines) {
        if (!filter || filter(line.logger.toStdString(), static_cast<int>(*line.level)))
            sessions.add(line);
    }
    sessions.finish();
    return entries;
}
