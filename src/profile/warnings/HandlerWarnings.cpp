#include "HandlerWarnings.h"

#include "BusNames.h"
#include "EventNames.h"
#include "LibraryFacts.h"

#include <linux/input-event-codes.h>

#include <algorithm>
#include <limits>

namespace Vorn {

namespace {

using Bus = std::optional<InputEvent::Bus>;

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

class HandlerWarnings
{
public:
    HandlerWarnings(const HandlerProfile &handler, const HandlerPlaces &places,
                    const DeviceRange &range, const TakenRanges &taken, Findings *findings)
        : m_handler(handler)
        , m_places(places)
        , m_range(range)
        , m_taken(taken)
        , m_findings(findings)
    { }

    void findAll();

private:
    void checkKeys();
    void checkKey(const KeyMapping &key, const EntryPlace &place);
    void checkLongPress(const LongPress &longPress, const TomlValue &timeouts);
    void checkTimeout(const TomlValue &timeout);
    void checkChords();
    void checkSwitches();
    bool isInChord(int code) const;
    bool isBusPossible(const Bus &bus, const EntryPlace &place);
    Bus filterOf(const Bus &bus) const;
    void warn(const TextPosition &position, const QString &message)
    {
        m_findings->warning(position, message);
    }

    const HandlerProfile &m_handler;
    const HandlerPlaces &m_places;
    const DeviceRange m_range;
    const TakenRanges &m_taken;
    Findings *const m_findings;
};

void HandlerWarnings::findAll()
{
    const auto has = [this](const char *name) {
        const TomlValue *group = m_places.handler->member(QLatin1String(name));
        return group && !group->children.empty();
    };
    if (!has("keys") && !has("chords") && !has("switches")) {
        warn(m_places.handler->position,
             QStringLiteral("this handler has no keys, chords or switches"));
    } else if (m_handler.positionsAtStart && !has("switches")) {
        warn(m_places.handler->positionOf("positions-at-start"),
             QStringLiteral("there are no switches whose positions could be reported"));
    }
    checkKeys();
    checkChords();
    checkSwitches();
}

void HandlerWarnings::checkKeys()
{
    Registrations<int> registrations;
    for (int i = 0; i < m_handler.keys.size(); ++i) {
        const KeyMapping &key = m_handler.keys.at(i);
        const EntryPlace &place = m_places.keys.at(i);
        checkKey(key, place);
        if (!isBusPossible(key.bus, place))
            continue;
        const int replaced = registrations.add(key.code, filterOf(key.bus), i);
        if (replaced < 0)
            continue;
        QString message = QStringLiteral("%1 already has a command, in line %2; this one wins")
                              .arg(keyName(key.code))
                              .arg(m_places.keys.at(replaced).code.line);
        if (m_handler.keys.at(replaced).longPress && !key.longPress) {
            message += key.bus ? QStringLiteral(", with the long press from there")
                               : QStringLiteral(", and the long press from there is lost");
        }
        warn(place.code, message);
    }
}

void HandlerWarnings::checkKey(const KeyMapping &key, const EntryPlace &place)
{
    if (key.code == KEY_RESERVED) {
        warn(place.code, QStringLiteral("0 is KEY_RESERVED, which no device has"));
    }
    // A key of a chord may be silent on its own, and this is how to say so.
    if (key.command == InputEvent::None && !isInChord(key.code)) {
        warn(place.value->positionOf("command"),
             key.longPress ? QStringLiteral("with 'None' only the long press is reported")
                           : QStringLiteral("with 'None' the key is never reported"));
    }
    if (key.longPress)
        checkLongPress(*key.longPress, *place.value->member(QStringLiteral("long-press")));
}

void HandlerWarnings::checkLongPress(const LongPress &longPress, const TomlValue &timeouts)
{
    const auto check = [this](const TomlValue &timeout) { checkTimeout(timeout); };
    if (timeouts.isList())
        std::for_each(timeouts.children.begin(), timeouts.children.end(), check);
    else
        check(timeouts);
    if (longPress.timeouts.size() > 1 && !longPress.repeat) {
        warn(timeouts.position,
             QStringLiteral("only the first timeout is used without 'repeat = true'"));
    }
}

void HandlerWarnings::checkTimeout(const TomlValue &timeout)
{
    constexpr int largest = std::numeric_limits<int>::max() - tickMs;
    if (!timeout.isInteger() || timeout.integer < 0 || timeout.integer > largest)
        return;
    const qint64 before = timeout.integer - timeout.integer % tickMs;
    if (before == 0) {
        warn(timeout.position,
             QStringLiteral("timeouts are checked every %1 ms; shorter ones make no difference")
                 .arg(tickMs));
    } else if (before != timeout.integer) {
        warn(
            timeout.position,
            QStringLiteral("timeouts are checked every %1 ms, so this one is noticed later, at the "
                           "next check; write %2 or %3")
                .arg(tickMs)
                .arg(before)
                .arg(before + tickMs));
    }
}

bool HandlerWarnings::isInChord(int code) const
{
    return std::any_of(
        m_handler.chords.begin(), m_handler.chords.end(),
        [code](const ChordMapping &chord) { return chord.first == code || chord.second == code; });
}

void HandlerWarnings::checkChords()
{
    Registrations<QPair<int, int>> registrations;
    for (int i = 0; i < m_handler.chords.size(); ++i) {
        const ChordMapping &chord = m_handler.chords.at(i);
        const EntryPlace &place = m_places.chords.at(i);
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
                    .arg(m_places.chords.at(replaced).code.line));
        }
    }
}

void HandlerWarnings::checkSwitches()
{
    Registrations<int> registrations;
    for (int i = 0; i < m_handler.switches.size(); ++i) {
        const SwitchMapping &mapping = m_handler.switches.at(i);
        const TextPosition &code = m_places.switches.at(i).code;
        if (mapping.code >= positionCodes && m_handler.positionsAtStart) {
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
                     .arg(m_places.switches.at(replaced).code.line));
        }
    }
}

/// Warns of a bus that no device of the entry can be attached to.
bool HandlerWarnings::isBusPossible(const Bus &bus, const EntryPlace &place)
{
    if (!bus || m_range.isEmpty())
        return true;
    const DeviceRange range = rangeOf(m_range.name, bus);
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
Bus HandlerWarnings::filterOf(const Bus &bus) const
{
    return bus == m_range.bus ? Bus() : bus;
}

} // namespace

void findHandlerWarnings(const HandlerProfile &handler, const HandlerPlaces &places,
                         const DeviceRange &range, const TakenRanges &taken, Findings *findings)
{
    HandlerWarnings(handler, places, range, taken, findings).findAll();
}

} // namespace Vorn
