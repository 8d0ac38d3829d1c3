#ifndef VORN_WORKBENCH_PRODUCT_H
#define VORN_WORKBENCH_PRODUCT_H

#include "Observation.h"
#include "ObservedKeyHandler.h"
#include "ObservedSwitchHandler.h"
#include "Profile.h"
#include "ProfileInputHandler.h"
#include "SessionLog.h"
#include "UnreadRecords.h"

#include <QMap>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QVector>

namespace Vorn::Workbench {

/// The device manager of a profile that products use, with handlers that are observed. It logs
/// everything that happens: devices, records, what the detectors do, published events, selections.
///
/// Nothing is read twice and nothing is imitated: handlers see the batches on their way to the
/// library, and state what its own detectors do. The records of a listener without a receiver are
/// logged as well; the library drops them, and so does the product.
///
/// **Thread**: that of the event loop. Only one at a time, because all publish on the same bus.
class Product : public ProfileInputHandler
{
    Q_OBJECT

public:
    /// Selects the profile's initial identifier.
    /// @param log must live longer
    Product(const Profile &profile, SessionLog *log);
    ~Product() override;

    void addDevice(const QString &path, const QString &name) override;
    void removeDevice(const QString &path) override;

    /// Logs the selection, too.
    void selectHandler(const QString &identifier) override;

    /// Paths and kernel names of the devices that are present.
    QMap<QString, QString> devices() const;

    /// Logs what the library believes about the keys of each device, and which of them it has down
    /// although they are up.
    void logStates();
    /// The first of it, for those devices of which it has changed since it was logged last.
    void logChangedStates();

Q_SIGNALS:
    /// Emitted when it has been logged.
    void deviceAdded(const QString &device, const QString &name);
    void deviceRemoved(const QString &device);

protected:
    BasicKeyInputHandler *createKeyHandler(const QString &path, const QString &name) override;
    BasicSwInputHandler *createSwitchHandler(const QString &path, const QString &name) override;

private:
    struct Device
    {
        ObservedDevice seen;
        /// Owned here: they log what the library would drop.
        UnreadRecords *unreadKeys = nullptr;
        UnreadRecords *unreadSwitches = nullptr;
        /// Owned by the library.
        QVector<ObservedKeyHandler *> keyHandlers;
        /// Keys that came up unheard, told once.
        QSet<int> lostReleases;
        KeyStates logged;
    };

    void onInputEvent(const InputEvent &event);
    QString unreadReason(const ObservedDevice &device, int side) const;
    QString unmappedReason(const QString &path, int side, int code) const;
    KeyStates statesOf(const Device &device) const;
    ObservedKeyHandler *currentKeyHandler(const Device &device) const;
    void lookForLostReleases();
    static void deleteUnread(const Device &device);

    SessionLog *const m_log;
    QMap<QString, Device> m_devices;
    Observation m_observation;
    QTimer m_lookForLostReleases;
};

} // namespace Vorn::Workbench

#endif
