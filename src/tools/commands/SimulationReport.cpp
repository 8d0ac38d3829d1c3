#include "SimulationReport.h"

#include "Output.h"
#include "Quoting.h"
#include "SessionWriter.h"
#include "SimulationTotals.h"
#include "Terminal.h"
#include "TerminalText.h"

#include <unistd.h>

namespace Vorn::Tools {

using namespace Workbench;

namespace {

// A failure is explained by what happened before it, and that fits on a screen.
constexpr int contextLines = 12;

SessionPrinter::Options shownText(const ScenarioOptions &options)
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

struct FailureParts
{
    explicit FailureParts(const ExpectationChecked &failure)
        : place(
            QStringLiteral("%1:%2:").arg(printable(failure.file), QString::number(failure.line)))
        , found(QStringLiteral("found ") + printable(failure.found))
    {
        const QString prefix = QStringLiteral("expect ");
        const QString text = printable(failure.text);
        expected = QStringLiteral("expected %1,")
                       .arg(text.startsWith(prefix) ? text.mid(prefix.size()).trimmed() : text);
    }

    QString place;
    QString expected;
    QString found;
};

QStringList indented(const QString &text)
{
    constexpr int indentWidth = 4;
    const QString indent(indentWidth, QLatin1Char(' '));
    QStringList lines = wrapped(text, SessionPrinter::width - indentWidth);
    for (QString &line : lines)
        line.prepend(indent);
    return lines;
}

} // namespace

SimulationReport::SimulationReport(const ScenarioOptions &options)
    : m_options(options)
    , m_text(shownText(options))
    , m_contextText(contextText())
{ }

void SimulationReport::add(const SessionEntry &entry)
{
    if (!m_options.timeline.isEmpty())
        m_picture.add(entry);
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

std::optional<ExpectationChecked> SimulationReport::failure() const
{
    const auto *failure = std::get_if<ExpectationChecked>(&m_failure.what);
    return failure ? std::make_optional(*failure) : std::nullopt;
}

QStringList SimulationReport::context() const
{
    return contextAt(m_failure.time);
}

QStringList SimulationReport::contextAt(qint64 time) const
{
    const QString here = secondsText(time / 1000).rightJustified(9);
    const QString entries = m_context.join(QLatin1Char('\n'));
    return (entries.isEmpty() ? QStringList() : entries.split(QLatin1Char('\n')))
        + QStringList{QStringLiteral("> %1  here").arg(here)};
}

QString failureMessage(const ExpectationChecked &failure)
{
    const FailureParts parts(failure);
    return parts.place + QLatin1Char(' ') + parts.expected + QLatin1Char(' ') + parts.found;
}

QStringList failureLines(const ExpectationChecked &failure)
{
    const QString whole = failureMessage(failure);
    if (textWidth(whole) <= SessionPrinter::width)
        return {whole};
    const FailureParts parts(failure);
    const QString start = parts.place + QLatin1Char(' ') + parts.expected;
    if (textWidth(start) <= SessionPrinter::width)
        return QStringList{start} + indented(parts.found);
    return QStringList{parts.place} + indented(parts.expected) + indented(parts.found);
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

} // namespace Vorn::Tools
