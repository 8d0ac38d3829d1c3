#include "ProfileWarnings.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "Diagnostic.h"
#include "EventNames.h"
#include "LibraryFacts.h"
#include "Quoting.h"
#include "Suggestion.h"

#include <QHash>
#include <QPair>
#include <QSet>

#include <linux/input-event-codes.h>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

using Bus = std::optional<InputEvent::Bus>;

/// The devices that an entry matches. Those on the bus Hostlink are those with its name.
struct Range
{
    std::optional<QString> name;
    Bus bus;

    bool isEmpty() const
    {
        return name && bus
            && (*name == QLatin1String(hostlinkName)) != (*bus == InputEvent::Bus::Hostlink);
    }
};

Range rangeOf(std::optional<QString> name, Bus bus)
{
    if (!bus && name == QLatin1String(hostlinkName))
        bus = InputEvent::Bus::Hostlink;
    if (!name && bus == InputEvent::Bus::Hostlink)
        name = QLatin1String(hostlinkName);
    return {name, bus};
}

/// Ranges that earlier entries match.
class TakenRanges
{
public:
    void take(const Range &range, int line)
    {
        const Key key = keyOf(range);
        if (!m_lines.contains(key))
            m_lines.insert(key, line);
    }

    /// The line of the earlier entry that matches all of a range; 0 if there is none.
    int takenBy(const Range &range) const
    {
        for (const Range &wider : {range, Range{range.name, {}}, Range{{}, range.bus}, Range{}}) {
            if (const int line = m_lines.value(keyOf(wider)))
                return line;
        }
        return 0;
    }

private:
    using Key = QPair<QString, int>;
    static Key keyOf(const Range &range)
    {
        // A name is never mistaken for "any".
        const QString name = range.name ? QLatin1Char('=') + *range.name : QString();
        return {name, range.bus ? static_cast<int>(*range.bus) : -1};
    }

    QHash<Key, int> m_lines;
};

/// Finds the registrations that a later one of the same kind replaces.
template <typename Key>
class Registrations
{
public:
    /// @param bus of the registration; none for one on every bus of the entry
    /// @return the index of an earlier registration that has no effect any more; -1 if there is
    /// none
    int add(const Key &key, const Bus &bus, int index)
    {
        const QPair<Key, int> onBus(key, bus ? static_cast<int>(*bus) : -1);
        // One for a single bus refines a general one, which products share among their devices.
        const int replaced = bus ? m_onBus.value(onBus, -1) : m_last.value(key, -1);
        m_onBus.insert(onBus, index);
        m_last.insert(key, index);
        return replaced;
    }

private:
    QHash<Key, int> m_last;
    QHash<QPair<Key, int>, int> m_onBus;
};

class ProfileWarnings
{
public:
    ProfileWarnings(const Profile &profile, const ProfilePlaces &places, Findings *findings)
        : m_profile(profile)
        , m_places(places)
        , m_findings(findings)
    { }

    void findAll();

private:
    void checkDevice(const DeviceProfile &device, const DevicePlaces &places);
    void checkIdentifiers(const DeviceProfile &device, const DevicePlaces &places);
    void checkHandler(const HandlerProfile &handler, const HandlerPlaces &places);
    void checkKeys(const HandlerProfile &handler, const HandlerPlaces &places);
    void checkKey(const KeyMapping &key, const EntryPlace &place);
    void checkLongPress(const LongPress &longPress, const TomlValue &timeouts);
    void checkChords(const HandlerProfile &handler, const HandlerPlaces &places);
    void checkSwitches(const HandlerProfile &handler, const HandlerPlaces &places);
    void checkSelection();
    void checkRules();
    bool isBusPossible(const Bus &bus, const EntryPlace &place);
    Bus filterOf(const Bus &bus) const;
    void collectEvents(const HandlerProfile &handler);
    void warn(const TextPosition &position, const QString &message);

    const Profile &m_profile;
    const ProfilePlaces &m_places;
    Findings *const m_findings;
    TakenRanges m_taken;
    Range m_range; ///< of the device entry being checked
    QStringList m_identifiers;
    QSet<QPair<int, int>> m_events; ///< commands with the states they are reported with
};

