#include "InterposedAllocator.h"

#include <cerrno>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

extern "C" int __sanitizer_install_malloc_and_free_hooks( // NOLINT(bugprone-reserved-identifier)
    void (*)(const volatile void *, std::size_t), void (*)(const volatile void *));

namespace {

const int isInstalled = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void *, std::size_t size) { onAllocation(size); }, onDeallocation);

} // namespace

#else

// The C library's own allocator, under the names it provides for replacements.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t number, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void *memory);
}
// NOLINTEND(bugprone-reserved-identifier)

#define INTERPOSED extern "C" __attribute__((visibility("default")))

INTERPOSED void *malloc(std::size_t size)
{
    onAllocation(size);
    return __libc_malloc(size);
}

INTERPOSED void *calloc(std::size_t number, std::size_t size)
{
    onAllocation(number * size);
    return __libc_calloc(number, size);
}

INTERPOSED void *realloc(void *memory, std::size_t size)
{
    onAllocation(size);
    onDeallocation(memory);
    return __libc_realloc(memory, size);
}

INTERPOSED void *aligned_alloc(std::size_t alignment, std::size_t size)
{
    onAllocation(size);
    return __libc_memalign(alignment, size);
}

INTERPOSED int posix_memalign(void **memory, std::size_t alignment, std::size_t size)
{
    onAllocation(size);
    *memory = __libc_memalign(alignment, size);
    return *memory ? 0 : ENOMEM;
}

INTERPOSED void free(void *memory)
{
    onDeallocation(memory);
    __libc_free(memory);
}

#endif
