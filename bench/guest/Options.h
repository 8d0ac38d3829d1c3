#ifndef COMMANDS_H
#define COMMANDS_H

#include <string>

namespace Vorn::Bench {

/// What the measurements have in common. Each prints its rows on stdout, says on stderr how far it
/// is, and throws a `std::exception` when something fails.
struct Options
{
    std::string dispatcher = "glib"; ///< of Qt's: or "unix"
    int records = 1000;
    int runs = 5;
    int seconds = 60;
    int passes = 25;
    int starts = 25;
    bool expedite = false; ///< see Expedition
    std::string player;
};

/// From the stamp of a key record to its receiver.
void measureLatency(const Options &options);
/// How often the library wakes the process up.
void measureSilence(const Options &options);
/// A pass over the nodes.
void measureScan(const Options &options);
/// From the constructor of a device manager to the end of its first pass.
void measureStart(const Options &options);
/// What belongs to the example player alone.
void measureMemory(const Options &options);

/// @name The processes that are measured
/// @{
/// What reads the device in a run of measureLatency().
void runLatencySubject(const std::string &subject, const std::string &node);
void runSilenceSubject();
void runStartSubject();
/// @}

} // namespace Vorn::Bench

#endif
