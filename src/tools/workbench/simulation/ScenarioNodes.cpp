#include "ScenarioNodes.h"

#include "BusNames.h"
#include "EventNames.h"
#include "RecordedDevice.h"
#include "Recording.h"

namespace Vorn::Workbench {

namespace {

constexpr mode_t readableMode = 0660; // udev's usual mode for input devices

void addOnce(QVector<int> *codes, int code)
{
    if (!codes->contains(code))
        codes->append(code);
}

// A real panel has the keys that its product maps. Without this, each scenario would have to list
// them before it could press one.
void addMapped(const Profile &profile, Sim::DeviceDescription *device, bool keys, bool switches)
{
    const QString name = QString::fromUtf8(device->name);
    const DeviceProfile *mapped = profile.deviceFor(name, libraryBus(device->id.bustype, name));
    if (!mapped)
        return;
    for (const HandlerProfile &handler : mapped->handlers) {
        if (keys) {
            for (const KeyMapping &key : handler.keys)
                addOnce(&device->keys, key.code);
            for (const ChordMapping &chord : handler.chords) {
                addOnce(&device->keys, chord.first);
                addOnce(&device->keys, chord.second);
            }
        }
        if (switches) {
            for (const SwitchMapping &mapping : handler.switches)
                addOnce(&device->switches, mapping.code);
        }
    }
}

void addUsed(const QVector<RecordedEvent> &events, Sim::DeviceDescription *device, bool keys,
             bool switches)
{
    for (const RecordedEvent &event : events) {
        if (keys && event.type == EV_KEY)
            addOnce(&device->keys, event.code);
        else if (switches && event.type == EV_SW)
            addOnce(&device->switches, event.code);
    }
}

} // namespace

Sim::DeviceDescription describe(const RecordedDevice &device)
{
    Sim::DeviceDescription result;
    // Null would stand for a device whose name cannot be read.
    result.name = device.name.isNull() ? QByteArray("") : device.name;
    result.id = device.id;
    result.keys = device.codesOf(EV_KEY);
    result.switches = device.codesOf(EV_SW);
    result.keysHeld = device.keysDown;
    result.switchesOn = device.switchesOn;
    result.autoRepeat = device.has(EV_REP);
    // EV_REP is left to autoRepeat.
    for (auto it = device.codes.cbegin(); it != device.codes.cend(); ++it) {
        if (it.key() != EV_REP)
            result.eventTypes.append(it.key());
    }
    return result;
}

ScenarioNodes::ScenarioNodes(const LoadedScenario &loaded, Bench *bench)
    : m_loaded(loaded)
    , m_bench(bench)
    , m_readable(loaded.scenario.devices.size(), true)
{ }

Sim::DeviceDescription ScenarioNodes::describe(int device) const
{
    const ScenarioDevice &declared = m_loaded.scenario.devices[device];
    Sim::DeviceDescription result;
    const bool isRecorded = !declared.recording.isEmpty();
    if (isRecorded)
        result = Workbench::describe(*m_loaded.recordings[declared.recording].nodes.first().device);
    else
        result.name = declared.label.toUtf8();
    if (declared.name)
        result.name = *declared.name;
    if (declared.bus)
        result.id.bustype = static_cast<__u16>(*declared.bus);
    result.keysHeld += declared.held;
    result.switchesOn += declared.on;
    result.autoRepeat = result.autoRepeat || declared.autoRepeat;
    if (declared.keys)
        result.keys = *declared.keys;
    if (declared.switches)
        result.switches = *declared.switches;
    // A recording describes all codes of its device; adding any would change what is tested.
    if (!isRecorded) {
        const bool keys = !declared.keys;
        const bool switches = !declared.switches;
        if (keys)
            result.keys += declared.usedKeys;
        if (switches)
            result.switches += declared.usedSwitches;
        addMapped(m_loaded.profile, &result, keys, switches);
        for (const ScenarioStep &step : m_loaded.scenario.steps) {
            const auto *play = std::get_if<Step::Play>(&step.what);
            if (play && play->device == device) {
                for (const RecordedNode &node : m_loaded.recordings[play->file].nodes)
                    addUsed(node.events, &result, keys, switches);
            }
        }
    }
    result.mode = m_readable[device] ? readableMode : 0;
    return result;
}

void ScenarioNodes::plug(int device)
{
    plug(number(device), describe(device));
}

void ScenarioNodes::plug(int node, const Sim::DeviceDescription &description)
{
    m_plugged.insert(node);
    m_bench->plug(node, description);
}

void ScenarioNodes::unplug(int device, bool losingRecords)
{
    m_plugged.remove(number(device));
    m_bench->unplug(number(device), losingRecords);
}

void ScenarioNodes::replace(const Step::Replace &step)
{
    Sim::DeviceDescription other = describe(step.device);
    other.name = step.name;
    if (step.bus)
        other.id.bustype = static_cast<__u16>(*step.bus);
    const ScenarioDevice &declared = m_loaded.scenario.devices[step.device];
    // The profile may map other keys for its name.
    addMapped(m_loaded.profile, &other, !declared.keys, !declared.switches);
    m_bench->replace(number(step.device), other);
}

void ScenarioNodes::permit(int device, bool readable)
{
    m_readable[device] = readable;
    m_bench->setMode(number(device), readable ? readableMode : 0);
}

void ScenarioNodes::plugRecorded(const QString &recording)
{
    const QVector<RecordedNode> &nodes = m_loaded.recordings[recording].nodes;
    const QVector<int> numbers = m_loaded.recordingNodes[recording];
    for (int i = 0; i < nodes.size(); ++i) {
        if (m_plugged.contains(numbers[i]))
            continue;
        Sim::DeviceDescription description;
        if (nodes[i].device) {
            description = Workbench::describe(*nodes[i].device);
        } else {
            // An excerpt without a description: any device that could have sent these events.
            description.name = "device";
            addUsed(nodes[i].events, &description, true, true);
        }
        plug(numbers[i], description);
    }
}

} // namespace Vorn::Workbench
