#ifndef VORN_SIM_CLIENTTABLE_H
#define VORN_SIM_CLIENTTABLE_H

#include <memory>
#include <mutex>
#include <vector>

namespace Vorn::Sim {

struct Client;
class NodeState;

/// The open descriptors of all nodes. Guarded by the subsystem's lock.
class ClientTable
{
public:
    /// Opens @p node, at which a device is plugged in.
    /// @return the descriptor, or a negative `errno`
    long open(NodeState &node, int flags);

    /// Null if @p fd is not open on a node.
    std::shared_ptr<Client> find(int fd) const;

    /// Has @p fd refer to what @p original refers to: to the same client or, if that is no node, to
    /// none. @p fd was just made by duplicating @p original.
    void duplicate(int original, int fd);

    /// Forgets that @p fd is open on a node, if it is. Its client goes with its last descriptor.
    void forget(int fd);

    /// Forgets all descriptors from @p first to @p last.
    void forget(unsigned int first, unsigned int last);

    /// Has every `read` of every client fail from now on, and waits until no thread is in one.
    /// @param lock given up while waiting
    void end(std::unique_lock<std::mutex> &lock);

    /// Leaves the descriptors that are still open to themselves.
    void leave();

private:
    void add(int fd, const std::shared_ptr<Client> &client);

    // Indexed by descriptor: every read of the process looks here, of other files as well.
    std::vector<std::shared_ptr<Client>> m_clients;
};

} // namespace Vorn::Sim

#endif
