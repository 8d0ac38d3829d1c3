#ifndef VORN_SIM_DESCRIPTORFUNCTIONS_H
#define VORN_SIM_DESCRIPTORFUNCTIONS_H

namespace Vorn::Sim {

/// Which of the replacements of `open` and its variants, `close`, `read` and `ioctl` other
/// libraries do not get; null if they get them all.
const char *missingDescriptorFunction();

/// Whether the `ioctl` is served; its result is in @p result then.
bool serveIoctl(int fd, unsigned long request, void *argument, int &result);

} // namespace Vorn::Sim

#endif
