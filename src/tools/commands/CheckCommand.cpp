#include "CheckCommand.h"

#include "CommandOptions.h"
#include "Diagnostic.h"
#include "ExitStatus.h"
#include "JsonLine.h"
#include "Output.h"
#include "ProfileReader.h"
#include "Quoting.h"
#include "TextFile.h"

#include <QFileInfo>
#include <QJsonObject>

#include <algorithm>

#include <unistd.h>

namespace Vorn::Tools {

namespace {

using namespace Workbench;

QString severityName(const Diagnostic &diagnostic)
{
    return diagnostic.severity == Diagnostic::Severity::Error ? QStringLiteral("error")
                                                              : QStringLiteral("warning");
}

QByteArray toJson(const Diagnostic &diagnostic)
{
    const QJsonObject object{{QStringLiteral("file"), diagnostic.file},
                             {QStringLiteral("line"), diagnostic.line},
                             {QStringLiteral("column"), diagnostic.column},
                             {QStringLiteral("severity"), severityName(diagnostic)},
                             {QStringLiteral("message"), diagnostic.message}};
    return jsonLine(object);
}

QString toText(const Diagnostic &diagnostic, bool coloured)
{
    QString text = diagnostic.toString();
    if (coloured) {
        const QString severity = severityName(diagnostic);
        const bool isError = diagnostic.severity == Diagnostic::Severity::Error;
        // Counted from the end, because a file name may contain anything, "error" included.
        const auto begin = text.size() - printable(diagnostic.message).size() - severity.size()
            - 2; // ": " between
        text.insert(begin + severity.size(), QStringLiteral("\033[0m"));
        text.insert(begin, isError ? QStringLiteral("\033[1;31m") : QStringLiteral("\033[1;35m"));
    }
    return text;
}

QString counted(int count, const QString &noun)
{
    return QStringLiteral("%1 %2%3").arg(count).arg(noun,
                                                    count == 1 ? QString() : QStringLiteral("s"));
}

QString summary(const QString &file, int errors, int warnings)
{
    const QString name = file == QLatin1String("-") ? file : QFileInfo(file).fileName();
    QStringList parts;
    if (errors > 0)
        parts += counted(errors, QStringLiteral("error"));
    if (warnings > 0)
        parts += counted(warnings, QStringLiteral("warning"));
    if (parts.isEmpty())
        return name + QStringLiteral(": no errors or warnings");
    return parts.join(QStringLiteral(", ")) + QStringLiteral(" in ") + name;
}

ExitStatus checkFile(const QString &file, const CheckOptions &options, bool coloured)
{
    Diagnostics unreadable;
    const auto text = readFile(file, maxProfileSize, &unreadable);
    if (!text) {
        printDiagnostics(unreadable);
        return Failure;
    }
    const Diagnostics diagnostics = parseProfile(*text, file).diagnostics;
    for (const Diagnostic &diagnostic : diagnostics) {
        if (options.json)
            print(stdout, toJson(diagnostic));
        else
            printColoured(stdout, toText(diagnostic, coloured));
    }

    const auto errors = static_cast<int>(
        std::count_if(diagnostics.begin(), diagnostics.end(), [](const Diagnostic &diagnostic) {
            return diagnostic.severity == Diagnostic::Severity::Error;
        }));
    const int warnings = static_cast<int>(diagnostics.size()) - errors;
    if (!options.json)
        printLine(stdout, summary(file, errors, warnings));
    return errors > 0 || (options.strict && warnings > 0) ? Found : Success;
}

} // namespace

CLI::App *addCheck(CLI::App *app, CheckOptions *options)
{
    CLI::App *command = addCommand(
        app, "check", "Check profiles for errors",
        "Reports every error in the profiles with its line and column, and a suggestion\n"
        "where there is one. A profile with errors cannot be used; one with warnings can.\n"
        "\n"
        "Exit status: 0 no errors, 1 errors, 2 a file that cannot be read\n"
        "\n"
        "Examples:\n"
        "  vorn-input check panel.toml\n"
        "  vorn-input check --strict profiles/*.toml");
    addFiles(command, &options->files, "Profiles; - is the standard input");
    addFlag(command, "--json", &options->json, "Print one JSON object per line");
    addFlag(command, "--strict", &options->strict, "Treat warnings as errors");
    return command;
}

int check(const CheckOptions &options)
{
    const bool coloured = !options.json && isColoured(options.colour, STDOUT_FILENO);
    ExitStatus worst = Success;
    for (const QString &file : options.files)
        worst = std::max(worst, checkFile(file, options, coloured));
    return worst;
}

} // namespace Vorn::Tools
