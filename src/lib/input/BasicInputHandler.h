#ifndef VORN_INPUT_BASICINPUTHANDLER_H
#define VORN_INPUT_BASICINPUTHANDLER_H

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

namespace Vorn {
// Lets tools show what happens inside without repeating the calculation.
class InputProbe;
} // namespace Vorn

/// @file
/// The handlers that map keys and switches to commands, and the device manager that a product
/// derives from.

/// Turns the key records of one device into commands on the event bus.
///
/// A registered key is either *immediate* or *deferred*. An immediate key reports `KeyPressed` on
/// the press (and on every auto-repeat record) and `KeyReleased` on the release. A deferred key
/// reports nothing on the press; on the release it reports a completed click, `KeyPressed`
/// directly followed by `KeyReleased`. A long press (enableLongPress()) adds `KeyLongPress` while
/// the key is down; after one, a deferred key reports only `KeyReleased` on the release. A chord
/// (registerDoubleKey()) reports its own command. Its first key is then withdrawn: silently if it
/// is deferred and has not reported a long press, otherwise with `KeyReleased`.
///
/// @code
/// auto *keys = new BasicKeyInputHandler("front-panel");
/// keys->registerKey(KEY_VOLUMEUP, InputEvent::VolumeUp, true);
/// keys->enableLongPress(KEY_VOLUMEUP, true, {600, 200}); // then every 200 ms
/// keys->registerKey(KEY_INFO, InputEvent::Info, false);
/// keys->registerDoubleKey(KEY_STOP, KEY_PLAY, InputEvent::FactoryReset);
/// addKeyHandler(path, keys, "browse"); // now owned by the device manager
/// @endcode
///
/// Each event carries the bus of the listener attached when it is reported. Without a listener
/// that is `NoBus`, and the bus-filtered overloads compare with `NoBus`. A code mapped to `None`
/// reports only its long presses.
///
/// **Thread**: that of the listener's event loop; no locks. Registrations may be made at any time,
/// including from a slot connected to the event bus. Such a slot may also delete the handler;
/// nothing more is reported then, except the release that completes a click.
///
/// **Log**, logger "BasicInputHandler":
///
/// | level | text |
/// |---|---|
/// | WARN | "Duplicate key in key input map: " code ", overwriting old value" |
/// | WARN | "Trying to remove a non-existing key " code |
/// | WARN | "Duplicate keys in double key input map: QPair(1,2), overwriting old value" |
/// | WARN | "Trying to remove a non-existing double key " first " + " second |
/// | DEBUG | "key:" code " value " value, for each record that passes chord detection |
/// | TRACE | "Device: " device "; id: " id "; command " event (no bus), before each report |
class VORN_INPUT_EXPORT BasicKeyInputHandler : public InputHandler
{
    Q_OBJECT

public:
    /// Nothing is registered.
    /// @param deviceName for the log
    explicit BasicKeyInputHandler(const QString &deviceName);
    ~BasicKeyInputHandler() override;

    /// Used in the log only. The device manager calls it.
    /// @param newId may be empty
    void setId(const QString &newId) override;

    /// Stops the long-press timer and makes the chord detection forget all keys, so the release of
    /// a key that is down is dropped. Registrations stay, and so does the state of held keys: a
    /// deferred key's until its next press, their timing as described at LongPressDetect::reset().
    void invalidate() override;

    /// Takes one batch; records other than `EV_KEY` are ignored.
    /// @param events the records of one read
    void processEvent(const QList<input_event> &events) override;

    /// Maps a key to a command. If the code is already mapped, that is logged and its long press
    /// is removed: call enableLongPress() again.
    /// @param code 0 to 767
    /// @param command `None` reports only long presses
    /// @param immediate whether it is reported on the press, or as a click on the release
    void registerKey(int code, InputEvent::Command command, bool immediate);

    /// The same for a device on one bus; otherwise does nothing. Replaces an earlier mapping
    /// without a log line and keeps the code's long press.
    /// @param code,command,immediate as above
    /// @param bus compared with that of the listener, so call addKeyHandler() before
    void registerKey(int code, InputEvent::Bus bus, InputEvent::Command command, bool immediate);

    /// Removes the mapping and long press of a key; one with a long press must not be held. Chords
    /// stay.
    /// @param code one that is unknown is logged
    void deregisterKey(int code);

