#include "SimulatedDevice.h"

#include "RealCalls.h"

#include <QTimer>

#include <algorithm>
#include <sys/eventfd.h>

namespace Vorn::Sim {

namespace {

constexpr unsigned int defaultDelay = 250;
constexpr unsigned int defaultPeriod = 33;

template <std::size_t size>
bool contains(const std::bitset<size> &set, int code)
{
    return code >= 0 && static_cast<std::size_t>(code) < size
        && set.test(static_cast<std::size_t>(code));
}

template <std::size_t size>
void add(std::bitset<size> &set, const QVector<int> &codes)
{
    for (const int code : codes) {
        if (code >= 0 && static_cast<std::size_t>(code) < size)
            set.set(static_cast<std::size_t>(code));
    }
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

void setTime(input_event &record, const timespec &time)
{
    assign(record.input_event_sec, time.tv_sec);
    assign(record.input_event_usec, time.tv_nsec / 1000);
}

} // namespace

void Client::setReadable(bool readable)
{
    if (readable == isReadable)
        return;
    isReadable = readable;
    eventfd_t value = 1;
    if (readable)
        eventfd_write(fd, value);
    else
        Real::read(fd, &value, sizeof(value));
}

AutoRepeat::AutoRepeat(std::function<int()> tick)
    : m_tick(std::move(tick))
{ }

AutoRepeat::~AutoRepeat() = default;

void AutoRepeat::start(int milliseconds)
{
    const auto onOwnThread = [this, milliseconds] {
        if (!m_timer) {
            m_timer = std::make_unique<QTimer>();
            m_timer->setSingleShot(true);
            m_timer->setTimerType(Qt::PreciseTimer);
            QObject::connect(m_timer.get(), &QTimer::timeout, this, [this] {
                const int next = m_tick();
                if (next > 0)
                    m_timer->start(next);
            });
        }
        m_timer->start(milliseconds);
    };
    QMetaObject::invokeMethod(this, onOwnThread);
}

void AutoRepeat::stop()
{
    const auto onOwnThread = [this] {
        if (m_timer)
            m_timer->stop();
    };
    QMetaObject::invokeMethod(this, onOwnThread);
}

SimulatedDevice::SimulatedDevice(const DeviceDescription &description)
    : id(description.id)
{
    if (!description.name.isNull())
        name = description.name;
    add(declaredKeys, description.keys);
    add(declaredKeys, description.keysHeld);
    add(keys, description.keysHeld);
    add(declaredSwitches, description.switches);
    add(declaredSwitches, description.switchesOn);
    add(switches, description.switchesOn);
    add(types, description.eventTypes);
    types.set(EV_SYN);
    if (declaredKeys.any())
        types.set(EV_KEY);
    if (declaredSwitches.any())
        types.set(EV_SW);
    if (description.autoRepeat) {
        types.set(EV_REP);
        repeat[REP_DELAY] = defaultDelay;
        repeat[REP_PERIOD] = defaultPeriod;
    }
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
        // Repeats pass by the key's state, as they do from a driver that makes its own.
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
    if (autoRepeat)
        startOrStopRepeating();
    m_packet.clear();
}

void SimulatedDevice::disconnect()
{
    for (std::size_t code = 0; code < keys.size(); ++code) {
        if (keys.test(code))
            handle(EV_KEY, static_cast<int>(code), 0);
    }
    flush(1);
    isPresent = false;
    autoRepeat.reset();
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

void SimulatedDevice::appendDropped(Client &client) const
{
    timespec now = {};
    ::clock_gettime(client.clock, &now);
    input_event record = {};
    record.type = EV_SYN;
    record.code = SYN_DROPPED;
    setTime(record, now);
    client.queue.append(record);
}

int SimulatedDevice::repeatKey()
{
    if (!isPresent || !m_repeatedKey || !contains(keys, *m_repeatedKey))
        return 0;
    // The kernel marks the reports that it makes up itself with a 1.
    handle(EV_KEY, *m_repeatedKey, 2);
    flush(1);
    return static_cast<int>(repeat[REP_PERIOD]);
}

void SimulatedDevice::startOrStopRepeating()
{
    for (const input_event &record : m_packet) {
        if (record.type != EV_KEY || record.value == 2)
            continue;
        if (record.value == 0) {
            // Any key's release ends it, not only that of the repeated key.
            m_repeatedKey.reset();
            autoRepeat->stop();
        } else if (repeat[REP_DELAY] != 0 && repeat[REP_PERIOD] != 0) {
            m_repeatedKey = record.code;
            autoRepeat->start(static_cast<int>(repeat[REP_DELAY]));
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
