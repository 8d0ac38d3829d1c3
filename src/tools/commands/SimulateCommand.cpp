#include "Commands.h"
#include "Diagnostic.h"
#include "Interruption.h"
#include "Progress.h"
#include "Session.h"
#include "SessionPrinter.h"
#include "SessionWriter.h"
#include "Simulation.h"
#include "Terminal.h"
#include "TextFile.h"
#include "Timeline.h"

#include <QVector>

#include <cstdio>
#include <unistd.h>

namespace Vorn::Tools {

namespace {

using namespace Workbench;

// What is shown of the time before a failure.
constexpr int contextLines = 12;

// Whether all of it arrived is looked at in the end.
void write(std::FILE *stream, const QByteArray &bytes)
{
    static_cast<void>(
        std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream));
}

void write(std::FILE *stream, const QString &text)
{
    write(stream, text.toUtf8() + '\n');
}

QString seconds(qint64 milliseconds)
{
    return QString::number(static_cast<double>(milliseconds) / 1000, 'f', 3);
}

SessionPrinter::Options shownText(const SimulateOptions &options)
{
    SessionPrinter::Options result;
    result.records = options.raw;
    result.coloured = isColoured(options.colour, STDOUT_FILENO);
    return result;
}

SessionPrinter::Options contextText()
{
    SessionPrinter::Options result;
    result.records = true;
    result.detectors = true;
    result.indent = 2;
    return result;
}

/// Shows one session while it goes on, and remembers what the end needs.
class Output
{
public:
    explicit Output(const SimulateOptions &options)
        : m_options(options)
        , m_text(shownText(options))
        , m_contextText(contextText())
    { }

    void add(const SessionEntry &entry)
    {
        if (!m_options.timeline.isEmpty())
            m_entries.append(entry);
        if (m_options.json)
            write(stdout, toJsonLine(entry));
        if (const auto *checked = std::get_if<ExpectationChecked>(&entry.what)) {
            if (!checked->met)
                m_failure = entry;
            return;
        }
        const QString line = m_contextText.line(entry);
        if (!line.isEmpty()) {
            m_context.append(line);
            if (m_context.size() > contextLines)
                m_context.removeFirst();
        }
        if (m_options.json || m_options.quiet)
            return;
        const QString shown = m_text.line(entry);
        if (!shown.isEmpty())
            write(stdout, shown);
    }

    /// What was expected, and what happened before.
    void writeFailure() const
    {
        const auto *failure = std::get_if<ExpectationChecked>(&m_failure.what);
        if (!failure)
            return;
        std::FILE *stream = m_options.json ? stderr : stdout;
        QString expected = failure->text;
        if (expected.startsWith(QLatin1String("expect ")))
            expected = expected.mid(7).trimmed();
        write(stream,
              QStringLiteral("%1:%2: expected %3, found %4")
                  .arg(failure->file)
                  .arg(failure->line)
                  .arg(expected, failure->found));
        for (const QString &line : m_context)
            write(stream, line);
        write(stream,
              QStringLiteral("> %1  here").arg(seconds(m_failure.time / 1000).rightJustified(9)));
    }

