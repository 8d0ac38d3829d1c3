#ifndef USAGE_H
#define USAGE_H

#include <cstddef>

/// What the process has in use.
struct Usage
{
    /// Resident memory in KiB.
    std::size_t resident = 0;
    /// Bytes allocated and not freed.
    std::size_t allocated = 0;
    /// Whether #allocated is what was asked for. The C library counts what it gave, and gives up to
    /// 16 bytes more where a free piece is hardly larger than needed.
    bool isExact = false;
    int descriptors = 0;
};

Usage usageNow();

#endif
