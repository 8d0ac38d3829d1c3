// Preloaded into a subject when its allocations are counted, and only then: every allocation of the
// process, whichever of its libraries makes it.

#include "Counters.h"

#include <cerrno>
#include <cstddef>

extern "C" {
// The C library's own allocator, under the names that it keeps for this.
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t number, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

// Set by a constructor, since the environment is not there for those who allocate before.
Counters *counters = nullptr;

__attribute__((constructor)) void inherit()
{
    counters = inheritedCounters();
}

void count(std::size_t size)
{
    if (!counters)
        return;
    counters->allocations.fetch_add(1, std::memory_order_relaxed);
    counters->bytes.fetch_add(size, std::memory_order_relaxed);
}

} // namespace

#define INTERPOSED extern "C" __attribute__((visibility("default")))

INTERPOSED void *malloc(std::size_t size)
{
    count(size);
    return __libc_malloc(size);
}

INTERPOSED void *calloc(std::size_t number, std::size_t size)
{
    count(number * size);
    return __libc_calloc(number, size);
}

INTERPOSED void *realloc(void *memory, std::size_t size)
{
    count(size);
    return __libc_realloc(memory, size);
}

INTERPOSED void *aligned_alloc(std::size_t alignment, std::size_t size)
{
    count(size);
    return __libc_memalign(alignment, size);
}

INTERPOSED int posix_memalign(void **memory, std::size_t alignment, std::size_t size)
{
    count(size);
    *memory = __libc_memalign(alignment, size);
    return *memory ? 0 : ENOMEM;
}
