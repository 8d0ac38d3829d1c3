#ifndef VORN_WORKBENCH_TIMEINTEXT_H
#define VORN_WORKBENCH_TIMEINTEXT_H

#include <QString>

#include <optional>
#include <string_view>

namespace Vorn::Workbench {

/// A time found in a text, and the format that reads it.
struct TimeInText
{
    std::size_t size = 0;
    QString format; ///< see TimeFormat
    QString dayFirst; ///< the same, where it is open whether the day or the month comes first
};

/// The time that a text begins with, in one of the forms that people use.
std::optional<TimeInText> timeAtFrontOf(std::string_view text);

} // namespace Vorn::Workbench

#endif
