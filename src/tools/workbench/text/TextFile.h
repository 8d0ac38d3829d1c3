#ifndef VORN_WORKBENCH_TEXTFILE_H
#define VORN_WORKBENCH_TEXTFILE_H

#include "Diagnostic.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace Vorn::Workbench {

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
