#ifndef VORN_WORKBENCH_TIMELINELANES_H
#define VORN_WORKBENCH_TIMELINELANES_H

#include "Session.h"

#include <QString>
#include <QVector>

#include <optional>

/// What a timeline shows, before it is drawn. Times are µs of the session.
namespace Vorn::Workbench {

/// A key was down, a switch on, or a chord found, all that time.
struct TimelineBar
{
    qint64 from = 0;
    qint64 to = 0;
    bool isOpen = false; ///< it did not end in the session
    std::optional<qint64> withdrawn; ///< when the detector took the key back for a chord
};

/// How long the long-press detector timed a key.
struct TimelineTimedSpan
{
    qint64 from = 0;
    qint64 to = 0;
    qint64 timerStart = 0; ///< its ticks come every 50 ms from here
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
    /// When it should have come; known for long presses that the session tells of.
    std::optional<qint64> due;
};

struct TimelineLane
{
    enum class Kind { Key, Switch, Chord, Other };

    Kind kind = Kind::Other;
    QString device;
    int type = 0;
    QVector<int> codes; ///< rising
    bool mapped = true; ///< whether a chord has a command
    QString label;
    QString deviceName;
    QVector<TimelineBar> bars;
    QVector<TimelineTimedSpan> timed;
    QVector<TimelineMark> marks;
    QVector<TimelineEvent> events;
};

/// The keys of a chord were found to be down together.
struct TimelineLink
{
    qint64 time = 0;
    QVector<int> lanes; ///< indexes, rising
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
    QVector<qint64> activity; ///< when anything happened, rising
    int lanesLeftOut = 0; ///< beyond maxTimelineLanes
};

constexpr int maxTimelineLanes = 200;

/// The lanes of a session, in the order in which they first matter; a chord's lane is under the
/// lanes of its keys.
TimelineModel timelineModel(const QVector<SessionEntry> &entries);

/// A session's time for people: "1.850 s".
QString timelineTime(qint64 time);

} // namespace Vorn::Workbench

#endif
