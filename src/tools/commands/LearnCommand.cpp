#include "LearnCommand.h"

#include "CommandNames.h"
#include "CommandOptions.h"
#include "Diagnostic.h"
#include "ExitStatus.h"
#include "Interruption.h"
#include "Keyboard.h"
#include "Learner.h"
#include "Output.h"
#include "OutputFile.h"
#include "Product.h"
#include "ProfileReader.h"
#include "ProfileWriter.h"
#include "Session.h"
#include "SessionLog.h"
#include "Suggestion.h"
#include "TextFile.h"
#include "vorn.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTimer>

#include <unistd.h>

#include <optional>

namespace Vorn::Tools {

namespace {

using namespace Workbench;

void complain(const QString &text)
{
    printLine(stderr, QStringLiteral("vorn-input learn: ") + text);
}

/// @return nothing, with a line on stderr, if a name is unknown
std::optional<QVector<InputEvent::Command>> commandsOf(const QStringList &names)
{
    if (names.isEmpty())
        return usualCommands();
    QVector<InputEvent::Command> commands;
    for (const QString &name : names) {
        const auto known = command(name);
        if (!known || *known == InputEvent::None) {
            complain(QStringLiteral("unknown command '%1'%2")
                         .arg(name, suggestion(name, commandNames())));
            return std::nullopt;
        }
        commands += *known;
    }
    return commands;
}

/// Whether the profile may be written to a file, which is asked before anybody presses a key.
/// @return false, with a line on stderr, if what is there must stay
bool isReplaceable(const LearnOptions &options)
{
    const QString &path = options.output;
    const QFileInfo file(path);
    const QString obstacle = obstacleTo(path);
    if (!obstacle.isEmpty()) {
        complain(obstacle);
        return false;
    }
    if (path == QLatin1String("-") || !file.exists())
        return true;
    if (!options.force) {
        complain(
            QStringLiteral("%1 exists; choose another file, or replace it with --force").arg(path));
        return false;
    }
    // A device or a pipe keeps nothing that could be lost.
    if (!file.isFile() || file.size() == 0)
        return true;
    Diagnostics unreadable;
    const auto text = readFile(path, maxProfileSize, &unreadable);
    if (text && isAsWritten(*text))
        return true;
    printDiagnostics(unreadable);
    complain(
        QStringLiteral("%1 is not as 'learn' wrote it, and comments in it would be lost; choose "
                       "another file, or delete it first")
            .arg(path));
    return false;
}

int write(const Learner &learner, const QString &path)
{
    if (learner.learntCount() == 0) {
        complain(QStringLiteral("nothing learnt, so nothing written"));
        return Found;
    }
    const QByteArray text = writeCommentedProfile(learner.profile());
    const QString error = writeFile(path, text);
    if (!error.isEmpty()) {
        complain(error);
        return Failure;
    }
    // What was learnt can be valid and still not what a product wants.
    printDiagnostics(parseProfile(text, path).diagnostics);
    if (path != QLatin1String("-")) {
        printLine(stderr,
                  QStringLiteral("%1 learnt, written to %2. Next: vorn-input monitor --profile %2")
                      .arg(learner.learntCount())
                      .arg(path));
    }
    return Success;
}

} // namespace

CLI::App *addLearn(CLI::App *app, LearnOptions *options)
{
    CLI::App *command = addCommand(
        app, "learn", "Write a profile by pressing keys",
        "Asks for one command after another: press its key, two keys together for a\n"
        "chord, or move its switch. For a key that is held it offers a long press.\n"
        "Questions are printed to stderr and answered on the terminal: Enter skips or\n"
        "accepts, n declines, b goes back, q finishes. Ctrl-C finishes as well; what was\n"
        "learnt so far is kept.\n"
        "\n"
        "Examples:\n"
        "  vorn-input learn -o panel.toml\n"
        "  vorn-input learn -o panel.toml --commands VolumeUp,VolumeDown,Info");
    addFile(command, "-o,--output", &options->output, "Profile to write; - is the standard output",
            "FILE", Presence::Required);
    addCommaList(command, "-c,--commands", &options->commands,
                 "Commands to ask for, separated by commas (default: those most players have)",
                 "NAME,...");
    addFlag(command, "-y,--yes", &options->yes, "Accept every offer");
    addFlag(command, "-f,--force", &options->force,
            "Replace an existing profile, unless it was edited");
    addSeconds(command, "--patience", &options->patience,
               "Finish when no key is pressed for this many seconds");
    return command;
}

int learn(const LearnOptions &options)
{
    const auto commands = commandsOf(options.commands);
    if (!commands)
        return Failure;
    if (!isReplaceable(options))
        return Failure;

    // Questions go to stderr, because the profile may go to stdout.
    Learner learner(*commands, options.yes, [](const QString &line) { printLine(stderr, line); });
    QTimer patience;
    patience.setSingleShot(true);
    const auto wait = [&] {
        if (learner.isFinished())
            QCoreApplication::quit();
        else if (options.patience > 0)
            patience.start(static_cast<int>(options.patience * 1000));
    };
    Vorn::connect(&patience, &QTimer::timeout, &patience, [&] {
        learner.answer('q');
        QCoreApplication::quit();
    });

    SessionLog log([&](const SessionEntry &entry) {
        learner.add(entry);
        wait();
    });
    const Product devices(Profile(), &log);
    const Interruption interruption([] { QCoreApplication::quit(); });
    const Keyboard keyboard(STDERR_FILENO, [&](char key) {
        learner.answer(key);
        wait();
    });

    printLine(stderr,
              QStringLiteral("Enter: skip or accept   n: decline   b: back   q: finish and write"));
    // Queued behind the library's first look at the devices, which are listed above the questions.
    QTimer::singleShot(0, &patience, [&] {
        if (devices.devices().isEmpty())
            complain(QStringLiteral("no input device can be read; waiting for one to be plugged in "
                                    "(see: vorn-input devices)"));
        learner.start();
        wait();
    });
    QCoreApplication::exec();
    return write(learner, options.output);
}

} // namespace Vorn::Tools
