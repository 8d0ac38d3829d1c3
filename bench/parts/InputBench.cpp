#include "Measure.h"

#include "Input.h"
#include "vorn.h"

#include <QObject>

namespace {

InputEvent volumeUp()
{
    return {InputEvent::VolumeUp, InputEvent::KeyPressed, InputEvent::Bus::LocalUI};
}

void constructEvent(benchmark::State &state)
{
    measure(state, "event", 1, [] { benchmark::DoNotOptimize(volumeUp()); });
}
BENCHMARK(constructEvent)->Name("InputEvent/construct and destroy");

void copyEvent(benchmark::State &state)
{
    const InputEvent event = volumeUp();
    measure(state, "event", 1, [&event] {
        // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is what is measured
        const InputEvent copy(event);
        benchmark::DoNotOptimize(copy);
    });
}
BENCHMARK(copyEvent)->Name("InputEvent/copy and destroy");

void printEvent(benchmark::State &state)
{
    const InputEvent event = volumeUp();
    measure(state, "event", 1, [&event] { benchmark::DoNotOptimize(event.toString()); });
}
BENCHMARK(printEvent)->Name("InputEvent/toString");

void reportEvent(benchmark::State &state, Log log)
{
    const Logging logging(log);
    QObject receivers;
    int commands = 0;
    for (qint64 i = 0; i < state.range(0); ++i) {
        Vorn::connect(Input::instance(), &Input::inputEvent, &receivers,
                      [&commands](const InputEvent &event) { commands += event.command(); });
    }
    const InputEvent event = volumeUp();
    measure(state, "event", 1, [&event] { Input::reportInputEvent(event); });
    benchmark::DoNotOptimize(commands);
}
BENCHMARK_CAPTURE(reportEvent, off, Log::Off)
    ->Name("Input/report/logging off")
    ->ArgName("receivers")
    ->Arg(0)
    ->Arg(1)
    ->Arg(5);
BENCHMARK_CAPTURE(reportEvent, debug, Log::DebugToNull)
    ->Name("Input/report/DEBUG to null")
    ->ArgName("receivers")
    ->Arg(1);

} // namespace
