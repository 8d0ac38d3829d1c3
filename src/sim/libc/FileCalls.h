#ifndef VORN_SIM_FILECALLS_H
#define VORN_SIM_FILECALLS_H

#include "CallReceiver.h"

#include <cstddef>
#include <functional>

#include <sys/types.h>

namespace Vorn::Sim {

/// Receives the process's file system calls while an input subsystem is simulated. Each function
/// returns whether it served the call, and sets the result (and `errno`) only if it did.
class FileCalls
{
public:
    /// The access bits and the minor number that the status of a simulated node shows.
    struct Attributes
    {
        mode_t mode = 0;
        unsigned int minor = 0;
    };

    virtual ~FileCalls() = default;

    /// Writes the real path for @p path, which is /dev, /dev/input or below the latter. If that
    /// does not fit, writes a path that is too long for the kernel as well.
    virtual void translate(const char *path, char *buffer, std::size_t size) const = 0;
    /// The error that a status call on @p path fails with; 0 to make the real call.
    virtual int beforeStatus(const char *path) = 0;
    /// The error that a watch on @p path fails with; 0 to make the real call.
    virtual int beforeWatch(const char *path) = 0;
    virtual bool open(const char *path, int flags, mode_t mode, int &result) = 0;
    virtual bool read(int fd, void *buffer, std::size_t size, ssize_t &result) = 0;
    virtual bool ioctl(int fd, unsigned long request, void *argument, int &result) = 0;
    virtual bool close(int fd, int &result) = 0;
    /// @param call duplicates @p fd for real and returns the new descriptor, which may have been
    /// open before
    virtual bool duplicate(int fd, const std::function<int()> &call, int &result) = 0;
    /// @param call closes the descriptors from @p first to @p last for real
    virtual bool closeRange(unsigned int first, unsigned int last, const std::function<int()> &call,
                            int &result) = 0;
    virtual bool access(const char *path, int mode, int &result) = 0;
    virtual bool attributes(const char *path, Attributes &result) = 0;
    virtual bool attributes(int fd, Attributes &result) = 0;
};

/// Offers file system calls to @p calls from now on; null to leave them alone.
void serveFiles(FileCalls *calls);

/// Waits until the last call has left whoever was offered it before.
void awaitFileCallers();

/// Not kept beyond the call that is served: whoever wants to go waits for its end.
using FileCallsUse = CallReceiver<FileCalls>::Use;

/// Who is offered calls on descriptors; null for nobody.
FileCallsUse fileCalls();

/// Who is offered calls on @p path; null if it is not simulated.
FileCallsUse fileCallsFor(const char *path);

} // namespace Vorn::Sim

#endif
