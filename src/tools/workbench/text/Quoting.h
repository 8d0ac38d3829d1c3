#ifndef VORN_WORKBENCH_QUOTING_H
#define VORN_WORKBENCH_QUOTING_H

#include <QString>

#include <string_view>

namespace Vorn::Workbench {

/// A text from a file or a command line in single quotes, for a message: on one line, shortened if
/// necessary, and without control characters.
QString quoted(const QString &text);
/// The same for UTF-8.
QString quoted(std::string_view text);

} // namespace Vorn::Workbench

#endif
