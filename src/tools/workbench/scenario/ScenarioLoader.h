#ifndef VORN_WORKBENCH_SCENARIOLOADER_H
#define VORN_WORKBENCH_SCENARIOLOADER_H

#include "Diagnostic.h"
#include "Profile.h"
#include "Recording.h"
#include "Scenario.h"

#include <QHash>

namespace Vorn::Workbench {

/// A scenario with everything it needs from other files, ready to be simulated.
struct LoadedScenario
{
    QString source; ///< the file that was loaded
    Scenario scenario;
    QString profileFile; ///< path of the profile
    Profile profile;
    QHash<QString, ParsedRecording> recordings; ///< by path
    QVector<int> deviceNodes; ///< N of /dev/input/eventN for each of Scenario::devices
    /// The same for the nodes of each recording that brings its own devices, by its path.
    QHash<QString, QVector<int>> recordingNodes;
    /// Do not simulate if there are errors among them.
    Diagnostics diagnostics;
};

struct LoadOptions
{
    QString profile; ///< overrides the one that the scenario names
    QString expectations; ///< for a recording; empty: the file next to it, if any
    /// A program has a key map of its own; devices without a profile have the keys of the steps.
    bool needsProfile = true;
};

/// Loads a scenario. A recording ("*.evemu", "*.umockdev") is loaded as a scenario that plays it
/// and goes on with the steps of the "*.expect" file next to it, if any.
LoadedScenario loadScenario(const QString &path, const LoadOptions &options);

/// Whether the name of a file is that of a recording.
bool isRecording(const QString &path);

} // namespace Vorn::Workbench

#endif
