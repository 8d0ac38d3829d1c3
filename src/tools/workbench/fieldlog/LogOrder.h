#ifndef VORN_WORKBENCH_LOGORDER_H
#define VORN_WORKBENCH_LOGORDER_H

#include "Diagnostic.h"

#include <QStringList>

#include <functional>
#include <optional>

namespace Vorn::Workbench {

/// A file and its older parts beside it: app.log, app.log.1, app.log.2.gz, app.log-20260102.
QStringList rotatedFiles(const QString &path);

/// When what is in a file begins, in microseconds since the epoch; nothing if it does not say.
using FirstTime = std::function<std::optional<qint64>(const QString &path)>;

/// Files in the order of their content; a file given twice is in it once. Without dates the numbers
/// at their ends count, the highest being the oldest, and else the order given. What could not be
/// put in order is a warning.
QStringList inLogOrder(const QStringList &files, const FirstTime &firstTime,
                       Diagnostics *diagnostics);

} // namespace Vorn::Workbench

#endif
