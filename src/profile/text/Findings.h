#ifndef VORN_PROFILE_FINDINGS_H
#define VORN_PROFILE_FINDINGS_H

#include "Diagnostic.h"
#include "TextPosition.h"

#include <QString>

namespace Vorn {

/// Collects errors and warnings about one file, found in any order.
class Findings
{
public:
    void error(const TextPosition &position, const QString &message);
    void warning(const TextPosition &position, const QString &message);

    bool hasErrors() const { return m_hasErrors; }

    /// In the order of the file; what was found at one place stays in the order of finding.
    Diagnostics toDiagnostics(const QString &file) const;

private:
    void add(Diagnostic::Severity severity, const TextPosition &position, const QString &message);

    Diagnostics m_diagnostics;
    bool m_hasErrors = false;
};

} // namespace Vorn

#endif
