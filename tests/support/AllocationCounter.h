#ifndef ALLOCATIONCOUNTER_H
#define ALLOCATIONCOUNTER_H

#include <cstddef>

/// Counts what `operator new` and `operator delete` do on this thread from its construction on.
///
/// Linking its source replaces both operators in the whole process, the libraries included.
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
