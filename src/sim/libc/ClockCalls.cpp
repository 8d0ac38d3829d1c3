#include "ClockCalls.h"

#include <atomic>

namespace Vorn::Sim {

namespace {

// Read before any constructor of the executable has run, see NextFunction.
std::atomic<ClockCalls *> servedBy{nullptr};

} // namespace

void serveClocks(ClockCalls *calls)
{
    servedBy.store(calls, std::memory_order_release);
}

ClockCalls *clockCalls()
{
    return servedBy.load(std::memory_order_acquire);
}

} // namespace Vorn::Sim
