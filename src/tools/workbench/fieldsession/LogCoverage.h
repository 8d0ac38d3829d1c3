#ifndef VORN_WORKBENCH_LOGCOVERAGE_H
#define VORN_WORKBENCH_LOGCOVERAGE_H

#include "LibraryMessage.h"

#include <QStringList>

namespace Vorn::Workbench {

/// Which of the library's lines a log has. What a logger's level kept out is not there, which must
/// not be taken for something that did not happen.
class LogCoverage
{
public:
    void add(const LibraryLine &line);

    bool hasRecords() const { return m_hasRecords; }
    bool hasDetectors() const { return m_hasDetectors; }
    /// Whether each event is said to be of a handler: one that is not is the product's own.
    bool hasReports() const { return m_hasHandlerTraces; }
    bool hasEvents() const { return m_hasBus || m_hasReports; }
    bool isComplete() const;

    /// What is missing, for people.
    QStringList gaps(int devices) const;
    /// What there is that @p before had not.
    QStringList since(const LogCoverage &before) const;

private:
    bool m_hasRecords = false;
    bool m_hasListenerLines = false; ///< at DEBUG
    bool m_hasDescriptors = false;
    bool m_hasDetectors = false;
    bool m_hasHandlerTraces = false;
    bool m_hasReports = false;
    bool m_hasBus = false;
};

} // namespace Vorn::Workbench

#endif
