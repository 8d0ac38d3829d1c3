#ifndef VORN_TOOLS_SIMULATIONREPORT_H
#define VORN_TOOLS_SIMULATIONREPORT_H

#include "ScenarioBatch.h"
#include "Session.h"
#include "SessionPrinter.h"
#include "Timeline.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace Vorn::Tools {

/// Prints one file's session while it runs, and keeps what is needed at its end.
class SimulationReport
{
public:
    /// @param options must live longer
    explicit SimulationReport(const ScenarioOptions &options);

    void add(const Workbench::SessionEntry &entry);

    /// The expectation that was not met; none if all was as expected.
    std::optional<Workbench::ExpectationChecked> failure() const;

    /// The lines of what happened before the failure, and its time.
    QStringList context() const;
    /// The same for a failure at @p time (µs of the session) that is no expectation's.
    QStringList contextAt(qint64 time) const;

    /// Empty unless a picture is to be drawn.
    Workbench::Timeline &picture() { return m_picture; }

private:
    const ScenarioOptions &m_options;
    Workbench::SessionPrinter m_text;
    Workbench::SessionPrinter m_contextText;
    QStringList m_context; ///< the last lines, with records and detectors, shown or not
    Workbench::SessionEntry m_failure;
    Workbench::Timeline m_picture;
};

/// What was expected, what came instead, and where, in one line.
QString failureMessage(const Workbench::ExpectationChecked &failure);

/// The same in lines of up to 80 columns, unless the file's path is longer. Nothing is left out.
QStringList failureLines(const Workbench::ExpectationChecked &failure);

/// How far a file has come: "1832 of 3600 s (50 %), hold.scenario".
/// @param time µs of the session
/// @param planned ms that it takes if nothing takes longer than it must
QString simulationProgress(const QString &file, qint64 time, qint64 planned);

} // namespace Vorn::Tools

#endif
