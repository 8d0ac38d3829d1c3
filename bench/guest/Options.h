#ifndef OPTIONS_H
#define OPTIONS_H

#include <string>

namespace Vorn::Bench {

/// Of the command line. Each measurement takes those that concern it, prints its rows on stdout and
/// its progress on stderr, and throws a `std::exception` if it fails.
struct Options
{
    std::string dispatcher = "glib"; ///< Qt's event dispatcher: "glib" or "unix"
    int records = 1000;
    int runs = 5;
    int seconds = 60;
    int passes = 25;
    int starts = 25;
    bool expedite = false; ///< see Expedition
    std::string player;
};

} // namespace Vorn::Bench

#endif
