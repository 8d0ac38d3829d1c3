#include "ScenarioLoader.h"

#include "Diagnostic.h"
#include "ProfileFile.h"
#include "Quoting.h"
#include "Recording.h"
#include "RecordingLoader.h"
#include "ScenarioChecks.h"
#include "ScenarioParser.h"
#include "TextFile.h"

#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

Diagnostic mistakeAt(const QString &file, int line, const QString &message)
{
    Diagnostic diagnostic;
    diagnostic.file = file;
    diagnostic.line = line;
    diagnostic.message = message;
    return diagnostic;
}

void addErrors(const Diagnostics &from, Diagnostics *to)
{
    for (const Diagnostic &diagnostic : from) {
        if (diagnostic.severity == Diagnostic::Severity::Error)
            to->append(diagnostic);
    }
}

std::optional<QByteArray> readInclude(const QString &path, QString *error)
{
    Diagnostics diagnostics;
    std::optional<QByteArray> text = readFile(path, maxTextSize, &diagnostics, Pipes::Refused);
    if (!text && !diagnostics.isEmpty())
        *error = diagnostics.first().message;
    return text;
}

bool isUmockdev(const QString &path)
{
    return path.endsWith(QLatin1String(".umockdev"));
}

/// The steps in a file; none for an empty path.
Scenario readSteps(const QString &path, Pipes pipes, Diagnostics *diagnostics)
{
    // Parsed all the same, for the defaults of a scenario.
    if (path.isEmpty())
        return parseScenario({}, {}, readInclude).scenario;
    const std::optional<QByteArray> text = readFile(path, maxTextSize, diagnostics, pipes);
    if (!text)
        return {};
    const ParsedScenario parsed = parseScenario(*text, path, readInclude);
    *diagnostics += parsed.diagnostics;
    return parsed.scenario;
}

QString expectationsBeside(const QString &recording)
{
    const QString path =
        recording.left(recording.lastIndexOf(QLatin1Char('.'))) + QStringLiteral(".expect");
    return QFileInfo::exists(path) ? path : QString();
}

void loadProfileOf(LoadedScenario *loaded, const LoadOptions &options)
{
    const QString &override = options.profile;
    const Scenario &scenario = loaded->scenario;
    loaded->profileFile = override.isEmpty() ? scenario.profile : override;
    if (loaded->profileFile.isEmpty() && !options.needsProfile)
        return;
    if (loaded->profileFile.isEmpty()) {
        loaded->diagnostics.append(
            mistakeAt(loaded->source, 0,
                      QStringLiteral("no profile to say what the keys mean; write 'profile "
                                     "\"FILE\"' or use --profile FILE")));
        return;
    }
    // Warnings of the profile are those of `check`: here they would come with every run.
    const ParsedProfile parsed =
        openProfile(loaded->profileFile, override.isEmpty() ? Pipes::Refused : Pipes::Allowed);
    if (hasErrors(parsed.diagnostics) && override.isEmpty())
        loaded->diagnostics.append(mistakeAt(
            scenario.profileNamedIn, scenario.profileLine,
            QStringLiteral("the profile %1 has errors").arg(quotedPath(loaded->profileFile))));
    addErrors(parsed.diagnostics, &loaded->diagnostics);
    loaded->profile = parsed.profile;
}

void loadRecordingOf(LoadedScenario *loaded, const QString &path, const QString &file, int line)
{
    if (loaded->recordings.contains(path))
        return;
    const ParsedRecording recording =
        loadRecording(path, path == loaded->source ? Pipes::Allowed : Pipes::Refused);
    // Its own errors follow; this one leads from the scenario to the recording.
    if (hasErrors(recording.diagnostics) && path != loaded->source)
        loaded->diagnostics.append(mistakeAt(
            file, line, QStringLiteral("the recording %1 cannot be used").arg(quotedPath(path))));
    loaded->diagnostics += recording.diagnostics;
    loaded->recordings.insert(path, recording);
}

void loadRecordings(LoadedScenario *loaded)
{
    for (const ScenarioDevice &device : qAsConst(loaded->scenario.devices)) {
        if (device.recording.isEmpty())
            continue;
        loadRecordingOf(loaded, device.recording, device.file, device.line);
        const QVector<RecordedNode> &nodes = loaded->recordings[device.recording].nodes;
        if (!hasErrors(loaded->diagnostics) && (nodes.size() != 1 || !nodes.first().device))
            loaded->diagnostics.append(
                mistakeAt(device.file, device.line,
                          QStringLiteral("%1 does not describe exactly one device")
                              .arg(quotedPath(device.recording))));
    }
    for (const ScenarioStep &step : qAsConst(loaded->scenario.steps)) {
        const auto *play = std::get_if<Step::Play>(&step.what);
        if (!play)
            continue;
        loadRecordingOf(loaded, play->file, step.file, step.line);
        const auto nodes = loaded->recordings[play->file].nodes.size();
        if (play->device >= 0 && nodes > 1)
            loaded->diagnostics.append(mistakeAt(
                step.file, step.line,
                QStringLiteral(
                    "%1 contains %2 devices, so it cannot be played on one; leave out 'on'")
                    .arg(quotedPath(play->file), QString::number(nodes))));
    }
}

