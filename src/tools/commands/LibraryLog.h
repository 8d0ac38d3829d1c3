#ifndef VORN_TOOLS_LIBRARYLOG_H
#define VORN_TOOLS_LIBRARYLOG_H

#include <string>

namespace Vorn::Tools {

/// Sends the library's log lines to stderr, from @p level on. They contain what devices say of
/// themselves, so what a terminal must not get is escaped.
void showLibraryLog(const std::string &level);

} // namespace Vorn::Tools

#endif
