#ifndef ALLOCATIONCOUNTER_H
#define ALLOCATIONCOUNTER_H

#include <cstddef>

/// Counts this thread's allocations since the counter's construction. See InterposedAllocator.h,
/// whose source it needs, for what counts as one and what linking it does to the process.
class AllocationCounter
{
public:
    AllocationCounter();

    int allocations() const;
    int deallocations() const;
    /// Bytes requested.
    std::size_t bytes() const;

private:
    int m_allocations;
    int m_deallocations;
    std::size_t m_bytes;
};

#endif
