#ifndef VORN_TOOLS_MONITORCOMMAND_H
#define VORN_TOOLS_MONITORCOMMAND_H

#include "Terminal.h"

#include <QString>

namespace CLI {
class App;
}

namespace Vorn::Tools {

struct MonitorOptions
{
    QString profile; ///< empty: none
    QString identifier; ///< null: the profile's; an empty one is an identifier, too
    bool raw = false;
    bool state = false; ///< what the library believes about the keys, whenever it changes
    bool json = false;
    QString record; ///< folder; empty: nothing is recorded
    bool showText = false;
    double duration = 0; ///< s; 0: until Ctrl-C
    Workbench::Colour colour = Workbench::Colour::Auto;
};

CLI::App *addMonitor(CLI::App *app, MonitorOptions *options);

/// Shows what devices send, live. @return the exit status
int monitor(const MonitorOptions &options);

} // namespace Vorn::Tools

#endif
