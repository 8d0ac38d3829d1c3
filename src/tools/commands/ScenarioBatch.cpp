#include "ScenarioBatch.h"

#include "CommandOptions.h"
#include "Diagnostic.h"
#include "ExitStatus.h"
#include "Interruption.h"
#include "JUnitReport.h"
#include "Output.h"
#include "OutputFile.h"
#include "PlannedDuration.h"
#include "Progress.h"
#include "SimulationReport.h"
#include "SimulationTotals.h"
#include "Terminal.h"
#include "TextFile.h"
#include "Timeline.h"

#include <unistd.h>

namespace Vorn::Tools {

namespace {

using namespace Workbench;

bool refuse(const QString &message)
{
    printLine(stderr, QStringLiteral("error: ") + message);
    return false;
}

/// How runBatch() runs each file.
class FileRunner
{
public:
    FileRunner(const ScenarioOptions &options, const ScenarioRunner &runner)
        : m_options(options)
        , m_runner(runner)
        // Lines that appear one by one on the same terminal are progress enough.
        , m_showsProgress(options.quiet || !isTerminal(STDOUT_FILENO))
    { }

    FileResult run(int index)
    {
        const QString file = m_options.files[index];
        if (Interruption::isRequested()) {
            m_progress.clear();
            printLine(stderr, QStringLiteral("%1: not run, interrupted").arg(file));
            FileResult result;
            result.file = file;
            return result;
        }
        const LoadedScenario loaded = loadScenario(
            file, LoadOptions{m_options.profile, m_options.expectations, m_runner.needsProfile});
        m_progress.clear();
        printDiagnostics(loaded.diagnostics);
        if (hasErrors(loaded.diagnostics))
            return resultOf(file, loaded.diagnostics);
        if (!m_options.timeline.isEmpty()) {
            const QString obstacle = obstacleTo(m_options.timeline, picture());
            if (!obstacle.isEmpty()) {
                refuse(obstacle);
                return resultOf(file, {Diagnostic{{}, m_options.timeline, 0, 0, obstacle}});
            }
        }
        return run(index, loaded);
    }

    /// Whether everything could be written that was asked for.
    bool hasWritten() const { return m_hasWritten; }

private:
    FileResult run(int index, const LoadedScenario &loaded)
    {
        const QString &file = m_options.files[index];
        const QString place = m_options.files.size() == 1
            ? QString()
            : QStringLiteral("%1 of %2: ").arg(index + 1).arg(m_options.files.size());
        const qint64 planned = plannedDuration(loaded);
        SimulationReport report(m_options);
        const ScenarioOutcome outcome = m_runner.run(loaded, [&](const SessionEntry &entry) {
            report.add(entry);
            // Nobody reads the rest, which may be hours of virtual time.
            if (isOutputLost())
                Interruption::request();
            if (m_showsProgress && m_progress.isDue())
                m_progress.show(place + simulationProgress(file, entry.time, planned));
        });
        m_progress.clear();
        if (!outcome.obstacle.isEmpty()) {
            const Diagnostics diagnostics{Diagnostic{{}, file, 0, 0, outcome.obstacle}};
            printDiagnostics(diagnostics);
            return resultOf(file, diagnostics);
        }
        const SimulationResult &ended = outcome.run;
        FileResult result = resultOf(file, loaded.scenario, ended);
        if (const auto failure = report.failure()) {
            result.message = failureMessage(*failure);
            result.details = failureLines(*failure) + report.context();
        }
        if (result.outcome == FileResult::Outcome::ProgramFailed)
            result.details += report.contextAt(ended.duration * 1000);
        result.output = outcome.output;
        show(result, ended.diagnostics);
        if (!outcome.note.isEmpty())
            printLine(stderr, QStringLiteral("%1: note: %2").arg(file, outcome.note));
        // A failed expectation is what a picture is for; a broken scenario gives half a picture.
        if (!m_options.timeline.isEmpty() && statusOf(result.outcome) != Failure)
            draw(&report, ended.duration);
        return result;
    }

