#ifndef VORN_TOOLS_CHECKCOMMAND_H
#define VORN_TOOLS_CHECKCOMMAND_H

#include "Terminal.h"

#include <QStringList>

namespace CLI {
class App;
}

namespace Vorn::Tools {

struct CheckOptions
{
    QStringList files;
    bool json = false;
    bool strict = false; ///< warnings count as errors
    Workbench::Colour colour = Workbench::Colour::Auto;
};

CLI::App *addCheck(CLI::App *app, CheckOptions *options);

/// Finds the errors in profiles. @return the exit status
int check(const CheckOptions &options);

} // namespace Vorn::Tools

#endif
