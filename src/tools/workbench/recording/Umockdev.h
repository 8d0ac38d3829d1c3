#ifndef VORN_WORKBENCH_UMOCKDEV_H
#define VORN_WORKBENCH_UMOCKDEV_H

#include "RecordedDevice.h"
#include "Recording.h"

#include <QByteArray>
#include <QString>

namespace Vorn::Workbench {

/// Reads a device file, see readDeviceFile(), as a recording without events.
ParsedRecording parseUmockdev(const QByteArray &text, const QString &file);

/// The part of a device file that describes one node.
QByteArray umockdevBlock(int number, const RecordedDevice &device);

} // namespace Vorn::Workbench

#endif
