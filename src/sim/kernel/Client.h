#ifndef VORN_SIM_CLIENT_H
#define VORN_SIM_CLIENT_H

#include "RecordQueue.h"

#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <memory>
#include <mutex>
#include <vector>

namespace Vorn::Sim {

class NodeState;
class SimulatedDevice;

/// One open file of a node: an `eventfd` that is readable while a `read` would return data or an
/// error, under one or, if it was duplicated, several descriptors. Guarded by the subsystem's lock.
///
/// It stays with the device that it was opened for, even after another took its place on the node.
struct Client
{
    /// None once the last is closed.
    std::vector<int> fds;
    bool isReadable = false;
    /// Set by end().
    bool isEnded = false;
    /// How many threads wait in read().
    int waiting = 0;
    /// The clock that its records are stamped with.
    clockid_t clock = CLOCK_REALTIME;
    RecordQueue queue;
    std::shared_ptr<SimulatedDevice> device;
    NodeState *node = nullptr;

    /// Makes the descriptor readable or not.
    void setReadable(bool readable);

    /// Makes the descriptor readable if a `read` would return data or an error, and else not.
    void updateReadable();

    /// One `read` of @p fd, which is one of #fds. Gives up @p lock while it waits.
    /// @return the number of bytes, or a negative `errno`
    long read(std::unique_lock<std::mutex> &lock, int fd, void *buffer, std::size_t size);

    /// Stamps records with @p id from now on.
    void setClock(clockid_t id);

    /// Has every `read` fail from now on, those that wait included.
    void end();

    /// Has nothing more to deliver, and nobody to serve its calls: lets real reads fail instead of
    /// wait for ever.
    void leave();
};

} // namespace Vorn::Sim

#endif
