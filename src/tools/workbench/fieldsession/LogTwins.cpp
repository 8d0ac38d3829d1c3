#include "LogTwins.h"

#include <linux/input.h>

#include <algorithm>
#include <utility>

namespace Vorn::Workbench {

namespace {

/// µs. The listeners of a device read in one turn of the event loop; a person takes longer.
constexpr qint64 oneTurn = 50'000;
constexpr std::size_t maxTwins = 16;

} // namespace

LogTwins::LogTwins(const LineTime *time, const LogDevices *devices, const LogOrigins *origins)
    : m_time(time)
    , m_devices(devices)
    , m_origins(origins)
{ }

void LogTwins::add(const LogRecordPtr &record, LogRead *read)
{
    m_packet.push_back(record);
    if (record->type == EV_SYN || m_packet.size() > LogRead::maxRecords) {
        finishPacket(read);
        read->origin.reset();
    }
}

void LogTwins::finishPacket(LogRead *read)
{
    const std::vector<LogRecordPtr> packet = std::exchange(m_packet, {});
    while (!m_packets.empty() && m_time->now - m_packets.front().front()->time > oneTurn)
        m_packets.pop_front();
    if (!mayExist())
        return;
    // Packets are read in their order, by either listener.
    const auto isSame = [](const LogRecordPtr &one, const LogRecordPtr &other) {
        return one->isSameAs(*other);
    };
    if (m_packets.empty()
        || !std::equal(packet.begin(), packet.end(), m_packets.front().begin(),
                       m_packets.front().end(), isSame))
    {
        m_packets.push_back(packet);
        return;
    }
    for (std::size_t i = 0; i < packet.size(); ++i) {
        // A handler takes one of them only: what is said of the record is said of the first.
        packet[i]->twin = m_packets.front()[i];
        packet[i]->twin->isPaired = true;
        LogOrigin::join(packet[i]->origin, packet[i]->twin->origin);
        m_twins.push_back(packet[i]);
        read->records.erase(std::remove(read->records.begin(), read->records.end(), packet[i]),
                            read->records.end());
    }
    m_packets.pop_front();
    while (m_twins.size() > maxTwins)
        m_twins.pop_front();
}

bool LogTwins::mayExist() const
{
    const QVector<LogDevicePtr> present = m_devices->present();
    return !m_origins->isComplete()
        || std::any_of(present.begin(), present.end(),
                       [](const LogDevicePtr &device) { return device->readers() > 1; });
}

LogRecordPtr LogTwins::takeBack(std::optional<int> code, KeyValue value)
{
    const auto found = std::find_if(m_twins.begin(), m_twins.end(), [&](const LogRecordPtr &twin) {
        return twin->type == EV_KEY && (!code || twin->code == *code) && fits(twin->value, value)
            && twin->twin->isTaken && m_time->now - twin->time <= oneTurn;
    });
    if (found == m_twins.end())
        return nullptr;
    LogRecordPtr record = *found;
    m_twins.erase(found);
    record->twin->isPaired = false;
    record->twin.reset();
    record->isTaken = true;
    return record;
}

} // namespace Vorn::Workbench
