#include "InterposedFunction.h"

#include "RealCalls.h"

namespace Vorn::Sim::Real {

namespace {

// Opens files of any size, also for callers of the plain open.
NextFunction<int(const char *, int, ...)> nextOpen("open64");
NextFunction<ssize_t(int, void *, size_t)> nextRead("read");
NextFunction<int(int)> nextClose("close");
NextFunction<int(const char *, int)> nextAccess("access");
NextFunction<int(pollfd *, nfds_t, const timespec *, const sigset_t *)> nextPpoll("ppoll");

} // namespace

int open(const char *path, int flags, mode_t mode)
{
    return nextOpen(path, flags, mode);
}

ssize_t read(int fd, void *buffer, std::size_t size)
{
    return nextRead(fd, buffer, size);
}

int close(int fd)
{
    return nextClose(fd);
}

int access(const char *path, int mode)
{
    return nextAccess(path, mode);
}

int ppoll(pollfd *fds, nfds_t count, const timespec *timeout, const sigset_t *mask)
{
    return nextPpoll(fds, count, timeout, mask);
}

} // namespace Vorn::Sim::Real
