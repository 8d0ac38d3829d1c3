#ifndef VORN_SIM_CLOCKFUNCTIONS_H
#define VORN_SIM_CLOCKFUNCTIONS_H

namespace Vorn::Sim {

/// Which of the replacements of `poll`, `clock_gettime` and their relatives other libraries do not
/// get; null if they get them all.
const char *missingClockFunction();

} // namespace Vorn::Sim

#endif
