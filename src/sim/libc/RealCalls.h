#ifndef VORN_SIM_REALCALLS_H
#define VORN_SIM_REALCALLS_H

#include <csignal>
#include <cstddef>
#include <ctime>

#include <poll.h>
#include <sys/types.h>

/// The C library's functions, past their replacements. For those who serve the calls: theirs would
/// come back to them.
namespace Vorn::Sim::Real {

int open(const char *path, int flags, mode_t mode);
ssize_t read(int fd, void *buffer, std::size_t size);
int close(int fd);
int access(const char *path, int mode);
int ppoll(pollfd *fds, nfds_t count, const timespec *timeout, const sigset_t *mask);

} // namespace Vorn::Sim::Real

#endif
