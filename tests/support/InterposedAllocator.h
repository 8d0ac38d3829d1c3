#ifndef INTERPOSEDALLOCATOR_H
#define INTERPOSEDALLOCATOR_H

#include <cstddef>

/// @file
/// Linking InterposedAllocator.cpp replaces `malloc` and friends in the whole process, libraries
/// included; `operator new` and Qt's containers use them too. A sanitizer's allocator must stay in
/// place, so there the sanitizer's hooks are used instead.
///
/// A program that links it must define these two functions. They run inside the allocator and must
/// not allocate. A `realloc` counts as an allocation, and as a deallocation of the old block.

void onAllocation(std::size_t size);
/// @param memory null for `free(nullptr)`
void onDeallocation(const volatile void *memory);

#endif
