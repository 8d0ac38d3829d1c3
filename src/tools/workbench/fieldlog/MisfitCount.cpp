#include "MisfitCount.h"

namespace Vorn::Workbench {

void MisfitCount::add(int file, qint64 line)
{
    constexpr int told = 5;
    OfFile &misfits = m_files[file];
    ++misfits.count;
    ++m_count;
    if (misfits.first.size() < told)
        misfits.first += QString::number(line);
}

Diagnostics MisfitCount::toDiagnostics(const std::function<QString(int)> &nameOf) const
{
    Diagnostics diagnostics;
    for (auto it = m_files.begin(); it != m_files.end(); ++it) {
        const OfFile &misfits = *it;
        const bool isOne = misfits.count == 1;
        const bool isAll = misfits.count == misfits.first.size();
        const QString lines =
            misfits.first.join(QStringLiteral(", ")) + (isAll ? QString() : QStringLiteral(" …"));
        diagnostics += Diagnostic{
            Diagnostic::Severity::Warning, nameOf(it.key()), 0, 0,
            (isOne ? QStringLiteral("%1 line does not fit the layout and is left out: line %2")
                   : QStringLiteral("%1 lines do not fit the layout and are left out: lines %2"))
                .arg(misfits.count)
                .arg(lines)};
    }
    return diagnostics;
}

} // namespace Vorn::Workbench
