#ifndef VORN_WORKBENCH_PLANNEDDURATION_H
#define VORN_WORKBENCH_PLANNEDDURATION_H

#include "ScenarioLoader.h"

namespace Vorn::Workbench {

/// How long a scenario takes, in ms of virtual time, if each expected event comes as early as it
/// may. A wait `within` a time can make it longer.
qint64 plannedDuration(const LoadedScenario &loaded);

} // namespace Vorn::Workbench

#endif
