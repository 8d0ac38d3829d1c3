#ifndef VORN_WORKBENCH_SCENARIOCONTEXT_H
#define VORN_WORKBENCH_SCENARIOCONTEXT_H

#include "ScenarioLine.h"
#include "ScenarioParser.h"

#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

namespace Vorn::Workbench {

/// What the steps parsed so far have done to a device.
struct DeviceState
{
    bool isPlugged = false;
    QSet<int> keysDown;
    QSet<int> switchesOn;
};

/// What the parsers of all steps share: the scenario as far as it has been parsed, and the state
/// that the world will be in by then. With it, a step that could have no effect is an error.
class ScenarioContext
{
public:
    /// @param keywords words that start a step, which no device can therefore be called
    explicit ScenarioContext(const QStringList &keywords);

    const QStringList &keywords() const { return m_keywords; }
    Scenario &scenario() { return m_result.scenario; }
    const Scenario &scenario() const { return m_result.scenario; }
    Diagnostics *diagnostics() { return &m_result.diagnostics; }
    const ParsedScenario &result() const { return m_result; }

    /// @param continues see ScenarioStep::continues
    void addStep(const ScenarioLine &line, const StepKind &what, bool continues = false);
    /// Counts the duration of a step; too much of it in all is an error.
    void addTime(ScenarioLine *line, qint64 duration);

    /// @name Devices, by their index in Scenario::devices
    /// @{
    /// Adds a device, unplugged. @return its index
    int addDevice(const ScenarioDevice &device);
    ScenarioDevice &device(int index) { return m_result.scenario.devices[index]; }
    DeviceState &state(int index) { return m_states[index]; }
    /// -1 if there is none.
    int deviceNamed(const QString &label) const;
    QStringList labels() const;
    /// The device is new, or another one: only what is declared as held or on is.
    void plug(int index);
    void unplug(int index);
    /// @}

    /// Sets the wall clock, in ms since the epoch.
    /// @return whether that is a time that records can carry
    bool setWallClock(qint64 time);
    /// The wall clock after the steps so far, in ms since the epoch, without the waits.
    qint64 wallClock() const { return m_wallClock; }

    bool inputDirectoryExists() const { return m_inputDirectoryExists; }
    void setInputDirectoryExists(bool exists) { m_inputDirectoryExists = exists; }

private:
    const QStringList m_keywords;
    ParsedScenario m_result;
    QVector<DeviceState> m_states; ///< parallel to Scenario::devices
    qint64 m_duration = 0; ///< of all waits
    qint64 m_wallClock;
    bool m_inputDirectoryExists = true;
};

} // namespace Vorn::Workbench

#endif
