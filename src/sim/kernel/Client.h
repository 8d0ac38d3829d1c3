#ifndef VORN_SIM_CLIENT_H
#define VORN_SIM_CLIENT_H

#include "RecordQueue.h"

#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <memory>
#include <mutex>

namespace Vorn::Sim {

class NodeState;
class SimulatedDevice;

/// One open descriptor of a node: an `eventfd` that is readable while a `read` would return data or
/// an error. Guarded by the subsystem's lock.
///
/// It stays with the device that it was opened for, even after another took its place on the node.
struct Client
{
    int fd = -1;
    bool isOpen = true;
    bool isReadable = false;
    /// The clock that its records are stamped with.
    clockid_t clock = CLOCK_REALTIME;
    RecordQueue queue;
    std::shared_ptr<SimulatedDevice> device;
    NodeState *node = nullptr;

    /// Makes the descriptor readable or not.
    void setReadable(bool readable);

    /// Makes the descriptor readable if a `read` would return data or an error, and else not.
    void updateReadable();

    /// One `read`. Gives up @p lock while it waits.
    /// @return the number of bytes, or a negative `errno`
    long read(std::unique_lock<std::mutex> &lock, void *buffer, std::size_t size);

    /// Stamps records with @p id from now on.
    void setClock(clockid_t id);
};

} // namespace Vorn::Sim

#endif
