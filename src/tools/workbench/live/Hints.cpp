#include "Hints.h"

#include "CommandNames.h"
#include "EventNames.h"
#include "Session.h"
#include "UsualCommands.h"

#include <linux/input.h>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

QString inputEvent(std::optional<InputEvent::Command> command)
{
    return QStringLiteral("InputEvent::")
        + (command ? commandName(*command) : QStringLiteral("\u2026"));
}

/// Whether @p isThere for one of the handlers under @p identifier.
template <typename Predicate>
bool anyHandler(const DeviceProfile *mapping, const QString &identifier, Predicate isThere)
{
    return mapping
        && std::any_of(mapping->handlers.begin(), mapping->handlers.end(),
                       [&](const HandlerProfile &handler) {
                           return handler.identifiers.contains(identifier) && isThere(handler);
                       });
}

bool hasKey(const DeviceProfile *mapping, const QString &identifier, int code)
{
    return anyHandler(mapping, identifier, [code](const HandlerProfile &handler) {
        const auto isCode = [code](const KeyMapping &key) { return key.code == code; };
        const auto isPart = [code](const ChordMapping &chord) {
            return chord.first == code || chord.second == code;
        };
        return std::any_of(handler.keys.begin(), handler.keys.end(), isCode)
            || std::any_of(handler.chords.begin(), handler.chords.end(), isPart);
    });
}

bool hasSwitch(const DeviceProfile *mapping, const QString &identifier, int code)
{
    return anyHandler(mapping, identifier, [code](const HandlerProfile &handler) {
        return std::any_of(handler.switches.begin(), handler.switches.end(),
                           [code](const SwitchMapping &each) { return each.code == code; });
    });
}

QString keyId(const QString &device, int code)
{
    return device + QLatin1Char(':') + QString::number(code);
}

} // namespace

bool isUsuallyImmediate(InputEvent::Command command)
{
    switch (command) {
    case InputEvent::CursorLeft:
    case InputEvent::CursorRight:
    case InputEvent::CursorUp:
    case InputEvent::CursorDown:
    case InputEvent::CursorPageUp:
    case InputEvent::CursorPageDown:
    case InputEvent::VolumeUp:
    case InputEvent::VolumeDown:
    case InputEvent::PlaySpeedUp:
    case InputEvent::PlaySpeedDown:
    case InputEvent::PushToTalk:
    case InputEvent::Backspace:
    case InputEvent::Delete:
        return true;
    default:
        return isCharacter(command);
    }
}

QString keyRegistration(int code)
{
    const auto command = usualKeyCommand(code);
    return QStringLiteral("keys->registerKey(%1, %2, %3);")
        .arg(keyName(code), inputEvent(command),
             QLatin1String(command && isUsuallyImmediate(*command) ? "true" : "false"));
}

QString longPressRegistration(int code)
{
    return QStringLiteral("keys->enableLongPress(%1, false, {%2});")
        .arg(keyName(code))
        .arg(usualLongPressMs);
}

QString chordRegistration(int first, int second)
{
    return QStringLiteral("keys->registerDoubleKey(%1, %2, %3);")
        .arg(keyName(first), keyName(second), inputEvent(std::nullopt));
}

QString switchRegistration(int code)
{
    return QStringLiteral("switches->registerSwitch(%1, %2);")
        .arg(switchName(code), inputEvent(usualSwitchCommand(code)));
}

/// The text the first time, and an empty one from then on.
QString Hints::once(const QString &place, const QString &text)
{
    const QString key = place + text;
    if (m_shown.contains(key))
        return {};
    m_shown.insert(key);
    return text;
}

std::optional<Hints::Hint> Hints::hintFor(const QString &device, const QString &registration) const
{
    if (registration.isEmpty())
        return std::nullopt;
    // Two devices may have one name.
    const QString node = device.section(QLatin1Char('/'), -1);
    const QString name = m_devices.value(device).name;
    return Hint{name.isEmpty() ? node : QStringLiteral("%1 (%2)").arg(name, node), registration};
}

std::optional<Hints::Hint> Hints::add(const SessionEntry &entry, const Profile *profile,
                                      const QString &identifier)
{
    if (const auto *change = std::get_if<DeviceChange>(&entry.what)) {
        if (change->added)
            m_devices.insert(change->device, Device{change->name, change->bus});
        else
            m_devices.remove(change->device);
    } else if (const auto *record = std::get_if<RecordRead>(&entry.what)) {
        const Device device = m_devices.value(record->device);
        const DeviceProfile *mapping =
            profile ? profile->deviceFor(device.name, device.bus) : nullptr;
        return hintFor(record->device, ofRecord(*record, mapping, identifier));
    } else if (const auto *step = std::get_if<DetectorStep>(&entry.what)) {
        return hintFor(step->device, ofChord(*step, profile));
    }
    return std::nullopt;
}

QString Hints::ofChord(const DetectorStep &step, const Profile *profile)
{
    if (step.what != DetectorStep::What::ChordFound || step.keys.size() != 2)
        return {};
    // Holding a chord is not meant as a long press of its keys.
    for (const int code : step.keys)
        m_pressed.remove(keyId(step.device, code));
    // A profile has its chords; other keys that happen to be down together are not worth a line.
    return profile ? QString()
                   : once(step.device, chordRegistration(step.keys.first(), step.keys.last()));
}

QString Hints::ofRecord(const RecordRead &record, const DeviceProfile *mapping,
                        const QString &identifier)
{
    const QString place = record.device + QLatin1Char('/') + identifier;
    if (record.type == EV_SW) {
        return hasSwitch(mapping, identifier, record.code)
            ? QString()
            : once(place, switchRegistration(record.code));
    }
    if (record.type != EV_KEY || hasKey(mapping, identifier, record.code))
        return {};
    const QString key = keyId(record.device, record.code);
    if (record.value == 1) {
        m_pressed.insert(key, record.stamp);
        return once(place, keyRegistration(record.code));
    }
    if (record.value == 0 && m_pressed.contains(key)
        && record.stamp - m_pressed.take(key) >= longPressHoldUs)
    {
        return once(place, longPressRegistration(record.code));
    }
    return {};
}

} // namespace Vorn::Workbench
