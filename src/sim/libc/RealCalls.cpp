#include "InterposedFunction.h"

#include "RealCalls.h"

#include <algorithm>
#include <limits>

namespace Vorn::Sim::Real {

namespace {

// Opens files of any size, also for callers of the plain open.
NextFunction<int(const char *, int, ...)> nextOpen("open64");
NextFunction<ssize_t(int, void *, size_t)> nextRead("read");
NextFunction<int(int)> nextClose("close");
NextFunction<int(const char *, int)> nextAccess("access");
NextFunction<int(pollfd *, nfds_t, const timespec *, const sigset_t *)> nextPpoll("ppoll");
NextFunction<int(clockid_t, timespec *)> nextClockGettime("clock_gettime");

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

int ppoll(pollfd *fds, nfds_t count, std::optional<std::chrono::nanoseconds> timeout,
          const sigset_t *mask)
{
    if (!timeout)
        return nextPpoll(fds, count, nullptr, mask);
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(*timeout);
    timespec limit = {};
    limit.tv_sec = static_cast<time_t>(
        std::min<std::chrono::seconds::rep>(seconds.count(), std::numeric_limits<time_t>::max()));
    limit.tv_nsec = static_cast<long>((*timeout - seconds).count());
    return nextPpoll(fds, count, &limit, mask);
}

std::chrono::nanoseconds clock(clockid_t id)
{
    timespec now = {};
    nextClockGettime(id, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

} // namespace Vorn::Sim::Real
