#include "TimelineCommand.h"

#include "CommandOptions.h"
#include "Diagnostic.h"
#include "ExitStatus.h"
#include "FieldLog.h"
#include "InputFile.h"
#include "Output.h"
#include "OutputFile.h"
#include "Progress.h"
#include "SessionReader.h"
#include "TextFile.h"
#include "Timeline.h"

#include <QDateTime>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace Vorn::Tools {

namespace {

using namespace Workbench;

/// A file with more sessions lists only the first ones.
constexpr int maxListed = 40;

/// What a file contains.
struct Contents
{
    int sessions = 0;
    QStringList list; ///< a line for each of the first sessions
};

int fail(const QString &message)
{
    printLine(stderr, message);
    return Failure;
}

std::optional<qint64> microseconds(double seconds)
{
    if (seconds < 0)
        return std::nullopt;
    return std::llround(seconds * 1e6);
}

QString secondsOf(qint64 time)
{
    return QString::number(static_cast<double>(time) / 1e6, 'f', 3) + QStringLiteral(" s");
}

QString listed(int number, const SessionStart *start)
{
    const QString place = QStringLiteral("  %1  ").arg(number);
    if (!start)
        return place + QStringLiteral("without its beginning");
    QString text = place
        + QDateTime::fromMSecsSinceEpoch(start->wallClock / 1000, Qt::UTC)
              .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss 'UTC'  "))
        + start->source;
    if (!start->profile.isEmpty())
        text += QStringLiteral(", profile ") + start->profile;
    return text;
}

/// Adds session number @p wanted to the picture. The others are looked at as well, to find out how
/// many there are.
class Selection
{
public:
    Selection(int wanted, Workbench::Timeline *picture)
        : m_wanted(wanted)
        , m_picture(picture)
    { }

    void add(const SessionEntry &entry)
    {
        const auto *start = std::get_if<SessionStart>(&entry.what);
        if (start || m_contents.sessions == 0) {
            ++m_contents.sessions;
            if (m_contents.list.size() < maxListed)
                m_contents.list += listed(m_contents.sessions, start);
        }
        if (m_contents.sessions == m_wanted)
            m_picture->add(entry);
    }

    const Contents &contents() const { return m_contents; }

private:
    const int m_wanted;
    Workbench::Timeline *const m_picture;
    Contents m_contents;
};

/// @return what is wrong with the lines of the file
Diagnostics readSessions(InputFile *file, const QString &name, Selection *selection)
{
    SessionReader reader(file, name);
    Progress progress;
    while (const std::optional<SessionEntry> entry = reader.next()) {
        selection->add(*entry);
        if (progress.isDue())
            progress.show(sessionProgress(entry->time, reader.bytesRead(), file->size()));
    }
    return reader.diagnostics();
}

Diagnostics readSessionsOfLog(const TimelineOptions &options, Selection *selection)
{
    LogReaderOptions reader;
    reader.pattern = options.pattern;
    reader.rotated = options.rotated;
    Progress progress;
    return readLog(
        options.file, reader,
        [selection, &progress](const SessionEntry &entry) {
            selection->add(entry);
            if (progress.isDue())
                progress.show(sessionProgress(entry.time, 0, 0));
        },
        [] { return false; });
}

QString contradictionIn(const TimelineOptions &options)
{
    if (std::isnan(options.from) || std::isnan(options.to))
        return QStringLiteral("--from and --to are numbers of seconds");
    if (options.from >= 0 && options.to >= 0 && options.from >= options.to)
        return QStringLiteral("--from %1 is not before --to %2; there is nothing to draw")
            .arg(secondsOf(*microseconds(options.from)), secondsOf(*microseconds(options.to)));
    return {};
}

/// Why there is nothing to draw.
QString problemOf(const TimelineOptions &options, const Contents &contents, TimelineSpan session)
{
    if (contents.sessions == 0)
        return QStringLiteral("contains no session; to get one, use 'vorn-input monitor --json' or "
                              "'vorn-input simulate --json'");
    if (contents.sessions > 1 && options.session == 0)
        return QStringLiteral("contains %1 sessions; choose one with --session")
            .arg(contents.sessions);
    if (options.session > contents.sessions)
        return QStringLiteral("has no session %1; it contains %2")
            .arg(options.session)
            .arg(contents.sessions);
    const QString covered =
        QStringLiteral("it is from %1 to %2").arg(secondsOf(session.from), secondsOf(session.to));
    // A session of one moment can be drawn from that moment.
    const std::optional<qint64> from = microseconds(options.from);
    const std::optional<qint64> to = microseconds(options.to);
    if (from && *from >= session.to && *from > session.from)
        return QStringLiteral("--from %1 is after the session; ").arg(secondsOf(*from)) + covered;
    if (to && *to <= session.from)
        return QStringLiteral("--to %1 is before the session; ").arg(secondsOf(*to)) + covered;
    return {};
}

} // namespace

