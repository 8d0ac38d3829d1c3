#ifndef LINUXINPUTLISTENER_H
#define LINUXINPUTLISTENER_H

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

/// Receives the raw records that a `LinuxInputListener` reads.
///
/// A listener has at most one receiver at a time; any number of handlers may hold the same
/// listener. All operations run on the thread of the event loop that owns handler and listener.
///
/// @code
/// class Printer : public InputHandler {
///     void setId(const QString &) override {}
///     void invalidate() override {}
///     void processEvent(const QList<input_event> &events) override { ... }
/// };
/// auto *printer = new Printer;
/// printer->setListener(new LinuxInputListener(printer, path, LinuxInputListener::Key));
/// @endcode
///
/// **Log**, logger "LinuxInputListener": see setListener() and setHandler().
class VORN_INPUT_EXPORT InputHandler : public QObject
{
    Q_OBJECT

public:
    /// No parent, no listener.
    InputHandler();

    /// Asks the stored listener for its deferred deletion (`deleteLater()`): a handler used
    /// without the device manager takes its listener with it. The device manager deletes the
    /// listener itself right afterwards, which withdraws the request.
    ~InputHandler() override;

    /// Names the handler; called by whoever registers it.
    virtual void setId(const QString &id) = 0;

    /// Forgets what is going on (pressed keys, running timers). Called when the handler stops
    /// being a listener's receiver.
    virtual void invalidate() = 0;

    /// Takes one batch: all records of one read, in device order, synchronisation records
    /// included; or one record made by LinuxInputListener::getInputStatus().
    ///
    /// A copy of @p events may be kept, which costs the next read an allocation for each record. A
    /// reference to the list or to a record may not: the next read puts its own records there.
    virtual void processEvent(const QList<input_event> &events) = 0;

    /// The listener that this handler owns; null before setListener() and after the listener was
    /// deleted by somebody else.
    LinuxInputListener *listener() const;

    /// Stores @p listener, once: when one is stored already nothing changes and DEBUG "Linux Input
    /// Listerner already set, ignore" is logged. The listener is not told; it learns its receiver
    /// from its constructor or from setHandler().
    void setListener(LinuxInputListener *listener);

    /// Makes @p handler the receiver of the stored listener, see LinuxInputListener::setHandler().
    /// Without a listener nothing happens but WARN "Linux Input Listerner does not exists".
    void setHandler(InputHandler *handler);

private:
    QPointer<LinuxInputListener> m_listener;
};

/// Reads one evdev node and hands each read's records as one batch to its receiver.
///
/// The constructor opens the node and is the only way to do so. A listener whose node cannot be
/// opened, lacks the capability, or fails to be read is *inert*: no descriptor, no notifications,
/// bus as far as it was learnt. Inert is final; a device that comes back gets a new listener.
///
/// **Thread**: all of it on the thread of the event loop that owns the listener. One activation
/// makes one `read` of at most 1024 bytes.
///
/// **Log**, logger "LinuxInputListener":
///
/// | level | text | when |
/// |---|---|---|
/// | ERROR | "Cannot open input device " path | the node cannot be opened |
/// | INFO | "Event device " path " ready" | armed |
/// | WARN | "Event device " path " does not support EV_KEY" | a `Key` listener on another device |
/// | DEBUG | "Event device " path " does not support EV_SW" | another listener without switches |
/// | DEBUG | "bustype: " number, "name: " name | identity learnt |
/// | DEBUG | "ioctl error: " result | the capabilities cannot be asked for |
/// | TRACE | "Enter " function ": " descriptor | each activation |
/// | DEBUG | " type: " type " code:" code " value:" value | each record |
/// | ERROR | "Error reading from event device " path | a failed read, `EINTR` included; now inert |
/// | ERROR | "Short read on event device " path | less than one record; stays armed |
class VORN_INPUT_EXPORT LinuxInputListener : public QObject
{
    Q_OBJECT

public:
    /// What the listener reads. Any other number is a switch listener that reports only switches
    /// that are on when it is asked for their positions.
    enum Type : int {
        Key = 0, ///< needs `EV_KEY`
        Switch = 1, ///< needs `EV_SW`
    };

    /// Opens @p device, checks its capability, arms the notifier, learns bus and name, and turns
    /// the kernel's auto-repeat off for every reader of the node: long presses are timed by the
    /// library, and a repeat record would restart their measurement.
    ///
    /// @param handler first receiver, not owned; may be null
    /// @param device path of the node, e.g. "/dev/input/event3"
    LinuxInputListener(InputHandler *handler, const QString &device, LinuxInputListener::Type type);

    /// Closes; the receiver is not told.
    ~LinuxInputListener() override;

    /// Where the device hangs: from its bus type, or `Hostlink` when its kernel name is exactly
    /// "hostlink". `NoBus` for every other bus type and for a device that never opened.
    InputEvent::Bus bus() const;

    /// The path given to the constructor.
    const QString &device() const;

    /// Invalidates the current receiver, if any, then makes @p handler the receiver. Null is
    /// allowed: records are then read and dropped. Setting the current receiver again invalidates
    /// and keeps it. A receiver that was deleted counts as none.
    void setHandler(InputHandler *handler);

    /// Closes the descriptor and stops the notifications. Harmless when repeated.
    void close();

    /// Whether bit number @p bit of @p bitmap is set (bit `bit % 8` of byte `bit / 8`).
    bool testBit(int bit, const unsigned char *bitmap);

    /// Whether the device behind @p fd supports @p eventType (`EV_KEY` …). Types above 30 are
    /// never found: 31 bits are looked at.
    bool testCapability(int fd, int eventType);

    /// Delivers the current state to the receiver, each code as a batch of its own, with zero time
    /// and without a synchronisation record: for `Switch` the codes 0 to 15 with value 1 or 0,
    /// for `Key` the codes 0 to 766 that are down, with value 1.
    ///
    /// The kernel is asked for four bytes, so only codes 0 to 31 are current; higher key codes are
    /// never reported. When the request itself fails, the state of the last successful one is
    /// delivered. Nothing is delivered by an inert listener.
    void getInputStatus();

public Q_SLOTS:
    /// Reads once from the descriptor and delivers the batch. Called by the notifier.
    void readData(int);

private:
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
