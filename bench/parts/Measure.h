#ifndef VORN_BENCH_MEASURE_H
#define VORN_BENCH_MEASURE_H

#include "AllocationCounter.h"

#include <QList>

#include <benchmark/benchmark.h>

#include <linux/input.h>

/// @file
/// What the benchmarks of the parts share.
///
/// A benchmark is named `Part/operation/quantity:number`; to_csv.py turns the name into columns.
/// The baseline is a product in service: nothing is logged, and where something is reported, one
/// receiver is connected to the bus.

/// Times @p operation, which handles @p items units called @p item ("click"), and counts its
/// allocations.
///
/// The operation must leave everything as it found it. It is run once beforehand, so that
/// first-time costs are in neither figure.
template <typename Operation>
void measure(benchmark::State &state, const char *item, int items, Operation operation)
{
    operation();
    for (auto _ : state)
        operation();
    state.SetLabel(item);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * items);

    // Apart from the timing, so that neither disturbs the other.
    constexpr int rounds = 16;
    const AllocationCounter counter;
    for (int round = 0; round < rounds; ++round)
        operation();
    state.counters["allocations"] = static_cast<double>(counter.allocations()) / (rounds * items);
}

/// What is written to the log.
enum class Log {
    Off, ///< as a product in service: nothing
    DebugToNull, ///< DEBUG lines are composed and handed to an appender that drops them
};

/// Sets what is logged, for its lifetime.
class Logging
{
public:
    explicit Logging(Log log);
    ~Logging();
    Logging(const Logging &) = delete;
    Logging &operator=(const Logging &) = delete;
};

/// What one read returns for one change: its record and the end of the packet, with the current
/// time as their timestamp.
QList<input_event> packet(int type, int code, int value);

/// Packets of a press and a release of @p code.
QList<QList<input_event>> clickPackets(int code);

/// Batches of @p count records from an endless stream of clicks of @p code, up to where the stream
/// repeats.
QList<QList<input_event>> clickBatches(int code, int count);

/// The most records that one read of the library returns.
constexpr int recordsPerRead = 1024 / static_cast<int>(sizeof(input_event));

#endif
