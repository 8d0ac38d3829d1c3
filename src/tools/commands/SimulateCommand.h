#ifndef VORN_TOOLS_SIMULATECOMMAND_H
#define VORN_TOOLS_SIMULATECOMMAND_H

#include "Terminal.h"

#include <QString>
#include <QStringList>

namespace CLI {
class App;
}

namespace Vorn::Tools {

struct SimulateOptions
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

CLI::App *addSimulate(CLI::App *app, SimulateOptions *options);

/// Runs scenarios and recordings. @return the exit status, the worst of all files
int simulate(const SimulateOptions &options);

} // namespace Vorn::Tools

#endif
