#ifndef BASICINPUTHANDLER_H
#define BASICINPUTHANDLER_H

#include "Input.h"
#include "LinuxInputListener.h"
#include "vorn_input_export.h"

#include <QHash>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPair>
#include <QSet>
#include <QString>

class DoubleKeyDetect;
class LongPressDetect;
class QFileSystemWatcher;

/// Turns the key records of one device into commands on the bus.
///
/// A registered key is either *immediate*: `KeyPressed` on the press (and on every auto-repeat
/// record), `KeyReleased` on the release; or *deferred*: nothing on the press, and `KeyPressed`
/// followed at once by `KeyReleased` on the release, a completed click. A long press
/// (enableLongPress()) adds `KeyLongPress` while the key is down, and a deferred key then ends
/// with a lone `KeyReleased`. A chord (registerDoubleKey()) reports a command of its own; the
/// first key, when deferred, is withdrawn silently, and when immediate with its `KeyReleased`.
///
/// @code
/// auto *keys = new BasicKeyInputHandler("front-panel");
/// keys->registerKey(KEY_VOLUMEUP, InputEvent::VolumeUp, true);
/// keys->enableLongPress(KEY_VOLUMEUP, true, {600, 200}); // then every 200 ms
/// keys->registerKey(KEY_INFO, InputEvent::Info, false);
/// keys->registerDoubleKey(KEY_STOP, KEY_PLAY, InputEvent::FactoryReset);
/// addKeyHandler(path, keys, "browse"); // the device manager owns it from here on
/// @endcode
///
/// Each event carries the bus of the attached listener at the moment of the report. Without a
/// listener that is `NoBus`, and the bus-filtered forms compare with `NoBus`. A code mapped to
/// `None` reports nothing but its long presses.
///
/// **Thread**: the one of the listener's event loop; no locks. Registrations may be made at any
/// time, also from inside a slot on the bus.
///
/// **Log**, logger "BasicInputHandler":
///
/// | level | text |
/// |---|---|
/// | WARN | "Duplicate key in key input map: " code ", overwriting old value" |
/// | WARN | "Trying to remove a non-existing key " code |
/// | WARN | "Duplicate keys in double key input map: QPair(1,2), overwriting old value" |
/// | WARN | "Trying to remove a non-existing double key " first " + " second |
/// | DEBUG | "key:" code " value " value, for each record after the chord detection |
/// | TRACE | "Device: " device "; id: " id "; command " event (no bus), before a report |
class VORN_INPUT_EXPORT BasicKeyInputHandler : public InputHandler
{
    Q_OBJECT

public:
    /// @param deviceName for the log
    explicit BasicKeyInputHandler(const QString &deviceName);
    ~BasicKeyInputHandler() override;

    void setId(const QString &newId) override;

    /// Stops the long-press timer and forgets a chord in progress. Registrations stay, and so does
    /// what is known of deferred keys that are down: their release ends them.
    void invalidate() override;

    void processEvent(const QList<input_event> &events) override;

    /// Maps key @p code to @p command. A code that is mapped already is logged, and loses its
    /// long press: call enableLongPress() again.
    void registerKey(int code, InputEvent::Command command, bool immediate);

    /// The same, if the listener's bus is @p bus; silent otherwise. Replaces an earlier mapping
    /// without a log line and keeps the code's long press.
    void registerKey(int code, InputEvent::Bus bus, InputEvent::Command command, bool immediate);

    /// Removes the mapping and the long press of @p code, which must not be held if it has one;
    /// chords stay. An unknown code is logged.
    void deregisterKey(int code);

    /// Reports `KeyLongPress` for @p code after `timeouts[0]` ms and, with @p repeat, again after
    /// each further timeout, the last of which goes on for ever. Delays are rounded up to a 50 ms
    /// tick. The code reports only while it is mapped.
    ///
    /// @warning @p timeouts must not be empty: a held key with an empty list ends the process,
    /// see LongPressDetect.
    void enableLongPress(int code, bool repeat, QList<int> timeouts);

