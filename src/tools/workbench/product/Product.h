#ifndef VORN_WORKBENCH_PRODUCT_H
#define VORN_WORKBENCH_PRODUCT_H

#include "BasicInputHandler.h"
#include "LongPressMirror.h"
#include "Observation.h"
#include "ObservedKeyHandler.h"
#include "ObservedSwitchHandler.h"
#include "Profile.h"
#include "SessionLog.h"

#include <QMap>
#include <QSet>
#include <QString>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// The library's device manager with the registrations of a profile, as a product would make them.
/// It logs everything that happens: devices, records, what the detectors do, published events,
/// selections.
///
/// Nothing is read twice: handlers see the batches on their way to the library. Where the product
/// would have no handler (for a device or an identifier that the profile does not mention), one
/// without registrations takes the records, so that they are logged; it publishes nothing.
///
/// **Thread**: that of the event loop. Only one at a time, because all publish on the same bus.
class Product : public BasicInputHandler
{
    Q_OBJECT

public:
    /// Selects the profile's initial identifier.
    /// @param log must live longer
    Product(const Profile &profile, SessionLog *log);
    ~Product() override;

    void addDevice(const QString &path, const QString &name) override;
    void removeDevice(const QString &path) override;

    /// Selects an identifier, as a product does, and logs it.
    void select(const QString &identifier);
    QString identifier() const { return m_identifier; }

    const Profile &profile() const { return m_profile; }

    /// Paths and kernel names of the devices that are present.
    QMap<QString, QString> devices() const;

Q_SIGNALS:
    /// Emitted when it has been logged.
    void deviceAdded(const QString &device, const QString &name);
    void deviceRemoved(const QString &device);

private:
    struct Device
    {
        QString name;
        InputEvent::Bus bus = InputEvent::Bus::NoBus;
        /// Owned here: they take what the product would leave unread.
        ObservedKeyHandler *otherKeys = nullptr;
        ObservedSwitchHandler *otherSwitches = nullptr;
        /// Owned by the library.
        QVector<ObservedKeyHandler *> keyHandlers;
        QSet<QString> keyIdentifiers;
        QSet<QString> switchIdentifiers;
    };

    /// The key that a long press comes from; no handler if it is not known.
    struct LongPressSource
    {
        ObservedKeyHandler *handler = nullptr;
        QString device;
        LongPressMirror::DueKey key;
    };

    void onInputEvent(const InputEvent &event);
    LongPressSource longPressSource(const InputEvent &event) const;
    void addHandlers(const QString &path, Device *device, const HandlerProfile &handlers,
                     const Observation &keys, const Observation &switches);
    void takeUnreadRecords();
    static void deleteOtherHandlers(const Device &device);

    const Profile m_profile;
    SessionLog *const m_log;
    QString m_identifier;
    QMap<QString, Device> m_devices;
    std::optional<Cause> m_cause;
};

} // namespace Vorn::Workbench

#endif
