#include "ScenarioRun.h"

#include "IdleBench.h"
#include "ScenarioFiles.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>

using namespace Vorn::Workbench;
using Outcome = SimulationResult::Outcome;

namespace {

/// A bench whose events come when a test says, and which can break.
class ScriptedBench : public IdleBench
{
public:
    explicit ScriptedBench(PendingEvents *pending)
        : m_pending(pending)
    { }

    /// An event at a time of the session.
    void publishAt(qint64 time) { m_events += time; }
    void breakAt(qint64 time) { m_breaksAt = time; }
    /// As soon as it is asked to do anything to a device.
    void breakOnAction() { m_breaksOnAction = true; }

    QString failure() const override
    {
        return m_now >= m_breaksAt ? QStringLiteral("the program was killed") : QString();
    }
    qint64 now() const override { return m_now; }
    void settle() override { moveTo(m_now); }
    void runUntil(qint64 end) override { moveTo(end); }
    void runUntil(qint64 end, const Condition &condition) override
    {
        while (m_now < end && !condition())
            moveTo(m_now + 1);
    }
    void log(const Remark &) override { }
    void log(const ExpectationChecked &checked) override { m_checked = checked; }
    std::optional<int> changeKeys(int, const QVector<int> &codes, int) override
    {
        act();
        // What a bench says that is broken means nothing.
        return failure().isEmpty() ? std::nullopt : std::make_optional(codes.first());
    }
    bool setSwitch(int, int, bool) override
    {
        act();
        return failure().isEmpty();
    }

    const ExpectationChecked &checked() const { return m_checked; }

private:
    void act()
    {
        if (m_breaksOnAction)
            m_breaksAt = m_now;
    }

    void moveTo(qint64 time)
    {
        m_now = std::max(m_now, time);
        while (!m_events.isEmpty() && m_events.first() <= m_now) {
            EventPublished event;
            event.command = InputEvent::Info;
            event.state = InputEvent::KeyLongPress;
            m_pending->add(SessionEntry{m_events.takeFirst() * 1000, event});
        }
    }

    PendingEvents *const m_pending;
    QVector<qint64> m_events;
    qint64 m_now = 0;
    qint64 m_breaksAt = std::numeric_limits<qint64>::max();
    bool m_breaksOnAction = false;
    ExpectationChecked m_checked;
};

class ScenarioRunTest : public ScenarioFiles
{
protected:
    SimulationResult run(const char *text, qint64 tolerance)
    {
        write("a.scenario", QByteArray("device panel keys=KEY_INFO\n") + text);
        const LoadedScenario loaded = loadScenario(path("a.scenario"), {{}, {}, false});
        EXPECT_FALSE(hasErrors(loaded.diagnostics));
        return runScenario(loaded, &m_bench, &m_pending, tolerance);
    }

    PendingEvents m_pending{{0}};
    ScriptedBench m_bench{&m_pending};
};

} // namespace

TEST_F(ScenarioRunTest, AllowsForTheTolerance)
{
    m_bench.publishAt(820);
    EXPECT_EQ(
        run("panel press KEY_INFO\nexpect Info KeyLongPress after 700ms..755ms\n", 100).outcome,
        Outcome::Passed);
    EXPECT_EQ(m_bench.checked().text, "expect Info KeyLongPress after 700ms..755ms");
    EXPECT_EQ(m_bench.checked().line, 3);
}

TEST_F(ScenarioRunTest, AllowsForTheToleranceBeforeTheTime)
{
    m_bench.publishAt(610);
    EXPECT_EQ(
        run("panel press KEY_INFO\nexpect Info KeyLongPress after 700ms..755ms\n", 100).outcome,
        Outcome::Passed);
}

TEST_F(ScenarioRunTest, FailsBeyondTheTolerance)
{
    m_bench.publishAt(860);
    EXPECT_EQ(
        run("panel press KEY_INFO\nexpect Info KeyLongPress after 700ms..755ms\n", 100).outcome,
        Outcome::Failed);
    EXPECT_EQ(m_bench.checked().found, "nothing");
}

TEST_F(ScenarioRunTest, HasNoToleranceUnlessAsked)
{
    m_bench.publishAt(756);
    EXPECT_EQ(run("panel press KEY_INFO\nexpect Info KeyLongPress after 700ms..755ms\n", 0).outcome,
              Outcome::Failed);
}

TEST_F(ScenarioRunTest, WaitsAsLongAsTheToleranceForAnEventOfNow)
{
    m_bench.publishAt(90);
    EXPECT_EQ(run("panel press KEY_INFO\nexpect Info KeyLongPress\n", 100).outcome,
              Outcome::Passed);
}

TEST_F(ScenarioRunTest, TellsTheStepInWhichTheProgramEnded)
{
    m_bench.breakAt(1500);
    const SimulationResult result =
        run("wait 1s\nwait 1s\npanel press KEY_INFO\nexpect nothing\n", 0);
    EXPECT_EQ(result.outcome, Outcome::ProgramFailed);
    ASSERT_EQ(result.diagnostics.size(), 1);
    EXPECT_EQ(result.diagnostics.first().line, 3);
    EXPECT_EQ(result.diagnostics.first().message, "the program was killed");
}

