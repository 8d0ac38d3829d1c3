#include "ClientTable.h"

#include "Client.h"
#include "NodeState.h"
#include "SimulatedDevice.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include <fcntl.h>
#include <sched.h>
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
    // If the program closed it in a way that was not seen.
    forget(fd);
    const auto client = std::make_shared<Client>();
    client->device = node.device;
    client->node = &node;
    add(fd, client);
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

void ClientTable::duplicate(int original, int fd)
{
    if (fd == original)
        return;
    const std::shared_ptr<Client> client = find(original);
    // Its number may have been that of another node.
    forget(fd);
    if (client)
        add(fd, client);
}

void ClientTable::forget(int fd)
{
    const std::shared_ptr<Client> client = find(fd);
    if (!client)
        return;
    m_clients[static_cast<std::size_t>(fd)].reset();
    client->fds.erase(std::remove(client->fds.begin(), client->fds.end(), fd), client->fds.end());
    if (!client->fds.empty())
        return;

    const auto forgetClient = [&client](std::vector<Client *> &clients) {
        clients.erase(std::remove(clients.begin(), clients.end(), client.get()), clients.end());
    };
    forgetClient(client->node->clients);
    forgetClient(client->device->clients);
    if (client->device->grabber == client.get())
        client->device->grabber = nullptr;
}

void ClientTable::forget(unsigned int first, unsigned int last)
{
    for (std::size_t fd = first; fd <= last && fd < m_clients.size(); ++fd)
        forget(static_cast<int>(fd));
}

void ClientTable::end(std::unique_lock<std::mutex> &lock)
{
    const auto isWaitedFor = [](const std::shared_ptr<Client> &client) {
        return client && client->waiting != 0;
    };
    for (const std::shared_ptr<Client> &client : m_clients) {
        if (client)
            client->end();
    }
    while (std::any_of(m_clients.begin(), m_clients.end(), isWaitedFor)) {
        lock.unlock();
        ::sched_yield();
        lock.lock();
    }
}

void ClientTable::leave()
{
    for (const std::shared_ptr<Client> &client : m_clients) {
        if (client)
            client->leave();
    }
}

void ClientTable::add(int fd, const std::shared_ptr<Client> &client)
{
    const auto index = static_cast<std::size_t>(fd);
    if (index >= m_clients.size())
        m_clients.resize(index + 1);
    m_clients[index] = client;
    client->fds.push_back(fd);
}

} // namespace Vorn::Sim
