#include "LogSessions.h"

#include "Quoting.h"
#include "SessionReader.h"
#include "SessionWriter.h"

#include <QTemporaryFile>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Vorn::Workbench {

namespace {

/// A log of something else with a logger of the same name has thousands.
constexpr qint64 maxUnknownTold = 3;

std::optional<LibraryLine> said(const LogLine &line)
{
    if (line.logger.isEmpty())
        return libraryLine(line.message);
    const std::optional<LibraryLogger> logger = libraryLogger(line.logger);
    return logger ? libraryLine(*logger, line.message) : std::nullopt;
}

} // namespace

LogSessions::LogSessions(const QString &source, Sink sink)
    : m_source(source)
    , m_sink(std::move(sink))
{ }

LogSessions::~LogSessions() = default;

void LogSessions::add(const LogLine &line)
{
    if (line.lost > 0) {
        for (const std::unique_ptr<Process> &process : m_processes) {
            // A process of which no line was understood has no session yet.
            if (!process->session)
                continue;
            process->session->remark(
                QStringLiteral("the journal has dropped %1 messages here").arg(line.lost),
                process->time);
        }
        return;
    }
    const std::optional<LibraryLine> what = said(line);
    if (!what) {
        if (libraryLogger(line.logger) && !m_processes.empty())
            addUnknown(processOf(line.process), line);
        return;
    }
    ++m_understood;
    Process *process = processOf(line.process);
    const LogClock::Reading reading = process->clock.at(line);
    if (!process->session || process->session->isNewStart(*what)) {
        end(process);
        begin(process, line, reading.time);
    }
    process->time = reading.time - process->sessionBegin;
    if (!reading.remark.isEmpty())
        process->session->remark(reading.remark, process->time);
    const qint64 wallClock = line.time && line.hasDate ? *line.time : process->time;
    process->session->add(*what, line.message, process->time, wallClock);
}

LogSessions::Process *LogSessions::processOf(const QString &name)
{
    const auto found = std::find_if(m_processes.begin(), m_processes.end(),
                                    [&name](const auto &process) { return process->name == name; });
    if (found != m_processes.end())
        return found->get();
    auto process = std::make_unique<Process>();
    process->name = name;
    if (!m_processes.empty()) {
        process->kept = std::make_unique<QTemporaryFile>();
        if (!process->kept->open())
            throw std::runtime_error("the log is of several processes, and what they say cannot be "
                                     "kept apart: "
                                     + process->kept->errorString().toStdString());
    }
    m_processes.push_back(std::move(process));
    return m_processes.back().get();
}

void LogSessions::begin(Process *process, const LogLine &line, qint64 time)
{
    process->sessionBegin = time;
    QTemporaryFile *kept = process->kept.get();
    const LogSession::Sink toFile = [kept](const SessionEntry &entry) {
        const QByteArray text = toJsonLine(entry);
        if (kept->write(text) != text.size())
            throw std::runtime_error("what several processes say cannot be kept apart: "
                                     + kept->errorString().toStdString());
    };
    SessionStart start;
    start.source = process->name.isEmpty()
        ? m_source
        : QStringLiteral("%1, process %2").arg(m_source, printable(process->name));
    const QString layout = m_layout ? QStringLiteral(" with ") + m_layout() : QString();
    const QString times = line.time
        ? QStringLiteral("records have the times of their lines")
        : QStringLiteral("it has no times: the order is right, and all times are 0");
    process->session = std::make_unique<LogSession>(
        start, QStringLiteral("read from a log%1; %2").arg(layout, times), kept ? toFile : m_sink);
}

void LogSessions::addUnknown(Process *process, const LogLine &line)
{
    if (!process->session || ++process->unknown > maxUnknownTold)
        return;
    process->session->remark(QStringLiteral("line %1 of logger %2 is none of the library's: %3")
                                 .arg(line.number)
                                 .arg(line.logger, quoted(line.message)),
                             process->time);
}

void LogSessions::end(Process *process)
{
    if (!process->session)
        return;
    if (process->unknown > maxUnknownTold)
        process->session->remark(QStringLiteral("%1 more lines are none of the library's")
                                     .arg(process->unknown - maxUnknownTold),
                                 process->time);
    process->unknown = 0;
    process->session->finish();
    process->session.reset();
}

void LogSessions::finish()
{
    for (const std::unique_ptr<Process> &process : m_processes) {
        end(process.get());
        if (process->kept)
            passOnKept(process->kept.get());
    }
    m_processes.clear();
}

void LogSessions::passOnKept(QTemporaryFile *kept) const
{
    if (!kept->seek(0))
        throw std::runtime_error(kept->errorString().toStdString());
    SessionReader reader(kept, kept->fileName());
    while (const std::optional<SessionEntry> entry = reader.next())
        m_sink(*entry);
}

} // namespace Vorn::Workbench
