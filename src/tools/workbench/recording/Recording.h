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

/// A device and what it sent.
struct RecordedNode
{
    int number = 0; ///< N of /dev/input/eventN
    std::optional<RecordedDevice> device; ///< absent if the file does not describe it
    QVector<RecordedEvent> events; ///< in the order of the file
};

struct ParsedRecording
{
    QVector<RecordedNode> nodes;
    Diagnostics diagnostics;
};

} // namespace Vorn::Workbench

#endif
