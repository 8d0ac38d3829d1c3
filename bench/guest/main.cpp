#include "Commands.h"
#include "Setup.h"

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
                     "Qt's event dispatcher that is used, glib or unix")
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

/// What this program starts itself as.
void addSubjects(CLI::App *app, std::string *reader, std::string *node)
{
    // Without a group it is not in the help.
    CLI::App *subject = app->add_subcommand("subject")->group("");
    subject->require_subcommand(1);
    // It does not outlive its measurer.
    subject->parse_complete_callback([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    CLI::App *latency = subject->add_subcommand("latency");
    latency->add_option("--reader", *reader)->required();
    latency->add_option("node", *node)->required();
    latency->callback([reader, node] { runLatencySubject(*reader, *node); });
    subject->add_subcommand("silence")->callback(&runSilenceSubject);
    subject->add_subcommand("start")->callback(&runStartSubject);
}

int run(int argc, char *argv[])
{
    Options options;
    std::string reader;
    std::string node;
    CLI::App app("Measures the library on devices of this kernel, which it makes itself. For root, "
                 "in a guest that has no other input devices. Prints CSV rows: group, subject, "
                 "stream, burst, parameter, figure, unit, median, low, high, runs.");
    app.name("vorn_guest_bench");
    app.require_subcommand(1);

    CLI::App *latency = addMeasurement(
        &app, "latency",
        "From the stamp of a key record to its receiver, beside a bare loop and an empty Qt shape",
        &options, &measureLatency);
    addCount(latency, "--records", &options.records, "Key records of a run, presses and releases")
        ->check(CLI::Validator(
            [](const std::string &number) {
                // A key that is left down would be no news in the next run.
                const bool isEven = std::stoi(number) % 2 == 0;
                return isEven ? std::string() : "Each press needs its release, not " + number;
            },
            ""));
    addCount(latency, "--runs", &options.runs, "Runs of each reader, in turn");
    CLI::App *silence = addMeasurement(
        &app, "silence", "How often the library wakes the process up, with and without a key held",
        &options, &measureSilence);
    addCount(silence, "--seconds", &options.seconds, "How long no key is held");
    CLI::App *scan =
        addMeasurement(&app, "scan", "A pass over 0, 5 and 10 nodes", &options, &measureScan);
    addCount(scan, "--passes", &options.passes, "Passes of each kind");
    CLI::App *start = addMeasurement(
        &app, "start", "From the constructor of a device manager to the end of its first pass",
        &options, &measureStart);
    addCount(start, "--starts", &options.starts, "Processes that are started");
    for (CLI::App *command : {scan, start}) {
        command->add_flag("--expedite", options.expedite,
                          "Have the kernel close a node without a wait (rcu_expedited), so that "
                          "what else it costs is seen");
    }
    CLI::App *memory = addMeasurement(
        &app, "memory", "What belongs to the idle example player alone", &options, &measureMemory);
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
