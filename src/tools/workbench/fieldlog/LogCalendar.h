#ifndef VORN_WORKBENCH_LOGCALENDAR_H
#define VORN_WORKBENCH_LOGCALENDAR_H

#include "TimeFormat.h"

#include <QDate>
#include <QTimeZone>

#include <optional>

namespace Vorn::Workbench {

/// Makes times of what the lines of a log state, whichever parts of it are missing.
class LogCalendar
{
public:
    explicit LogCalendar(const QTimeZone &zone);

    /// The day when the file was last written, for dates without a year.
    void setLastDay(const QDate &day) { m_lastDay = day; }

    struct Time
    {
        qint64 microseconds =
            0; ///< since the epoch; without a date, since the first day's midnight
        bool hasDate = false;
        bool isYearGuessed = false;
    };

    /// Lines are expected in the order of the log: a date without a year is near the one before,
    /// and a time of day without a date that goes back belongs to the next day.
    Time toTime(const LogStamp &stamp);

private:
    qint64 dayOf(const LogStamp &stamp);
    int yearOf(const LogStamp &stamp);
    qint64 inUtc(qint64 local);

    const QTimeZone m_zone;
    const bool m_isUtc;
    QDate m_lastDay = QDate::currentDate();
    std::optional<qint64> m_dayBefore; ///< of the line before, where years are missing
    std::optional<qint64> m_timeBefore; ///< where dates are missing
    qint64 m_offsetHour = -1; ///< in which m_offset is valid
    qint64 m_offset = 0; ///< of the zone, in microseconds
};

} // namespace Vorn::Workbench

#endif
