#ifndef VORN_SIM_CLIENTTABLE_H
#define VORN_SIM_CLIENTTABLE_H

#include <memory>
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

    /// Closes the descriptor of @p client.
    /// @return what `close` returned
    int close(Client &client);

private:
    // Indexed by descriptor: every read of the process looks here, of other files as well.
    std::vector<std::shared_ptr<Client>> m_clients;
};

} // namespace Vorn::Sim

#endif
