#ifndef COUNTERS_H
#define COUNTERS_H

#include <atomic>
#include <cstdint>
#include <cstdlib>

#include <sys/mman.h>

/// A page that a subject shares with the feeder, which reads it while the subject runs.
struct Counters
{
    std::atomic<std::uint64_t> allocations; ///< by CountingAllocator, if it is preloaded
    std::atomic<std::uint64_t> bytes; ///< requested in these
    std::atomic<std::uint64_t> results; ///< records or events that the subject received
};

static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

constexpr const char *countersVariable = "VORN_BENCH_COUNTERS";
/// Comma-separated read ends for /dev/input/event0, event1 …
constexpr const char *nodesVariable = "VORN_BENCH_NODES";

/// The counters of the feeder that started this process; null if none did.
inline Counters *inheritedCounters()
{
    const char *descriptor = std::getenv(countersVariable);
    if (!descriptor)
        return nullptr;
    void *page = mmap(nullptr, sizeof(Counters), PROT_READ | PROT_WRITE, MAP_SHARED,
                      std::atoi(descriptor), 0);
    return page == MAP_FAILED ? nullptr : static_cast<Counters *>(page);
}

/// Counts a result of this subject, which must be the only writer: the addition is not atomic.
inline void countResult(std::uint64_t number = 1)
{
    static Counters standIn;
    static Counters *const counters = [] {
        Counters *inherited = inheritedCounters();
        return inherited ? inherited : &standIn;
    }();
    counters->results.store(counters->results.load(std::memory_order_relaxed) + number,
                            std::memory_order_relaxed);
}

#endif
