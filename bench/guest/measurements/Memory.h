#ifndef MEMORY_H
#define MEMORY_H

namespace Vorn::Bench {

struct Options;

/// The memory that belongs to the example player alone.
void measureMemory(const Options &options);

} // namespace Vorn::Bench

#endif
