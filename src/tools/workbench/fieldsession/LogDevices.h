#ifndef VORN_WORKBENCH_LOGDEVICES_H
#define VORN_WORKBENCH_LOGDEVICES_H

#include "Input.h"
#include "LibraryMessage.h"

#include <QHash>
#include <QMap>
#include <QString>
#include <QVector>

#include <memory>
#include <optional>

namespace Vorn::Workbench {

/// A device that a log tells of.
struct LogDevice
{
    QString path; ///< "/dev/input/event0"
    QString name; ///< the kernel's; empty if the log does not say
    InputEvent::Bus bus = InputEvent::Bus::NoBus;
    bool readsKeys = false;
    bool readsSwitches = false;

    /// How often each of its records is read.
    int readers() const { return (readsKeys ? 1 : 0) + (readsSwitches ? 1 : 0); }
};

using LogDevicePtr = std::shared_ptr<const LogDevice>;

/// The devices that a process has opened, from the lines of the device manager and of the
/// listeners.
class LogDevices
{
public:
    /// Whether a line tells of a device, and whether it continues what was said of the one that is
    /// being opened. Both listeners of a device are opened in a row.
    bool continuesOpening(const LibraryMessage &message) const;

    /// Takes a line about devices; others do nothing.
    void take(const LibraryMessage &message);

    /// The device that was being opened, if there is one. To be called before a line that does not
    /// continue it.
    LogDevicePtr finishOpening();

    /// Null if the device is not known.
    LogDevicePtr remove(const QString &path);

    /// Whether a line can only come from a process that has started anew: a device manager never
    /// adds a device twice.
    bool isNewStart(const LibraryMessage &message) const;

    /// Those that are present and read, by path.
    QVector<LogDevicePtr> present() const;
    LogDevicePtr at(const QString &path) const { return m_devices.value(path); }

private:
    struct Opening
    {
        LogDevice device;
        int listeners = 0;
        QString listenerName;
        bool isBusKnown = false;
        int kernelBus = 0;
    };

    void open(const Said::ListenerOpened &opened);

    QMap<QString, LogDevicePtr> m_devices;
    QHash<QString, QString> m_names; ///< of the nodes of the last scan
    std::optional<Opening> m_opening;
};

} // namespace Vorn::Workbench

#endif
