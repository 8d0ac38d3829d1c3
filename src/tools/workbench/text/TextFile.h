#ifndef VORN_WORKBENCH_TEXTFILE_H
#define VORN_WORKBENCH_TEXTFILE_H

#include "Diagnostic.h"
#include "InputFile.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace Vorn::Workbench {

/// Limit for files that people write.
constexpr qint64 maxTextSize = qint64{16} * 1024 * 1024;
/// Limit for recordings.
constexpr qint64 maxRecordingSize = qint64{512} * 1024 * 1024;

/// The content of a file; "-" is the standard input. A file that cannot be read (missing, a folder,
/// a device, larger than @p maxSize) is one error in @p diagnostics. A signal that the process
/// handles ends the wait for a pipe with an error.
std::optional<QByteArray> readFile(const QString &path, qint64 maxSize, Diagnostics *diagnostics,
                                   Pipes pipes = Pipes::Allowed);

/// Writes a file completely or not at all, by way of a temporary one beside it. "-" is the standard
/// output.
/// @return why it could not be written; empty if it was
QString writeFile(const QString &path, const QByteArray &content);

} // namespace Vorn::Workbench

#endif