int lowestFree(QSet<int> *taken)
{
    int number = 0;
    while (taken->contains(number))
        ++number;
    taken->insert(number);
    return number;
}

/// Gives every device a node. Those with a fixed number come first: node= of a declaration, and the
/// nodes of a .umockdev recording, which are part of it. All others take the lowest free number.
void assignNodes(LoadedScenario *loaded)
{
    QSet<int> taken;
    for (const ScenarioDevice &device : qAsConst(loaded->scenario.devices)) {
        if (device.node)
            taken.insert(*device.node);
    }
    QStringList evemus;
    for (const ScenarioStep &step : qAsConst(loaded->scenario.steps)) {
        const auto *play = std::get_if<Step::Play>(&step.what);
        if (!play || play->device >= 0 || loaded->recordingNodes.contains(play->file))
            continue;
        QVector<int> &numbers = loaded->recordingNodes[play->file];
        if (!isUmockdev(play->file)) {
            evemus.append(play->file);
            continue;
        }
        const QVector<RecordedNode> nodes = loaded->recordings.value(play->file).nodes;
        for (const RecordedNode &node : nodes) {
            if (taken.contains(node.number))
                loaded->diagnostics.append(mistakeAt(
                    step.file, step.line,
                    QStringLiteral("the recording needs event%1, which is already taken; give the "
                                   "other device a different node=")
                        .arg(node.number)));
            taken.insert(node.number);
            numbers.append(node.number);
        }
    }
    for (const ScenarioDevice &device : qAsConst(loaded->scenario.devices))
        loaded->deviceNodes.append(device.node ? *device.node : lowestFree(&taken));
    for (const QString &path : qAsConst(evemus)) {
        for (int i = 0; i < loaded->recordings[path].nodes.size(); ++i)
            loaded->recordingNodes[path].append(lowestFree(&taken));
    }
}

} // namespace

bool isRecording(const QString &path)
{
    return path.endsWith(QLatin1String(".evemu")) || isUmockdev(path);
}

LoadedScenario loadScenario(const QString &path, const LoadOptions &options)
{
    LoadedScenario loaded;
    loaded.source = path;
    if (isRecording(path)) {
        const QString expectations =
            options.expectations.isEmpty() ? expectationsBeside(path) : options.expectations;
        loaded.scenario = readSteps(
            expectations, options.expectations.isEmpty() ? Pipes::Refused : Pipes::Allowed,
            &loaded.diagnostics);
        if (!options.expectations.isEmpty() && !hasErrors(loaded.diagnostics)
            && !loaded.scenario.hasExpectations())
            loaded.diagnostics.append(
                mistakeAt(expectations, 0,
                          QStringLiteral("contains no expectations, steps that begin with "
                                         "'expect'")));
        Step::Play play;
        play.file = path;
        loaded.scenario.steps.prepend(
            ScenarioStep{path, 0, QStringLiteral("play \"%1\"").arg(path), play, false});
    } else {
        if (!options.expectations.isEmpty())
            loaded.diagnostics.append(
                mistakeAt(path, 0,
                          QStringLiteral("--expectations is for recordings (.evemu, .umockdev); a "
                                         "scenario contains its own")));
        loaded.scenario = readSteps(path, Pipes::Allowed, &loaded.diagnostics);
    }
    // A scenario with errors may name the wrong files; their errors would only distract.
    if (hasErrors(loaded.diagnostics))
        return loaded;
    loadProfileOf(&loaded, options);
    loadRecordings(&loaded);
    if (loaded.scenario.steps.isEmpty())
        loaded.diagnostics.append(
            mistakeAt(path, 0, QStringLiteral("contains no steps, so there is nothing to run")));
    if (!hasErrors(loaded.diagnostics))
        loaded.diagnostics += checkScenario(loaded);
    if (hasErrors(loaded.diagnostics))
        return loaded;
    assignNodes(&loaded);
    loaded.diagnostics += checkNodes(loaded);
    return loaded;
}

} // namespace Vorn::Workbench
