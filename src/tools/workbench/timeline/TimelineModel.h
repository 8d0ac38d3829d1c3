#ifndef VORN_WORKBENCH_TIMELINEMODEL_H
#define VORN_WORKBENCH_TIMELINEMODEL_H

#include "Session.h"

#include <QString>
#include <QVector>

#include <optional>

/// What a timeline shows, independent of how it is drawn. Times are µs of the session.
namespace Vorn::Workbench {

/// The time during which a key was down, a switch was on, or a chord was held.
struct TimelineBar
{
    qint64 from = 0;
    qint64 to = 0;
    bool isOpen = false; ///< it did not end within the session
    std::optional<qint64> withdrawn; ///< when the detector took the key back for a chord
};

/// The time during which the long-press detector timed a key.
struct TimelineTimedSpan
{
    qint64 from = 0;
    qint64 to = 0;
    qint64 timerStart = 0; ///< the detector ticks at fixed intervals from here
};

struct TimelineMark
{
    enum class Kind { Repeat, Due, Withdrawn, Dropped };

    Kind kind = Kind::Repeat;
    qint64 time = 0;
    QString title;
};

struct TimelineEvent
{
    qint64 time = 0;
    InputEvent::State state = InputEvent::NoState;
    QString label;
    QString title;
    /// When it should have been published; known for long presses whose due time was recorded.
    std::optional<qint64> due;
};

struct TimelineLane
{
    enum class Kind { Key, Switch, Chord, Other };

    Kind kind = Kind::Other;
    QString device;
    int type = 0;
    QVector<int> codes; ///< ascending
    bool mapped = true; ///< whether a chord has a command
    QString label;
    QString deviceName;
    QVector<TimelineBar> bars;
    QVector<TimelineTimedSpan> timed;
    QVector<TimelineMark> marks;
    QVector<TimelineEvent> events;
};

/// A chord was found: connects its lane with those of its keys.
struct TimelineLink
{
    qint64 time = 0;
    QVector<int> lanes; ///< indexes, ascending
    QString title;
};

/// Something that concerns all lanes.
struct TimelineFlag
{
    enum class Kind { Added, Removed, Failure, Remark };

    Kind kind = Kind::Remark;
    qint64 time = 0;
    QString label;
    QString title;
};

struct TimelineIdentifier
{
    qint64 time = 0;
    QString identifier;
};

struct TimelineModel
{
    SessionStart start;
    bool hasStart = false;
    QVector<TimelineLane> lanes;
    QVector<TimelineLink> links;
    QVector<TimelineFlag> flags;
    QVector<TimelineIdentifier> identifiers;
    QVector<qint64> activity; ///< when anything happened, ascending
    int lanesLeftOut = 0; ///< for want of room in the picture
};

} // namespace Vorn::Workbench

#endif
