#ifndef VORN_TOOLS_DRIVECOMMAND_H
#define VORN_TOOLS_DRIVECOMMAND_H

#include "ScenarioBatch.h"

#include <QString>
#include <QStringList>

namespace CLI {
class App;
}

namespace Vorn::Tools {

struct DriveOptions : ScenarioOptions
{
    QStringList command; ///< the program and its arguments
    bool virtualTime = false;
    QString tolerance = QStringLiteral("100ms");
    QString timeout = QStringLiteral("10s");
    QString agent; ///< library to preload; empty: the one that belongs to this program
};

CLI::App *addDrive(CLI::App *app, DriveOptions *options);

/// Runs scenarios on a program. @return the exit status, the worst of all files
int drive(const DriveOptions &options);

} // namespace Vorn::Tools

#endif
