#include "FileCalls.h"

#include <atomic>
#include <cstring>

namespace Vorn::Sim {

namespace {

// Read before any constructor of the executable has run, see NextFunction.
std::atomic<FileCalls *> servedBy{nullptr};

bool isInputPath(const char *path)
{
    if (!path || std::strncmp(path, "/dev", 4) != 0)
        return false;
    const char *rest = path + 4;
    if (rest[0] == '\0' || (rest[0] == '/' && rest[1] == '\0'))
        return true;
    return std::strncmp(rest, "/input", 6) == 0 && (rest[6] == '\0' || rest[6] == '/');
}

} // namespace

void serveFiles(FileCalls *calls)
{
    servedBy.store(calls, std::memory_order_release);
}

FileCalls *fileCalls()
{
    return servedBy.load(std::memory_order_acquire);
}

FileCalls *fileCallsFor(const char *path)
{
    // Most paths are not simulated, so they are ruled out here, before anything is locked or
    // copied.
    FileCalls *calls = fileCalls();
    return calls && isInputPath(path) ? calls : nullptr;
}

} // namespace Vorn::Sim
