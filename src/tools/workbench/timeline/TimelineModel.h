#ifndef VORN_WORKBENCH_TIMELINEMODEL_H
#define VORN_WORKBENCH_TIMELINEMODEL_H

#include "Session.h"

#include <QString>
#include <QVector>

#include <optional>

/// What a timeline shows, independent of how it is drawn. Times are µs of the session.
namespace Vorn::Workbench {

/// More than that neither makes a useful picture nor is quick to show.
constexpr int maxTimelineMarks = 20'000;

/// A stretch of time.
struct TimelineSpan
{
    qint64 from = 0;
    qint64 to = 0;
};

/// The time during which a key was down, a switch was on, or a chord was held.
struct TimelineBar
{
    qint64 from = 0;
    qint64 to = 0;
    bool isOpen = false; ///< it did not end within the session
    bool wasOpen = false; ///< it began before the session, or before its device was added
    /// When the detector took the key back for a chord, or a reset made it forget the key.
    std::optional<qint64> withdrawn;
};

struct TimelineMark
{
    enum class Kind { Repeat, Due, Withdrawn, Forgotten, Dropped };

    Kind kind = Kind::Repeat;
    qint64 time = 0;
    int value = 0; ///< the record's; Repeat
};

struct TimelineEvent
{
    qint64 time = 0;
    InputEvent::Command command = InputEvent::None;
    InputEvent::State state = InputEvent::NoState;
    InputEvent::Bus bus = InputEvent::Bus::NoBus;
    std::optional<qint64> latency;
    /// When the session stated the due time of a long press, if it did.
    std::optional<qint64> stated = std::nullopt;

    /// When a long press should have been published.
    std::optional<qint64> due() const
    {
        if (state != InputEvent::KeyLongPress || !latency)
            return std::nullopt;
        return time - *latency;
    }
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
    QVector<TimelineSpan> timed; ///< while the long-press detector timed the key
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
    TimelineSpan session; ///< from its first entry to its end
    TimelineSpan shown; ///< the part that the picture is about
    QVector<TimelineLane> lanes; ///< those of a device are together
    QVector<TimelineLink> links;
    QVector<TimelineFlag> flags;
    QVector<TimelineIdentifier> identifiers;
    QVector<TimelineSpan> activity; ///< when anything happened, ascending, with idle times between
    int lanesLeftOut = 0; ///< for want of room in the picture
    qint64 marksLeftOut = 0; ///< for want of room: those after `shown`
};

} // namespace Vorn::Workbench

#endif
