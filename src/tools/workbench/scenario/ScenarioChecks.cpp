#include "ScenarioChecks.h"

#include "LibraryFacts.h"
#include "Quoting.h"
#include "Suggestion.h"

#include <linux/input.h>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

using Severity = Diagnostic::Severity;

class ScenarioChecks
{
public:
    explicit ScenarioChecks(const LoadedScenario &loaded)
        : m_loaded(loaded)
        , m_identifiers(loaded.profile.identifiers())
        , m_deviceNames(deviceNames())
    { }

    Diagnostics findAll();

    void operator()(const Step::Play &play);
    void operator()(const Step::Select &select) { checkIdentifier(select.identifier); }
    void operator()(const Step::ExpectIdentifier &expected)
    {
        checkIdentifier(expected.identifier);
    }
    void operator()(const Step::ExpectEvent &expected);
    template <typename Other>
    void operator()(const Other &)
    { }

private:
    void checkDevice(const ScenarioDevice &device);
    void checkIdentifier(const QString &identifier);
    QString nameOf(const ScenarioDevice &device) const;
    QStringList deviceNames() const;
    QVector<RecordedNode> nodesOf(const QString &recording) const
    {
        return m_loaded.recordings.value(recording).nodes;
    }
    void add(Severity severity, const QString &message)
    {
        m_diagnostics.append({severity, m_step->file, m_step->line, 0, message});
    }

    const LoadedScenario &m_loaded;
    const QStringList m_identifiers;
    const QStringList m_deviceNames;
    const ScenarioStep *m_step = nullptr;
    Diagnostics m_diagnostics;
};

bool hasEvents(const RecordedNode &node)
{
    return std::any_of(node.events.begin(), node.events.end(),
                       [](const RecordedEvent &event) { return event.type != EV_SYN; });
}

/// Of a recording that describes no device, see ScenarioNodes::plugRecorded().
QString substituteName()
{
    return QStringLiteral("device");
}

Diagnostics ScenarioChecks::findAll()
{
    for (const ScenarioDevice &device : m_loaded.scenario.devices)
        checkDevice(device);
    for (const ScenarioStep &step : m_loaded.scenario.steps) {
        m_step = &step;
        std::visit(*this, step.what);
    }
    return m_diagnostics;
}

QString ScenarioChecks::nameOf(const ScenarioDevice &device) const
{
    if (device.name)
        return QString::fromUtf8(*device.name);
    const QVector<RecordedNode> nodes = nodesOf(device.recording);
    return nodes.isEmpty() || !nodes.first().device ? device.label
                                                    : QString::fromUtf8(nodes.first().device->name);
}

QStringList ScenarioChecks::deviceNames() const
{
    QStringList names;
    for (const ScenarioDevice &device : m_loaded.scenario.devices)
        names += nameOf(device);
    for (const ScenarioStep &step : m_loaded.scenario.steps) {
        if (const auto *replace = std::get_if<Step::Replace>(&step.what))
            names += QString::fromUtf8(replace->name);
        const auto *play = std::get_if<Step::Play>(&step.what);
        if (!play || play->device >= 0)
            continue;
        const QVector<RecordedNode> nodes = nodesOf(play->file);
        for (const RecordedNode &node : nodes)
            names += node.device ? QString::fromUtf8(node.device->name) : substituteName();
    }
    return names;
}

// A device that the profile does not mention can be what a scenario is about. One that is called
// nearly like one of the profile's is a slip.
void ScenarioChecks::checkDevice(const ScenarioDevice &device)
{
    const QString name = nameOf(device);
    QStringList known;
    for (const DeviceProfile &entry : m_loaded.profile.devices) {
        if (!entry.name || *entry.name == name)
            return;
        known += *entry.name;
    }
    const QString meant = suggestion(name, known);
    if (!meant.isEmpty())
        m_diagnostics.append({Severity::Warning, device.file, device.line, 0,
                              QStringLiteral("the profile has nothing for a device called %1%2")
                                  .arg(quoted(name), meant)});
}

// Nothing is reported while such an identifier is selected. That can be the point of a scenario, so
// it is only a warning, but more often it is a typo.
void ScenarioChecks::checkIdentifier(const QString &identifier)
{
    if (!m_loaded.profileFile.isEmpty() && !m_identifiers.contains(identifier))
        add(Severity::Warning,
            QStringLiteral("the profile has no identifier %1%2")
                .arg(quoted(identifier), suggestion(identifier, m_identifiers)));
}

void ScenarioChecks::operator()(const Step::ExpectEvent &expected)
{
    const QString name = QString::fromUtf8(expected.deviceName);
    if (!expected.deviceName.isNull() && !m_deviceNames.contains(name))
        add(Severity::Error,
            QStringLiteral("no device is called %1%2")
                .arg(quoted(name), suggestion(name, m_deviceNames)));
}

void ScenarioChecks::operator()(const Step::Play &play)
{
    const QVector<RecordedNode> nodes = nodesOf(play.file);
    const bool isPluggedIn = play.device < 0;
    if (isPluggedIn && !nodes.isEmpty() && !nodes.first().device)
        m_diagnostics.append({Severity::Warning, play.file, 0, 0,
                              QStringLiteral("describes no device (lines like 'N: panel'); one "
                                             "called '%1' takes its place")
                                  .arg(substituteName())});
    if (std::any_of(nodes.begin(), nodes.end(), hasEvents))
        return;
    // To plug in the devices of a recording can be all that a scenario is about.
    const bool isOfUse = isPluggedIn && m_loaded.scenario.hasExpectations();
    add(isOfUse ? Severity::Warning : Severity::Error,
        QStringLiteral("the recording %1 contains no events, so nothing is played")
            .arg(quotedPath(play.file)));
}

} // namespace

Diagnostics checkScenario(const LoadedScenario &loaded)
{
    return ScenarioChecks(loaded).findAll();
}

Diagnostics checkNodes(const LoadedScenario &loaded)
{
    Diagnostics diagnostics;
    const auto check = [&diagnostics](const QString &file, int line, int node) {
        if (node >= nodeCount)
            diagnostics.append({Severity::Warning, file, line, 0,
                                QStringLiteral("this device gets event%1, and the library reads "
                                               "event0 to event%2 only: it stays unnoticed")
                                    .arg(node)
                                    .arg(nodeCount - 1)});
    };
    for (int i = 0; i < loaded.deviceNodes.size(); ++i) {
        const ScenarioDevice &device = loaded.scenario.devices.at(i);
        if (!device.node)
            check(device.file, device.line, loaded.deviceNodes.at(i));
    }
    for (auto it = loaded.recordingNodes.cbegin(); it != loaded.recordingNodes.cend(); ++it) {
        for (const int node : *it)
            check(it.key(), 0, node);
    }
    return diagnostics;
}

} // namespace Vorn::Workbench
