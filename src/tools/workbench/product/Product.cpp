#include "Product.h"

#include "CommandNames.h"
#include "EventNames.h"
#include "InputProbe.h"
#include "LostReleases.h"
#include "ProfileReasons.h"
#include "Reasons.h"
#include "Session.h"
#include "SessionLog.h"
#include "vorn.h"

namespace Vorn::Workbench {

Product::Product(const Profile &profile, SessionLog *log)
    : ProfileInputHandler(profile, Rules::AreLeftToDerived)
    , m_log(log)
    , m_observation(log)
{
    m_lookForLostReleases.setSingleShot(true);
    m_lookForLostReleases.setInterval(lostReleaseMs);
    Vorn::connect(&m_lookForLostReleases, &QTimer::timeout, this,
                  [this] { lookForLostReleases(); });
    Vorn::connect(Input::instance(), &Input::inputEvent, this, &Product::onInputEvent);
    m_log->add(IdentifierSelected{profile.initial});
}

Product::~Product()
{
    for (const Device &device : qAsConst(m_devices))
        deleteUnread(device);
}

void Product::addDevice(const QString &path, const QString &name)
{
    const SessionHold hold(m_log);
    LinuxInputListener *keys = InputProbe::keyListener(*this, path);
    LinuxInputListener *switches = InputProbe::switchListener(*this, path);
    Device device;
    device.seen = observedDevice(*this, path, name);
    m_log->add(DeviceChange{path, name, device.seen.bus, true});

    const auto reason = [this, seen = device.seen](int side) {
        return [this, seen, side] { return unreadReason(seen, side); };
    };
    device.unreadKeys = new UnreadRecords(device.seen, EV_KEY, m_log, reason(EV_KEY));
    device.unreadSwitches = new UnreadRecords(device.seen, EV_SW, m_log, reason(EV_SW));
    device.unreadKeys->observe(keys);
    device.unreadSwitches->observe(switches);

    m_devices.insert(path, device);
    ProfileInputHandler::addDevice(path, name);
    Q_EMIT deviceAdded(path, name);
}

BasicKeyInputHandler *Product::createKeyHandler(const QString &path, const QString &name)
{
    Q_UNUSED(name)
    Device &device = m_devices[path];
    auto *handler = new ObservedKeyHandler(device.seen, &m_observation, [this, path](int code) {
        return unmappedReason(path, EV_KEY, code);
    });
    Vorn::connect(handler, &ObservedKeyHandler::otherKeysMattered, this,
                  [this] { m_lookForLostReleases.start(); });
    device.keyHandlers += handler;
    return handler;
}

BasicSwInputHandler *Product::createSwitchHandler(const QString &path, const QString &name)
{
    Q_UNUSED(name)
    return new ObservedSwitchHandler(
        m_devices.value(path).seen, &m_observation,
        [this, path](int code) { return unmappedReason(path, EV_SW, code); });
}

void Product::removeDevice(const QString &path)
{
    const SessionHold hold(m_log);
    const Device device = m_devices.take(path);
    for (ObservedKeyHandler *handler : device.keyHandlers)
        handler->endTiming();
    ProfileInputHandler::removeDevice(path);
    deleteUnread(device);
    m_log->add(DeviceChange{path, device.seen.name, device.seen.bus, false});
    Q_EMIT deviceRemoved(path);
}

void Product::selectHandler(const QString &identifier)
{
    const SessionHold hold(m_log);
    m_log->add(IdentifierSelected{identifier});
    ProfileInputHandler::selectHandler(identifier);
}

QMap<QString, QString> Product::devices() const
{
    QMap<QString, QString> names;
    for (auto it = m_devices.cbegin(); it != m_devices.cend(); ++it)
        names.insert(it.key(), it->seen.name);
    return names;
}

void Product::logStates()
{
    for (Device &device : m_devices) {
        device.logged = statesOf(device);
        m_log->add(device.logged);
        device.lostReleases.clear();
    }
    lookForLostReleases();
}

void Product::logChangedStates()
{
    for (Device &device : m_devices) {
        const KeyStates states = statesOf(device);
        if (states == device.logged)
            continue;
        device.logged = states;
        m_log->add(states);
    }
}

KeyStates Product::statesOf(const Device &device) const
{
    if (const ObservedKeyHandler *handler = currentKeyHandler(device))
        return handler->states();
    KeyStates states;
    states.device = device.seen.path;
    return states;
}

ObservedKeyHandler *Product::currentKeyHandler(const Device &device) const
{
    const LinuxInputListener *listener = InputProbe::keyListener(*this, device.seen.path);
    return listener ? qobject_cast<ObservedKeyHandler *>(InputProbe::receiver(*listener)) : nullptr;
}

void Product::deleteUnread(const Device &device)
{
    delete device.unreadKeys;
    delete device.unreadSwitches;
}

void Product::onInputEvent(const InputEvent &event)
{
    const SessionHold hold(m_log);
    m_observation.publish(event);
    followRules(event);
}

QString Product::unreadReason(const ObservedDevice &device, int side) const
{
    if (!profile().deviceFor(device.name, device.bus))
        return noEntryReason(profile(), device.name, device.bus);
    const auto any = [](const auto &) { return true; };
    const bool isKey = side == EV_KEY;
    return noHandlerReason(isKey ? QStringLiteral("keys") : QStringLiteral("switches"),
                           identifier(),
                           isKey ? InputProbe::keyIdentifiers(*this, device.path, any)
                                 : InputProbe::switchIdentifiers(*this, device.path, any));
}

QString Product::unmappedReason(const QString &path, int side, int code) const
{
    const auto mapsKey = [code](const BasicKeyInputHandler &handler) {
        return InputProbe::keys(handler).contains(code);
    };
    const auto mapsSwitch = [code](const BasicSwInputHandler &handler) {
        return InputProbe::switches(handler).contains(code);
    };
    const ObservedDevice seen = m_devices.value(path).seen;
    return Workbench::unmappedReason(identifier(),
                                     side == EV_KEY
                                         ? InputProbe::keyIdentifiers(*this, path, mapsKey)
                                         : InputProbe::switchIdentifiers(*this, path, mapsSwitch))
        + otherEntryHint(profile(), seen.name, seen.bus);
}

void Product::lookForLostReleases()
{
    for (Device &device : m_devices) {
        if (const ObservedKeyHandler *handler = currentKeyHandler(device))
            device.lostReleases =
                tellLostReleases(m_log, device.seen, *handler, device.lostReleases);
    }
}

} // namespace Vorn::Workbench
