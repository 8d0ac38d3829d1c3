#include "BenchDevices.h"

#include <QDir>

#include <linux/input.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace Vorn::Bench {

void requireUinput()
{
    if (::access("/dev/uinput", R_OK | W_OK) != 0) {
        throw std::system_error(errno, std::generic_category(),
                                "cannot create devices, which needs /dev/uinput");
    }
}

void requireNoDevices()
{
    const QDir folder(QStringLiteral("/dev/input"));
    if (!folder.entryList({QStringLiteral("event*")}, QDir::System).isEmpty())
        throw std::runtime_error("this needs a guest without any other input device");
}

std::unique_ptr<UinputDevice> makeDevice()
{
    return std::make_unique<UinputDevice>(UinputDescription{
        "bench-panel", BUS_HOST, {KEY_OK, KEY_STOP, KEY_VOLUMEUP}, {SW_LINEIN_INSERT}});
}

std::vector<std::unique_ptr<UinputDevice>> makeDevices(int count)
{
    std::vector<std::unique_ptr<UinputDevice>> devices;
    devices.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        devices.push_back(makeDevice());
    return devices;
}

} // namespace Vorn::Bench
