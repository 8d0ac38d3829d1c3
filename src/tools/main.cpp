#include "CommandNames.h"
#include "Commands.h"
#include "Suggestion.h"
#include "Terminal.h"

#include <QCoreApplication>

#include <CLI/CLI.hpp>
#include <log4cplus/consoleappender.h>
#include <log4cplus/initializer.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>

#include <cstdio>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

using namespace Vorn::Tools;
using Vorn::Workbench::Colour;

namespace {

/// What all sub-commands have in common.
struct CommonOptions
{
    std::string log = "error";
    Colour colour = Colour::Auto;
};

QString text(const std::string &argument)
{
    return QString::fromLocal8Bit(argument.data(), static_cast<int>(argument.size()));
}

QStringList texts(const std::vector<std::string> &arguments)
{
    QStringList list;
    for (const std::string &argument : arguments)
        list += text(argument);
    return list;
}

/// The library's log lines, on stderr.
void configureLog(const std::string &level)
{
    log4cplus::SharedAppenderPtr console(new log4cplus::ConsoleAppender(true, true));
    console->setLayout(std::make_unique<log4cplus::PatternLayout>("%-5p %c: %m%n"));
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.addAppender(console);
    root.setLogLevel(log4cplus::getLogLevelManager().fromString(
        QString::fromStdString(level).toUpper().toStdString()));
}

/// An option that takes a text.
CLI::Option *addText(CLI::App *app, const std::string &name, QString *value,
                     const std::string &description, const std::string &placeholder)
{
    const auto store = [value](const std::string &argument) { *value = text(argument); };
    return app->add_option_function<std::string>(name, store, description)->type_name(placeholder);
}

CLI::Option *addTexts(CLI::App *app, const std::string &name, QStringList *values,
                      const std::string &description, const std::string &placeholder)
{
    const auto store = [values](const std::vector<std::string> &arguments) {
        *values = texts(arguments);
    };
    return app->add_option_function<std::vector<std::string>>(name, store, description)
        ->type_name(placeholder);
}

CLI::Option *addSeconds(CLI::App *app, const std::string &name, double *value,
                        const std::string &description)
{
    constexpr double longest = 7 * 24 * 60 * 60;
    return app->add_option(name, *value, description)
        ->type_name("SECONDS")
        ->check(CLI::Range(0.001, longest).description(""));
}

QStringList commandNames(const CLI::App &app)
{
    QStringList names;
    for (const CLI::App *command : app.get_subcommands({}))
        names += text(command->get_name());
    return names;
}

/// The long names of options, as they are typed.
QStringList optionNames(const CLI::App &app)
{
    QStringList names;
    for (const CLI::Option *option : app.get_options()) {
        for (const std::string &name : option->get_lnames())
            names += QStringLiteral("--") + text(name);
    }
    return names;
}

/// What is wrong with a command line, and what was probably meant.
std::string refusal(const CLI::App &app, const CLI::Error &error)
{
    const std::vector<CLI::App *> commands = app.get_subcommands();
    QStringList unknown = texts(app.remaining(true));
    unknown.removeAll(QStringLiteral("--"));
    if (unknown.isEmpty()) {
        if (commands.empty() && error.get_name() == "RequiredError")
            return "a command is required: "
                + commandNames(app).join(QStringLiteral(", ")).toStdString();
        return error.what();
    }
    for (const QString &word : unknown) {
        if (!word.startsWith(QLatin1Char('-')))
            continue;
        QStringList known = optionNames(app);
        for (const CLI::App *command : commands)
            known += optionNames(*command);
        return QStringLiteral("unknown option '%1'%2")
            .arg(word, Vorn::Workbench::suggestion(word.section(QLatin1Char('='), 0, 0), known))
            .toStdString();
    }
    const QString word = unknown.first();
    if (commands.empty())
        return QStringLiteral("unknown command '%1'%2")
            .arg(word, Vorn::Workbench::suggestion(word, commandNames(app)))
            .toStdString();
    return QStringLiteral("unexpected argument '%1'").arg(word).toStdString();
}

CLI::App *addDevices(CLI::App *app, DevicesOptions *options)
{
    CLI::App *command = app->add_subcommand("devices", "List the input devices");
    command->add_flag("--json", options->json, "Print one JSON object a line");
    command->footer(
        "Shows each /dev/input/event* node: its name, the kernel's and the library's bus,\n"
        "its keys and switches, whether it can be read, and whether the library would use\n"
        "it.\n"
        "\n"
        "Examples:\n"
        "  vorn-input devices\n"
        "  vorn-input devices --json | jq -r 'select(.used) | .name'");
    return command;
}

CLI::App *addMonitor(CLI::App *app, MonitorOptions *options)
{
    CLI::App *command =
        app->add_subcommand("monitor", "Show what devices send and what comes of it");
    addText(command, "-p,--profile", &options->profile, "What the devices' keys mean", "FILE");
    addText(command, "--id", &options->identifier, "Identifier to select at first", "ID");
    command->add_flag("--raw", options->raw, "Show the records beside the events");
    command->add_flag("--json", options->json, "Print one JSON object a line");
    addText(
        command, "--record", &options->record,
        "Keep the session in a new folder, for umockdev-run, evemu-play and vorn-input simulate",
        "DIR");
    command->add_flag("--show-text", options->showText,
                      "Record typed characters as they are, not blanked");
    addSeconds(command, "--duration", &options->duration, "End after so many seconds");
    command->footer(
        "Shows live what the library publishes, with time, device and latency. Without a\n"
        "profile it shows the codes that arrive and what a registration would look like.\n"
        "Devices may come and go, and the profile may be edited meanwhile. Ends with\n"
        "Ctrl-C or q; digits select identifiers, r switches the records on and off.\n"
        "\n"
        "Examples:\n"
        "  vorn-input monitor\n"
        "  vorn-input monitor --profile panel.json --raw\n"
        "  vorn-input monitor --profile panel.json --record lost-release");
    return command;
}

CLI::App *addLearn(CLI::App *app, LearnOptions *options)
{
    CLI::App *command = app->add_subcommand("learn", "Write a profile from pressed keys");
    addText(command, "-o,--output", &options->output, "Profile to write; - is the standard output",
            "FILE")
        ->required();
    addTexts(command, "-c,--commands", &options->commands,
             "Commands to ask for, separated by commas; those that most players have by default",
             "NAME,...")
        ->delimiter(',');
    command->add_flag("-y,--yes", options->yes, "Accept every offer");
    command->add_flag("-f,--force", options->force, "Replace an existing file");
    addSeconds(command, "--patience", &options->patience,
               "Finish when no key comes for so many seconds");
    command->footer(
        "Asks for one command after the other: press its key, two keys together for a\n"
        "chord, or move its switch. A key that is held is offered a long press. Questions\n"
        "are on stderr, answers come from the terminal: Enter skips or accepts, n\n"
        "declines, b goes back, q finishes. Ctrl-C finishes, too, and keeps what was\n"
        "learnt.\n"
        "\n"
        "Examples:\n"
        "  vorn-input learn -o panel.json\n"
        "  vorn-input learn -o panel.json --commands VolumeUp,VolumeDown,Info");
    return command;
}

CLI::App *addCheck(CLI::App *app, CheckOptions *options)
{
    CLI::App *command = app->add_subcommand("check", "Find the mistakes in profiles");
    addTexts(command, "FILE", &options->files, "Profiles; - is the standard input", "")->required();
    command->add_flag("--json", options->json, "Print one JSON object a line");
    command->add_flag("--strict", options->strict, "Warnings count as errors");
    command->footer(
        "Names every mistake in the profiles with line, column and a suggestion. Errors\n"
        "keep a profile from being used, warnings do not.\n"
        "\n"
        "Exit status: 0 no errors, 1 errors, 2 a file that cannot be read.\n\n"
        "Examples:\n"
        "  vorn-input check panel.json\n"
        "  vorn-input check --strict profiles/*.json");
    return command;
}

CLI::App *addSimulate(CLI::App *app, SimulateOptions *options)
{
    CLI::App *command = app->add_subcommand("simulate", "Run scenarios and recordings");
    addText(command, "-p,--profile", &options->profile,
            "What the devices' keys mean, whatever the scenarios say", "FILE");
    addText(command, "-e,--expectations", &options->expectations,
            "What is expected of a recording, not the file beside it", "FILE");
    addTexts(command, "FILE", &options->files, "Scenarios and recordings", "")->required();
    command->add_flag("--json", options->json, "Print one JSON object a line");
    command->add_flag("--raw", options->raw, "Show the records beside the events");
    command->add_flag("-q,--quiet", options->quiet, "Print only what fails");
    addText(command, "-t,--timeline", &options->timeline, "Draw a picture of the session (SVG)",
            "FILE");
    command->footer(
        "Runs scenarios through the real library, on simulated devices and in virtual\n"
        "time, and tells whether everything came as expected. A recording (*.evemu,\n"
        "*.umockdev) is played, and compared with the file of its name and .expect beside\n"
        "it. The same input gives the same output, byte for byte.\n"
        "\n"
        "Exit status: 0 all as expected, 1 a failed expectation, 2 a file that cannot be used.\n\n"
        "Examples:\n"
        "  vorn-input simulate --profile panel.json long-press.scenario\n"
        "  vorn-input simulate tests/scenarios/*.scenario --quiet\n"
        "  vorn-input simulate --profile panel.json lost-release/session.umockdev -t session.svg");
    return command;
}

CLI::App *addTimeline(CLI::App *app, TimelineOptions *options)
{
    CLI::App *command = app->add_subcommand("timeline", "Draw a picture of a session");
    addText(command, "FILE", &options->file, "Session; - is the standard input", "")->required();
    addText(command, "-o,--output", &options->output,
            "Picture to write (SVG); - is the standard output", "FILE")
        ->required();
    addText(command, "--title", &options->title, "Title of the picture", "TEXT");
    addSeconds(command, "--from", &options->from, "Begin at this second of the session");
    addSeconds(command, "--to", &options->to, "End at this second of the session");
    command->footer(
        "Draws a session that monitor or simulate printed with --json, or that monitor\n"
        "recorded (session.jsonl): when keys were down, what the detectors made of it,\n"
        "and what was published.\n"
        "\n"
        "Examples:\n"
        "  vorn-input timeline lost-release/session.jsonl -o lost-release.svg\n"
        "  vorn-input simulate --json chord.scenario | vorn-input timeline - -o chord.svg");
    return command;
}

int run(int argc, char *argv[])
{
    const log4cplus::Initializer logging;
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vorn-input"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VORN_INPUT_VERSION));

    CLI::App app("Workbench for input devices: see what they send, try and check what their keys "
                 "mean, prove it with scenarios, and picture the timing.",
                 "vorn-input");
    app.set_version_flag("--version", "vorn-input " VORN_INPUT_VERSION);
    app.require_subcommand(1);
    // Common options may stand behind the sub-command, where people look for them.
    app.fallthrough();
    app.failure_message([](const CLI::App *failed, const CLI::Error &error) {
        return "vorn-input: " + refusal(*failed, error) + " (see --help)\n";
    });
    app.footer("See vorn-input COMMAND --help for options and examples, and the manual: man "
               "vorn-input\nExit status: 0 success, 1 something was found (a mistake, a failed "
               "expectation), 2 it could not be done");

    CommonOptions common;
    app.add_option(
           "--log", common.log,
           "Show the library's log lines on stderr, from this level on: trace, debug, info, "
           "warn, error (default) or off")
        ->type_name("LEVEL")
        ->check(CLI::IsMember({"trace", "debug", "info", "warn", "error", "off"}).description(""));
    const std::map<std::string, Colour> colours{
        {"auto", Colour::Auto}, {"always", Colour::Always}, {"never", Colour::Never}};
    app.add_option("--color", common.colour, "Colour the output: auto, always or never")
        ->type_name("WHEN")
        ->transform(CLI::CheckedTransformer(colours).description(""));

    DevicesOptions devicesOptions;
    MonitorOptions monitorOptions;
    LearnOptions learnOptions;
    CheckOptions checkOptions;
    SimulateOptions simulateOptions;
    TimelineOptions timelineOptions;
    int status = Success;
    const auto carryOut = [&](CLI::App *command, auto *options, auto function) {
        command->final_callback([&status, &common, options, function] {
            configureLog(common.log);
            status = function(*options);
        });
    };
    const auto runColoured = [&](CLI::App *command, auto *options, auto function) {
        carryOut(command, options, [&common, function](auto coloured) {
            coloured.colour = common.colour;
            return function(coloured);
        });
    };
    runColoured(addDevices(&app, &devicesOptions), &devicesOptions, devices);
    runColoured(addMonitor(&app, &monitorOptions), &monitorOptions, monitor);
    runColoured(addLearn(&app, &learnOptions), &learnOptions, learn);
    runColoured(addCheck(&app, &checkOptions), &checkOptions, check);
    runColoured(addSimulate(&app, &simulateOptions), &simulateOptions, simulate);
    carryOut(addTimeline(&app, &timelineOptions), &timelineOptions, timeline);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? Success : Failure;
    }
    return status;
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
