// Starts a subject, feeds it records, and prints what they cost.
//
//   --pace read   subject  read 1 ── work ── read 2 ── work ──    finds burst 2 without sleeping
//                 feeder        └ write 2         └ write 3
//   --pace sleep  subject  read 1 ── work ── sleep ── read 2 ──   is woken by every burst, as by a
//                 feeder                          └ write 2       key press
//
// Measured is the subject's CPU time, from its first burst after the warm-up until it sleeps after
// the last one.

#include "RecordStream.h"
#include "Subject.h"

#include <CLI/CLI.hpp>

#include <linux/input.h>
#include <sys/time.h>

#include <chrono>
#include <cstdint>
#include <exception>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;

// As many as one read of the library takes. A node returns only whole records, but a pipe would
// split the last one of a longer burst.
constexpr int recordsPerRead = 1024 / sizeof(input_event);

struct Options
{
    std::string stream = "clicks";
    int burst = 42;
    long records = 100'000;
    long warmUp = 2'000;
    int keys = 8;
    int devices = 1;
    std::string pace = "sleep";
    double seconds = 2;
    Launch launch;
};

void feed(const Options &options, const std::vector<Node> &nodes,
          std::vector<RecordStream> &streams, const Subject &subject, long records)
{
    std::vector<input_event> burst(static_cast<std::size_t>(options.burst));
    std::size_t device = 0;
    for (long fed = 0; fed < records; fed += options.burst) {
        streams[device].fill(burst);
        nodes[device].write(burst);
        subject.waitUntilDone(nodes, options.pace == "sleep");
        device = (device + 1) % nodes.size();
    }
    subject.waitUntilDone(nodes);
}

struct State
{
    explicit State(const Subject &subject)
        : sleeps(subject.sleeps())
        , allocations(subject.counters().allocations)
        , bytes(subject.counters().bytes)
        , results(subject.counters().results)
        , time(subject.processorTime())
    { }

    long sleeps;
    std::uint64_t allocations;
    std::uint64_t bytes;
    std::uint64_t results;
    long long time;
};

void print(const State &before, const State &after, long records, long bursts)
{
    std::cout << "{\"records\": " << records << ", \"bursts\": " << bursts
              << ", \"nanoseconds\": " << after.time - before.time
              << ", \"allocations\": " << after.allocations - before.allocations
              << ", \"bytes\": " << after.bytes - before.bytes
              << ", \"results\": " << after.results - before.results
              << ", \"sleeps\": " << after.sleeps - before.sleeps << "}\n";
}

void run(const Options &options)
{
    std::vector<Node> nodes(static_cast<std::size_t>(options.devices));
    std::vector<RecordStream> streams(
        nodes.size(),
        RecordStream(options.stream == "hold" ? "held" : options.stream, options.keys));
    const Subject subject(options.launch, nodes);
    subject.waitUntilReady();

    if (options.stream == "hold") {
        // A key held down for some time, without auto-repeat.
        std::vector<input_event> press = {RecordStream::record(EV_KEY, firstKey, 1),
                                          RecordStream::record(EV_SYN, SYN_REPORT, 0)};
        gettimeofday(&press[0].time, nullptr);
        press[1].time = press[0].time;
        nodes[0].write(press);
        std::this_thread::sleep_for(1s);
        const State before(subject);
        std::this_thread::sleep_for(std::chrono::duration<double>(options.seconds));
        print(before, State(subject), 0, 0);
        return;
    }

    feed(options, nodes, streams, subject, options.warmUp);
    const State before(subject);
    const long bursts = (options.records + options.burst - 1) / options.burst;
    feed(options, nodes, streams, subject, bursts * options.burst);
    print(before, State(subject), bursts * options.burst, bursts);
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    CLI::App app("Starts COMMAND with pipes in the place of /dev/input/event0 …, feeds it records, "
                 "and prints what they cost as a line of JSON.");
    app.add_option("--stream", options.stream, "records to feed; hold is one key held down")
        ->check(CLI::IsMember({"clicks", "chords", "held", "switches", "hold"}))
        ->capture_default_str();
    app.add_option("--burst", options.burst, "records written at a time")
        ->check(CLI::Range(1, recordsPerRead))
        ->capture_default_str();
    app.add_option("--records", options.records, "records in total")->capture_default_str();
    app.add_option("--warm-up", options.warmUp, "records fed before those and not counted")
        ->capture_default_str();
    app.add_option("--keys", options.keys, "number of keys that are pressed in turn")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
    app.add_option("--devices", options.devices, "nodes that get the bursts in turn")
        ->check(CLI::Range(1, 10))
        ->capture_default_str();
    app.add_option("--pace", options.pace,
                   "what a burst waits for: the previous one read, or its reader asleep")
        ->check(CLI::IsMember({"read", "sleep"}))
        ->capture_default_str();
    app.add_option("--seconds", options.seconds, "how long the key is held")->capture_default_str();
    app.add_option("--preload", options.launch.preload,
                   "library to preload into the subject; repeatable")
        ->allow_extra_args(false);
    app.add_option("--env", options.launch.environment,
                   "NAME=VALUE for the subject's environment; repeatable")
        ->allow_extra_args(false);
    app.add_option("command", options.launch.command, "the subject and its arguments")->required();
    CLI11_PARSE(app, argc, argv);
    try {
        run(options);
    } catch (const std::exception &error) {
        std::cerr << "vorn_bench_feeder: " << options.launch.command.front() << ": " << error.what()
                  << '\n';
        return 1;
    }
    return 0;
}
