#include "SimulateCommand.h"

#include "CommandOptions.h"
#include "Diagnostic.h"
#include "ExitStatus.h"
#include "Interruption.h"
#include "Output.h"
#include "OutputFile.h"
#include "PlannedDuration.h"
#include "Progress.h"
#include "ScenarioLoader.h"
#include "Simulation.h"
#include "SimulationReport.h"
#include "TextFile.h"
#include "Timeline.h"

#include <unistd.h>

namespace Vorn::Tools {

namespace {

using namespace Workbench;

int statusOf(const SimulationResult &result)
{
    switch (result.outcome) {
    case SimulationResult::Outcome::Passed:
        return Success;
    case SimulationResult::Outcome::Failed:
        return Found;
    case SimulationResult::Outcome::Malformed:
    case SimulationResult::Outcome::Interrupted:
        break;
    }
    return Failure;
}

bool refuse(const QString &message)
{
    printLine(stderr, QStringLiteral("error: ") + message);
    return false;
}

/// @param progress shown behind @p place, if there is any
int simulateFile(const SimulateOptions &options, const QString &file, Progress *progress,
                 const QString &place)
{
    const LoadedScenario loaded =
        loadScenario(file, LoadOptions{options.profile, options.expectations});
    printDiagnostics(loaded.diagnostics);
    if (hasErrors(loaded.diagnostics))
        return Failure;

    const Overwrite overwrite{timelineSignature(), options.force};
    if (!options.timeline.isEmpty()) {
        const QString obstacle = obstacleTo(options.timeline, overwrite);
        if (!obstacle.isEmpty()) {
            refuse(obstacle);
            return Failure;
        }
    }

    SimulationReport report(options);
    const qint64 planned = progress ? plannedDuration(loaded) : 0;
    const SimulationResult result = Workbench::simulate(loaded, [&](const SessionEntry &entry) {
        report.add(entry);
        // Nobody reads the rest, which may be hours of virtual time.
        if (isOutputLost())
            Interruption::request();
        if (progress && progress->isDue())
            progress->show(place + simulationProgress(file, entry.time, planned));
    });
    if (progress)
        progress->clear();
    // With --json, stdout is for objects alone.
    for (const QString &line : report.failure())
        printLine(options.json ? stderr : stdout, line);
    printDiagnostics(result.diagnostics);
    const int status = statusOf(result);
    const QString line = simulationSummary(file, result, loaded.scenario.hasExpectations());
    if (status == Failure || (options.json && status != Success))
        printLine(stderr, line);
    else if (!options.json && (!options.quiet || status != Success))
        printLine(stdout, line);
    // A failed expectation is what a picture is for; a broken scenario gives half a picture.
    if (options.timeline.isEmpty() || status == Failure)
        return status;
    const QString reason = writeFile(
        options.timeline, timelineSvg(report.entries(), Workbench::TimelineOptions()), overwrite);
    if (reason.isEmpty())
        return status;
    refuse(reason);
    return Failure;
}

// Conflicts between options that the parser does not see.
bool areUsable(const SimulateOptions &options)
{
    if (options.files.isEmpty())
        return refuse(QStringLiteral("no scenario or recording given"));
    if (options.files.size() > 1 && !options.timeline.isEmpty())
        return refuse(QStringLiteral("--timeline draws one file, not several"));
    if (options.files.size() > 1 && !options.expectations.isEmpty())
        return refuse(QStringLiteral("--expectations is for one recording, not several files"));
    if (options.json && options.timeline == QLatin1String("-"))
        return refuse(QStringLiteral("--json and --timeline - both write to the standard output"));
    return true;
}

} // namespace

CLI::App *addSimulate(CLI::App *app, SimulateOptions *options)
{
    CLI::App *command = addCommand(
        app, "simulate", "Run scenarios and recordings",
        "Runs scenarios through the real library, on simulated devices and in virtual\n"
        "time, and checks that everything happens as expected. A recording (*.evemu,\n"
        "*.umockdev) is played and compared with the .expect file of the same name, if\n"
        "there is one. The same input gives the same output, byte for byte.\n"
        "\n"
        "Exit status: 0 all as expected, 1 a failed expectation, 2 a file that cannot be used\n"
        "\n"
        "Examples:\n"
        "  vorn-input simulate --profile panel.toml long-press.scenario\n"
        "  vorn-input simulate tests/scenarios/*.scenario --quiet\n"
        "  vorn-input simulate --profile panel.toml lost-release/session.umockdev -t session.svg");
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
    addFlag(command, "-f,--force", &options->force,
            "Let --timeline replace a file that is no picture of this program");
    return command;
}

int simulate(const SimulateOptions &options)
{
    if (!areUsable(options))
        return Failure;

    const Interruption interruption;
    Progress progress;
    // Lines that appear one by one on the same terminal are progress enough.
    const bool showsProgress = options.quiet || !isTerminal(STDOUT_FILENO);
    int status = Success;
    for (int i = 0; i < options.files.size(); ++i) {
        const QString &file = options.files[i];
        if (Interruption::isRequested()) {
            progress.clear();
            printLine(stderr, QStringLiteral("interrupted before %1").arg(file));
            status = Failure;
            break;
        }
        const QString place = options.files.size() == 1
            ? QString()
            : QStringLiteral("%1 of %2: ").arg(i + 1).arg(options.files.size());
        // The statuses are in order of severity.
        status =
            qMax(status, simulateFile(options, file, showsProgress ? &progress : nullptr, place));
        if (!flush(stdout))
            break;
    }
    progress.clear();
    return status;
}

} // namespace Vorn::Tools
