#include "DeviceActions.h"

#include "DeviceDeclaration.h"
#include "Durations.h"
#include "EventNames.h"
#include "Quoting.h"
#include "ScenarioContext.h"
#include "ScenarioLimits.h"
#include "ScenarioLine.h"

#include <linux/input.h>

namespace Vorn::Workbench {

namespace {

// What `click` takes without `for`: about as long as a finger stays on a key.
constexpr qint64 clickDuration = 80;

// Codes that the steps use are codes of the device, unless it declares its own.
void addOnce(QVector<int> *codes, int code)
{
    if (!codes->contains(code))
        codes->append(code);
}

std::optional<int> takeKey(ScenarioLine *line, ScenarioContext *context, int device)
{
    const ScenarioWord *word = line->take(QStringLiteral("a key like KEY_OK"));
    if (!word)
        return std::nullopt;
    ScenarioDevice &declared = context->device(device);
    const std::optional<int> code = keyCode(word->text);
    // A switch in place of a key is a common slip, and "did you mean" would only list keys.
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

std::optional<int> takeSwitch(ScenarioLine *line, ScenarioContext *context, int device)
{
    const ScenarioWord *word = line->take(QStringLiteral("a switch like SW_LINEIN_INSERT"));
    if (!word)
        return std::nullopt;
    ScenarioDevice &declared = context->device(device);
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

// The kernel drops a press of a key that is down, and a release of one that is up. Whoever writes a
// step that has no effect has lost track of the keys.
bool setKey(ScenarioLine *line, ScenarioContext *context, int device, int code, bool down)
{
    const ScenarioDevice &declared = context->device(device);
    QSet<int> &keysDown = context->state(device).keysDown;
    // A recorded device may be plugged in with keys down; which ones, only its recording says.
    const bool isUnknown = !declared.recording.isEmpty() && !down;
    if (keysDown.contains(code) == down && !isUnknown) {
        line->error(QStringLiteral("%1 is already %2, so the kernel would drop this; '%3 record "
                                   "EV_KEY %1 %4' sends it anyway")
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

/// @param value 1 press, 0 release, 2 repeat
void readKeys(ScenarioLine *line, ScenarioContext *context, int device, int value)
{
    Step::Keys keys;
    keys.device = device;
    keys.value = value;
    const bool isRepeat = value == 2;
    do {
        const std::optional<int> code = takeKey(line, context, device);
        // A driver may send repeats of a key that is up.
        if (!code || (!isRepeat && !setKey(line, context, device, *code, value == 1)))
            return;
        keys.codes.append(*code);
    } while (!line->atEnd());
    context->addStep(*line, keys);
}

void readPress(ScenarioLine *line, ScenarioContext *context, int device)
{
    readKeys(line, context, device, 1);
}

void readRelease(ScenarioLine *line, ScenarioContext *context, int device)
{
    readKeys(line, context, device, 0);
}

void readRepeat(ScenarioLine *line, ScenarioContext *context, int device)
{
    readKeys(line, context, device, 2);
}

/// Adds a press, a wait and a release.
/// @param duration if the step does not say; absent: it must
void readPressAndRelease(ScenarioLine *line, ScenarioContext *context, int device,
                         std::optional<qint64> duration)
{
    const std::optional<int> code = takeKey(line, context, device);
    if (!code || !setKey(line, context, device, *code, true))
        return;
    // Up again after the step. This cannot fail: the key has just gone down.
    setKey(line, context, device, *code, false);
    if (line->takeKeyword(QLatin1String("for"))) {
        duration = line->takeDuration();
    } else if (!duration) {
        line->error(line->peek() ? line->peek()->column : 1,
                    QStringLiteral("how long is missing; write '%1 hold %2 for 2s'")
                        .arg(context->device(device).label, keyName(*code)));
    }
    if (!line->isOk() || !duration)
        return;
    context->addTime(line, *duration);
    context->addStep(*line, Step::Keys{device, {*code}, 1});
    context->addStep(*line, Step::Wait{*duration}, true);
    context->addStep(*line, Step::Keys{device, {*code}, 0}, true);
}

void readClick(ScenarioLine *line, ScenarioContext *context, int device)
{
    readPressAndRelease(line, context, device, clickDuration);
}

void readHold(ScenarioLine *line, ScenarioContext *context, int device)
{
    readPressAndRelease(line, context, device, std::nullopt);
}

void readSwitch(ScenarioLine *line, ScenarioContext *context, int device)
{
    const std::optional<int> code = takeSwitch(line, context, device);
    const ScenarioWord *word = code ? line->take(QStringLiteral("'on' or 'off'")) : nullptr;
    if (!word)
        return;
    const bool isOn = word->text == QLatin1String("on");
    if (!isOn && word->text != QLatin1String("off")) {
        line->error(QStringLiteral("a switch goes 'on' or 'off', not %1").arg(quoted(word->text)));
        return;
    }
    // Where the switches of a recorded device are, only its recording says.
    const ScenarioDevice &declared = context->device(device);
    QSet<int> &switchesOn = context->state(device).switchesOn;
    if (declared.recording.isEmpty() && switchesOn.contains(*code) == isOn) {
        line->error(QStringLiteral("%1 is already %2, so the kernel would drop this; '%3 record "
                                   "EV_SW %1 %4' sends it anyway")
                        .arg(switchName(*code), word->text, declared.label,
                             isOn ? QStringLiteral("1") : QStringLiteral("0")));
        return;
    }
    if (isOn)
        switchesOn.insert(*code);
    else
        switchesOn.remove(*code);
    context->addStep(*line, Step::Switch{device, *code, isOn});
}

std::optional<int> takeEventType(ScenarioLine *line)
{
    const ScenarioWord *word = line->take(QStringLiteral("an event type like EV_KEY"));
    if (!word)
        return std::nullopt;
    const std::optional<int> type = eventType(word->text);
    if (!type) {
        QStringList known;
        for (int number = 0; number < EV_CNT; ++number)
            known += eventTypeName(number);
        line->unknown(word->column, QStringLiteral("event type"), word->text, known);
    }
    return type;
}

std::optional<int> takeEventCode(ScenarioLine *line, int type)
{
    const ScenarioWord *word = line->take(QStringLiteral("a code of %1").arg(eventTypeName(type)));
    if (!word)
        return std::nullopt;
    const std::optional<int> code = eventCode(type, word->text);
    if (!code) {
        QStringList known;
        if (type == EV_KEY)
            known = keyNames();
        else if (type == EV_SW)
            known = switchNames();
        line->unknown(word->column, QStringLiteral("code of %1").arg(eventTypeName(type)),
                      word->text, known);
    }
    return code;
}

std::optional<int> takeEventValue(ScenarioLine *line)
{
    const ScenarioWord *word = line->take(QStringLiteral("the value, a number"));
    if (!word)
        return std::nullopt;
    bool isNumber = false;
    const int value = word->text.toInt(&isNumber);
    if (isNumber)
        return value;
    line->error(QStringLiteral("%1 is not a value; write a number, for a key 1 press, 0 release, "
                               "2 repeat")
                    .arg(quoted(word->text)));
    return std::nullopt;
}

/// What follows `stamped`.
qint64 takeOffset(ScenarioLine *line)
{
    const ScenarioWord *word =
        line->take(QStringLiteral("the offset from the wall clock, like -500ms"));
    const std::optional<qint64> offset = word ? signedMilliseconds(word->text) : std::nullopt;
    if (word && (!offset || qAbs(*offset) > ScenarioLimit::wait))
        line->error(QStringLiteral("%1 is not an offset like -500ms or +1h, at most 7 days")
                        .arg(quoted(word->text)));
    return offset.value_or(0);
}

// Neither checks nor changes which keys are down: a record is what a kernel would not send.
void readRecord(ScenarioLine *line, ScenarioContext *context, int device)
{
    const std::optional<int> type = takeEventType(line);
    const std::optional<int> code = type ? takeEventCode(line, *type) : std::nullopt;
    const std::optional<int> value = code ? takeEventValue(line) : std::nullopt;
    if (!value)
        return;
    ScenarioDevice &declared = context->device(device);
    if (*type == EV_KEY && *code <= maxKeyCode)
        addOnce(&declared.usedKeys, *code);
    if (*type == EV_SW && *code <= maxSwitchCode)
        addOnce(&declared.usedSwitches, *code);
    qint64 offset = 0;
    if (line->takeKeyword(QLatin1String("stamped")))
        offset = takeOffset(line);
    if (line->isOk())
        context->addStep(*line, Step::Record{device, *type, *code, *value, offset});
}

void readPlug(ScenarioLine *line, ScenarioContext *context, int device)
{
    if (context->state(device).isPlugged) {
        line->error(QStringLiteral("%1 is already plugged in").arg(context->device(device).label));
        return;
    }
    context->plug(device);
    context->addStep(*line, Step::Plug{device});
}

void readUnplug(ScenarioLine *line, ScenarioContext *context, int device)
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
    context->unplug(device);
    context->addStep(*line, unplug);
}

void readReplace(ScenarioLine *line, ScenarioContext *context, int device)
{
    const std::optional<Replacement> other = readReplacement(line);
    if (!other)
        return;
    // Keys that were down on the device before are not down on this one.
    context->plug(device);
    context->addStep(*line, Step::Replace{device, other->name, other->bus});
}

void readForbid(ScenarioLine *line, ScenarioContext *context, int device)
{
    context->addStep(*line, Step::Permit{device, false});
}

void readAllow(ScenarioLine *line, ScenarioContext *context, int device)
{
    context->addStep(*line, Step::Permit{device, true});
}

/// A word that follows the name of a device, and what parses the rest of the line.
struct Action
{
    const char *word;
    void (*read)(ScenarioLine *, ScenarioContext *, int device);
};

constexpr Action actions[] = {
    {"press", &readPress},     {"release", &readRelease}, {"repeat", &readRepeat},
    {"click", &readClick},     {"hold", &readHold},       {"switch", &readSwitch},
    {"record", &readRecord},   {"plug", &readPlug},       {"unplug", &readUnplug},
    {"replace", &readReplace}, {"forbid", &readForbid},   {"allow", &readAllow},
};

} // namespace

QStringList actionNames()
{
    QStringList names;
    for (const Action &action : actions)
        names += QLatin1String(action.word);
    return names;
}

void readAction(ScenarioLine *line, ScenarioContext *context, int device)
{
    const QString label = context->device(device).label;
    const ScenarioWord *word = line->take(QStringLiteral("what %1 does").arg(label));
    if (!word)
        return;
    for (const Action &action : actions) {
        if (word->isQuoted || word->text != QLatin1String(action.word))
            continue;
        if (!context->state(device).isPlugged && action.read != &readPlug)
            line->error(QStringLiteral("%1 is not plugged in; write '%1 plug' first").arg(label));
        else
            action.read(line, context, device);
        return;
    }
    line->unknown(word->column, QStringLiteral("action"), word->text, actionNames());
}

} // namespace Vorn::Workbench
