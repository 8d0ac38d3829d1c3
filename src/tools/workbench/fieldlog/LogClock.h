#ifndef VORN_WORKBENCH_LOGCLOCK_H
#define VORN_WORKBENCH_LOGCLOCK_H

#include "LogLine.h"

#include <QString>

#include <optional>

namespace Vorn::Workbench {

/// Makes times that never go back of the times that one process's lines state. Where these go back,
/// the clock was set, and time stands still; where they leap, it may have been. A leap of months is
/// no part of a session.
class LogClock
{
public:
    struct Reading
    {
        qint64 time = 0; ///< in microseconds since the process's first line
        /// What is odd about the clock at this line, for people; empty if nothing is.
        QString remark;
    };

    /// Lines are expected in the order of the log.
    Reading at(const LogLine &line);

private:
    void advance(const LogLine &line, QString *remark);
    void pass(qint64 microseconds);

    std::optional<qint64> m_stated;
    bool m_hasDate = false;
    std::optional<qint64> m_uptime;
    qint64 m_time = 0;
};

} // namespace Vorn::Workbench

#endif
