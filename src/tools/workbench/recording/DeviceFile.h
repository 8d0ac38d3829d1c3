#ifndef VORN_WORKBENCH_DEVICEFILE_H
#define VORN_WORKBENCH_DEVICEFILE_H

#include "Problems.h"
#include "Recording.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace Vorn::Workbench {

/// A node of a device file.
struct DeviceFileNode
{
    RecordedNode node;
    QString folder; ///< name of the folder that the node is in, below /sys
};

/// Reads a device file as umockdev-record writes it: the nodes input/eventN, each with the sysfs
/// attributes of its device. Nodes with fixed content ("N: input/event4=00") are left out.
QVector<DeviceFileNode> readDeviceFile(const QByteArray &text, Problems *problems);

} // namespace Vorn::Workbench

#endif
