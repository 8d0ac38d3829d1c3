#ifndef VORN_MUTANT_H
#define VORN_MUTANT_H

#include <cstdlib>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

// Included first by every source that mutants were written into. VORN_MUTANT is the number of the
// one that is switched on; VORN_MUTANT_REACHED names a file with a byte for each, in which those
// whose place was executed are marked. A mapped file, so that marks survive a crash and an exec.

namespace {

int vornMutantActive = -1;
unsigned char *vornMutantReached = nullptr;
int vornMutantCount = 0;

// System calls without the C library's functions: the simulator replaces these, and may be asking.
void vornMutantStart()
{
    const char *const reached = std::getenv("VORN_MUTANT_REACHED");
    const char *const count = std::getenv("VORN_MUTANT_COUNT");
    if (reached && count) {
        const long file = syscall(SYS_openat, AT_FDCWD, reached, O_RDWR | O_CLOEXEC, 0);
        const int size = std::atoi(count);
        const long map =
            syscall(SYS_mmap, nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0L);
        syscall(SYS_close, file);
        if (file >= 0 && map != -1) {
            vornMutantCount = size;
            vornMutantReached = reinterpret_cast<unsigned char *>(map);
        }
    }
    const char *const active = std::getenv("VORN_MUTANT");
    vornMutantActive = active ? std::atoi(active) : 0;
}

inline bool vornMutant(int number)
{
    if (vornMutantActive < 0)
        vornMutantStart();
    if (vornMutantReached && number < vornMutantCount)
        vornMutantReached[number] = 1;
    return number == vornMutantActive;
}

} // namespace

#endif
