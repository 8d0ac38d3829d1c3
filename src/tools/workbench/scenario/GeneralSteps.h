#ifndef VORN_WORKBENCH_GENERALSTEPS_H
#define VORN_WORKBENCH_GENERALSTEPS_H

namespace Vorn::Workbench {

class ScenarioContext;
class ScenarioLine;

/// @name Steps that do not start with the name of a device
/// Each parses what follows its keyword.
/// @{
void readStart(ScenarioLine *line, ScenarioContext *context);
void readWait(ScenarioLine *line, ScenarioContext *context);
void readClock(ScenarioLine *line, ScenarioContext *context);
void readSelect(ScenarioLine *line, ScenarioContext *context);
void readInputDirectory(ScenarioLine *line, ScenarioContext *context);
void readPlay(ScenarioLine *line, ScenarioContext *context);
void readIgnore(ScenarioLine *line, ScenarioContext *context);
/// @}

} // namespace Vorn::Workbench

#endif
