#ifndef VORN_WORKBENCH_PATTERNGUESS_H
#define VORN_WORKBENCH_PATTERNGUESS_H

#include <QStringList>

#include <string_view>

namespace Vorn::Workbench {

/// The conversion patterns that may have written a line, likely ones first. The line must have one
/// of the library's messages from @p message on.
QStringList patternsFor(std::string_view line, std::size_t message);

} // namespace Vorn::Workbench

#endif
