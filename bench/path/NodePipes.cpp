// Preloaded into every subject: /dev/input/eventN is a pipe that the feeder writes to.
//
// Reads, polls and wake-ups are the kernel's own; this library only answers `open` and the queries
// about a device. vorn::sim would not do: its queue is inside the process and would be measured
// with its reader.

// `open` and `open64` are both defined below, so neither may be an alias of the other.
#undef _FILE_OFFSET_BITS
#undef _TIME_BITS
#undef _FORTIFY_SOURCE

#include "Counters.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#define INTERPOSED extern "C" __attribute__((visibility("default")))

extern "C" {
// Called by code built with size checks; no header declares them.
INTERPOSED int __open_2(const char *path, int flags);
INTERPOSED int __open64_2(const char *path, int flags);
}

namespace {

constexpr char nodePrefix[] = "/dev/input/event";
constexpr char deviceName[] = "bench-panel";
constexpr int maximalDescriptor = 1024;

std::array<bool, maximalDescriptor> isNode = {};

/// The read end in the place of @p path, or -1.
int pipeOf(const char *path)
{
    if (!path || std::strncmp(path, nodePrefix, sizeof(nodePrefix) - 1) != 0)
        return -1;
    const char *ends = std::getenv(nodesVariable);
    for (int number = std::atoi(path + sizeof(nodePrefix) - 1); ends && number > 0; --number) {
        ends = std::strchr(ends, ',');
        ends = ends ? ends + 1 : nullptr;
    }
    return ends ? std::atoi(ends) : -1;
}

int openFile(const char *name, const char *path, int flags, mode_t mode)
{
    using Open = int(const char *, int, ...);
    auto *next = reinterpret_cast<Open *>(dlsym(RTLD_NEXT, name));
    const int end = pipeOf(path);
    if (end < 0)
        return next(path, flags, mode);
    // Opened anew, not duplicated, so that each reader has its own flags.
    std::array<char, 32> alias;
    std::snprintf(alias.data(), alias.size(), "/proc/self/fd/%d", end);
    // Never for writing: the reader would hold a write end of its own pipe.
    const int fd = next(alias.data(), flags & ~(O_RDWR | O_WRONLY), mode);
    if (fd >= 0 && fd < maximalDescriptor)
        isNode[static_cast<std::size_t>(fd)] = true;
    return fd;
}

void setBit(unsigned char *bitmap, std::size_t size, unsigned int bit)
{
    if (bit / 8 < size)
        bitmap[bit / 8] = static_cast<unsigned char>(bitmap[bit / 8] | 1U << (bit % 8));
}

/// The answer of a panel with every key and every switch.
int answer(unsigned long request, void *argument)
{
    const std::size_t size = _IOC_SIZE(request);
    const unsigned long number = _IOC_NR(request);
    auto *bytes = static_cast<unsigned char *>(argument);
    if (_IOC_DIR(request) != _IOC_READ) {
        // A pipe with one reader is as good as grabbed. There is no auto-repeat to configure.
        if (request == EVIOCGRAB || request == EVIOCSCLOCKID)
            return 0;
        errno = ENOSYS;
        return -1;
    }
    std::memset(bytes, 0, size);
    if (request == EVIOCGVERSION) {
        constexpr int version = EV_VERSION;
        std::memcpy(bytes, &version, sizeof(version));
        return 0;
    }
    if (request == EVIOCGID) {
        constexpr input_id identity = {BUS_HOST, 1, 1, 1};
        std::memcpy(bytes, &identity, sizeof(identity));
        return 0;
    }
    if (number == _IOC_NR(EVIOCGNAME(0))) {
        std::memcpy(bytes, deviceName, std::min(size, sizeof(deviceName)));
        return sizeof(deviceName);
    }
    if (number == _IOC_NR(EVIOCGPHYS(0)) || number == _IOC_NR(EVIOCGUNIQ(0))) {
        errno = ENOENT;
        return -1;
    }
    if (number == _IOC_NR(EVIOCGBIT(0, 0))) {
        for (const unsigned int type : {0U + EV_SYN, 0U + EV_KEY, 0U + EV_SW})
            setBit(bytes, size, type);
    } else if (number == _IOC_NR(EVIOCGBIT(EV_KEY, 0))) {
        for (unsigned int code = KEY_ESC; code <= KEY_MICMUTE; ++code)
            setBit(bytes, size, code);
    } else if (number == _IOC_NR(EVIOCGBIT(EV_SW, 0))) {
        for (unsigned int code = 0; code <= SW_MAX; ++code)
            setBit(bytes, size, code);
    }
    return static_cast<int>(size);
}

mode_t modeOf(int flags, va_list arguments)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

} // namespace

INTERPOSED int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openFile("open", path, flags, mode);
}

INTERPOSED int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openFile("open64", path, flags, mode);
}

int __open_2(const char *path, int flags)
{
    return openFile("open", path, flags, 0);
}

int __open64_2(const char *path, int flags)
{
    return openFile("open64", path, flags, 0);
}

INTERPOSED int ioctl(int fd, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    if (fd >= 0 && fd < maximalDescriptor && isNode[static_cast<std::size_t>(fd)]
        && _IOC_TYPE(request) == 'E')
        return answer(request, argument);
    using Ioctl = int(int, unsigned long, ...);
    static auto *const next = reinterpret_cast<Ioctl *>(dlsym(RTLD_NEXT, "ioctl"));
    return next(fd, request, argument);
}

INTERPOSED int close(int fd)
{
    if (fd >= 0 && fd < maximalDescriptor)
        isNode[static_cast<std::size_t>(fd)] = false;
    using Close = int(int);
    static auto *const next = reinterpret_cast<Close *>(dlsym(RTLD_NEXT, "close"));
    return next(fd);
}
