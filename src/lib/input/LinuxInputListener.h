#ifndef VORN_INPUT_LINUXINPUTLISTENER_H
#define VORN_INPUT_LINUXINPUTLISTENER_H

#include "Input.h"
#include "vorn_input_export.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <linux/input.h>

#include <memory>

class LinuxInputListener;
class QSocketNotifier;

namespace Vorn {
// Lets tools show what happens inside without repeating the calculation.
class InputProbe;
} // namespace Vorn

/// @file
/// One evdev node, and the interface of who receives its records.

/// Receives the raw records that a `LinuxInputListener` reads.
///
/// A listener has at most one receiver at a time, but any number of handlers may hold the same
/// listener. All operations run on the thread whose event loop owns the handler and the listener.
///
/// @code
/// class Printer : public InputHandler {
///     void setId(const QString &) override {}
///     void invalidate() override {}
///     void processEvent(const QList<input_event> &events) override
///     { std::cout << events.size() << " records" << std::endl; }
/// };
/// Printer printer; // takes its listener with it
/// printer.setListener(new LinuxInputListener(&printer, path, LinuxInputListener::Key));
/// @endcode
///
/// **Log**, logger "LinuxInputListener": see setListener() and setHandler().
class VORN_INPUT_EXPORT InputHandler : public QObject
{
    Q_OBJECT

public:
    /// No parent, no listener.
    InputHandler();

    /// Calls `deleteLater()` on the stored listener, so that a handler used without the device
    /// manager takes its listener with it. The device manager deletes the listener itself right
    /// afterwards, which withdraws the request.
    ~InputHandler() override;

    /// Sets the handler's identifier; called by the code that registers the handler.
    /// @param id may be empty
    virtual void setId(const QString &id) = 0;

    /// Forgets everything in progress (pressed keys, running timers). Called when the handler stops
    /// being a listener's receiver.
    virtual void invalidate() = 0;

    /// Takes one batch: either all records of one read in device order, including synchronisation
    /// records, or a single record created by LinuxInputListener::getInputStatus().
    ///
    /// A copy of @p events may be kept, at the cost of one allocation per record in the next read.
    /// Do not keep a reference to the list or to a record: the next read overwrites them.
    /// @param events not empty
    virtual void processEvent(const QList<input_event> &events) = 0;

    /// The stored listener.
    /// @return null before setListener() and after the listener has been deleted
    LinuxInputListener *listener() const;

    /// Stores a listener. If one is already stored, nothing changes and DEBUG "Linux Input
    /// Listerner already set, ignore" is logged. This does not make the handler the listener's
    /// receiver; the listener's constructor or setHandler() does.
    /// @param listener deleted with the handler, see ~InputHandler(), unless the device manager
    /// owns it
    void setListener(LinuxInputListener *listener);

    /// Makes a handler the receiver of the stored listener, see LinuxInputListener::setHandler().
    /// Without a listener it only logs WARN "Linux Input Listerner does not exists".
    /// @param handler not owned; may be null
    void setHandler(InputHandler *handler);

private:
    QPointer<LinuxInputListener> m_listener;
};

