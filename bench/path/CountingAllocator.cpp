// Preloaded into a subject, and only while its allocations are counted: counts every allocation of
// the process, no matter which library makes it.

#include "Counters.h"
#include "InterposedAllocator.h"

namespace {

// Set by a constructor: the first allocations come before the environment is available.
Counters *counters = nullptr;

__attribute__((constructor)) void inherit()
{
    counters = inheritedCounters();
}

} // namespace

// Hidden, or a subject that counts as well would be called instead.
__attribute__((visibility("hidden"))) void onAllocation(std::size_t size)
{
    if (!counters)
        return;
    counters->allocations.fetch_add(1, std::memory_order_relaxed);
    counters->bytes.fetch_add(size, std::memory_order_relaxed);
}

__attribute__((visibility("hidden"))) void onDeallocation(const volatile void *)
{ }