    const QVector<SessionEntry> &entries() const { return m_entries; }

private:
    const SimulateOptions &m_options;
    SessionPrinter m_text;
    SessionPrinter m_contextText;
    QStringList m_context;
    SessionEntry m_failure;
    QVector<SessionEntry> m_entries;
};

void writeDiagnostics(const Diagnostics &diagnostics)
{
    for (const Diagnostic &diagnostic : diagnostics)
        write(stderr, diagnostic.toString());
}

/// The line that ends a file's output.
QString summary(const QString &file, const SimulationResult &result, bool hasExpectations)
{
    const QString time = QStringLiteral("%1 s").arg(seconds(result.duration));
    const QString expectations = result.expectations == 1
        ? QStringLiteral("1 expectation")
        : QStringLiteral("%1 expectations").arg(result.expectations);
    switch (result.outcome) {
    case SimulationResult::Outcome::Passed:
        return hasExpectations
            ? QStringLiteral("%1: passed, %2, %3").arg(file, expectations, time)
            : QStringLiteral("%1: done, nothing was expected, %2").arg(file, time);
    case SimulationResult::Outcome::Failed:
        return QStringLiteral("%1: FAILED after %2, %3; what follows was not looked at")
            .arg(file, expectations, time);
    case SimulationResult::Outcome::Malformed:
        return QStringLiteral("%1: a step could not be done, at %2").arg(file, time);
    case SimulationResult::Outcome::Interrupted:
        break;
    }
    return QStringLiteral("%1: interrupted at %2").arg(file, time);
}

int statusOf(const SimulationResult &result)
{
    switch (result.outcome) {
    case SimulationResult::Outcome::Passed:
        return Success;
    case SimulationResult::Outcome::Failed:
        return Found;
    case SimulationResult::Outcome::Malformed:
    case SimulationResult::Outcome::Interrupted:
        break;
    }
    return Failure;
}

/// @param progress shown under @p label, if there is any
int simulateFile(const SimulateOptions &options, const QString &file, Progress *progress,
                 const QString &label)
{
    const LoadedScenario loaded =
        loadScenario(file, LoadOptions{options.profile, options.expectations});
    writeDiagnostics(loaded.diagnostics);
    if (hasErrors(loaded.diagnostics))
        return Failure;

    Output output(options);
    const SimulationResult result = Workbench::simulate(loaded, [&](const SessionEntry &entry) {
        output.add(entry);
        if (progress && progress->isDue())
            progress->show(QStringLiteral("%1, %2 s").arg(label, seconds(entry.time)));
    });
    if (progress)
        progress->clear();
    output.writeFailure();
    writeDiagnostics(result.diagnostics);
    const int status = statusOf(result);
    const QString line = summary(file, result, loaded.scenario.hasExpectations());
    if (status == Failure || (options.json && status != Success))
        write(stderr, line);
    else if (!options.json && (!options.quiet || status != Success))
        write(stdout, line);
    if (options.timeline.isEmpty() || status == Failure)
        return status;
    const QString reason =
        writeFile(options.timeline, timelineSvg(output.entries(), Workbench::TimelineOptions()));
    if (reason.isEmpty())
        return status;
    write(stderr, QStringLiteral("%1: error: %2").arg(options.timeline, reason));
    return Failure;
}

bool refuse(const QString &message)
{
    write(stderr, QStringLiteral("error: ") + message);
    return false;
}

bool areUsable(const SimulateOptions &options)
{
    if (options.files.isEmpty())
        return refuse(QStringLiteral("no scenario or recording is given"));
    if (options.files.size() > 1 && !options.timeline.isEmpty())
        return refuse(QStringLiteral("--timeline draws one file, not several"));
    if (options.files.size() > 1 && !options.expectations.isEmpty())
        return refuse(QStringLiteral("--expectations is for one recording, not several files"));
    if (options.json && options.timeline == QLatin1String("-"))
        return refuse(QStringLiteral("--json and --timeline - both write to the standard output"));
    return true;
}

} // namespace

int simulate(const SimulateOptions &options)
{
    if (!areUsable(options))
        return Failure;

    const Interruption interruption;
    Progress progress;
    // Lines that come one by one on the same terminal show it well enough.
    const bool showsProgress = options.quiet || !isTerminal(STDOUT_FILENO);
    int status = Success;
    for (int i = 0; i < options.files.size(); ++i) {
        const QString &file = options.files[i];
        if (Interruption::isRequested()) {
            progress.clear();
            write(stderr, QStringLiteral("interrupted before %1").arg(file));
            status = Failure;
            break;
        }
        const QString label = options.files.size() == 1
            ? file
            : QStringLiteral("%1 of %2: %3").arg(i + 1).arg(options.files.size()).arg(file);
        // Ordered by gravity.
        status =
            qMax(status, simulateFile(options, file, showsProgress ? &progress : nullptr, label));
        static_cast<void>(std::fflush(stdout));
    }
    progress.clear();
    if (std::ferror(stdout) != 0) {
        write(stderr, QStringLiteral("error: cannot write to the standard output"));
        status = Failure;
    }
    return status;
}

} // namespace Vorn::Tools
