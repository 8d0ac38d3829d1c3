#ifndef VORN_WORKBENCH_SIMULATION_H
#define VORN_WORKBENCH_SIMULATION_H

#include "ScenarioLoader.h"
#include "ScenarioRun.h"
#include "SessionLog.h"

namespace Vorn::Workbench {

/// Runs a scenario through the library, in virtual time and on simulated devices, and passes
/// everything that happens to @p sink. The same scenario always gives the same entries. It stops at
/// the first expectation that is not met.
///
/// Meanwhile the clocks and /dev/input of the whole process are simulated, so only one may run at a
/// time, and nothing else that depends on them. Needs a `QCoreApplication`.
///
/// @param loaded must have no errors
SimulationResult simulate(const LoadedScenario &loaded, const SessionLog::Sink &sink);

} // namespace Vorn::Workbench

#endif
