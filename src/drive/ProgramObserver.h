#ifndef VORN_DRIVE_PROGRAMOBSERVER_H
#define VORN_DRIVE_PROGRAMOBSERVER_H

#include "BasicInputHandler.h"
#include "KeyObserver.h"
#include "Observation.h"
#include "SessionLog.h"
#include "SwitchObserver.h"
#include "UnreadRecords.h"

#include <QHash>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QVector>

#include <atomic>
#include <functional>
#include <memory>

namespace Vorn::Drive {

/// Logs what the library does in a program that knows nothing of it, as the workbench logs its own:
/// devices, records, what the detectors do, published events, selections.
///
/// The interposed functions of the library call it, on the thread of the event loop.
class ProgramObserver : public QObject
{
public:
    /// The kernel's name of a device, by the path of its node.
    using DeviceName = std::function<QString(const QString &path)>;

    /// @param log must live longer
    ProgramObserver(Workbench::SessionLog *log, DeviceName deviceName);
    ~ProgramObserver() override;

    /// The one that is alive; null before a program is driven, and on other threads, which are not
    /// observed.
    static ProgramObserver *instance();
    /// A device manager was made on a thread that is not observed.
    static void onForeignManagerMade();
    bool hasForeignManager() const { return m_hasForeignManager; }

    /// @name What the program does
    /// A function that is passed does what the library does.
    /// @{
    void onManagerMade(BasicInputHandler *manager);
    void onKeyHandlerAdded(BasicInputHandler *manager, const QString &path,
                           BasicKeyInputHandler *handler);
    void onSwitchHandlerAdded(BasicInputHandler *manager, const QString &path,
                              BasicSwInputHandler *handler);
    void onRemoved(const QString &path, const std::function<void()> &library);
    void onSelected(const QString &identifier, const std::function<void()> &library);
    void onInvalidated(BasicKeyInputHandler *handler, const std::function<void()> &library);
    void onKeyRecords(BasicKeyInputHandler *handler, const QList<input_event> &events,
                      const Workbench::KeyObserver::ProcessEvent &library);
    void onSwitchRecords(BasicSwInputHandler *handler, const QList<input_event> &events,
                         const Workbench::SwitchObserver::ProcessEvent &library);
    /// @}

    /// Whether a device manager has looked at /dev/input.
    bool hasLooked() const;
    /// Observes devices that no handler was made for.
    void lookForDevices();

    /// Null while there is none; of several, the one made last.
    BasicInputHandler *manager() const
    {
        return m_managers.isEmpty() ? nullptr : m_managers.last();
    }
    QString identifier() const;
    /// How many events were published.
    qint64 events() const { return m_events; }
    /// Selects as the program would.
    void select(const QString &identifier) const;

private:
    struct Device
    {
        BasicInputHandler *manager = nullptr;
        Workbench::ObservedDevice seen;
        std::shared_ptr<Workbench::UnreadRecords> unreadKeys;
        std::shared_ptr<Workbench::UnreadRecords> unreadSwitches;
        QVector<BasicKeyInputHandler *> keyHandlers;
        QSet<int> lostReleases; ///< keys that came up unheard, told once
    };

    void onManagerGone(BasicInputHandler *manager);
    Device &arrived(BasicInputHandler *manager, const QString &path);
    void lookForLostReleases();
    QString unreadReason(const QString &path, int side) const;
    QString unmappedReason(const QString &path, int side, int code) const;

    static std::atomic<ProgramObserver *> s_instance;

    Workbench::SessionLog *const m_log;
    const DeviceName m_deviceName;
    Workbench::Observation m_observation;
    QVector<BasicInputHandler *> m_managers;
    QMap<QString, Device> m_devices;
    QHash<BasicKeyInputHandler *, std::shared_ptr<Workbench::KeyObserver>> m_keys;
    QHash<BasicSwInputHandler *, std::shared_ptr<Workbench::SwitchObserver>> m_switches;
    qint64 m_events = 0;
    bool m_hasSelected = false;
    std::atomic<bool> m_hasForeignManager{false};
    QTimer m_lookForLostReleases;
};

} // namespace Vorn::Drive

#endif