void ProfileWarnings::findAll()
{
    for (int i = 0; i < m_profile.devices.size(); ++i)
        checkDevice(m_profile.devices.at(i), m_places.devices.at(i));
    // An error may hide what seems to be missing.
    if (m_findings->hasErrors())
        return;
    if (m_profile.devices.isEmpty()) {
        warn(m_places.root->positionOf("device"),
             QStringLiteral("there are no devices, so nothing is ever reported"));
        return;
    }
    m_identifiers.removeDuplicates();
    checkSelection();
    checkRules();
}

void ProfileWarnings::checkDevice(const DeviceProfile &device, const DevicePlaces &places)
{
    m_range = rangeOf(device.name, device.bus);
    // With a mistake in its name or bus, nobody knows which devices the entry matches.
    const auto isWrong = [&places](const char *member, bool isRead) {
        return !isRead && places.device->member(QLatin1String(member));
    };
    const bool isKnown =
        !isWrong("name", device.name.has_value()) && !isWrong("bus", device.bus.has_value());
    if (device.name && device.name->isEmpty()) {
        warn(places.device->positionOf("name"),
             QStringLiteral("this matches only devices without a name; omit 'name' to match all"));
    }
    if (m_range.isEmpty()) {
        warn(places.device->positionOf("bus"),
             QStringLiteral("no device matches: only the device named 'hostlink' is on the bus "
                            "Hostlink"));
    } else if (const int line = isKnown ? m_taken.takenBy(m_range) : 0) {
        warn(places.device->position,
             QStringLiteral("this entry is never used: the one in line %1 matches all its devices")
                 .arg(line));
    }
    const TomlValue *handlers = places.device->member(QStringLiteral("handler"));
    if (!handlers || (handlers->isList() && handlers->children.empty())) {
        warn(places.device->positionOf("handler"),
             QStringLiteral("there are no handlers, so nothing is reported"));
    }
    for (int i = 0; i < device.handlers.size(); ++i)
        checkHandler(device.handlers.at(i), places.handlers.at(i));
    checkIdentifiers(device, places);
    if (isKnown && !m_range.isEmpty())
        m_taken.take(m_range, places.device->position.line);
}

void ProfileWarnings::checkIdentifiers(const DeviceProfile &device, const DevicePlaces &places)
{
    QHash<QString, int> keyLines;
    QHash<QString, int> switchLines;
    for (int i = 0; i < device.handlers.size(); ++i) {
        const HandlerProfile &handler = device.handlers.at(i);
        const bool hasKeys = !handler.keys.isEmpty() || !handler.chords.isEmpty();
        const bool hasSwitches = !handler.switches.isEmpty();
        QSet<QString> own;
        for (int j = 0; j < handler.identifiers.size(); ++j) {
            const QString &identifier = handler.identifiers.at(j);
            const TextPosition &place = places.handlers.at(i).identifiers.at(j);
            if (own.contains(identifier)) {
                warn(place, QStringLiteral("%1 is listed twice").arg(quoted(identifier)));
                continue;
            }
            own.insert(identifier);
            const int keyLine = hasKeys ? keyLines.value(identifier) : 0;
            const int switchLine = hasSwitches ? switchLines.value(identifier) : 0;
            const auto warnOf = [&](const char *group, int line) {
                if (line > 0)
                    warn(place,
                         QStringLiteral("the %1 under %2 in line %3 are never used: those of this "
                                        "handler replace them")
                             .arg(QLatin1String(group), quoted(identifier), QString::number(line)));
            };
            warnOf("keys", keyLine);
            warnOf("switches", switchLine);
            if (hasKeys)
                keyLines.insert(identifier, place.line);
            if (hasSwitches)
                switchLines.insert(identifier, place.line);
        }
    }
}

void ProfileWarnings::checkHandler(const HandlerProfile &handler, const HandlerPlaces &places)
{
    const auto has = [&places](const char *name) {
        const TomlValue *group = places.handler->member(QLatin1String(name));
        return group && !group->children.empty();
    };
    if (!has("keys") && !has("chords") && !has("switches")) {
        warn(places.handler->position,
             QStringLiteral("this handler has no keys, chords or switches"));
    } else if (handler.positionsAtStart && !has("switches")) {
        warn(places.handler->positionOf("positions-at-start"),
             QStringLiteral("there are no switches whose positions could be reported"));
    }
    checkKeys(handler, places);
    checkChords(handler, places);
    checkSwitches(handler, places);
    m_identifiers += handler.identifiers;
    collectEvents(handler);
}

