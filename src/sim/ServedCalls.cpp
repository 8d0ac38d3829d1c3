#include "ServedCalls.h"

#include "CallLog.h"
#include "Client.h"
#include "ClientTable.h"
#include "InputDirectory.h"
#include "IoctlRequests.h"
#include "NodeMap.h"
#include "NodePath.h"
#include "NodeState.h"
#include "RealCalls.h"
#include "SimulatedDevice.h"
#include "SystemCall.h"

#include <linux/ioctl.h>

#include <cerrno>
#include <memory>

namespace Vorn::Sim {

namespace {

using Lock = std::unique_lock<std::mutex>;

// Ends a served call: 0 and above are results, negative values are error numbers.
template <typename Result>
Result finish(long outcome)
{
    if (outcome >= 0)
        return static_cast<Result>(outcome);
    errno = static_cast<int>(-outcome);
    return -1;
}

// Without the directory its nodes cannot be reached, though whoever has them open goes on reading.
NodeState *visibleNode(const ServedCalls::Tables &tables, const char *path)
{
    return tables.directory.exists() ? tables.nodes.findPlugged(path) : nullptr;
}

long outcomeOf(Client &client, unsigned long request, void *argument)
{
    // Scripted failures come first: they stand for a driver that is in trouble, whatever is asked.
    auto &failures = client.node->ioctlFailures;
    const auto failure = failures.find(withoutSize(request));
    if (failure != failures.end()) {
        if (const int error = failure->second.next())
            return -error;
    }
    return client.device->isPresent ? answerRequest(client, request, argument) : -ENODEV;
}

} // namespace

ServedCalls::ServedCalls(const Tables &tables)
    : m_tables(tables)
{ }

void ServedCalls::translate(const char *path, char *buffer, std::size_t size) const
{
    m_tables.directory.translate(path, buffer, size);
}

int ServedCalls::beforeStatus(const char *path)
{
    return errorFromHook(InputSubsystem::PathCall::Status, path);
}

int ServedCalls::beforeWatch(const char *path)
{
    return errorFromHook(InputSubsystem::PathCall::Watch, path);
}

bool ServedCalls::open(const char *path, int flags, mode_t mode, int &result)
{
    if (const int error = errorFromHook(InputSubsystem::PathCall::Open, path)) {
        result = finish<int>(-error);
        return true;
    }
    Lock lock(m_tables.lock);
    NodeState *node = visibleNode(m_tables, path);
    long outcome = 0;
    if (node) {
        outcome = m_tables.clients.open(*node, flags);
    } else {
        // Fails as it should, unless it is one of the directories.
        const int fd = Real::open(m_tables.directory.realPath(path), flags, mode);
        outcome = fd < 0 ? -errno : fd;
    }
    if (isBelowInputFolder(path)) {
        if (SystemCall *call = m_tables.log.add(SystemCall::Kind::Open, outcome)) {
            call->path = node ? node->path : QByteArray(path);
            call->openFlags = flags;
            call->fd = outcome < 0 ? -1 : static_cast<int>(outcome);
        }
    }
    lock.unlock();
    result = finish<int>(outcome);
    return true;
}

bool ServedCalls::read(int fd, void *buffer, std::size_t size, ssize_t &result)
{
    Lock lock(m_tables.lock);
    // Shared, because another thread may close the descriptor while this one waits.
    const std::shared_ptr<Client> client = m_tables.clients.find(fd);
    if (!client)
        return false;
    const long outcome = client->read(lock, fd, buffer, size);
    if (SystemCall *call = m_tables.log.add(SystemCall::Kind::Read, outcome)) {
        call->path = client->node->path;
        call->fd = fd;
        call->size = size;
    }
    lock.unlock();
    result = finish<ssize_t>(outcome);
    return true;
}

bool ServedCalls::ioctl(int fd, unsigned long request, void *argument, int &result)
{
    if (isForDescriptor(request))
        return false;

    Lock lock(m_tables.lock);
    const std::shared_ptr<Client> client = m_tables.clients.find(fd);
    if (!client)
        return false;
    const long outcome = outcomeOf(*client, request, argument);
    // Asking for a state may have emptied the queue.
    client->updateReadable();
    if (SystemCall *call = m_tables.log.add(SystemCall::Kind::Ioctl, outcome)) {
        call->path = client->node->path;
        call->fd = fd;
        call->request = request;
        call->size = _IOC_SIZE(request);
    }
    lock.unlock();
    result = finish<int>(outcome);
    return true;
}

bool ServedCalls::close(int fd, int &result)
{
    const Lock lock(m_tables.lock);
    const std::shared_ptr<Client> client = m_tables.clients.find(fd);
    if (!client)
        return false;
    m_tables.clients.forget(fd);
    result = Real::close(fd);
    if (SystemCall *call = m_tables.log.add(SystemCall::Kind::Close, result)) {
        call->path = client->node->path;
        call->fd = fd;
    }
    return true;
}

bool ServedCalls::duplicate(int fd, const std::function<int()> &call, int &result)
{
    // Called under the lock, lest another thread uses the new descriptor before it is known.
    const Lock lock(m_tables.lock);
    result = call();
    if (result >= 0)
        m_tables.clients.duplicate(fd, result);
    return true;
}

bool ServedCalls::closeRange(unsigned int first, unsigned int last,
                             const std::function<int()> &call, int &result)
{
    const Lock lock(m_tables.lock);
    result = call();
    if (result == 0)
        m_tables.clients.forget(first, last);
    return true;
}

bool ServedCalls::access(const char *path, int mode, int &result)
{
    const Lock lock(m_tables.lock);
    if (const NodeState *node = visibleNode(m_tables, path))
        result = finish<int>(node->allows(mode) ? 0 : -EACCES);
    else
        result = Real::access(m_tables.directory.realPath(path), mode);
    return true;
}

bool ServedCalls::attributes(const char *path, Attributes &result)
{
    const Lock lock(m_tables.lock);
    const NodeState *node = visibleNode(m_tables, path);
    if (!node)
        return false;
    result = {node->mode, node->minorNumber()};
    return true;
}

bool ServedCalls::attributes(int fd, Attributes &result)
{
    const Lock lock(m_tables.lock);
    const std::shared_ptr<Client> client = m_tables.clients.find(fd);
    if (!client)
        return false;
    result = {client->node->mode, client->node->minorNumber()};
    return true;
}

int ServedCalls::errorFromHook(InputSubsystem::PathCall call, const char *path) const
{
    // A hook may look at paths itself.
    thread_local bool isInHook = false;
    Lock lock(m_tables.lock);
    if (!m_tables.hook || isInHook)
        return 0;
    // Called without the lock, for the sake of what it does with devices.
    const InputSubsystem::PathHook hook = m_tables.hook;
    lock.unlock();
    isInHook = true;
    const int error = hook(call, path);
    isInHook = false;
    return error;
}

} // namespace Vorn::Sim
