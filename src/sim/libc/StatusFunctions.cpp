#include "InterposedFunction.h"

#include "FileCalls.h"
#include "RealPath.h"
#include "ServedStatus.h"
#include "StatusFunctions.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace Vorn::Sim {

namespace {

NextFunction<int(const char *, struct stat *)> nextStat("stat");
NextFunction<int(const char *, struct stat *)> nextLstat("lstat");
NextFunction<int(int, struct stat *)> nextFstat("fstat");
NextFunction<int(const char *, struct stat64 *)> nextStat64("stat64");
NextFunction<int(const char *, struct stat64 *)> nextLstat64("lstat64");
NextFunction<int(int, struct stat64 *)> nextFstat64("fstat64");
NextFunction<int(int, const char *, int, unsigned int, struct statx *)> nextStatx("statx");

bool isEmpty(const char *path)
{
    return !path || path[0] == '\0';
}

} // namespace

bool isStatusRefused(const char *path)
{
    const FileCallsUse calls = fileCallsFor(path);
    const int error = calls ? calls->beforeStatus(path) : 0;
    if (error != 0)
        errno = error;
    return error != 0;
}

} // namespace Vorn::Sim

using namespace Vorn::Sim;

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
    if (isStatusRefused(path))
        return -1;
    const int result = nextStatx(folder, RealPath(path).get(), flags, mask, status);
    const bool isOfDescriptor = isEmpty(path) && (flags & AT_EMPTY_PATH) != 0;
    const FileCallsUse calls = isOfDescriptor ? fileCalls() : fileCallsFor(path);
    if (result != 0 || !calls)
        return result;

    FileCalls::Attributes attributes;
    if (isOfDescriptor ? calls->attributes(folder, attributes)
                       : calls->attributes(path, attributes)) {
        status->stx_mode = static_cast<decltype(status->stx_mode)>(S_IFCHR | attributes.mode);
        status->stx_rdev_major = inputMajor;
        status->stx_rdev_minor = attributes.minor;
    }
    return result;
}

namespace Vorn::Sim {

const char *missingStatusFunction()
{
    return firstMissing({
        {"stat", reinterpret_cast<void *>(&::stat)},
        {"lstat", reinterpret_cast<void *>(&::lstat)},
        {"fstat", reinterpret_cast<void *>(&::fstat)},
        {"stat64", reinterpret_cast<void *>(&::stat64)},
        {"lstat64", reinterpret_cast<void *>(&::lstat64)},
        {"fstat64", reinterpret_cast<void *>(&::fstat64)},
        {"statx", reinterpret_cast<void *>(&::statx)},
    });
}

} // namespace Vorn::Sim
