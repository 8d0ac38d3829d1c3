#include "LogSession.h"

#include "EventNames.h"
#include "SessionWords.h"

#include <utility>
#include <variant>

namespace Vorn::Workbench {

namespace {

using Function = Said::Entered::Function;

} // namespace

LogSession::LogSession(const SessionStart &start, const QString &manner, Sink sink)
    : m_start(start)
    , m_manner(manner)
    , m_sink(std::move(sink))
    , m_queue(&m_coverage, m_sink)
    , m_origins(&m_devices)
    , m_outcomes(&m_queue, &m_detectors)
    , m_reads(&m_time, &m_devices, &m_origins, &m_queue, &m_outcomes)
    , m_keys(&m_time, &m_detectors, &m_reads, &m_queue, &m_outcomes)
    , m_events(&m_time, &m_coverage, &m_origins, &m_detectors, &m_reads, &m_queue, &m_outcomes)
{ }

bool LogSession::isNewStart(const LibraryLine &line) const
{
    const auto *entered = std::get_if<Said::Entered>(&line.what);
    if (entered && entered->function == Function::Constructor)
        return hasActivity() || m_deviceCount > 0;
    return m_devices.isNewStart(line.what);
}

void LogSession::add(const LibraryLine &line, const QString &message, qint64 time, qint64 wallClock)
{
    m_time = {time, m_time.now, wallClock};
    m_text = message;
    if (std::exchange(m_isFirst, false))
        m_start.wallClock = wallClock - time;
    m_coverage.add(line);
    if (!m_events.continuesReport(line.what))
        m_events.finishReport();
    if (!m_devices.continuesOpening(line.what))
        finishOpening();
    m_devices.take(line.what);
    const bool isEvent = std::holds_alternative<Said::EventOnBus>(line.what)
        || std::holds_alternative<Said::EventReported>(line.what);
    LogHand *const hand = m_reads.hand();
    if (hand && hand->hasPairPassed() && !isEvent)
        m_outcomes.tellChord(hand, false);
    std::visit([this](const auto &what) { take(what); }, line.what);
    if (!m_queue.hasBegun() && m_queue.mayBegin())
        begin();
    if (!m_queue.hasBegun())
        return;
    const QStringList news = m_coverage.since(m_coverageAtBegin);
    m_coverageAtBegin = m_coverage;
    for (const QString &text : news)
        m_queue.add(m_time.now, Remark{text});
    m_queue.passOn();
}

void LogSession::remark(const QString &text, qint64 time)
{
    m_queue.add(time, Remark{text});
}

// The remarks about what is missing come first, so that nobody takes silence for an answer.
void LogSession::begin()
{
    m_sink(SessionEntry{0, m_start});
    m_sink(SessionEntry{0, Remark{m_manner}});
    const QStringList gaps = m_coverage.gaps(m_deviceCount);
    for (const QString &gap : gaps)
        m_sink(SessionEntry{0, Remark{gap}});
    m_coverageAtBegin = m_coverage;
    m_queue.begin();
}

void LogSession::finish()
{
    m_events.finishReport();
    finishOpening();
    m_reads.finish();
    for (const LogDetectorPtr &detector : m_detectors.all())
        m_outcomes.leaveWaiting(m_time.now, detector,
                                QStringLiteral("nothing was published for it: held back, or it has "
                                               "no command; still down at the end"));
    if (!m_queue.hasBegun())
        begin();
    m_queue.finish();
}

void LogSession::finishOpening()
{
    const LogDevicePtr device = m_devices.finishOpening();
    if (!device)
        return;
    ++m_deviceCount;
    m_queue.add(m_time.before, DeviceChange{device->path, device->name, device->bus, true});
}

void LogSession::take(const Said::NodeAdded &)
{
    // Devices that were opened before the log begins would be unknown.
    if (!hasActivity())
        m_origins.setComplete(true);
}

void LogSession::take(const Said::ListenerOpened &)
{
    if (!hasActivity())
        m_origins.setComplete(true);
}

void LogSession::take(const Said::NodeRemoved &removed)
{
    m_reads.leave();
    const LogDevicePtr device = m_devices.remove(removed.path);
    const auto mayBeGone = [&device, &removed](const LogOrigin &origin) {
        const LogDevicePtr known = origin.device();
        return known ? known->path == removed.path : !device || LogOrigins::fits(origin, *device);
    };
    for (const LogDetectorPtr &detector : m_detectors.all()) {
        if (!mayBeGone(*detector->origin))
            continue;
        const QString which = detector->origin->device()
            ? QStringLiteral("the device")
            : QStringLiteral("a device, perhaps its own,");
        m_outcomes.leaveWaiting(m_time.now, detector,
                                QStringLiteral("nothing was published for it before %1 went at %2")
                                    .arg(which, timeText(m_time.now)));
    }
    // Where it is not known whether it is this one, nothing more can be said either.
    m_detectors.forget(mayBeGone);
    m_origins.forget(mayBeGone);
    DeviceChange change{removed.path, {}, InputEvent::Bus::NoBus, false};
    if (device) {
        change.name = device->name;
        change.bus = device->bus;
    }
    m_queue.add(m_time.now, change);
}

void LogSession::take(const Said::Complaint &complaint)
{
    QStringList names;
    for (const int code : complaint.codes)
        names += eventCodeName(complaint.type, code);
    const QString keys =
        names.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(names.join(QStringLiteral(", ")));
    m_queue.add(m_time.now, Remark{QStringLiteral("the library complains: ") + m_text + keys});
}

void LogSession::take(const Said::ReadFailed &failed)
{
    m_reads.fail(failed.path);
    m_queue.add(m_time.now,
                Remark{QStringLiteral("the library complains: ") + m_text
                       + QStringLiteral("; it does not read it any more")});
}

void LogSession::take(const Said::Entered &entered)
{
    if (entered.function == Function::Constructor) {
        m_origins.setComplete(true);
    } else if (entered.function == Function::SelectHandler) {
        m_queue.add(m_time.now, IdentifierSelected{entered.argument});
    } else if (entered.function == Function::SelectKeyHandler) {
        // Whoever takes the keys is told to forget them, even if it goes on taking them.
        m_keys.forget();
        m_reads.select(entered.argument);
    }
}

} // namespace Vorn::Workbench
