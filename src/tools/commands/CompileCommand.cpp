#include "CompileCommand.h"

#include "CommandOptions.h"
#include "CompiledName.h"
#include "Diagnostic.h"
#include "ExitStatus.h"
#include "Output.h"
#include "OutputFile.h"
#include "ProfileCompiler.h"
#include "ProfileFile.h"
#include "TextFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <optional>

namespace Vorn::Tools {

namespace {

using namespace Workbench;

const QLatin1String standardStream("-");

int fail(const QString &message)
{
    printLine(stderr, QStringLiteral("error: ") + message);
    return Failure;
}

CompiledProfile described(const CompileOptions &options)
{
    const bool isStandardInput = options.profile == standardStream;
    return {options.name.isEmpty() ? compiledName(options.profile) : options.name,
            isStandardInput ? QStringLiteral("the standard input")
                            : QFileInfo(options.profile).fileName()};
}

/// Empty: none, as there is no place beside the standard output.
QString headerOf(const CompileOptions &options)
{
    if (!options.header.isEmpty() || options.output == standardStream)
        return options.header;
    const QFileInfo source(options.output);
    return source.dir().filePath(source.completeBaseName() + QStringLiteral(".h"));
}

QString problemOf(const CompileOptions &options, const QString &header, const QString &name)
{
    const QString reason = problemOfName(name);
    if (!reason.isEmpty())
        return reason + QStringLiteral("; choose another with --name");
    if (header == standardStream) {
        return QStringLiteral("the header cannot be written to the standard output; name a file "
                              "with --header");
    }
    const auto place = [](const QString &path) {
        return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    };
    if (!header.isEmpty() && place(header) == place(options.output)) {
        return QStringLiteral("the source and its header would both be %1; choose another header "
                              "with --header")
            .arg(header);
    }
    return {};
}

/// A file that is as it should be keeps its time, so that a build does not compile it again.
QString update(const QString &path, const QByteArray &content, const Overwrite &overwrite)
{
    QFile file(path);
    if (path != standardStream && QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly)
        && file.size() == content.size() && file.readAll() == content)
        return {};
    return writeFile(path, content, overwrite);
}

/// Writes the source and its header, or neither. @return why it was neither; empty if it was both
QString writeFiles(const CompileOptions &options, const QString &header,
                   const CompiledProfile &compiled, const Profile &profile)
{
    const Overwrite overwrite{compiledSignature(), options.force};
    for (const QString &path : {header, options.output}) {
        QString obstacle = path.isEmpty() ? QString() : obstacleTo(path, overwrite);
        if (!obstacle.isEmpty())
            return obstacle;
    }
    const bool isHeaderNew = !header.isEmpty() && !QFileInfo::exists(header);
    QString error;
    if (!header.isEmpty())
        error = update(header, compiledHeader(compiled), overwrite);
    if (error.isEmpty())
        error = update(options.output, compiledSource(profile, compiled), overwrite);
    // The disk may be full for the source only.
    if (!error.isEmpty() && isHeaderNew)
        QFile::remove(header);
    return error;
}

} // namespace

CLI::App *addCompile(CLI::App *app, CompileOptions *options)
{
    CLI::App *command = addCommand(
        app, "compile", "Turn a profile into a source of C++",
        "Checks a profile and writes its tables as a source of C++, for products that read no\n"
        "files, and a header that declares them: Vorn::toProfile(panel) is the profile.\n"
        "Files that are up to date are left alone. CMake's vorn_add_profile() does it all.\n"
        "\n"
        "Exit status: 0 written, 1 errors in the profile, 2 a file that cannot be read or\n"
        "written\n"
        "\n"
        "Examples:\n"
        "  vorn-input compile panel.toml -o panel.cpp\n"
        "  vorn-input compile --strict panel.toml --name keyMap -o - | less");
    addFile(command, "FILE", &options->profile, "Profile; - is the standard input", "",
            Presence::Required);
    addFile(command, "-o,--output", &options->output, "Source to write; - is the standard output",
            "FILE", Presence::Required);
    addFile(command, "--header", &options->header,
            "Header to write, if not the one beside the source: panel.h");
    addText(command, "--name", &options->name,
            "Name of the constant, if not that of the profile's file: panel", "NAME");
    addFlag(command, "--strict", &options->strict, "Treat warnings as errors");
    addFlag(command, "-f,--force", &options->force,
            "Replace files that are no output of this command");
    return command;
}

int compile(const CompileOptions &options)
{
    const CompiledProfile compiled = described(options);
    const QString header = headerOf(options);
    const QString problem = problemOf(options, header, compiled.name);
    if (!problem.isEmpty())
        return fail(problem);
    Diagnostics unreadable;
    const auto text = readFile(options.profile, maxProfileSize, &unreadable);
    printDiagnostics(unreadable);
    if (!text)
        return Failure;
    const ParsedProfile parsed = parseProfile(*text, options.profile);
    printDiagnostics(parsed.diagnostics);
    if (hasErrors(parsed.diagnostics) || (options.strict && !parsed.diagnostics.isEmpty()))
        return Found;

    const QString error = writeFiles(options, header, compiled, parsed.profile);
    return error.isEmpty() ? Success : fail(error);
}

} // namespace Vorn::Tools
