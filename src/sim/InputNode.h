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

/// @file
/// What a test does to a simulated device.

/// One number N of /dev/input/eventN, and the device that is plugged in there.
///
/// InputSubsystem::plug() and InputSubsystem::node() return it; the subsystem owns it. Each number
/// has one object, which is valid as long as the subsystem and always refers to the device that is
/// plugged in at the moment. While there is none, nothing is delivered.
///
/// **Delivery**: every open descriptor of the node has its own queue and is readable while
/// something is queued. `read` returns as many whole records as fit.
///
/// **Time**: records are stamped with the process's wall clock, or with the clock that the
/// descriptor chose with `EVIOCSCLOCKID`. With a VirtualClock, that is virtual time.
///
/// **Thread**: functions that deliver may be called on any thread, all others only on the
/// subsystem's thread.
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
    /// As the `times` of a scripted failure: until clearFailures().
    static constexpr int Forever = -1;

    ~InputNode();
    InputNode(const InputNode &) = delete;
    InputNode &operator=(const InputNode &) = delete;

    /// @return N of /dev/input/eventN
    int number() const;

    /// @return "/dev/input/eventN"
    QString path() const;

    /// @return whether a device is plugged in here
    bool isPlugged() const;

    /// How many descriptors of this node are open.
    /// @return including duplicates and those of devices unplugged since
    int openDescriptors() const;

    /// @name Events as a driver reports them, filtered by the kernel
    /// Each function delivers the record and an `EV_SYN`/`SYN_REPORT`, or nothing if the device
    /// does not declare the code or the value does not change.
    /// @{

    /// A key goes down.
    /// @param code `KEY_OK` …
    /// @return whether the record was accepted (and delivered to whoever has the node open)
    bool press(int code);
    /// A key goes up.
    /// @param code `KEY_OK` …
    /// @return as of press()
    bool release(int code);
    /// A record of value 2, whether or not the key is down, as from a driver with its own
    /// auto-repeat. The kernel's runs by itself, see DeviceDescription::autoRepeat.
    /// @param code `KEY_OK` …
    /// @return as of press()
    bool repeat(int code);
    /// A switch moves.
    /// @param code `SW_LINEIN_INSERT` …
    /// @param on its new position
    /// @return as of press()
    bool setSwitch(int code, bool on);
    /// @}

    /// Adds an event to the packet that the next sync() delivers, by the rules above. For several
    /// keys in one packet: `report(EV_KEY, KEY_A, 1); report(EV_KEY, KEY_B, 1); sync();`
    /// @param type,code,value of the record
    /// @return whether it was accepted
    bool report(int type, int code, int value);

    /// Ends the packet with a `SYN_REPORT` and delivers it. Does nothing if it is empty.
    void sync();

    /// Whether a key is down. Records passed to send() do not count.
    /// @param code `KEY_OK` …
    /// @return false also if the device has no such key
    bool isKeyDown(int code) const;

    /// Whether a switch is on.
    /// @param code `SW_LINEIN_INSERT` …
    /// @return false also if the device has no such switch
    bool isSwitchOn(int code) const;

    /// Delivers records immediately and as they are: nothing is checked, stamped or added, and
    /// keys and switches keep their state.
    /// @param records see record()
    void send(const QList<input_event> &records);

    /// Makes one `read`, after what is queued already, return exactly these bytes and nothing more.
    /// @param bytes those that do not fit are lost; an empty array is an end of file
    void sendBytes(const QByteArray &bytes);

    /// A record stamped with the current wall clock.
    /// @param type,code,value of the record
    /// @return the record, for send()
    static input_event record(int type, int code, int value);

    /// A record with any stamp.
    /// @param type,code,value of the record
    /// @param msecsSinceEpoch may be negative
    /// @return the record, for send()
    static input_event record(int type, int code, int value, qint64 msecsSinceEpoch);

    /// @name Scripted failures
    /// The call succeeds @p after times and then fails with @p error (`errno`) @p times times, or
    /// #Forever. Scripting the same call again replaces what is left. Failures belong to the
    /// number, not to the device, and survive unplugging.
    /// @{

    /// `open` of the node. Has no effect while no device is plugged in.
    /// @param error `EACCES` …
    /// @param times,after how many calls fail, and after how many
    void failOpen(int error, int times = 1, int after = 0);

    /// `ioctl` with @p request, on any descriptor. The size in the request does not matter:
    /// `failIoctl(EVIOCGNAME(0), EIO)`.
    /// @param request `EVIOCGNAME(0)` …
    /// @param error `EIO` …
    /// @param times,after how many calls fail, and after how many
    void failIoctl(unsigned long request, int error, int times = 1, int after = 0);

    /// `read`: on each descriptor that is open now, the next @p times reads after what is queued
    /// already fail, and the descriptor is readable for that. With #Forever, reads of descriptors
    /// opened later fail, too.
    /// @param error `ENODEV` …
    /// @param times how many reads of each descriptor
    void failRead(int error, int times = 1);

    /// Cancels all failures that are left.
    void clearFailures();
    /// @}

private:
    friend class SubsystemState;
    explicit InputNode(std::shared_ptr<NodeState> state);

    const std::shared_ptr<NodeState> m_state;
};

} // namespace Vorn::Sim

#endif
