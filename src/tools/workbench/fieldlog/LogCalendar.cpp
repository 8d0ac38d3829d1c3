#include "LogCalendar.h"

#include <QDateTime>

#include <cstdlib>

namespace Vorn::Workbench {

namespace {

constexpr qint64 second = 1'000'000;
constexpr qint64 hour = 3600 * second;
constexpr qint64 day = 24 * hour;

/// Days since the epoch in the Gregorian calendar. Years are counted from March, so that the leap
/// day is the last one.
qint64 daysSinceEpoch(int year, int month, int dayOfMonth)
{
    const int shifted = month <= 2 ? year - 1 : year;
    const int fromMarch = (month + 9) % 12;
    const qint64 dayOfYear = (153 * fromMarch + 2) / 5 + dayOfMonth - 1;
    constexpr qint64 epoch = 719468; // from 1 March of the year 0
    return qint64{365} * shifted + shifted / 4 - shifted / 100 + shifted / 400 + dayOfYear - epoch;
}

int monthOf(const LogStamp &stamp)
{
    return stamp.month == 0 ? 1 : stamp.month;
}

/// The last one in which the date is not after @p lastDay.
int latestYear(const LogStamp &stamp, const QDate &lastDay)
{
    // A day of slack for the zone.
    const qint64 last = daysSinceEpoch(lastDay.year(), lastDay.month(), lastDay.day()) + 1;
    int year = lastDay.year();
    if (daysSinceEpoch(year, monthOf(stamp), stamp.day) > last)
        --year;
    const bool isLeapDay = stamp.month == 2 && stamp.day == 29;
    while (isLeapDay && !QDate::isLeapYear(year))
        --year;
    return year;
}

int nearestYear(const LogStamp &stamp, qint64 dayBefore)
{
    const QDate before = QDate(1970, 1, 1).addDays(dayBefore);
    int nearest = before.year();
    for (const int year : {before.year() - 1, before.year() + 1}) {
        const auto distance = [&](int candidate) {
            return std::llabs(daysSinceEpoch(candidate, monthOf(stamp), stamp.day) - dayBefore);
        };
        if (distance(year) < distance(nearest))
            nearest = year;
    }
    return nearest;
}

} // namespace

LogCalendar::LogCalendar(const QTimeZone &zone)
    : m_zone(zone)
    , m_isUtc(m_zone == QTimeZone::utc())
{ }

LogCalendar::Time LogCalendar::toTime(const LogStamp &stamp)
{
    if (stamp.isSinceEpoch)
        return {stamp.microseconds, true, false};
    if (stamp.day == 0) {
        qint64 time = stamp.microseconds;
        if (m_timeBefore) {
            // The clock may be set back, by an hour at the end of summer time. What goes back by
            // more than that is another day.
            constexpr qint64 tolerance = hour + hour / 2;
            const qint64 since = ((time - (*m_timeBefore - tolerance)) % day + day) % day;
            time = *m_timeBefore - tolerance + since;
        }
        m_timeBefore = time;
        return {time, false, false};
    }
    const qint64 local = dayOf(stamp) * day + stamp.microseconds;
    return {stamp.offset ? local - *stamp.offset * second : inUtc(local), true, stamp.year == 0};
}

qint64 LogCalendar::dayOf(const LogStamp &stamp)
{
    const int year = yearOf(stamp);
    // A day of the year has no month.
    if (stamp.month == 0)
        return daysSinceEpoch(year, 1, 1) + stamp.day - 1;
    const qint64 result = daysSinceEpoch(year, stamp.month, stamp.day);
    if (stamp.year == 0)
        m_dayBefore = result;
    return result;
}

int LogCalendar::yearOf(const LogStamp &stamp)
{
    if (stamp.year != 0)
        return stamp.year;
    return m_dayBefore ? nearestYear(stamp, *m_dayBefore) : latestYear(stamp, m_lastDay);
}

qint64 LogCalendar::inUtc(qint64 local)
{
    if (m_isUtc)
        return local;
    const qint64 localHour = local / hour;
    if (localHour != m_offsetHour) {
        // Qt knows the rules but is slow, and no zone changes within a quarter of an hour; the
        // changes are at full hours.
        QDateTime time = QDateTime::fromMSecsSinceEpoch(local / 1000, QTimeZone::utc());
        time.setTimeZone(m_zone);
        m_offset = qint64{time.offsetFromUtc()} * second;
        m_offsetHour = localHour;
    }
    return local - m_offset;
}

} // namespace Vorn::Workbench
