#include "CheckCommand.h"
#include "CommandLine.h"
#include "CompileCommand.h"
#include "DevicesCommand.h"
#include "DriveCommand.h"
#include "ExitStatus.h"
#include "ExplainCommand.h"
#include "LearnCommand.h"
#include "LibraryLog.h"
#include "MonitorCommand.h"
#include "Output.h"
#include "SimulateCommand.h"
#include "StandardStreams.h"
#include "TimelineCommand.h"

#include <QCoreApplication>

#include <log4cplus/initializer.h>

#include <cstdio>
#include <exception>

using namespace Vorn::Tools;

namespace {

int run(int argc, char *argv[])
{
    const log4cplus::Initializer logging;
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vorn-input"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VORN_INPUT_VERSION));

    DevicesOptions devicesOptions;
    MonitorOptions monitorOptions;
    LearnOptions learnOptions;
    CheckOptions checkOptions;
    CompileOptions compileOptions;
    SimulateOptions simulateOptions;
    DriveOptions driveOptions;
    TimelineOptions timelineOptions;
    ExplainOptions explainOptions;

    CommandLine commandLine(VORN_INPUT_VERSION);
    CLI::App *app = commandLine.app();
    const auto add = [&](CLI::App *command, auto *options, auto function) {
        commandLine.setAction(command, [&commandLine, options, function] {
            showLibraryLog(commandLine.logLevel());
            return function(*options);
        });
    };
    // Common options may come after the sub-command's own, so they are copied when all are known.
    const auto addColoured = [&](CLI::App *command, auto *options, auto function) {
        add(command, options, [&commandLine, function](auto coloured) {
            coloured.colour = commandLine.colour();
            return function(coloured);
        });
    };
    addColoured(addDevices(app, &devicesOptions), &devicesOptions, devices);
    addColoured(addMonitor(app, &monitorOptions), &monitorOptions, monitor);
    add(addLearn(app, &learnOptions), &learnOptions, learn);
    addColoured(addCheck(app, &checkOptions), &checkOptions, check);
    add(addCompile(app, &compileOptions), &compileOptions, compile);
    addColoured(addSimulate(app, &simulateOptions), &simulateOptions, simulate);
    CLI::App *driveCommand = addDrive(app, &driveOptions);
    commandLine.setTrailing(driveCommand, &driveOptions.command);
    addColoured(driveCommand, &driveOptions, drive);
    add(addTimeline(app, &timelineOptions), &timelineOptions, timeline);
    add(addExplain(app, &explainOptions), &explainOptions, explain);
    return commandLine.parse(argc, argv);
}

} // namespace

int main(int argc, char *argv[])
{
    Vorn::Workbench::prepareStandardStreams();
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        Vorn::Workbench::printLine(
            stderr, QStringLiteral("vorn-input: ") + QString::fromLocal8Bit(error.what()));
        return Failure;
    }
}
