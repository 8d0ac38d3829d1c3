#ifndef KEYPROCESSING_H
#define KEYPROCESSING_H

#include "vorn_input_export.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>

#include <linux/input.h>

#include <iosfwd>

class QTimer;

/// Writes the debug text of a key record to @p stream, e.g.
/// "input_event: code:28 value:press time:14:03:07,250".
///
/// The value is "press" for 1 and "release" for every other one, an auto-repeat (2) included. The
/// time is the record's time of day in UTC. The type is not printed.
VORN_INPUT_EXPORT std::ostream &operator<<(std::ostream &stream, const input_event &event);

/// Times how long keys are held.
///
/// Each registered code has a list of timeouts in ms: the first runs from the press to the first
/// notification, each further one from there to the next, and the last one is repeated while the
/// key stays down. With timeouts {800, 200} and `repeat`, keyLongPress() comes about 800, 1000,
/// 1200 … ms after the press; without `repeat` only at 800 ms.
///
/// One 50 ms timer serves all keys, so every delay is rounded up to the next tick. It runs from
/// the first press of a registered key to the first tick that finds no key held.
///
/// The records' time stamps are compared with the wall clock
/// (`QDateTime::currentMSecsSinceEpoch()`), as evdev nodes deliver by default. A press that is
/// stamped in the future, or a clock set back during a hold, delays the next notification by as
/// much; a stamp far in the past, or a clock set forward, makes it fire at the next tick.
///
/// **Thread**: the owner's, no locks. **Log**: nothing.
///
/// **Errors**: a code that is held while it has no timeouts, because it was registered with an
/// empty list or deregistered during the hold, ends the process at the next tick with the
/// assertion "QList<T>::operator[]": "index out of range".
class VORN_INPUT_EXPORT LongPressDetect : public QObject
{
    Q_OBJECT

public:
    /// Registration of a code.
    struct Event
    {
        QList<int> timeouts; ///< ms; the last one is repeated
        bool repeat = false; ///< whether notifications after the first are emitted
    };

    /// Running state of a key that is held.
    struct KeyData
    {
        int count = 0; ///< number of the next notification, from 1
        QDateTime time; ///< from when the current timeout is measured
    };

    /// @note The detector's `QTimer` has no parent and is not deleted by the destructor: a
    /// detector may be destroyed from inside its timer's signal. One stopped timer object stays
    /// behind per detector.
    explicit LongPressDetect(QObject *parent = nullptr);
    ~LongPressDetect() override;

    /// Registers @p key (0 to 767), replacing its earlier registration; during a hold the wait
    /// continues with the first timeout of the new list. @p timeouts must not be empty.
    void registerEvent(int key, bool repeat, const QList<int> &timeouts);

    /// Removes the registration of @p key, which must not be held.
    void deregisterEvent(int key);

    /// Takes a key record. Value 0 ends the hold; every other value starts the measurement anew
    /// with count 1, an auto-repeat like a press, at the timeout that the hold had reached.
    /// Presses of unregistered codes are ignored. The record is not changed.
    void process(input_event &event);

    /// Stops the timer and nothing else. A key that is held keeps its state, and goes on being
    /// timed as soon as the next press of a registered code starts the timer.
    void reset();

Q_SIGNALS:
    /// The current timeout of @p key has run out for the @p repeat-th time of this hold.
    /// Several keys are notified in any order.
    void keyLongPress(int key, int repeat);

private Q_SLOTS:
    void update();

private:
    QTimer *timer;
    QHash<int, Event> events;
    QHash<int, KeyData> keyData;
    QHash<int, int> stages;
};

/// Tells two keys pressed together, a chord, from single keys.
///
/// A single key is never delayed: each of its records is passed on at once. When a second key goes
/// down, the first is withdrawn by a made-up release, and both presses are reported together:
///
/// | input | keyDoubleDetect(keys, fake) |
/// |---|---|
/// | A press | ([A press], false) |
/// | A auto-repeat, A alone | ([A auto-repeat], false) |
/// | B press while A is held | ([A release], true), then ([A press, B press], false) |
/// | auto-repeat of A or B; C press | nothing |
/// | A release | nothing |
/// | B release | ([A release, B release], false) |
///
/// **Thread**: the owner's, no locks; the signal is emitted from inside checkDoubleKeyDetect().
///
/// **Log**, logger "KeyProcessing", all DEBUG: "Found already event for code:" code; "Double key
/// press detected and new press event received -> drop", of a release as well; "Received release
/// for non existing press -> drop"; "Stored:(" records ")" with the records' debug texts.
class VORN_INPUT_EXPORT DoubleKeyDetect : public QObject
{
    Q_OBJECT

public:
    explicit DoubleKeyDetect(QObject *parent = nullptr);
    ~DoubleKeyDetect() override;

    /// Takes the next key record; 0 is a release, every other value a press.
    void checkDoubleKeyDetect(const input_event &event);

    /// Whether no record of @p events is a release; true for an empty list.
    bool allPressed(const QList<input_event> &events) const;

    /// Whether every record of @p events is a release; true for an empty list.
    bool allReleased(const QList<input_event> &events) const;

    /// Forgets all keys, without a signal. Called from inside the fake release's signal it takes
    /// the chord with it: an empty list is emitted in its place.
    void reset();

Q_SIGNALS:
    /// @param keys the reported records: one, or all keys of a chord in the order in which they
    /// first went down
    /// @param fake whether this is the made-up release of a chord's first key
    void keyDoubleDetect(const QList<input_event> &keys, bool fake);

private:
    QList<input_event> storedEvents;
    QList<input_event> pendingEvents;
    bool detected = false;
};

#endif
