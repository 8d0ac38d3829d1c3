#include "InterposedFunction.h"

#include "DescriptorFunctions.h"
#include "FileCalls.h"

#include <cstdarg>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

// Code built with size checks calls these; no header declares them.
VORN_SIM_INTERPOSED int __open_2(const char *path, int flags);
VORN_SIM_INTERPOSED int __open64_2(const char *path, int flags);
VORN_SIM_INTERPOSED int __openat_2(int folder, const char *path, int flags);
VORN_SIM_INTERPOSED int __openat64_2(int folder, const char *path, int flags);
VORN_SIM_INTERPOSED ssize_t __read_chk(int fd, void *buffer, size_t size, size_t capacity);

namespace Vorn::Sim {

namespace {

NextFunction<int(const char *, int, ...)> nextOpen("open");
NextFunction<int(const char *, int, ...)> nextOpen64("open64");
NextFunction<int(int, const char *, int, ...)> nextOpenat("openat");
NextFunction<int(int, const char *, int, ...)> nextOpenat64("openat64");
NextFunction<int(const char *, int)> nextOpen2("__open_2");
NextFunction<int(const char *, int)> nextOpen642("__open64_2");
NextFunction<int(int, const char *, int)> nextOpenat2("__openat_2");
NextFunction<int(int, const char *, int)> nextOpenat642("__openat64_2");
NextFunction<int(int)> nextClose("close");
NextFunction<ssize_t(int, void *, size_t)> nextRead("read");
NextFunction<ssize_t(int, void *, size_t, size_t)> nextReadChk("__read_chk");
NextFunction<int(int, unsigned long, ...)> nextIoctl("ioctl");

bool serveOpen(const char *path, int flags, mode_t mode, int &result)
{
    const FileCallsUse calls = fileCallsFor(path);
    return calls && calls->open(path, flags, mode, result);
}

bool serveClose(int fd, int &result)
{
    const FileCallsUse calls = fileCalls();
    return calls && calls->close(fd, result);
}

bool serveRead(int fd, void *buffer, size_t size, ssize_t &result)
{
    const FileCallsUse calls = fileCalls();
    return calls && calls->read(fd, buffer, size, result);
}

// Whether the caller passed a mode: reading one that is not there is undefined.
bool hasMode(int flags)
{
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

} // namespace

bool serveIoctl(int fd, unsigned long request, void *argument, int &result)
{
    const FileCallsUse calls = fileCalls();
    return calls && calls->ioctl(fd, request, argument, result);
}

} // namespace Vorn::Sim

using namespace Vorn::Sim;

VORN_SIM_INTERPOSED int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = hasMode(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    int result = -1;
    return serveOpen(path, flags, mode, result) ? result : nextOpen(path, flags, mode);
}

VORN_SIM_INTERPOSED int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = hasMode(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    int result = -1;
    return serveOpen(path, flags, mode, result) ? result : nextOpen64(path, flags, mode);
}

VORN_SIM_INTERPOSED int openat(int folder, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = hasMode(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    int result = -1;
    return serveOpen(path, flags, mode, result) ? result : nextOpenat(folder, path, flags, mode);
}

VORN_SIM_INTERPOSED int openat64(int folder, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = hasMode(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    int result = -1;
    return serveOpen(path, flags, mode, result) ? result : nextOpenat64(folder, path, flags, mode);
}

VORN_SIM_INTERPOSED int __open_2(const char *path, int flags)
{
    int result = -1;
    return serveOpen(path, flags, 0, result) ? result : nextOpen2(path, flags);
}

VORN_SIM_INTERPOSED int __open64_2(const char *path, int flags)
{
    int result = -1;
    return serveOpen(path, flags, 0, result) ? result : nextOpen642(path, flags);
}

VORN_SIM_INTERPOSED int __openat_2(int folder, const char *path, int flags)
{
    int result = -1;
    return serveOpen(path, flags, 0, result) ? result : nextOpenat2(folder, path, flags);
}

VORN_SIM_INTERPOSED int __openat64_2(int folder, const char *path, int flags)
{
    int result = -1;
    return serveOpen(path, flags, 0, result) ? result : nextOpenat642(folder, path, flags);
}

VORN_SIM_INTERPOSED int close(int fd)
{
    int result = -1;
    return serveClose(fd, result) ? result : nextClose(fd);
}

VORN_SIM_INTERPOSED ssize_t read(int fd, void *buffer, size_t size)
{
    ssize_t result = -1;
    return serveRead(fd, buffer, size, result) ? result : nextRead(fd, buffer, size);
}

VORN_SIM_INTERPOSED ssize_t __read_chk(int fd, void *buffer, size_t size, size_t capacity)
{
    ssize_t result = -1;
    // The C library ends the process for a read that overflows its buffer.
    return size <= capacity && serveRead(fd, buffer, size, result)
        ? result
        : nextReadChk(fd, buffer, size, capacity);
}

VORN_SIM_INTERPOSED int ioctl(int fd, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    // The C library takes every argument for a pointer, too, whether or not there is one.
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    int result = -1;
    return serveIoctl(fd, request, argument, result) ? result : nextIoctl(fd, request, argument);
}

namespace Vorn::Sim {

const char *missingDescriptorFunction()
{
    return firstMissing({
        {"open", reinterpret_cast<void *>(&::open)},
        {"open64", reinterpret_cast<void *>(&::open64)},
        {"openat", reinterpret_cast<void *>(&::openat)},
        {"openat64", reinterpret_cast<void *>(&::openat64)},
        {"__open_2", reinterpret_cast<void *>(&::__open_2)},
        {"__open64_2", reinterpret_cast<void *>(&::__open64_2)},
        {"__openat_2", reinterpret_cast<void *>(&::__openat_2)},
        {"__openat64_2", reinterpret_cast<void *>(&::__openat64_2)},
        {"close", reinterpret_cast<void *>(&::close)},
        {"read", reinterpret_cast<void *>(&::read)},
        {"__read_chk", reinterpret_cast<void *>(&::__read_chk)},
        {"ioctl", reinterpret_cast<void *>(&::ioctl)},
    });
}

} // namespace Vorn::Sim
