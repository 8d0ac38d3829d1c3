#ifndef VORN_WORKBENCH_NODETABLE_H
#define VORN_WORKBENCH_NODETABLE_H

#include "NodeInfo.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace Vorn::Workbench {

/// The nodes as a table for people, up to 100 columns wide: a line for each node, and below it a
/// line for its keys, one for its switches and one for what keeps it from being used, if any.
///
/// ```
/// NODE    NAME               KERNEL BUS  BUS      THE LIBRARY READS
/// event0  front-panel        BUS_HOST    LocalUI  keys
///         5 keys: KEY_VOLUMEDOWN, KEY_VOLUMEUP, KEY_STOP, KEY_PLAY, KEY_INFO
/// ```
QString nodeTable(const QVector<NodeInfo> &nodes, bool coloured = false);

/// A node as one line of JSON, line feed included. Members:
///
/// | member | what |
/// |---|---|
/// | `device`, `number` | "/dev/input/event0", 0 |
/// | `readable`, `error` | whether it can be read, and why not |
/// | `name`, `phys`, `uniq` | the kernel's strings |
/// | `kernelBus`, `kernelBusName`, `vendor`, `product`, `version` | its identity |
/// | `bus` | the library's bus, "LocalUI" |
/// | `keys`, `switches` | names of the codes |
/// | `keysDown`, `switchesOn` | names of those that are down or on |
/// | `used` | whether the library reads anything from it |
/// | `reason` | why not |
/// | `keySide`, `switchSide` | "used", or why not |
QByteArray nodeJson(const NodeInfo &node);

} // namespace Vorn::Workbench

#endif
