#ifndef VORN_WORKBENCH_DURATIONS_H
#define VORN_WORKBENCH_DURATIONS_H

#include <QString>

#include <optional>

namespace Vorn::Workbench {

/// "1200ms", "1.5s", "2min" or "1h" in milliseconds; nothing if @p text is not a duration or not a
/// whole number of milliseconds.
std::optional<qint64> milliseconds(const QString &text);

/// The same with an optional sign: "+1h", "-500ms".
std::optional<qint64> signedMilliseconds(const QString &text);

/// For messages: "80 ms", "1.5 s".
QString durationText(qint64 milliseconds);

} // namespace Vorn::Workbench

#endif
