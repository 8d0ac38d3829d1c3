#include "Measure.h"
#include "Slot.h"

#include "InputNode.h"
#include "KeyProcessing.h"
#include "vorn.h"

#include <sstream>

namespace {

using Vorn::Sim::InputNode;

// In milliseconds; no key is held here that long.
constexpr int never = 3'600'000;

void printRecord(benchmark::State &state)
{
    const input_event record = InputNode::record(EV_KEY, KEY_OK, 1);
    std::ostringstream stream;
    measure(state, "record", 1, [&] {
        stream.seekp(0);
        stream << record;
    });
}
BENCHMARK(printRecord)->Name("KeyProcessing/print a record");

void detectClick(benchmark::State &state, Log log)
{
    const Logging logging(log);
    DoubleKeyDetect detector;
    int signalled = 0;
    Vorn::connect(&detector, &DoubleKeyDetect::keyDoubleDetect, &detector,
                  [&](const QList<input_event> &keys, bool) { signalled += keys.size(); });
    const input_event press = InputNode::record(EV_KEY, KEY_OK, 1);
    const input_event release = InputNode::record(EV_KEY, KEY_OK, 0);
    measure(state, "click", 1, [&] {
        detector.checkDoubleKeyDetect(press);
        detector.checkDoubleKeyDetect(release);
    });
    benchmark::DoNotOptimize(signalled);
}
BENCHMARK_CAPTURE(detectClick, off, Log::Off)->Name("DoubleKeyDetect/click/logging off");
BENCHMARK_CAPTURE(detectClick, debug, Log::DebugToNull)
    ->Name("DoubleKeyDetect/click/DEBUG to null");

void detectChord(benchmark::State &state, Log log)
{
    const Logging logging(log);
    DoubleKeyDetect detector;
    int signalled = 0;
    Vorn::connect(&detector, &DoubleKeyDetect::keyDoubleDetect, &detector,
                  [&](const QList<input_event> &keys, bool) { signalled += keys.size(); });
    const QList<input_event> records = {
        InputNode::record(EV_KEY, KEY_STOP, 1), InputNode::record(EV_KEY, KEY_PLAY, 1),
        InputNode::record(EV_KEY, KEY_STOP, 0), InputNode::record(EV_KEY, KEY_PLAY, 0)};
    measure(state, "chord", 1, [&] {
        for (const input_event &record : records)
            detector.checkDoubleKeyDetect(record);
    });
    benchmark::DoNotOptimize(signalled);
}
BENCHMARK_CAPTURE(detectChord, off, Log::Off)->Name("DoubleKeyDetect/chord/logging off");
BENCHMARK_CAPTURE(detectChord, debug, Log::DebugToNull)
    ->Name("DoubleKeyDetect/chord/DEBUG to null");

// The timer runs on between the clicks, as when they follow each other within a tick.
void timeClick(benchmark::State &state)
{
    LongPressDetect detector;
    const auto timeouts = static_cast<int>(state.range(0));
    if (timeouts > 0) {
        QList<int> list = {never};
        while (list.size() < timeouts)
            list.append(never);
        detector.registerEvent(KEY_OK, true, list);
    }
    input_event press = InputNode::record(EV_KEY, KEY_OK, 1);
    input_event release = InputNode::record(EV_KEY, KEY_OK, 0);
    measure(state, "click", 1, [&] {
        detector.process(press);
        detector.process(release);
    });
}
BENCHMARK(timeClick)->Name("LongPressDetect/click")->ArgName("timeouts")->Arg(0)->Arg(1)->Arg(2);

// As people click: the press starts the timer, whose next tick finds no key held and stops it.
void timeLoneClick(benchmark::State &state)
{
    LongPressDetect detector;
    const Slot update(&detector, "update()");
    detector.registerEvent(KEY_OK, true, {never});
    input_event press = InputNode::record(EV_KEY, KEY_OK, 1);
    input_event release = InputNode::record(EV_KEY, KEY_OK, 0);
    measure(state, "click", 1, [&] {
        detector.process(press);
        detector.process(release);
        update();
    });
}
BENCHMARK(timeLoneClick)->Name("LongPressDetect/click and the tick after it");

void tick(benchmark::State &state, int timeout)
{
    LongPressDetect detector;
    int signalled = 0;
    Vorn::connect(&detector, &LongPressDetect::keyLongPress, &detector,
                  [&signalled](int, int repeat) { signalled += repeat; });
    const Slot update(&detector, "update()");
    for (int i = 0; i < static_cast<int>(state.range(0)); ++i) {
        detector.registerEvent(KEY_ESC + i, true, {timeout});
        input_event press = InputNode::record(EV_KEY, KEY_ESC + i, 1);
        detector.process(press);
    }
    measure(state, "tick", 1, [&update] { update(); });
    benchmark::DoNotOptimize(signalled);
}
BENCHMARK_CAPTURE(tick, waiting, never)
    ->Name("LongPressDetect/tick, none due")
    ->ArgName("keys held")
    ->Arg(1)
    ->Arg(2)
    ->Arg(5)
    ->Arg(10)
    ->Arg(20);
BENCHMARK_CAPTURE(tick, due, 0)
    ->Name("LongPressDetect/tick, all due")
    ->ArgName("keys held")
    ->Arg(1)
    ->Arg(2)
    ->Arg(5)
    ->Arg(10)
    ->Arg(20);

} // namespace
