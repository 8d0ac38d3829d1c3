#ifndef VORN_BENCH_ALLOCATIONS_H
#define VORN_BENCH_ALLOCATIONS_H

#include <cstdint>

/// How often memory was asked for on this thread so far: `malloc`, `calloc`, `realloc`, and with
/// them `operator new` and Qt's containers.
std::uint64_t allocationCount();

#endif
