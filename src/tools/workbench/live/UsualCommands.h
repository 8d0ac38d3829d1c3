#ifndef VORN_WORKBENCH_USUALCOMMANDS_H
#define VORN_WORKBENCH_USUALCOMMANDS_H

#include "EventNames.h"
#include "Input.h"

#include <optional>

namespace Vorn::Workbench {

/// The command that a key or a switch is usually mapped to, if there is one:
/// `VolumeUp` for KEY_VOLUMEUP, `SWLineIn` for SW_LINEIN_INSERT.
std::optional<InputEvent::Command> usualKeyCommand(int keyCode);
std::optional<InputEvent::Command> usualSwitchCommand(int switchCode);

} // namespace Vorn::Workbench

#endif
