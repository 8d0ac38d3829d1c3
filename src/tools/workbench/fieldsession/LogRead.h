#ifndef VORN_WORKBENCH_LOGREAD_H
#define VORN_WORKBENCH_LOGREAD_H

#include "LogDetectors.h"
#include "LogRecord.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <cstddef>
#include <deque>
#include <optional>

namespace Vorn::Workbench {

/// What is known of a record's value.
enum class KeyValue {
    Any,
    Press, ///< 1
    NoPress, ///< how the library logs an auto-repeat as well
    Release, ///< 0
};

bool fits(int value, KeyValue known);

/// The record that a handler has in hand: the events that follow come of it.
struct LogHand
{
    enum class Kind {
        Single, ///< passed on by itself
        ChordBegun, ///< first the withdrawal of the first key, then both
        ChordEnded,
        ChordPart, ///< nothing is passed on
        Unseen, ///< the log has no line of the detector
    };

    /// Of a chord that begins: the release of the first key, and both.
    static constexpr int allKeyLines = 3;

    Kind kind = Kind::Single;
    LogRecordPtr record; ///< null if the log has none
    LogOriginPtr origin;
    LogDetectorPtr detector; ///< null if the log has no lines of it
    QVector<int> codes; ///< the key, or both
    int code = 0;
    int value = 0;
    int keyLines = 0; ///< of what the detector has passed on
    bool isPairPassedOn = false; ///< the withdrawal is over
    bool isReleasedInBetween = false; ///< a key of the pair, in a slot of the withdrawal
    bool isChordTold = false;
    bool hasPairEvent = false; ///< beside that of the withdrawal
    QStringList events;
    std::optional<InputEvent::Command> click; ///< pressed, and not yet released
    QString openEvent; ///< that may be of this record or of another one
    qint64 time = 0; ///< of the last line about it

    /// Whether an event may come of it.
    bool accepts(InputEvent::Command command, InputEvent::State state) const;
    /// Whether both keys have been passed on, after which their event comes at once if there is
    /// one.
    bool hasPairPassed() const { return kind == Kind::ChordBegun && keyLines == allKeyLines; }
    /// Whether a line about a key that is passed on is about it.
    bool expectsKey(int key) const;
    bool isPair() const { return kind == Kind::ChordBegun || kind == Kind::ChordEnded; }
};

/// What a listener has read at once, as far as its handler is concerned, and how far that is.
struct LogRead
{
    /// A read is of at most 1024 bytes.
    static constexpr std::size_t maxRecords = 64;

    std::deque<LogRecordPtr> records; ///< of keys and switches
    bool hasDescriptor = false;
    bool isBegun = false; ///< a line about one of them has come
    LogOriginPtr origin; ///< of the next record
    QString identifier; ///< that was selected when it was read
    std::optional<LogHand> hand;

    /// The first key that nothing has been said of, with that code and in that position.
    /// @param code none: any
    LogRecordPtr nextKey(std::optional<int> code, KeyValue value) const;
    LogRecordPtr nextSwitch(bool isOn) const;
    /// Whether more is to come: a slot of the product runs an event loop.
    bool isSuspended() const;
};

} // namespace Vorn::Workbench

#endif
