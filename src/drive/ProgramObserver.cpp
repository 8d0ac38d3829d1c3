#include "ProgramObserver.h"

#include "Input.h"
#include "InputProbe.h"
#include "LostReleases.h"
#include "Reasons.h"
#include "Session.h"
#include "vorn.h"

#include <QThread>

#include <iterator>
#include <utility>

#include <dlfcn.h>

namespace Vorn::Drive {

using namespace Workbench;

std::atomic<ProgramObserver *> ProgramObserver::s_instance{nullptr};

ProgramObserver::ProgramObserver(SessionLog *log, DeviceName deviceName)
    : m_log(log)
    , m_deviceName(std::move(deviceName))
    , m_observation(log)
{
    s_instance = this;
    m_lookForLostReleases.setSingleShot(true);
    m_lookForLostReleases.setInterval(lostReleaseMs);
    Vorn::connect(&m_lookForLostReleases, &QTimer::timeout, this,
                  [this] { lookForLostReleases(); });
    // Before the program's own slots, so that what they do is logged after the event.
    Vorn::connect(Input::instance(), &Input::inputEvent, this, [this](const InputEvent &event) {
        ++m_events;
        m_observation.publish(event);
    });
}

ProgramObserver::~ProgramObserver()
{
    s_instance = nullptr;
}

ProgramObserver *ProgramObserver::instance()
{
    ProgramObserver *observer = s_instance;
    return observer && observer->thread() == QThread::currentThread() ? observer : nullptr;
}

void ProgramObserver::onForeignManagerMade()
{
    ProgramObserver *observer = s_instance;
    if (!observer)
        return;
    observer->m_hasForeignManager = true;
    // Who waits for a manager has to look again.
    QMetaObject::invokeMethod(
        observer, [] {}, Qt::QueuedConnection);
}

void ProgramObserver::onManagerMade(BasicInputHandler *manager)
{
    m_managers += manager;
    Vorn::connect(manager, &QObject::destroyed, this, [this, manager] { onManagerGone(manager); });
    InputProbe::surroundScans(
        manager, [] {}, [this] { lookForDevices(); });
}

void ProgramObserver::onManagerGone(BasicInputHandler *manager)
{
    m_managers.removeAll(manager);
    for (auto it = m_devices.begin(); it != m_devices.end();)
        it = it->manager == manager ? m_devices.erase(it) : std::next(it);
}

bool ProgramObserver::hasLooked() const
{
    return manager() && InputProbe::hasLooked(*manager());
}

void ProgramObserver::lookForDevices()
{
    for (BasicInputHandler *manager : qAsConst(m_managers)) {
        const QStringList paths = InputProbe::devices(*manager);
        for (const QString &path : paths)
            arrived(manager, path);
    }
    // The library has the empty identifier until the program selects one.
    if (!std::exchange(m_hasSelected, true))
        m_log->add(IdentifierSelected{identifier()});
}

QString ProgramObserver::identifier() const
{
    return manager() ? InputProbe::currentIdentifier(*manager()) : QString();
}

ProgramObserver::Device &ProgramObserver::arrived(BasicInputHandler *manager, const QString &path)
{
    const auto known = m_devices.find(path);
    if (known != m_devices.end())
        return *known;
    Device device;
    device.manager = manager;
    device.seen = observedDevice(*manager, path, m_deviceName(path));
    m_log->add(DeviceChange{path, device.seen.name, device.seen.bus, true});
    const auto unread = [&](int side) {
        return std::make_shared<UnreadRecords>(
            device.seen, side, m_log, [this, path, side] { return unreadReason(path, side); });
    };
    device.unreadKeys = unread(EV_KEY);
    device.unreadSwitches = unread(EV_SW);
    device.unreadKeys->observe(InputProbe::keyListener(*manager, path));
    device.unreadSwitches->observe(InputProbe::switchListener(*manager, path));
    return *m_devices.insert(path, device);
}

void ProgramObserver::onKeyHandlerAdded(BasicInputHandler *manager, const QString &path,
                                        BasicKeyInputHandler *handler)
{
    const bool isPresent = InputProbe::devices(*manager).contains(path);
    if (!isPresent || m_keys.contains(handler))
        return;
    Device &device = arrived(manager, path);
    device.keyHandlers += handler;
    const KeyObserver::Questions questions{
        [this, path](int code) { return unmappedReason(path, EV_KEY, code); },
        [this] { m_lookForLostReleases.start(); }};
    m_keys.insert(handler,
                  std::make_shared<KeyObserver>(handler, device.seen, &m_observation, questions));
    Vorn::connect(handler, &QObject::destroyed, this, [this, handler] { m_keys.remove(handler); });
}

void ProgramObserver::onSwitchHandlerAdded(BasicInputHandler *manager, const QString &path,
                                           BasicSwInputHandler *handler)
{
    const bool isPresent = InputProbe::devices(*manager).contains(path);
    if (!isPresent || m_switches.contains(handler))
        return;
    const Device &device = arrived(manager, path);
    m_switches.insert(
        handler,
        std::make_shared<SwitchObserver>(device.seen, &m_observation, [this, path](int code) {
            return unmappedReason(path, EV_SW, code);
        }));
    Vorn::connect(handler, &QObject::destroyed, this,
                  [this, handler] { m_switches.remove(handler); });
}

void ProgramObserver::onRemoved(const QString &path, const std::function<void()> &library)
{
    const SessionHold hold(m_log);
    const bool isKnown = m_devices.contains(path);
    const Device device = m_devices.take(path);
    for (BasicKeyInputHandler *handler : device.keyHandlers) {
        if (const auto observer = m_keys.value(handler))
            observer->endTiming();
    }
    library();
    if (isKnown)
        m_log->add(DeviceChange{path, device.seen.name, device.seen.bus, false});
}

void ProgramObserver::onSelected(const QString &identifier, const std::function<void()> &library)
{
    const SessionHold hold(m_log);
    m_hasSelected = true;
    m_log->add(IdentifierSelected{identifier});
    library();
}

void ProgramObserver::onInvalidated(BasicKeyInputHandler *handler,
                                    const std::function<void()> &library)
{
    // A copy: the program may delete the handler meanwhile.
    if (const auto observer = m_keys.value(handler))
        observer->invalidate(library);
    else
        library();
}

void ProgramObserver::onKeyRecords(BasicKeyInputHandler *handler, const QList<input_event> &events,
                                   const KeyObserver::ProcessEvent &library)
{
    if (const auto observer = m_keys.value(handler))
        observer->processEvent(events, library);
    else
        library(events);
}

void ProgramObserver::onSwitchRecords(BasicSwInputHandler *handler,
                                      const QList<input_event> &events,
                                      const SwitchObserver::ProcessEvent &library)
{
    if (const auto observer = m_switches.value(handler))
        observer->processEvent(events, library);
    else
        library(events);
}

void ProgramObserver::lookForLostReleases()
{
    for (Device &device : m_devices) {
        const LinuxInputListener *listener =
            InputProbe::keyListener(*device.manager, device.seen.path);
        InputHandler *receiver = listener ? InputProbe::receiver(*listener) : nullptr;
        if (const auto *handler = qobject_cast<BasicKeyInputHandler *>(receiver))
            device.lostReleases =
                tellLostReleases(m_log, device.seen, *handler, device.lostReleases);
    }
}

void ProgramObserver::select(const QString &identifier) const
{
    if (!manager())
        return;
    // The one with a profile remembers what was selected, and passes it on.
    using Select = void(BasicInputHandler *, const QString &);
    auto *const selectOfProfile = reinterpret_cast<Select *>(
        dlsym(RTLD_DEFAULT, "_ZN19ProfileInputHandler13selectHandlerERK7QString"));
    if (selectOfProfile && manager()->inherits("ProfileInputHandler"))
        selectOfProfile(manager(), identifier);
    else
        manager()->selectHandler(identifier);
}

QString ProgramObserver::unreadReason(const QString &path, int side) const
{
    const BasicInputHandler &manager = *m_devices[path].manager;
    const auto any = [](const auto &) { return true; };
    const bool isKey = side == EV_KEY;
    return noHandlerReason(isKey ? QStringLiteral("keys") : QStringLiteral("switches"),
                           InputProbe::currentIdentifier(manager),
                           isKey ? InputProbe::keyIdentifiers(manager, path, any)
                                 : InputProbe::switchIdentifiers(manager, path, any));
}

QString ProgramObserver::unmappedReason(const QString &path, int side, int code) const
{
    const auto mapsKey = [code](const BasicKeyInputHandler &handler) {
        return InputProbe::keys(handler).contains(code);
    };
    const auto mapsSwitch = [code](const BasicSwInputHandler &handler) {
        return InputProbe::switches(handler).contains(code);
    };
    const BasicInputHandler &manager = *m_devices[path].manager;
    return Workbench::unmappedReason(
        InputProbe::currentIdentifier(manager),
        side == EV_KEY ? InputProbe::keyIdentifiers(manager, path, mapsKey)
                       : InputProbe::switchIdentifiers(manager, path, mapsSwitch));
}

} // namespace Vorn::Drive
