#ifndef VORN_WORKBENCH_PROBLEMS_H
#define VORN_WORKBENCH_PROBLEMS_H

#include "Diagnostic.h"

#include <QString>

namespace Vorn::Workbench {

/// What is wrong with one file. Only the first errors and warnings are kept, so that a file of
/// another format does not cause a million lines.
class Problems
{
public:
    explicit Problems(const QString &file)
        : m_file(file)
    { }

    void error(int line, const QString &message);
    void warning(int line, const QString &message);

    bool hasErrors() const { return m_errors > 0; }
    /// Whether there are so many errors that reading on is pointless.
    bool isFull() const { return m_errors >= limit; }

    const Diagnostics &diagnostics() const { return m_diagnostics; }

private:
    static constexpr int limit = 20;

    const QString m_file;
    Diagnostics m_diagnostics;
    int m_errors = 0;
    int m_warnings = 0;
};

} // namespace Vorn::Workbench

#endif
