#ifndef VORN_WORKBENCH_LOGLINE_H
#define VORN_WORKBENCH_LOGLINE_H

#include "LogLevel.h"

#include <QString>

#include <optional>

namespace Vorn::Workbench {

/// A line of a product's log, taken apart.
struct LogLine
{
    int file = 0; ///< index into LogReader::files()
    qint64 number = 0; ///< of the line in its file, from 1
    /// In microseconds: since the epoch; without a date, since midnight of the log's first day, or
    /// since the start of the program where the layout counts from there. Nothing if the layout has
    /// no time. As logged: it goes back where the clock was set back, see LogClock.
    std::optional<qint64> time;
    bool hasDate = false;
    /// Of a clock that nobody sets, in microseconds since the system started; journald's JSON only.
    std::optional<qint64> uptime;
    /// Tells the processes in one log apart: the pid, or journald's "player[123]". A start that
    /// only shows in the log's relative times counts, too. Empty if the layout does not say.
    QString process;
    QString thread;
    std::optional<LogLevel> level;
    QString logger; ///< empty if the layout does not say
    QString message;
    /// On a line by which the journal says that it has dropped messages at this place, or does not
    /// show one: how many.
    qint64 lost = 0;
};

} // namespace Vorn::Workbench

#endif