/// Reads one evdev node and passes the records of each read to its receiver as one batch.
///
/// Only the constructor opens the node. If the node cannot be opened, lacks the capability, or
/// fails to be read, the listener is *inert*: it has no descriptor and no notifications, and keeps
/// whatever bus it had learnt. It stays inert; a device that comes back needs a new listener.
///
/// **Thread**: everything runs on the thread whose event loop owns the listener. Each activation
/// makes one `read` of at most 1024 bytes. A receiver may delete the listener, and itself, from
/// inside each call it gets.
///
/// **Descriptor**: it is marked close-on-exec right after it is opened, so programs that the
/// process starts do not inherit it, except for one that another thread starts in between. A child
/// that does not call `exec` has it.
///
/// **Log**, logger "LinuxInputListener":
///
/// | level | text | when |
/// |---|---|---|
/// | ERROR | "Cannot open input device " path | the node cannot be opened |
/// | INFO | "Event device " path " ready" | armed |
/// | WARN | "Event device " path " does not support EV_KEY" | `Key` listener, device without keys |
/// | DEBUG | "Event device " path " does not support EV_SW" | other listener, no switches |
/// | DEBUG | "bustype: " number, "name: " name | identity learnt |
/// | DEBUG | "ioctl error: " result | the capabilities cannot be queried |
/// | TRACE | "Enter " function ": " descriptor | each activation |
/// | DEBUG | " type: " type " code:" code " value:" value | each record |
/// | ERROR | "Error reading from event device " path | failed read, even `EINTR`; now inert |
/// | ERROR | "Short read on event device " path | less than one record; stays armed |
class VORN_INPUT_EXPORT LinuxInputListener : public QObject
{
    Q_OBJECT

public:
    /// What the listener needs. Any other number is a switch listener whose getInputStatus()
    /// reports only the switches that are on. Records of all types are delivered in any case.
    enum Type : int {
        Key = 0, ///< needs `EV_KEY`
        Switch = 1, ///< needs `EV_SW`
    };

    /// Opens @p device, checks its capability, arms the notifier, learns the bus and the name, and
    /// turns off the kernel's auto-repeat for every reader of the node: the library times long
    /// presses itself, and a repeat record would restart the measurement.
    ///
    /// @param handler initial receiver, not owned; may be null
    /// @param device path of the node, e.g. "/dev/input/event3"
    /// @param type what the node must support
    LinuxInputListener(InputHandler *handler, const QString &device, LinuxInputListener::Type type);

    /// Closes the descriptor without notifying the receiver.
    ~LinuxInputListener() override;

    /// The bus the device is attached to: `Hostlink` if its kernel name is exactly "hostlink",
    /// otherwise according to its bus type.
    /// @return `NoBus` for bus types not listed in InputEvent::Bus and for a listener that has been
    /// inert since its construction
    InputEvent::Bus bus() const;

    /// @return the path given to the constructor
    const QString &device() const;

    /// Invalidates the current receiver, if any, then exchanges it. Setting the current receiver
    /// again invalidates it and keeps it. A deleted receiver counts as none.
    /// @param handler not owned; if null, records are read and dropped
    void setHandler(InputHandler *handler);

    /// Closes the descriptor and stops the notifications. May be called repeatedly.
    void close();

    /// Whether a bit is set: bit `bit % 8` of byte `bit / 8`.
    /// @param bit from 0; not checked
    /// @param bitmap at least `bit / 8 + 1` bytes
    /// @return whether it is set
    bool testBit(int bit, const unsigned char *bitmap);

    /// Whether a device supports a type of events. Only 31 bits are examined, so types above 30
    /// are never found.
    /// @param fd an open descriptor of its node
    /// @param eventType `EV_KEY` …
    /// @return false also if the request fails, which is logged
    bool testCapability(int fd, int eventType);

    /// Delivers the current state to the receiver, each code in a batch of its own, with zero time
    /// and no synchronisation record: for `Switch`, codes 0 to 15 with value 1 or 0; for `Key`,
    /// those of codes 0 to 766 that are down, with value 1.
    ///
    /// The kernel is asked for only four bytes, so only codes 0 to 31 are current and higher key
    /// codes are never reported. If the request fails, the state from the last successful one is
    /// delivered. An inert listener delivers nothing.
    ///
    /// @warning The kernel drops what is unread of the listener's records of that type: of a switch
    /// that was moved and moved back, or of a key that was clicked, nothing remains but the state.
    void getInputStatus();

public Q_SLOTS:
    /// Reads once from the descriptor it is passed and delivers the batch. Called by the notifier.
    void readData(int);

private:
    friend class Vorn::InputProbe;

    int statusSize() const;

    QSocketNotifier *m_notifier = nullptr;
    int m_fd = -1;
    QPointer<InputHandler> m_handler;
    std::unique_ptr<unsigned char[]> m_status;
    const Type m_type;
    const QString m_device;
    InputEvent::Bus m_bus = InputEvent::Bus::NoBus;
};

#endif
