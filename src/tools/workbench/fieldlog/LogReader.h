#ifndef VORN_WORKBENCH_LOGREADER_H
#define VORN_WORKBENCH_LOGREADER_H

#include "Diagnostic.h"
#include "LogLine.h"

#include <QStringList>
#include <QTimeZone>

#include <memory>
#include <optional>

namespace Vorn::Workbench {

struct LogReaderOptions
{
    /// A conversion pattern of log4cplus, for a layout that is not guessed; empty: guess.
    QString pattern;
    /// Of times that are logged without one.
    QTimeZone zone = QTimeZone::utc();
    /// Whether files are read with their older parts: app.log.2.gz, app.log.1, app.log.
    bool rotated = false;
};

struct LogCounts
{
    int files = 0;
    qint64 bytes = 0; ///< of text, so after unpacking
    qint64 lines = 0;
    qint64 before =
        0; ///< lines before the library's first ones, which tell nothing about the layout
    qint64 notUnderstood = 0; ///< further lines that do not fit the layout
};

/// Reads logs as products write them, line by line: memory does not depend on their length. Several
/// files are parts of one log and read in the order of their first times. "-" is the standard
/// input; files may be compressed with gzip.
class LogReader
{
public:
    explicit LogReader(const QStringList &files, const LogReaderOptions &options = {});
    ~LogReader();
    LogReader(const LogReader &) = delete;
    LogReader &operator=(const LogReader &) = delete;

    /// The next line that fits the layout; nothing at the end. Lines that do not fit are counted.
    std::optional<LogLine> next();

    /// What could not be read, and what is odd. Complete after the last line.
    const Diagnostics &diagnostics() const;
    LogCounts counts() const;
    /// In the order of reading.
    QStringList files() const;
    /// For people: "pattern '%-5p %c: %m%n' (guessed, without times)".
    QString layoutText() const;

private:
    class Parts;

    std::unique_ptr<Parts> m_parts;
};

} // namespace Vorn::Workbench

#endif
