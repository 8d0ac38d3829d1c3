// The plain functions and their variants for large files are defined side by side here, so neither
// may be an alias of the other, nor an inline wrapper that checks sizes.
#undef _FILE_OFFSET_BITS
#undef _TIME_BITS
#undef _FORTIFY_SOURCE

#include "Interposition.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

#define VORN_SIM_INTERPOSED extern "C" __attribute__((visibility("default")))

extern "C" {
// Called by code that is built with size checks; no header declares them.
VORN_SIM_INTERPOSED int __open_2(const char *path, int flags);
VORN_SIM_INTERPOSED int __open64_2(const char *path, int flags);
VORN_SIM_INTERPOSED int __openat_2(int folder, const char *path, int flags);
VORN_SIM_INTERPOSED int __openat64_2(int folder, const char *path, int flags);
VORN_SIM_INTERPOSED ssize_t __read_chk(int fd, void *buffer, size_t size, size_t capacity);
VORN_SIM_INTERPOSED int __poll_chk(pollfd *fds, nfds_t count, int timeout, size_t capacity);
VORN_SIM_INTERPOSED int __ppoll_chk(pollfd *fds, nfds_t count, const timespec *timeout,
                                    const sigset_t *mask, size_t capacity);

// Makes the linker take this file out of the archive.
VORN_SIM_INTERPOSED const int vorn_sim_interposition;
const int vorn_sim_interposition = 1;
}

namespace Vorn::Sim {

namespace {

// Device number of every evdev node.
constexpr unsigned int inputMajor = 13;

// Other libraries' constructors and the sanitizers' runtimes call the functions below before any
// constructor of this file could have run; so everything here is initialised at compile time.
std::atomic<FileCalls *> fileCalls{nullptr};
std::atomic<ClockCalls *> clockCalls{nullptr};

template <typename Function>
class Next
{
public:
    constexpr explicit Next(const char *name)
        : m_name(name)
    { }

    template <typename... Arguments>
    auto operator()(Arguments... arguments)
    {
        return get()(arguments...);
    }

private:
    Function *get()
    {
        Function *function = m_function.load(std::memory_order_acquire);
        if (!function) {
            function = reinterpret_cast<Function *>(dlsym(RTLD_NEXT, m_name));
            if (!function)
                std::abort();
            m_function.store(function, std::memory_order_release);
        }
        return function;
    }

    const char *const m_name;
    std::atomic<Function *> m_function{nullptr};
};

Next<int(const char *, int, ...)> nextOpen("open");
Next<int(const char *, int, ...)> nextOpen64("open64");
Next<int(int, const char *, int, ...)> nextOpenat("openat");
Next<int(int, const char *, int, ...)> nextOpenat64("openat64");
Next<int(const char *, int)> nextOpen2("__open_2");
Next<int(const char *, int)> nextOpen642("__open64_2");
Next<int(int, const char *, int)> nextOpenat2("__openat_2");
Next<int(int, const char *, int)> nextOpenat642("__openat64_2");
Next<int(int)> nextClose("close");
Next<ssize_t(int, void *, size_t)> nextRead("read");
Next<ssize_t(int, void *, size_t, size_t)> nextReadChk("__read_chk");
Next<int(int, unsigned long, ...)> nextIoctl("ioctl");
Next<int(int, const char *, uint32_t)> nextInotifyAddWatch("inotify_add_watch");
Next<int(const char *, int)> nextAccess("access");
Next<DIR *(const char *)> nextOpendir("opendir");
Next<int(const char *, dirent ***, int (*)(const dirent *),
         int (*)(const dirent **, const dirent **))>
    nextScandir("scandir");
Next<int(const char *, dirent64 ***, int (*)(const dirent64 *),
         int (*)(const dirent64 **, const dirent64 **))>
    nextScandir64("scandir64");
Next<int(const char *, struct stat *)> nextStat("stat");
Next<int(const char *, struct stat *)> nextLstat("lstat");
Next<int(int, struct stat *)> nextFstat("fstat");
Next<int(const char *, struct stat64 *)> nextStat64("stat64");
Next<int(const char *, struct stat64 *)> nextLstat64("lstat64");
Next<int(int, struct stat64 *)> nextFstat64("fstat64");
Next<int(int, const char *, int, unsigned int, struct statx *)> nextStatx("statx");
Next<int(pollfd *, nfds_t, int)> nextPoll("poll");
Next<int(pollfd *, nfds_t, int, size_t)> nextPollChk("__poll_chk");
Next<int(pollfd *, nfds_t, const timespec *, const sigset_t *)> nextPpoll("ppoll");
Next<int(pollfd *, nfds_t, const timespec *, const sigset_t *, size_t)> nextPpollChk("__ppoll_chk");
Next<int(clockid_t, timespec *)> nextClockGettime("clock_gettime");
Next<int(struct timeval *, void *)> nextGettimeofday("gettimeofday");
Next<time_t(time_t *)> nextTime("time");

// Most paths are none of ours, so this comes first, before anything is locked or copied.
bool isInputPath(const char *path)
{
    if (!path || std::strncmp(path, "/dev", 4) != 0)
        return false;
    const char *rest = path + 4;
    if (rest[0] == '\0' || (rest[0] == '/' && rest[1] == '\0'))
        return true;
    return std::strncmp(rest, "/input", 6) == 0 && (rest[6] == '\0' || rest[6] == '/');
}

bool isEmpty(const char *path)
{
    return !path || path[0] == '\0';
}

FileCalls *callsFor(const char *path)
{
    FileCalls *calls = fileCalls.load(std::memory_order_acquire);
    return calls && isInputPath(path) ? calls : nullptr;
}

// A path as the real file system knows it.
class RealPath
{
public:
    explicit RealPath(const char *path)
        : m_path(path)
    {
        if (const FileCalls *calls = callsFor(path)) {
            calls->translate(path, m_buffer, sizeof(m_buffer));
            m_path = m_buffer;
        }
    }

