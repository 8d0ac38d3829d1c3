#include "Observation.h"

#include "CommandNames.h"
#include "EventNames.h"
#include "InputProbe.h"
#include "Session.h"

namespace Vorn::Workbench {

namespace {

/// A listener that does not read its node does not know the bus.
InputEvent::Bus busOf(const LinuxInputListener *keys, const LinuxInputListener *switches)
{
    if (keys && keys->bus() != InputEvent::Bus::NoBus)
        return keys->bus();
    return switches ? switches->bus() : InputEvent::Bus::NoBus;
}

} // namespace

QStringList Observation::end()
{
    const Active ended = m_causes.takeLast();
    if (ended.isPart && !m_causes.isEmpty())
        m_causes.last().events += ended.events;
    return ended.events;
}

void Observation::publish(const InputEvent &event)
{
    // First of all: whatever is done here must not be measured.
    const qint64 now = SessionLog::wallClock();
    EventPublished published;
    published.command = event.command();
    published.state = event.state();
    published.bus = event.bus();
    if (!m_causes.isEmpty()) {
        const Cause cause = m_causes.last().cause;
        if (cause.beforeEvent)
            cause.beforeEvent();
        published.device = cause.device;
        published.type = cause.type;
        published.codes = cause.codes;
        if (cause.since)
            published.latency = now - *cause.since;
        m_causes.last().events +=
            commandName(event.command()) + QLatin1Char(' ') + stateName(event.state());
    }
    m_log->add(published);
}

ObservedDevice observedDevice(const BasicInputHandler &manager, const QString &path,
                              const QString &name)
{
    const LinuxInputListener *keys = InputProbe::keyListener(manager, path);
    const LinuxInputListener *switches = InputProbe::switchListener(manager, path);
    return {path, name, busOf(keys, switches), InputProbe::isReading(keys),
            InputProbe::isReading(switches)};
}

qint64 stampOf(const input_event &event)
{
    return static_cast<qint64>(event.input_event_sec) * 1'000'000
        + static_cast<qint64>(event.input_event_usec);
}

bool takeRecord(SessionLog *log, const ObservedDevice &device, int side, const input_event &event)
{
    // The library makes a record without a time of a position that it asked for; the device did not
    // send it.
    const bool isLogged = device.isLoggedBy(side) && stampOf(event) != 0;
    if (isLogged)
        log->add(RecordRead{device.path, event.type, event.code, event.value, stampOf(event)});
    if (event.type == side)
        return true;
    const bool isForOther = event.type == (side == EV_KEY ? EV_SW : EV_KEY)
        && (side == EV_KEY ? device.readsSwitches : device.readsKeys);
    if (isLogged && !isForOther && event.type != EV_SYN) {
        const bool isKnown = event.type == EV_KEY || event.type == EV_SW;
        logOutcome(log, device, event, RecordOutcome::What::NotTaken,
                   isKnown ? QStringLiteral("the library does not read %1 of this device, which "
                                            "does not declare it")
                                 .arg(eventTypeName(event.type))
                           : QStringLiteral("the library takes EV_KEY and EV_SW only"));
    }
    return false;
}

void logOutcome(SessionLog *log, const ObservedDevice &device, const input_event &event,
                RecordOutcome::What what, const QString &reason, const QStringList &events)
{
    if (stampOf(event) == 0)
        return;
    RecordOutcome outcome;
    outcome.what = what;
    outcome.device = device.path;
    outcome.type = event.type;
    outcome.code = event.code;
    outcome.value = event.value;
    outcome.events = events;
    outcome.reason = reason;
    log->add(outcome);
}

} // namespace Vorn::Workbench
