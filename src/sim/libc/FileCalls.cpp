#include "FileCalls.h"

#include <cstring>

namespace Vorn::Sim {

namespace {

CallReceiver<FileCalls> receiver;

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
    receiver.set(calls);
}

void awaitFileCallers()
{
    receiver.awaitCallers();
}

FileCallsUse fileCalls()
{
    return FileCallsUse(&receiver);
}

FileCallsUse fileCallsFor(const char *path)
{
    // Most paths are not simulated, so they are ruled out here, before anything is locked or
    // copied.
    return FileCallsUse(receiver.get() && isInputPath(path) ? &receiver : nullptr);
}

} // namespace Vorn::Sim