    const char *get() const { return m_path; }

private:
    const char *m_path;
    char m_buffer[PATH_MAX];
};

bool serveOpen(const char *path, int flags, mode_t mode, int &result)
{
    FileCalls *calls = callsFor(path);
    return calls && calls->open(path, flags, mode, result);
}

bool hasMode(int flags)
{
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

template <typename Status>
void showAsDevice(const FileCalls::Attributes &attributes, Status *status)
{
    status->st_mode = S_IFCHR | attributes.mode;
    status->st_rdev = makedev(inputMajor, attributes.minor);
}

template <typename Status, typename Function>
int statusOfPath(Function &next, const char *path, Status *status)
{
    const RealPath real(path);
    const int result = next(real.get(), status);
    FileCalls::Attributes attributes;
    FileCalls *calls = callsFor(path);
    if (result == 0 && calls && calls->attributes(path, attributes))
        showAsDevice(attributes, status);
    return result;
}

template <typename Status, typename Function>
int statusOfDescriptor(Function &next, int fd, Status *status)
{
    const int result = next(fd, status);
    FileCalls::Attributes attributes;
    FileCalls *calls = fileCalls.load(std::memory_order_acquire);
    if (result == 0 && calls && calls->attributes(fd, attributes))
        showAsDevice(attributes, status);
    return result;
}

bool servePoll(const ClockCalls::Poll &call, int &result)
{
    ClockCalls *calls = clockCalls.load(std::memory_order_acquire);
    return calls && calls->poll(call, result);
}

timespec toTimespec(int milliseconds)
{
    return {milliseconds / 1000, milliseconds % 1000 * 1'000'000L};
}

bool serveClock(clockid_t clock, timespec &result)
{
    ClockCalls *calls = clockCalls.load(std::memory_order_acquire);
    return calls && calls->get(clock, result);
}

} // namespace

void serveFiles(FileCalls *calls)
{
    fileCalls.store(calls, std::memory_order_release);
}

void serveClocks(ClockCalls *calls)
{
    clockCalls.store(calls, std::memory_order_release);
}

namespace Real {

int open(const char *path, int flags, mode_t mode)
{
    return nextOpen64(path, flags, mode);
}

ssize_t read(int fd, void *buffer, std::size_t size)
{
    return nextRead(fd, buffer, size);
}

int close(int fd)
{
    return nextClose(fd);
}

int ioctl(int fd, unsigned long request, void *argument)
{
    return nextIoctl(fd, request, argument);
}

int access(const char *path, int mode)
{
    return nextAccess(path, mode);
}

int ppoll(pollfd *fds, nfds_t count, const timespec *timeout, const sigset_t *mask)
{
    return nextPpoll(fds, count, timeout, mask);
}

} // namespace Real

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
    FileCalls *calls = fileCalls.load(std::memory_order_acquire);
    int result = -1;
    return calls && calls->close(fd, result) ? result : nextClose(fd);
}

VORN_SIM_INTERPOSED ssize_t read(int fd, void *buffer, size_t size)
{
    FileCalls *calls = fileCalls.load(std::memory_order_acquire);
    ssize_t result = -1;
    return calls && calls->read(fd, buffer, size, result) ? result : nextRead(fd, buffer, size);
}

VORN_SIM_INTERPOSED ssize_t __read_chk(int fd, void *buffer, size_t size, size_t capacity)
{
    FileCalls *calls = fileCalls.load(std::memory_order_acquire);
    ssize_t result = -1;
    return calls && size <= capacity && calls->read(fd, buffer, size, result)
        ? result
        : nextReadChk(fd, buffer, size, capacity);
}

VORN_SIM_INTERPOSED int ioctl(int fd, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    FileCalls *calls = fileCalls.load(std::memory_order_acquire);
    int result = -1;
    return calls && calls->ioctl(fd, request, argument, result) ? result
                                                                : nextIoctl(fd, request, argument);
}

VORN_SIM_INTERPOSED int inotify_add_watch(int fd, const char *path, uint32_t mask) noexcept
{
    return nextInotifyAddWatch(fd, RealPath(path).get(), mask);
}

VORN_SIM_INTERPOSED int access(const char *path, int mode) noexcept
{
    FileCalls *calls = callsFor(path);
    int result = -1;
    return calls && calls->access(path, mode, result) ? result : nextAccess(path, mode);
}

VORN_SIM_INTERPOSED DIR *opendir(const char *path)
{
    return nextOpendir(RealPath(path).get());
}

VORN_SIM_INTERPOSED int scandir(const char *path, dirent ***list, int (*filter)(const dirent *),
                                int (*compare)(const dirent **, const dirent **))
{
    return nextScandir(RealPath(path).get(), list, filter, compare);
}

VORN_SIM_INTERPOSED int scandir64(const char *path, dirent64 ***list,
                                  int (*filter)(const dirent64 *),
                                  int (*compare)(const dirent64 **, const dirent64 **))
{
    return nextScandir64(RealPath(path).get(), list, filter, compare);
}

VORN_SIM_INTERPOSED int stat(const char *path, struct stat *status) noexcept
{
    return statusOfPath(nextStat, path, status);
}

VORN_SIM_INTERPOSED int lstat(const char *path, struct stat *status) noexcept
{
    return statusOfPath(nextLstat, path, status);
}

VORN_SIM_INTERPOSED int fstat(int fd, struct stat *status) noexcept
{
    return statusOfDescriptor(nextFstat, fd, status);
}

VORN_SIM_INTERPOSED int stat64(const char *path, struct stat64 *status) noexcept
{
    return statusOfPath(nextStat64, path, status);
}

VORN_SIM_INTERPOSED int lstat64(const char *path, struct stat64 *status) noexcept
{
    return statusOfPath(nextLstat64, path, status);
}

VORN_SIM_INTERPOSED int fstat64(int fd, struct stat64 *status) noexcept
{
    return statusOfDescriptor(nextFstat64, fd, status);
}

VORN_SIM_INTERPOSED int statx(int folder, const char *path, int flags, unsigned int mask,
                              struct statx *status) noexcept
{
    const int result = nextStatx(folder, RealPath(path).get(), flags, mask, status);
    FileCalls *calls = fileCalls.load(std::memory_order_acquire);
    if (result != 0 || !calls)
        return result;

