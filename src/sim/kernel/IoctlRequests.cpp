#include "IoctlRequests.h"

#include "Client.h"
#include "SimulatedDevice.h"

#include <QByteArray>

#include <linux/input.h>

#include <algorithm>
#include <bitset>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <ctime>

#include <sys/ioctl.h>

namespace Vorn::Sim {

namespace {

constexpr std::size_t bitsPerLong = 8 * sizeof(long);

int copyText(const QByteArray &text, std::size_t size, void *target)
{
    const std::size_t length = std::min(std::strlen(text.constData()) + 1, size);
    std::memcpy(target, text.constData(), length);
    return static_cast<int>(length);
}

// The kernel hands out bitmaps in whole longs, cut to the size of the request.
template <std::size_t bits>
int copyBits(const std::bitset<bits> &set, std::size_t size, void *target)
{
    // The kernel does not count the highest code, KEY_MAX and so on, either.
    constexpr std::size_t longs = (bits - 1 + bitsPerLong - 1) / bitsPerLong;
    unsigned long words[longs] = {};
    for (std::size_t bit = 0; bit < std::min(bits, longs * bitsPerLong); ++bit) {
        if (set.test(bit))
            words[bit / bitsPerLong] |= 1UL << (bit % bitsPerLong);
    }
    const std::size_t length = std::min(size, sizeof(words));
    std::memcpy(target, words, length);
    return static_cast<int>(length);
}

// The state of one type of codes, which supersedes the records of that type that are still queued:
// a reader that asks for it does not see older changes afterwards.
template <std::size_t bits>
int copyState(Client &client, int type, const std::bitset<bits> &set, std::size_t size,
              void *target)
{
    client.queue.removeType(type);
    return copyBits(set, size, target);
}

template <typename Value>
int copyValue(const Value &value, void *target)
{
    std::memcpy(target, &value, sizeof(value));
    return 0;
}

int changeRepeat(SimulatedDevice &device, const void *argument)
{
    if (!device.types.test(EV_REP))
        return -ENOSYS;
    int values[REP_CNT];
    std::memcpy(values, argument, sizeof(values));
    // Not flushed: readers are told with the next packet, as by the kernel.
    device.handle(EV_REP, REP_DELAY, values[REP_DELAY]);
    device.handle(EV_REP, REP_PERIOD, values[REP_PERIOD]);
    return 0;
}

int grab(Client &client)
{
    if (client.device->grabber)
        return -EBUSY;
    client.device->grabber = &client;
    return 0;
}

int releaseGrab(Client &client)
{
    if (client.device->grabber != &client)
        return -EINVAL;
    client.device->grabber = nullptr;
    return 0;
}

int chooseClock(Client &client, const void *argument)
{
    int clock = 0;
    std::memcpy(&clock, argument, sizeof(clock));
    if (clock != CLOCK_REALTIME && clock != CLOCK_MONOTONIC && clock != CLOCK_BOOTTIME)
        return -EINVAL;
    client.setClock(clock);
    return 0;
}

// The requests whose answer is as long as the caller has room for.
long answerSized(Client &client, unsigned long request, void *argument)
{
    if (_IOC_TYPE(request) != 'E' || _IOC_DIR(request) != _IOC_READ)
        return -EINVAL;

    const SimulatedDevice &device = *client.device;
    const std::size_t size = _IOC_SIZE(request);
    switch (_IOC_NR(request)) {
    case _IOC_NR(EVIOCGNAME(0)):
        return device.name ? copyText(*device.name, size, argument) : -ENOENT;
    case _IOC_NR(EVIOCGPHYS(0)):
    case _IOC_NR(EVIOCGUNIQ(0)):
        // As with drivers that set neither.
        return -ENOENT;
    case _IOC_NR(EVIOCGPROP(0)):
        return copyBits(std::bitset<INPUT_PROP_CNT>(), size, argument);
    case _IOC_NR(EVIOCGKEY(0)):
        return copyState(client, EV_KEY, device.keys, size, argument);
    case _IOC_NR(EVIOCGLED(0)):
        return copyState(client, EV_LED, std::bitset<LED_CNT>(), size, argument);
    case _IOC_NR(EVIOCGSND(0)):
        return copyState(client, EV_SND, std::bitset<SND_CNT>(), size, argument);
    case _IOC_NR(EVIOCGSW(0)):
        return copyState(client, EV_SW, device.switches, size, argument);
    case _IOC_NR(EVIOCGBIT(0, 0)):
        return copyBits(device.types, size, argument);
    case _IOC_NR(EVIOCGBIT(EV_KEY, 0)):
        return copyBits(device.declaredKeys, size, argument);
    case _IOC_NR(EVIOCGBIT(EV_REL, 0)):
        return copyBits(std::bitset<REL_CNT>(), size, argument);
    case _IOC_NR(EVIOCGBIT(EV_ABS, 0)):
        return copyBits(std::bitset<ABS_CNT>(), size, argument);
    case _IOC_NR(EVIOCGBIT(EV_MSC, 0)):
        return copyBits(std::bitset<MSC_CNT>(), size, argument);
    case _IOC_NR(EVIOCGBIT(EV_SW, 0)):
        return copyBits(device.declaredSwitches, size, argument);
    case _IOC_NR(EVIOCGBIT(EV_LED, 0)):
        return copyBits(std::bitset<LED_CNT>(), size, argument);
    case _IOC_NR(EVIOCGBIT(EV_SND, 0)):
        return copyBits(std::bitset<SND_CNT>(), size, argument);
    case _IOC_NR(EVIOCGBIT(EV_FF, 0)):
        return copyBits(std::bitset<FF_CNT>(), size, argument);
    default:
        return -EINVAL;
    }
}

} // namespace

unsigned long withoutSize(unsigned long request)
{
    return request & ~(static_cast<unsigned long>(_IOC_SIZEMASK) << _IOC_SIZESHIFT);
}

bool isForDescriptor(unsigned long request)
{
    return request == FIOCLEX || request == FIONCLEX || request == FIONBIO;
}

long answerRequest(Client &client, unsigned long request, void *argument)
{
    // EVIOCGRAB passes a flag where the others pass an address.
    if (!argument && _IOC_SIZE(request) != 0 && request != EVIOCGRAB)
        return -EFAULT;

    SimulatedDevice &device = *client.device;
    switch (request) {
    case EVIOCGVERSION:
        return copyValue(EV_VERSION, argument);
    case EVIOCGID:
        return copyValue(device.id, argument);
    case EVIOCGREP:
        return device.types.test(EV_REP) ? copyValue(device.repeat, argument) : -ENOSYS;
    case EVIOCSREP:
        return changeRepeat(device, argument);
    case EVIOCGRAB:
        return argument ? grab(client) : releaseGrab(client);
    case EVIOCSCLOCKID:
        return chooseClock(client, argument);
    default:
        return answerSized(client, request, argument);
    }
}

} // namespace Vorn::Sim
