#ifndef VORN_WORKBENCH_IOCTLS_H
#define VORN_WORKBENCH_IOCTLS_H

#include "Diagnostic.h"
#include "RecordedDevice.h"

#include <QByteArray>
#include <QString>

namespace Vorn::Workbench {

/// Adds what a file of recorded ioctls (umockdev-run --ioctl) says about a device.
Diagnostics parseIoctls(const QByteArray &text, const QString &file, RecordedDevice *device);

/// Such a file, with the answers to whatever the library, this program and libevdev ask a node.
QByteArray ioctls(const RecordedDevice &device);

} // namespace Vorn::Workbench

#endif
