#include "TextBlanking.h"

#include "CommandNames.h"
#include "EventNames.h"
#include "RecordedDevice.h"
#include "Session.h"

#include <QRegularExpression>

#include <linux/input.h>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

constexpr int released = 0;
constexpr int pressed = 1;

// Remarks are prose for people, and may name keys and commands.
QString withoutTyping(const QString &text)
{
    static const QRegularExpression word(QStringLiteral("\\b[A-Za-z0-9_]+\\b"));
    QString result;
    QString::size_type end = 0;
    for (auto it = word.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        QString found = match.captured();
        const auto code = found.startsWith(QLatin1String("KEY_")) ? keyCode(found) : std::nullopt;
        const auto meant = command(found);
        if (code && isTypingKey(*code))
            found = keyName(KEY_A);
        else if (meant && isCharacter(*meant))
            found = commandName(InputEvent::CharA);
        result += text.mid(end, match.capturedStart() - end) + found;
        end = match.capturedEnd();
    }
    return result + text.mid(end);
}

} // namespace

void TextBlanking::describe(const QString &device, const RecordedDevice &description)
{
    m_devices[device].description = description;
}

std::optional<SessionEntry> TextBlanking::blanked(const SessionEntry &entry)
{
    SessionEntry result = entry;
    if (const auto *change = std::get_if<DeviceChange>(&entry.what)) {
        // Kept when it goes: its last events may still be on their way.
        if (change->added)
            m_devices[change->device] = Device{change->name, change->bus, {}, {}, {}};
    } else if (const auto *selected = std::get_if<IdentifierSelected>(&entry.what)) {
        m_identifier = selected->identifier;
    } else if (const auto *record = std::get_if<RecordRead>(&entry.what)) {
        const auto kept = blanked(*record);
        if (!kept)
            return std::nullopt;
        result.what = *kept;
    } else if (auto *outcome = std::get_if<RecordOutcome>(&result.what)) {
        // Its record was left out, see above.
        if (outcome->type == EV_MSC && canType(m_devices[outcome->device]))
            return std::nullopt;
        if (outcome->type == EV_KEY)
            outcome->code = standInOf(outcome->device, outcome->code).code;
        for (QString &event : outcome->events)
            event = withoutTyping(event);
        outcome->reason = withoutTyping(outcome->reason);
    } else if (auto *states = std::get_if<KeyStates>(&result.what)) {
        for (KeyState &key : states->keys)
            key.code = standInOf(states->device, key.code).code;
    } else if (auto *step = std::get_if<DetectorStep>(&result.what)) {
        for (int &key : step->keys)
            key = standInOf(step->device, key).code;
    } else if (const auto *event = std::get_if<EventPublished>(&entry.what)) {
        result.what = blanked(*event);
    } else if (auto *remark = std::get_if<Remark>(&result.what)) {
        remark->text = withoutTyping(remark->text);
    } else if (auto *expectation = std::get_if<ExpectationChecked>(&result.what)) {
        expectation->text = withoutTyping(expectation->text);
        expectation->found = withoutTyping(expectation->found);
    }
    return result;
}

std::optional<RecordRead> TextBlanking::blanked(RecordRead record)
{
    Device &device = m_devices[record.device];
    // Scan codes give the key away just as well.
    if (record.type == EV_MSC && canType(device))
        return std::nullopt;
    if (record.type != EV_KEY)
        return record;

    const int code = record.code;
    if (record.value == pressed) {
        device.down.remove(code);
        const StandIn standIn = chooseStandIn(device, code);
        device.standIns.insert(code, standIn);
        device.down.insert(code, standIn.code);
    }
    record.code = standInOf(record.device, code).code;
    if (record.value == released)
        device.down.remove(code);
    return record;
}

