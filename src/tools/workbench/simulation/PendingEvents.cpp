#include "PendingEvents.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "Durations.h"

namespace Vorn::Workbench {

PendingEvents::PendingEvents(const QVector<int> &deviceNodes)
    : m_deviceNodes(deviceNodes)
{ }

void PendingEvents::add(const SessionEntry &entry)
{
    if (const auto *change = std::get_if<DeviceChange>(&entry.what))
        m_devices.add(*change);
    if (const auto *event = std::get_if<EventPublished>(&entry.what)) {
        const QString &device = event->device;
        m_events.append(Event{entry.time, *event, m_devices.kernelName(device),
                              device.isEmpty() ? QString() : m_devices.mark(device)});
    }
}

std::optional<QString> PendingEvents::take(const Step::ExpectEvent &expected, qint64 action)
{
    std::optional<QString> found;
    if (!isExpected(expected, m_events.first(), action))
        found = text(action);
    m_events.removeFirst();
    return found;
}

bool PendingEvents::isExpected(const Step::ExpectEvent &expected, const Event &found,
                               qint64 action) const
{
    const EventPublished &event = found.published;
    if (event.command != expected.command || event.state != expected.state)
        return false;
    if (expected.bus && event.bus != *expected.bus)
        return false;
    if (expected.device >= 0
        && event.device != QStringLiteral("/dev/input/event%1").arg(m_deviceNodes[expected.device]))
        return false;
    if (!expected.deviceName.isNull() && found.deviceName.toUtf8() != expected.deviceName)
        return false;
    // Compared in µs, since half a millisecond too early is too early.
    const qint64 elapsed = found.time - action * 1000;
    return !expected.earliest
        || (elapsed >= *expected.earliest * 1000 && elapsed <= *expected.latest * 1000);
}

QString PendingEvents::text(qint64 action) const
{
    const Event &event = m_events.first();
    QString result = QStringLiteral("%1 %2 %3")
                         .arg(commandName(event.published.command),
                              stateName(event.published.state), busName(event.published.bus));
    // In quotes, as `from` takes it.
    if (!event.deviceName.isEmpty() || !event.mark.isEmpty())
        result += QStringLiteral(" from \"%1\"").arg(event.deviceName);
    if (!event.mark.isEmpty())
        result += QLatin1Char(' ') + event.mark;
    return result
        + QStringLiteral(", %1 after the last action")
              .arg(durationText((event.time - action * 1000) / 1000));
}

} // namespace Vorn::Workbench
