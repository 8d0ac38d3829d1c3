#include "LogClock.h"

#include <algorithm>
#include <array>

namespace Vorn::Workbench {

namespace {

constexpr qint64 second = 1'000'000;

/// Threads that log at the same time may get into each other's way by so much.
constexpr qint64 tolerance = second / 10;
/// Nothing logged for so long is stranger than a clock that was wrong until the network was there.
constexpr qint64 leap = qint64{24} * 3600 * second;

/// A product may be silent in a warehouse, but a picture of a session cannot show that.
constexpr qint64 longestSilence = 100 * leap;
/// What a session can hold.
constexpr qint64 longestSession = 365 * longestSilence;

/// "2 h 5 min": the two largest units.
QString durationText(qint64 microseconds)
{
    struct Unit
    {
        const char *name;
        qint64 size;
    };
    constexpr std::array<Unit, 5> units = {{{"d", qint64{24} * 3600 * second},
                                            {"h", 3600 * second},
                                            {"min", 60 * second},
                                            {"s", second},
                                            {"ms", second / 1000}}};
    QString text;
    int parts = 0;
    for (const Unit &unit : units) {
        const qint64 count = microseconds / unit.size;
        microseconds -= count * unit.size;
        if (count > 0)
            text += QStringLiteral("%1%2 %3")
                        .arg(text.isEmpty() ? QString() : QStringLiteral(" "))
                        .arg(count)
                        .arg(QLatin1String(unit.name));
        parts += count > 0 || parts > 0 ? 1 : 0;
        if (parts == 2)
            break;
    }
    return text;
}

QString setBy(qint64 difference)
{
    return (difference < 0 ? QStringLiteral("the clock was set back by %1")
                           : QStringLiteral("the clock was set forward by %1"))
        .arg(durationText(std::abs(difference)));
}

} // namespace

LogClock::Reading LogClock::at(const LogLine &line)
{
    Reading reading;
    // Times with and without a date, of two layouts, have nothing in common.
    if (m_stated && line.time && m_hasDate == line.hasDate)
        advance(line, &reading.remark);
    else if (m_stated && line.time)
        reading.remark =
            QStringLiteral("the times before and after cannot be compared, as only one "
                           "of them has a date");
    if (!m_stated || !line.time || m_hasDate != line.hasDate || !reading.remark.isEmpty())
        m_stated = line.time ? line.time : m_stated;
    else
        m_stated = std::max(*m_stated, *line.time);
    m_hasDate = line.time ? line.hasDate : m_hasDate;
    m_uptime = line.uptime;
    reading.time = m_time;
    return reading;
}

void LogClock::advance(const LogLine &line, QString *remark)
{
    const qint64 stated = *line.time - *m_stated;
    if (line.uptime && m_uptime && *line.uptime >= *m_uptime) {
        const qint64 passed = *line.uptime - *m_uptime;
        if (std::abs(stated - passed) > second / 2)
            *remark = setBy(stated - passed);
        pass(passed);
        return;
    }
    pass(stated);
    if (stated < -tolerance)
        *remark = setBy(stated) + QStringLiteral(", or the lines are out of order");
    else if (stated > longestSilence)
        *remark = QStringLiteral("the time leaps by %1: the clock was set, or nothing was logged; "
                                 "the session goes on without a gap")
                      .arg(durationText(stated));
    else if (stated > leap)
        *remark = QStringLiteral("the time leaps by %1: nothing was logged, or the clock was set")
                      .arg(durationText(stated));
}

void LogClock::pass(qint64 microseconds)
{
    if (microseconds > 0 && microseconds <= longestSilence)
        m_time = std::min(m_time + microseconds, longestSession);
}

} // namespace Vorn::Workbench
