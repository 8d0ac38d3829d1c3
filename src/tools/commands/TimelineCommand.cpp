#include "TimelineCommand.h"

#include "CommandOptions.h"
#include "Diagnostic.h"
#include "ExitStatus.h"
#include "Output.h"
#include "OutputFile.h"
#include "SessionReader.h"
#include "TextFile.h"
#include "Timeline.h"

#include <cmath>

namespace Vorn::Tools {

namespace {

int fail(const QString &message)
{
    Workbench::printLine(stderr, message);
    return Failure;
}

/// Clamped to what the time of a session can be; µs.
qint64 microseconds(double seconds)
{
    constexpr double longest = 4e9;
    return std::llround(std::fmin(std::fmax(seconds, 0), longest) * 1e6);
}

} // namespace

CLI::App *addTimeline(CLI::App *app, TimelineOptions *options)
{
    CLI::App *command = addCommand(
        app, "timeline", "Draw a session as a picture",
        "Draws a session that monitor or simulate printed with --json, or that monitor\n"
        "recorded (session.jsonl): when keys were down, what the detectors made of them,\n"
        "and what was published.\n"
        "\n"
        "Examples:\n"
        "  vorn-input timeline lost-release/session.jsonl -o lost-release.svg\n"
        "  vorn-input simulate --json chord.scenario | vorn-input timeline - -o chord.svg");
    addFile(command, "FILE", &options->file, "Session; - is the standard input", "",
            Presence::Required);
    addFile(command, "-o,--output", &options->output,
            "Picture to write (SVG); - is the standard output", "FILE", Presence::Required);
    addFlag(command, "-f,--force", &options->force,
            "Replace a file that is no picture of this program");
    addText(command, "--title", &options->title, "Title of the picture", "TEXT");
    addSeconds(command, "--from", &options->from, "Start at this second of the session");
    addSeconds(command, "--to", &options->to, "End at this second of the session");
    return command;
}

int timeline(const TimelineOptions &options)
{
    Workbench::ParsedSession session;
    const std::optional<QByteArray> text =
        Workbench::readFile(options.file, Workbench::maxRecordingSize, &session.diagnostics);
    if (text)
        session = Workbench::parseSession(*text, options.file);
    Workbench::printDiagnostics(session.diagnostics);
    if (Workbench::hasErrors(session.diagnostics))
        return Failure;
    if (session.entries.isEmpty())
        return fail(QStringLiteral("%1: error: contains no session; to get one, use "
                                   "'vorn-input monitor --json' or 'vorn-input simulate --json'")
                        .arg(options.file));

    const Workbench::Overwrite overwrite{Workbench::timelineSignature(), options.force};
    Workbench::TimelineOptions picture;
    picture.title = options.title;
    picture.from = microseconds(options.from);
    if (options.to > 0)
        picture.to = microseconds(options.to);
    const QString error = Workbench::writeFile(
        options.output, Workbench::timelineSvg(session.entries, picture), overwrite);
    return error.isEmpty() ? Success : fail(QStringLiteral("error: ") + error);
}

} // namespace Vorn::Tools
