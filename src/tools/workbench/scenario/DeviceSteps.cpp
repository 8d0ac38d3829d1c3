#include "BusNames.h"
#include "EventNames.h"
#include "LibraryFacts.h"
#include "Quoting.h"
#include "ScenarioReader.h"

#include <QRegularExpression>

#include <linux/input.h>

namespace Vorn::Workbench {

namespace {

constexpr qint64 clickDuration = 80;
constexpr int maxNode = 99;

QStringList actions()
{
    return {QStringLiteral("press"),   QStringLiteral("release"), QStringLiteral("repeat"),
            QStringLiteral("click"),   QStringLiteral("hold"),    QStringLiteral("switch"),
            QStringLiteral("record"),  QStringLiteral("plug"),    QStringLiteral("unplug"),
            QStringLiteral("replace"), QStringLiteral("forbid"),  QStringLiteral("allow")};
}

QStringList options()
{
    return {QStringLiteral("name="), QStringLiteral("bus="),        QStringLiteral("node="),
            QStringLiteral("keys="), QStringLiteral("switches="),   QStringLiteral("on="),
            QStringLiteral("held="), QStringLiteral("auto-repeat"), QStringLiteral("unplugged"),
            QStringLiteral("from")};
}

std::optional<int> nodeNumber(const QString &text)
{
    bool isNumber = false;
    const QString digits = text.startsWith(QLatin1String("event")) ? text.mid(5) : text;
    const int number = digits.toInt(&isNumber);
    if (!isNumber || number < 0 || number > maxNode || digits != QString::number(number))
        return std::nullopt;
    return number;
}

QStringList allBusNames()
{
    QStringList names = busNames();
    for (int number = 0; number < 256; ++number) {
        const QString name = kernelBusName(number);
        if (name.startsWith(QLatin1String("BUS_")))
            names += name;
    }
    return names;
}

void addOnce(QVector<int> *codes, int code)
{
    if (!codes->contains(code))
        codes->append(code);
}

} // namespace

std::optional<int> busNumber(const QString &text)
{
    if (const std::optional<InputEvent::Bus> known = bus(text))
        return kernelBusOf(*known);
    return kernelBus(text);
}

int ScenarioReader::deviceNamed(const QString &label) const
{
    for (int i = 0; i < m_result.scenario.devices.size(); ++i) {
        if (m_result.scenario.devices[i].label == label)
            return i;
    }
    return -1;
}

QStringList ScenarioReader::labels() const
{
    QStringList list;
    for (const ScenarioDevice &device : m_result.scenario.devices)
        list += device.label;
    return list;
}

void ScenarioReader::readDevice(ScenarioLine *line)
{
    const ScenarioWord *label = line->take(QStringLiteral("a name for the device"));
    if (!label)
        return;
    static const QRegularExpression pattern(QStringLiteral("\\A[A-Za-z_][A-Za-z0-9_-]{0,63}\\z"));
    if (label->isQuoted || !pattern.match(label->text.left(65)).hasMatch()) {
        line->error(QStringLiteral("%1 cannot name a device; use letters, digits, '-' and '_', and "
                                   "give the kernel's name with name=\"…\"")
                        .arg(quoted(label->text)));
        return;
    }
    if (scenarioSteps().contains(label->text)) {
        line->error(QStringLiteral("%1 begins a step of its own; name the device otherwise")
                        .arg(quoted(label->text)));
        return;
    }
    const int other = deviceNamed(label->text);
    if (other >= 0) {
        const ScenarioDevice &first = m_result.scenario.devices[other];
        line->error(QStringLiteral("%1 is declared already in %2, line %3")
                        .arg(label->text, first.file)
                        .arg(first.line));
        return;
    }
    ScenarioDevice device;
    device.label = label->text;
    device.file = line->file();
    device.line = line->number();
    bool isUnplugged = false;
    readDeviceOptions(line, &device, &isUnplugged);
    if (line->isOk())
        checkDevice(line, device);
    // Kept even so: every step that mentions it would be another mistake.
    m_result.scenario.devices.append(device);
    m_states.append(DeviceState());
    if (line->isOk() && isUnplugged)
        return;
    const int index = m_states.size() - 1;
    plugged(index);
    add(*line, Step::Plug{index});
}

void ScenarioReader::readDeviceOptions(ScenarioLine *line, ScenarioDevice *device,
                                       bool *isUnplugged)
{
    m_hostlinkColumn = 0;
    QStringList seen;
    while (line->isOk() && !line->atEnd()) {
        const ScenarioWord *word = line->take(QString());
        const QString name = word->option.isEmpty() ? word->text : word->option;
        if (seen.contains(name)) {
            line->error(QStringLiteral("%1 is given twice").arg(quoted(name)));
            return;
        }
        seen += name;
        if (!word->option.isEmpty()) {
            readDeviceOption(line, *word, device);
        } else if (word->text == QLatin1String("auto-repeat")) {
            device->autoRepeat = true;
        } else if (word->text == QLatin1String("unplugged")) {
            *isUnplugged = true;
        } else if (word->text == QLatin1String("from")) {
            if (const ScenarioWord *file = line->take(QStringLiteral("the recording's name")))
                device->recording = pathFrom(line->file(), file->text);
        } else {
            line->unknown(word->column, QStringLiteral("option"), word->text, options());
        }
    }
}

void ScenarioReader::readDeviceOption(ScenarioLine *line, const ScenarioWord &word,
                                      ScenarioDevice *device)
{
    const auto codes = [&](bool isKey) {
        QVector<int> list;
        int column = word.valueColumn;
        const QStringList texts =
            word.value.isEmpty() ? QStringList() : word.value.split(QLatin1Char(','));
        for (const QString &text : texts) {
            const std::optional<int> code = isKey ? keyCode(text) : switchCode(text);
            if (!code) {
                line->unknown(column, isKey ? QStringLiteral("key") : QStringLiteral("switch"),
                              text, isKey ? keyNames() : switchNames());
                break;
            }
            addOnce(&list, *code);
            column += text.size() + 1;
        }
        return list;
    };
    if (word.option == QLatin1String("name")) {
        device->name = word.value.isNull() ? QByteArray("") : word.value.toUtf8();
    } else if (word.option == QLatin1String("bus")) {
        device->bus = busNumber(word.value);
        if (!device->bus)
            line->unknown(word.valueColumn, QStringLiteral("bus"), word.value, allBusNames());
        if (bus(word.value) == InputEvent::Bus::Hostlink)
            m_hostlinkColumn = word.valueColumn;
    } else if (word.option == QLatin1String("node")) {
        device->node = nodeNumber(word.value);
        if (!device->node)
            line->error(word.valueColumn,
                        QStringLiteral("%1 is no node; write one from event0 to event%2")
                            .arg(quoted(word.value))
                            .arg(maxNode));
    } else if (word.option == QLatin1String("keys")) {
        device->keys = codes(true);
    } else if (word.option == QLatin1String("switches")) {
        device->switches = codes(false);
    } else if (word.option == QLatin1String("held")) {
        device->held = codes(true);
    } else if (word.option == QLatin1String("on")) {
        device->on = codes(false);
    } else {
        line->unknown(word.column, QStringLiteral("option"), word.option, options());
    }
}

void ScenarioReader::checkHostlink(ScenarioLine *line, const ScenarioDevice &device) const
{
    // From a recording comes a name that is not known here.
    const bool isUnknown = !device.recording.isEmpty() && !device.name;
    if (m_hostlinkColumn > 0 && !isUnknown
        && device.name.value_or(device.label.toUtf8()) != hostlinkName)
        line->error(m_hostlinkColumn,
                    QStringLiteral("a device is on the bus Hostlink by its name alone; give it "
                                   "name=\"hostlink\""));
}

void ScenarioReader::checkDevice(ScenarioLine *line, const ScenarioDevice &device) const
{
    checkHostlink(line, device);
    for (const ScenarioDevice &other : m_result.scenario.devices) {
        if (device.node && other.node == device.node)
            line->error(1,
                        QStringLiteral("event%1 is the node of %2, line %3")
                            .arg(*device.node)
                            .arg(other.label)
                            .arg(other.line));
    }
}

void ScenarioReader::plugged(int device)
{
    const ScenarioDevice &declared = m_result.scenario.devices[device];
    DeviceState &state = m_states[device];
    state.isPlugged = true;
    state.keysDown = QSet<int>(declared.held.begin(), declared.held.end());
    state.switchesOn = QSet<int>(declared.on.begin(), declared.on.end());
}

void ScenarioReader::readAction(ScenarioLine *line, int device)
{
    const QString label = m_result.scenario.devices[device].label;
    const ScenarioWord *word = line->take(QStringLiteral("what %1 does").arg(label));
    if (!word)
        return;
    const QString action = word->text;
    if (!actions().contains(action) || word->isQuoted) {
        line->unknown(word->column, QStringLiteral("action"), action, actions());
        return;
    }
    if (action == QLatin1String("plug")) {
        if (m_states[device].isPlugged) {
            line->error(QStringLiteral("%1 is plugged in already").arg(label));
            return;
        }
        plugged(device);
        add(*line, Step::Plug{device});
        return;
    }
    if (!m_states[device].isPlugged) {
        line->error(QStringLiteral("%1 is not plugged in; write '%1 plug' before").arg(label));
        return;
    }
    if (action == QLatin1String("unplug"))
        readUnplug(line, device);
    else if (action == QLatin1String("replace"))
        readReplace(line, device);
    else if (action == QLatin1String("switch"))
        readSwitch(line, device);
    else if (action == QLatin1String("record"))
        readRecord(line, device);
    else if (action == QLatin1String("forbid") || action == QLatin1String("allow"))
        add(*line, Step::Permit{device, action == QLatin1String("allow")});
    else if (action == QLatin1String("click") || action == QLatin1String("hold"))
        readHold(line, device, action == QLatin1String("click"));
    else
        readKeys(line, device, action);
}

std::optional<int> ScenarioReader::takeKey(ScenarioLine *line, int device)
{
    const ScenarioWord *word = line->take(QStringLiteral("a key like KEY_OK"));
    if (!word)
        return std::nullopt;
    ScenarioDevice &declared = m_result.scenario.devices[device];
    const std::optional<int> code = keyCode(word->text);
    if (!code && switchCode(word->text)) {
        line->error(QStringLiteral("%1 is a switch; write '%2 switch %3 on'")
                        .arg(quoted(word->text), declared.label, word->text));
    } else if (!code) {
        line->unknown(word->column, QStringLiteral("key"), word->text, keyNames());
    } else if (declared.keys && !declared.keys->contains(*code) && !declared.held.contains(*code)) {
        line->error(QStringLiteral("%1 has no %2; add it to its keys= in line %3")
                        .arg(declared.label, keyName(*code))
                        .arg(declared.line));
    } else {
        addOnce(&declared.usedKeys, *code);
        return code;
    }
    return std::nullopt;
}

std::optional<int> ScenarioReader::takeSwitch(ScenarioLine *line, int device)
{
    const ScenarioWord *word = line->take(QStringLiteral("a switch like SW_LINEIN_INSERT"));
    if (!word)
        return std::nullopt;
    ScenarioDevice &declared = m_result.scenario.devices[device];
    const std::optional<int> code = switchCode(word->text);
    if (!code && keyCode(word->text)) {
        line->error(QStringLiteral("%1 is a key; write '%2 press %3'")
                        .arg(quoted(word->text), declared.label, word->text));
    } else if (!code) {
        line->unknown(word->column, QStringLiteral("switch"), word->text, switchNames());
    } else if (declared.switches && !declared.switches->contains(*code)
               && !declared.on.contains(*code)) {
        line->error(QStringLiteral("%1 has no %2; add it to its switches= in line %3")
                        .arg(declared.label, switchName(*code))
                        .arg(declared.line));
    } else {
        addOnce(&declared.usedSwitches, *code);
        return code;
    }
    return std::nullopt;
}

// The kernel drops a press of a key that is down, and a release of one that is up. A step that
// does nothing is not what its writer meant.
bool ScenarioReader::setKey(ScenarioLine *line, int device, int code, bool down)
{
    const ScenarioDevice &declared = m_result.scenario.devices[device];
    QSet<int> &keysDown = m_states[device].keysDown;
    // Which keys a recorded device holds at first is not known here.
    const bool isUnknown = !declared.recording.isEmpty() && !down;
    if (keysDown.contains(code) == down && !isUnknown) {
        line->error(QStringLiteral("%1 is %2 already, so the kernel would drop this; '%3 record "
                                   "EV_KEY %1 %4' sends it all the same")
                        .arg(keyName(code), down ? QStringLiteral("down") : QStringLiteral("up"),
                             declared.label, down ? QStringLiteral("1") : QStringLiteral("0")));
        return false;
    }
    if (down)
        keysDown.insert(code);
    else
        keysDown.remove(code);
    return true;
}

void ScenarioReader::readKeys(ScenarioLine *line, int device, const QString &action)
{
    Step::Keys keys;
    keys.device = device;
    const bool isRepeat = action == QLatin1String("repeat");
    if (isRepeat)
        keys.value = 2;
    else
        keys.value = action == QLatin1String("press") ? 1 : 0;
    do {
        const std::optional<int> code = takeKey(line, device);
        if (!code || (!isRepeat && !setKey(line, device, *code, keys.value == 1)))
            return;
        keys.codes.append(*code);
    } while (!line->atEnd());
    add(*line, keys);
}

void ScenarioReader::readHold(ScenarioLine *line, int device, bool isClick)
{
    const std::optional<int> code = takeKey(line, device);
    if (!code || !setKey(line, device, *code, true))
        return;
    setKey(line, device, *code, false);
    std::optional<qint64> duration = clickDuration;
    if (line->takeKeyword(QLatin1String("for"))) {
        duration = line->takeDuration();
    } else if (!isClick) {
        line->error(line->peek() ? line->peek()->column : 1,
                    QStringLiteral("for how long is missing; write '%1 hold %2 for 2s'")
                        .arg(m_result.scenario.devices[device].label, keyName(*code)));
    }
    if (!line->isOk() || !duration)
        return;
    addTime(line, *duration);
    add(*line, Step::Keys{device, {*code}, 1});
    add(*line, Step::Wait{*duration}, true);
    add(*line, Step::Keys{device, {*code}, 0}, true);
}

void ScenarioReader::readSwitch(ScenarioLine *line, int device)
{
    const std::optional<int> code = takeSwitch(line, device);
    const ScenarioWord *word = code ? line->take(QStringLiteral("'on' or 'off'")) : nullptr;
    if (!word)
        return;
    const bool isOn = word->text == QLatin1String("on");
    if (!isOn && word->text != QLatin1String("off")) {
        line->error(QStringLiteral("a switch goes 'on' or 'off', not %1").arg(quoted(word->text)));
        return;
    }
    const ScenarioDevice &declared = m_result.scenario.devices[device];
    QSet<int> &switchesOn = m_states[device].switchesOn;
    if (declared.recording.isEmpty() && switchesOn.contains(*code) == isOn) {
        line->error(QStringLiteral("%1 is %2 already, so the kernel would drop this; '%3 record "
                                   "EV_SW %1 %4' sends it all the same")
                        .arg(switchName(*code), word->text, declared.label,
                             isOn ? QStringLiteral("1") : QStringLiteral("0")));
        return;
    }
    if (isOn)
        switchesOn.insert(*code);
    else
        switchesOn.remove(*code);
    add(*line, Step::Switch{device, *code, isOn});
}

void ScenarioReader::readRecord(ScenarioLine *line, int device)
{
    Step::Record record;
    record.device = device;
    const ScenarioWord *word = line->take(QStringLiteral("an event type like EV_KEY"));
    if (!word)
        return;
    const std::optional<int> type = eventType(word->text);
    if (!type) {
        QStringList known;
        for (int number = 0; number < EV_CNT; ++number)
            known += eventTypeName(number);
        line->unknown(word->column, QStringLiteral("event type"), word->text, known);
        return;
    }
    word = line->take(QStringLiteral("a code of %1").arg(eventTypeName(*type)));
    if (!word)
        return;
    const std::optional<int> code = eventCode(*type, word->text);
    if (!code) {
        const QStringList known = *type == EV_SW ? switchNames() : keyNames();
        line->unknown(word->column, QStringLiteral("code of %1").arg(eventTypeName(*type)),
                      word->text, *type == EV_KEY || *type == EV_SW ? known : QStringList());
        return;
    }
    word = line->take(QStringLiteral("the value, a number"));
    if (!word)
        return;
    bool isNumber = false;
    record.value = word->text.toInt(&isNumber);
    if (!isNumber) {
        line->error(QStringLiteral("%1 is no value; write a number, for a key 1 press, 0 release, "
                                   "2 repeat")
                        .arg(quoted(word->text)));
        return;
    }
    record.type = *type;
    record.code = *code;
    ScenarioDevice &declared = m_result.scenario.devices[device];
    if (record.type == EV_KEY && record.code <= maxKeyCode)
        addOnce(&declared.usedKeys, record.code);
    if (record.type == EV_SW && record.code <= maxSwitchCode)
        addOnce(&declared.usedSwitches, record.code);
    if (line->takeKeyword(QLatin1String("stamped"))) {
        word = line->take(QStringLiteral("how far from the wall clock, like -500ms"));
        const std::optional<qint64> offset = word ? signedMilliseconds(word->text) : std::nullopt;
        if (word && (!offset || qAbs(*offset) > maxWait))
            line->error(QStringLiteral("%1 is no offset like -500ms or +1h, of at most 7 days")
                            .arg(quoted(word->text)));
        record.offset = offset.value_or(0);
    }
    if (line->isOk())
        add(*line, record);
}

void ScenarioReader::readUnplug(ScenarioLine *line, int device)
{
    Step::Unplug unplug;
    unplug.device = device;
    if (line->takeKeyword(QLatin1String("losing"))) {
        if (!line->takeKeyword(QLatin1String("records"))) {
            line->error(QStringLiteral("the step is 'unplug losing records'"));
            return;
        }
        unplug.losingRecords = true;
    }
    m_states[device] = DeviceState();
    add(*line, unplug);
}

void ScenarioReader::readReplace(ScenarioLine *line, int device)
{
    // By the rules of a declaration, of which it can have these two options.
    ScenarioDevice other;
    other.label = m_result.scenario.devices[device].label;
    m_hostlinkColumn = 0;
    while (line->isOk() && !line->atEnd()) {
        const ScenarioWord *word = line->take(QString());
        if (word->option != QLatin1String("name") && word->option != QLatin1String("bus"))
            line->unknown(word->column, QStringLiteral("option"), word->text,
                          {QStringLiteral("name="), QStringLiteral("bus=")});
        else
            readDeviceOption(line, *word, &other);
    }
    if (line->isOk() && !other.name)
        line->error(QStringLiteral("the other device's name=\"…\" is missing"));
    checkHostlink(line, other);
    if (!line->isOk())
        return;
    plugged(device);
    add(*line, Step::Replace{device, *other.name, other.bus});
}

} // namespace Vorn::Workbench
