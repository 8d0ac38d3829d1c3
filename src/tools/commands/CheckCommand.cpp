#include "Commands.h"
#include "Diagnostic.h"
#include "ProfileReader.h"
#include "TextFile.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdio>

namespace Vorn::Tools {

namespace {

using Workbench::Diagnostic;
using Workbench::Diagnostics;

/// @param stream standard output or error; what went wrong with it shows when it is flushed
void writeLine(std::FILE *stream, QByteArray line)
{
    line += '\n';
    static_cast<void>(
        std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stream));
}

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
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray toText(const Diagnostic &diagnostic, bool coloured)
{
    QString text = diagnostic.toString();
    if (coloured) {
        const QString severity = severityName(diagnostic);
        const bool isError = diagnostic.severity == Diagnostic::Severity::Error;
        // From the end: a file name may contain anything.
        const int begin =
            text.size() - diagnostic.message.size() - severity.size() - 2; // ": " between
        text.insert(begin + severity.size(), QStringLiteral("\033[0m"));
        text.insert(begin, isError ? QStringLiteral("\033[1;31m") : QStringLiteral("\033[1;35m"));
    }
    return text.toLocal8Bit();
}

QString counted(int count, const QString &what)
{
    return QStringLiteral("%1 %2%3").arg(count).arg(what,
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
        return name + QStringLiteral(": no mistakes");
    return parts.join(QStringLiteral(", ")) + QStringLiteral(" in ") + name;
}

ExitStatus checkFile(const QString &file, const CheckOptions &options, bool coloured)
{
    Diagnostics unreadable;
    const auto text = Workbench::readFile(file, Workbench::maxTextSize, &unreadable);
    if (!text) {
        for (const Diagnostic &diagnostic : unreadable)
            writeLine(stderr, diagnostic.toString().toLocal8Bit());
        return Failure;
    }
    const Diagnostics diagnostics = Workbench::parseProfile(*text, file).diagnostics;
    for (const Diagnostic &diagnostic : diagnostics)
        writeLine(stdout, options.json ? toJson(diagnostic) : toText(diagnostic, coloured));

    const auto errors = static_cast<int>(
        std::count_if(diagnostics.begin(), diagnostics.end(), [](const Diagnostic &diagnostic) {
            return diagnostic.severity == Diagnostic::Severity::Error;
        }));
    const int warnings = diagnostics.size() - errors;
    if (!options.json)
        writeLine(stdout, summary(file, errors, warnings).toLocal8Bit());
    return errors > 0 || (options.strict && warnings > 0) ? Found : Success;
}

} // namespace

int check(const CheckOptions &options)
{
    const bool coloured = !options.json && Workbench::isColoured(options.colour, 1);
    ExitStatus worst = Success;
    for (const QString &file : options.files)
        worst = std::max(worst, checkFile(file, options, coloured));
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        writeLine(stderr, "the standard output cannot be written");
        return Failure;
    }
    return worst;
}

} // namespace Vorn::Tools
