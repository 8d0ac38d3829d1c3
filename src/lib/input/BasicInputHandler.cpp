#include "BasicInputHandler.h"

#include "KeyProcessing.h"
#include "dbglog.h"
#include "vorn.h"

#include <QDir>
#include <QFile>
#include <QFileSystemWatcher>
#include <QPointer>
#include <QTimer>

#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <sys/ioctl.h>

#include <sstream>
#include <utility>

// The entry trace of a function: its name as the core library formats it, and its arguments.
#define ENTRY_TRACE(arguments) \
    LOG4CPLUS_TRACE(logger, \
                    "Enter " << dbglog_scopedFunction(__PRETTY_FUNCTION__, "BasicInputHandler") \
                             << ": " << arguments)

namespace {

log4cplus::Logger logger = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("BasicInputHandler"));

constexpr int nodeCount = 10;
constexpr int nameSize = 256;

QString inputDirectory()
{
    return QStringLiteral("/dev/input/");
}

QString deviceDirectory()
{
    return QStringLiteral("/dev/");
}

InputEvent::Bus busOf(const LinuxInputListener *listener)
{
    return listener ? listener->bus() : InputEvent::Bus::NoBus;
}

/// Logs and publishes a command. The logged event has no bus because the line names the device.
/// Receivers may delete the handler that calls this. @p function is the caller's signature, which
/// the log line is attributed to. @p mayTrace is false if the caller has just found that even DEBUG
/// is off.
void report(const char *function, InputEvent::Bus bus, const QString &device, const QString &id,
            InputEvent::Command command, InputEvent::State state, bool mayTrace = true)
{
    if (mayTrace && logger.isEnabledFor(log4cplus::TRACE_LOG_LEVEL)) {
        std::ostringstream text;
        text << "Device: " << device << "; id: " << id << "; command "
             << InputEvent(command, state, InputEvent::Bus::NoBus).toString();
        logger.forcedLog(log4cplus::TRACE_LOG_LEVEL, text.str(), __FILE__, __LINE__, function);
    }
    Input::reportInputEvent(InputEvent(command, state, bus));
}

bool inputDirectoryExists()
{
    return QDir(inputDirectory()).exists();
}

template <typename Slot>
QFileSystemWatcher *newWatcher(BasicInputHandler *manager, Slot slot)
{
    auto *watcher = new QFileSystemWatcher(manager);
    Vorn::connect(watcher, &QFileSystemWatcher::directoryChanged, manager, slot);
    return watcher;
}

/// Deletes a watcher in whose signal this may be.
void abandon(QFileSystemWatcher *watcher)
{
    watcher->disconnect();
    watcher->setParent(nullptr);
    watcher->deleteLater();
}

/// Watches @p path, and returns whether that is now watched as a directory.
bool addDirectory(QFileSystemWatcher &watcher, const QString &path)
{
    watcher.addPath(path);
    return watcher.directories().contains(path);
}

/// Watches the input directory, or /dev/ for as long as that does not exist. The directory may come
/// and go at any moment, so every watch is followed by another look: what happens after that is
/// notified. @p changed tells whether the input directory changed; otherwise /dev/ did.
/// @return whether there is something to scan
bool watchInputDirectory(QFileSystemWatcher &watcher, bool changed)
{
    if (!inputDirectoryExists()) {
        if (!changed)
            return false;
        addDirectory(watcher, deviceDirectory());
        if (!inputDirectoryExists())
            return false;
    }
    if (!addDirectory(watcher, inputDirectory())) {
        addDirectory(watcher, deviceDirectory());
        if (!addDirectory(watcher, inputDirectory()))
            return inputDirectoryExists();
    }
    watcher.removePath(deviceDirectory());
    return true;
}

/// Deletes each handler in @p records once, although several identifiers may share it.
template <typename Records>
void deleteHandlers(const Records &records)
{
    QSet<InputHandler *> deleted;
    for (const auto &record : records) {
        if (deleted.contains(record.handler))
            continue;
        deleted.insert(record.handler);
        delete record.handler;
    }
}

