#include "CommandLine.h"

#include "ExitStatus.h"
#include "Output.h"
#include "Quoting.h"
#include "Suggestion.h"

#include <QString>
#include <QStringList>

#include <CLI/CLI.hpp>

#include <map>
#include <sstream>
#include <utility>
#include <vector>

namespace Vorn::Tools {

namespace {

using Workbench::Colour;
using Workbench::flush;
using Workbench::outputError;
using Workbench::printLine;
using Workbench::printText;

QStringList texts(const std::vector<std::string> &arguments)
{
    QStringList list;
    for (const std::string &argument : arguments)
        list += QString::fromLocal8Bit(argument.data(), static_cast<int>(argument.size()));
    return list;
}

QStringList commandNames(const CLI::App &app)
{
    QStringList names;
    for (const CLI::App *command : app.get_subcommands({}))
        names += QString::fromStdString(command->get_name());
    return names;
}

/// Long names, with their dashes.
QStringList optionNames(const CLI::App &app)
{
    QStringList names;
    for (const CLI::Option *option : app.get_options()) {
        for (const std::string &name : option->get_lnames())
            names += QStringLiteral("--") + QString::fromStdString(name);
    }
    return names;
}

// The parser names what it could not use, but not what was probably meant.
QString refusal(const CLI::App &app, const CLI::Error &error)
{
    const std::vector<CLI::App *> commands = app.get_subcommands();
    QStringList unknown = texts(app.remaining(true));
    unknown.removeAll(QStringLiteral("--"));
    if (unknown.isEmpty()) {
        if (commands.empty() && error.get_name() == "RequiredError")
            return QStringLiteral("a command is required: %1")
                .arg(commandNames(app).join(QStringLiteral(", ")));
        return QString::fromLocal8Bit(error.what());
    }
    // A misspelt option leaves its value behind as well, so the option comes first.
    for (const QString &word : qAsConst(unknown)) {
        if (!word.startsWith(QLatin1Char('-')))
            continue;
        QStringList known = optionNames(app);
        for (const CLI::App *command : commands)
            known += optionNames(*command);
        return QStringLiteral("unknown option '%1'%2")
            .arg(word, suggestion(word.section(QLatin1Char('='), 0, 0), known));
    }
    const QString word = unknown.first();
    if (commands.empty())
        return QStringLiteral("unknown command '%1'%2")
            .arg(word, suggestion(word, commandNames(app)));
    return QStringLiteral("unexpected argument '%1'").arg(word);
}

} // namespace

CommandLine::CommandLine(const std::string &version)
    : m_app(std::make_unique<CLI::App>(
        "Workbench for input devices: see what they send, try out and check what their keys mean,\n"
        "prove it with scenarios, and draw the timing.",
        "vorn-input"))
{
    m_app->set_version_flag("--version", "vorn-input " + version);
    m_app->require_subcommand(1);
    // So that common options are understood after the sub-command, where people put them.
    m_app->fallthrough();
    m_app->failure_message([](const CLI::App *failed, const CLI::Error &error) {
        return "vorn-input: " + printable(refusal(*failed, error)).toStdString()
            + " (see --help)\n";
    });
    m_app->footer("Options and examples of a command: vorn-input COMMAND --help\n"
                  "Manual: man vorn-input\n"
                  "\n"
                  "Exit status: 0 success, 1 something was found (an error in a profile, a failed\n"
                  "expectation), 2 it could not be done");

    m_app
        ->add_option("--log", m_logLevel,
                     "Show the library's log lines on stderr, from this level on: trace, debug, "
                     "info, warn, error (default) or off")
        ->type_name("LEVEL")
        ->check(CLI::IsMember({"trace", "debug", "info", "warn", "error", "off"}).description(""));
    const std::map<std::string, Colour> colours{
        {"auto", Colour::Auto}, {"always", Colour::Always}, {"never", Colour::Never}};
    m_app->add_option("--color", m_colour, "Colour the output: auto (default), always or never")
        ->type_name("WHEN")
        ->transform(CLI::CheckedTransformer(colours).description(""));
}

CommandLine::~CommandLine() = default;

void CommandLine::setAction(CLI::App *command, std::function<int()> run)
{
    command->final_callback([this, run = std::move(run)] { m_status = run(); });
}

void CommandLine::setTrailing(const CLI::App *command, QStringList *arguments)
{
    m_trailing[command->get_name()] = arguments;
}

/// @return how many arguments are left
int CommandLine::takeTrailing(int argc, const char *const *argv)
{
    QStringList *trailing = nullptr;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (trailing && argument == "--") {
            for (int j = i + 1; j < argc; ++j)
                *trailing += QString::fromLocal8Bit(argv[j]);
            return i;
        }
        if (!trailing && commandNames(*m_app).contains(QString::fromLocal8Bit(argv[i]))) {
            const auto found = m_trailing.find(argument);
            if (found == m_trailing.end())
                return argc;
            trailing = found->second;
        }
    }
    return argc;
}

void CommandLine::addHelp()
{
    CLI::App *help = m_app->add_subcommand("help", "Print help for the program or a command");
    help->footer("Prints what --help prints.\n"
                 "\n"
                 "Examples:\n"
                 "  vorn-input help\n"
                 "  vorn-input help simulate");
    help->add_option("COMMAND", m_helpedCommand, "Command to explain")->type_name("");
    setAction(help, [this] { return explain(QString::fromLocal8Bit(m_helpedCommand.c_str())); });
}

int CommandLine::explain(const QString &name) const
{
    const QStringList names = commandNames(*m_app);
    if (!name.isEmpty() && !names.contains(name)) {
        printLine(stderr,
                  QStringLiteral("vorn-input: unknown command %1%2 (see --help)")
                      .arg(quoted(name), suggestion(name, names)));
        return Failure;
    }
    const CLI::App *app = name.isEmpty() ? m_app.get() : m_app->get_subcommand(m_helpedCommand);
    const std::string title = name.isEmpty() ? m_app->get_name() : "vorn-input " + m_helpedCommand;
    // App::help() would explain this command, which is the one that was given.
    printText(stdout,
              QString::fromStdString(
                  app->get_formatter()->make_help(app, title, CLI::AppFormatMode::Normal)));
    return Success;
}

int CommandLine::parse(int argc, const char *const *argv)
{
    addHelp();
    try {
        m_app->parse(takeTrailing(argc, argv), argv);
    } catch (const CLI::ParseError &error) {
        // --help and --version end up here, too.
        std::ostringstream out;
        std::ostringstream errors;
        m_status = m_app->exit(error, out, errors) == 0 ? Success : Failure;
        printText(stdout, QString::fromStdString(out.str()));
        printText(stderr, QString::fromStdString(errors.str()));
    }
    // Whatever was printed, and by whom: a result that has not arrived is none.
    if (flush(stdout))
        return m_status;
    printLine(stderr, QStringLiteral("vorn-input: ") + outputError());
    return Failure;
}

} // namespace Vorn::Tools
