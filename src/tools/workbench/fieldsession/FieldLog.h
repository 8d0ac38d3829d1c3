#ifndef VORN_WORKBENCH_FIELDLOG_H
#define VORN_WORKBENCH_FIELDLOG_H

#include "Diagnostic.h"
#include "LogReader.h"
#include "LogSessions.h"

#include <QByteArray>
#include <QString>

#include <functional>

namespace Vorn::Workbench {

/// Whether a file is a log rather than a scenario, a recording or a session: by its name if that
/// says it, or else by its first lines. "-" is the standard input, of which nothing is taken.
bool isLog(const QString &path);

/// The same for the beginning of a file.
bool beginsLikeLog(const QByteArray &text);

/// Reads a log and passes on its sessions. Errors are about what cannot be read, or a log without a
/// line of the library.
/// @param isEnough asked after each line
Diagnostics readLog(const QString &path, const LogReaderOptions &options,
                    const LogSessions::Sink &sink, const std::function<bool()> &isEnough);

} // namespace Vorn::Workbench

#endif
