#include "AllocationCounter.h"

#include "InterposedAllocator.h"

namespace {

thread_local int allocationCount = 0;
thread_local int deallocationCount = 0;
thread_local std::size_t byteCount = 0;

} // namespace

void onAllocation(std::size_t size)
{
    ++allocationCount;
    byteCount += size;
}

void onDeallocation(const volatile void *memory)
{
    if (memory)
        ++deallocationCount;
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
