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

/// Reads what toJsonLine() wrote. Kinds and members that are not known are skipped; a line that is
/// no JSON object, or lacks what its kind needs, is an error. At most the first 20 are told.
ParsedSession parseSession(const QByteArray &text, const QString &file);

} // namespace Vorn::Workbench

#endif
