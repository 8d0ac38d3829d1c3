#ifndef VORN_WORKBENCH_LOGLINEMAKER_H
#define VORN_WORKBENCH_LOGLINEMAKER_H

#include "LogCalendar.h"
#include "LogFields.h"
#include "LogLine.h"

#include <QHash>
#include <QTimeZone>

#include <array>
#include <string>
#include <string_view>

namespace Vorn::Workbench {

/// Makes the lines of a log of their fields, in the order of the log.
class LogLineMaker
{
public:
    explicit LogLineMaker(const QTimeZone &zone);

    void setLastDay(const QDate &day) { m_calendar.setLastDay(day); }

    LogLine line(const LogFields &fields);

    /// Whether a year was guessed.
    bool hasGuessedYears() const { return m_hasGuessedYears; }

private:
    /// The texts that came last: a log has few loggers and threads, but millions of lines.
    class Texts
    {
    public:
        QString text(std::string_view utf8);

    private:
        struct Entry
        {
            std::string utf8;
            QString text;
        };
        std::array<Entry, 8> m_entries;
        std::size_t m_next = 0;
    };

    struct Start
    {
        qint64 last = 0;
        int number = 1;
    };

    void setTime(const LogFields &fields, LogLine *line);
    void setProcess(const LogFields &fields, LogLine *line);
    void countStarts(const LogFields &fields, LogLine *line);

    LogCalendar m_calendar;
    Texts m_processes;
    Texts m_threads;
    Texts m_loggers;
    QHash<QString, Start> m_starts;
    std::string m_process;
    bool m_hasGuessedYears = false;
};

} // namespace Vorn::Workbench

#endif
