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
        /// An expectation was not met; the last entry says which.
        Failed,
        /// A step could not be done, see `diagnostics`.
        Malformed,
        /// A signal asked for the end.
        Interrupted,
    };

    Outcome outcome = Outcome::Passed;
    int expectations = 0; ///< that were met
    qint64 duration = 0; ///< ms of virtual time
    Diagnostics diagnostics;
};

/// Runs a scenario through the library, in virtual time and on simulated devices, and tells @p sink
/// of everything that happens. The same scenario gives the same entries. It ends with the first
/// expectation that is not met.
///
/// The clocks and /dev/input of the process are simulated in the meantime, so only one may run at a
/// time, with nothing else that depends on them. Needs a `QCoreApplication`.
///
/// @param loaded without errors
SimulationResult simulate(const LoadedScenario &loaded, const SessionLog::Sink &sink);

} // namespace Vorn::Workbench

#endif