    FileCalls::Attributes attributes;
    const bool isOfDescriptor = isEmpty(path) && (flags & AT_EMPTY_PATH) != 0;
    if (isOfDescriptor ? calls->attributes(folder, attributes)
                       : isInputPath(path) && calls->attributes(path, attributes))
    {
        status->stx_mode = static_cast<decltype(status->stx_mode)>(S_IFCHR | attributes.mode);
        status->stx_rdev_major = inputMajor;
        status->stx_rdev_minor = attributes.minor;
    }
    return result;
}

VORN_SIM_INTERPOSED int poll(pollfd *fds, nfds_t count, int timeout)
{
    const timespec limit = toTimespec(timeout);
    const ClockCalls::Poll call = {fds, count, timeout < 0 ? nullptr : &limit, nullptr,
                                   __builtin_return_address(0)};
    int result = -1;
    return servePoll(call, result) ? result : nextPoll(fds, count, timeout);
}

VORN_SIM_INTERPOSED int __poll_chk(pollfd *fds, nfds_t count, int timeout, size_t capacity)
{
    const timespec limit = toTimespec(timeout);
    const ClockCalls::Poll call = {fds, count, timeout < 0 ? nullptr : &limit, nullptr,
                                   __builtin_return_address(0)};
    int result = -1;
    return count <= capacity / sizeof(*fds) && servePoll(call, result)
        ? result
        : nextPollChk(fds, count, timeout, capacity);
}

VORN_SIM_INTERPOSED int ppoll(pollfd *fds, nfds_t count, const timespec *timeout,
                              const sigset_t *mask)
{
    const ClockCalls::Poll call = {fds, count, timeout, mask, __builtin_return_address(0)};
    int result = -1;
    return servePoll(call, result) ? result : nextPpoll(fds, count, timeout, mask);
}

VORN_SIM_INTERPOSED int __ppoll_chk(pollfd *fds, nfds_t count, const timespec *timeout,
                                    const sigset_t *mask, size_t capacity)
{
    const ClockCalls::Poll call = {fds, count, timeout, mask, __builtin_return_address(0)};
    int result = -1;
    return count <= capacity / sizeof(*fds) && servePoll(call, result)
        ? result
        : nextPpollChk(fds, count, timeout, mask, capacity);
}

VORN_SIM_INTERPOSED int clock_gettime(clockid_t clock, timespec *result) noexcept
{
    return serveClock(clock, *result) ? 0 : nextClockGettime(clock, result);
}

VORN_SIM_INTERPOSED int gettimeofday(struct timeval *result, void *zone) noexcept
{
    timespec now = {};
    if (!serveClock(CLOCK_REALTIME, now))
        return nextGettimeofday(result, zone);
    *result = {now.tv_sec, now.tv_nsec / 1000};
    return 0;
}

VORN_SIM_INTERPOSED time_t time(time_t *result) noexcept
{
    timespec now = {};
    if (!serveClock(CLOCK_REALTIME, now))
        return nextTime(result);
    if (result)
        *result = now.tv_sec;
    return now.tv_sec;
}

namespace Vorn::Sim {

const char *missingInterposition()
{
    struct Function
    {
        const char *name;
        void *address;
    };
#define VORN_SIM_FUNCTION(name) \
    Function \
    { \
#name, reinterpret_cast < void *>(&::name) \
    }
    using Stat = int (*)(const char *, struct stat *);
    using Stat64 = int (*)(const char *, struct stat64 *);
    using Statx = int (*)(int, const char *, int, unsigned int, struct statx *);
    const Function functions[] = {
        VORN_SIM_FUNCTION(open),
        VORN_SIM_FUNCTION(open64),
        VORN_SIM_FUNCTION(openat),
        VORN_SIM_FUNCTION(openat64),
        VORN_SIM_FUNCTION(__open_2),
        VORN_SIM_FUNCTION(__open64_2),
        VORN_SIM_FUNCTION(__openat_2),
        VORN_SIM_FUNCTION(__openat64_2),
        VORN_SIM_FUNCTION(close),
        VORN_SIM_FUNCTION(read),
        VORN_SIM_FUNCTION(__read_chk),
        VORN_SIM_FUNCTION(ioctl),
        VORN_SIM_FUNCTION(inotify_add_watch),
        VORN_SIM_FUNCTION(access),
        VORN_SIM_FUNCTION(opendir),
        VORN_SIM_FUNCTION(scandir),
        VORN_SIM_FUNCTION(scandir64),
        {"stat", reinterpret_cast<void *>(static_cast<Stat>(&::stat))},
        VORN_SIM_FUNCTION(lstat),
        VORN_SIM_FUNCTION(fstat),
        {"stat64", reinterpret_cast<void *>(static_cast<Stat64>(&::stat64))},
        VORN_SIM_FUNCTION(lstat64),
        VORN_SIM_FUNCTION(fstat64),
        {"statx", reinterpret_cast<void *>(static_cast<Statx>(&::statx))},
        VORN_SIM_FUNCTION(poll),
        VORN_SIM_FUNCTION(__poll_chk),
        VORN_SIM_FUNCTION(ppoll),
        VORN_SIM_FUNCTION(__ppoll_chk),
        VORN_SIM_FUNCTION(clock_gettime),
        VORN_SIM_FUNCTION(gettimeofday),
        VORN_SIM_FUNCTION(time),
    };
#undef VORN_SIM_FUNCTION
    for (const Function &function : functions) {
        if (dlsym(RTLD_DEFAULT, function.name) != function.address)
            return function.name;
    }
    return nullptr;
}

} // namespace Vorn::Sim
