#ifndef VORN_WORKBENCH_SCENARIOPARSER_H
#define VORN_WORKBENCH_SCENARIOPARSER_H

#include "Diagnostic.h"
#include "Scenario.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace Vorn::Workbench {

/// Answers an `include`: the text of the file, or nothing and the reason in @p error.
using FileReader = std::function<std::optional<QByteArray>(const QString &path, QString *error)>;

struct ParsedScenario
{
    Scenario scenario; ///< meaningless if there are errors
    Diagnostics diagnostics; ///< in the order of the lines; parsing stops after a hundred
};

/// Parses a scenario, the language of docs/scenario.md. Besides syntax it checks what can be known
/// without running it: names, devices that are not plugged in, keys that are already down. Any
/// @p text gives a result, and no file is read except by @p readInclude.
///
/// @param file for the diagnostics; files that the scenario names are relative to its folder
ParsedScenario parseScenario(const QByteArray &text, const QString &file,
                             const FileReader &readInclude);

} // namespace Vorn::Workbench

#endif