    /// The same, if the listener's bus is @p bus; silent otherwise.
    void enableLongPress(int code, InputEvent::Bus bus, bool repeat, QList<int> timeouts);

    /// Maps the chord of two keys, pressed in either order, to @p command. A chord that is mapped
    /// already is logged and replaced.
    void registerDoubleKey(int first, int second, InputEvent::Command command);

    /// The same, if the listener's bus is @p bus; silent otherwise. Replaces without a log line.
    void registerDoubleKey(int first, int second, InputEvent::Bus bus, InputEvent::Command command);

    /// Removes a chord in both orders. An unknown chord is logged.
    void deregisterDoubleKey(int first, int second);

    /// The chord's command, or `None` for an unknown one.
    InputEvent::Command getDoubleKeyEvent(const QPair<int, int> &keys);

private Q_SLOTS:
    void on_keyLongPress(int code, int repeat);
    void on_doubleKeyDetect(const QList<input_event> &keys, bool fake);

private:
    QHash<int, InputEvent::Command> keyMap;
    QHash<QPair<int, int>, InputEvent::Command> doubleKeyMap;
    LongPressDetect *longPressDetect;
    DoubleKeyDetect *doubleKeyDetect;
    QSet<int> immediateKeys;
    QHash<int, bool> heldKeys;
    QString device;
    QString id;
};

/// Turns the switch records (`EV_SW`) of one device into commands: `SwitchEnabled` for a value
/// other than 0, `SwitchDisabled` for 0, at once. It remembers no positions, so the same position
/// twice is reported twice.
///
/// @code
/// auto *jacks = new BasicSwInputHandler("front-panel");
/// jacks->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
/// addSwitchHandler(path, jacks, "");
/// jacks->getInputStatus(); // where is the plug now?
/// @endcode
///
/// **Log**, logger "BasicInputHandler": WARN "Duplicate key in switch input map: " code
/// ", overwriting old value" and "Trying to remove non-existing switch " code; TRACE "Device: "
/// device "; id: " id "; command " event, before each report.
class VORN_INPUT_EXPORT BasicSwInputHandler : public InputHandler
{
    Q_OBJECT

public:
    /// @param deviceName for the log
    explicit BasicSwInputHandler(const QString &deviceName);
    ~BasicSwInputHandler() override;

    /// For the log. The device manager does not call it for switch handlers.
    void setId(const QString &newId) override;

    /// Nothing to forget.
    void invalidate() override;

    void processEvent(const QList<input_event> &events) override;

    /// Has the listener deliver the positions of all its switches, so that each mapped one is
    /// reported, on or off; see LinuxInputListener::getInputStatus(). They arrive here only while
    /// this handler is the listener's receiver. Does nothing without a listener.
    void getInputStatus();

    /// Maps switch @p code to @p command. A code that is mapped already is logged and replaced.
    void registerSwitch(int code, InputEvent::Command command);

    /// Removes the mapping. An unknown code is logged.
    void deregisterSwitch(int code);

private:
    QHash<int, InputEvent::Command> switchMap;
    QString device;
    QString id;
};

