#ifndef PRODUCTLOG_H
#define PRODUCTLOG_H

#include "LogLevel.h"

#include <log4cplus/layout.h>

#include <QtGlobal>

#include <memory>
#include <string>
#include <vector>

/// What a product logs: the library's lines among others.
struct ProductMessage
{
    std::string logger;
    Vorn::Workbench::LogLevel level;
    std::string message;
    qint64 time = 0; ///< in microseconds since the epoch
};

/// A key press as the library logs it, and two lines of the product, from now on.
std::vector<ProductMessage> keyPress();

/// A line as log4cplus writes it, with its line feed.
std::string written(log4cplus::Layout &layout, const ProductMessage &message);

/// The same by a PatternLayout.
std::string writtenBy(const std::string &pattern, const ProductMessage &message);

std::unique_ptr<log4cplus::Layout> patternLayout(const std::string &pattern);
/// @param properties as in a properties file: "ThreadPrinting=false DateFormat=%H:%M:%S,%q"
std::unique_ptr<log4cplus::Layout> ttccLayout(const std::vector<std::string> &properties);

constexpr char productThread[] = "140007988410176";
constexpr char productContext[] = "front panel";

#endif
