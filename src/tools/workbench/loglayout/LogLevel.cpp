#include "LogLevel.h"

#include <algorithm>
#include <array>

namespace Vorn::Workbench {

std::optional<LogLevel> levelOf(std::string_view name)
{
    constexpr std::array<std::string_view, 6> names = {"TRACE", "DEBUG", "INFO",
                                                       "WARN",  "ERROR", "FATAL"};
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        return std::nullopt;
    return static_cast<LogLevel>(found - names.begin());
}

} // namespace Vorn::Workbench
