#ifndef VORN_WORKBENCH_LOGCLOCK_H
#define VORN_WORKBENCH_LOGCLOCK_H

#include "LogLine.h"

#include <QString>

#include <optional>

namespace Vorn::Workbench {

/// Makes times that never go back of the times of one process's lines.
class LogClock
{
public:
    struct Reading
    {
        qint64 time = 0; ///< in microseconds since the process's first line; never less than before
        /// What is odd about the clock at this line, for people; empty if nothing is.
        QString remark;
    };

    Reading at(const LogLine &line);

private:
    std::optional<qint64> m_wall;
    std::optional<qint64> m_uptime;
    qint64 m_time = 0;
};

} // namespace Vorn::Workbench

#endif
