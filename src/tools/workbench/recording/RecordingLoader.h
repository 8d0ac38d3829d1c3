#ifndef VORN_WORKBENCH_RECORDINGLOADER_H
#define VORN_WORKBENCH_RECORDINGLOADER_H

#include "Recording.h"
#include "TextFile.h"

#include <QString>

namespace Vorn::Workbench {

/// Reads a recording from disk. "*.umockdev" is a device file; the ioctls and the events of each
/// node are read from files beside it, "<folder of the node's P: path>.ioctl" and ".evemu", or
/// "eventN.ioctl" and ".evemu". Any other file is the evemu file of one device.
ParsedRecording loadRecording(const QString &path, Pipes pipes = Pipes::Allowed);

} // namespace Vorn::Workbench

#endif
