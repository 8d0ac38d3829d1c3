#include "Commands.h"
#include "Process.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace Vorn::Bench {

void measureMemory(const Options &options)
{
    // Another program, which has none of the libraries in use: what two processes use belongs to
    // neither alone.
    const std::filesystem::path program =
        std::filesystem::path(ownPath()).parent_path() / "vorn_guest_memory";
    ::execl(program.c_str(), program.c_str(), options.player.c_str(), nullptr);
    throw std::system_error(errno, std::generic_category(), "cannot start " + program.string());
}

} // namespace Vorn::Bench
