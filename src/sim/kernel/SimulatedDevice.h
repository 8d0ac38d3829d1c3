#ifndef VORN_SIM_SIMULATEDDEVICE_H
#define VORN_SIM_SIMULATEDDEVICE_H

#include "DeviceDescription.h"
#include "RecordQueue.h"

#include <QByteArray>
#include <QObject>

#include <linux/input.h>

#include <bitset>
#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QTimer;

namespace Vorn::Sim {

class NodeState;
class SimulatedDevice;

/// One open descriptor: an `eventfd` that is readable while there is something to read.
struct Client
{
    int fd = -1;
    bool isOpen = true;
    bool isReadable = false;
    clockid_t clock = CLOCK_REALTIME;
    RecordQueue queue;
    std::shared_ptr<SimulatedDevice> device;
    NodeState *node = nullptr;

    /// Makes the descriptor readable or not.
    void setReadable(bool readable);
};

/// Times the kernel's auto-repeat of one device, on the thread that it was made on.
class AutoRepeat : public QObject
{
public:
    /// @param tick called when the key is to be repeated; its result is the time to the next one
    /// in milliseconds, 0 to stop
    explicit AutoRepeat(std::function<int()> tick);
    ~AutoRepeat() override;

    /// May be called on any thread.
    void start(int milliseconds);
    void stop();

private:
    const std::function<int()> m_tick;
    std::unique_ptr<QTimer> m_timer;
};

/// A device as the kernel keeps it: what it can do, how its keys and switches are, and who reads
/// it. Not locked; its owner does that.
class SimulatedDevice
{
public:
    explicit SimulatedDevice(const DeviceDescription &description);

    /// The kernel's filter for one event: adds it to the packet if it is declared and news.
    /// @return whether it was added
    bool handle(int type, int code, int value);

    /// Ends the packet with a `SYN_REPORT` of @p value and delivers it, unless it is empty.
    void flush(int value = 0);

    /// Releases the keys that are held, for the readers to see, and is gone.
    void disconnect();

    /// Takes from every client what it has not read.
    void dropUnread();

    /// Delivers @p record to every client as it is.
    void deliver(const input_event &record);

    /// Tells @p client that it has lost records.
    void appendDropped(Client &client) const;

    /// Repeats the key that went down last; to be called when the auto-repeat is due.
    /// @return milliseconds until the next one; 0 for none
    int repeatKey();

    std::bitset<EV_CNT> types;
    std::bitset<KEY_CNT> declaredKeys;
    std::bitset<KEY_CNT> keys;
    std::bitset<SW_CNT> declaredSwitches;
    std::bitset<SW_CNT> switches;
    std::optional<QByteArray> name;
    input_id id = {};
    unsigned int repeat[REP_CNT] = {0, 0};
    bool isPresent = true;
    std::vector<Client *> clients;
    Client *grabber = nullptr;
    /// Null for a device without auto-repeat.
    std::unique_ptr<AutoRepeat> autoRepeat;

private:
    void startOrStopRepeating();
    void appendTo(Client &client, const timespec &wallClock) const;

    std::vector<input_event> m_packet;
    std::optional<int> m_repeatedKey;
};

} // namespace Vorn::Sim

#endif
