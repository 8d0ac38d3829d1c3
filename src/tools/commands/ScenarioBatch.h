#ifndef VORN_TOOLS_SCENARIOBATCH_H
#define VORN_TOOLS_SCENARIOBATCH_H

#include "ScenarioLoader.h"
#include "ScenarioRun.h"
#include "SessionLog.h"
#include "Terminal.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace CLI {
class App;
}

namespace Vorn::Tools {

/// What the commands that run scenarios have in common.
struct ScenarioOptions
{
    QString profile; ///< empty: the one that the scenario names
    QStringList files;
    QString expectations; ///< file for a recording; empty: the one beside it
    bool json = false;
    bool raw = false;
    bool quiet = false; ///< only failures
    QString timeline; ///< picture to write; empty: none
    QString junit; ///< file for the results as JUnit XML; empty: none
    bool force = false; ///< whatever exists is replaced
    Workbench::Colour colour = Workbench::Colour::Auto;
};

/// What became of one run.
struct ScenarioOutcome
{
    Workbench::SimulationResult run;
    QString obstacle; ///< why there was no run at all; empty if there was
    QString note; ///< something that people should know about its end
    QStringList output; ///< what a program printed last
};

/// How a command runs scenarios.
struct ScenarioRunner
{
    QString command;
    bool needsProfile = true;
    std::function<ScenarioOutcome(const Workbench::LoadedScenario &,
                                  const Workbench::SessionLog::Sink &)>
        run;
};

/// Adds the arguments and options to a command.
void addScenarioOptions(CLI::App *command, ScenarioOptions *options);

/// Loads the files, runs each, and prints, draws and writes what was asked for.
/// @return the exit status, the worst of all files
int runBatch(const ScenarioOptions &options, const ScenarioRunner &runner);

} // namespace Vorn::Tools

#endif
