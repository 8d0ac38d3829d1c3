#ifndef VORN_TOOLS_LEARNCOMMAND_H
#define VORN_TOOLS_LEARNCOMMAND_H

#include <QString>
#include <QStringList>

namespace CLI {
class App;
}

namespace Vorn::Tools {

struct LearnOptions
{
    QString output; ///< "-" for the standard output
    QStringList commands; ///< in the order in which they are asked for; empty: the usual ones
    bool yes = false; ///< every offer is accepted
    bool force = false; ///< an existing file is replaced
    double patience = 0; ///< s to wait for a key; 0: for ever
};

CLI::App *addLearn(CLI::App *app, LearnOptions *options);

/// Writes a profile from keys that are pressed. @return the exit status
int learn(const LearnOptions &options);

} // namespace Vorn::Tools

#endif
