#ifndef VORN_WORKBENCH_SCENARIOCHECKS_H
#define VORN_WORKBENCH_SCENARIOCHECKS_H

#include "Diagnostic.h"
#include "ScenarioLoader.h"

namespace Vorn::Workbench {

/// Finds steps that cannot do, with the profile and the recordings of a scenario, what they are
/// there for.
Diagnostics checkScenario(const LoadedScenario &loaded);

/// Finds devices that the library will not see, because their node is not one that it reads. Nodes
/// that the scenario itself chooses are left alone.
Diagnostics checkNodes(const LoadedScenario &loaded);

} // namespace Vorn::Workbench

#endif
