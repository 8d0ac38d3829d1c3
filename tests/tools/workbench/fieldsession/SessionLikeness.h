#ifndef SESSIONLIKENESS_H
#define SESSIONLIKENESS_H

#include "Session.h"

#include <string>
#include <vector>

namespace Vorn::Workbench {

/// What is compared of two sessions beside the order of the entries. A log has the records of a
/// read when they are read, a session when they are processed, which differs if a slot takes its
/// time.
enum class Times { Compared, OfOthersThanRecords, Ignored };

/// Where two sessions differ, the first one stated by the workbench and the second one read from a
/// complete log; empty if they are the same. What the library does not log is left out:
///  - when a long press is due, what an event's latency is, and why a key has no command;
///  - whether a key that is down is held back or has no command, until its release;
///  - which key a long press is of, if several may be timed;
///  - which device a descriptor is, and what a selection does to its keys, if it, or one that may
///  be
///    it, has gone before anything was published;
///  - which switch a position is of that was asked for;
///  - whether the event of a pair is that of the second key, if this has not been pressed alone;
///  the
///    outcome has to say so.
std::vector<std::string> differences(const std::vector<SessionEntry> &stated,
                                     const std::vector<SessionEntry> &read,
                                     Times times = Times::Compared);

} // namespace Vorn::Workbench

#endif
