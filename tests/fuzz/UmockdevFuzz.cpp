#include "Ioctls.h"
#include "RecordedDevice.h"
#include "Recording.h"
#include "Umockdev.h"

#include <cstdint>
#include <cstdlib>

using namespace Vorn::Workbench;

namespace {

void readDeviceFile(const QByteArray &input)
{
    const ParsedRecording recording = parseUmockdev(input, QStringLiteral("input"));
    for (const RecordedNode &node : recording.nodes) {
        const QByteArray text = umockdevBlock(node.number, node.device.value_or(RecordedDevice()));
        const ParsedRecording again = parseUmockdev(text, QStringLiteral("again"));
        if (!again.diagnostics.isEmpty() || again.nodes.size() != 1
            || umockdevBlock(again.nodes.first().number, *again.nodes.first().device) != text)
            std::abort();
    }
}

void readIoctls(const QByteArray &input)
{
    RecordedDevice device;
    parseIoctls(input, QStringLiteral("input"), &device);
    const QByteArray text = ioctls(device);
    RecordedDevice read;
    if (!parseIoctls(text, QStringLiteral("again"), &read).isEmpty())
        std::abort();
    // Longer strings do not fit into an ioctl's answer.
    constexpr int answerSize = 255;
    if (device.name.size() < answerSize && device.phys.size() < answerSize
        && device.uniq.size() < answerSize && ioctls(read) != text)
        std::abort();
}

} // namespace

/// The first byte selects the format: "i" means a file of ioctls follows, otherwise the input is a
/// device file. Whatever is read must survive being written and read again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray input(reinterpret_cast<const char *>(data) + 1, static_cast<int>(size - 1));
    if (data[0] == 'i')
        readIoctls(input);
    else
        readDeviceFile(input);
    return 0;
}
