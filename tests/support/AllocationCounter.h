#ifndef ALLOCATIONCOUNTER_H
#define ALLOCATIONCOUNTER_H

#include <cstddef>

/// Counts the allocations of this thread from its construction on: `malloc` and its kin, to which
/// `operator new` and Qt's containers come as well. A `realloc` is an allocation of its own.
///
/// Linking its source replaces these functions in the whole process, the libraries included; under
/// a sanitizer its allocator tells instead.
class AllocationCounter
{
public:
    AllocationCounter();

    int allocations() const;
    int deallocations() const;
    /// Bytes asked for.
    std::size_t bytes() const;

private:
    int m_allocations;
    int m_deallocations;
    std::size_t m_bytes;
};

#endif
