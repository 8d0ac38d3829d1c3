#include "Application.h"
#include "BenchDevices.h"
#include "Latency.h"
#include "LatencyReaders.h"
#include "Memory.h"
#include "Options.h"
#include "Scan.h"
#include "Silence.h"
#include "Start.h"

#include <CLI/CLI.hpp>

#include <sys/prctl.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>
#include <string>

using namespace Vorn::Bench;

namespace {

CLI::Option *addCount(CLI::App *app, const std::string &name, int *value,
                      const std::string &description)
{
    constexpr int most = 1'000'000;
    return app->add_option(name, *value, description)
        ->type_name("N")
        ->capture_default_str()
        ->check(CLI::Range(1, most).description(""));
}

/// The sub-command of one measurement.
CLI::App *addMeasurement(CLI::App *app, const std::string &name, const std::string &description,
                         Options *options, void (*measure)(const Options &))
{
    CLI::App *command = app->add_subcommand(name, description);
    command
        ->add_option("--dispatcher", options->dispatcher,
                     "Qt's event dispatcher to use, glib or unix")
        ->type_name("NAME")
        ->capture_default_str()
        ->check(CLI::IsMember({"glib", "unix"}).description(""));
    command->callback([options, measure] {
        requireUinput();
        useDispatcher(options->dispatcher);
        measure(*options);
    });
    return command;
}

/// The modes in which this program starts itself, to be measured.
void addSubjects(CLI::App *app, std::string *reader, std::string *node)
{
    // Without a group, the help omits it.
    CLI::App *subject = app->add_subcommand("subject")->group("");
    subject->require_subcommand(1);
    // A subject must not outlive the process that measures it.
    subject->parse_complete_callback([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    CLI::App *latency = subject->add_subcommand("latency");
    latency->add_option("--reader", *reader)->required();
    latency->add_option("node", *node)->required();
    latency->callback([reader, node] { runLatencyReader(*reader, *node); });
    subject->add_subcommand("silence")->callback(&runSilenceSubject);
    subject->add_subcommand("start")->callback(&runStartSubject);
}

int run(int argc, char *argv[])
{
    Options options;
    std::string reader;
    std::string node;
    CLI::App app("Measures the library on kernel devices, which it creates. To be run as root, in "
                 "a guest that has no other input devices. Prints CSV rows: group, subject, "
                 "stream, burst, parameter, figure, unit, median, low, high, runs.");
    app.name("vorn_guest_bench");
    app.require_subcommand(1);

    CLI::App *latency = addMeasurement(
        &app, "latency",
        "From the timestamp of a key record to its receiver, next to a bare loop and an empty Qt "
        "shape",
        &options, &measureLatency);
    addCount(latency, "--records", &options.records, "Key records per run, presses and releases")
        ->check(CLI::Validator(
            [](const std::string &number) {
                // The kernel would drop the next run's first press of a key that is down.
                const bool isEven = std::stoi(number) % 2 == 0;
                return isEven ? std::string()
                              : "an odd number of records leaves the key down: " + number;
            },
            ""));
    addCount(latency, "--runs", &options.runs, "Runs of each reader, interleaved");
    CLI::App *silence = addMeasurement(
        &app, "silence", "How often the library wakes its process, with and without a key held",
        &options, &measureSilence);
    addCount(silence, "--seconds", &options.seconds, "Seconds without a key held");
    CLI::App *scan =
        addMeasurement(&app, "scan", "A pass over 0, 5 and 10 nodes", &options, &measureScan);
    addCount(scan, "--passes", &options.passes, "Passes of each kind");
    CLI::App *start = addMeasurement(
        &app, "start", "From the constructor of a device manager to the end of its first pass",
        &options, &measureStart);
    addCount(start, "--starts", &options.starts, "Processes to start");
    for (CLI::App *command : {scan, start}) {
        command->add_flag("--expedite", options.expedite,
                          "Have the kernel close nodes without a grace period (rcu_expedited), "
                          "which shows the other costs");
    }
    CLI::App *memory =
        addMeasurement(&app, "memory", "The memory that belongs to the idle example player alone",
                       &options, &measureMemory);
    memory->add_option("--player", options.player, "The example player")
        ->type_name("PATH")
        ->required();
    addSubjects(&app, &reader, &node);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "vorn_guest_bench: %s\n", error.what());
        return 1;
    }
}
