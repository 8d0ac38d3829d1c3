#ifndef VORN_TOOLS_SIMULATIONREPORT_H
#define VORN_TOOLS_SIMULATIONREPORT_H

#include "Session.h"
#include "SessionPrinter.h"
#include "SimulateCommand.h"
#include "Simulation.h"

#include <QString>
#include <QStringList>
#include <QVector>

namespace Vorn::Tools {

/// Prints one file's session while it runs, and keeps what is needed at its end.
class SimulationReport
{
public:
    /// @param options must live longer
    explicit SimulationReport(const SimulateOptions &options);

    void add(const Workbench::SessionEntry &entry);

    /// What was expected, what came instead and what happened just before; empty if all was as
    /// expected.
    QStringList failure() const;

    /// All entries, kept only if a picture is to be drawn.
    const QVector<Workbench::SessionEntry> &entries() const { return m_entries; }

private:
    const SimulateOptions &m_options;
    Workbench::SessionPrinter m_text;
    Workbench::SessionPrinter m_contextText;
    QStringList m_context; ///< the last lines, with records and detectors, shown or not
    Workbench::SessionEntry m_failure;
    QVector<Workbench::SessionEntry> m_entries;
};

/// What was expected and what came instead: in one line, if that is short enough. Neither the file
/// nor anything else is shortened.
QStringList failureText(const Workbench::ExpectationChecked &failure);

/// The line that ends a file's output: "click.scenario: passed, 3 expectations, 1.200 s".
QString simulationSummary(const QString &file, const Workbench::SimulationResult &result,
                          bool hasExpectations);

/// How far a file has come: "1832 of 3600 s (50 %), hold.scenario".
/// @param time µs of the session
/// @param planned ms that it takes if nothing takes longer than it must
QString simulationProgress(const QString &file, qint64 time, qint64 planned);

/// "1.200", for milliseconds.
QString secondsText(qint64 milliseconds);

} // namespace Vorn::Tools

#endif
