#ifndef VORN_WORKBENCH_RECORDEDDEVICE_H
#define VORN_WORKBENCH_RECORDEDDEVICE_H

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVector>

#include <linux/input.h>

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

/// The bitmap of event types, EVIOCGBIT(0).
QByteArray typeBits(const RecordedDevice &device);

/// Declares a type with its codes.
/// @return why it cannot be; empty if it was
QString declareCodes(RecordedDevice *device, int type, const QByteArray &bits);

/// A kernel text: up to the first zero byte.
QByteArray kernelText(const QByteArray &bytes);

} // namespace Vorn::Workbench

#endif
