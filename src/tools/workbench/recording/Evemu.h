#ifndef VORN_WORKBENCH_EVEMU_H
#define VORN_WORKBENCH_EVEMU_H

#include "RecordedDevice.h"
#include "Recording.h"

#include <QByteArray>
#include <QString>

namespace Vorn::Workbench {

/// Reads one device's file as evemu writes it (description "N:", "I:", "P:", "B:" and events "E:";
/// either may be missing). The node has number 0.
ParsedRecording parseEvemu(const QByteArray &text, const QString &file);

/// parseEvemu(), but the times are those of the file.
ParsedRecording parseEvemuAsRecorded(const QByteArray &text, const QString &file);

QByteArray evemuDescription(const RecordedDevice &device);
/// "E: 1.500000 0001 0073 0001" and the line's end.
QByteArray evemuEvent(const RecordedEvent &event);

} // namespace Vorn::Workbench

#endif
