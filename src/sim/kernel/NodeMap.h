#ifndef VORN_SIM_NODEMAP_H
#define VORN_SIM_NODEMAP_H

#include <map>
#include <memory>
#include <mutex>

namespace Vorn::Sim {

class NodeState;

/// The nodes by number, with and without a device. Guarded by the subsystem's lock.
class NodeMap
{
public:
    /// @param subsystemLock the lock that all its nodes share
    explicit NodeMap(std::mutex &subsystemLock);
    ~NodeMap();
    NodeMap(const NodeMap &) = delete;
    NodeMap &operator=(const NodeMap &) = delete;

    /// The node of @p number, made on first use; fatal if it is negative.
    const std::shared_ptr<NodeState> &node(int number);

    /// The same; fatal if no device is plugged in there.
    NodeState &pluggedNode(int number);

    /// The node that @p path names; null if no device is plugged in there.
    NodeState *findPlugged(const char *path) const;

    bool hasPlugged() const;

    /// By number.
    const std::map<int, std::shared_ptr<NodeState>> &all() const { return m_nodes; }

private:
    std::mutex &m_lock;
    std::map<int, std::shared_ptr<NodeState>> m_nodes;
};

} // namespace Vorn::Sim

#endif
