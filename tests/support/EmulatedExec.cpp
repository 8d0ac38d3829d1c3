// Death tests re-execute the program, which the kernel cannot do for a foreign architecture. This
// has the emulator that the program runs under do it.

#include <unistd.h>

#include <vector>

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): reserved in the header
extern "C" int execv(const char *path, char *const argv[]) noexcept
{
    std::vector<const char *> arguments = {VORN_TEST_EMULATOR, path};
    for (char *const *argument = argv + 1; *argument; ++argument)
        arguments.push_back(*argument);
    arguments.push_back(nullptr);
    return execvp(arguments.front(), const_cast<char *const *>(arguments.data()));
}
