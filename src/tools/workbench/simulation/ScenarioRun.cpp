#include "ScenarioRun.h"

#include "Bench.h"
#include "Diagnostic.h"
#include "Durations.h"
#include "EventNames.h"
#include "Interruption.h"
#include "PendingEvents.h"
#include "Playback.h"
#include "PlaybackClock.h"
#include "Recording.h"
#include "ScenarioNodes.h"
#include "Session.h"

#include <QFileInfo>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

/// One run of a scenario: an operator() for each kind of step.
class Run
{
public:
    Run(const LoadedScenario &loaded, Bench *bench, PendingEvents *pending, qint64 tolerance);

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
    void checkLeftOver();
    bool hasBroken();
    bool hasEnded() const { return m_result.outcome != SimulationResult::Outcome::Passed; }
    bool isInterrupted();
    void waitForEvent(qint64 end);
    qint64 endOfWait(const Step::ExpectEvent &expected) const;
    void met();
    void failed(const QString &found);
    void ended(SimulationResult::Outcome outcome, const QString &message);
    QString label(int device) const { return m_loaded.scenario.devices[device].label; }

    const LoadedScenario &m_loaded;
    Bench *const m_bench;
    PendingEvents *const m_pending;
    const qint64 m_tolerance; ///< ms
    SimulationResult m_result;
    qint64 m_action = 0; ///< when the last action began, ms
    const ScenarioStep *m_step = nullptr; ///< being run
    ScenarioNodes m_devices;
    Playback m_playback;
    PlaybackClock m_time;
};

Run::Run(const LoadedScenario &loaded, Bench *bench, PendingEvents *pending, qint64 tolerance)
    : m_loaded(loaded)
    , m_bench(bench)
    , m_pending(pending)
    , m_tolerance(tolerance)
    , m_devices(loaded, bench)
    , m_playback(bench)
    , m_time(bench, &m_playback, [this] { return isInterrupted(); })
{ }

SimulationResult Run::run()
{
    // The library looks at /dev/input for the first time.
    m_time.settle();
    for (const ScenarioStep &step : m_loaded.scenario.steps) {
        if (isInterrupted())
            break;
        m_step = &step;
        if (!step.continues && isAction(step.what))
            m_action = m_time.now();
        std::visit(*this, step.what);
        if (hasEnded())
            break;
        m_time.settle();
    }
    if (!hasBroken() && m_playback.end())
        m_time.runUntil(*m_playback.end());
    // Without expectations a scenario only shows what happens.
    if (!hasBroken() && m_loaded.scenario.hasExpectations())
        checkLeftOver();
    m_step = nullptr;
    m_result.duration = m_time.now();
    return m_result;
}

void Run::checkLeftOver()
{
    if (m_pending->isEmpty())
        return;
    const ScenarioStep end{m_loaded.scenario.file, m_loaded.scenario.lastLine,
                           QStringLiteral("expect nothing more at the end"), Step::ExpectNothing(),
                           false};
    m_step = &end;
    failed(m_pending->text(m_action));
    m_step = nullptr;
}

bool Run::isInterrupted()
{
    if (Interruption::isRequested() && !hasEnded())
        m_result.outcome = SimulationResult::Outcome::Interrupted;
    return hasBroken();
}

bool Run::hasBroken()
{
    if (!hasEnded() && !m_bench->failure().isEmpty())
        ended(SimulationResult::Outcome::ProgramFailed, m_bench->failure());
    return hasEnded();
}

void Run::operator()(const Step::Plug &step)
{
    m_devices.plug(step.device);
}

void Run::operator()(const Step::Unplug &step)
{
    // On a real system it is a race whether the library reads the releases before the node is gone.
    // Here the scenario decides.
    if (!step.losingRecords) {
        m_bench->releaseKeys(m_devices.number(step.device));
        m_bench->settle();
    }
    m_devices.unplug(step.device, step.losingRecords);
}

void Run::operator()(const Step::Replace &step)
{
    m_bench->log(Remark{QStringLiteral("%1 is replaced by '%2'")
                            .arg(label(step.device), QString::fromUtf8(step.name))});
    m_devices.replace(step);
}

void Run::operator()(const Step::Permit &step)
{
    m_bench->log(Remark{(step.readable ? QStringLiteral("%1 can be opened from now on")
                                       : QStringLiteral("%1 cannot be opened from now on"))
                            .arg(label(step.device))});
    m_devices.permit(step.device, step.readable);
}

void Run::operator()(const Step::Keys &step)
{
    const std::optional<int> refused =
        m_bench->changeKeys(m_devices.number(step.device), step.codes, step.value);
    // What a program that is gone answers is no answer.
    if (refused && !hasBroken())
        ended(SimulationResult::Outcome::Malformed,
              QStringLiteral("%1 has no %2, or it is already %3")
                  .arg(label(step.device), keyName(*refused),
                       step.value == 0 ? QStringLiteral("up") : QStringLiteral("down")));
}

void Run::operator()(const Step::Switch &step)
{
    const bool isDone = m_bench->setSwitch(m_devices.number(step.device), step.code, step.on);
    if (!isDone && !hasBroken())
        ended(SimulationResult::Outcome::Malformed,
              QStringLiteral("%1 has no %2, or it is already %3")
                  .arg(label(step.device), switchName(step.code),
                       step.on ? QStringLiteral("on") : QStringLiteral("off")));
}

