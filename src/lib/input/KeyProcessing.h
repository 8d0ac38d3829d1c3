#ifndef VORN_INPUT_KEYPROCESSING_H
#define VORN_INPUT_KEYPROCESSING_H

#include "vorn_input_export.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>

#include <linux/input.h>

#include <iosfwd>

class QTimer;

namespace Vorn {
// Lets tools show what happens inside without repeating the calculation.
class InputProbe;
} // namespace Vorn

/// @file
/// The detectors that a key handler owns: long presses and chords. They can be used without it.

/// Writes the debug text of a key record, e.g.
/// "input_event: code:28 value:press time:14:03:07,250".
///
/// The value is "press" for 1 and "release" for anything else, including auto-repeat (2). The time
/// is the record's time of day in UTC. The type is not printed.
/// @param stream where to
/// @param event a record of any type
/// @return @p stream
VORN_INPUT_EXPORT std::ostream &operator<<(std::ostream &stream, const input_event &event);

/// Times how long keys are held.
///
/// Each registered code has a list of timeouts in ms: the first runs from the press to the first
/// notification, each further one from one notification to the next, and the last repeats while
/// the key stays down. With timeouts {800, 200} and `repeat`, keyLongPress() is emitted about 800,
/// 1000, 1200 … ms after the press; without `repeat`, only at 800 ms.
///
/// One 50 ms timer serves all keys, so every delay is rounded up to the next tick. It runs from
/// the first press of a registered key to the first tick that finds no key held.
///
/// The records' timestamps are compared with the wall clock
/// (`QDateTime::currentMSecsSinceEpoch()`), which evdev nodes use by default. A press stamped in
/// the future, or a clock set back during a hold, delays the next notification by the same amount;
/// a stamp far in the past, or a clock set forward, triggers it at the next tick.
///
/// **Thread**: the owner's, no locks. The signal's receivers may delete the detector. **Log**:
/// nothing.
///
/// **Errors**: if a held code has no timeouts, because it was registered with an empty list or
/// deregistered during the hold, the next tick ends the process with the assertion
/// "QList<T>::operator[]": "index out of range".
class VORN_INPUT_EXPORT LongPressDetect : public QObject
{
    Q_OBJECT

public:
    /// The registration of a code.
    struct Event
    {
        QList<int> timeouts; ///< ms; the last one repeats
        bool repeat = false; ///< whether to emit notifications after the first
    };

    /// The state of a held key.
    struct KeyData
    {
        int count = 0; ///< number of the next notification, from 1
        QDateTime time; ///< start of the current timeout
    };

    /// @note The detector's `QTimer` has no parent, and the destructor stops it but does not delete
    /// it, because a detector may be destroyed from inside its timer's signal. Each detector thus
    /// leaks one stopped timer.
    /// @param parent owns the detector unless null
    explicit LongPressDetect(QObject *parent = nullptr);
    ~LongPressDetect() override;

    /// Registers a key, replacing any earlier registration. During a hold the first timeout of the
    /// new list replaces the current one.
    /// @param key code, 0 to 767
    /// @param repeat whether to emit notifications after the first
    /// @param timeouts ms, see above; must not be empty
    void registerEvent(int key, bool repeat, const QList<int> &timeouts);

    /// Removes a registration. The key must not be held. Does nothing if there is none.
    /// @param key code, 0 to 767
    void deregisterEvent(int key);

    /// Takes a key record. Value 0 ends the hold. Any other value, auto-repeat included, restarts
    /// the measurement with count 1, at the timeout the hold had reached. Presses of unregistered
    /// codes are ignored.
    /// @param event its type is not looked at; it is not modified
    void process(input_event &event);

    /// Stops the timer and nothing else. A held key keeps its state, and its timing resumes when
    /// the next press of a registered code starts the timer.
    void reset();

Q_SIGNALS:
    /// A timeout has expired. If several keys are due at once, their order is unspecified.
    /// @param key code of the held key
    /// @param repeat number of the notification, from 1 for each hold
    void keyLongPress(int key, int repeat);

private Q_SLOTS:
    void update();

private:
    friend class Vorn::InputProbe;

    QTimer *timer;
    QHash<int, Event> events;
    QHash<int, KeyData> keyData;
    QHash<int, int> stages;
};

/// Distinguishes two keys pressed together, a chord, from single keys.
///
/// A single key is never delayed: each of its records is passed on at once. When a second key goes
/// down, a synthetic release withdraws the first, and both presses are reported together:
///
/// | input | keyDoubleDetect(keys, fake) |
/// |---|---|
/// | A press | ([A press], false) |
/// | A auto-repeat, only A held | ([A auto-repeat], false) |
/// | B press while A is held | ([A release], true), then ([A press, B press], false) |
/// | auto-repeat of A or B; C press | nothing |
/// | A release | nothing |
/// | B release | ([A release, B release], false) |
///
/// **Thread**: the owner's, no locks; the signal is emitted from inside checkDoubleKeyDetect(), and
/// its receivers may delete the detector.
///
/// **Log**, logger "KeyProcessing", all DEBUG: "Found already event for code:" code; "Double key
/// press detected and new press event received -> drop", also for a release; "Received release
/// for non existing press -> drop"; "Stored:(" records ")" with the records' debug texts.
class VORN_INPUT_EXPORT DoubleKeyDetect : public QObject
{
    Q_OBJECT

public:
    /// No key is down.
    /// @param parent owns the detector unless null
    explicit DoubleKeyDetect(QObject *parent = nullptr);
    ~DoubleKeyDetect() override;

    /// Takes the next key record, and emits what comes of it before it returns.
    /// @param event value 0 is a release, any other value a press; its type is not looked at
    void checkDoubleKeyDetect(const input_event &event);

    /// Whether no record is a release.
    /// @param events the records to look at
    /// @return true for an empty list
    bool allPressed(const QList<input_event> &events) const;

    /// Whether every record is a release.
    /// @param events the records to look at
    /// @return true for an empty list
    bool allReleased(const QList<input_event> &events) const;

    /// Forgets all keys without emitting anything. If called from inside the synthetic release's
    /// signal, the chord is lost too: an empty list is emitted in its place.
    void reset();

Q_SIGNALS:
    /// What came of a record.
    /// @param keys the reported records: one, or both keys of a chord in the order they first went
    /// down; empty after a reset() from inside the synthetic release's signal
    /// @param fake whether this is the synthetic release of a chord's first key
    void keyDoubleDetect(const QList<input_event> &keys, bool fake);

private:
    friend class Vorn::InputProbe;

    QList<input_event> storedEvents;
    QList<input_event> pendingEvents;
    bool detected = false;
};

#endif
