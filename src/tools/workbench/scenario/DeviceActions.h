#ifndef VORN_WORKBENCH_DEVICEACTIONS_H
#define VORN_WORKBENCH_DEVICEACTIONS_H

namespace Vorn::Workbench {

class ScenarioContext;
class ScenarioLine;

/// Parses what follows the name of a device: `press KEY_OK`, `unplug`, …
/// @param device its index in Scenario::devices
void readAction(ScenarioLine *line, ScenarioContext *context, int device);

} // namespace Vorn::Workbench

#endif
