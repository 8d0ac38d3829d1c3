#ifndef VORN_WORKBENCH_RECORDINGLOADER_H
#define VORN_WORKBENCH_RECORDINGLOADER_H

#include "Recording.h"

#include <QString>

namespace Vorn::Workbench {

/// Reads a recording from disk. A file "*.umockdev" is a device file, beside which the ioctls and
/// the events of each node are looked for: "<folder of the node's P: path>.ioctl" and ".evemu", or
/// "eventN.ioctl" and ".evemu". Any other file is one device's evemu file.
ParsedRecording loadRecording(const QString &path);

} // namespace Vorn::Workbench

#endif
