#include "InterposedFunction.h"

#include "DuplicateFunctions.h"
#include "FileCalls.h"

#include <climits>
#include <cstdarg>

#include <fcntl.h>
#include <linux/close_range.h>
#include <unistd.h>

namespace Vorn::Sim {

namespace {

NextFunction<int(int)> nextDup("dup");
NextFunction<int(int, int)> nextDup2("dup2");
NextFunction<int(int, int, int)> nextDup3("dup3");
NextFunction<int(int, int, ...)> nextFcntl("fcntl");
NextFunction<int(int, int, ...)> nextFcntl64("fcntl64");
NextFunction<int(unsigned int, unsigned int, int)> nextCloseRange("close_range");
NextFunction<void(int)> nextClosefrom("closefrom");

template <typename Call>
int duplicate(int fd, const Call &call)
{
    const FileCallsUse calls = fileCalls();
    int result = -1;
    return calls && calls->duplicate(fd, call, result) ? result : call();
}

template <typename Call>
int closeRange(unsigned int first, unsigned int last, const Call &call)
{
    const FileCallsUse calls = fileCalls();
    int result = -1;
    return calls && calls->closeRange(first, last, call, result) ? result : call();
}

} // namespace

int callFcntl(NextFunction<int(int, int, ...)> &next, int fd, int command, void *argument)
{
    const auto call = [&] { return next(fd, command, argument); };
    // Commands that wait for locks of files are none of these.
    return command == F_DUPFD || command == F_DUPFD_CLOEXEC ? duplicate(fd, call) : call();
}

} // namespace Vorn::Sim

using namespace Vorn::Sim;

VORN_SIM_INTERPOSED int dup(int fd) noexcept
{
    return duplicate(fd, [fd] { return nextDup(fd); });
}

VORN_SIM_INTERPOSED int dup2(int fd, int target) noexcept
{
    return duplicate(fd, [fd, target] { return nextDup2(fd, target); });
}

VORN_SIM_INTERPOSED int dup3(int fd, int target, int flags) noexcept
{
    return duplicate(fd, [fd, target, flags] { return nextDup3(fd, target, flags); });
}

VORN_SIM_INTERPOSED int fcntl(int fd, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    // The C library takes every argument for a pointer, too, whether or not there is one.
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    return callFcntl(nextFcntl, fd, command, argument);
}

VORN_SIM_INTERPOSED int fcntl64(int fd, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    return callFcntl(nextFcntl64, fd, command, argument);
}

VORN_SIM_INTERPOSED int close_range(unsigned int first, unsigned int last, int flags) noexcept
{
    const auto call = [&] { return nextCloseRange(first, last, flags); };
    const bool closes = (static_cast<unsigned int>(flags) & CLOSE_RANGE_CLOEXEC) == 0;
    return closes ? closeRange(first, last, call) : call();
}

VORN_SIM_INTERPOSED void closefrom(int first) noexcept
{
    closeRange(first < 0 ? 0 : static_cast<unsigned int>(first), UINT_MAX, [first] {
        nextClosefrom(first);
        return 0;
    });
}

namespace Vorn::Sim {

const char *missingDuplicateFunction()
{
    return firstMissing({
        {"dup", reinterpret_cast<void *>(&::dup)},
        {"dup2", reinterpret_cast<void *>(&::dup2)},
        {"dup3", reinterpret_cast<void *>(&::dup3)},
        {"fcntl", reinterpret_cast<void *>(&::fcntl)},
        {"fcntl64", reinterpret_cast<void *>(&::fcntl64)},
        {"close_range", reinterpret_cast<void *>(&::close_range)},
        {"closefrom", reinterpret_cast<void *>(&::closefrom)},
    });
}

} // namespace Vorn::Sim
