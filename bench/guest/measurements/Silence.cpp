#include "Silence.h"

#include "Application.h"
#include "BenchDevices.h"
#include "BenchProduct.h"
#include "Figures.h"
#include "Options.h"
#include "Process.h"
#include "vorn.h"

#include <chrono>
#include <cstdio>
#include <thread>

namespace Vorn::Bench {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

/// How often a process was woken while this one slept.
struct WakeUps
{
    double count;
    double seconds;
};

WakeUps wakeUpsDuring(const Process &process, std::chrono::milliseconds time)
{
    const auto start = Clock::now();
    const long before = process.wakeUps();
    std::this_thread::sleep_for(time);
    const long after = process.wakeUps();
    return {static_cast<double>(after - before),
            std::chrono::duration<double>(Clock::now() - start).count()};
}

} // namespace

void runSilenceSubject()
{
    const Application application;
    const BenchProduct product;
    const QObject receiver;
    Vorn::connect(Input::instance(), &Input::inputEvent, &receiver, [](const InputEvent &) {});
    waitForFirstPass();
    requireDevices(product, 1);
    announceReady();
    QCoreApplication::exec();
}

void measureSilence(const Options &options)
{
    requireNoDevices();
    const auto device = makeDevice();
    Process process({ownPath(), "subject", "silence"});
    process.waitUntilReady();
    // Not counted: the rest of its start, and a first long press, which loads code.
    device->press(KEY_VOLUMEUP);
    std::this_thread::sleep_for(1s);
    device->release(KEY_VOLUMEUP);
    std::this_thread::sleep_for(1s);

    Figure row = {"silence", "library", "no key held", {}, dispatcher(), {}, "count"};
    std::fprintf(stderr, "silence, %s: no key held for %d s\n", dispatcher().c_str(),
                 options.seconds);
    row.figure = "wake-ups in " + std::to_string(options.seconds) + " s";
    print(row, {wakeUpsDuring(process, std::chrono::seconds(options.seconds)).count});

    std::fprintf(stderr, "silence, %s: a key held for 10 s\n", dispatcher().c_str());
    device->press(KEY_VOLUMEUP);
    const WakeUps held = wakeUpsDuring(process, 10s);
    device->release(KEY_VOLUMEUP);
    std::this_thread::sleep_for(100ms);
    const WakeUps released = wakeUpsDuring(process, 1900ms);

    row.stream = "timed key held";
    row.figure = "wake-ups";
    row.unit = "1/s";
    print(row, {held.count / held.seconds});
    row.stream = "timed key released";
    row.figure = "wake-ups from 0.1 to 2 s";
    row.unit = "count";
    print(row, {released.count});
}

} // namespace Vorn::Bench
