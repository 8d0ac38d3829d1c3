#include "Diagnostic.h"

#include "Quoting.h"

#include <algorithm>

namespace Vorn {

QString Diagnostic::toString() const
{
    QString text = printable(file);
    if (line > 0)
        text += QLatin1Char(':') + QString::number(line);
    if (line > 0 && column > 0)
        text += QLatin1Char(':') + QString::number(column);
    text +=
        severity == Severity::Error ? QStringLiteral(": error: ") : QStringLiteral(": warning: ");
    return text + printable(message);
}

bool hasErrors(const Diagnostics &diagnostics)
{
    return std::any_of(diagnostics.begin(), diagnostics.end(), [](const Diagnostic &diagnostic) {
        return diagnostic.severity == Diagnostic::Severity::Error;
    });
}

} // namespace Vorn
