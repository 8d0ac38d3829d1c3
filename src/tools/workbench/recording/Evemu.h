#ifndef VORN_WORKBENCH_EVEMU_H
#define VORN_WORKBENCH_EVEMU_H

#include "RecordedDevice.h"
#include "Recording.h"

#include <QByteArray>
#include <QString>

namespace Vorn::Workbench {

/// Reads the evemu file of one device: its description ("N:", "I:", "P:", "B:", "S:"), its events
/// ("E:"), or both. Times start at the first event, and the node has number 0.
ParsedRecording parseEvemu(const QByteArray &text, const QString &file);

/// parseEvemu() with the times of the file.
ParsedRecording parseEvemuAsRecorded(const QByteArray &text, const QString &file);

QByteArray evemuDescription(const RecordedDevice &device);
/// "E: 1.500000 0001 0073 0001" and a line feed.
QByteArray evemuEvent(const RecordedEvent &event);

} // namespace Vorn::Workbench

#endif
