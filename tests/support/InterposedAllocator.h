#ifndef INTERPOSEDALLOCATOR_H
#define INTERPOSEDALLOCATOR_H

#include <cstddef>

/// @file
/// Linking InterposedAllocator.cpp replaces `malloc` and its relatives in the whole process,
/// libraries included; `operator new` and Qt's containers end up there as well. Under a sanitizer,
/// whose allocator must stay, its hooks report instead.
///
/// Whoever links it defines these two functions. They run inside the allocator and must not
/// allocate. A `realloc` is an allocation, and a deallocation of what it was given.

void onAllocation(std::size_t size);
/// @param memory null for `free(nullptr)`
void onDeallocation(const volatile void *memory);

#endif
