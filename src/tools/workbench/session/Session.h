#ifndef VORN_WORKBENCH_SESSION_H
#define VORN_WORKBENCH_SESSION_H

#include "Input.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>
#include <variant>

namespace Vorn::Workbench {

/// The first entry of a session.
struct SessionStart
{
    QString source; ///< "monitor", or the file that was simulated
    QString profile; ///< file name; empty without a profile
    qint64 wallClock = 0; ///< µs since the epoch at time 0
};

/// A device was added or removed.
struct DeviceChange
{
    QString device; ///< "/dev/input/event0"
    QString name; ///< as the kernel reports it
    InputEvent::Bus bus = InputEvent::Bus::NoBus;
    bool added = true;
};

/// A record that the library read.
struct RecordRead
{
    QString device;
    int type = 0;
    int code = 0;
    int value = 0;
    qint64 stamp = 0; ///< its time stamp, µs since the epoch; 0 for a queried switch position
};

/// What the detectors of a key handler did.
struct DetectorStep
{
    enum class What {
        LongPressDue, ///< keys[0] is timed: due at `due`, noticed at the next tick
        LongPressEnded, ///< keys[0] is no longer timed: it is up, or the timer was stopped
        FirstKeyWithdrawn, ///< the detector released keys[0] because a chord begins
        ChordFound, ///< all keys are down together; see `mapped`
        ChordReleased, ///< all keys of the chord are up
        Dropped, ///< the record of keys[0] was ignored: a third key, or a release without a press
        Forgotten, ///< a reset ended the press of keys[0], or the chord of both keys
    };

    What what = What::Dropped;
    QString device;
    QVector<int> keys;
    qint64 due = 0; ///< µs of the session; LongPressDue
    bool mapped = false; ///< whether a command is registered for the pair; ChordFound
    /// Of the handler. One that is selected no longer may still take the rest of a batch.
    QString identifier = {};
};

/// What became of a record.
struct RecordOutcome
{
    enum class What {
        Published, ///< at least one event came of it
        Held, ///< a deferred key is down: its release or long press is published
        Chord, ///< part of a chord, which publishes when it begins and when all its keys are up
        Dropped, ///< by the chord detector
        Unmapped, ///< the handler has no command for it
        Unread, ///< the listener had no handler to pass it to
        NotTaken, ///< the library takes EV_KEY and EV_SW only
        Open, ///< the session is made from a log, which does not say
    };

    What what = What::Published;
    QString device;
    int type = 0;
    int code = 0;
    int value = 0;
    QStringList events; ///< what was published, "StartPlay KeyPressed"
    QString reason; ///< for people: why nothing was published, or not yet; empty if it was
};

/// An event on the bus.
struct EventPublished
{
    InputEvent::Command command = InputEvent::None;
    InputEvent::State state = InputEvent::NoState;
    InputEvent::Bus bus = InputEvent::Bus::NoBus;
    QString device; ///< empty if unknown
    int type = 0; ///< type of `codes`, EV_KEY or EV_SW; 0 if unknown
    QVector<int> codes; ///< the key, both keys of a chord, or the switch that caused the event
    /// µs between the record's time stamp, or the moment the long press was due, and publication.
    std::optional<qint64> latency;
};

/// What the library believes about a key of a device.
struct KeyState
{
    int code = 0;
    bool isDown = false; ///< for the chord detector
    bool isWithdrawn = false; ///< first key of a chord in progress
    bool isHeld = false; ///< a deferred key whose release will publish something
    bool isCounting = false; ///< timed for a long press
    int count = 0; ///< number of the next long press of this hold; isCounting only
    std::optional<qint64> due; ///< µs of the session; none if no further one is published
};

bool operator==(const KeyState &one, const KeyState &other);

/// What the library believes about a device's keys at this moment.
struct KeyStates
{
    QString device;
    bool hasHandler = false; ///< whether anything takes its keys under the current identifier
    bool isChord = false; ///< whether a chord is in progress
    QVector<KeyState> keys; ///< by code; only those with something to tell
};

bool operator==(const KeyStates &one, const KeyStates &other);

/// An identifier was selected.
struct IdentifierSelected
{
    QString identifier;
};

/// A scenario's expectation was met or failed.
struct ExpectationChecked
{
    QString file;
    int line = 0;
    QString text; ///< as written in the file
    bool met = true;
    QString found; ///< what was published instead; empty if the expectation was met
};

/// Anything else: a profile was reloaded, the clock was set.
struct Remark
{
    QString text;
};

/// One thing that happened, and when.
struct SessionEntry
{
    qint64 time = 0; ///< µs since the start of the session, by a monotonic clock
    std::variant<SessionStart, DeviceChange, RecordRead, RecordOutcome, DetectorStep,
                 EventPublished, KeyStates, IdentifierSelected, ExpectationChecked, Remark>
        what;
};

} // namespace Vorn::Workbench

#endif
