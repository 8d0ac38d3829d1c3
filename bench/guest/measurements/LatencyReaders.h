#ifndef LATENCYREADERS_H
#define LATENCYREADERS_H

#include <linux/input.h>

#include <string>

namespace Vorn::Bench {

/// @name The readers whose latency is measured, each in a process of its own
/// @{
constexpr const char *bareLoop = "bare loop";
constexpr const char *emptyQtShape = "empty Qt shape";
constexpr const char *library = "library";
/// @}

/// The key whose records are measured.
constexpr unsigned int measuredKey = KEY_OK;
/// The key that ends a run, so that it ends even if a measured record was lost.
constexpr unsigned int endKey = KEY_STOP;

/// Reads @p node as @p reader until endKey is pressed, then prints the latency of each record of
/// measuredKey in nanoseconds, one a line.
void runLatencyReader(const std::string &reader, const std::string &node);

} // namespace Vorn::Bench

#endif
