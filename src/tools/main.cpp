#include "CheckCommand.h"
#include "CommandLine.h"
#include "DevicesCommand.h"
#include "ExitStatus.h"
#include "LearnCommand.h"
#include "MonitorCommand.h"
#include "SimulateCommand.h"
#include "TimelineCommand.h"

#include <QCoreApplication>

#include <log4cplus/consoleappender.h>
#include <log4cplus/initializer.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>

#include <cstdio>
#include <exception>
#include <memory>
#include <string>

using namespace Vorn::Tools;

namespace {

/// Sends the library's log lines to stderr, from @p level on.
void configureLog(const std::string &level)
{
    log4cplus::SharedAppenderPtr console(new log4cplus::ConsoleAppender(true, true));
    console->setLayout(std::make_unique<log4cplus::PatternLayout>("%-5p %c: %m%n"));
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.addAppender(console);
    root.setLogLevel(log4cplus::getLogLevelManager().fromString(
        QString::fromStdString(level).toUpper().toStdString()));
}

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
    SimulateOptions simulateOptions;
    TimelineOptions timelineOptions;

    CommandLine commandLine(VORN_INPUT_VERSION);
    CLI::App *app = commandLine.app();
    const auto add = [&](CLI::App *command, auto *options, auto function) {
        commandLine.setAction(command, [&commandLine, options, function] {
            configureLog(commandLine.logLevel());
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
    addColoured(addSimulate(app, &simulateOptions), &simulateOptions, simulate);
    add(addTimeline(app, &timelineOptions), &timelineOptions, timeline);
    return commandLine.parse(argc, argv);
}

} // namespace

int main(int argc, char *argv[])
{
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "vorn-input: %s\n", error.what());
        return Failure;
    }
}
