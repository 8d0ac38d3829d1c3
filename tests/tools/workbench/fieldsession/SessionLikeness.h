#ifndef SESSIONLIKENESS_H
#define SESSIONLIKENESS_H

#include "Session.h"

#include <string>
#include <vector>

namespace Vorn::Workbench {

/// What a session has in common with one that is read from a complete log of it, in brief: all but
/// what the library does not log.
std::vector<std::string> loggedPart(const std::vector<SessionEntry> &entries);

/// Where two sessions differ, the first one stated by the workbench and the second one read from a
/// log; empty if they are the same.
std::vector<std::string> differences(const std::vector<SessionEntry> &stated,
                                     const std::vector<SessionEntry> &read);

} // namespace Vorn::Workbench

#endif
