#ifndef VORN_TOOLS_DEVICESCOMMAND_H
#define VORN_TOOLS_DEVICESCOMMAND_H

#include "Terminal.h"

namespace CLI {
class App;
}

namespace Vorn::Tools {

struct DevicesOptions
{
    bool json = false;
    Workbench::Colour colour = Workbench::Colour::Auto;
};

CLI::App *addDevices(CLI::App *app, DevicesOptions *options);

/// Lists the input devices. @return the exit status
int devices(const DevicesOptions &options);

} // namespace Vorn::Tools

#endif
