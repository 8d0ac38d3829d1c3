#include "Measure.h"

#include "InputSubsystem.h"
#include "LinuxInputListener.h"

#include <QSocketNotifier>

#include <unistd.h>

namespace {

using Vorn::Sim::DeviceDescription;
using Vorn::Sim::InputNode;
using Vorn::Sim::InputSubsystem;

DeviceDescription panel()
{
    return DeviceDescription::keyboard("front-panel", BUS_HOST, {KEY_OK});
}

/// A receiver that ignores its batches.
class Sink : public InputHandler
{
public:
    void setId(const QString &) override { }
    void invalidate() override { }
    void processEvent(const QList<input_event> &events) override
    {
        benchmark::DoNotOptimize(events.size());
    }
};

int descriptor(const LinuxInputListener &listener)
{
    const auto *notifier = listener.findChild<QSocketNotifier *>();
    if (!notifier)
        qFatal("the listener is inert");
    return static_cast<int>(notifier->socket());
}

void perRead(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgName("records per read");
    for (int count : {1, 2, 4, 8, 16, 32})
        benchmark->Arg(count);
    benchmark->Arg(recordsPerRead);
}

// Includes the cost of the simulated node, which is slower than the kernel's, see
// SimulatedNode/read.
void readBatch(benchmark::State &state, Log log)
{
    const Logging logging(log);
    InputSubsystem subsystem;
    subsystem.setRecording(false);
    InputNode &node = subsystem.plug(0, panel());
    Sink sink;
    LinuxInputListener listener(&sink, node.path(), LinuxInputListener::Key);
    const int fd = descriptor(listener);
    const auto count = static_cast<int>(state.range(0));
    const QList<QList<input_event>> batches = clickBatches(KEY_OK, count);
    measure(state, "record", batches.size() * count, [&] {
        for (const QList<input_event> &batch : batches) {
            node.send(batch);
            listener.readData(fd);
        }
    });
}
BENCHMARK_CAPTURE(readBatch, growth, Log::Off)
    ->Name("Listener/read from a simulated node")
    ->Apply(perRead);
BENCHMARK_CAPTURE(readBatch, off, Log::Off)
    ->Name("Listener/read from a simulated node/logging off")
    ->ArgName("records")
    ->Arg(2)
    ->Arg(recordsPerRead);
BENCHMARK_CAPTURE(readBatch, debug, Log::DebugToNull)
    ->Name("Listener/read from a simulated node/DEBUG to null")
    ->ArgName("records")
    ->Arg(2)
    ->Arg(recordsPerRead);

// The cost of the simulated node alone.
void readBare(benchmark::State &state)
{
    InputSubsystem subsystem;
    subsystem.setRecording(false);
    InputNode &node = subsystem.plug(0, panel());
    const LinuxInputListener opener(nullptr, node.path(), LinuxInputListener::Key);
    const int fd = descriptor(opener);
    const auto count = static_cast<int>(state.range(0));
    const QList<QList<input_event>> batches = clickBatches(KEY_OK, count);
    input_event buffer[recordsPerRead];
    measure(state, "record", batches.size() * count, [&] {
        for (const QList<input_event> &batch : batches) {
            node.send(batch);
            const ssize_t bytes = ::read(fd, buffer, sizeof(buffer));
            benchmark::DoNotOptimize(bytes);
            benchmark::ClobberMemory();
        }
    });
}
BENCHMARK(readBare)->Name("SimulatedNode/read")->Apply(perRead);

// What a batch costs because it is a list, whatever the listener does with it.
void makeList(benchmark::State &state)
{
    const auto count = static_cast<int>(state.range(0));
    const input_event record = InputNode::record(EV_KEY, KEY_OK, 1);
    measure(state, "record", count, [&] {
        QList<input_event> batch;
        batch.reserve(count);
        for (int i = 0; i < count; ++i)
            batch.append(record);
        benchmark::DoNotOptimize(batch);
    });
}
BENCHMARK(makeList)->Name("QList/make and drop a batch")->Apply(perRead);

} // namespace
