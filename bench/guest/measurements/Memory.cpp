#include "Memory.h"

#include "Options.h"
#include "Process.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace Vorn::Bench {

void measureMemory(const Options &options)
{
    // By a program that uses none of the player's libraries: a page that two processes use belongs
    // to neither alone.
    const std::filesystem::path program =
        std::filesystem::path(ownPath()).parent_path() / "vorn_guest_memory";
    ::execl(program.c_str(), program.c_str(), options.player.c_str(), nullptr);
    throw std::system_error(errno, std::generic_category(), "cannot start " + program.string());
}

} // namespace Vorn::Bench
