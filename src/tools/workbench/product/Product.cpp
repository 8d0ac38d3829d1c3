#include "Product.h"

#include "CommandNames.h"
#include "Session.h"
#include "SessionLog.h"
#include "vorn.h"

#include <QSocketNotifier>

namespace Vorn::Workbench {

namespace {

/// A listener has a notifier only while it reads its node, and does not say so otherwise.
bool isReading(const LinuxInputListener *listener)
{
    return listener && listener->findChild<QSocketNotifier *>();
}

/// A listener that does not read its node does not know the bus.
InputEvent::Bus busOf(const LinuxInputListener *keys, const LinuxInputListener *switches)
{
    if (keys && keys->bus() != InputEvent::Bus::NoBus)
        return keys->bus();
    return switches ? switches->bus() : InputEvent::Bus::NoBus;
}

} // namespace

Product::Product(const Profile &profile, SessionLog *log)
    : m_profile(profile)
    , m_log(log)
{
    Vorn::connect(Input::instance(), &Input::inputEvent, this, &Product::onInputEvent);
    select(profile.initial);
}

// Before the library's own: their destructors ask for the deferred deletion of their listeners,
// which the base class deletes at once.
Product::~Product()
{
    for (const Device &device : qAsConst(m_devices))
        deleteOtherHandlers(device);
}

void Product::addDevice(const QString &path, const QString &name)
{
    Device device;
    device.name = name;
    const Observation observation{m_log, &m_cause, false};
    device.otherKeys = new ObservedKeyHandler(path, name, observation);
    device.otherSwitches = new ObservedSwitchHandler(path, name, observation);
    setKeyListener(path, device.otherKeys);
    setSwitchListener(path, device.otherSwitches);

    Observation keys = observation;
    Observation switches = observation;
    // Only now do the handlers have listeners that can be asked.
    keys.logsRecords = isReading(device.otherKeys->listener());
    switches.logsRecords = !keys.logsRecords;
    device.otherKeys->setLogsRecords(keys.logsRecords);
    device.otherSwitches->setLogsRecords(switches.logsRecords);
    device.bus = busOf(device.otherKeys->listener(), device.otherSwitches->listener());
    m_log->add(DeviceChange{path, name, device.bus, true});

    Device &added = *m_devices.insert(path, device);
    if (const DeviceProfile *profile = m_profile.deviceFor(name, added.bus)) {
        for (const HandlerProfile &handlers : profile->handlers)
            addHandlers(path, &added, handlers, keys, switches);
    }
    takeUnreadRecords();
    Q_EMIT deviceAdded(path, name);
}

void Product::addHandlers(const QString &path, Device *device, const HandlerProfile &handlers,
                          const Observation &keys, const Observation &switches)
{
    if (!handlers.keys.isEmpty() || !handlers.chords.isEmpty()) {
        auto *handler = new ObservedKeyHandler(path, device->name, keys);
        device->keyHandlers += handler;
        for (const QString &identifier : handlers.identifiers) {
            addKeyHandler(path, handler, identifier);
            device->keyIdentifiers += identifier;
        }
        handler->registerAll(handlers);
    }
    if (!handlers.switches.isEmpty()) {
        auto *handler = new ObservedSwitchHandler(path, device->name, switches);
        handler->registerAll(handlers);
        for (const QString &identifier : handlers.identifiers) {
            addSwitchHandler(path, handler, identifier);
            device->switchIdentifiers += identifier;
        }
        if (handlers.positionsAtStart)
            handler->getInputStatus();
    }
}

void Product::removeDevice(const QString &path)
{
    const Device device = m_devices.take(path);
    deleteOtherHandlers(device);
    BasicInputHandler::removeDevice(path);
    m_log->add(DeviceChange{path, device.name, device.bus, false});
    Q_EMIT deviceRemoved(path);
}

void Product::select(const QString &identifier)
{
    m_identifier = identifier;
    m_log->add(IdentifierSelected{identifier});
    selectHandler(identifier);
    takeUnreadRecords();
}

QMap<QString, QString> Product::devices() const
{
    QMap<QString, QString> names;
    for (auto it = m_devices.cbegin(); it != m_devices.cend(); ++it)
        names.insert(it.key(), it->name);
    return names;
}

// Attached to the listeners directly. Registering them with the library would make it select again
// for all devices, which ends chords and long presses in progress.
void Product::takeUnreadRecords()
{
    for (const Device &device : qAsConst(m_devices)) {
        if (!device.keyIdentifiers.contains(m_identifier) && device.otherKeys->listener())
            device.otherKeys->listener()->setHandler(device.otherKeys);
        if (!device.switchIdentifiers.contains(m_identifier) && device.otherSwitches->listener())
            device.otherSwitches->listener()->setHandler(device.otherSwitches);
    }
}

void Product::deleteOtherHandlers(const Device &device)
{
    delete device.otherKeys;
    delete device.otherSwitches;
}

void Product::onInputEvent(const InputEvent &event)
{
    EventPublished published;
    published.command = event.command();
    published.state = event.state();
    published.bus = event.bus();
    if (m_cause) {
        published.device = m_cause->device;
        published.type = m_cause->type;
        const bool isWithdrawal = m_cause->withdrawn && event.state() == InputEvent::KeyReleased;
        published.codes = isWithdrawal ? QVector<int>{*m_cause->withdrawn} : m_cause->codes;
        if (m_cause->stamp != 0)
            published.latency = SessionLog::wallClock() - m_cause->stamp;
    }
    // A long press comes from a timer, not from a record.
    const LongPressSource source = !m_cause && event.state() == InputEvent::KeyLongPress
        ? longPressSource(event)
        : LongPressSource();
    if (source.handler) {
        published.device = source.device;
        published.type = EV_KEY;
        published.codes = {source.key.code};
        published.latency = SessionLog::wallClock() - source.key.due * 1000;
    }
    m_log->add(published);
    if (source.handler)
        source.handler->longPresses().reported(source.key.code, SessionLog::wallClock() / 1000);

    for (const SelectRule &rule : m_profile.select) {
        if (rule.command == event.command() && rule.state == event.state()) {
            select(rule.identifier);
            break;
        }
    }
}

// Several keys may have the same command: it is the one whose long press was due first.
Product::LongPressSource Product::longPressSource(const InputEvent &event) const
{
    const qint64 now = SessionLog::wallClock() / 1000;
    LongPressSource source;
    for (auto it = m_devices.cbegin(); it != m_devices.cend(); ++it) {
        if (it->bus != event.bus())
            continue;
        for (ObservedKeyHandler *candidate : it->keyHandlers) {
            const auto key = candidate->longPresses().dueKey(event.command(), now);
            if (key && (!source.handler || key->due < source.key.due))
                source = LongPressSource{candidate, it.key(), *key};
        }
    }
    return source;
}

} // namespace Vorn::Workbench
