#ifndef VORN_TOOLS_EXPLAINCOMMAND_H
#define VORN_TOOLS_EXPLAINCOMMAND_H

#include <QString>

namespace CLI {
class App;
}

namespace Vorn::Tools {

struct ExplainOptions
{
    QString file; ///< a recording, a scenario, a session or a log
    QString profile; ///< for a recording; empty: the one that the scenario names
    QString pattern; ///< layout of a log; empty: guessed
    bool rotated = false; ///< with the older parts of a log
    bool json = false;
    bool silentOnly = false; ///< only records that nothing was published for
};

CLI::App *addExplain(CLI::App *app, ExplainOptions *options);

/// Says what became of each record. @return the exit status
int explain(const ExplainOptions &options);

} // namespace Vorn::Tools

#endif
