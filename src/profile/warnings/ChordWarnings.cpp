#include "ChordWarnings.h"

#include "EventNames.h"

#include <linux/input-event-codes.h>

namespace Vorn {

namespace {

using Bus = std::optional<InputEvent::Bus>;

bool overlap(const Bus &a, const Bus &b)
{
    return !a || !b || a == b;
}

/// Whether a later registration of the same key takes the place of one.
bool isReplaced(const HandlerProfile &handler, int index)
{
    const KeyMapping &key = handler.keys.at(index);
    for (int i = index + 1; i < handler.keys.size(); ++i) {
        const KeyMapping &later = handler.keys.at(i);
        if (later.code == key.code && (!later.bus || later.bus == key.bus))
            return true;
    }
    return false;
}

/*
 *  A down ──────┐          B down                       A, B up
 *  [A press]    │  [A release] [A+B press]  [A long]    [A+B release]
 *  if immediate │                           if A has a long press
 */

void checkKey(const KeyMapping &key, const EntryPlace &place, int chordLine, Findings *findings)
{
    if (key.immediate && key.command != InputEvent::None) {
        findings->warning(place.value->positionOf("immediate"),
                          QStringLiteral("%1 is part of the chord in line %2: its own press and "
                                         "release are reported before the chord; leave out "
                                         "'immediate'")
                              .arg(keyName(key.code))
                              .arg(chordLine));
    }
    if (key.longPress) {
        findings->warning(place.value->positionOf("long-press"),
                          QStringLiteral("%1 is part of the chord in line %2: pressed first, its "
                                         "own long press is reported while the chord is held; use "
                                         "a key that is in no chord")
                              .arg(keyName(key.code))
                              .arg(chordLine));
    }
}

/// @param silent keys without a command, of which nothing has been said yet
void checkSilent(const ChordMapping &chord, const TextPosition &place, QSet<int> *silent,
                 Findings *findings)
{
    QStringList names;
    for (const int code : {chord.first, chord.second}) {
        if (silent->remove(code))
            names += keyName(code);
    }
    if (!names.isEmpty())
        findings->warning(place,
                          QStringLiteral("nothing is reported when %1 is pressed alone; give it a "
                                         "command, or 'None' if that is meant")
                              .arg(names.join(QStringLiteral(" or "))));
}

/// Keys of chords without a command of their own.
QSet<int> silentKeys(const HandlerProfile &handler, const QSet<int> &mappedKeys)
{
    QSet<int> codes;
    for (const ChordMapping &chord : handler.chords)
        codes += {chord.first, chord.second};
    return codes - mappedKeys - QSet<int>{KEY_RESERVED};
}

} // namespace

void findChordWarnings(const HandlerProfile &handler, const HandlerPlaces &places,
                       const QSet<int> &mappedKeys, Findings *findings)
{
    // A mistake may be what hides a key's command.
    QSet<int> silent = findings->hasErrors() ? QSet<int>() : silentKeys(handler, mappedKeys);
    QSet<int> told;
    for (int i = 0; i < handler.chords.size(); ++i) {
        const ChordMapping &chord = handler.chords.at(i);
        if (chord.command == InputEvent::None || chord.first == chord.second)
            continue;
        const TextPosition &place = places.chords.at(i).code;
        for (int j = 0; j < handler.keys.size(); ++j) {
            const KeyMapping &key = handler.keys.at(j);
            const bool isPart = key.code == chord.first || key.code == chord.second;
            if (!isPart || told.contains(j) || !overlap(key.bus, chord.bus)
                || isReplaced(handler, j))
                continue;
            // Once, however many chords it is part of.
            told.insert(j);
            checkKey(key, places.keys.at(j), place.line, findings);
        }
        checkSilent(chord, place, &silent, findings);
    }
}

} // namespace Vorn
