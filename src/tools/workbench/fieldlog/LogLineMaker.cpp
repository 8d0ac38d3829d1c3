#include "LogLineMaker.h"

#include <algorithm>

namespace Vorn::Workbench {

namespace {

QString fromUtf8(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

} // namespace

LogLineMaker::LogLineMaker(const QTimeZone &zone)
    : m_calendar(zone)
{ }

LogLine LogLineMaker::line(const LogFields &fields)
{
    LogLine line;
    setTime(fields, &line);
    setProcess(fields, &line);
    if (!fields.stamp && fields.sinceStart)
        countStarts(fields, &line);
    line.thread = m_threads.text(fields.thread);
    line.level = fields.level;
    line.logger = m_loggers.text(fields.logger);
    line.message = fromUtf8(fields.message);
    line.lost = fields.lost;
    return line;
}

void LogLineMaker::setTime(const LogFields &fields, LogLine *line)
{
    line->uptime = fields.uptime;
    if (fields.stamp) {
        const LogCalendar::Time time = m_calendar.toTime(*fields.stamp);
        line->time = time.microseconds;
        line->hasDate = time.hasDate;
        m_hasGuessedYears = m_hasGuessedYears || time.isYearGuessed;
    } else {
        line->time = fields.uptime ? fields.uptime : fields.sinceStart;
    }
}

void LogLineMaker::setProcess(const LogFields &fields, LogLine *line)
{
    if (fields.unit.empty()) {
        line->process = m_processes.text(fields.pid);
    } else if (fields.pid.empty() || fields.unit.back() == ']') {
        line->process = m_processes.text(fields.unit);
    } else {
        m_process.assign(fields.unit).append("[").append(fields.pid).append("]");
        line->process = m_processes.text(m_process);
    }
}

/// A program that starts again counts from zero again. A smaller step back is one of the clock,
/// which this time depends on, too.
void LogLineMaker::countStarts(const LogFields &fields, LogLine *line)
{
    constexpr int maxProcesses = 10'000;
    if (m_starts.size() > maxProcesses)
        m_starts.clear();
    Start &start = m_starts[line->process];
    constexpr qint64 tolerance = 100'000; // for threads that log at the same time
    if (*fields.sinceStart >= 0
        && *fields.sinceStart < std::min(start.last / 2, start.last - tolerance))
        ++start.number;
    start.last = *fields.sinceStart;
    if (start.number > 1)
        line->process += QStringLiteral("%1start %2")
                             .arg(line->process.isEmpty() ? QString() : QStringLiteral(", "))
                             .arg(start.number);
}

QString LogLineMaker::Texts::text(std::string_view utf8)
{
    if (utf8.empty())
        return {};
    for (const Entry &entry : m_entries) {
        if (entry.utf8 == utf8)
            return entry.text;
    }
    Entry &oldest = m_entries.at(m_next);
    m_next = (m_next + 1) % m_entries.size();
    oldest.utf8 = utf8;
    oldest.text = fromUtf8(utf8);
    return oldest.text;
}

} // namespace Vorn::Workbench
