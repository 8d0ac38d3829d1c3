#ifndef VORN_WORKBENCH_LOGFIELDS_H
#define VORN_WORKBENCH_LOGFIELDS_H

#include "LogLevel.h"
#include "TimeFormat.h"

#include <QtGlobal>

#include <optional>
#include <string_view>

namespace Vorn::Workbench {

/// A line taken apart, before its time is made one of a session. The texts are parts of the line.
struct LogFields
{
    std::optional<LogStamp> stamp;
    bool hasFraction = false; ///< whether the layout states fractions of a second
    std::optional<qint64> sinceStart; ///< of the program, in microseconds
    std::optional<qint64> uptime; ///< of the system, in microseconds
    std::optional<LogLevel> level;
    std::string_view unit; ///< syslog's "player[123]"
    std::string_view pid;
    std::string_view thread;
    std::string_view logger;
    std::string_view message;
    qint64 lost = 0;
    /// Whether the line has other blanks beside a value than the layout writes.
    bool isUnevenlyFilled = false;
};

} // namespace Vorn::Workbench

#endif