void ProfileWarnings::checkKeys(const HandlerProfile &handler, const HandlerPlaces &places)
{
    Registrations<int> registrations;
    for (int i = 0; i < handler.keys.size(); ++i) {
        const KeyMapping &key = handler.keys.at(i);
        const EntryPlace &place = places.keys.at(i);
        checkKey(key, place);
        if (!isBusPossible(key.bus, place))
            continue;
        const int replaced = registrations.add(key.code, filterOf(key.bus), i);
        if (replaced < 0)
            continue;
        QString message = QStringLiteral("%1 already has a command, in line %2; this one wins")
                              .arg(keyName(key.code))
                              .arg(places.keys.at(replaced).code.line);
        if (handler.keys.at(replaced).longPress && !key.longPress) {
            message += key.bus ? QStringLiteral(", with the long press from there")
                               : QStringLiteral(", and the long press from there is lost");
        }
        warn(place.code, message);
    }
}

void ProfileWarnings::checkKey(const KeyMapping &key, const EntryPlace &place)
{
    if (key.code == KEY_RESERVED) {
        warn(place.code, QStringLiteral("0 is KEY_RESERVED, which no device has"));
    }
    if (key.command == InputEvent::None) {
        warn(place.value->positionOf("command"),
             key.longPress ? QStringLiteral("with 'None' only the long press is reported")
                           : QStringLiteral("with 'None' the key is never reported"));
    }
    if (key.longPress)
        checkLongPress(*key.longPress, *place.value->member(QStringLiteral("long-press")));
}

void ProfileWarnings::checkLongPress(const LongPress &longPress, const TomlValue &timeouts)
{
    const auto check = [this](const TomlValue &timeout) {
        if (timeout.isInteger() && timeout.integer >= 0 && timeout.integer < tickMs) {
            warn(timeout.position,
                 QStringLiteral("timeouts are checked every %1 ms; shorter ones make no difference")
                     .arg(tickMs));
        }
    };
    if (timeouts.isList())
        std::for_each(timeouts.children.begin(), timeouts.children.end(), check);
    else
        check(timeouts);
    if (longPress.timeouts.size() > 1 && !longPress.repeat) {
        warn(timeouts.position,
             QStringLiteral("only the first timeout is used without 'repeat = true'"));
    }
}

void ProfileWarnings::checkChords(const HandlerProfile &handler, const HandlerPlaces &places)
{
    Registrations<QPair<int, int>> registrations;
    for (int i = 0; i < handler.chords.size(); ++i) {
        const ChordMapping &chord = handler.chords.at(i);
        const EntryPlace &place = places.chords.at(i);
        if (chord.first == chord.second) {
            warn(place.code, QStringLiteral("a chord of a key with itself never happens"));
            continue;
        }
        if (chord.first == KEY_RESERVED || chord.second == KEY_RESERVED)
            warn(place.code, QStringLiteral("0 is KEY_RESERVED, which no device has"));
        if (chord.command == InputEvent::None) {
            warn(place.value->positionOf("command"),
                 QStringLiteral("with 'None' this is not a chord: its second key is reported as if "
                                "it had been pressed alone"));
        }
        if (!isBusPossible(chord.bus, place))
            continue;
        const QPair<int, int> pair(std::min(chord.first, chord.second),
                                   std::max(chord.first, chord.second));
        const int replaced = registrations.add(pair, filterOf(chord.bus), i);
        if (replaced >= 0) {
            warn(
                place.code,
                QStringLiteral("the chord of %1 and %2 already has a command, in line %3; this one "
                               "wins")
                    .arg(keyName(chord.first), keyName(chord.second))
                    .arg(places.chords.at(replaced).code.line));
        }
    }
}

void ProfileWarnings::checkSwitches(const HandlerProfile &handler, const HandlerPlaces &places)
{
    Registrations<int> registrations;
    for (int i = 0; i < handler.switches.size(); ++i) {
        const SwitchMapping &mapping = handler.switches.at(i);
        const TextPosition &code = places.switches.at(i).code;
        if (mapping.code >= positionCodes && handler.positionsAtStart) {
            warn(code,
                 QStringLiteral("the position of %1 is not reported at the start, only those of "
                                "codes 0 to %2 are")
                     .arg(switchName(mapping.code))
                     .arg(positionCodes - 1));
        }
        const int replaced = registrations.add(mapping.code, {}, i);
        if (replaced >= 0) {
            warn(code,
                 QStringLiteral("%1 already has a command, in line %2; this one wins")
                     .arg(switchName(mapping.code))
                     .arg(places.switches.at(replaced).code.line));
        }
    }
}

