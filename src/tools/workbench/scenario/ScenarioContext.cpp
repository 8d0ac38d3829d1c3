#include "ScenarioContext.h"

#include "ScenarioLimits.h"

namespace Vorn::Workbench {

namespace {

// Fixed, so that output with times of day is the same on every run.
constexpr qint64 defaultStart = 1'767'348'000'000; // 2026-01-02T10:00:00Z

} // namespace

ScenarioContext::ScenarioContext(const QStringList &keywords)
    : m_keywords(keywords)
    , m_wallClock(defaultStart)
{
    m_result.scenario.start = defaultStart;
}

void ScenarioContext::addStep(const ScenarioLine &line, const StepKind &what, bool continues)
{
    m_result.scenario.steps.append(
        ScenarioStep{line.file(), line.number(), line.text(), what, continues});
}

void ScenarioContext::addTime(ScenarioLine *line, qint64 duration)
{
    m_duration += duration;
    if (m_duration > ScenarioLimit::duration)
        line->error(QStringLiteral("a scenario lasts at most 100 days in all"));
}

int ScenarioContext::addDevice(const ScenarioDevice &device)
{
    m_result.scenario.devices.append(device);
    m_states.append(DeviceState());
    return static_cast<int>(m_states.size()) - 1;
}

int ScenarioContext::deviceNamed(const QString &label) const
{
    const QVector<ScenarioDevice> &devices = m_result.scenario.devices;
    for (int i = 0; i < devices.size(); ++i) {
        if (devices[i].label == label)
            return i;
    }
    return -1;
}

QStringList ScenarioContext::labels() const
{
    QStringList list;
    for (const ScenarioDevice &device : m_result.scenario.devices)
        list += device.label;
    return list;
}

/*
 *  device NAME … unplugged                 device NAME …
 *           │                                   │
 *           ▼               plug                ▼        ┌──┐ press, release, click, hold, switch:
 *       unplugged ─────────────────────────▶ plugged in ─┤  │   those keys and switches
 *                 ◀─────────────────────────             ◀──┘ replace: held= and on= once more
 *     no key down,         unplug            keys of held= down,
 *     no switch on                           switches of on= on
 *
 *  An unplugged device has no step but `plug`. `record` leaves the state as it is.
 */

void ScenarioContext::plug(int index)
{
    const ScenarioDevice &declared = m_result.scenario.devices[index];
    DeviceState &state = m_states[index];
    state.isPlugged = true;
    state.keysDown = QSet<int>(declared.held.begin(), declared.held.end());
    state.switchesOn = QSet<int>(declared.on.begin(), declared.on.end());
}

void ScenarioContext::unplug(int index)
{
    m_states[index] = DeviceState();
}

bool ScenarioContext::setWallClock(qint64 time)
{
    m_wallClock = time;
    return time >= 0 && time <= ScenarioLimit::wallClock;
}

} // namespace Vorn::Workbench
