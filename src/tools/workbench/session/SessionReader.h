#ifndef VORN_WORKBENCH_SESSIONREADER_H
#define VORN_WORKBENCH_SESSIONREADER_H

#include "Diagnostic.h"
#include "Session.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace Vorn::Workbench {

struct ParsedSession
{
    QVector<SessionEntry> entries;
    Diagnostics diagnostics;
};

/// Reads what toJsonLine() wrote. Unknown kinds and members are skipped, so that files of a newer
/// program can be read. A line that is not a JSON object, or lacks a member its kind requires, is
/// an error; the first 20 are reported, and the valid lines are still returned.
ParsedSession parseSession(const QByteArray &text, const QString &file);

} // namespace Vorn::Workbench

#endif
