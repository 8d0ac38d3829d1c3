#ifndef VORN_CORE_DBGLOG_H
#define VORN_CORE_DBGLOG_H

#include "vorn_api_export.h"

#include <QString>

#include <ostream>
#include <string>

/// @file
/// Formatting for log lines. Exported and not inline, as in Profiler, so that the maker's library,
/// or a test's, can replace it. A product that defines one of these functions for its own log lines
/// replaces it for the library, too, silently.

/// Formats a function's name for its entry trace.
///
/// @param function the full signature, e.g. "void LinuxInputListener::readData(int)"
/// @param logger name of the logger the trace is written to
/// @return logger and bare function name, e.g. "LinuxInputListener::readData"
VORN_API_EXPORT std::string dbglog_scopedFunction(const std::string &function,
                                                  const std::string &logger);

/// Writes a text in UTF-8. The library writes every `QString` of its log lines by this operator:
/// device paths, kernel names, identifiers, events.
/// @param stream where to; its width and fill are ignored
/// @param text may be empty or null, and may contain any character
/// @return @p stream
VORN_API_EXPORT std::ostream &operator<<(std::ostream &stream, const QString &text);

#endif
