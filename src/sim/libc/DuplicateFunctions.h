#ifndef VORN_SIM_DUPLICATEFUNCTIONS_H
#define VORN_SIM_DUPLICATEFUNCTIONS_H

#include "InterposedFunction.h"

namespace Vorn::Sim {

/// Which of the replacements of `dup` and its variants, `fcntl` and `close_range` other libraries
/// do not get; null if they get them all.
const char *missingDuplicateFunction();

/// An `fcntl` of any kind.
/// @param next the function that the caller replaces
int callFcntl(NextFunction<int(int, int, ...)> &next, int fd, int command, void *argument);

} // namespace Vorn::Sim

#endif
