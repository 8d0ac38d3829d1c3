#include "Client.h"

#include "NodeState.h"
#include "RealCalls.h"
#include "RecordTime.h"
#include "SimulatedDevice.h"

#include <linux/input.h>

#include <algorithm>
#include <cerrno>
#include <optional>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>

namespace Vorn::Sim {

// What a read returns over time, and whether the descriptor is readable:
//
//            press       read        unplug           read
//   ─────────┬───────────┬───────────┬────────────────┬────────
//   EAGAIN   │ records   │ EAGAIN    │ key releases   │ ENODEV
//   no       │ yes       │ no        │ yes            │ yes
//
// Unless the descriptor is non-blocking, a read waits instead of returning EAGAIN.

void Client::setReadable(bool readable)
{
    if (readable == isReadable)
        return;
    isReadable = readable;
    eventfd_t value = 1;
    if (readable)
        eventfd_write(fds.front(), value);
    else
        Real::read(fds.front(), &value, sizeof(value));
}

void Client::updateReadable()
{
    setReadable(!queue.isEmpty() || node->readError != 0 || !device->isPresent);
}

long Client::read(std::unique_lock<std::mutex> &lock, int fd, void *buffer, std::size_t size)
{
    if (size != 0 && size < sizeof(input_event))
        return -EINVAL;
    for (;;) {
        // Another thread may have closed the descriptor during the wait below.
        if (std::find(fds.begin(), fds.end(), fd) == fds.end())
            return -EBADF;
        if (isEnded)
            return -ENODEV;
        if (!queue.isEmpty()) {
            const long outcome = size == 0 ? 0 : queue.take(buffer, size);
            updateReadable();
            return outcome;
        }
        if (node->readError != 0)
            return -node->readError;
        if (!device->isPresent)
            return -ENODEV;
        if ((::fcntl(fd, F_GETFL) & O_NONBLOCK) != 0)
            return -EAGAIN;
        if (size == 0)
            return 0;
        pollfd descriptor = {fd, POLLIN, 0};
        ++waiting;
        lock.unlock();
        const int result = Real::ppoll(&descriptor, 1, std::nullopt, nullptr);
        const int error = errno;
        lock.lock();
        --waiting;
        if (result < 0)
            return -error;
    }
}

void Client::setClock(clockid_t id)
{
    if (id == clock)
        return;
    clock = id;
    if (queue.isEmpty())
        return;

    // Queued records are stamped with the old clock. The kernel replaces them with SYN_DROPPED,
    // upon which the reader has to ask for the state of keys and switches.
    queue.clear();
    timespec now = {};
    ::clock_gettime(clock, &now);
    input_event record = {};
    record.type = EV_SYN;
    record.code = SYN_DROPPED;
    setTime(record, now);
    queue.append(record);
}

void Client::end()
{
    isEnded = true;
    queue.clear();
    setReadable(true);
}

void Client::leave()
{
    setReadable(false);
    ::fcntl(fds.front(), F_SETFL, ::fcntl(fds.front(), F_GETFL) | O_NONBLOCK);
}

} // namespace Vorn::Sim
