#include "Usage.h"

#include <cstdio>

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

// Of the address sanitizer's runtime, where there is one: its allocator does not tell the C
// library.
extern "C" __attribute__((weak)) std::size_t __sanitizer_get_current_allocated_bytes();

namespace {

std::size_t residentPages()
{
    std::FILE *file = std::fopen("/proc/self/statm", "r");
    std::size_t size = 0;
    std::size_t resident = 0;
    if (file && std::fscanf(file, "%zu %zu", &size, &resident) != 2)
        resident = 0;
    if (file)
        std::fclose(file);
    return resident;
}

} // namespace

Usage usageNow()
{
    Usage usage;
    usage.resident = residentPages() * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) / 1024;
    usage.isExact = __sanitizer_get_current_allocated_bytes != nullptr;
    usage.allocated = __sanitizer_get_current_allocated_bytes
        ? __sanitizer_get_current_allocated_bytes()
        : ::mallinfo2().uordblks;
    for (int fd = 0; fd < 1024; ++fd)
        usage.descriptors += ::fcntl(fd, F_GETFD) >= 0 ? 1 : 0;
    return usage;
}
