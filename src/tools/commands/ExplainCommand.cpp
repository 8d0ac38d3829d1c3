#include "ExplainCommand.h"

#include "CommandOptions.h"
#include "Diagnostic.h"
#include "EventNames.h"
#include "ExitStatus.h"
#include "Explainer.h"
#include "FieldLog.h"
#include "InputFile.h"
#include "Interruption.h"
#include "LibraryFacts.h"
#include "Output.h"
#include "Progress.h"
#include "Quoting.h"
#include "ScenarioLoader.h"
#include "SessionFormat.h"
#include "SessionReader.h"
#include "SessionTime.h"
#include "SessionWriter.h"
#include "Simulation.h"

#include <QFileInfo>

#include <linux/input.h>
#include <unistd.h>

#include <memory>

namespace Vorn::Tools {

using namespace Workbench;

namespace {

void complain(const QString &text)
{
    printLine(stderr, QStringLiteral("vorn-input explain: ") + text);
}

/// "KEY_STOP press", or the key of a long press.
QString recordText(const Explanation &explanation)
{
    const bool isLongPress = !explanation.outcome && explanation.isAnswered;
    return eventCodeName(explanation.type, explanation.code) + QLatin1Char(' ')
        + (isLongPress ? QStringLiteral("held") : valueName(explanation.type, explanation.value));
}

QString outcomeText(const Explanation &explanation)
{
    QStringList parts;
    if (!explanation.events.isEmpty())
        parts += QStringLiteral("published ") + explanation.events.join(QStringLiteral(", "));
    if (!explanation.reason.isEmpty())
        parts += printable(explanation.reason);
    if (parts.isEmpty())
        parts += QStringLiteral("the session does not say");
    return parts.join(QStringLiteral("; "));
}

QString line(const Explanation &explanation)
{
    const QString cause =
        explanation.hasKey ? recordText(explanation) + QStringLiteral(": ") : QString();
    const QString time = sessionSeconds(explanation.time);
    const QString device =
        explanation.deviceName.isEmpty() ? explanation.device : explanation.deviceName;
    const QString of = device.isEmpty() ? QString() : printable(device) + QStringLiteral("  ");
    return time.rightJustified(9) + QStringLiteral("  ") + of + cause + outcomeText(explanation);
}

/// What is explained.
enum class From { Session, Log };

class Report
{
public:
    explicit Report(const ExplainOptions &options, From from = From::Session)
        : m_options(options)
        , m_from(from)
        , m_explainer([this](const Explanation &explanation) { print(explanation); },
                      from == From::Log ? Explainer::LooseEvents::Explained
                                        : Explainer::LooseEvents::Skipped)
    { }

    void add(const SessionEntry &entry)
    {
        m_explainer.add(entry);
        const auto *remark = std::get_if<Remark>(&entry.what);
        // What a log does not say is part of the answer.
        if (remark && m_options.json && m_from == From::Log)
            Workbench::print(stdout, Workbench::toJsonLine(entry));
        if (remark && !m_options.json)
            printLine(stdout,
                      sessionSeconds(entry.time).rightJustified(9) + QStringLiteral("  ")
                          + printable(remark->text));
    }

    /// @return whether every record had an explanation
    bool finish()
    {
        m_explainer.finish();
        return !m_explainer.lacksOutcomes();
    }

private:
    void print(const Explanation &explanation) const
    {
        if (m_options.silentOnly && explanation.isAnswered)
            return;
        if (m_options.json)
            Workbench::print(stdout, toJsonLine(explanation));
        else
            printLine(stdout, line(explanation));
    }

    const ExplainOptions &m_options;
    const From m_from;
    Explainer m_explainer;
};

bool finish(Report *report)
{
    if (!report->finish()) {
        complain(QStringLiteral("this session does not say what became of its records: it was "
                                "written by an older vorn-input; explain its recording instead"));
        return false;
    }
    return true;
}

int explainSession(const ExplainOptions &options)
{
    Diagnostics diagnostics;
    InputFile file;
    Report report(options);
    if (openSession(options.file, &file, &diagnostics)) {
        const Interruption interruption;
        Progress progress;
        SessionReader reader(&file, options.file);
        while (const std::optional<SessionEntry> entry = reader.next()) {
            // Nobody reads the rest.
            if (Interruption::isRequested() || isOutputLost())
                return Failure;
            report.add(*entry);
        }
        diagnostics = reader.diagnostics();
    }
    printDiagnostics(diagnostics);
    const bool isComplete = finish(&report);
    return isComplete && !hasErrors(diagnostics) ? Success : Failure;
}

/// A log may be of several starts of a program, which have nothing to do with each other.
class LogReport
{
public:
    explicit LogReport(const ExplainOptions &options)
        : m_options(options)
    { }
    ~LogReport() { finish(); }
    LogReport(const LogReport &) = delete;
    LogReport &operator=(const LogReport &) = delete;

    void add(const SessionEntry &entry)
    {
        if (const auto *start = std::get_if<SessionStart>(&entry.what)) {
            finish();
            m_report = std::make_unique<Report>(m_options, From::Log);
            if (++m_count > 1)
                printStart(*start, entry);
        }
        m_report->add(entry);
    }

private:
    void finish()
    {
        if (m_report)
            m_report->finish();
    }

