#ifndef VORN_WORKBENCH_LIBRARYSIGNS_H
#define VORN_WORKBENCH_LIBRARYSIGNS_H

#include <QString>

#include <optional>
#include <string_view>

/// By what the library's lines are found in a log whose layout is not known yet.
namespace Vorn::Workbench {

bool isLibraryLogger(std::string_view name);

/// The logger whose name ends like this, as the layout's "%.10c" cuts it; the name itself if it is
/// not part of exactly one logger's.
std::string_view completedLogger(std::string_view end);

/// Whether a text begins like one of the library's messages.
bool beginsLikeLibraryMessage(std::string_view message);

/// Where one of the library's messages begins in a line; nothing if there is none.
std::optional<std::size_t> libraryMessageIn(std::string_view line);

/// The loggers for people: "'Input', 'KeyProcessing' …".
QString libraryLoggers();

} // namespace Vorn::Workbench

#endif
