#ifndef VORN_WORKBENCH_TIMELINETEXT_H
#define VORN_WORKBENCH_TIMELINETEXT_H

#include "TimelineModel.h"

#include <QString>
#include <QVector>

/// The wording that several parts of a timeline share. Times are µs.
namespace Vorn::Workbench {

/// An exact time: "1.850 s".
QString timelineTime(qint64 time);

/// A duration at a glance: "2.4 s", "12 min".
QString timelineDuration(qint64 duration);

/// "1 lane", "2 lanes".
QString counted(qint64 count, const char *noun);

/// "KEY_STOP + KEY_PLAY".
QString joinedNames(int type, const QVector<int> &codes);

/// "Info press".
QString eventLabel(const TimelineEvent &event);
/// "Info click": the label that an event shares with its release.
QString clickLabel(const TimelineEvent &event);

/// Tool tips.
QString eventTitle(const TimelineLane &lane, const TimelineEvent &event);
QString markTitle(const TimelineLane &lane, const TimelineMark &mark);

} // namespace Vorn::Workbench

#endif
