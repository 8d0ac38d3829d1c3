#ifndef VORN_WORKBENCH_IOCTLS_H
#define VORN_WORKBENCH_IOCTLS_H

#include "Diagnostic.h"
#include "RecordedDevice.h"

#include <QByteArray>
#include <QString>

namespace Vorn::Workbench {

/// Reads a file of recorded ioctls (umockdev-run --ioctl) into what is known of a device.
Diagnostics parseIoctls(const QByteArray &text, const QString &file, RecordedDevice *device);

/// The ioctls that the library, this program and common readers ask of a node.
QByteArray ioctls(const RecordedDevice &device);

} // namespace Vorn::Workbench

#endif
