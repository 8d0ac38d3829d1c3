#ifndef VORN_BENCH_MEASURE_H
#define VORN_BENCH_MEASURE_H

#include "AllocationCounter.h"

#include <QList>

#include <benchmark/benchmark.h>

#include <linux/input.h>

/// @file
/// What all benchmarks of the parts are made of.
///
/// A benchmark is called `Part/what is done/name of a number:number`; to_csv.py makes of it what
/// the columns of its rows say. The ground line of all is a product in service: no line is written
/// to the log, and one receiver is connected to the bus where something is reported.

/// Times @p operation, which does @p items of what is called @p item ("click"), and counts what
/// it allocates.
///
/// The operation has to leave everything as it found it. It is run once before, so that what
/// happens only the first time is in neither figure.
template <typename Operation>
void measure(benchmark::State &state, const char *item, int items, Operation operation)
{
    operation();
    for (auto _ : state)
        operation();
    state.SetLabel(item);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * items);

    // Apart from the time, so that the two do not disturb each other.
    constexpr int rounds = 16;
    const AllocationCounter counter;
    for (int round = 0; round < rounds; ++round)
        operation();
    state.counters["allocations"] = static_cast<double>(counter.allocations()) / (rounds * items);
}

/// What is written to the log.
enum class Log {
    Off, ///< what a product writes in service: nothing for what is measured here
    DebugToNull, ///< DEBUG lines are composed and handed to an appender that drops them
};

/// Writes to the log what it is told while it lives.
class Logging
{
public:
    explicit Logging(Log log);
    ~Logging();
    Logging(const Logging &) = delete;
    Logging &operator=(const Logging &) = delete;
};

/// What one read brings for one change: its record and the end of the packet, stamped with the
/// present time.
QList<input_event> packet(int type, int code, int value);

/// Packets of a press and a release of @p code.
QList<QList<input_event>> clickPackets(int code);

/// @p count records at a time of an endless stream of clicks of @p code, as many batches as it
/// takes until the stream is where it began.
QList<QList<input_event>> clickBatches(int code, int count);

/// The most records that one read of the library brings.
constexpr int recordsPerRead = 1024 / static_cast<int>(sizeof(input_event));

#endif
