#ifndef VORN_WORKBENCH_DRIVENSCENARIO_H
#define VORN_WORKBENCH_DRIVENSCENARIO_H

#include "ProgramRun.h"
#include "ScenarioLoader.h"
#include "ScenarioRun.h"
#include "SessionLog.h"

#include <QString>
#include <QStringList>

namespace Vorn::Workbench {

struct DriveSettings
{
    QStringList command; ///< the program and its arguments
    QString agent; ///< the library to preload
    QString version; ///< of this program
    bool virtualTime = false;
    bool passesOutput = true; ///< the program's goes to stderr
    qint64 tolerance = 100; ///< ms; in real time
    qint64 timeout = 10'000; ///< ms of real time
};

struct DriveResult
{
    SimulationResult run;
    QString obstacle; ///< why the program could not be driven at all; empty if it was
    QString note; ///< how it ended, if not as it should
    QStringList output; ///< the last lines that it printed
};

/// Runs a scenario on a program, which is started and ended for it, and passes everything that
/// happens in it to @p sink. A program that is killed by a signal after it was asked to quit has
/// failed the scenario.
///
/// @param loaded must have no errors
DriveResult driveScenario(const LoadedScenario &loaded, const DriveSettings &settings,
                          const SessionLog::Sink &sink);

} // namespace Vorn::Workbench

#endif
