#include "Start.h"

#include "Application.h"
#include "BenchDevices.h"
#include "BenchProduct.h"
#include "Expedition.h"
#include "Figures.h"
#include "Options.h"
#include "Process.h"

#include <chrono>
#include <cstdio>

namespace Vorn::Bench {

namespace {

constexpr int nodes = 5;

} // namespace

void runStartSubject()
{
    const Application application;
    const auto start = std::chrono::steady_clock::now();
    const BenchProduct product;
    waitForFirstPass();
    const double time = microsecondsSince(start);
    requireDevices(product, nodes);
    announceReady();
    std::printf("%.2f\n", time);
}

void measureStart(const Options &options)
{
    requireNoDevices();
    const Expedition expedition(options.expedite);
    const auto devices = makeDevices(nodes);
    std::vector<double> times;
    for (int i = 1; i <= options.starts; ++i) {
        // A new process each time, since a product starts only once.
        Process process({ownPath(), "subject", "start"});
        process.waitUntilReady();
        const std::vector<double> numbers = process.finish(std::chrono::seconds(20));
        times.insert(times.end(), numbers.begin(), numbers.end());
        std::fprintf(stderr, "start, %d of %d: %.0f us\n", i, options.starts, times.back());
    }
    print({"start",
           "library",
           {},
           {},
           expedition.parameter(std::to_string(nodes) + " nodes"),
           "first scan",
           "us"},
          times);
}

} // namespace Vorn::Bench
