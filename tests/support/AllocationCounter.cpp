#include "AllocationCounter.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int allocationCount = 0;
thread_local int deallocationCount = 0;
thread_local std::size_t byteCount = 0;

void *allocate(std::size_t size)
{
    ++allocationCount;
    byteCount += size;
    return std::malloc(size == 0 ? 1 : size);
}

void deallocate(void *memory)
{
    if (memory)
        ++deallocationCount;
    std::free(memory);
}

} // namespace

#define REPLACES_THE_LIBRARYS __attribute__((visibility("default")))

REPLACES_THE_LIBRARYS void *operator new(std::size_t size)
{
    void *memory = allocate(size);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

REPLACES_THE_LIBRARYS void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    return allocate(size);
}

REPLACES_THE_LIBRARYS void operator delete(void *memory) noexcept
{
    deallocate(memory);
}

REPLACES_THE_LIBRARYS void operator delete(void *memory, std::size_t) noexcept
{
    deallocate(memory);
}

REPLACES_THE_LIBRARYS void operator delete(void *memory, const std::nothrow_t &) noexcept
{
    deallocate(memory);
}

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
