#ifndef VORN_SIM_INTERPOSITION_H
#define VORN_SIM_INTERPOSITION_H

#include <csignal>
#include <cstddef>
#include <ctime>

#include <poll.h>
#include <sys/types.h>

namespace Vorn::Sim {

/// What the system calls of the process are offered to while an input subsystem is simulated.
/// Each function returns whether it served the call; only then it has set the result (and `errno`).
class FileCalls
{
public:
    /// The access bits and the number that the status of a simulated node shows.
    struct Attributes
    {
        mode_t mode = 0;
        unsigned int minor = 0;
    };

    virtual ~FileCalls() = default;

    /// Writes the real path for @p path, which is /dev, /dev/input or below the latter; one that is
    /// too long as well if it does not fit.
    virtual void translate(const char *path, char *buffer, std::size_t size) const = 0;
    virtual bool open(const char *path, int flags, mode_t mode, int &result) = 0;
    virtual bool read(int fd, void *buffer, std::size_t size, ssize_t &result) = 0;
    virtual bool ioctl(int fd, unsigned long request, void *argument, int &result) = 0;
    virtual bool close(int fd, int &result) = 0;
    virtual bool access(const char *path, int mode, int &result) = 0;
    virtual bool attributes(const char *path, Attributes &result) = 0;
    virtual bool attributes(int fd, Attributes &result) = 0;
};

/// The same for the clocks.
class ClockCalls
{
public:
    virtual ~ClockCalls() = default;

    /// A call of `poll` or `ppoll`.
    struct Poll
    {
        pollfd *fds;
        nfds_t count;
        /// Null to wait without end.
        const timespec *timeout;
        const sigset_t *mask;
        /// Where it was made.
        const void *caller;
    };

    virtual bool get(clockid_t clock, timespec &result) = 0;
    virtual bool poll(const Poll &call, int &result) = 0;
};

/// Offers system calls to @p calls from now on; null to leave them alone.
void serveFiles(FileCalls *calls);
void serveClocks(ClockCalls *calls);

/// The name of a function that is not replaced in this process, as other libraries see it; null
/// if all are.
const char *missingInterposition();

/// The functions that stand behind the replaced ones.
namespace Real {
int open(const char *path, int flags, mode_t mode);
ssize_t read(int fd, void *buffer, std::size_t size);
int close(int fd);
int ioctl(int fd, unsigned long request, void *argument);
int access(const char *path, int mode);
int ppoll(pollfd *fds, nfds_t count, const timespec *timeout, const sigset_t *mask);
} // namespace Real

} // namespace Vorn::Sim

#endif
