#ifndef VORN_WORKBENCH_SCENARIOPARSER_H
#define VORN_WORKBENCH_SCENARIOPARSER_H

#include "Diagnostic.h"
#include "Scenario.h"

#include <functional>

namespace Vorn::Workbench {

/// Answers an `include`: the text of the file, or nothing and why in @p error.
using FileReader = std::function<std::optional<QByteArray>(const QString &path, QString *error)>;

struct ParsedScenario
{
    Scenario scenario; ///< meaningless if there are errors
    Diagnostics diagnostics; ///< in the order of the steps; after a hundred it gives up
};

/// Reads a scenario, the language of docs/scenario.md, and finds what cannot be meant: unknown
/// names, devices that are not plugged in, keys that are down already. Never fails otherwise,
/// whatever @p text is, and reads nothing but by @p readInclude.
///
/// @param file for the diagnostics; files that the scenario names are relative to its folder
ParsedScenario parseScenario(const QByteArray &text, const QString &file,
                             const FileReader &readInclude);

/// A file that @p file names, as seen from the working directory.
QString pathFrom(const QString &file, const QString &name);

} // namespace Vorn::Workbench

#endif
