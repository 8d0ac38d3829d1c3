#include "Simulation.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "Diagnostic.h"
#include "EventNames.h"
#include "InputSubsystem.h"
#include "Interruption.h"
#include "Playback.h"
#include "Product.h"
#include "Recording.h"
#include "ScenarioNodes.h"
#include "Session.h"
#include "SessionLog.h"
#include "VirtualClock.h"

#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <memory>

namespace Vorn::Workbench {

namespace {

// So often a long wait looks whether it was interrupted.
constexpr qint64 longestPiece = 10LL * 60 * 1000;

QString durationText(qint64 milliseconds)
{
    if (milliseconds % 1000 != 0 && qAbs(milliseconds) < 10'000)
        return QStringLiteral("%1 ms").arg(milliseconds);
    return QStringLiteral("%1 s").arg(QString::number(static_cast<double>(milliseconds) / 1000));
}

/// Whether times are measured from a step.
bool isAction(const StepKind &step)
{
    return !std::holds_alternative<Step::Wait>(step)
        && !std::holds_alternative<Step::WaitForEnd>(step)
        && !std::holds_alternative<Step::IgnoreEvents>(step)
        && !std::holds_alternative<Step::ExpectEvent>(step)
        && !std::holds_alternative<Step::ExpectNothing>(step)
        && !std::holds_alternative<Step::ExpectIdentifier>(step);
}

class Run
{
public:
    Run(const LoadedScenario &loaded, const SessionLog::Sink &sink);

    SimulationResult run();

    void operator()(const Step::Plug &step);
    void operator()(const Step::Unplug &step);
    void operator()(const Step::Replace &step);
    void operator()(const Step::Permit &step);
    void operator()(const Step::Keys &step);
    void operator()(const Step::Switch &step);
    void operator()(const Step::Record &step);
    void operator()(const Step::Wait &step);
    void operator()(const Step::WaitForEnd &);
    void operator()(const Step::StepClock &step);
    void operator()(const Step::Select &step);
    void operator()(const Step::InputDirectory &step);
    void operator()(const Step::Play &step);
    void operator()(const Step::IgnoreEvents &);
    void operator()(const Step::ExpectEvent &step);
    void operator()(const Step::ExpectNothing &step);
    void operator()(const Step::ExpectIdentifier &step);

private:
    struct Pending
    {
        qint64 time = 0;
        EventPublished event;
        QString deviceName;
    };

    void onEntry(const SessionEntry &entry);
    bool hasEnded() const { return m_result.outcome != SimulationResult::Outcome::Passed; }
    qint64 now() const { return m_clock.elapsed().count(); }
    /// Moves the time to @p end, or to when there is an event that was not expected yet.
    /// @return whether there is
    bool runUntilEvent(qint64 end);
    void runUntil(qint64 end);
    /// Runs what is ready now.
    void settle();
    void playDue();
    bool isInterrupted();
    void met();
    void failed(const QString &found);
    void checkNothingIsPending();
    void malformed(const QString &message);
    bool isExpected(const Step::ExpectEvent &expected, const Pending &found) const;
    QString text(const Pending &event) const;
    QString label(int device) const { return m_loaded.scenario.devices[device].label; }

    const LoadedScenario &m_loaded;
    const SessionLog::Sink m_sink;
    Sim::VirtualClock m_clock;
    Sim::InputSubsystem m_subsystem;
    SessionLog m_log;
    QHash<QString, QString> m_names; ///< of devices, by path; those that are gone included
    QVector<Pending> m_pending; ///< events that were not expected yet
    SimulationResult m_result;
    qint64 m_action = 0; ///< when the last action began
    const ScenarioStep *m_step = nullptr;
    ScenarioNodes m_devices;
    Playback m_playback;
    std::unique_ptr<Product> m_library;
};

Run::Run(const LoadedScenario &loaded, const SessionLog::Sink &sink)
    : m_loaded(loaded)
    , m_sink(sink)
    , m_clock(loaded.scenario.start)
    , m_log([this](const SessionEntry &entry) { onEntry(entry); })
    , m_devices(loaded, &m_subsystem)
    , m_playback(&m_subsystem)
{
    m_subsystem.setRecording(false);
    SessionStart start;
    start.source = loaded.source;
    start.profile = QFileInfo(loaded.profileFile).fileName();
    start.wallClock = m_log.wallClockAtStart();
    m_log.add(start);
    m_library = std::make_unique<Product>(loaded.profile, &m_log);
}

void Run::onEntry(const SessionEntry &entry)
{
    if (const auto *change = std::get_if<DeviceChange>(&entry.what))
        m_names.insert(change->device, change->name);
    if (const auto *event = std::get_if<EventPublished>(&entry.what))
        m_pending.append(Pending{entry.time, *event, m_names.value(event->device)});
    m_sink(entry);
}

SimulationResult Run::run()
{
    // The library looks at /dev/input for the first time.
    settle();
    for (const ScenarioStep &step : m_loaded.scenario.steps) {
        if (isInterrupted())
            break;
        m_step = &step;
        if (!step.continues && isAction(step.what))
            m_action = now();
        std::visit(*this, step.what);
        if (hasEnded())
            break;
        settle();
    }
    if (!hasEnded() && m_playback.end())
        runUntil(*m_playback.end());
    if (!hasEnded() && m_loaded.scenario.hasExpectations()) {
        const ScenarioStep end{m_loaded.scenario.file, m_loaded.scenario.lastLine,
                               QStringLiteral("expect nothing more at the end"),
                               Step::ExpectNothing(), false};
        m_step = &end;
        if (!m_pending.isEmpty())
            failed(text(m_pending.first()));
    }
    m_step = nullptr;
    m_result.duration = now();
    return m_result;
}

bool Run::isInterrupted()
{
    if (Interruption::isRequested() && !hasEnded())
        m_result.outcome = SimulationResult::Outcome::Interrupted;
    return hasEnded();
}

void Run::playDue()
{
    while (m_playback.nextDue().value_or(now() + 1) <= now() && !isInterrupted()) {
        m_playback.sendNext();
        m_clock.settle();
    }
}

void Run::settle()
{
    m_clock.settle();
    playDue();
}

bool Run::runUntilEvent(qint64 end)
{
    settle();
    while (m_pending.isEmpty() && now() < end && !isInterrupted()) {
        const qint64 piece = std::min(end, now() + longestPiece);
        const qint64 next = std::min(piece, m_playback.nextDue().value_or(piece));
        m_clock.waitUntil([this] { return !m_pending.isEmpty(); },
                          std::chrono::milliseconds(next - now()));
        if (m_pending.isEmpty())
            playDue();
    }
    return !m_pending.isEmpty();
}

void Run::runUntil(qint64 end)
{
    settle();
    while (now() < end && !isInterrupted()) {
        const qint64 piece = std::min(end, now() + longestPiece);
        const qint64 next = std::min(piece, m_playback.nextDue().value_or(piece));
        m_clock.advance(std::chrono::milliseconds(next - now()));
        playDue();
    }
}

void Run::operator()(const Step::Plug &step)
{
    m_devices.plug(step.device);
}

void Run::operator()(const Step::Unplug &step)
{
    // Which one the library sees first, the releases or that the node is gone, is a matter of luck
    // on a real system. Here it is the writer's choice.
    if (!step.losingRecords) {
        m_devices.releaseKeys(step.device);
        m_clock.settle();
    }
    m_devices.unplug(step.device, step.losingRecords);
}

void Run::operator()(const Step::Replace &step)
{
    m_log.add(Remark{QStringLiteral("%1 is replaced by '%2'")
                         .arg(label(step.device), QString::fromUtf8(step.name))});
    m_devices.replace(step);
}

void Run::operator()(const Step::Permit &step)
{
    m_log.add(Remark{(step.readable ? QStringLiteral("%1 may be opened from now on")
                                    : QStringLiteral("%1 may not be opened from now on"))
                         .arg(label(step.device))});
    m_devices.permit(step.device, step.readable);
}

void Run::operator()(const Step::Keys &step)
{
    Sim::InputNode &node = m_devices.node(step.device);
    for (const int code : step.codes) {
        if (!node.report(EV_KEY, code, step.value)) {
            malformed(QStringLiteral("%1 has no %2, or it is %3 already")
                          .arg(label(step.device), keyName(code),
                               step.value == 0 ? QStringLiteral("up") : QStringLiteral("down")));
            return;
        }
    }
    node.sync();
}

void Run::operator()(const Step::Switch &step)
{
    if (!m_devices.node(step.device).setSwitch(step.code, step.on))
        malformed(QStringLiteral("%1 has no %2, or it is %3 already")
                      .arg(label(step.device), switchName(step.code),
                           step.on ? QStringLiteral("on") : QStringLiteral("off")));
}

void Run::operator()(const Step::Record &step)
{
    m_devices.node(step.device)
        .send({Sim::InputNode::record(step.type, step.code, step.value,
                                      m_clock.now() + step.offset)});
}

void Run::operator()(const Step::Wait &step)
{
    runUntil(now() + step.duration);
}

void Run::operator()(const Step::WaitForEnd &)
{
    if (m_playback.end())
        runUntil(*m_playback.end());
}

void Run::operator()(const Step::StepClock &step)
{
    m_log.add(Remark{(step.delta < 0 ? QStringLiteral("the clock is set back by %1")
                                     : QStringLiteral("the clock is set forward by %1"))
                         .arg(durationText(qAbs(step.delta)))});
    m_clock.stepWallClock(std::chrono::milliseconds(step.delta));
}

void Run::operator()(const Step::Select &step)
{
    m_library->select(step.identifier);
}

void Run::operator()(const Step::InputDirectory &step)
{
    m_log.add(Remark{step.exists ? QStringLiteral("/dev/input comes back")
                                 : QStringLiteral("/dev/input is removed")});
    if (step.exists)
        m_subsystem.createInputDirectory();
    else
        m_subsystem.removeInputDirectory();
}

void Run::operator()(const Step::Play &step)
{
    m_log.add(Remark{QStringLiteral("%1 is played").arg(QFileInfo(step.file).fileName())});
    const QVector<RecordedNode> &nodes = m_loaded.recordings[step.file].nodes;
    if (step.device >= 0) {
        for (const RecordedNode &node : nodes)
            m_playback.add(m_loaded.deviceNodes[step.device], node.events, now());
        return;
    }
    m_devices.plugRecorded(step.file);
    // The devices are there before their first records are.
    m_clock.settle();
    const QVector<int> numbers = m_loaded.recordingNodes[step.file];
    for (int i = 0; i < nodes.size(); ++i)
        m_playback.add(numbers[i], nodes[i].events, now());
}

void Run::operator()(const Step::IgnoreEvents &)
{
    m_pending.clear();
}

void Run::operator()(const Step::ExpectEvent &step)
{
    if (m_pending.isEmpty()) {
        qint64 end = now();
        if (step.within)
            end = std::max(end, now() + *step.within);
        if (step.latest)
            end = std::max(end, m_action + *step.latest);
        if (!step.within && !step.latest)
            end = m_playback.end().value_or(end);
        runUntilEvent(end);
    }
    if (hasEnded())
        return;
    if (m_pending.isEmpty()) {
        failed(QStringLiteral("nothing"));
        return;
    }
    const Pending found = m_pending.takeFirst();
    if (isExpected(step, found))
        met();
    else
        failed(text(found));
}

void Run::operator()(const Step::ExpectNothing &step)
{
    runUntilEvent(now() + step.duration);
    if (!hasEnded())
        checkNothingIsPending();
}

void Run::operator()(const Step::ExpectIdentifier &step)
{
    if (m_library->identifier() == step.identifier)
        met();
    else
        failed(QStringLiteral("'%1'").arg(m_library->identifier()));
}

bool Run::isExpected(const Step::ExpectEvent &expected, const Pending &found) const
{
    const EventPublished &event = found.event;
    if (event.command != expected.command || event.state != expected.state)
        return false;
    if (expected.bus && event.bus != *expected.bus)
        return false;
    if (expected.device >= 0
        && event.device
            != QStringLiteral("/dev/input/event%1").arg(m_loaded.deviceNodes[expected.device]))
        return false;
    if (!expected.deviceName.isNull() && found.deviceName.toUtf8() != expected.deviceName)
        return false;
    const qint64 elapsed = found.time - m_action * 1000;
    return !expected.earliest
        || (elapsed >= *expected.earliest * 1000 && elapsed <= *expected.latest * 1000);
}

QString Run::text(const Pending &event) const
{
    QString result = QStringLiteral("%1 %2 %3")
                         .arg(commandName(event.event.command), stateName(event.event.state),
                              busName(event.event.bus));
    if (!event.deviceName.isEmpty())
        result += QStringLiteral(" from \"%1\"").arg(event.deviceName);
    return result
        + QStringLiteral(", %1 after the last action")
              .arg(durationText((event.time - m_action * 1000) / 1000));
}

void Run::checkNothingIsPending()
{
    if (m_pending.isEmpty())
        met();
    else
        failed(text(m_pending.first()));
}

void Run::met()
{
    ExpectationChecked checked;
    checked.file = m_step->file;
    checked.line = m_step->line;
    checked.text = m_step->text;
    ++m_result.expectations;
    m_log.add(checked);
}

void Run::failed(const QString &found)
{
    ExpectationChecked checked;
    checked.file = m_step->file;
    checked.line = m_step->line;
    checked.text = m_step->text;
    checked.met = false;
    checked.found = found;
    m_result.outcome = SimulationResult::Outcome::Failed;
    m_log.add(checked);
}

void Run::malformed(const QString &message)
{
    Diagnostic diagnostic;
    diagnostic.file = m_step->file;
    diagnostic.line = m_step->line;
    diagnostic.message = message;
    m_result.diagnostics.append(diagnostic);
    m_result.outcome = SimulationResult::Outcome::Malformed;
}

} // namespace

SimulationResult simulate(const LoadedScenario &loaded, const SessionLog::Sink &sink)
{
    // The order in which keys that are due in the same tick are told of is that of a hash.
    qSetGlobalQHashSeed(0);
    Run run(loaded, sink);
    return run.run();
}

} // namespace Vorn::Workbench
