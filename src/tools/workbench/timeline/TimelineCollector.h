#ifndef VORN_WORKBENCH_TIMELINECOLLECTOR_H
#define VORN_WORKBENCH_TIMELINECOLLECTOR_H

#include "Session.h"
#include "TimelineModel.h"

#include <QVector>

namespace Vorn::Workbench {

/// Collects what a timeline shows of a session. Lanes are in the order in which their keys first
/// occur; a chord's lane is below those of its keys.
TimelineModel timelineModel(const QVector<SessionEntry> &entries);

} // namespace Vorn::Workbench

#endif