    /// Reports `KeyLongPress` after `timeouts[0]` ms and, with @p repeat, again after each further
    /// timeout; the last timeout repeats until the release. Delays are rounded up to the next 50 ms
    /// tick. Nothing is reported while the code is not mapped.
    ///
    /// The first key of a chord is timed until both are up, so it can report long presses after
    /// its own release.
    /// @param code 0 to 767
    /// @param repeat whether there are long presses after the first
    /// @param timeouts ms. Must not be empty: holding a key with an empty list ends the process,
    /// see LongPressDetect
    void enableLongPress(int code, bool repeat, QList<int> timeouts);

    /// The same for a device on one bus; otherwise does nothing.
    /// @param code,repeat,timeouts as above
    /// @param bus compared with that of the listener, so call addKeyHandler() before
    void enableLongPress(int code, InputEvent::Bus bus, bool repeat, QList<int> timeouts);

    /// Maps the chord of two keys, pressed in either order. An existing mapping is logged and
    /// replaced.
    /// @param first,second codes, 0 to 767
    /// @param command reported for both keys together; `None` is as no chord
    void registerDoubleKey(int first, int second, InputEvent::Command command);

    /// The same for a device on one bus; otherwise does nothing. Replaces an existing mapping
    /// without a log line.
    /// @param first,second,command as above
    /// @param bus compared with that of the listener, so call addKeyHandler() before
    void registerDoubleKey(int first, int second, InputEvent::Bus bus, InputEvent::Command command);

    /// Removes the chord in both orders. An unknown chord is logged.
    /// @param first,second codes, in either order
    void deregisterDoubleKey(int first, int second);

    /// The command of a chord.
    /// @param keys codes, in either order
    /// @return `None` if the chord is unknown
    InputEvent::Command getDoubleKeyEvent(const QPair<int, int> &keys);

private Q_SLOTS:
    void on_keyLongPress(int code, int repeat);
    void on_doubleKeyDetect(const QList<input_event> &keys, bool fake);

private:
    friend class Vorn::InputProbe;

    QHash<int, InputEvent::Command> keyMap;
    QHash<QPair<int, int>, InputEvent::Command> doubleKeyMap;
    LongPressDetect *longPressDetect;
    DoubleKeyDetect *doubleKeyDetect;
    QSet<int> immediateKeys;
    QHash<int, bool> heldKeys;
    QString device;
    QString id;
};

/// Turns the switch records (`EV_SW`) of one device into commands at once: `SwitchDisabled` for 0,
/// `SwitchEnabled` for any other value. Positions are not remembered, so the same position received
/// twice is reported twice.
///
/// @code
/// auto *jacks = new BasicSwInputHandler("front-panel");
/// jacks->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
/// addSwitchHandler(path, jacks, "");
/// jacks->getInputStatus(); // is something plugged in already?
/// @endcode
///
/// **Log**, logger "BasicInputHandler": WARN "Duplicate key in switch input map: " code
/// ", overwriting old value" and "Trying to remove non-existing switch " code; TRACE "Device: "
/// device "; id: " id "; command " event, before each report.
class VORN_INPUT_EXPORT BasicSwInputHandler : public InputHandler
{
    Q_OBJECT

public:
    /// Nothing is registered.
    /// @param deviceName for the log
    explicit BasicSwInputHandler(const QString &deviceName);
    ~BasicSwInputHandler() override;

    /// Used in the log only. The device manager does not call it for switch handlers.
    /// @param newId may be empty
    void setId(const QString &newId) override;

    /// Nothing to forget.
    void invalidate() override;

    /// Takes one batch; records other than `EV_SW` are ignored.
    /// @param events the records of one read, or a position that was asked for
    void processEvent(const QList<input_event> &events) override;

    /// Makes the listener deliver the positions of all its switches, so that every mapped switch is
    /// reported, on or off; see LinuxInputListener::getInputStatus(). They go to the listener's
    /// current receiver, which need not be this handler. Unread records of switches are dropped:
    /// the positions supersede them. Does nothing without a listener.
    void getInputStatus();

    /// Maps a switch to a command. An existing mapping is logged and replaced.
    /// @param code `SW_LINEIN_INSERT` …; getInputStatus() reports 0 to 15 only
    /// @param command reported as enabled or disabled
    void registerSwitch(int code, InputEvent::Command command);

    /// Removes the mapping.
    /// @param code one that is unknown is logged
    void deregisterSwitch(int code);

private:
    friend class Vorn::InputProbe;

    QHash<int, InputEvent::Command> switchMap;
    QString device;
    QString id;
};

