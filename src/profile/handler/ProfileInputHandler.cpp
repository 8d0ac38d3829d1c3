#include "ProfileInputHandler.h"

#include "KeysDownWatch.h"
#include "Registration.h"
#include "vorn.h"

#include <QMap>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>
#include <vector>

using Vorn::DeviceProfile;
using Vorn::HandlerProfile;
using Vorn::Profile;
using Vorn::SelectRule;

namespace {

/// A handler of the profile that is registered for a device. The library owns both halves.
struct Registered
{
    HandlerProfile profile;
    BasicKeyInputHandler *keys = nullptr;
    BasicSwInputHandler *switches = nullptr;
};

/// Who receives what under each identifier: whoever was registered for it last.
template <typename Handler>
using Receivers = QMap<QString, Handler *>;

/// Handlers that hold the listeners of a device and do nothing else. They live as long as these
/// do, because a handler takes its listener with it.
struct Holders
{
    BasicKeyInputHandler keys{QString()};
    BasicSwInputHandler switches{QString()};
};

struct Device
{
    QString name;
    std::vector<Registered> registered; ///< in the order of the profile
    Receivers<BasicKeyInputHandler> keyReceivers;
    Receivers<BasicSwInputHandler> switchReceivers;
    /// They receive under identifiers that a later profile does not have for the device: a
    /// registration cannot be taken back, only replaced. Null until they are needed.
    BasicKeyInputHandler *muteKeys = nullptr;
    BasicSwInputHandler *muteSwitches = nullptr;
    std::unique_ptr<Holders> holders; ///< once the bus was asked for
};

/// Whether it depends on its bus which entry a device of that name uses.
bool dependsOnBus(const Profile &profile, const QString &name)
{
    const QVector<DeviceProfile>::const_iterator first = std::find_if(
        profile.devices.begin(), profile.devices.end(),
        [&name](const DeviceProfile &device) { return device.name.value_or(name) == name; });
    return first != profile.devices.end() && first->bus;
}

/// The receivers that a list of handlers should have.
template <typename Handler>
Receivers<Handler> wantedReceivers(const std::vector<Registered> &registered,
                                   Handler *Registered::*half)
{
    Receivers<Handler> wanted;
    for (const Registered &one : registered) {
        for (const QString &id : one.profile.identifiers) {
            if (one.*half)
                wanted.insert(id, one.*half);
        }
    }
    return wanted;
}

/// Makes the receivers those that are wanted, and the mute one where none is.
/// @param add registers a handler under an identifier
/// @param mute gives the mute handler
template <typename Handler, typename Add, typename Mute>
void correctReceivers(const Receivers<Handler> &current, const Receivers<Handler> &wanted, Add add,
                      Mute mute)
{
    for (auto it = wanted.cbegin(); it != wanted.cend(); ++it) {
        if (current.value(it.key()) != it.value())
            add(it.value(), it.key());
    }
    for (auto it = current.cbegin(); it != current.cend(); ++it) {
        if (!wanted.contains(it.key()) && it.value() != mute())
            add(mute(), it.key());
    }
}

} // namespace

class Q_DECL_HIDDEN ProfileInputHandler::Private
{
public:
    Private(ProfileInputHandler *manager, const Profile &first, Rules whose)
        : q(manager)
        , profile(first)
        , rules(whose)
        , keysDown([this] { reload(); })
    { }

    void connectRules();
    void waitForKeys();
    void reload();
    void registerProfile(const QString &path);

    ProfileInputHandler *const q;
    Profile profile;
    const Rules rules;
    QMetaObject::Connection ruleConnection;
    QString identifier;
    std::map<QString, Device> devices; ///< by node
    std::optional<Profile> next;
    KeysDown mode = KeysDown::AreWaitedFor;
    Vorn::KeysDownWatch keysDown;

private:
    Registered registerNew(const QString &path, Device *device, const HandlerProfile &handler);
    void addKeys(const QString &path, Device *device, BasicKeyInputHandler *handler,
                 const QString &id) const;
    void addSwitches(const QString &path, Device *device, BasicSwInputHandler *handler,
                     const QString &id) const;
    void correctReceivers(const QString &path, Device *device);
    InputEvent::Bus busOf(const QString &path, Device *device) const;
};

void ProfileInputHandler::Private::connectRules()
{
    QObject::disconnect(ruleConnection);
    // A product without rules has no slot on the bus.
    if (rules == Rules::AreFollowed && !profile.select.isEmpty()) {
        ruleConnection = Vorn::connect(Input::instance(), &Input::inputEvent, q,
                                       [this](const InputEvent &event) { q->followRules(event); });
    }
}

void ProfileInputHandler::Private::waitForKeys()
{
    QStringList nodes;
    if (mode == KeysDown::AreWaitedFor) {
        for (const auto &device : devices)
            nodes += device.first;
    }
    keysDown.start(nodes);
}

void ProfileInputHandler::Private::reload()
{
    profile = *std::exchange(next, std::nullopt);
    connectRules();
    // First, because positions of switches go to whoever is selected.
    if (!profile.identifiers().contains(identifier))
        q->selectHandler(profile.initial);
    // A list of its own: reports of positions call the product.
    QStringList nodes;
    for (const auto &device : devices)
        nodes += device.first;
    for (const QString &node : qAsConst(nodes))
        registerProfile(node);
    Q_EMIT q->profileChanged();
}

