#include "Simulation.h"

#include "PendingEvents.h"
#include "SimulatedBench.h"

namespace Vorn::Workbench {

SimulationResult simulate(const LoadedScenario &loaded, const SessionLog::Sink &sink)
{
    // The library reports keys that are due at the same tick in the order of a QHash, which is
    // random in each process by default.
    qSetGlobalQHashSeed(0);
    PendingEvents pending(loaded.deviceNodes);
    SimulatedBench bench(loaded, [&](const SessionEntry &entry) {
        pending.add(entry);
        sink(entry);
    });
    return runScenario(loaded, &bench, &pending, 0);
}

} // namespace Vorn::Workbench
