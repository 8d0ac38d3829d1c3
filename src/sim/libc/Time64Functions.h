#ifndef VORN_SIM_TIME64FUNCTIONS_H
#define VORN_SIM_TIME64FUNCTIONS_H

namespace Vorn::Sim {

/// Which of the replacements of `__ioctl_time64`, `__clock_gettime64` and their relatives other
/// libraries do not get; null if they get them all. On 32-bit systems, programs with a 64-bit
/// `time_t` call these instead of `ioctl` and `clock_gettime`. Null on other systems, too, which
/// have none of them.
const char *missingTime64Function();

} // namespace Vorn::Sim

#endif