/// The device manager: finds the input devices, and routes each to the handlers of one identifier.
///
/// A product derives from it and implements addDevice(). From the first turn of the event loop on
/// the nodes /dev/input/event0 to event9 are watched; for each that arrives two listeners are
/// made, for its keys and for its switches, and addDevice() is called.
///
/// Handlers are registered per device under an identifier ("browse", "text" …). One identifier is
/// current, at first the empty one; each listener's receiver is the handler that was registered
/// last for its device under the current identifier, or none. selectHandler() re-routes all
/// devices at once. A key that is down then has its release dropped by the handlers of both
/// identifiers; select on a release where that matters.
///
/// @code
/// class Devices : public BasicInputHandler {
///     void addDevice(const QString &device, const QString &name) override {
///         auto *keys = new BasicKeyInputHandler(name);
///         addKeyHandler(device, keys, "");
///         keys->registerKey(KEY_POWER, InputEvent::Bus::LocalUI, InputEvent::Power, true);
///     }
/// };
/// @endcode
///
/// **Ownership**: of the listeners, and of every handler from addKeyHandler() or
/// addSwitchHandler() on. A handler is for one device; several identifiers may share it.
///
/// **Thread**: everything on the thread that owns the object, which runs a Qt event loop.
/// selectHandler() and the registrations may be called from addDevice() and from slots on the
/// bus. Neither addDevice() nor removeDevice() may run an event loop.
///
/// **Log**, logger "BasicInputHandler", beside entry traces ("Enter " function ": " arguments) at
/// TRACE:
///
/// | level | text |
/// |---|---|
/// | ERROR | "Handler " id " for device " device "does not exists" |
/// | ERROR | "Linux input listener for " device " does not exists" |
/// | TRACE | "Dev " path ": " name, for each node of a scan |
/// | DEBUG | " ---> added '" path "'" |
/// | INFO | "Removing " path |
class VORN_INPUT_EXPORT BasicInputHandler : public QObject
{
    Q_OBJECT

public:
    /// No parent. Nothing is opened or watched before the event loop runs.
    BasicInputHandler();

    /// Deletes all handlers, then all listeners.
    ~BasicInputHandler() override;

    /// Called once for each device that arrives. The place to register handlers for it.
    ///
    /// @param device path of the node, "/dev/input/event0" to "/dev/input/event9"
    /// @param name the kernel's name of the device; not unique
    virtual void addDevice(const QString &device, const QString &name) = 0;

    /// Called once for each device that is gone: unplugged, or no longer readable. Deletes the
    /// device's handlers and then its listeners; whoever overrides it calls this.
    virtual void removeDevice(const QString &device);

    /// Registers @p handler for the keys of @p device under @p id and takes ownership. Gives it
    /// the device's listener, and makes it the receiver if @p id is the current identifier.
    /// A null handler is logged and ignored. For a device that is not there the handler is kept
    /// but never gets a listener, which is logged.
    void addKeyHandler(const QString &device, BasicKeyInputHandler *handler, const QString &id);

    /// The same for the switches of @p device, except that @p handler must not be null and is not
    /// told its identifier.
    void addSwitchHandler(const QString &device, BasicSwInputHandler *handler, const QString &id);

    /// Gives @p handler the key listener of @p device, unless it has a listener.
    void setKeyListener(const QString &device, BasicKeyInputHandler *handler);

    /// Gives @p handler the switch listener of @p device, unless it has a listener.
    void setSwitchListener(const QString &device, BasicSwInputHandler *handler);

    /// Makes @p id the current identifier for keys and switches of all devices. Nothing happens
    /// when it is current already.
    void selectHandler(const QString &id);

    /// Routes the keys of all devices to the handlers of @p id, also when it is current. The
    /// current identifier stays as it is.
    void selectKeyHandler(const QString &id);

    /// Routes the switches of all devices to the handlers of @p id, also when it is current. The
    /// current identifier stays as it is.
    void selectSwitchHandler(const QString &id);

    /// The nodes that are there now and can be opened, with the kernel's names, read as UTF-8.
    QMap<QString, QString> getDeviceNameMap() const;

private Q_SLOTS:
    void on_init();
    void on_inputWatcher_changed(const QString &file);

private:
    struct KeyInputHandler
    {
        QString id;
        BasicKeyInputHandler *handler;
    };
    struct SwitchInputHandler
    {
        QString id;
        BasicSwInputHandler *handler;
    };

    QMultiMap<QString, KeyInputHandler> keyHandlers;
    QMultiMap<QString, SwitchInputHandler> switchHandlers;
    QString currentId;
    QMap<QString, QString> deviceNames;
    QMap<QString, LinuxInputListener *> keyListeners;
    QMap<QString, LinuxInputListener *> switchListeners;
    QFileSystemWatcher *inputWatcher;
};

#endif
