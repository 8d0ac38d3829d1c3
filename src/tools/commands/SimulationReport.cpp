#include "SimulationReport.h"

#include "Output.h"
#include "Quoting.h"
#include "SessionWriter.h"
#include "Terminal.h"
#include "TerminalText.h"

#include <unistd.h>

namespace Vorn::Tools {

using namespace Workbench;

namespace {

// A failure is explained by what happened before it, and that fits on a screen.
constexpr int contextLines = 12;

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
    result.outcomes = true;
    result.indent = 2;
    return result;
}

} // namespace

SimulationReport::SimulationReport(const SimulateOptions &options)
    : m_options(options)
    , m_text(shownText(options))
    , m_contextText(contextText())
{ }

void SimulationReport::add(const SessionEntry &entry)
{
    if (!m_options.timeline.isEmpty())
        m_entries.append(entry);
    if (m_options.json)
        print(stdout, toJsonLine(entry));
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
        printColoured(stdout, shown);
}

QStringList SimulationReport::failure() const
{
    const auto *failure = std::get_if<ExpectationChecked>(&m_failure.what);
    if (!failure)
        return {};
    const QString time = secondsText(m_failure.time / 1000).rightJustified(9);
    return failureText(*failure) + m_context + QStringList{QStringLiteral("> %1  here").arg(time)};
}

QStringList failureText(const ExpectationChecked &failure)
{
    const QString prefix = QStringLiteral("expect ");
    const QString text = printable(failure.text);
    const QString expected =
        QStringLiteral("expected %1,")
            .arg(text.startsWith(prefix) ? text.mid(prefix.size()).trimmed() : text);
    const QString found = QStringLiteral("found ") + printable(failure.found);
    const QString place =
        QStringLiteral("%1:%2:").arg(printable(failure.file), QString::number(failure.line));

    const QString line = place + QLatin1Char(' ') + expected;
    const QString blank = QStringLiteral(" ");
    if (textWidth(line + blank + found) <= SessionPrinter::width)
        return {line + blank + found};
    const QString indent(4, QLatin1Char(' '));
    const bool isShort = textWidth(line) <= SessionPrinter::width;
    QStringList lines{isShort ? line : place};
    for (const QString &part :
         (isShort ? QStringList() : QStringList{expected}) + QStringList{found}) {
        for (const QString &piece : wrapped(part, SessionPrinter::width - indent.size()))
            lines += indent + piece;
    }
    return lines;
}

QString simulationSummary(const QString &file, const SimulationResult &result, bool hasExpectations)
{
    const QString time = QStringLiteral("%1 s").arg(secondsText(result.duration));
    const QString expectations = result.expectations == 1
        ? QStringLiteral("1 expectation")
        : QStringLiteral("%1 expectations").arg(result.expectations);
    switch (result.outcome) {
    case SimulationResult::Outcome::Passed:
        return hasExpectations
            ? QStringLiteral("%1: passed, %2, %3").arg(file, expectations, time)
            : QStringLiteral("%1: done, no expectations to check, %2").arg(file, time);
    case SimulationResult::Outcome::Failed:
        return QStringLiteral("%1: FAILED after %2, %3; remaining steps not run")
            .arg(file, expectations, time);
    case SimulationResult::Outcome::Malformed:
        return QStringLiteral("%1: a step could not be run, at %2").arg(file, time);
    case SimulationResult::Outcome::Interrupted:
        break;
    }
    return QStringLiteral("%1: interrupted at %2").arg(file, time);
}

QString simulationProgress(const QString &file, qint64 time, qint64 planned)
{
    const qint64 now = time / 1000;
    // An event that is waited for may come later than it was planned.
    if (now > planned || planned == 0)
        return QStringLiteral("%1 s, %2").arg(now / 1000).arg(file);
    return QStringLiteral("%1 of %2 s (%3 %), %4")
        .arg(now / 1000)
        .arg((planned + 999) / 1000)
        .arg(now * 100 / planned)
        .arg(file);
}

QString secondsText(qint64 milliseconds)
{
    return QString::number(static_cast<double>(milliseconds) / 1000, 'f', 3);
}

} // namespace Vorn::Tools
