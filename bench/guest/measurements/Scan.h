#ifndef SCAN_H
#define SCAN_H

namespace Vorn::Bench {

struct Options;

/// A pass over the nodes.
void measureScan(const Options &options);

} // namespace Vorn::Bench

#endif
