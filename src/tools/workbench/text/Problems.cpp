#include "Problems.h"

#include "Diagnostic.h"

namespace Vorn::Workbench {

void Problems::error(int line, const QString &message)
{
    // Errors and warnings are counted apart, so that many warnings do not hide an error.
    if (m_errors++ < limit)
        m_diagnostics += Diagnostic{Diagnostic::Severity::Error, m_file, line, 0, message};
}

void Problems::warning(int line, const QString &message)
{
    if (m_warnings++ < limit)
        m_diagnostics += Diagnostic{Diagnostic::Severity::Warning, m_file, line, 0, message};
}

} // namespace Vorn::Workbench
