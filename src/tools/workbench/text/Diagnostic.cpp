#include "Diagnostic.h"

#include "Quoting.h"

#include <algorithm>

namespace Vorn::Workbench {

namespace {

/// Continuation bytes of UTF-8, which begin no character.
bool isContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

} // namespace

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

TextPosition positionOf(const QByteArray &text, int offset)
{
    // Editors count columns in characters, not in bytes.
    TextPosition position;
    const int end = std::clamp(offset, 0, text.size());
    for (int i = 0; i < end; ++i) {
        if (text.at(i) == '\n') {
            ++position.line;
            position.column = 1;
        } else if (!isContinuation(text.at(i))) {
            ++position.column;
        }
    }
    return position;
}

} // namespace Vorn::Workbench
