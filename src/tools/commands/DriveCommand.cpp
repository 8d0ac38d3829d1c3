#include "DriveCommand.h"

#include "CommandOptions.h"
#include "DrivenScenario.h"
#include "Durations.h"
#include "ExitStatus.h"
#include "Output.h"
#include "ProgramCheck.h"
#include "Quoting.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <optional>

namespace Vorn::Tools {

namespace {

using namespace Workbench;

int refuse(const QString &message)
{
    printLine(stderr, QStringLiteral("error: ") + message);
    return Failure;
}

/// Where the agent is installed, and where the build puts it, as seen from this program.
QString agentPath()
{
    const QDir folder(QCoreApplication::applicationDirPath());
    const QString installed =
        QDir::cleanPath(folder.filePath(QStringLiteral(VORN_DRIVE_INSTALLED_PATH)));
    const QString built = QDir::cleanPath(folder.filePath(QStringLiteral(VORN_DRIVE_BUILT_PATH)));
    return QFileInfo::exists(built) && !QFileInfo::exists(installed) ? built : installed;
}

std::optional<qint64> duration(const QString &option, const QString &text)
{
    const std::optional<qint64> value = milliseconds(text);
    if (!value)
        refuse(QStringLiteral("%1 takes a duration such as 200ms or 1.5s, not %2")
                   .arg(option, quoted(text)));
    return value;
}

ScenarioOutcome outcomeOf(const DriveResult &driven)
{
    return {driven.run, driven.obstacle, driven.note, driven.output};
}

} // namespace

CLI::App *addDrive(CLI::App *app, DriveOptions *options)
{
    CLI::App *command = addCommand(
        app, "drive", "Run scenarios on a product's own program",
        "Everything after -- is the program and its arguments. It is started for each\n"
        "scenario as it is, with the scenario's devices under its /dev/input, and what it\n"
        "publishes on its own event bus is checked. Any Qt " VORN_INPUT_QT
        " program that links\n" VORN_INPUT_LIBRARY
        " will do; the machine's own devices are left alone. The program\n"
        "has its own key map: a profile only says which keys the devices have.\n"
        "\n"
        "Time is real, unless --virtual-time makes the program's clocks virtual, which not\n"
        "every program stands.\n"
        "\n"
        "Exit status: 0 all as expected, 1 a failed expectation or a program that ended or hung\n"
        "during a scenario, 2 a file or a program that cannot be used\n"
        "\n"
        "Examples:\n"
        "  vorn-input drive panel.scenario -- ./player --config player.properties\n"
        "  vorn-input drive --virtual-time --quiet --junit results.xml *.scenario -- ./player");
    addScenarioOptions(command, options);
    addFlag(command, "--virtual-time", &options->virtualTime,
            "Make the program's clocks virtual, so that waiting takes no time");
    addText(command, "--tolerance", &options->tolerance,
            "How far real time may be off for 'after' (default 100ms)", "DURATION");
    addText(command, "--timeout", &options->timeout,
            "How long the program may take to start or to answer (default 10s)", "DURATION");
    return command;
}

int drive(const DriveOptions &options)
{
    const std::optional<qint64> tolerance =
        duration(QStringLiteral("--tolerance"), options.tolerance);
    const std::optional<qint64> timeout = duration(QStringLiteral("--timeout"), options.timeout);
    if (!tolerance || !timeout)
        return Failure;
    if (options.command.isEmpty())
        return refuse(QStringLiteral("no program given; put it behind the scenarios: vorn-input "
                                     "drive SCENARIO... -- PROGRAM [ARGUMENT...]"));
    const QString obstacle = obstacleToDrive(options.command.first());
    if (!obstacle.isEmpty())
        return refuse(obstacle);
    DriveSettings settings;
    settings.command = options.command;
    settings.agent = options.agent.isEmpty() ? agentPath() : options.agent;
    settings.version = QStringLiteral(VORN_INPUT_VERSION);
    settings.virtualTime = options.virtualTime;
    settings.passesOutput = !options.quiet;
    settings.tolerance = *tolerance;
    settings.timeout = *timeout;
    return runBatch(options,
                    {QStringLiteral("drive"), false,
                     [&settings](const LoadedScenario &loaded, const SessionLog::Sink &sink) {
                         return outcomeOf(driveScenario(loaded, settings, sink));
                     }});
}

} // namespace Vorn::Tools
