#ifndef VORN_WORKBENCH_DEVICEACTIONS_H
#define VORN_WORKBENCH_DEVICEACTIONS_H

#include <QStringList>

namespace Vorn::Workbench {

class ScenarioContext;
class ScenarioLine;

/// The words that may follow the name of a device.
QStringList actionNames();

/// Parses what follows the name of a device: `press KEY_OK`, `unplug`, …
/// @param device its index in Scenario::devices
void readAction(ScenarioLine *line, ScenarioContext *context, int device);

} // namespace Vorn::Workbench

#endif
