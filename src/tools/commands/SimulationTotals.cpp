#include "SimulationTotals.h"

#include "ExitStatus.h"
#include "Quoting.h"
#include "SessionPrinter.h"
#include "TerminalText.h"

#include <algorithm>

namespace Vorn::Tools {

using namespace Workbench;

namespace {

using Outcome = FileResult::Outcome;

Outcome outcomeOf(const Scenario &scenario, const SimulationResult &result)
{
    switch (result.outcome) {
    case SimulationResult::Outcome::Passed:
        return scenario.hasExpectations() ? Outcome::Passed : Outcome::NothingToCheck;
    case SimulationResult::Outcome::Failed:
        return Outcome::Failed;
    case SimulationResult::Outcome::Malformed:
        return Outcome::StepCannotBeRun;
    case SimulationResult::Outcome::ProgramFailed:
        return Outcome::ProgramFailed;
    case SimulationResult::Outcome::Interrupted:
        break;
    }
    return Outcome::Interrupted;
}

QString expectations(int count)
{
    return count == 1 ? QStringLiteral("1 expectation")
                      : QStringLiteral("%1 expectations").arg(count);
}

/// "3 expectations met, 1 failed, 2 not checked".
QString expectations(const FileResult &result)
{
    QString text = expectations(result.met) + QStringLiteral(" met");
    if (result.failed > 0)
        text += QStringLiteral(", %1 failed").arg(result.failed);
    if (result.notChecked > 0)
        text += QStringLiteral(", %1 not checked").arg(result.notChecked);
    return text;
}

void addDiagnostics(FileResult *result, const Diagnostics &diagnostics)
{
    for (const Diagnostic &diagnostic : diagnostics) {
        result->details += diagnostic.toString();
        if (result->message.isEmpty() && diagnostic.severity == Diagnostic::Severity::Error)
            result->message = diagnostic.toString();
    }
}

} // namespace

FileResult resultOf(const QString &file, const Scenario &scenario, const SimulationResult &result)
{
    const auto all = static_cast<int>(
        std::count_if(scenario.steps.begin(), scenario.steps.end(),
                      [](const ScenarioStep &step) { return isExpectation(step.what); }));
    FileResult made;
    made.file = file;
    made.outcome = outcomeOf(scenario, result);
    made.met = result.expectations;
    made.failed = made.outcome == Outcome::Failed ? 1 : 0;
    // What fails at the end, an event that nobody expected, is no step.
    made.notChecked = std::max(0, all - made.met - made.failed);
    made.duration = result.duration;
    addDiagnostics(&made, result.diagnostics);
    return made;
}

FileResult resultOf(const QString &file, const Diagnostics &diagnostics)
{
    FileResult made;
    made.file = file;
    made.outcome = Outcome::CannotBeRun;
    addDiagnostics(&made, diagnostics);
    return made;
}

int statusOf(FileResult::Outcome outcome)
{
    switch (outcome) {
    case Outcome::Passed:
    case Outcome::NothingToCheck:
        return Success;
    case Outcome::Failed:
    case Outcome::ProgramFailed:
        return Found;
    case Outcome::CannotBeRun:
    case Outcome::StepCannotBeRun:
    case Outcome::Interrupted:
    case Outcome::NotRun:
        break;
    }
    return Failure;
}

QString summary(const FileResult &result)
{
    const QString file = printable(result.file);
    const QString time = QStringLiteral("%1 s").arg(secondsText(result.duration));
    switch (result.outcome) {
    case Outcome::Passed:
        return QStringLiteral("%1: passed, %2, %3").arg(file, expectations(result.met), time);
    case Outcome::NothingToCheck:
        return QStringLiteral("%1: done, no expectations to check, %2").arg(file, time);
    case Outcome::Failed:
        return QStringLiteral("%1: FAILED at %2; %3").arg(file, time, expectations(result));
    case Outcome::ProgramFailed:
        return QStringLiteral("%1: the program FAILED at %2; %3")
            .arg(file, time, expectations(result));
    case Outcome::CannotBeRun:
        return QStringLiteral("%1: could not be run").arg(file);
    case Outcome::StepCannotBeRun:
        return QStringLiteral("%1: a step could not be run, at %2; %3")
            .arg(file, time, expectations(result));
    case Outcome::Interrupted:
        return QStringLiteral("%1: interrupted at %2; %3").arg(file, time, expectations(result));
    case Outcome::NotRun:
        break;
    }
    return QStringLiteral("%1: not run").arg(file);
}

QStringList totals(const QVector<FileResult> &results)
{
    const std::pair<Outcome, const char *> kinds[] = {
        {Outcome::Passed, "passed"},
        {Outcome::NothingToCheck, "without expectations"},
        {Outcome::Failed, "failed"},
        {Outcome::ProgramFailed, "with a failed program"},
        {Outcome::CannotBeRun, "could not be run"},
        {Outcome::StepCannotBeRun, "with an impossible step"},
        {Outcome::Interrupted, "interrupted"},
        {Outcome::NotRun, "not run"},
    };
    QStringList counts;
    for (const auto &[outcome, text] : kinds) {
        const auto count = std::count_if(
            results.begin(), results.end(),
            [kind = outcome](const FileResult &result) { return result.outcome == kind; });
        if (count > 0)
            counts += QStringLiteral("%1 %2").arg(count).arg(QLatin1String(text));
    }
    FileResult sum;
    for (const FileResult &result : results) {
        sum.met += result.met;
        sum.failed += result.failed;
        sum.notChecked += result.notChecked;
        sum.duration += result.duration;
    }
    const QString files =
        QStringLiteral("%1 files: %2").arg(results.size()).arg(counts.join(QStringLiteral(", ")));
    const QString rest =
        QStringLiteral("%1; %2 s").arg(expectations(sum), secondsText(sum.duration));
    const QString line = files + QStringLiteral("; ") + rest;
    if (textWidth(line) <= SessionPrinter::width)
        return {line};
    return wrapped(files, SessionPrinter::width) + QStringList{QStringLiteral("    ") + rest};
}

QString secondsText(qint64 milliseconds)
{
    return QString::number(static_cast<double>(milliseconds) / 1000, 'f', 3);
}

} // namespace Vorn::Tools