void ProfileInputHandler::Private::registerProfile(const QString &path)
{
    const auto found = devices.find(path);
    // Reports of positions call the product, which may have let the device go.
    if (found == devices.end())
        return;
    Device &device = found->second;
    const std::vector<Registered> before = std::exchange(device.registered, {});
    const InputEvent::Bus bus = busOf(path, &device);
    if (const DeviceProfile *entry = profile.deviceFor(device.name, bus)) {
        for (const HandlerProfile &handler : entry->handlers) {
            const auto same =
                std::find_if(before.begin(), before.end(),
                             [&handler](const Registered &one) { return one.profile == handler; });
            if (same == before.end()) {
                device.registered.push_back(registerNew(path, &device, handler));
                continue;
            }
            device.registered.push_back(*same);
        }
    }
    correctReceivers(path, &device);
}

Registered ProfileInputHandler::Private::registerNew(const QString &path, Device *device,
                                                     const HandlerProfile &handler)
{
    Registered made;
    made.profile = handler;
    if (!handler.keys.isEmpty() || !handler.chords.isEmpty()) {
        made.keys = q->createKeyHandler(path, device->name);
        for (const QString &id : handler.identifiers)
            addKeys(path, device, made.keys, id);
        // Afterwards, when the handler knows its listener and so the bus.
        Vorn::registerKeys(handler, made.keys);
    }
    if (!handler.switches.isEmpty()) {
        made.switches = q->createSwitchHandler(path, device->name);
        Vorn::registerSwitches(handler, made.switches);
        for (const QString &id : handler.identifiers)
            addSwitches(path, device, made.switches, id);
        if (handler.positionsAtStart)
            made.switches->getInputStatus();
    }
    return made;
}

void ProfileInputHandler::Private::addKeys(const QString &path, Device *device,
                                           BasicKeyInputHandler *handler, const QString &id) const
{
    q->addKeyHandler(path, handler, id);
    device->keyReceivers.insert(id, handler);
}

void ProfileInputHandler::Private::addSwitches(const QString &path, Device *device,
                                               BasicSwInputHandler *handler,
                                               const QString &id) const
{
    q->addSwitchHandler(path, handler, id);
    device->switchReceivers.insert(id, handler);
}

void ProfileInputHandler::Private::correctReceivers(const QString &path, Device *device)
{
    ::correctReceivers(
        device->keyReceivers, wantedReceivers(device->registered, &Registered::keys),
        [&](BasicKeyInputHandler *handler, const QString &id) {
            addKeys(path, device, handler, id);
        },
        [&] {
            if (!device->muteKeys)
                device->muteKeys = q->createKeyHandler(path, device->name);
            return device->muteKeys;
        });
    ::correctReceivers(
        device->switchReceivers, wantedReceivers(device->registered, &Registered::switches),
        [&](BasicSwInputHandler *handler, const QString &id) {
            addSwitches(path, device, handler, id);
        },
        [&] {
            if (!device->muteSwitches)
                device->muteSwitches = q->createSwitchHandler(path, device->name);
            return device->muteSwitches;
        });
}

// A listener that does not read its node does not know the bus, so both are asked.
InputEvent::Bus ProfileInputHandler::Private::busOf(const QString &path, Device *device) const
{
    if (!dependsOnBus(profile, device->name))
        return InputEvent::Bus::NoBus;
    if (!device->holders) {
        device->holders = std::make_unique<Holders>();
        q->setKeyListener(path, &device->holders->keys);
        q->setSwitchListener(path, &device->holders->switches);
    }
    const LinuxInputListener *keys = device->holders->keys.listener();
    const LinuxInputListener *switches = device->holders->switches.listener();
    if (keys && keys->bus() != InputEvent::Bus::NoBus)
        return keys->bus();
    return switches ? switches->bus() : InputEvent::Bus::NoBus;
}

ProfileInputHandler::ProfileInputHandler(const Profile &profile)
    : ProfileInputHandler(profile, Rules::AreFollowed)
{ }

ProfileInputHandler::ProfileInputHandler(const Profile &profile, Rules rules)
    : d(std::make_unique<Private>(this, profile, rules))
{
    d->identifier = profile.initial;
    BasicInputHandler::selectHandler(profile.initial);
    d->connectRules();
}

ProfileInputHandler::~ProfileInputHandler() = default;

void ProfileInputHandler::addDevice(const QString &device, const QString &name)
{
    d->devices[device].name = name;
    d->registerProfile(device);
    if (d->next)
        d->waitForKeys();
}

void ProfileInputHandler::removeDevice(const QString &device)
{
    BasicInputHandler::removeDevice(device);
    d->devices.erase(device);
}

void ProfileInputHandler::selectHandler(const QString &id)
{
    d->identifier = id;
    BasicInputHandler::selectHandler(id);
}

QString ProfileInputHandler::identifier() const
{
    return d->identifier;
}

const Profile &ProfileInputHandler::profile() const
{
    return d->profile;
}

void ProfileInputHandler::setProfile(const Profile &profile, KeysDown keysDown)
{
    d->next = profile;
    d->mode = keysDown;
    d->waitForKeys();
}

bool ProfileInputHandler::isReloadPending() const
{
    return d->next.has_value();
}

void ProfileInputHandler::followRules(const InputEvent &event)
{
    for (const SelectRule &rule : std::as_const(d->profile.select)) {
        if (rule.command == event.command() && rule.state == event.state()) {
            // A copy: whoever is told of the selection may change the profile.
            selectHandler(QString(rule.identifier));
            return;
        }
    }
}

BasicKeyInputHandler *ProfileInputHandler::createKeyHandler(const QString &device,
                                                            const QString &name)
{
    Q_UNUSED(device)
    return new BasicKeyInputHandler(name);
}

BasicSwInputHandler *ProfileInputHandler::createSwitchHandler(const QString &device,
                                                              const QString &name)
{
    Q_UNUSED(device)
    return new BasicSwInputHandler(name);
}