    void printStart(const SessionStart &start, const SessionEntry &entry) const
    {
        if (m_options.json)
            Workbench::print(stdout, Workbench::toJsonLine(entry));
        else
            printLine(stdout,
                      QStringLiteral("session %1: %2").arg(m_count).arg(printable(start.source)));
    }

    const ExplainOptions &m_options;
    std::unique_ptr<Report> m_report;
    int m_count = 0;
};

int explainLog(const ExplainOptions &options)
{
    const Interruption interruption;
    Diagnostics diagnostics;
    bool isInterrupted = false;
    {
        LogReport report(options);
        LogReaderOptions readerOptions;
        readerOptions.pattern = options.pattern;
        readerOptions.rotated = options.rotated;
        diagnostics = readLog(
            options.file, readerOptions,
            [&report](const SessionEntry &entry) { report.add(entry); },
            [&isInterrupted] {
                isInterrupted = Interruption::isRequested() || isOutputLost();
                return isInterrupted;
            });
    }
    printDiagnostics(diagnostics);
    return isInterrupted || hasErrors(diagnostics) ? Failure : Success;
}

/// The library looks at the first nodes only, so on the device itself nothing would have come.
void noteNodes(const LoadedScenario &loaded)
{
    for (const ParsedRecording &recording : loaded.recordings) {
        for (const RecordedNode &node : recording.nodes) {
            if (node.number < nodeCount)
                continue;
            const QString name =
                node.device ? QString::fromUtf8(node.device->name) : QStringLiteral("a device");
            complain(QStringLiteral("%1 was event%2 when it was recorded: the library looks at "
                                    "event0 to event%3 only")
                         .arg(printable(name), QString::number(node.number),
                              QString::number(nodeCount - 1)));
        }
    }
}

int explainSimulation(const ExplainOptions &options)
{
    const LoadedScenario loaded =
        loadScenario(options.file, LoadOptions{options.profile, {}, true});
    printDiagnostics(loaded.diagnostics);
    if (hasErrors(loaded.diagnostics))
        return Failure;
    noteNodes(loaded);
    const Interruption interruption;
    Report report(options);
    const SimulationResult result =
        Workbench::simulate(loaded, [&report](const SessionEntry &entry) {
            report.add(entry);
            if (isOutputLost())
                Interruption::request();
        });
    printDiagnostics(result.diagnostics);
    if (!finish(&report))
        return Failure;
    switch (result.outcome) {
    case SimulationResult::Outcome::Passed:
        return Success;
    case SimulationResult::Outcome::Failed:
        complain(QStringLiteral("an expectation failed; what follows it was not run "
                                "(see: vorn-input simulate)"));
        return Found;
    case SimulationResult::Outcome::Malformed:
    case SimulationResult::Outcome::ProgramFailed:
    case SimulationResult::Outcome::Interrupted:
        break;
    }
    return Failure;
}

} // namespace

CLI::App *addExplain(CLI::App *app, ExplainOptions *options)
{
    CLI::App *command = addCommand(
        app, "explain", "Say what became of each record, and why nothing came",
        "Says in a line for each record what was published, or why nothing was: held back\n"
        "until the release, dropped while other keys are down, mapped under another\n"
        "identifier, a device that fits no entry of the profile. Takes a recording or a\n"
        "scenario, which is run in virtual time, a session that monitor or simulate printed\n"
        "with --json, or a product's log, whatever its layout.\n"
        "\n"
        "Exit status: 0 explained, 1 a failed expectation, 2 a file that cannot be used\n"
        "\n"
        "Examples:\n"
        "  vorn-input explain --profile panel.toml lost-release/session.umockdev\n"
        "  vorn-input explain --silent lost-release/session.jsonl\n"
        "  vorn-input simulate --json chord.scenario | vorn-input explain -\n"
        "  journalctl -u player | vorn-input explain -");
    addFile(command, "FILE", &options->file,
            "Recording, scenario, session or log; - is a session or a log on the standard input",
            "", Presence::Required);
    addFile(command, "-p,--profile", &options->profile,
            "Profile for a recording, or to use instead of the scenario's", "FILE");
    addText(command, "--pattern", &options->pattern,
            "Layout of a log, as log4cplus has it, if it is not recognised", "PATTERN");
    addFlag(command, "--rotated", &options->rotated, "Read the older parts of a log, too");
    addFlag(command, "--json", &options->json, "Print one JSON object per line");
    addFlag(command, "--silent", &options->silentOnly,
            "Only the records that nothing was published for");
    return command;
}

int explain(const ExplainOptions &options)
{
    const bool isForLog = !options.pattern.isEmpty() || options.rotated;
    const bool isFromLog = isForLog || isLog(options.file);
    const bool isSession = options.file == QLatin1String("-")
        || QFileInfo(options.file).suffix() == QLatin1String("jsonl");
    if (!isFromLog && !isSession)
        return explainSimulation(options);
    if (!options.profile.isEmpty()) {
        complain(QStringLiteral("--profile is for recordings and scenarios; a %1 says itself "
                                "what was published")
                     .arg(isFromLog ? QStringLiteral("log") : QStringLiteral("session")));
        return Failure;
    }
    return isFromLog ? explainLog(options) : explainSession(options);
}

} // namespace Vorn::Tools
