#ifndef VORN_WORKBENCH_SCENARIORUN_H
#define VORN_WORKBENCH_SCENARIORUN_H

#include "Bench.h"
#include "Diagnostic.h"
#include "PendingEvents.h"
#include "ScenarioLoader.h"

namespace Vorn::Workbench {

struct SimulationResult
{
    enum class Outcome {
        Passed,
        /// An expectation was not met; the last entry is the one.
        Failed,
        /// A step was impossible, see `diagnostics`.
        Malformed,
        /// The bench failed, see `diagnostics`: the program that was driven is gone or stuck.
        ProgramFailed,
        /// A signal asked to stop.
        Interrupted,
    };

    Outcome outcome = Outcome::Passed;
    int expectations = 0; ///< met
    qint64 duration = 0; ///< ms of the session
    Diagnostics diagnostics;
};

/// Runs a scenario on a bench, up to the first expectation that is not met.
///
/// @param loaded must have no errors
/// @param pending gets every entry of the bench's session before anybody else
/// @param tolerance ms by which real time may be off: an event may come that much outside its
/// time. 0 in virtual time
SimulationResult runScenario(const LoadedScenario &loaded, Bench *bench, PendingEvents *pending,
                             qint64 tolerance);

} // namespace Vorn::Workbench

#endif
