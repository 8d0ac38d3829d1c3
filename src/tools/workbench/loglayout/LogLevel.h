#ifndef VORN_WORKBENCH_LOGLEVEL_H
#define VORN_WORKBENCH_LOGLEVEL_H

#include <optional>
#include <string_view>

namespace Vorn::Workbench {

enum class LogLevel { Trace, Debug, Info, Warn, Error, Fatal };

/// The level that a text names in full; nothing if it names none.
std::optional<LogLevel> levelOf(std::string_view name);

} // namespace Vorn::Workbench

#endif
