#ifndef VORN_WORKBENCH_SIMULATION_H
#define VORN_WORKBENCH_SIMULATION_H

#include "Diagnostic.h"
#include "ScenarioLoader.h"
#include "SessionLog.h"

namespace Vorn::Workbench {

struct SimulationResult
{
    enum class Outcome {
        Passed,
        /// An expectation was not met; the last entry is the one.
        Failed,
        /// A step was impossible, see `diagnostics`.
        Malformed,
        /// A signal asked to stop.
        Interrupted,
    };

    Outcome outcome = Outcome::Passed;
    int expectations = 0; ///< met
    qint64 duration = 0; ///< ms of virtual time
    Diagnostics diagnostics;
};

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
