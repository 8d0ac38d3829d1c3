#ifndef VORN_WORKBENCH_SCENARIOLOADER_H
#define VORN_WORKBENCH_SCENARIOLOADER_H

#include "Diagnostic.h"
#include "Profile.h"
#include "Recording.h"
#include "Scenario.h"

#include <QHash>

namespace Vorn::Workbench {

/// A scenario with all that it takes from other files, ready to be simulated.
struct LoadedScenario
{
    QString source; ///< the file that was asked for
    Scenario scenario;
    QString profileFile; ///< path of the profile
    Profile profile;
    QHash<QString, ParsedRecording> recordings; ///< by path
    QVector<int> deviceNodes; ///< N of /dev/input/eventN for each of Scenario::devices
    /// The same for each node of a recording that brings its own devices, by the recording's path.
    QHash<QString, QVector<int>> recordingNodes;
    /// With an error there is nothing to simulate.
    Diagnostics diagnostics;
};

struct LoadOptions
{
    QString profile; ///< goes before what the scenario names
    QString expectations; ///< for a recording; empty: the file beside it, if there is one
};

/// Reads a scenario, or a recording ("*.evemu", "*.umockdev") as one that plays it: with the steps
/// of the file "*.expect" beside it, if there is one.
LoadedScenario loadScenario(const QString &path, const LoadOptions &options);

/// Whether a file is taken for a recording, by its name.
bool isRecording(const QString &path);

} // namespace Vorn::Workbench

#endif
