#ifndef VORN_WORKBENCH_RECORDING_H
#define VORN_WORKBENCH_RECORDING_H

#include "Diagnostic.h"
#include "RecordedDevice.h"

#include <QVector>

#include <optional>

namespace Vorn::Workbench {

struct RecordedEvent
{
    qint64 time = 0; ///< µs since the start of the recording
    int type = 0;
    int code = 0;
    int value = 0;
};

/// Devices with what they sent.
struct RecordedNode
{
    int number = 0; ///< N of /dev/input/eventN
    std::optional<RecordedDevice> device; ///< absent: the file tells nothing about it
    QVector<RecordedEvent> events; ///< in the order of the file
};

struct ParsedRecording
{
    QVector<RecordedNode> nodes;
    Diagnostics diagnostics;
};

} // namespace Vorn::Workbench

#endif
