#include "Latency.h"

#include "Application.h"
#include "BenchDevices.h"
#include "Figures.h"
#include "LatencyReaders.h"
#include "Options.h"
#include "Process.h"

#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace Vorn::Bench {

namespace {

// Sent first and not counted: programs are being loaded and caches filled.
constexpr int warmUpRecords = 20;

/// While this lives, this process yields to any other that wakes up: a real key is not a process
/// and does not compete with its reader for a processor.
class GivingWay
{
public:
    GivingWay() { set(SCHED_IDLE); }
    ~GivingWay() { set(SCHED_OTHER); }
    GivingWay(const GivingWay &) = delete;
    GivingWay &operator=(const GivingWay &) = delete;

private:
    static void set(int policy)
    {
        const sched_param none = {};
        if (::sched_setscheduler(0, policy, &none) != 0)
            qFatal("cannot change the scheduling of this process: %s", std::strerror(errno));
    }
};

/// Sends a record and its SYN_REPORT at once, as a driver does.
void send(const UinputDevice &device, unsigned int code, int value)
{
    std::array<input_event, 2> records = {};
    records[0].type = EV_KEY;
    records[0].code = static_cast<decltype(records[0].code)>(code);
    records[0].value = value;
    if (::write(device.descriptor(), records.data(), sizeof(records)) != sizeof(records))
        throw std::system_error(errno, std::generic_category(), "cannot send a record");
}

/// Presses and releases the key like a quick hand, so that each record finds its reader asleep;
/// with the same pauses every time.
void writeClicks(const UinputDevice &device, int records)
{
    const GivingWay givingWay;
    // NOLINTNEXTLINE(cert-msc51-cpp,cert-msc32-c): the same for every reader
    std::mt19937 random(1);
    std::uniform_int_distribution<int> pause(5000, 15'000);
    for (int i = 0; i < records; ++i) {
        send(device, measuredKey, i % 2 == 0 ? 1 : 0);
        std::this_thread::sleep_for(std::chrono::microseconds(pause(random)));
    }
    send(device, endKey, 1);
    send(device, endKey, 0);
}

/// One run of one reader: the latencies in microseconds, in ascending order.
std::vector<double> measureOnce(const UinputDevice &device, const std::string &reader, int records)
{
    Process process(
        {ownPath(), "subject", "latency", "--reader", reader, device.node().toStdString()});
    process.waitUntilReady();
    writeClicks(device, warmUpRecords + records);
    std::vector<double> latencies = process.finish(std::chrono::seconds(20));
    const auto sent = static_cast<std::size_t>(warmUpRecords) + static_cast<std::size_t>(records);
    if (latencies.size() != sent) {
        throw std::runtime_error(reader + " received " + std::to_string(latencies.size()) + " of "
                                 + std::to_string(sent) + " records");
    }
    latencies.erase(latencies.begin(), latencies.begin() + warmUpRecords);
    for (double &latency : latencies)
        latency /= 1000;
    std::sort(latencies.begin(), latencies.end());
    return latencies;
}

} // namespace

void measureLatency(const Options &options)
{
    const char *const readers[] = {bareLoop, emptyQtShape, library};
    const std::pair<const char *, double> figures[] = {{"p50", 50}, {"p99", 99}, {"max", 100}};
    std::map<std::string, std::map<std::string, std::vector<double>>> results;
    const auto device = makeDevice();
    for (int run = 1; run <= options.runs; ++run) {
        // Interleaved, so that a disturbance of the machine affects all readers alike.
        for (const char *reader : readers) {
            const std::vector<double> latencies = measureOnce(*device, reader, options.records);
            for (const auto &[name, percent] : figures)
                results[reader][name].push_back(percentile(latencies, percent));
            std::fprintf(stderr, "latency, run %d of %d, %s: p50 %.1f us of %zu records\n", run,
                         options.runs, reader, results[reader]["p50"].back(), latencies.size());
        }
    }

    for (const char *reader : readers) {
        Figure row = {"latency", reader, "clicks", "2", dispatcher(), {}, "us"};
        for (const auto &[name, percent] : figures) {
            row.figure = name;
            print(row, results[reader][name]);
        }
        if (reader == bareLoop)
            continue;
        // Compared within each run, whose disturbances both readers share.
        const std::vector<double> &own = results[reader]["p50"];
        const std::vector<double> &bare = results[bareLoop]["p50"];
        std::vector<double> ratios;
        for (std::size_t i = 0; i < own.size(); ++i)
            ratios.push_back(own[i] / bare[i]);
        const auto [low, high] = std::minmax_element(ratios.begin(), ratios.end());
        row.figure = "p50 to bare loop";
        row.unit = "ratio";
        print(row, median(own) / median(bare), *low, *high, ratios.size());
    }
}

} // namespace Vorn::Bench
