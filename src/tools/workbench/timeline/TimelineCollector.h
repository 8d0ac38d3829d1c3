#ifndef VORN_WORKBENCH_TIMELINECOLLECTOR_H
#define VORN_WORKBENCH_TIMELINECOLLECTOR_H

#include "AxisRows.h"
#include "LaneTable.h"
#include "LongPressTiming.h"
#include "Session.h"
#include "TimelineModel.h"

#include <QMap>
#include <QPair>
#include <QSet>
#include <QVector>

#include <limits>
#include <optional>

namespace Vorn::Workbench {

/// Collects what a timeline shows of a session, entry by entry. It keeps no more than a picture can
/// hold, however long the session is: the picture then ends early, and what follows is counted.
///
/// Lanes are in the order in which their keys first occur, those of a device together; a chord's
/// lane is below those of its keys.
class TimelineCollector
{
public:
    /// @param wanted collect no more than this part of the session
    explicit TimelineCollector(TimelineSpan wanted);
    TimelineCollector(const TimelineCollector &) = delete;
    TimelineCollector &operator=(const TimelineCollector &) = delete;

    void add(const SessionEntry &entry);
    /// The session lasted at least until @p end.
    void extendTo(qint64 end);

    bool isEmpty() const { return !m_session; }
    /// From the first to the last entry so far.
    TimelineSpan session() const { return m_session.value_or(TimelineSpan()); }

    /// To be called once; nothing can be added afterwards.
    TimelineModel finished();

private:
    using Codes = QPair<QString, int>; ///< device and code

    void take(const SessionStart &start);
    void take(const DeviceChange &change);
    void take(const RecordRead &record);
    void take(const DetectorStep &step);
    void take(const EventPublished &event);
    void take(const RecordOutcome &) { }
    void take(const KeyStates &) { }
    void take(const IdentifierSelected &selected);
    void take(const ExpectationChecked &expectation);
    void take(const Remark &remark);

    bool isWanted(qint64 time) const;
    bool mayKeep(qint64 time);
    bool isOver() const;
    TimelineLane *laneAt(const QString &device, int type, const QVector<int> &codes);
    void startBar(TimelineLane *lane, qint64 time, bool wasOpen = false);
    void endBar(TimelineLane *lane, qint64 time) const;
    void addMark(const QString &device, int code, TimelineMark::Kind kind, qint64 time,
                 int value = 0);
    void addSpan(const QString &device, int code, TimelineSpan span);
    void addFlag(TimelineFlag::Kind kind, const QString &label, const QString &title);
    void takeSwitch(const RecordRead &record, TimelineLane *lane);
    void withdraw(const DetectorStep &step, TimelineMark::Kind kind);
    void takeChord(const DetectorStep &step);
    void forget(const DetectorStep &step);
    void finishLanes(qint64 end);
    TimelineLink linkOf(qint64 time, const DetectorStep &chord, const QVector<int> &order) const;

    const TimelineSpan m_wanted;
    TimelineModel m_model;
    LaneTable m_lanes;
    LongPressTiming m_timing;
    ActivitySpans m_activity;
    QVector<QPair<qint64, DetectorStep>> m_chords;
    QMap<QString, qint64> m_added; ///< when each device was
    QSet<Codes> m_knownSwitches;
    std::optional<TimelineSpan> m_session;
    std::optional<qint64> m_cut; ///< where the picture is full
    int m_kept = 0;
    qint64 m_time = 0;
};

/// All of a session.
constexpr TimelineSpan wholeSession{std::numeric_limits<qint64>::min(),
                                    std::numeric_limits<qint64>::max()};

} // namespace Vorn::Workbench

#endif
