#include "Evemu.h"
#include "RecordedDevice.h"
#include "Recording.h"

#include <cstdint>
#include <cstdlib>

using namespace Vorn::Workbench;

namespace {

QByteArray textOf(const RecordedNode &node)
{
    QByteArray text = evemuDescription(node.device.value_or(RecordedDevice()));
    for (const RecordedEvent &event : node.events)
        text += evemuEvent(event);
    return text;
}

} // namespace

/// Whatever is read must survive a round trip: writing and reading it again gives the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const ParsedRecording recording = parseEvemu(input, QStringLiteral("input"));
    if (recording.nodes.size() != 1)
        std::abort();
    const QByteArray text = textOf(recording.nodes.first());
    const ParsedRecording again = parseEvemu(text, QStringLiteral("again"));
    if (!again.diagnostics.isEmpty() || textOf(again.nodes.first()) != text)
        std::abort();
    return 0;
}
