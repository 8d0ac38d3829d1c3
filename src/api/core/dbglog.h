#ifndef DBGLOG_H
#define DBGLOG_H

#include "vorn_api_export.h"

#include <QString>

#include <iosfwd>
#include <string>

/// @file
/// Texts for log lines. Exported and not inline, as in Profiler: the maker's library or a test's
/// takes their place.

/// The text by which an entry trace names the function that it stands in.
///
/// @param function the full signature, e.g. "void LinuxInputListener::readData(int)"
/// @param logger name of the logger that the trace is written to
/// @return logger and bare function name, e.g. "LinuxInputListener::readData"
VORN_API_EXPORT std::string dbglog_scopedFunction(const std::string &function,
                                                  const std::string &logger);

/// Writes @p text to @p stream as UTF-8.
VORN_API_EXPORT std::ostream &operator<<(std::ostream &stream, const QString &text);

#endif
