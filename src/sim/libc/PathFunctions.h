#ifndef VORN_SIM_PATHFUNCTIONS_H
#define VORN_SIM_PATHFUNCTIONS_H

namespace Vorn::Sim {

/// Which of the replacements of `access`, `opendir`, `scandir` and `inotify_add_watch` other
/// libraries do not get; null if they get them all.
const char *missingPathFunction();

} // namespace Vorn::Sim

#endif
