#ifndef VORN_WORKBENCH_DIAGNOSTIC_H
#define VORN_WORKBENCH_DIAGNOSTIC_H

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// What is wrong with a file, and where.
struct Diagnostic
{
    enum class Severity { Error, Warning };

    Severity severity = Severity::Error;
    QString file;
    int line = 0; ///< from 1; 0: the file as a whole
    int column = 0; ///< from 1, in characters; 0: the line as a whole
    QString message; ///< a sentence without a full stop, with what to do about it where it is known

    /// "player.json:12:20: error: unknown command 'VolumUp', did you mean 'VolumeUp'?", the form
    /// that editors and CI systems turn into links.
    QString toString() const;
};

using Diagnostics = QVector<Diagnostic>;

bool hasErrors(const Diagnostics &diagnostics);

/// Line and column, from 1, of a byte offset in a UTF-8 text. A column is a character.
struct TextPosition
{
    int line = 1;
    int column = 1;
};
TextPosition positionOf(const QByteArray &text, int offset);

/// The most that is read of a file that people write.
constexpr qint64 maxTextSize = qint64{16} * 1024 * 1024;
/// The most that is read of a recording.
constexpr qint64 maxRecordingSize = qint64{512} * 1024 * 1024;

/// The whole of a file, "-" being the standard input. Whatever cannot be read (missing, a folder,
/// larger than @p maxSize) is one error in @p diagnostics.
std::optional<QByteArray> readFile(const QString &path, qint64 maxSize, Diagnostics *diagnostics);

/// Writes a file whole or not at all: to a temporary one beside it that takes its place in the end.
/// "-" is the standard output.
/// @return why it could not be written; empty when it was
QString writeFile(const QString &path, const QByteArray &content);

} // namespace Vorn::Workbench

#endif
