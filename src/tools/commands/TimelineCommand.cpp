#include "Commands.h"
#include "Diagnostic.h"
#include "SessionReader.h"
#include "TextFile.h"
#include "Timeline.h"

#include <cmath>
#include <cstdio>
#include <limits>

namespace Vorn::Tools {

namespace {

int fail(const QString &message)
{
    std::fprintf(stderr, "%s\n", qPrintable(message));
    return Failure;
}

/// µs; what a session's times can be, whatever was asked for.
qint64 microseconds(double seconds)
{
    constexpr double longest = 4e9;
    return std::llround(std::fmin(std::fmax(seconds, 0), longest) * 1e6);
}

} // namespace

int timeline(const TimelineOptions &options)
{
    Workbench::ParsedSession session;
    const std::optional<QByteArray> text =
        Workbench::readFile(options.file, Workbench::maxRecordingSize, &session.diagnostics);
    if (text)
        session = Workbench::parseSession(*text, options.file);
    for (const Workbench::Diagnostic &diagnostic : qAsConst(session.diagnostics))
        std::fprintf(stderr, "%s\n", qPrintable(diagnostic.toString()));
    if (Workbench::hasErrors(session.diagnostics))
        return Failure;
    if (session.entries.isEmpty())
        return fail(QStringLiteral("%1: error: no session in it; 'vorn-input monitor --json' and "
                                   "'vorn-input simulate --json' write one")
                        .arg(options.file));

    Workbench::TimelineOptions picture;
    picture.title = options.title;
    picture.from = microseconds(options.from);
    if (options.to > 0)
        picture.to = microseconds(options.to);
    const QString error =
        Workbench::writeFile(options.output, Workbench::timelineSvg(session.entries, picture));
    return error.isEmpty() ? Success : fail(QStringLiteral("error: ") + error);
}

} // namespace Vorn::Tools
