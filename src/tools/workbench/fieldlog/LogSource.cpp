#include "LogSource.h"

#include <QDateTime>
#include <QFileInfo>

#include <algorithm>
#include <iterator>
#include <limits>

namespace Vorn::Workbench {

LogSource::LogSource(const QStringList &files)
    : m_files(files)
{ }

bool LogSource::next(RawLine *line)
{
    if (!m_again.empty()) {
        m_held = std::move(m_again.front());
        m_again.pop_front();
        *line = m_held.line;
        line->text = m_held.text;
        return true;
    }
    while (m_file || openNext()) {
        if (!m_file->next()) {
            closeFile();
            continue;
        }
        if (m_file->isCut() && m_cutLines++ == 0)
            report(Diagnostic::Severity::Warning, m_file->number(),
                   QStringLiteral("the line is longer than %1 KiB; what is longer is not read")
                       .arg(LogFile::maxLineSize / 1024));
        *line = {m_current, m_file->number(), m_lines++, m_file->line()};
        return true;
    }
    return false;
}

void LogSource::putBack(std::vector<Copy> lines)
{
    m_again.insert(m_again.begin(), std::make_move_iterator(lines.begin()),
                   std::make_move_iterator(lines.end()));
}

QString LogSource::name(int file) const
{
    const QString path = m_files.value(file);
    return path == QLatin1String("-") ? QStringLiteral("standard input") : path;
}

QDate LogSource::lastDay(int file) const
{
    const QFileInfo info(m_files.value(file));
    return info.isFile() ? info.lastModified().toUTC().date()
                         : QDateTime::currentDateTimeUtc().date();
}

qint64 LogSource::bytes() const
{
    return m_bytesBefore + (m_file ? m_file->bytes() : 0);
}

bool LogSource::openNext()
{
    while (m_current + 1 < m_files.size()) {
        ++m_current;
        auto file = std::make_unique<LogFile>();
        const QString error = file->open(m_files.at(m_current));
        if (error.isEmpty()) {
            m_file = std::move(file);
            m_cutLines = 0;
            ++m_filesRead;
            return true;
        }
        report(Diagnostic::Severity::Error, 0, QStringLiteral("cannot be read: ") + error);
    }
    return false;
}

void LogSource::closeFile()
{
    if (!m_file->error().isEmpty())
        report(Diagnostic::Severity::Error, m_file->number(), m_file->error());
    else if (m_file->bytes() == 0)
        report(Diagnostic::Severity::Warning, 0, QStringLiteral("the file is empty"));
    m_bytesBefore += m_file->bytes();
    m_file.reset();
}

void LogSource::report(Diagnostic::Severity severity, qint64 line, const QString &message)
{
    const int number = static_cast<int>(std::min<qint64>(line, std::numeric_limits<int>::max()));
    m_diagnostics += Diagnostic{severity, name(m_current), number, 0, message};
}

} // namespace Vorn::Workbench
