#include "ClientTable.h"

#include "Client.h"
#include "NodeState.h"
#include "RealCalls.h"
#include "SimulatedDevice.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include <fcntl.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace Vorn::Sim {

long ClientTable::open(NodeState &node, int flags)
{
    if (const int error = node.openFailure.next())
        return -error;
    const int accessMode = flags & O_ACCMODE;
    const int wanted = (accessMode != O_WRONLY ? R_OK : 0) | (accessMode != O_RDONLY ? W_OK : 0);
    if (!node.allows(wanted))
        return -EACCES;

    static_assert(EFD_NONBLOCK == O_NONBLOCK && EFD_CLOEXEC == O_CLOEXEC);
    // Every kind of poll works on an eventfd, and its readability is set at will. It cannot hold
    // the records, so reads are served from the queue.
    const int fd = ::eventfd(0, flags & (O_NONBLOCK | O_CLOEXEC));
    if (fd < 0)
        return -errno;
    const auto client = std::make_shared<Client>();
    client->fd = fd;
    client->device = node.device;
    client->node = &node;
    const auto index = static_cast<std::size_t>(fd);
    if (index >= m_clients.size())
        m_clients.resize(index + 1);
    m_clients[index] = client;
    node.clients.push_back(client.get());
    node.device->clients.push_back(client.get());
    client->updateReadable();
    return fd;
}

std::shared_ptr<Client> ClientTable::find(int fd) const
{
    const auto index = static_cast<std::size_t>(fd);
    return fd >= 0 && index < m_clients.size() ? m_clients[index] : nullptr;
}

int ClientTable::close(Client &client)
{
    const auto forget = [&client](std::vector<Client *> &clients) {
        clients.erase(std::remove(clients.begin(), clients.end(), &client), clients.end());
    };
    forget(client.node->clients);
    forget(client.device->clients);
    if (client.device->grabber == &client)
        client.device->grabber = nullptr;
    client.isOpen = false;
    const int fd = client.fd;
    // May destroy the client.
    m_clients[static_cast<std::size_t>(fd)].reset();
    return Real::close(fd);
}

} // namespace Vorn::Sim
