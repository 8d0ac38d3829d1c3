#include "Findings.h"

#include <algorithm>

namespace Vorn {

void Findings::error(const TextPosition &position, const QString &message)
{
    add(Diagnostic::Severity::Error, position, message);
    m_hasErrors = true;
}

void Findings::warning(const TextPosition &position, const QString &message)
{
    add(Diagnostic::Severity::Warning, position, message);
}

Diagnostics Findings::toDiagnostics(const QString &file) const
{
    Diagnostics sorted = m_diagnostics;
    std::stable_sort(sorted.begin(), sorted.end(), [](const Diagnostic &a, const Diagnostic &b) {
        return a.line != b.line ? a.line < b.line : a.column < b.column;
    });
    // The name of the file is the reader's business: the same text may come from standard input.
    for (Diagnostic &diagnostic : sorted)
        diagnostic.file = file;
    return sorted;
}

void Findings::add(Diagnostic::Severity severity, const TextPosition &position,
                   const QString &message)
{
    m_diagnostics.append({severity, QString(), position.line, position.column, message});
}

} // namespace Vorn
