#ifndef VORN_TOOLS_SIMULATECOMMAND_H
#define VORN_TOOLS_SIMULATECOMMAND_H

#include "ScenarioBatch.h"

namespace CLI {
class App;
}

namespace Vorn::Tools {

struct SimulateOptions : ScenarioOptions
{ };

CLI::App *addSimulate(CLI::App *app, SimulateOptions *options);

/// Runs scenarios and recordings. @return the exit status, the worst of all files
int simulate(const SimulateOptions &options);

} // namespace Vorn::Tools

#endif
