#ifndef VORN_SIM_SIMULATEDDEVICE_H
#define VORN_SIM_SIMULATEDDEVICE_H

#include "AutoRepeat.h"

#include <QByteArray>

#include <linux/input.h>

#include <bitset>
#include <ctime>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace Vorn::Sim {

struct Client;

/// A device as the kernel keeps it: what it can do, the state of its keys and switches, and who
/// reads it. Guarded by the subsystem's lock.
///
/// It declares nothing but `EV_SYN` at first; whoever makes it sets the rest before it is read.
class SimulatedDevice
{
public:
    SimulatedDevice();

    /// Declares `EV_REP`, with the kernel's delay and period, and repeats held keys from now on.
    /// @param lock taken for each repeat
    void enableAutoRepeat(std::mutex &lock);

    /// The kernel's filter for one event: adds it to the packet if the device declared it and it
    /// changes something.
    /// @return whether it was added
    bool handle(int type, int code, int value);

    /// Ends the packet with a `SYN_REPORT` of @p value and delivers it, unless it is empty.
    void flush(int value = 0);

    /// Releases the held keys, for the readers to see, and is gone.
    void disconnect();

    /// Drops what the clients have not read yet.
    void dropUnread();

    /// Delivers @p record to every client as it is.
    void deliver(const input_event &record);

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
    /// The only client that records are delivered to; null to deliver them to all.
    Client *grabber = nullptr;

private:
    int repeatKey();
    void startOrStopRepeating();
    void appendTo(Client &client, const timespec &wallClock) const;

    std::vector<input_event> m_packet;
    std::optional<int> m_repeatedKey;
    // Null for a device without auto-repeat.
    std::unique_ptr<AutoRepeat> m_autoRepeat;
};

} // namespace Vorn::Sim

#endif