/// Deletes handlers and then the listeners that they use: a handler's destructor requests deferred
/// deletion of its listener, which deleting that directly withdraws. None of them may be in a map
/// any more, because whoever hears of a deletion may select handlers, remove devices or delete the
/// device manager.
template <typename KeyRecords, typename SwitchRecords>
void deleteAll(const KeyRecords &keyRecords, const SwitchRecords &switchRecords,
               const QList<LinuxInputListener *> &listeners)
{
    deleteHandlers(keyRecords);
    deleteHandlers(switchRecords);
    qDeleteAll(listeners);
}

/// Makes the handler last registered under @p id the receiver of its device's listener. Listeners
/// of devices without such a handler get no receiver. The receivers that are invalidated may remove
/// devices, and delete the @p manager whose maps these are.
template <typename Records>
void route(const BasicInputHandler *manager, const QMap<QString, LinuxInputListener *> &listeners,
           const Records &handlers, const QString &id)
{
    const QPointer<const BasicInputHandler> self(manager);
    const QStringList devices = listeners.keys();
    for (const QString &device : devices) {
        LinuxInputListener *listener = self ? listeners.value(device) : nullptr;
        if (!listener)
            continue;
        InputHandler *receiver = nullptr;
        const auto records = handlers.values(device);
        for (const auto &record : records) {
            if (record.id == id) {
                receiver = record.handler;
                break;
            }
        }
        listener->setHandler(receiver);
    }
}

} // namespace

BasicKeyInputHandler::BasicKeyInputHandler(const QString &deviceName)
    : longPressDetect(new LongPressDetect)
    , doubleKeyDetect(new DoubleKeyDetect)
    , device(deviceName)
{
    Vorn::connect(longPressDetect, &LongPressDetect::keyLongPress, this,
                  &BasicKeyInputHandler::on_keyLongPress);
    Vorn::connect(doubleKeyDetect, &DoubleKeyDetect::keyDoubleDetect, this,
                  &BasicKeyInputHandler::on_doubleKeyDetect);
}

BasicKeyInputHandler::~BasicKeyInputHandler()
{
    delete longPressDetect;
    delete doubleKeyDetect;
}

void BasicKeyInputHandler::setId(const QString &newId)
{
    id = newId;
}

void BasicKeyInputHandler::invalidate()
{
    longPressDetect->reset();
    doubleKeyDetect->reset();
}

void BasicKeyInputHandler::processEvent(const QList<input_event> &events)
{
    const QPointer<BasicKeyInputHandler> self(this);
    for (const input_event &event : events) {
        if (event.type != EV_KEY)
            continue;
        doubleKeyDetect->checkDoubleKeyDetect(event);
        if (!self)
            return;
    }
}

void BasicKeyInputHandler::registerKey(int code, InputEvent::Command command, bool immediate)
{
    if (keyMap.contains(code)) {
        LOG4CPLUS_WARN(logger,
                       "Duplicate key in key input map: " << code << ", overwriting old value");
        // This also drops the long press, which was meant for the old command.
        deregisterKey(code);
    }
    keyMap.insert(code, command);
    if (immediate)
        immediateKeys.insert(code);
}

void BasicKeyInputHandler::registerKey(int code, InputEvent::Bus bus, InputEvent::Command command,
                                       bool immediate)
{
    if (bus != busOf(listener()))
        return;
    // Not deregisterKey(): products refine a general map for one bus but keep its long presses.
    keyMap.remove(code);
    immediateKeys.remove(code);
    registerKey(code, command, immediate);
}

void BasicKeyInputHandler::deregisterKey(int code)
{
    if (!keyMap.contains(code)) {
        LOG4CPLUS_WARN(logger, "Trying to remove a non-existing key " << code);
        return;
    }
    keyMap.remove(code);
    immediateKeys.remove(code);
    longPressDetect->deregisterEvent(code);
}

void BasicKeyInputHandler::enableLongPress(int code, bool repeat, QList<int> timeouts)
{
    longPressDetect->registerEvent(code, repeat, timeouts);
}

void BasicKeyInputHandler::enableLongPress(int code, InputEvent::Bus bus, bool repeat,
                                           QList<int> timeouts)
{
    if (bus == busOf(listener()))
        enableLongPress(code, repeat, timeouts);
}

