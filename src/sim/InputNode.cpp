#include "InputNode.h"

#include "Client.h"
#include "IoctlRequests.h"
#include "NodeState.h"
#include "RecordTime.h"
#include "SimulatedDevice.h"

#include <bitset>
#include <cstddef>
#include <ctime>
#include <mutex>
#include <utility>

namespace Vorn::Sim {

namespace {

using Lock = std::lock_guard<std::mutex>;

bool handleAndFlush(NodeState &node, int type, int code, int value)
{
    const Lock lock(node.lock);
    if (!node.device)
        return false;
    const bool isAccepted = node.device->handle(type, code, value);
    // Also for a refused event: drivers end a packet without knowing what the kernel kept of it.
    node.device->flush();
    return isAccepted;
}

template <std::size_t size>
bool isSet(const std::bitset<size> &set, int code)
{
    return code >= 0 && static_cast<std::size_t>(code) < size
        && set.test(static_cast<std::size_t>(code));
}

} // namespace

InputNode::InputNode(std::shared_ptr<NodeState> state)
    : m_state(std::move(state))
{ }

InputNode::~InputNode() = default;

int InputNode::number() const
{
    return m_state->number;
}

QString InputNode::path() const
{
    return QString::fromLatin1(m_state->path);
}

bool InputNode::isPlugged() const
{
    const Lock lock(m_state->lock);
    return m_state->device != nullptr;
}

int InputNode::openDescriptors() const
{
    const Lock lock(m_state->lock);
    return static_cast<int>(m_state->openDescriptors());
}

bool InputNode::press(int code)
{
    return handleAndFlush(*m_state, EV_KEY, code, 1);
}

bool InputNode::release(int code)
{
    return handleAndFlush(*m_state, EV_KEY, code, 0);
}

bool InputNode::repeat(int code)
{
    return handleAndFlush(*m_state, EV_KEY, code, 2);
}

bool InputNode::setSwitch(int code, bool on)
{
    return handleAndFlush(*m_state, EV_SW, code, on ? 1 : 0);
}

bool InputNode::report(int type, int code, int value)
{
    const Lock lock(m_state->lock);
    return m_state->device && m_state->device->handle(type, code, value);
}

void InputNode::sync()
{
    const Lock lock(m_state->lock);
    if (m_state->device)
        m_state->device->flush();
}

bool InputNode::isKeyDown(int code) const
{
    const Lock lock(m_state->lock);
    return m_state->device && isSet(m_state->device->keys, code);
}

bool InputNode::isSwitchOn(int code) const
{
    const Lock lock(m_state->lock);
    return m_state->device && isSet(m_state->device->switches, code);
}

void InputNode::send(const QList<input_event> &records)
{
    const Lock lock(m_state->lock);
    if (!m_state->device)
        return;
    for (const input_event &record : records)
        m_state->device->deliver(record);
}

void InputNode::sendBytes(const QByteArray &bytes)
{
    const Lock lock(m_state->lock);
    if (!m_state->device)
        return;
    for (Client *client : m_state->device->clients) {
        client->queue.appendBytes(bytes);
        client->setReadable(true);
    }
}

input_event InputNode::record(int type, int code, int value)
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    input_event result = record(type, code, value, 0);
    setTime(result, now);
    return result;
}

input_event InputNode::record(int type, int code, int value, qint64 msecsSinceEpoch)
{
    // Microseconds count up within each second, even before the epoch.
    const qint64 fraction = (msecsSinceEpoch % 1000 + 1000) % 1000;
    const qint64 seconds = (msecsSinceEpoch - fraction) / 1000;
    input_event result = {};
    result.input_event_sec = static_cast<decltype(result.input_event_sec)>(seconds);
    result.input_event_usec = static_cast<decltype(result.input_event_usec)>(fraction * 1000);
    result.type = static_cast<__u16>(type);
    result.code = static_cast<__u16>(code);
    result.value = value;
    return result;
}

void InputNode::failOpen(int error, int times, int after)
{
    const Lock lock(m_state->lock);
    m_state->openFailure = {error, times, after};
}

void InputNode::failIoctl(unsigned long request, int error, int times, int after)
{
    const Lock lock(m_state->lock);
    m_state->ioctlFailures[withoutSize(request)] = {error, times, after};
}

void InputNode::failRead(int error, int times)
{
    const Lock lock(m_state->lock);
    // Forever is negative, so nothing is queued for it below.
    if (times == Forever)
        m_state->readError = error;
    for (Client *client : m_state->clients) {
        for (int i = 0; i < times; ++i)
            client->queue.appendError(error);
        client->updateReadable();
    }
}

void InputNode::clearFailures()
{
    const Lock lock(m_state->lock);
    m_state->openFailure = {};
    m_state->ioctlFailures.clear();
    m_state->readError = 0;
    for (Client *client : m_state->clients) {
        client->queue.removeErrors();
        client->updateReadable();
    }
}

} // namespace Vorn::Sim
