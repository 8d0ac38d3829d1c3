#ifndef VORN_WORKBENCH_LOGORIGINS_H
#define VORN_WORKBENCH_LOGORIGINS_H

#include "LogDevices.h"

#include <QMap>
#include <QString>
#include <QVector>

#include <functional>
#include <memory>
#include <optional>

namespace Vorn::Workbench {

/// Where records come from: a descriptor that is read, or, where the log has none, the device of
/// one packet of records. Which device it is may show later.
class LogOrigin
{
public:
    explicit LogOrigin(std::optional<int> descriptor)
        : m_descriptor(descriptor)
    { }

    /// Null while it is not known.
    LogDevicePtr device() const { return root()->m_device; }
    void setDevice(const LogDevicePtr &device) { root()->m_device = device; }
    /// The name by which a handler speaks of a device that the log does not tell of.
    void setLabel(const QString &label) { root()->m_label = label; }
    bool isKnown() const { return root()->m_device || !root()->m_label.isEmpty(); }

    /// The path of the device or, if that is unknown, what there is to tell it from others.
    QString text() const;

    /// Makes two known to be the same device.
    static void join(const std::shared_ptr<LogOrigin> &one,
                     const std::shared_ptr<LogOrigin> &other);
    bool isSame(const LogOrigin &other) const { return root() == other.root(); }

    std::optional<int> descriptor() const { return m_descriptor; }
    /// @name What has been read from it
    /// @{
    bool hasKeys = false;
    bool hasSwitches = false;
    /// @}

private:
    LogOrigin *root() const;

    const std::optional<int> m_descriptor;
    LogDevicePtr m_device;
    QString m_label;
    mutable std::shared_ptr<LogOrigin> m_joined;
};

using LogOriginPtr = std::shared_ptr<LogOrigin>;

/// Finds out which device each descriptor is. Nothing is guessed: either a handler has named the
/// device, or no other can be meant.
class LogOrigins
{
public:
    explicit LogOrigins(const LogDevices *devices)
        : m_devices(devices)
    { }

    LogOriginPtr ofDescriptor(int descriptor);
    /// For records whose descriptor the log does not have.
    static LogOriginPtr unnamed() { return std::make_shared<LogOrigin>(std::nullopt); }

    /// A handler has named its device, @p name, when it took records of @p origin.
    void nameBy(const LogOriginPtr &origin, const QString &name);
    /// The log has named it.
    void nameByPath(const LogOriginPtr &origin, const QString &path);
    /// Looks for the only device that a origin may be.
    void settle(const LogOriginPtr &origin);
    void settleAll();

    /// The device of that name or path; null if there is none or several.
    LogDevicePtr named(const QString &name) const;

    /// Whether all devices are known, so that one can be found by ruling out the others.
    void setComplete(bool isComplete) { m_isComplete = isComplete; }
    bool isComplete() const { return m_isComplete; }

    /// A descriptor is closed.
    void close(const LogOrigin &origin);
    /// Descriptors may be another device's from now on.
    void forget(const std::function<bool(const LogOrigin &)> &isGone);

    /// Whether what has been read may come from a device.
    static bool fits(const LogOrigin &origin, const LogDevice &device);

private:
    bool mayBe(const LogOrigin &origin, const LogDevice &device) const;

    const LogDevices *const m_devices;
    QMap<int, LogOriginPtr> m_descriptors; ///< in order, so that a log is always read alike
    bool m_isComplete = false;
};

} // namespace Vorn::Workbench

#endif