void BasicKeyInputHandler::registerDoubleKey(int first, int second, InputEvent::Command command)
{
    if (doubleKeyMap.contains({first, second})) {
        LOG4CPLUS_WARN(logger,
                       "Duplicate keys in double key input map: "
                           << "QPair(" << first << "," << second << ")"
                           << ", overwriting old value");
        deregisterDoubleKey(first, second);
    }
    doubleKeyMap.insert({first, second}, command);
    doubleKeyMap.insert({second, first}, command);
}

void BasicKeyInputHandler::registerDoubleKey(int first, int second, InputEvent::Bus bus,
                                             InputEvent::Command command)
{
    if (bus != busOf(listener()))
        return;
    // The call below overwrites the reverse order.
    doubleKeyMap.remove({first, second});
    registerDoubleKey(first, second, command);
}

void BasicKeyInputHandler::deregisterDoubleKey(int first, int second)
{
    if (!doubleKeyMap.contains({first, second})) {
        LOG4CPLUS_WARN(logger,
                       "Trying to remove a non-existing double key " << first << " + " << second);
        return;
    }
    doubleKeyMap.remove({first, second});
    doubleKeyMap.remove({second, first});
}

InputEvent::Command BasicKeyInputHandler::getDoubleKeyEvent(const QPair<int, int> &keys)
{
    return doubleKeyMap.value(keys, InputEvent::None);
}

void BasicKeyInputHandler::on_keyLongPress(int code, int repeat)
{
    Q_UNUSED(repeat)
    if (!keyMap.contains(code))
        return;
    const InputEvent::Command command = keyMap.value(code);
    // The coming release ends a long press and is no longer a click.
    if (heldKeys.contains(code))
        heldKeys.insert(code, true);
    report(__PRETTY_FUNCTION__, busOf(listener()), device, id, command, InputEvent::KeyLongPress);
}

/*
 *  deferred key, click          deferred key, long press       A, then B, chord C
 *
 *  press      release           press     timeout   release    A press  B press    both released
 *  held       KeyPressed        held      KeyLong-  KeyReleased held    withdrawn  C KeyReleased
 *             KeyReleased                 Press                         C KeyPressed
 */
void BasicKeyInputHandler::on_doubleKeyDetect(const QList<input_event> &keys, bool fake)
{
    bool isLogging = logger.isEnabledFor(log4cplus::DEBUG_LOG_LEVEL);
    if (isLogging) {
        for (const input_event &key : keys)
            LOG4CPLUS_DEBUG(logger, "key:" << key.code << " value " << key.value);
    }
    if (keys.isEmpty())
        return;

    input_event record = keys.first();
    InputEvent::Command command = InputEvent::None;
    bool immediate = false;
    if (keys.size() == 2)
        command = getDoubleKeyEvent({keys.first().code, keys.last().code});
    if (command != InputEvent::None) {
        immediate = true;
    } else {
        // Only the second key of an unknown pair counts, and is reported at once even if deferred:
        // the first was withdrawn when the second went down.
        if (keys.size() == 2) {
            record = keys.last();
            immediate = true;
        } else {
            immediate = immediateKeys.contains(record.code);
        }
        const auto mapped = keyMap.constFind(record.code);
        if (mapped == keyMap.constEnd()) {
            longPressDetect->process(record);
            return;
        }
        command = *mapped;
    }

    longPressDetect->process(record);
    if (command == InputEvent::None || record.type != EV_KEY)
        return;

    // Receivers of a report may change the registrations, but not what this record means: do not
    // read the maps after the first report.
    const auto reportState = [&, function = __PRETTY_FUNCTION__](InputEvent::State state) {
        report(function, busOf(listener()), device, id, command, state, isLogging);
        // A receiver may have changed the log level.
        isLogging = true;
    };
    if (immediate) {
        reportState(record.value != 0 ? InputEvent::KeyPressed : InputEvent::KeyReleased);
    } else if (record.value != 0) {
        heldKeys.insert(record.code, false);
    } else if (heldKeys.take(record.code)) {
        reportState(InputEvent::KeyReleased);
    } else if (!fake) {
        // Whoever was told of the press is told of the release, even if this handler was deleted
        // in between.
        const QPointer<BasicKeyInputHandler> self(this);
        const InputEvent::Bus lastBus = busOf(listener());
        const QString lastDevice = device;
        const QString lastId = id;
        reportState(InputEvent::KeyPressed);
        if (self)
            reportState(InputEvent::KeyReleased);
        else
            report(__PRETTY_FUNCTION__, lastBus, lastDevice, lastId, command,
                   InputEvent::KeyReleased);
    }
}

