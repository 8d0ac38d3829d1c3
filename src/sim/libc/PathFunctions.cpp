#include "InterposedFunction.h"

#include "FileCalls.h"
#include "PathFunctions.h"
#include "RealPath.h"

#include <cerrno>
#include <cstdint>

#include <dirent.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace Vorn::Sim {

namespace {

NextFunction<int(const char *, int)> nextAccess("access");
NextFunction<int(int, const char *, uint32_t)> nextInotifyAddWatch("inotify_add_watch");
NextFunction<DIR *(const char *)> nextOpendir("opendir");
NextFunction<int(const char *, dirent ***, int (*)(const dirent *),
                 int (*)(const dirent **, const dirent **))>
    nextScandir("scandir");
NextFunction<int(const char *, dirent64 ***, int (*)(const dirent64 *),
                 int (*)(const dirent64 **, const dirent64 **))>
    nextScandir64("scandir64");

bool serveAccess(const char *path, int mode, int &result)
{
    const FileCallsUse calls = fileCallsFor(path);
    return calls && calls->access(path, mode, result);
}

} // namespace

} // namespace Vorn::Sim

using namespace Vorn::Sim;

VORN_SIM_INTERPOSED int access(const char *path, int mode) noexcept
{
    int result = -1;
    return serveAccess(path, mode, result) ? result : nextAccess(path, mode);
}

// Watches and listings need no more than the real path: the temporary folder has the same entries.
VORN_SIM_INTERPOSED int inotify_add_watch(int fd, const char *path, uint32_t mask) noexcept
{
    if (const FileCallsUse calls = fileCallsFor(path)) {
        if (const int error = calls->beforeWatch(path)) {
            errno = error;
            return -1;
        }
    }
    return nextInotifyAddWatch(fd, RealPath(path).get(), mask);
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

namespace Vorn::Sim {

const char *missingPathFunction()
{
    return firstMissing({
        {"access", reinterpret_cast<void *>(&::access)},
        {"inotify_add_watch", reinterpret_cast<void *>(&::inotify_add_watch)},
        {"opendir", reinterpret_cast<void *>(&::opendir)},
        {"scandir", reinterpret_cast<void *>(&::scandir)},
        {"scandir64", reinterpret_cast<void *>(&::scandir64)},
    });
}

} // namespace Vorn::Sim