/// Warns of a bus that no device of the entry can be attached to.
bool ProfileWarnings::isBusPossible(const Bus &bus, const EntryPlace &place)
{
    if (!bus || m_range.isEmpty())
        return true;
    const Range range = rangeOf(m_range.name, bus);
    if ((m_range.bus && m_range.bus != bus) || range.isEmpty()) {
        warn(place.value->positionOf("bus"),
             QStringLiteral("this is never registered: no device of this entry is on %1")
                 .arg(busName(*bus)));
        return false;
    }
    const int line = m_taken.takenBy(range);
    // For an entry without any device there is one warning for the whole.
    if (line > 0 && m_taken.takenBy(m_range) == 0) {
        warn(place.value->positionOf("bus"),
             QStringLiteral("this is never registered: the entry in line %2 matches the devices on "
                            "%1")
                 .arg(busName(*bus))
                 .arg(line));
        return false;
    }
    return true;
}

/// The bus of a registration, unless all devices of the entry are on it anyway.
Bus ProfileWarnings::filterOf(const Bus &bus) const
{
    return bus == m_range.bus ? Bus() : bus;
}

void ProfileWarnings::collectEvents(const HandlerProfile &handler)
{
    QSet<int> longPressed;
    for (const KeyMapping &key : handler.keys) {
        if (key.longPress)
            longPressed.insert(key.code);
    }
    for (const KeyMapping &key : handler.keys) {
        if (key.command != InputEvent::None) {
            m_events.insert({key.command, InputEvent::KeyPressed});
            m_events.insert({key.command, InputEvent::KeyReleased});
        }
        // A key registered for one bus keeps the long press of an earlier registration.
        if (longPressed.contains(key.code))
            m_events.insert({key.command, InputEvent::KeyLongPress});
    }
    for (const ChordMapping &chord : handler.chords) {
        if (chord.command == InputEvent::None)
            continue;
        m_events.insert({chord.command, InputEvent::KeyPressed});
        m_events.insert({chord.command, InputEvent::KeyReleased});
    }
    for (const SwitchMapping &mapping : handler.switches) {
        m_events.insert({mapping.command, InputEvent::SwitchEnabled});
        m_events.insert({mapping.command, InputEvent::SwitchDisabled});
    }
}

void ProfileWarnings::checkSelection()
{
    if (m_identifiers.isEmpty() || m_identifiers.contains(m_profile.initial))
        return;
    if (m_profile.initial.isEmpty()) {
        warn(m_places.root->positionOf("initial"),
             QStringLiteral("the empty identifier is selected at the start, and no handler has it; "
                            "name one in 'initial'"));
    } else {
        warn(m_places.root->positionOf("initial"),
             QStringLiteral("no handler has the identifier %1%2")
                 .arg(quoted(m_profile.initial), suggestion(m_profile.initial, m_identifiers)));
    }
}

void ProfileWarnings::checkRules()
{
    const QSet<QString> identifiers(m_identifiers.begin(), m_identifiers.end());
    QHash<QPair<int, int>, int> lines;
    for (int i = 0; i < m_profile.select.size(); ++i) {
        const SelectRule &rule = m_profile.select.at(i);
        const TomlValue &place = *m_places.select.at(i);
        const QPair<int, int> event(rule.command, rule.state);
        if (!m_events.contains(event)) {
            warn(place.position,
                 QStringLiteral("nothing reports %1 with the state %2, so this never happens")
                     .arg(commandName(rule.command), stateName(rule.state)));
        }
        if (const int line = lines.value(event)) {
            warn(place.position,
                 QStringLiteral("this rule is never used: the one in line %1 comes first")
                     .arg(line));
        } else {
            lines.insert(event, place.position.line);
        }
        if (!identifiers.isEmpty() && !identifiers.contains(rule.identifier)) {
            warn(place.positionOf("identifier"),
                 QStringLiteral("no handler has the identifier %1%2")
                     .arg(quoted(rule.identifier), suggestion(rule.identifier, m_identifiers)));
        }
    }
}

void ProfileWarnings::warn(const TextPosition &position, const QString &message)
{
    m_findings->warning(position, message);
}

} // namespace

void findProfileWarnings(const Profile &profile, const ProfilePlaces &places, Findings *findings)
{
    ProfileWarnings(profile, places, findings).findAll();
}

} // namespace Vorn::Workbench
