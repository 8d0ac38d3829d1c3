#include "Allocations.h"

#include <cstddef>

namespace {

thread_local std::uint64_t count = 0;

} // namespace

// What the C library's own functions are called behind their replaceable names.
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t number, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
}

#define REPLACES_THE_LIBRARYS extern "C" __attribute__((visibility("default")))

REPLACES_THE_LIBRARYS void *malloc(std::size_t size)
{
    ++count;
    return __libc_malloc(size);
}

REPLACES_THE_LIBRARYS void *calloc(std::size_t number, std::size_t size)
{
    ++count;
    return __libc_calloc(number, size);
}

REPLACES_THE_LIBRARYS void *realloc(void *memory, std::size_t size)
{
    ++count;
    return __libc_realloc(memory, size);
}

std::uint64_t allocationCount()
{
    return count;
}
