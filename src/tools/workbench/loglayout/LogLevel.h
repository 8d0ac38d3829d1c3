#ifndef VORN_WORKBENCH_LOGLEVEL_H
#define VORN_WORKBENCH_LOGLEVEL_H

#include <array>
#include <optional>
#include <string_view>

namespace Vorn::Workbench {

enum class LogLevel { Trace, Debug, Info, Warn, Error, Fatal };

/// The names in full, in the order of the levels.
constexpr std::array<std::string_view, 6> levelNames = {"TRACE", "DEBUG", "INFO",
                                                        "WARN",  "ERROR", "FATAL"};

/// The level that a text names in full; nothing if it names none.
std::optional<LogLevel> levelOf(std::string_view name);

} // namespace Vorn::Workbench

#endif
