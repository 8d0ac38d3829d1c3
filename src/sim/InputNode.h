#ifndef VORN_SIM_INPUTNODE_H
#define VORN_SIM_INPUTNODE_H

#include "DeviceDescription.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <linux/input.h>

#include <memory>

namespace Vorn::Sim {

class NodeState;
class SubsystemState;

/// One number of /dev/input/eventN, and the device that is plugged there.
///
/// Obtained from InputSubsystem::plug() or InputSubsystem::node(), which own it. There is one
/// object for each number; a reference to it is valid as long as the subsystem is, and speaks for
/// the device that is plugged there at the time. While none is, nothing is delivered.
///
/// **Delivery**: every open descriptor of the node has a queue of its own and is readable while
/// something is queued. `read` returns as many whole records as fit.
///
/// **Time**: records are stamped with the wall clock as the process sees it (or with the clock that
/// the descriptor chose with `EVIOCSCLOCKID`); with a VirtualClock that is its time.
///
/// **Thread**: the functions that deliver may be called on any thread, all others on the thread
/// of the subsystem.
///
/// @code
/// InputNode &panel = subsystem.plug(0, DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK}));
/// panel.press(KEY_OK);
/// clock.advance(std::chrono::seconds(2));
/// panel.release(KEY_OK);
/// @endcode
class InputNode
{
public:
    /// For the `times` of scripted failures: until clearFailures().
    static constexpr int Forever = -1;

    ~InputNode();
    InputNode(const InputNode &) = delete;
    InputNode &operator=(const InputNode &) = delete;

    /// N of /dev/input/eventN.
    int number() const;

    /// "/dev/input/eventN".
    QString path() const;

    /// Whether a device is plugged here.
    bool isPlugged() const;

    /// How many descriptors of this node are open, those of devices unplugged since included.
    int openDescriptors() const;

    /// @name A driver's view: what the kernel makes of events
    /// Each delivers the record and an `EV_SYN`/`SYN_REPORT`, or nothing if the device did not
    /// declare the code or the value is the present one.
    /// @return whether the record was accepted (and delivered to whoever has the node open)
    /// @{
    bool press(int code);
    bool release(int code);
    /// A record of value 2, whether or not the key is down, as from a driver with an auto-repeat
    /// of its own. The kernel's is made by itself, see DeviceDescription::autoRepeat.
    bool repeat(int code);
    bool setSwitch(int code, bool on);
    /// @}

    /// Adds an event to the packet that the next sync() delivers, by the same rules as above. For
    /// several keys in one packet: `report(EV_KEY, KEY_A, 1); report(EV_KEY, KEY_B, 1); sync();`
    bool report(int type, int code, int value);

    /// Ends the packet with a `SYN_REPORT` and delivers it, unless it is empty.
    void sync();

    /// Whether the key is down, as far as press() and release() tell.
    bool isKeyDown(int code) const;

    /// Whether the switch is on.
    bool isSwitchOn(int code) const;

    /// Delivers @p records as they are, at once: nothing is checked, stamped or added, and the
    /// state of keys and switches stays.
    void send(const QList<input_event> &records);

    /// The next `read` after what is queued returns exactly @p bytes (as far as they fit; the
    /// rest is lost) and nothing more. An empty array makes it return 0, an end of file.
    void sendBytes(const QByteArray &bytes);

    /// A record stamped with the wall clock as it is now.
    static input_event record(int type, int code, int value);

    /// A record stamped with @p msecsSinceEpoch, which may be negative.
    static input_event record(int type, int code, int value, qint64 msecsSinceEpoch);

    /// @name Scripted failures
    /// The call fails with @p error (`errno`), @p times times or #Forever, after it was let
    /// through @p after times. A further call for the same thing replaces what is left of the
    /// former. They belong to the number, not to the device, and survive an unplug.
    /// @{

    /// `open` of the node. Without effect while no device is plugged.
    void failOpen(int error, int times = 1, int after = 0);

    /// `ioctl` with @p request, on whichever descriptor; requests that differ in nothing but
    /// their size are the same: `failIoctl(EVIOCGNAME(0), EIO)`.
    void failIoctl(unsigned long request, int error, int times = 1, int after = 0);

    /// `read`: each descriptor that is open now fails @p times times after what is queued for it
    /// by now, and is readable for that; with #Forever those opened later fail, too.
    void failRead(int error, int times = 1);

    /// Takes back all that is left of the failures above.
    void clearFailures();
    /// @}

private:
    friend class SubsystemState;
    explicit InputNode(std::shared_ptr<NodeState> state);

    const std::shared_ptr<NodeState> m_state;
};

} // namespace Vorn::Sim

#endif
