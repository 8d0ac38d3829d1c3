#ifndef VORN_WORKBENCH_RECORDING_H
#define VORN_WORKBENCH_RECORDING_H

#include "Diagnostic.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVector>

#include <linux/input.h>

#include <optional>

namespace Vorn::Workbench {

/// What a device is and can do, as far as it was recorded or asked.
struct RecordedDevice
{
    QByteArray name; ///< the kernel's
    input_id id = {};
    QByteArray phys;
    QByteArray uniq;
    QByteArray properties; ///< bitmap, EVIOCGPROP
    /// Bitmaps of codes by event type, EVIOCGBIT(type), without zero bytes at the end. Types
    /// without an entry are not declared; an empty one is a type whose codes are not known, or that
    /// has none. EV_SYN, which every device has, has no entry.
    QMap<int, QByteArray> codes;
    QVector<int> keysDown; ///< at the start
    QVector<int> switchesOn; ///< at the start

    bool has(int type) const { return codes.contains(type); }
    bool has(int type, int code) const;
    /// The codes of a type, rising.
    QVector<int> codesOf(int type) const;
    /// Declares a code and its type. Nothing for EV_SYN and for numbers that no device has.
    void declare(int type, int code);
};

struct RecordedEvent
{
    qint64 time = 0; ///< µs since the start of the recording
    int type = 0;
    int code = 0;
    int value = 0;
};

/// Devices with what they sent.
struct RecordedNode
{
    int number = 0; ///< N of /dev/input/eventN
    std::optional<RecordedDevice> device; ///< absent: the file tells nothing about it
    QVector<RecordedEvent> events; ///< in the order of the file
};

struct ParsedRecording
{
    QVector<RecordedNode> nodes;
    Diagnostics diagnostics;
};

/// Reads one device's file as evemu writes it (description "N:", "I:", "P:", "B:" and events "E:";
/// either may be missing). The node has number 0.
ParsedRecording parseEvemu(const QByteArray &text, const QString &file);

/// Reads a device file as umockdev-record writes it: nodes that are input/eventN, with what their
/// sysfs attributes say. Nodes with fixed content ("N: input/event4=00") are left out.
ParsedRecording parseUmockdev(const QByteArray &text, const QString &file);

/// Reads a file of recorded ioctls (umockdev-run --ioctl) into what is known of a device.
Diagnostics parseIoctls(const QByteArray &text, const QString &file, RecordedDevice *device);

/// Reads a recording from disk. A file "*.umockdev" is a device file, beside which the ioctls and
/// the events of each node are looked for: "<folder of the node's P: path>.ioctl" and ".evemu", or
/// "eventN.ioctl" and ".evemu". Any other file is one device's evemu file.
ParsedRecording loadRecording(const QString &path);

/// @name The same, written
/// @{
QByteArray evemuDescription(const RecordedDevice &device);
/// "E: 1.500000 0001 0073 0001" and the line's end.
QByteArray evemuEvent(const RecordedEvent &event);
/// The block of one node in a device file.
QByteArray umockdevBlock(int number, const RecordedDevice &device);
/// The ioctls that the library, this program and common readers ask of a node.
QByteArray ioctls(const RecordedDevice &device);
/// @}

} // namespace Vorn::Workbench

#endif
