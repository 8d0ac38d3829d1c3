#include "SimulatedDevice.h"

#include "Client.h"
#include "RecordTime.h"

#include <cstddef>

namespace Vorn::Sim {

namespace {

// In milliseconds.
constexpr unsigned int defaultDelay = 250;
constexpr unsigned int defaultPeriod = 33;
// The value of the reports that end the kernel's own packets, as opposed to a driver's.
constexpr int syntheticReport = 1;

template <std::size_t size>
bool contains(const std::bitset<size> &set, int code)
{
    return code >= 0 && static_cast<std::size_t>(code) < size
        && set.test(static_cast<std::size_t>(code));
}

template <std::size_t size>
bool change(std::bitset<size> &set, const std::bitset<size> &declared, int code, int value)
{
    if (!contains(declared, code) || contains(set, code) == (value != 0))
        return false;
    set.flip(static_cast<std::size_t>(code));
    return true;
}

template <typename Field, typename Value>
void assign(Field &field, Value value)
{
    field = static_cast<Field>(value);
}

} // namespace

SimulatedDevice::SimulatedDevice()
{
    types.set(EV_SYN);
}

void SimulatedDevice::enableAutoRepeat(std::mutex &lock)
{
    types.set(EV_REP);
    repeat[REP_DELAY] = defaultDelay;
    repeat[REP_PERIOD] = defaultPeriod;
    m_autoRepeat = std::make_unique<AutoRepeat>([this, &lock] {
        const std::lock_guard<std::mutex> guard(lock);
        return repeatKey();
    });
}

bool SimulatedDevice::handle(int type, int code, int value)
{
    if (!isPresent || !contains(types, type))
        return false;

    bool isAccepted = false;
    switch (type) {
    case EV_SYN:
        break;
    case EV_KEY:
        // Repeats ignore the state of the key: a driver with an auto-repeat of its own may send
        // them at any time.
        isAccepted =
            value == 2 ? contains(declaredKeys, code) : change(keys, declaredKeys, code, value);
        break;
    case EV_SW:
        isAccepted = change(switches, declaredSwitches, code, value);
        break;
    case EV_REP:
        if (code >= 0 && code < REP_CNT && value >= 0
            && repeat[code] != static_cast<unsigned int>(value)) {
            repeat[code] = static_cast<unsigned int>(value);
            isAccepted = true;
        }
        break;
    default:
        isAccepted = true;
        break;
    }
    if (isAccepted) {
        input_event record = {};
        assign(record.type, type);
        assign(record.code, code);
        record.value = value;
        m_packet.push_back(record);
    }
    return isAccepted;
}

void SimulatedDevice::flush(int value)
{
    if (m_packet.empty())
        return;
    input_event report = {};
    report.type = EV_SYN;
    report.code = SYN_REPORT;
    report.value = value;
    m_packet.push_back(report);

    timespec wallClock = {};
    ::clock_gettime(CLOCK_REALTIME, &wallClock);
    if (grabber) {
        appendTo(*grabber, wallClock);
    } else {
        for (Client *client : clients)
            appendTo(*client, wallClock);
    }
    if (m_autoRepeat)
        startOrStopRepeating();
    m_packet.clear();
}

void SimulatedDevice::disconnect()
{
    for (std::size_t code = 0; code < keys.size(); ++code) {
        if (keys.test(code))
            handle(EV_KEY, static_cast<int>(code), 0);
    }
    flush(syntheticReport);
    isPresent = false;
    m_autoRepeat.reset();
    for (Client *client : clients)
        client->setReadable(true);
}

void SimulatedDevice::dropUnread()
{
    for (Client *client : clients)
        client->queue.clear();
}

void SimulatedDevice::deliver(const input_event &record)
{
    const auto append = [&record](Client &client) {
        client.queue.append(record);
        client.setReadable(true);
    };
    if (grabber) {
        append(*grabber);
    } else {
        for (Client *client : clients)
            append(*client);
    }
}

// The auto-repeat, with the delay and the period of EVIOCSREP:
//
//   A down       delay   period   B down       delay   period   A up
//   ├────────────┬───────┬────────┬────────────┬───────┬────────┤
//   [A 1]        [A 2]   [A 2]    [B 1]        [B 2]   [B 2]    [A 0], and no more repeats
//
// The last key that went down is repeated, and the release of any key ends that, B's hold included.
// The timer runs on when EVIOCSREP switches the repeat off, so one more repeat follows.
int SimulatedDevice::repeatKey()
{
    if (!isPresent || !m_repeatedKey || !contains(keys, *m_repeatedKey))
        return 0;
    handle(EV_KEY, *m_repeatedKey, 2);
    flush(syntheticReport);
    return static_cast<int>(repeat[REP_PERIOD]);
}

void SimulatedDevice::startOrStopRepeating()
{
    for (const input_event &record : m_packet) {
        if (record.type != EV_KEY || record.value == 2)
            continue;
        if (record.value == 0) {
            // The release of any key ends it, not just that of the repeated one.
            m_repeatedKey.reset();
            m_autoRepeat->stop();
        } else if (repeat[REP_DELAY] != 0 && repeat[REP_PERIOD] != 0) {
            m_repeatedKey = record.code;
            m_autoRepeat->start(static_cast<int>(repeat[REP_DELAY]));
        }
    }
}

void SimulatedDevice::appendTo(Client &client, const timespec &wallClock) const
{
    timespec now = wallClock;
    if (client.clock != CLOCK_REALTIME)
        ::clock_gettime(client.clock, &now);
    for (input_event record : m_packet) {
        setTime(record, now);
        client.queue.append(record);
    }
    client.setReadable(true);
}

} // namespace Vorn::Sim
