#ifndef VORN_WORKBENCH_MISFITCOUNT_H
#define VORN_WORKBENCH_MISFITCOUNT_H

#include "Diagnostic.h"

#include <QMap>
#include <QStringList>

#include <functional>

namespace Vorn::Workbench {

/// Lines that fit no layout, which may be most of a log: the first ones by number, all by count.
class MisfitCount
{
public:
    void add(int file, qint64 line);

    qint64 count() const { return m_count; }
    /// A warning for each file.
    Diagnostics toDiagnostics(const std::function<QString(int)> &nameOf) const;

private:
    struct OfFile
    {
        qint64 count = 0;
        QStringList first;
    };

    QMap<int, OfFile> m_files;
    qint64 m_count = 0;
};

} // namespace Vorn::Workbench

#endif
