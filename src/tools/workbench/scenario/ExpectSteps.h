#ifndef VORN_WORKBENCH_EXPECTSTEPS_H
#define VORN_WORKBENCH_EXPECTSTEPS_H

namespace Vorn::Workbench {

class ScenarioContext;
class ScenarioLine;

/// Parses what follows `expect`: an event, `nothing` or `identifier`.
void readExpect(ScenarioLine *line, ScenarioContext *context);

} // namespace Vorn::Workbench

#endif
