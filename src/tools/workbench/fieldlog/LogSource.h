#ifndef VORN_WORKBENCH_LOGSOURCE_H
#define VORN_WORKBENCH_LOGSOURCE_H

#include "Diagnostic.h"
#include "LogFile.h"

#include <QDate>
#include <QStringList>

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Vorn::Workbench {

/// A line as it is in a file. The text is valid until the next line is read.
struct RawLine
{
    int file = 0;
    qint64 number = 0; ///< in the file, from 1
    qint64 index = 0; ///< in all files, from 0
    std::string_view text;
};

/// The lines of several files, one file after the other.
class LogSource
{
public:
    explicit LogSource(const QStringList &files);

    bool next(RawLine *line);

    /// A line that next() will return again.
    struct Copy
    {
        RawLine line;
        std::string text;
    };
    static Copy copyOf(const RawLine &line) { return {line, std::string(line.text)}; }
    void putBack(std::vector<Copy> lines);

    const QStringList &files() const { return m_files; }
    QString name(int file) const; ///< for messages
    /// When a file was last written, or today for what is not a file.
    QDate lastDay(int file) const;
    qint64 lines() const { return m_lines; }
    qint64 bytes() const;
    int filesRead() const { return m_filesRead; }
    const Diagnostics &diagnostics() const { return m_diagnostics; }

private:
    bool openNext();
    void closeFile();
    void report(Diagnostic::Severity severity, qint64 line, const QString &message);

    const QStringList m_files;
    std::unique_ptr<LogFile> m_file;
    int m_current = -1;
    std::deque<Copy> m_again;
    Copy m_held;
    qint64 m_cutLines = 0;
    qint64 m_lines = 0;
    qint64 m_bytesBefore = 0;
    int m_filesRead = 0;
    Diagnostics m_diagnostics;
};

} // namespace Vorn::Workbench

#endif
