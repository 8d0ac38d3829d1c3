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
    /// Why the node, its keys or its switches are not used; empty if they are.
    QString reason;
    QString keyReason;
    QString switchReason;
};

/// A node of /dev/input in its present state.
struct NodeInfo
{
    QString path; ///< "/dev/input/event0"
    int number = -1; ///< N of /dev/input/eventN; -1 for any other path
    bool isDevice = true; ///< false for a file
    QString error; ///< why it cannot be read, and what to do about it; empty if it can be
    RecordedDevice device; ///< whatever the node did not report is missing; a missing name is null
    bool hasIdentity = false; ///< whether `device.id` is known
    bool hasTypes = false; ///< whether the event types are known
    /// Whether all the rest is known: codes, keys down, switches on, properties, `phys` and `uniq`.
    bool hasCodes = false;

    bool isReadable() const { return error.isEmpty(); }
    /// The kernel's name as text.
    QString name() const { return QString::fromUtf8(device.name); }
    LibraryView libraryView() const;
};

/// Opens a node and asks what it is. A failure is part of the result.
NodeInfo readNode(const QString &path);

/// The paths of all event nodes in /dev/input, in the order of their numbers; none if there is no
/// such folder.
/// @param error if given, set if the folder cannot be read; a missing folder is no error
QStringList inputNodes(QString *error = nullptr);

} // namespace Vorn::Workbench

#endif
