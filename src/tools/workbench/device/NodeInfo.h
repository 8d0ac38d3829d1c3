#ifndef VORN_WORKBENCH_NODEINFO_H
#define VORN_WORKBENCH_NODEINFO_H

#include "Input.h"
#include "RecordedDevice.h"

#include <QString>
#include <QStringList>

namespace Vorn::Workbench {

/// What the library makes of a node.
struct LibraryView
{
    /// Whether a product can get events from it: at least one side is read.
    bool isUsed = false;
    InputEvent::Bus bus = InputEvent::Bus::NoBus;
    bool readsKeys = false;
    bool readsSwitches = false;
    /// Why the node, its keys or its switches are not used, in words; empty where they are.
    QString reason;
    QString keyReason;
    QString switchReason;
};

/// A node of /dev/input, as it answers now.
struct NodeInfo
{
    QString path; ///< "/dev/input/event0"
    int number = -1; ///< N of /dev/input/eventN; -1 for any other path
    /// Whether there is a device behind it, as far as can be told; false for a plain file.
    bool isDevice = true;
    QString error; ///< why it cannot be read, and what to do about it; empty if it can be
    RecordedDevice device; ///< what it did not answer is missing; the name is null then
    bool hasIdentity = false; ///< whether it told `device.id`
    bool hasTypes = false; ///< whether it told the event types that it has

    bool isReadable() const { return error.isEmpty(); }
    /// The kernel's name as text.
    QString name() const { return QString::fromUtf8(device.name); }
    LibraryView libraryView() const;
};

/// Opens a node and asks what it is. Fails in the result only.
NodeInfo readNode(const QString &path);

/// The paths of all event nodes in /dev/input, by rising number; empty without the folder.
/// @param error if given, why the folder cannot be read; untouched if it can, or is missing
QStringList inputNodes(QString *error = nullptr);

} // namespace Vorn::Workbench

#endif
