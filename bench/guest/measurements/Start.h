#ifndef START_H
#define START_H

namespace Vorn::Bench {

struct Options;

/// From the constructor of a device manager to the end of its first pass.
void measureStart(const Options &options);

/// The process that is measured: one start.
void runStartSubject();

} // namespace Vorn::Bench

#endif
