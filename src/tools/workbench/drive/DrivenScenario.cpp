#include "DrivenScenario.h"

#include "DrivenBench.h"
#include "PendingEvents.h"

#include <QDir>
#include <QFileInfo>

namespace Vorn::Workbench {

namespace {

// A program that was killed had no time to remove it.
void removeFolder(const QString &devices)
{
    QDir folder = QFileInfo(devices).dir();
    if (folder.dirName().startsWith(QLatin1String("vorn-sim-")))
        folder.removeRecursively();
}

/// A run that went well, until the program ended in another way than it should.
void noteEnding(const ProgramRun &program, const LoadedScenario &loaded, DriveResult *result)
{
    const bool isWell = program.ending() == QLatin1String("exited with status 0");
    if (isWell || result->run.outcome != SimulationResult::Outcome::Passed)
        return;
    if (!program.hasQuit() || program.ending().startsWith(QLatin1String("exited"))) {
        result->note =
            QStringLiteral("the program %1 at the end of the scenario").arg(program.ending());
        return;
    }
    Diagnostic diagnostic;
    diagnostic.file = loaded.scenario.file;
    diagnostic.line = loaded.scenario.lastLine;
    diagnostic.message =
        QStringLiteral("the program %1 when it was asked to quit").arg(program.ending());
    result->run.outcome = SimulationResult::Outcome::ProgramFailed;
    result->run.diagnostics += diagnostic;
}

} // namespace

DriveResult driveScenario(const LoadedScenario &loaded, const DriveSettings &settings,
                          const SessionLog::Sink &sink)
{
    DriveResult result;
    ProgramRun program({settings.command, settings.agent, {}, settings.passesOutput});
    result.obstacle = program.failure();
    if (!result.obstacle.isEmpty())
        return result;
    PendingEvents pending(loaded.deviceNodes);
    DrivenBench bench(&program, {settings.virtualTime, settings.timeout, settings.version},
                      [&](const SessionEntry &entry) {
                          pending.add(entry);
                          sink(entry);
                      });
    bench.begin(loaded);
    result.obstacle = bench.failure();
    if (result.obstacle.isEmpty()) {
        result.run =
            runScenario(loaded, &bench, &pending, settings.virtualTime ? 0 : settings.tolerance);
        bench.end();
    }
    program.end();
    if (result.obstacle.isEmpty())
        noteEnding(program, loaded, &result);
    if (!bench.folder().isEmpty())
        removeFolder(bench.folder());
    result.output = program.outputLines();
    return result;
}

} // namespace Vorn::Workbench
