#include "NodeMap.h"

#include "NodePath.h"
#include "NodeState.h"

#include <QtGlobal>

#include <algorithm>

namespace Vorn::Sim {

NodeMap::NodeMap(std::mutex &subsystemLock)
    : m_lock(subsystemLock)
{ }

NodeMap::~NodeMap() = default;

const std::shared_ptr<NodeState> &NodeMap::node(int number)
{
    if (number < 0)
        qFatal("InputSubsystem: there is no node with the number %d", number);
    std::shared_ptr<NodeState> &node = m_nodes[number];
    if (!node)
        node = std::make_shared<NodeState>(m_lock, number);
    return node;
}

NodeState &NodeMap::pluggedNode(int number)
{
    NodeState &found = *node(number);
    if (!found.device)
        qFatal("InputSubsystem: no device is plugged in at %s", found.path.constData());
    return found;
}

NodeState *NodeMap::findPlugged(const char *path) const
{
    const int number = nodeNumber(path);
    const auto found = number < 0 ? m_nodes.end() : m_nodes.find(number);
    return found != m_nodes.end() && found->second->device ? found->second.get() : nullptr;
}

bool NodeMap::hasPlugged() const
{
    return std::any_of(m_nodes.begin(), m_nodes.end(),
                       [](const auto &entry) { return entry.second->device != nullptr; });
}

} // namespace Vorn::Sim
