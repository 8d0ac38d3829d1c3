#ifndef LATENCY_H
#define LATENCY_H

namespace Vorn::Bench {

struct Options;

/// From the timestamp of a key record to its receiver.
void measureLatency(const Options &options);

} // namespace Vorn::Bench

#endif
