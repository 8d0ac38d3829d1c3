#include "AllocationCounter.h"

#include <cerrno>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VORN_SANITIZER_ALLOCATES
#endif

namespace {

thread_local int allocationCount = 0;
thread_local int deallocationCount = 0;
thread_local std::size_t byteCount = 0;

void countAllocation(std::size_t size)
{
    ++allocationCount;
    byteCount += size;
}

void countDeallocation(const volatile void *memory)
{
    if (memory)
        ++deallocationCount;
}

} // namespace

#ifdef VORN_SANITIZER_ALLOCATES

// The sanitizer's allocator must stay in its place; it tells what it does.
extern "C" int __sanitizer_install_malloc_and_free_hooks( // NOLINT(bugprone-reserved-identifier)
    void (*)(const volatile void *, std::size_t), void (*)(const volatile void *));

namespace {

const int isInstalled = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void *, std::size_t size) { countAllocation(size); }, countDeallocation);

} // namespace

#else

extern "C" {
// The C library's own, under the names that it keeps for those who take its place.
void *__libc_malloc(std::size_t size); // NOLINT(bugprone-reserved-identifier)
void *__libc_calloc(std::size_t number, std::size_t size); // NOLINT(bugprone-reserved-identifier)
void *__libc_realloc(void *memory, std::size_t size); // NOLINT(bugprone-reserved-identifier)
// NOLINTNEXTLINE(bugprone-reserved-identifier)
void *__libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void *memory); // NOLINT(bugprone-reserved-identifier)
}

#define REPLACES_THE_LIBRARYS extern "C" __attribute__((visibility("default")))

REPLACES_THE_LIBRARYS void *malloc(std::size_t size)
{
    countAllocation(size);
    return __libc_malloc(size);
}

REPLACES_THE_LIBRARYS void *calloc(std::size_t number, std::size_t size)
{
    countAllocation(number * size);
    return __libc_calloc(number, size);
}

REPLACES_THE_LIBRARYS void *realloc(void *memory, std::size_t size)
{
    countAllocation(size);
    countDeallocation(memory);
    return __libc_realloc(memory, size);
}

REPLACES_THE_LIBRARYS int posix_memalign(void **memory, std::size_t alignment, std::size_t size)
{
    countAllocation(size);
    *memory = __libc_memalign(alignment, size);
    return *memory ? 0 : ENOMEM;
}

REPLACES_THE_LIBRARYS void free(void *memory)
{
    countDeallocation(memory);
    __libc_free(memory);
}

#endif

AllocationCounter::AllocationCounter()
    : m_allocations(allocationCount)
    , m_deallocations(deallocationCount)
    , m_bytes(byteCount)
{ }

int AllocationCounter::allocations() const
{
    return allocationCount - m_allocations;
}

int AllocationCounter::deallocations() const
{
    return deallocationCount - m_deallocations;
}

std::size_t AllocationCounter::bytes() const
{
    return byteCount - m_bytes;
}