BasicSwInputHandler::BasicSwInputHandler(const QString &deviceName)
    : device(deviceName)
{ }

BasicSwInputHandler::~BasicSwInputHandler() = default;

void BasicSwInputHandler::setId(const QString &newId)
{
    id = newId;
}

void BasicSwInputHandler::invalidate()
{ }

void BasicSwInputHandler::getInputStatus()
{
    if (listener())
        listener()->getInputStatus();
}

void BasicSwInputHandler::registerSwitch(int code, InputEvent::Command command)
{
    if (switchMap.contains(code)) {
        LOG4CPLUS_WARN(logger,
                       "Duplicate key in switch input map: " << code << ", overwriting old value");
    }
    switchMap.insert(code, command);
}

void BasicSwInputHandler::deregisterSwitch(int code)
{
    if (switchMap.remove(code) == 0)
        LOG4CPLUS_WARN(logger, "Trying to remove non-existing switch " << code);
}

void BasicSwInputHandler::processEvent(const QList<input_event> &events)
{
    const QPointer<BasicSwInputHandler> self(this);
    for (const input_event &event : events) {
        if (event.type != EV_SW)
            continue;
        const auto command = switchMap.constFind(event.code);
        if (command == switchMap.constEnd())
            continue;
        report(__PRETTY_FUNCTION__, busOf(listener()), device, id, *command,
               event.value != 0 ? InputEvent::SwitchEnabled : InputEvent::SwitchDisabled);
        if (!self)
            return;
    }
}

BasicInputHandler::BasicInputHandler()
    : currentId(QLatin1String(""))
{
    ENTRY_TRACE("");
    inputWatcher = newWatcher(this, &BasicInputHandler::on_inputWatcher_changed);
    QTimer::singleShot(0, this, &BasicInputHandler::on_init);
}

BasicInputHandler::~BasicInputHandler()
{
    // If a product deletes its device manager from inside addDevice() or removeDevice(), this is
    // the watcher's own signal, which it must survive.
    if (sender() == inputWatcher)
        abandon(inputWatcher);
    const auto keyOwners = std::exchange(keyHandlers, {});
    const auto switchOwners = std::exchange(switchHandlers, {});
    const auto listeners =
        std::exchange(keyListeners, {}).values() + std::exchange(switchListeners, {}).values();
    deleteAll(keyOwners, switchOwners, listeners);
}

void BasicInputHandler::addKeyHandler(const QString &device, BasicKeyInputHandler *handler,
                                      const QString &id)
{
    if (!handler) {
        LOG4CPLUS_ERROR(logger, "Handler " << id << " for device " << device << "does not exists");
        return;
    }
    ENTRY_TRACE("Device: " << device << "; id: " << id);
    setKeyListener(device, handler);
    handler->setId(id);
    keyHandlers.insert(device, KeyInputHandler{id, handler});
    if (id == currentId)
        selectKeyHandler(id);
}

// Unlike addKeyHandler(), this neither checks the handler nor sets its identifier: products use a
// switch handler's identifier for their own purposes.
void BasicInputHandler::addSwitchHandler(const QString &device, BasicSwInputHandler *handler,
                                         const QString &id)
{
    ENTRY_TRACE("Device: " << device << "; id: " << id);
    setSwitchListener(device, handler);
    switchHandlers.insert(device, SwitchInputHandler{id, handler});
    if (id == currentId)
        selectSwitchHandler(id);
}

void BasicInputHandler::setKeyListener(const QString &device, BasicKeyInputHandler *handler)
{
    ENTRY_TRACE(device);
    if (handler->listener())
        return;
    if (keyListeners.contains(device)) {
        handler->setListener(keyListeners.value(device));
        return;
    }
    LOG4CPLUS_ERROR(logger, "Linux input listener for " << device << " does not exists");
}

void BasicInputHandler::setSwitchListener(const QString &device, BasicSwInputHandler *handler)
{
    ENTRY_TRACE(device);
    if (handler->listener())
        return;
    if (switchListeners.contains(device)) {
        handler->setListener(switchListeners.value(device));
        return;
    }
    LOG4CPLUS_ERROR(logger, "Linux input listener for " << device << " does not exists");
}

