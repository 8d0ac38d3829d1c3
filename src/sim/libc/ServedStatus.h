#ifndef VORN_SIM_SERVEDSTATUS_H
#define VORN_SIM_SERVEDSTATUS_H

#include "FileCalls.h"
#include "RealPath.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace Vorn::Sim {

/// The major device number of every evdev node.
constexpr unsigned int inputMajor = 13;

/// Whether a test lets a status call on @p path fail; errno is set then.
bool isStatusRefused(const char *path);

// Static, so that each file has its own: on 32-bit systems, structures of the same name differ
// between them.

// The real node is a FIFO and the real descriptor an eventfd; callers expect a device.
template <typename Status>
static void showAsDevice(const FileCalls::Attributes &attributes, Status *status)
{
    status->st_mode = S_IFCHR | attributes.mode;
    status->st_rdev = makedev(inputMajor, attributes.minor);
}

/// The status of @p path.
/// @param next the function that the caller replaces
template <typename Status, typename Function>
static int statusOfPath(Function &next, const char *path, Status *status)
{
    if (isStatusRefused(path))
        return -1;
    const RealPath real(path);
    const int result = next(real.get(), status);
    FileCalls::Attributes attributes;
    const FileCallsUse calls = fileCallsFor(path);
    if (result == 0 && calls && calls->attributes(path, attributes))
        showAsDevice(attributes, status);
    return result;
}

/// The same for a descriptor.
template <typename Status, typename Function>
static int statusOfDescriptor(Function &next, int fd, Status *status)
{
    const int result = next(fd, status);
    FileCalls::Attributes attributes;
    const FileCallsUse calls = fileCalls();
    if (result == 0 && calls && calls->attributes(fd, attributes))
        showAsDevice(attributes, status);
    return result;
}

} // namespace Vorn::Sim

#endif
