#ifndef VORN_WORKBENCH_LAYOUTGUESS_H
#define VORN_WORKBENCH_LAYOUTGUESS_H

#include "LogLayout.h"

#include <optional>
#include <string>
#include <vector>

namespace Vorn::Workbench {

/// The layout that fits a sample of a log best. Only lines of the library show a layout; nothing if
/// there are none, or if none of the layouts that can be guessed has written them.
/// @param given the pattern that is known; then only what may be around it is guessed
std::optional<LogLayout> guessLayout(const std::vector<std::string> &sample,
                                     const std::optional<LogPattern> &given = std::nullopt);

} // namespace Vorn::Workbench

#endif
