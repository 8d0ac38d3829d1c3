// Measures the memory that belongs to an idle player alone. A separate program, which shares only
// the C library with the player: pages that two processes use belong to neither.

#include "Figures.h"
#include "Process.h"

#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>

#include <array>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

using namespace Vorn::Bench;

namespace {

using namespace std::chrono_literals;

struct DeviceDeleter
{
    void operator()(libevdev_uinput *device) const { libevdev_uinput_destroy(device); }
};
using Device = std::unique_ptr<libevdev_uinput, DeviceDeleter>;

/// The panel the player expects.
Device makePanel()
{
    const std::unique_ptr<libevdev, decltype(&libevdev_free)> blueprint(libevdev_new(),
                                                                        &libevdev_free);
    libevdev_set_name(blueprint.get(), "front-panel");
    libevdev_set_id_bustype(blueprint.get(), BUS_HOST);
    for (int code : {KEY_VOLUMEUP, KEY_VOLUMEDOWN, KEY_INFO, KEY_STOP, KEY_PLAY})
        libevdev_enable_event_code(blueprint.get(), EV_KEY, static_cast<unsigned int>(code),
                                   nullptr);
    libevdev_enable_event_code(blueprint.get(), EV_SW, SW_LINEIN_INSERT, nullptr);
    libevdev_uinput *device = nullptr;
    const int error =
        libevdev_uinput_create_from_device(blueprint.get(), LIBEVDEV_UINPUT_OPEN_MANAGED, &device);
    if (error != 0) {
        throw std::runtime_error(std::string("cannot create devices, which needs /dev/uinput: ")
                                 + std::strerror(-error));
    }
    return Device(device);
}

void waitUntilIdle(const Process &process, const std::string &node)
{
    const auto end = std::chrono::steady_clock::now() + 60s;
    long wakeUps = -1;
    while (!process.hasOpen(node) || wakeUps != process.wakeUps()) {
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error("the player does not become idle on " + node);
        wakeUps = process.wakeUps();
        std::this_thread::sleep_for(1s);
    }
}

/// In KiB.
struct Private
{
    double clean = 0;
    double dirty = 0;
};

/// The sum over the mappings of files whose name begins with @p name; over all if that is empty.
Private privateMemory(const Process &process, const std::string &name)
{
    const std::string clean = "Private_Clean:";
    const std::string dirty = "Private_Dirty:";
    std::ifstream maps("/proc/" + std::to_string(process.id()) + "/smaps");
    Private sum;
    bool isFound = false;
    bool isCounted = false;
    std::string line;
    while (std::getline(maps, line)) {
        // The line of a mapping begins with its address, those of its details with a capital.
        if (!std::isupper(static_cast<unsigned char>(line.front()))) {
            const std::string file = line.substr(line.rfind('/') + 1);
            isCounted = name.empty() || file.rfind(name, 0) == 0;
            isFound = isFound || isCounted;
        } else if (isCounted && line.rfind(clean, 0) == 0) {
            sum.clean += std::stod(line.substr(clean.size()));
        } else if (isCounted && line.rfind(dirty, 0) == 0) {
            sum.dirty += std::stod(line.substr(dirty.size()));
        }
    }
    if (!isFound)
        throw std::runtime_error("the player has no " + (name.empty() ? "memory" : name));
    return sum;
}

void measure(const char *player)
{
    const Device panel = makePanel();
    const Process process({player});
    waitUntilIdle(process, libevdev_uinput_get_devnode(panel.get()));
    const std::array<std::pair<const char *, const char *>, 3> subjects = {
        {{"player", ""},
         {"libvorn_input.so", "libvorn_input.so"},
         {"libvorn_api.so", "libvorn_api.so"}}};
    for (const auto &[subject, name] : subjects) {
        const Private memory = privateMemory(process, name);
        print({"memory", subject, "idle", {}, {}, "private", "KiB"}, {memory.clean + memory.dirty});
        print({"memory", subject, "idle", {}, {}, "private and dirty", "KiB"}, {memory.dirty});
    }
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2 || argv[1][0] == '-') {
        std::fputs("usage: vorn_guest_memory PLAYER (see vorn_guest_bench memory --help)\n",
                   stderr);
        return 2;
    }
    try {
        measure(argv[1]);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "vorn_guest_memory: %s\n", error.what());
        return 1;
    }
    return 0;
}
