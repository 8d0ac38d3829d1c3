#ifndef VORN_SIM_REALCALLS_H
#define VORN_SIM_REALCALLS_H

#include <chrono>
#include <csignal>
#include <cstddef>
#include <ctime>
#include <optional>

#include <poll.h>
#include <sys/types.h>

/// The C library's functions, past their replacements. For those who serve the calls: theirs would
/// come back to them.
namespace Vorn::Sim::Real {

int open(const char *path, int flags, mode_t mode);
ssize_t read(int fd, void *buffer, std::size_t size);
int close(int fd);
int access(const char *path, int mode);
/// @param timeout none to wait indefinitely
int ppoll(pollfd *fds, nfds_t count, std::optional<std::chrono::nanoseconds> timeout,
          const sigset_t *mask);
/// Does not fail for the clocks that every system has.
std::chrono::nanoseconds clock(clockid_t id);

} // namespace Vorn::Sim::Real

#endif
