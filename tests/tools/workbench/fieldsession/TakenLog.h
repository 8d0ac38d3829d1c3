#ifndef TAKENLOG_H
#define TAKENLOG_H

#include "LogLine.h"

#include <log4cplus/logger.h>

#include <memory>
#include <vector>

/// Takes what the library logs, at all levels, as a reader of logs would give it.
class TakenLog
{
public:
    TakenLog();
    ~TakenLog();
    TakenLog(const TakenLog &) = delete;
    TakenLog &operator=(const TakenLog &) = delete;

    const std::vector<Vorn::Workbench::LogLine> &lines() const { return *m_lines; }

private:
    const std::shared_ptr<std::vector<Vorn::Workbench::LogLine>> m_lines;
    const int m_level;
    log4cplus::SharedAppenderPtr m_appender;
};

#endif