EventPublished TextBlanking::blanked(EventPublished event) const
{
    std::optional<InputEvent::Command> command;
    if (event.type != EV_SW) {
        for (int &code : event.codes) {
            const StandIn standIn = standInOf(event.device, code);
            code = standIn.code;
            if (!command && standIn.isBlanked)
                command = standIn.command;
        }
    }
    const InputEvent::Command instead = command.value_or(InputEvent::CharA);
    if (isCharacter(event.command))
        event.command = isCharacter(instead) ? instead : InputEvent::CharA;
    return event;
}

QVector<int> TextBlanking::keysThatDoNotType(const QString &device, const QVector<int> &codes) const
{
    QVector<int> result;
    const Device known = m_devices.value(device);
    std::copy_if(codes.cbegin(), codes.cend(), std::back_inserter(result),
                 [&](int code) { return !types(known, code); });
    return result;
}

// Of several handlers under one identifier the last to be registered receives the records.
const HandlerProfile *TextBlanking::handlerOf(const Device &device) const
{
    if (!m_profile)
        return nullptr;
    const DeviceProfile *profile = m_profile->deviceFor(device.name, device.bus);
    if (!profile)
        return nullptr;
    const QString identifier = m_identifier.value_or(m_profile->initial);
    const HandlerProfile *found = nullptr;
    for (const HandlerProfile &handler : profile->handlers) {
        if (handler.identifiers.contains(identifier)
            && (!handler.keys.isEmpty() || !handler.chords.isEmpty()))
            found = &handler;
    }
    return found;
}

std::optional<InputEvent::Command> TextBlanking::commandOf(const HandlerProfile *handler,
                                                           const Device &device, int code)
{
    std::optional<InputEvent::Command> command;
    if (!handler)
        return command;
    for (const KeyMapping &key : handler->keys) {
        if (key.code == code && key.bus.value_or(device.bus) == device.bus)
            command = key.command;
    }
    return command;
}

bool TextBlanking::types(const Device &device, int code) const
{
    const auto command = commandOf(handlerOf(device), device, code);
    return command ? isCharacter(*command) : isTypingKey(code);
}

bool TextBlanking::canType(const Device &device) const
{
    const QVector<int> codes = device.description.codesOf(EV_KEY);
    return codes.isEmpty() || std::any_of(codes.cbegin(), codes.cend(), [&](int code) {
               return isTypingKey(code) || types(device, code);
           });
}

// Keys mapped to characters; if there are none, typing keys that are not mapped at all.
QVector<int> TextBlanking::standInCodes(const Device &device) const
{
    const HandlerProfile *handler = handlerOf(device);
    QVector<int> characters;
    QVector<int> unmapped;
    for (int code = 0; code <= maxKeyCode; ++code) {
        const auto command = commandOf(handler, device, code);
        if (command && isCharacter(*command))
            characters += code;
        else if (!command && isTypingKey(code))
            unmapped += code;
    }
    QVector<int> codes = characters.isEmpty() ? unmapped : characters;
    const auto isMissing = [&device](int code) { return !device.description.has(EV_KEY, code); };
    if (!std::all_of(codes.cbegin(), codes.cend(), isMissing))
        codes.erase(std::remove_if(codes.begin(), codes.end(), isMissing), codes.end());
    std::stable_partition(codes.begin(), codes.end(), [](int code) { return code == KEY_A; });
    return codes;
}

TextBlanking::StandIn TextBlanking::chooseStandIn(const Device &device, int code) const
{
    if (!types(device, code))
        return StandIn{code, std::nullopt, false};
    const QVector<int> codes = standInCodes(device);
    const QList<int> down = device.down.values();
    const QVector<int>::const_iterator free = std::find_if(
        codes.cbegin(), codes.cend(), [&down](int candidate) { return !down.contains(candidate); });
    const int chosen = free != codes.cend() ? *free : codes.value(0, KEY_A);
    return StandIn{chosen, commandOf(handlerOf(device), device, chosen), true};
}

TextBlanking::StandIn TextBlanking::standInOf(const QString &path, int code) const
{
    const Device device = m_devices.value(path);
    const auto known = device.standIns.constFind(code);
    return known != device.standIns.cend() ? *known : chooseStandIn(device, code);
}

} // namespace Vorn::Workbench
