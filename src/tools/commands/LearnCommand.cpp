#include "CommandNames.h"
#include "Commands.h"
#include "Diagnostic.h"
#include "Interruption.h"
#include "Keyboard.h"
#include "Learner.h"
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

#include <cstdio>
#include <optional>

namespace Vorn::Tools {

using namespace Workbench;

namespace {

void complain(const QString &text)
{
    std::fprintf(stderr, "vorn-input learn: %s\n", qPrintable(text));
}

/// The commands of their names; nothing, with a line on stderr, if one is unknown.
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

int write(const Learner &learner, const QString &path)
{
    if (learner.learntCount() == 0) {
        complain(QStringLiteral("nothing was learnt, so nothing is written"));
        return Found;
    }
    const QByteArray json = writeProfile(learner.profile());
    const QString error = writeFile(path, json);
    if (!error.isEmpty()) {
        complain(error);
        return Failure;
    }
    for (const Diagnostic &diagnostic : parseProfile(json, path).diagnostics)
        std::fprintf(stderr, "%s\n", qPrintable(diagnostic.toString()));
    if (path != QLatin1String("-")) {
        std::fprintf(stderr, "%d learnt, written to %s. Next: vorn-input monitor --profile %s\n",
                     learner.learntCount(), qPrintable(path), qPrintable(path));
    }
    return Success;
}

} // namespace

int learn(const LearnOptions &options)
{
    const auto commands = commandsOf(options.commands);
    if (!commands)
        return Failure;
    const bool isFile = options.output != QLatin1String("-");
    if (isFile && QFileInfo::exists(options.output) && !options.force) {
        complain(QStringLiteral("%1 exists; choose another file, or replace it with --force")
                     .arg(options.output));
        return Failure;
    }

    // The questions are for the person, so they stay out of a profile on the standard output.
    Learner learner(*commands, options.yes,
                    [](const QString &line) { std::fprintf(stderr, "%s\n", qPrintable(line)); });
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
    const Keyboard keyboard([&](char key) {
        learner.answer(key);
        wait();
    });

    std::fputs("Enter: skip or accept   n: decline   b: back   q: finish and write\n", stderr);
    // After the first look at the devices, which are shown above the first question.
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
