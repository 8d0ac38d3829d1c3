#ifndef VORN_WORKBENCH_KNOWNDEVICES_H
#define VORN_WORKBENCH_KNOWNDEVICES_H

#include "Session.h"

#include <QHash>
#include <QString>

#include <optional>

namespace Vorn::Workbench {

/// The devices that a session has told of, and what to call them.
class KnownDevices
{
public:
    void add(const DeviceChange &change);

    /// The kernel's name; empty if the device has none or is not known. Names of devices that are
    /// gone are kept, as their last events may follow.
    QString kernelName(const QString &path) const { return m_devices.value(path).name; }

    /// The same without characters that do not belong on a terminal.
    QString name(const QString &path) const;

    /// "(event0)" for a device without a name, or if another one that is plugged in has the same;
    /// otherwise empty.
    QString mark(const QString &path) const;

    /// Nothing for a device that is not known.
    std::optional<InputEvent::Bus> bus(const QString &path) const;

    /// "event0", for "/dev/input/event0".
    static QString node(const QString &path);

private:
    QHash<QString, DeviceChange> m_devices; ///< the last change of each, by path
};

} // namespace Vorn::Workbench

#endif
