#ifndef VORN_WORKBENCH_RECORDEDDEVICE_H
#define VORN_WORKBENCH_RECORDEDDEVICE_H

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVector>

#include <linux/input.h>

namespace Vorn::Workbench {

/// What a device is and can do, as far as that was recorded or reported.
struct RecordedDevice
{
    QByteArray name; ///< its kernel name
    input_id id = {};
    QByteArray phys;
    QByteArray uniq;
    QByteArray properties; ///< bitmap, EVIOCGPROP
    /// Bitmaps of codes by event type, EVIOCGBIT(type), without trailing zero bytes. A type without
    /// an entry is not declared; one with an empty entry has no codes, or unknown ones. EV_SYN,
    /// which every device has, has no entry.
    QMap<int, QByteArray> codes;
    QVector<int> keysDown; ///< at the start
    QVector<int> switchesOn; ///< at the start

    bool has(int type) const { return codes.contains(type); }
    bool has(int type, int code) const;
    /// The codes of a type in ascending order.
    QVector<int> codesOf(int type) const;
    /// Declares a code and its type; ignores EV_SYN and numbers that no device has.
    void declare(int type, int code);
};

/// The bitmap of event types, EVIOCGBIT(0).
QByteArray typeBits(const RecordedDevice &device);

/// Declares a type with its codes.
/// @return what is wrong with them; empty if nothing is
QString declareCodes(RecordedDevice *device, int type, const QByteArray &bits);

/// The text that a string of the kernel holds: up to its first zero byte.
QByteArray kernelText(const QByteArray &bytes);

} // namespace Vorn::Workbench

#endif