TEST_F(ScenarioRunTest, TellsThatTheProgramEndedInTheLastStep)
{
    m_bench.breakAt(0);
    const SimulationResult result = run("panel press KEY_INFO\n", 0);
    EXPECT_EQ(result.outcome, Outcome::ProgramFailed);
    EXPECT_EQ(result.diagnostics.size(), 1);
}

TEST_F(ScenarioRunTest, CountsFromTheLastActionAcrossExpectationsAndWaits)
{
    for (const qint64 time : {700, 900, 1300})
        m_bench.publishAt(time);
    const SimulationResult result = run("wait 100ms\npanel press KEY_INFO\n"
                                        "expect Info KeyLongPress after 600ms..600ms\n"
                                        "expect Info KeyLongPress after 800ms..800ms\n"
                                        "expect nothing\nwait 100ms\n"
                                        "expect Info KeyLongPress after 1200ms..1200ms\n",
                                        0);
    EXPECT_EQ(result.outcome, Outcome::Passed);
    EXPECT_EQ(result.expectations, 4);
    EXPECT_EQ(result.duration, 1300);
}

TEST_F(ScenarioRunTest, CountsAnewFromEachAction)
{
    m_bench.publishAt(700);
    EXPECT_EQ(run("panel press KEY_INFO\nwait 500ms\npanel release KEY_INFO\n"
                  "expect Info KeyLongPress after 200ms..200ms\n",
                  0)
                  .outcome,
              Outcome::Passed);
}

TEST_F(ScenarioRunTest, WaitsFromNowOrFromTheActionWhicheverIsLater)
{
    m_bench.publishAt(490);
    EXPECT_EQ(
        run("panel press KEY_INFO\nwait 400ms\nexpect Info KeyLongPress within 100ms\n", 0).outcome,
        Outcome::Passed);
}

TEST_F(ScenarioRunTest, WaitsForTheTimeEvenBeyondTheWait)
{
    m_bench.publishAt(195);
    EXPECT_EQ(
        run("panel press KEY_INFO\nexpect Info KeyLongPress after 100ms..200ms within 50ms\n", 0)
            .outcome,
        Outcome::Passed);
}

TEST_F(ScenarioRunTest, WaitsNoLongerThanItIsAllowed)
{
    m_bench.publishAt(501);
    const SimulationResult result =
        run("panel press KEY_INFO\nwait 400ms\nexpect Info KeyLongPress within 100ms\n", 0);
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_EQ(m_bench.checked().found, "nothing");
    EXPECT_EQ(m_bench.checked().line, 4);
}

TEST_F(ScenarioRunTest, IsTooEarlyByAMillisecond)
{
    m_bench.publishAt(699);
    EXPECT_EQ(run("panel press KEY_INFO\nexpect Info KeyLongPress after 700ms..755ms\n", 0).outcome,
              Outcome::Failed);
    EXPECT_EQ(m_bench.checked().found, "Info KeyLongPress NoBus, 699 ms after the last action");
}

TEST_F(ScenarioRunTest, FailsForAnEventThatIsLeftAtTheEnd)
{
    m_bench.publishAt(50);
    EXPECT_EQ(run("panel press KEY_INFO\nexpect nothing\nwait 60ms\n", 0).outcome, Outcome::Failed);
    EXPECT_EQ(m_bench.checked().text, "expect nothing more at the end");
    EXPECT_EQ(m_bench.checked().line, 4);
}

TEST_F(ScenarioRunTest, WaitsForATimeThatCountsFromTheActionAndNotFromNow)
{
    m_bench.publishAt(250);
    const SimulationResult result = run("panel press KEY_INFO\nwait 100ms\n"
                                        "expect Info KeyLongPress after 100ms..200ms\n",
                                        0);
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_EQ(m_bench.checked().found, "nothing");
    EXPECT_EQ(result.duration, 200);
}

TEST_F(ScenarioRunTest, DoesNotBlameTheScenarioForAProgramThatEnds)
{
    m_bench.breakOnAction();
    for (const char *text : {"panel press KEY_INFO\n", "panel switch SW_LID on\n"}) {
        const SimulationResult result = run(text, 0);
        EXPECT_EQ(result.outcome, Outcome::ProgramFailed) << text;
        ASSERT_EQ(result.diagnostics.size(), 1) << text;
        EXPECT_EQ(result.diagnostics.first().message, "the program was killed") << text;
        m_bench.breakAt(std::numeric_limits<qint64>::max());
    }
}

TEST_F(ScenarioRunTest, AllowsForTheToleranceAtTheEndOfAWait)
{
    const char *const text =
        "panel press KEY_INFO\nwait 400ms\nexpect Info KeyLongPress within 100ms\n";
    m_bench.publishAt(599);
    EXPECT_EQ(run(text, 100).outcome, Outcome::Passed);
}

TEST_F(ScenarioRunTest, WaitsNoLongerThanTheTolerance)
{
    m_bench.publishAt(601);
    EXPECT_EQ(run("panel press KEY_INFO\nwait 400ms\nexpect Info KeyLongPress within 100ms\n", 100)
                  .outcome,
              Outcome::Failed);
}
