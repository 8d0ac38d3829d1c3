#ifndef VORN_WORKBENCH_SESSIONREADER_H
#define VORN_WORKBENCH_SESSIONREADER_H

#include "Diagnostic.h"
#include "InputFile.h"
#include "Session.h"

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// Opens a session for reading; "-" is the standard input.
/// @return false, with an error in @p diagnostics, if that is impossible
bool openSession(const QString &path, InputFile *file, Diagnostics *diagnostics);

/// Reads what toJsonLine() wrote, entry by entry: the length of a session does not matter. Unknown
/// kinds and members are skipped, so that files of a newer program can be read.
///
/// ```
/// SessionReader reader(&file, path);
/// while (const std::optional<SessionEntry> entry = reader.next())
///     use(*entry);
/// printDiagnostics(reader.diagnostics());
/// ```
class SessionReader
{
public:
    /// @param device open for reading; must live longer
    /// @param file its name in diagnostics
    SessionReader(QIODevice *device, const QString &file);

    /// The next valid entry; nothing at the end. A line that is not a JSON object, or lacks a
    /// member its kind requires, is an error; the lines after it are still read, up to the 20th
    /// error.
    std::optional<SessionEntry> next();

    /// What was wrong so far.
    const Diagnostics &diagnostics() const { return m_diagnostics; }
    /// Of the entry that was returned last, from 1.
    int line() const { return m_line; }
    /// How much of the input has been used.
    qint64 bytesRead() const { return m_bytesRead; }

private:
    std::optional<QByteArray> takeLine();
    bool fill();
    std::optional<SessionEntry> parse(const QByteArray &line);
    void report(int line, int column, const QString &message);
    void giveUp(const QString &reason);

    QIODevice *const m_device;
    const QString m_file;
    Diagnostics m_diagnostics;
    QByteArray m_buffer;
    QByteArray::size_type m_begin = 0; ///< of the next line, in the buffer
    int m_line = 0;
    qint64 m_bytesRead = 0;
    bool m_isAtEnd = false;
};

struct ParsedSession
{
    QVector<SessionEntry> entries;
    Diagnostics diagnostics;
};

/// Reads a whole session that is in memory.
ParsedSession parseSession(const QByteArray &text, const QString &file);

} // namespace Vorn::Workbench

#endif
