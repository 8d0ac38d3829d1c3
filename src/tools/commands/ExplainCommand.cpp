#include "ExplainCommand.h"

#include "CommandOptions.h"
#include "Diagnostic.h"
#include "EventNames.h"
#include "ExitStatus.h"
#include "Explainer.h"
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
    const QString time = sessionSeconds(explanation.time);
    const QString device =
        explanation.deviceName.isEmpty() ? explanation.device : explanation.deviceName;
    return time.rightJustified(9) + QStringLiteral("  ") + printable(device) + QStringLiteral("  ")
        + recordText(explanation) + QStringLiteral(": ") + outcomeText(explanation);
}

class Report
{
public:
    explicit Report(const ExplainOptions &options)
        : m_options(options)
        , m_explainer([this](const Explanation &explanation) { print(explanation); })
    { }

    void add(const SessionEntry &entry)
    {
        m_explainer.add(entry);
        const auto *remark = std::get_if<Remark>(&entry.what);
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
        "scenario, which is run in virtual time, or a session that monitor or simulate\n"
        "printed with --json.\n"
        "\n"
        "Exit status: 0 explained, 1 a failed expectation, 2 a file that cannot be used\n"
        "\n"
        "Examples:\n"
        "  vorn-input explain --profile panel.toml lost-release/session.umockdev\n"
        "  vorn-input explain --silent lost-release/session.jsonl\n"
        "  vorn-input simulate --json chord.scenario | vorn-input explain -");
    addFile(command, "FILE", &options->file,
            "Recording, scenario or session; - is a session on the standard input", "",
            Presence::Required);
    addFile(command, "-p,--profile", &options->profile,
            "Profile for a recording, or to use instead of the scenario's", "FILE");
    addFlag(command, "--json", &options->json, "Print one JSON object per line");
    addFlag(command, "--silent", &options->silentOnly,
            "Only the records that nothing was published for");
    return command;
}

int explain(const ExplainOptions &options)
{
    const bool isSession = options.file == QLatin1String("-")
        || QFileInfo(options.file).suffix() == QLatin1String("jsonl");
    if (!isSession)
        return explainSimulation(options);
    if (options.profile.isEmpty())
        return explainSession(options);
    complain(QStringLiteral("--profile is for recordings and scenarios; a session says itself "
                            "what was published"));
    return Failure;
}

} // namespace Vorn::Tools
