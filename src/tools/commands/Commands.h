#ifndef VORN_TOOLS_COMMANDS_H
#define VORN_TOOLS_COMMANDS_H

#include "Terminal.h"

#include <QString>
#include <QStringList>

/// The sub-commands of vorn-input, each in a source file of its name. Each takes its options,
/// writes to the standard streams and returns the exit status of the process.
namespace Vorn::Tools {

/// Exit statuses of all sub-commands.
enum ExitStatus : int {
    Success = 0,
    /// The work was done and found something wrong: a mistake in a profile, a failed expectation.
    Found = 1,
    /// The work could not be done: wrong options, a file that cannot be read or written.
    Failure = 2,
};

struct DevicesOptions
{
    bool json = false;
    Workbench::Colour colour = Workbench::Colour::Auto;
};
int devices(const DevicesOptions &options);

struct MonitorOptions
{
    QString profile; ///< empty: none
    QString identifier; ///< empty: the profile's
    bool raw = false;
    bool json = false;
    QString record; ///< folder; empty: nothing is recorded
    bool showText = false;
    double duration = 0; ///< s; 0: until Ctrl-C
    Workbench::Colour colour = Workbench::Colour::Auto;
};
int monitor(const MonitorOptions &options);

struct LearnOptions
{
    QString output; ///< "-" for the standard output
    QStringList commands; ///< in the order in which they are asked for; empty: the usual ones
    bool yes = false; ///< every offer is accepted
    bool force = false; ///< an existing file is replaced
    double patience = 0; ///< s to wait for a key; 0: for ever
    Workbench::Colour colour = Workbench::Colour::Auto;
};
int learn(const LearnOptions &options);

struct CheckOptions
{
    QStringList files;
    bool json = false;
    bool strict = false; ///< warnings count as errors
    Workbench::Colour colour = Workbench::Colour::Auto;
};
int check(const CheckOptions &options);

struct SimulateOptions
{
    QString profile; ///< empty: what the scenarios say
    QStringList files;
    QString expectations; ///< file for a recording; empty: the one beside it
    bool json = false;
    bool raw = false;
    bool quiet = false; ///< only what fails
    QString timeline; ///< picture to write; empty: none
    Workbench::Colour colour = Workbench::Colour::Auto;
};
int simulate(const SimulateOptions &options);

struct TimelineOptions
{
    QString file;
    QString output;
    QString title; ///< empty: the session's source
    double from = 0; ///< s of the session
    double to = 0; ///< s; 0: its end
};
int timeline(const TimelineOptions &options);

} // namespace Vorn::Tools

#endif
