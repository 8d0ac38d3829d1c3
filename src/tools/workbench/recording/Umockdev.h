#ifndef VORN_WORKBENCH_UMOCKDEV_H
#define VORN_WORKBENCH_UMOCKDEV_H

#include "Problems.h"
#include "RecordedDevice.h"
#include "Recording.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace Vorn::Workbench {

/// Reads a device file as umockdev-record writes it: nodes that are input/eventN, with what their
/// sysfs attributes say. Nodes with fixed content ("N: input/event4=00") are left out.
ParsedRecording parseUmockdev(const QByteArray &text, const QString &file);

/// A node of a device file.
struct DeviceFileNode
{
    RecordedNode node;
    QString folder; ///< name of the folder that the node is in, below /sys
};

/// Reads a device file, see parseUmockdev().
QVector<DeviceFileNode> readDeviceFile(const QByteArray &text, Problems *problems);

/// The block of one node in a device file.
QByteArray umockdevBlock(int number, const RecordedDevice &device);

} // namespace Vorn::Workbench

#endif