    void show(const FileResult &result, const Diagnostics &diagnostics) const
    {
        const int status = statusOf(result.outcome);
        // With --json, stdout is for objects alone.
        const bool isProgramsFailure = result.outcome == FileResult::Outcome::ProgramFailed;
        if (result.outcome == FileResult::Outcome::Failed || isProgramsFailure) {
            for (const QString &line : result.details)
                printLine(m_options.json ? stderr : stdout, line);
        }
        if (!isProgramsFailure)
            printDiagnostics(diagnostics);
        if (status == Failure || (m_options.json && status != Success))
            printLine(stderr, summary(result));
        else if (!m_options.json && (!m_options.quiet || status != Success))
            printLine(stdout, summary(result));
    }

    void draw(SimulationReport *report, qint64 duration)
    {
        // A wait at the end has no entry.
        report->picture().extendTo(duration * 1000);
        const QString reason = writeFile(m_options.timeline, report->picture().svg(), picture());
        if (!reason.isEmpty())
            m_hasWritten = refuse(reason);
    }

    Overwrite picture() const { return {timelineSignature(), m_options.force}; }

    const ScenarioOptions &m_options;
    const ScenarioRunner &m_runner;
    const bool m_showsProgress;
    Progress m_progress;
    bool m_hasWritten = true;
};

Overwrite results(const ScenarioOptions &options, const QString &name)
{
    return {junitSignature(name), options.force};
}

// Conflicts between options that the parser does not see.
bool areUsable(const ScenarioOptions &options, const QString &name)
{
    if (options.files.isEmpty())
        return refuse(QStringLiteral("no scenario or recording given"));
    if (options.files.size() > 1 && !options.timeline.isEmpty())
        return refuse(QStringLiteral("--timeline draws one file, not several"));
    if (options.files.size() > 1 && !options.expectations.isEmpty())
        return refuse(QStringLiteral("--expectations is for one recording, not several files"));
    if (options.json && options.timeline == QLatin1String("-"))
        return refuse(QStringLiteral("--json and --timeline - both write to the standard output"));
    if (options.junit == QLatin1String("-"))
        return refuse(QStringLiteral("--junit needs a file: the standard output has the results"));
    if (options.junit.isEmpty())
        return true;
    if (options.junit == options.timeline)
        return refuse(QStringLiteral("--junit and --timeline both write to %1").arg(options.junit));
    const QString obstacle = obstacleTo(options.junit, results(options, name));
    return obstacle.isEmpty() || refuse(obstacle);
}

} // namespace

void addScenarioOptions(CLI::App *command, ScenarioOptions *options)
{
    addFile(command, "-p,--profile", &options->profile,
            "Profile to use instead of those that the scenarios name", "FILE");
    addFile(command, "-e,--expectations", &options->expectations,
            "Expectations to use instead of the file beside the recording", "FILE");
    addFiles(command, &options->files, "Scenarios and recordings");
    addFlag(command, "--json", &options->json, "Print one JSON object per line");
    addFlag(command, "--raw", &options->raw, "Show the records next to the events");
    addFlag(command, "-q,--quiet", &options->quiet, "Print failures only");
    addFile(command, "-t,--timeline", &options->timeline, "Draw the session as a picture (SVG)",
            "FILE");
    addFile(command, "--junit", &options->junit, "Write the results as JUnit XML, for CI systems",
            "FILE");
    addFlag(command, "-f,--force", &options->force,
            "Let --timeline and --junit replace files that are not of this program");
}

int runBatch(const ScenarioOptions &options, const ScenarioRunner &runner)
{
    if (!areUsable(options, runner.command))
        return Failure;

    const Interruption interruption;
    FileRunner fileRunner(options, runner);
    QVector<FileResult> files;
    int status = Success;
    for (int i = 0; i < options.files.size(); ++i) {
        files.append(fileRunner.run(i));
        // The statuses are in order of severity.
        status = qMax(status, statusOf(files.last().outcome));
        if (!flush(stdout))
            Interruption::request();
    }
    if (files.size() > 1 && (status != Success || (!options.quiet && !options.json))) {
        const QStringList lines = totals(files);
        for (const QString &line : lines)
            printLine(options.json ? stderr : stdout, line);
    }
    if (!fileRunner.hasWritten())
        status = Failure;
    if (options.junit.isEmpty())
        return status;
    const QString reason =
        writeFile(options.junit, toJUnit(files, runner.command), results(options, runner.command));
    return reason.isEmpty() || refuse(reason) ? status : Failure;
}

} // namespace Vorn::Tools