/// The device manager: finds input devices and routes each to the handlers of one identifier.
///
/// A product derives from it and implements addDevice(). Once the event loop runs, the nodes
/// /dev/input/event0 to event9 are watched. For each one that arrives, two listeners are created,
/// one for its keys and one for its switches, and addDevice() is called.
///
/// Handlers are registered per device under an identifier ("browse", "text" …). One identifier is
/// current, initially the empty one. Each listener's receiver is the handler last registered for
/// its device under the current identifier, or none. selectHandler() re-routes all devices at
/// once. If a key is down at that moment, the handlers of both identifiers drop its release; where
/// that matters, select on a release. A device that arrives re-applies the selection to all
/// devices when its handler is registered under the current identifier, which drops the release of
/// keys that are down on other devices as well.
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
/// **Limits**: a device is known by its node. One that is replaced by another on the same node
/// between two passes, or whose node cannot be opened a second time when it has just been found (as
/// when the process is out of descriptors), is not read until the node has gone and come back.
///
/// **Ownership**: it owns the listeners, and every handler passed to addKeyHandler() or
/// addSwitchHandler(). A handler serves one device, but several identifiers may share it.
///
/// **Thread**: call everything on the thread that owns the object, which must run a Qt event loop.
/// selectHandler() and the registrations may be called from addDevice() and from slots connected
/// to the event bus. Neither addDevice() nor removeDevice() may run an event loop. Both, as well as
/// those slots and the handlers that are invalidated, may remove devices and delete this object.
///
/// **Log**, logger "BasicInputHandler", in addition to entry traces ("Enter " function ": "
/// arguments) at TRACE:
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
    /// No parent. Nothing is opened or watched until the event loop runs.
    BasicInputHandler();

    /// Deletes all handlers, then all listeners.
    ~BasicInputHandler() override;

    /// Called once for each device that arrives. Register its handlers here.
    ///
    /// @param device path of the node, "/dev/input/event0" to "/dev/input/event9"
    /// @param name the kernel's name for the device; not unique
    virtual void addDevice(const QString &device, const QString &name) = 0;

    /// Called once for each device that is gone: unplugged, or no longer readable. Deletes the
    /// device's handlers, then its listeners; an override must call this implementation.
    /// @param device path of the node
    virtual void removeDevice(const QString &device);

    /// Registers a handler for the keys of a device and takes ownership. Gives it the device's
    /// listener and, if @p id is the current identifier, re-applies the selection with
    /// selectKeyHandler(), which also invalidates the receivers of other devices.
    /// @param device path of a node. If it is not present, that is logged; the handler is kept but
    /// never gets a listener
    /// @param handler owned from here on; null is logged and ignored
    /// @param id may be empty
    void addKeyHandler(const QString &device, BasicKeyInputHandler *handler, const QString &id);

    /// The same for switches, except that the handler's setId() is not called.
    /// @param device,id as above
    /// @param handler owned from here on; must not be null
    void addSwitchHandler(const QString &device, BasicSwInputHandler *handler, const QString &id);

    /// Gives a handler the key listener of a device, unless it already has a listener.
    /// @param device path of a node; one that is not present is logged
    /// @param handler not null; ownership does not change
    void setKeyListener(const QString &device, BasicKeyInputHandler *handler);

    /// Gives a handler the switch listener of a device, unless it already has a listener.
    /// @param device path of a node; one that is not present is logged
    /// @param handler not null; ownership does not change
    void setSwitchListener(const QString &device, BasicSwInputHandler *handler);

    /// Makes an identifier the current one for the keys and switches of all devices.
    /// @param id does nothing if it is current already; one that no handler has leaves all
    /// listeners without a receiver
    void selectHandler(const QString &id);

    /// Routes the keys of all devices to the handlers of an identifier. The current identifier does
    /// not change.
    /// @param id applied even if it is current already
    void selectKeyHandler(const QString &id);

    /// Routes the switches of all devices to the handlers of an identifier. The current identifier
    /// does not change.
    /// @param id applied even if it is current already
    void selectSwitchHandler(const QString &id);

    /// Looks which nodes can be opened and named now. Takes the kernel milliseconds for each.
    /// @return paths with the kernel's names, decoded as UTF-8
    QMap<QString, QString> getDeviceNameMap() const;

private Q_SLOTS:
    void on_init();
    void on_inputWatcher_changed(const QString &file);

private:
    friend class Vorn::InputProbe;

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
