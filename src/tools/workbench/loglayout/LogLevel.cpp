#include "LogLevel.h"

#include <algorithm>

namespace Vorn::Workbench {

std::optional<LogLevel> levelOf(std::string_view name)
{
    const auto *const found = std::find(levelNames.begin(), levelNames.end(), name);
    if (found == levelNames.end())
        return std::nullopt;
    return static_cast<LogLevel>(found - levelNames.begin());
}

} // namespace Vorn::Workbench
