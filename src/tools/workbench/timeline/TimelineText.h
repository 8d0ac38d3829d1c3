#ifndef VORN_WORKBENCH_TIMELINETEXT_H
#define VORN_WORKBENCH_TIMELINETEXT_H

#include <QString>
#include <QVector>

/// The wording that several parts of a timeline share. Times are µs.
namespace Vorn::Workbench {

/// An exact time: "1.850 s".
QString timelineTime(qint64 time);

/// A duration at a glance: "2.4 s", "12 min".
QString timelineDuration(qint64 duration);

/// "1 lane", "2 lanes".
QString counted(int count, const char *noun);

/// "KEY_STOP + KEY_PLAY".
QString joinedNames(int type, const QVector<int> &codes);

} // namespace Vorn::Workbench

#endif