void BasicInputHandler::selectHandler(const QString &id)
{
    ENTRY_TRACE(id);
    if (id == currentId)
        return;
    const QPointer<BasicInputHandler> self(this);
    currentId = id;
    selectKeyHandler(id);
    if (self)
        selectSwitchHandler(id);
}

void BasicInputHandler::selectKeyHandler(const QString &id)
{
    ENTRY_TRACE(id);
    route(this, keyListeners, keyHandlers, id);
}

void BasicInputHandler::selectSwitchHandler(const QString &id)
{
    ENTRY_TRACE(id);
    route(this, switchListeners, switchHandlers, id);
}

void BasicInputHandler::on_init()
{
    inputWatcher->addPath(deviceDirectory());
    on_inputWatcher_changed(inputDirectory());
}

QMap<QString, QString> BasicInputHandler::getDeviceNameMap() const
{
    QMap<QString, QString> names;
    // Cleared only once: each name comes with its terminator, so a shorter one is safe.
    char name[nameSize] = {};
    for (int number = 0; number < nodeCount; ++number) {
        const QString path = QStringLiteral("/dev/input/event%1").arg(number);
        QFile node(path);
        if (!node.open(QIODevice::ReadOnly))
            continue;
        if (::ioctl(node.handle(), EVIOCGNAME(nameSize - 1), name) < 0)
            continue;
        names.insert(path, QString::fromUtf8(name));
        LOG4CPLUS_TRACE(logger, "Dev " << path << ": " << names.value(path));
    }
    return names;
}

void BasicInputHandler::on_inputWatcher_changed(const QString &file)
{
    // Without the directory, keep the known devices until it is back: it vanishes with its last
    // node, so an unplugged device looks the same as a slow restart.
    bool isPresent = watchInputDirectory(*inputWatcher, file.startsWith(inputDirectory()));
    if (inputWatcher->files().contains(inputDirectory())) {
        // It was taken for a file because it came back while it was being watched, and nobody would
        // hear of what changes in it. A watcher that has had the same path twice never watches the
        // directory again.
        abandon(inputWatcher);
        inputWatcher = newWatcher(this, &BasicInputHandler::on_inputWatcher_changed);
        isPresent = watchInputDirectory(*inputWatcher, true);
    }
    if (!isPresent)
        return;

    QMap<QString, QString> gone = deviceNames;
    const QMap<QString, QString> present = getDeviceNameMap();
    QMap<QString, QString> added;
    for (auto it = present.cbegin(); it != present.cend(); ++it) {
        if (!deviceNames.contains(it.key())) {
            LOG4CPLUS_DEBUG(logger, " ---> added '" << it.key() << "'");
            added.insert(it.key(), it.value());
        }
        gone.remove(it.key());
    }
    const QPointer<BasicInputHandler> self(this);
    for (auto it = gone.cbegin(); it != gone.cend(); ++it) {
        if (deviceNames.value(it.key()).isNull())
            continue;
        removeDevice(it.key());
        if (!self)
            return;
        deviceNames.remove(it.key());
    }
    for (auto it = added.cbegin(); it != added.cend(); ++it) {
        const QString &path = it.key();
        if (deviceNames.contains(path))
            continue;
        // Without a name until it is added: if a product lets events in meanwhile, passes from
        // inside addDevice() neither add the device once more nor remove it.
        deviceNames.insert(path, QString());
        keyListeners.insert(path, new LinuxInputListener(nullptr, path, LinuxInputListener::Key));
        switchListeners.insert(path,
                               new LinuxInputListener(nullptr, path, LinuxInputListener::Switch));
        addDevice(path, it.value());
        if (!self)
            return;
        deviceNames.insert(path, it.value());
    }
}

void BasicInputHandler::removeDevice(const QString &device)
{
    LOG4CPLUS_INFO(logger, "Removing " << device);
    const auto keyOwners = keyHandlers.values(device);
    const auto switchOwners = switchHandlers.values(device);
    keyHandlers.remove(device);
    switchHandlers.remove(device);
    deleteAll(keyOwners, switchOwners, {keyListeners.take(device), switchListeners.take(device)});
}