void Run::operator()(const Step::Record &step)
{
    m_bench->send(m_devices.number(step.device),
                  {RecordedEvent{0, step.type, step.code, step.value}}, step.offset);
}

void Run::operator()(const Step::Wait &step)
{
    m_time.runUntil(m_time.now() + step.duration);
}

void Run::operator()(const Step::WaitForEnd &)
{
    if (m_playback.end())
        m_time.runUntil(*m_playback.end());
}

void Run::operator()(const Step::StepClock &step)
{
    m_bench->log(Remark{(step.delta < 0 ? QStringLiteral("the clock is set back by %1")
                                        : QStringLiteral("the clock is set forward by %1"))
                            .arg(durationText(qAbs(step.delta)))});
    m_bench->stepWallClock(step.delta);
}

void Run::operator()(const Step::Select &step)
{
    m_bench->select(step.identifier);
}

void Run::operator()(const Step::InputDirectory &step)
{
    m_bench->log(Remark{step.exists ? QStringLiteral("/dev/input comes back")
                                    : QStringLiteral("/dev/input is removed")});
    m_bench->setInputDirectory(step.exists);
}

void Run::operator()(const Step::Play &step)
{
    m_bench->log(Remark{QStringLiteral("%1 is played").arg(QFileInfo(step.file).fileName())});
    const QVector<RecordedNode> &nodes = m_loaded.recordings[step.file].nodes;
    if (step.device >= 0) {
        for (const RecordedNode &node : nodes)
            m_playback.add(m_loaded.deviceNodes[step.device], node.events, m_time.now());
        return;
    }
    m_devices.plugRecorded(step.file);
    // The library has to open the devices before their first records arrive.
    m_bench->settle();
    const QVector<int> numbers = m_loaded.recordingNodes[step.file];
    for (int i = 0; i < nodes.size(); ++i)
        m_playback.add(numbers[i], nodes[i].events, m_time.now());
}

void Run::operator()(const Step::IgnoreEvents &)
{
    m_pending->clear();
}

/*
 *  expect COMMAND STATE …
 *
 *                  an event is pending                       as expected
 *       begin ───────────────────────────────▶ take it ─────────────────────▶ met
 *         │                                      ▲  │        another one
 *         │ none is                              │  └───────────────────────▶ failed
 *         ▼                  an event comes      │
 *      waiting ──────────────────────────────────┘
 *         │
 *         ├─ time is up ────────────────────────────────────────────────────▶ failed: nothing
 *         └─ a signal ──────────────────────────────────────────────────────▶ interrupted
 *
 *  expect nothing [for …] is the same wait with the results exchanged: an event fails it, and it is
 *  met when the time is up. It leaves the event where it is.
 */

void Run::operator()(const Step::ExpectEvent &step)
{
    Step::ExpectEvent expected = step;
    if (expected.earliest)
        *expected.earliest -= m_tolerance;
    if (expected.latest)
        *expected.latest += m_tolerance;
    if (m_pending->isEmpty())
        waitForEvent(endOfWait(expected));
    if (hasEnded())
        return;
    if (m_pending->isEmpty()) {
        failed(QStringLiteral("nothing"));
        return;
    }
    if (const std::optional<QString> other = m_pending->take(expected, m_action))
        failed(*other);
    else
        met();
}

void Run::operator()(const Step::ExpectNothing &step)
{
    waitForEvent(m_time.now() + step.duration);
    if (hasEnded())
        return;
    if (m_pending->isEmpty())
        met();
    else
        failed(m_pending->text(m_action));
}

void Run::operator()(const Step::ExpectIdentifier &step)
{
    const QString selected = m_bench->identifier();
    if (hasBroken())
        return;
    if (selected == step.identifier)
        met();
    else
        failed(QStringLiteral("'%1'").arg(selected));
}

void Run::waitForEvent(qint64 end)
{
    m_time.runUntil(end, [this] { return !m_pending->isEmpty(); });
}

// `after` counts from the last action, `within` from now; the later of the two counts. Without
// either, an event of a recording may still come while that plays, and no other can.
qint64 Run::endOfWait(const Step::ExpectEvent &expected) const
{
    qint64 end = m_time.now();
    if (!expected.within && !expected.latest)
        return m_playback.end().value_or(end) + m_tolerance;
    if (expected.within)
        end = std::max(end, m_time.now() + *expected.within + m_tolerance);
    if (expected.latest)
        end = std::max(end, m_action + *expected.latest);
    return end;
}

void Run::met()
{
    ExpectationChecked checked;
    checked.file = m_step->file;
    checked.line = m_step->line;
    checked.text = m_step->text;
    ++m_result.expectations;
    m_bench->log(checked);
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
    m_bench->log(checked);
}

void Run::ended(SimulationResult::Outcome outcome, const QString &message)
{
    Diagnostic diagnostic;
    diagnostic.file = m_step ? m_step->file : m_loaded.scenario.file;
    diagnostic.line = m_step ? m_step->line : 0;
    diagnostic.message = message;
    m_result.diagnostics.append(diagnostic);
    m_result.outcome = outcome;
}

} // namespace

SimulationResult runScenario(const LoadedScenario &loaded, Bench *bench, PendingEvents *pending,
                             qint64 tolerance)
{
    return Run(loaded, bench, pending, tolerance).run();
}

} // namespace Vorn::Workbench