CLI::App *addTimeline(CLI::App *app, TimelineOptions *options)
{
    CLI::App *command = addCommand(
        app, "timeline", "Draw a session as a picture",
        "Draws a session that monitor or simulate printed with --json, or that monitor\n"
        "recorded (session.jsonl), or that a product's log tells of: when keys were down,\n"
        "what the detectors made of them, and what was published.\n"
        "\n"
        "Examples:\n"
        "  vorn-input timeline lost-release/session.jsonl -o lost-release.svg\n"
        "  vorn-input simulate --json chord.scenario | vorn-input timeline - -o chord.svg");
    addFile(command, "FILE", &options->file, "Session or log; - is the standard input", "",
            Presence::Required);
    addFile(command, "-o,--output", &options->output,
            "Picture to write (SVG); - is the standard output", "FILE", Presence::Required);
    addFlag(command, "-f,--force", &options->force,
            "Replace a file that is no picture of this program");
    addNumber(command, "--session", &options->session,
              "Draw this session of a file that contains several");
    addText(command, "--pattern", &options->pattern,
            "Layout of a log, as log4cplus has it, if it is not recognised", "PATTERN");
    addFlag(command, "--rotated", &options->rotated, "Read the older parts of a log, too");
    addText(command, "--title", &options->title, "Title of the picture", "TEXT");
    addSeconds(command, "--from", &options->from, "Start at this second of the session", 0);
    addSeconds(command, "--to", &options->to, "End at this second of the session");
    return command;
}

int timeline(const TimelineOptions &options)
{
    const QString contradiction = contradictionIn(options);
    if (!contradiction.isEmpty())
        return fail(QStringLiteral("error: ") + contradiction);
    const bool isFromLog = !options.pattern.isEmpty() || options.rotated || isLog(options.file);
    Diagnostics diagnostics;
    InputFile file;
    if (!isFromLog && !openSession(options.file, &file, &diagnostics)) {
        printDiagnostics(diagnostics);
        return Failure;
    }
    // Before the work, which may take a while.
    const Overwrite overwrite{timelineSignature(), options.force};
    const QString obstacle = obstacleTo(options.output, overwrite);
    if (!obstacle.isEmpty())
        return fail(QStringLiteral("error: ") + obstacle);
    Workbench::Timeline picture(
        {options.title, microseconds(options.from), microseconds(options.to)});
    const int wanted = std::max(options.session, 1);
    Selection selection(wanted, &picture);
    diagnostics = isFromLog ? readSessionsOfLog(options, &selection)
                            : readSessions(&file, options.file, &selection);
    printDiagnostics(diagnostics);
    if (hasErrors(diagnostics))
        return Failure;
    const Contents &contents = selection.contents();

    // Only now is it known how many sessions there are, and what the one to be drawn covers.
    const QString problem = problemOf(options, contents, picture.session());
    const bool isChoice = contents.sessions > 1;
    if (!problem.isEmpty()) {
        printLine(stderr, options.file + QStringLiteral(": error: ") + problem);
        for (const QString &line : isChoice ? contents.list : QStringList())
            printLine(stderr, line);
        if (contents.sessions > contents.list.size())
            printLine(stderr, QStringLiteral("  …"));
        return Failure;
    }
    const QString part = isChoice
        ? QStringLiteral("session %1 of %2").arg(wanted).arg(contents.sessions)
        : QString();
    const QString error = writeFile(options.output, picture.svg(part), overwrite);
    if (!error.isEmpty())
        return fail(QStringLiteral("error: ") + error);
    // Not on the standard output, which may be the picture.
    if (isChoice)
        printLine(stderr, QStringLiteral("%1: %2 drawn").arg(options.file, part));
    return Success;
}

QString sessionProgress(qint64 time, qint64 bytesRead, qint64 fileSize)
{
    QString at = QStringLiteral("at ") + secondsOf(time);
    if (fileSize <= 0)
        return at;
    return QStringLiteral("%1 %, ").arg(bytesRead * 100 / fileSize, 3) + at;
}

} // namespace Vorn::Tools
