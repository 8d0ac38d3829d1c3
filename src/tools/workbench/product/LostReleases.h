#ifndef VORN_WORKBENCH_LOSTRELEASES_H
#define VORN_WORKBENCH_LOSTRELEASES_H

#include "BasicInputHandler.h"
#include "Observation.h"
#include "SessionLog.h"

#include <QSet>

namespace Vorn::Workbench {

// A release may be on its way; it is lost if it has not come by then.
constexpr int lostReleaseMs = 100;

/// Tells the keys that the library has down although they are up on the device.
/// @param handler that takes the device's keys now; has a listener
/// @param told the keys of which this was told before
/// @return the keys of which it is so
QSet<int> tellLostReleases(SessionLog *log, const ObservedDevice &device,
                           const BasicKeyInputHandler &handler, const QSet<int> &told);

} // namespace Vorn::Workbench

#endif
