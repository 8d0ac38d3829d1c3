#ifndef VORN_WORKBENCH_SCENARIOLIMITS_H
#define VORN_WORKBENCH_SCENARIOLIMITS_H

#include <QtGlobal>

/// How large a scenario may be, so that a mistyped or hostile file ends with a message instead of
/// filling the memory or running for ever. Durations are in milliseconds.
namespace Vorn::Workbench::ScenarioLimit {

constexpr qint64 day = 24LL * 60 * 60 * 1000;

/// Files that are open at the same time, each including the next.
constexpr int includeDepth = 16;

/// Lines of all files together. Depth alone is no limit: 16 files that each include the next one
/// twice are 65536 files.
constexpr int lines = 100'000;

constexpr int steps = 100'000;

/// As many as there are nodes for, see below.
constexpr int devices = 100;

/// After this many, which is said, parsing stops.
constexpr int diagnostics = 100;

/// The longest single duration.
constexpr qint64 wait = 7 * day;

/// All waits together.
constexpr qint64 duration = 100 * day;

/// The largest step of the wall clock, either way: 10 years.
constexpr qint64 clockStep = 3650 * day;

/// The last moment that the wall clock may be set to. Records carry 32 bits of seconds, which end
/// in 2106; this leaves a year for the waits.
constexpr qint64 wallClock = 4'260'000'000'000;

/// The highest N of /dev/input/eventN. Beyond what the library looks at, so that a scenario can
/// show that it does not.
constexpr int node = 99;

} // namespace Vorn::Workbench::ScenarioLimit

#endif
