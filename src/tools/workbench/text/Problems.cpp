#include "Problems.h"

#include "Diagnostic.h"

namespace Vorn::Workbench {

void Problems::error(int line, const QString &message)
{
    // Errors and warnings are counted apart, so that many warnings do not hide an error.
    if (++m_errors > limit)
        return;
    m_diagnostics += Diagnostic{Diagnostic::Severity::Error, m_file, line, 0, message};
    if (m_errors == limit)
        m_diagnostics += Diagnostic{
            Diagnostic::Severity::Error, m_file, line, 0,
            QStringLiteral("these are %1 errors; the rest of the file is not read").arg(limit)};
}

void Problems::warning(int line, const QString &message)
{
    if (++m_warnings > limit)
        return;
    m_diagnostics += Diagnostic{Diagnostic::Severity::Warning, m_file, line, 0, message};
    if (m_warnings == limit)
        m_diagnostics += Diagnostic{
            Diagnostic::Severity::Warning, m_file, line, 0,
            QStringLiteral("these are %1 warnings; further ones are not told").arg(limit)};
}

} // namespace Vorn::Workbench
