#include "ProfileWarnings.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "Diagnostic.h"
#include "EventNames.h"
#include "LibraryFacts.h"
#include "ProfileReader.h"
#include "Quoting.h"
#include "Suggestion.h"

#include <linux/input-event-codes.h>

#include <algorithm>

#include <QPair>
#include <QSet>

namespace Vorn::Workbench {

namespace {

using Bus = std::optional<InputEvent::Bus>;

/// Where a member of an object stands; the object itself if it is not there.
JsonValue placeOf(const JsonValue &object, const char *member)
{
    return object.member(QLatin1String(member)).value_or(object);
}

/// The devices that an entry is for. Those on the bus Hostlink are the ones of that name.
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

/// Ranges that have been given to an entry already.
class TakenRanges
{
public:
    void take(const Range &range, int line)
    {
        const Key key = keyOf(range);
        if (!m_lines.contains(key))
            m_lines.insert(key, line);
    }

    /// The line of the entry that takes all of a range; 0 if there is none.
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

/// Finds out which registrations are replaced by later ones of the same kind.
template <typename Key>
class Registrations
{
public:
    /// @param bus of the registration, none for one that is made on every bus of the entry
    /// @return the index of an earlier registration that is without effect from now on; -1 if there
    ///         is none
    int add(const Key &key, const Bus &bus, int index)
    {
        const QPair<Key, int> onBus(key, bus ? static_cast<int>(*bus) : -1);
        // One for a single bus refines one for all, which many products share among devices.
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
    void checkKey(const KeyMapping &key, const JsonValue &place);
    void checkLongPress(const LongPress &longPress, const JsonValue &place);
    void checkChords(const HandlerProfile &handler, const HandlerPlaces &places);
    void checkSwitches(const HandlerProfile &handler, const HandlerPlaces &places);
    void checkSelection();
    void checkRules();
    bool isBusPossible(const Bus &bus, const JsonValue &place);
    Bus filterOf(const Bus &bus) const;
    void collectEvents(const HandlerProfile &handler);
    void warn(const JsonValue &place, const QString &message);

    const Profile &m_profile;
    const ProfilePlaces &m_places;
    Findings *const m_findings;
    TakenRanges m_taken;
    Range m_range; ///< of the device entry that is looked at
    QStringList m_identifiers;
    QSet<QPair<int, int>> m_events; ///< commands with states that are reported
};

void ProfileWarnings::findAll()
{
    for (int i = 0; i < m_profile.devices.size(); ++i)
        checkDevice(m_profile.devices.at(i), m_places.devices.at(i));
    // What is missing elsewhere may be what an error hides.
    if (m_findings->hasErrors())
        return;
    if (m_profile.devices.isEmpty()) {
        warn(placeOf(m_places.root, "devices"),
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
    // With a mistake in it nobody knows which devices the entry is for.
    const auto isWrong = [&places](const char *member, bool isRead) {
        return !isRead && places.device.member(QLatin1String(member));
    };
    const bool isKnown =
        !isWrong("name", device.name.has_value()) && !isWrong("bus", device.bus.has_value());
    if (device.name && device.name->isEmpty()) {
        warn(placeOf(places.device, "name"),
             QStringLiteral("this fits devices without a name only; leave 'name' out to fit all"));
    }
    if (m_range.isEmpty()) {
        warn(placeOf(places.device, "bus"),
             QStringLiteral("no device fits, since the bus Hostlink is that of the device named "
                            "'hostlink' and of no other"));
    } else if (const int line = isKnown ? m_taken.takenBy(m_range) : 0) {
        warn(places.device,
             QStringLiteral("this entry is never used, all its devices fit the one at line %1")
                 .arg(line));
    }
    const JsonValue handlers = placeOf(places.device, "handlers");
    if (!handlers.isArray() || handlers.children().isEmpty()) {
        warn(handlers, QStringLiteral("there are no handlers, so nothing is reported"));
    }
    for (int i = 0; i < device.handlers.size(); ++i)
        checkHandler(device.handlers.at(i), places.handlers.at(i));
    checkIdentifiers(device, places);
    if (isKnown && !m_range.isEmpty())
        m_taken.take(m_range, places.device.line());
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
            const JsonValue &place = places.handlers.at(i).identifiers.at(j);
            if (own.contains(identifier)) {
                warn(place, QStringLiteral("%1 stands here twice").arg(quoted(identifier)));
                continue;
            }
            own.insert(identifier);
            const int keyLine = hasKeys ? keyLines.value(identifier) : 0;
            const int switchLine = hasSwitches ? switchLines.value(identifier) : 0;
            const QString message = QStringLiteral("the %1 under %2 at line %3 are never used, "
                                                   "those of this handler take their place");
            if (keyLine > 0)
                warn(place, message.arg(QStringLiteral("keys"), quoted(identifier)).arg(keyLine));
            if (switchLine > 0)
                warn(place,
                     message.arg(QStringLiteral("switches"), quoted(identifier)).arg(switchLine));
            if (hasKeys)
                keyLines.insert(identifier, place.line());
            if (hasSwitches)
                switchLines.insert(identifier, place.line());
        }
    }
}

void ProfileWarnings::checkHandler(const HandlerProfile &handler, const HandlerPlaces &places)
{
    const auto has = [&places](const char *name) {
        const auto list = places.handler.member(QLatin1String(name));
        return list && !list->children().isEmpty();
    };
    if (!has("keys") && !has("chords") && !has("switches")) {
        warn(places.handler,
             QStringLiteral("there are neither keys nor chords nor switches in this handler"));
    } else if (handler.positionsAtStart && !has("switches")) {
        warn(placeOf(places.handler, "positionsAtStart"),
             QStringLiteral("there are no switches whose positions could be asked for"));
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
        const JsonValue &place = places.keys.at(i);
        checkKey(key, place);
        if (!isBusPossible(key.bus, place))
            continue;
        const int replaced = registrations.add(key.code, filterOf(key.bus), i);
        if (replaced < 0)
            continue;
        QString message = QStringLiteral("%1 has a command at line %2 already; this one wins")
                              .arg(keyName(key.code))
                              .arg(places.keys.at(replaced).line());
        if (handler.keys.at(replaced).longPress && !key.longPress) {
            message += key.bus ? QStringLiteral(", with the long press from there")
                               : QStringLiteral(", and the long press from there is lost");
        }
        warn(placeOf(place, "code"), message);
    }
}

void ProfileWarnings::checkKey(const KeyMapping &key, const JsonValue &place)
{
    if (key.code == KEY_RESERVED) {
        warn(placeOf(place, "code"),
             QStringLiteral("0 is KEY_RESERVED, which no device has a key for"));
    }
    if (key.command == InputEvent::None) {
        warn(placeOf(place, "command"),
             key.longPress ? QStringLiteral("with 'None' nothing but the long press is reported")
                           : QStringLiteral("with 'None' the key is never reported"));
    }
    if (key.longPress)
        checkLongPress(*key.longPress, placeOf(place, "longPress"));
}

void ProfileWarnings::checkLongPress(const LongPress &longPress, const JsonValue &place)
{
    const JsonValue timeouts = placeOf(place, "timeouts");
    for (const JsonValue &timeout : timeouts.children()) {
        if (timeout.isNumber() && timeout.number() >= 0 && timeout.number() < tickMs) {
            warn(timeout,
                 QStringLiteral("timeouts are looked at every %1 ms, shorter ones make no "
                                "difference")
                     .arg(tickMs));
        }
    }
    if (longPress.timeouts.size() > 1 && !longPress.repeat) {
        warn(timeouts,
             QStringLiteral("only the first timeout is reported without \"repeat\": true"));
    }
}

void ProfileWarnings::checkChords(const HandlerProfile &handler, const HandlerPlaces &places)
{
    Registrations<QPair<int, int>> registrations;
    for (int i = 0; i < handler.chords.size(); ++i) {
        const ChordMapping &chord = handler.chords.at(i);
        const JsonValue &place = places.chords.at(i);
        const JsonValue keys = placeOf(place, "keys");
        if (chord.first == chord.second) {
            warn(keys, QStringLiteral("a chord of a key with itself never happens"));
            continue;
        }
        if (chord.first == KEY_RESERVED || chord.second == KEY_RESERVED)
            warn(keys, QStringLiteral("0 is KEY_RESERVED, which no device has a key for"));
        if (chord.command == InputEvent::None) {
            warn(placeOf(place, "command"),
                 QStringLiteral("with 'None' this is no chord, and its second key is reported as "
                                "if it had been pressed alone"));
        }
        if (!isBusPossible(chord.bus, place))
            continue;
        const QPair<int, int> pair(std::min(chord.first, chord.second),
                                   std::max(chord.first, chord.second));
        const int replaced = registrations.add(pair, filterOf(chord.bus), i);
        if (replaced >= 0) {
            warn(keys,
                 QStringLiteral("the chord of %1 and %2 has a command at line %3 already; this one "
                                "wins")
                     .arg(keyName(chord.first), keyName(chord.second))
                     .arg(places.chords.at(replaced).line()));
        }
    }
}

void ProfileWarnings::checkSwitches(const HandlerProfile &handler, const HandlerPlaces &places)
{
    Registrations<int> registrations;
    for (int i = 0; i < handler.switches.size(); ++i) {
        const SwitchMapping &mapping = handler.switches.at(i);
        const JsonValue code = placeOf(places.switches.at(i), "code");
        if (mapping.code == maxSwitchCode && handler.positionsAtStart) {
            warn(code,
                 QStringLiteral("the position of %1 is not asked for at the start, only those of "
                                "codes 0 to 15 are")
                     .arg(switchName(mapping.code)));
        }
        const int replaced = registrations.add(mapping.code, {}, i);
        if (replaced >= 0) {
            warn(code,
                 QStringLiteral("%1 has a command at line %2 already; this one wins")
                     .arg(switchName(mapping.code))
                     .arg(places.switches.at(replaced).line()));
        }
    }
}

/// Warns of a bus that no device of the entry can hang on.
bool ProfileWarnings::isBusPossible(const Bus &bus, const JsonValue &place)
{
    if (!bus || m_range.isEmpty())
        return true;
    const Range range = rangeOf(m_range.name, bus);
    if ((m_range.bus && m_range.bus != bus) || range.isEmpty()) {
        warn(placeOf(place, "bus"),
             QStringLiteral("this is never registered, since no device of this entry is on %1")
                 .arg(busName(*bus)));
        return false;
    }
    const int line = m_taken.takenBy(range);
    // An entry without any device is told of as a whole.
    if (line > 0 && m_taken.takenBy(m_range) == 0) {
        warn(placeOf(place, "bus"),
             QStringLiteral("this is never registered, since the devices on %1 fit the entry at "
                            "line %2")
                 .arg(busName(*bus))
                 .arg(line));
        return false;
    }
    return true;
}

/// The bus of a registration, if it is not that of all devices of the entry anyway.
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
        // Registered for one bus, a key keeps the long press of an earlier registration.
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
        warn(placeOf(m_places.root, "initial"),
             QStringLiteral("the empty identifier is selected at first, and no handler has it; "
                            "name one in 'initial'"));
    } else {
        warn(placeOf(m_places.root, "initial"),
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
        const JsonValue &place = m_places.select.at(i);
        const QPair<int, int> event(rule.command, rule.state);
        if (!m_events.contains(event)) {
            warn(place,
                 QStringLiteral("nothing reports %1 with the state %2, so this never happens")
                     .arg(commandName(rule.command), stateName(rule.state)));
        }
        if (const int line = lines.value(event)) {
            warn(place,
                 QStringLiteral("this rule is never used, the one at line %1 comes first")
                     .arg(line));
        } else {
            lines.insert(event, place.line());
        }
        if (!identifiers.isEmpty() && !identifiers.contains(rule.identifier)) {
            warn(placeOf(place, "identifier"),
                 QStringLiteral("no handler has the identifier %1%2")
                     .arg(quoted(rule.identifier), suggestion(rule.identifier, m_identifiers)));
        }
    }
}

void ProfileWarnings::warn(const JsonValue &place, const QString &message)
{
    m_findings->warning(place.offset(), message);
}

} // namespace

void findProfileWarnings(const Profile &profile, const ProfilePlaces &places, Findings *findings)
{
    ProfileWarnings(profile, places, findings).findAll();
}

} // namespace Vorn::Workbench
