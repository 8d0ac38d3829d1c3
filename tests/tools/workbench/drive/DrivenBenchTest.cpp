#include "DrivenBench.h"

#include "AnsweringProgram.h"
#include "Durations.h"
#include "Interruption.h"
#include "SessionWriter.h"

#include <QCryptographicHash>
#include <QElapsedTimer>

#include <gmock/gmock.h>

#include <linux/input.h>

#include <chrono>
#include <csignal>

using namespace AnsweringProgram;
using namespace Vorn::Drive;

namespace {

/// A bench in virtual time, and the program that it drives.
class Driver
{
public:
    explicit Driver(const ProgramRun::Start &start, int timeoutMs = patienceMs,
                    bool virtualTime = true)
        : m_run(start)
        , m_bench(&m_run, {virtualTime, timeoutMs, QStringLiteral("1.2.3")},
                  [this](const SessionEntry &entry) { m_entries += entry; })
    { }

    DrivenBench *operator->() { return &m_bench; }
    ProgramRun &run() { return m_run; }
    std::string failure() const { return m_bench.failure().toStdString(); }

    /// What it passed on, in lines.
    std::string entries() const
    {
        QByteArray lines;
        for (const SessionEntry &entry : m_entries)
            lines += toJsonLine(entry);
        return lines.toStdString();
    }

    /// What the program was sent, until its end.
    std::string sent()
    {
        m_run.end();
        return m_run.output().toStdString();
    }

private:
    ProgramRun m_run;
    QVector<SessionEntry> m_entries;
    DrivenBench m_bench;
};

std::string lines(const std::vector<Operation> &operations)
{
    QByteArray text;
    for (const Operation &operation : operations)
        text += toLine(operation);
    return text.toStdString();
}

EventPublished event()
{
    EventPublished published;
    published.command = InputEvent::Info;
    published.state = InputEvent::KeyPressed;
    return published;
}

LoadedScenario scenario()
{
    LoadedScenario loaded;
    loaded.source = QStringLiteral("dir/a.scenario");
    loaded.profileFile = QStringLiteral("dir/keys.toml");
    loaded.scenario.start = 1'772'600'767'000;
    return loaded;
}

Answer hello()
{
    Answer answer;
    answer.folder = QStringLiteral("/tmp/devices");
    answer.wallClock = 1'772'600'767'000'000;
    return answer;
}

/// Whether a program that stops answering is told in these words, with the time for %1. An answer
/// may take long on a busy machine.
bool stopsAnswering(const QList<QByteArray> &answers, const QString &expected)
{
    std::string failure;
    for (int timeoutMs = 100; timeoutMs < 5000; timeoutMs *= 2) {
        Driver driver(answering(answers,
                                "read -r line <&$VORN_DRIVE_SOCKET; cat "
                                "<&$VORN_DRIVE_SOCKET"),
                      timeoutMs);
        driver->begin(scenario());
        driver->settle();
        failure = driver.failure();
        if (failure == expected.arg(durationText(timeoutMs)).toStdString())
            return true;
    }
    ADD_FAILURE() << failure;
    return false;
}

class DrivenBenchTest : public testing::Test
{
protected:
    // A request stays until the next construction, see Interruption.
    ~DrivenBenchTest() override { const Interruption forgetsTheLast; }
};

} // namespace

TEST_F(DrivenBenchTest, BeginsWhenTheProgramHasMadeItsManager)
{
    Driver driver(answering({toLine(hello()), doneAt(30)}));
    driver->begin(scenario());
    EXPECT_EQ(driver.failure(), "");
    EXPECT_EQ(driver->folder().toStdString(), "/tmp/devices");
    EXPECT_EQ(driver->now(), 30);
    const SessionStart start{QStringLiteral("dir/a.scenario"), QStringLiteral("keys.toml"),
                             1'772'600'767'000'000};
    EXPECT_EQ(driver.entries(), toJsonLine({0, start}).toStdString());
    EXPECT_EQ(
        driver.sent(),
        lines({Operations::Begin{"1.2.3", true, 1'772'600'767'000}, Operations::AwaitManager()}));
}

TEST_F(DrivenBenchTest, AsksTheProgramForEverything)
{
    const auto panel = Sim::DeviceDescription::keyboard("panel", BUS_HOST, {KEY_A});
    const QVector<RecordedEvent> records{{5, EV_KEY, KEY_A, 1}};
    QList<QByteArray> answers;
    for (int time = 1; time <= 11; ++time)
        answers += doneAt(time);
    Driver driver(answering(answers));
    driver->settle();
    driver->runUntil(1000);
    driver->plug(2, panel);
    driver->unplug(2, true);
    driver->replace(3, panel);
    driver->setMode(3, 0640);
    driver->setInputDirectory(false);
    driver->releaseKeys(4);
    driver->send(5, records, -500);
    driver->stepWallClock(3600);
    driver->select(QStringLiteral("text"));
    EXPECT_EQ(driver->now(), 11);
    EXPECT_EQ(driver.failure(), "");
    EXPECT_EQ(driver.sent(),
              lines({Operations::Settle(), Operations::Wait{1000, -1}, Operations::Plug{2, panel},
                     Operations::Unplug{2, true}, Operations::Replace{3, panel},
                     Operations::SetMode{3, 0640}, Operations::SetInputDirectory{false},
                     Operations::ReleaseKeys{4}, Operations::Send{5, records, -500},
                     Operations::StepWallClock{3600}, Operations::Select{"text"}}));
}

TEST_F(DrivenBenchTest, TellsWhatTheKernelWouldNotPassOn)
{
    Answer refused;
    refused.refused = KEY_B;
    Answer zero;
    zero.refused = 0;
    Answer named;
    named.identifier = QStringLiteral("text");
    Driver driver(answering(
        {doneAt(0), toLine(refused), toLine(zero), doneAt(0), toLine(zero), toLine(named)}));
    EXPECT_EQ(driver->changeKeys(1, {KEY_A, KEY_B}, 1), std::nullopt);
    EXPECT_EQ(driver->changeKeys(1, {KEY_A, KEY_B}, 0), KEY_B);
    EXPECT_EQ(driver->changeKeys(2, {}, 2), 0);
    EXPECT_TRUE(driver->setSwitch(1, SW_LID, true));
    EXPECT_FALSE(driver->setSwitch(1, SW_DOCK, false));
    EXPECT_EQ(driver->identifier().toStdString(), "text");
    EXPECT_EQ(driver.sent(),
              lines({Operations::ChangeKeys{1, {KEY_A, KEY_B}, 1},
                     Operations::ChangeKeys{1, {KEY_A, KEY_B}, 0}, Operations::ChangeKeys{2, {}, 2},
                     Operations::SetSwitch{1, SW_LID, true},
                     Operations::SetSwitch{1, SW_DOCK, false}, Operations::AskIdentifier()}));
}

TEST_F(DrivenBenchTest, PassesOnWhatHappensInTheProgram)
{
    const QByteArray first = toJsonLine({5'000, event()});
    const QByteArray second = toJsonLine({7'000, Remark{QStringLiteral("wait 1s")}});
    // As a socket may hand it over: entries together, and the answer in two pieces.
    const QByteArray answer = doneAt(6);
    Driver driver(script("printf %s \"$1\" >&$VORN_DRIVE_SOCKET\n"
                         "read -r line <&$VORN_DRIVE_SOCKET\n"
                         "printf %s \"$2\" >&$VORN_DRIVE_SOCKET\n"
                         "cat <&$VORN_DRIVE_SOCKET",
                         {first + second + answer.left(9), answer.mid(9)}));
    driver->settle();
    EXPECT_EQ(driver.failure(), "");
    EXPECT_EQ(driver.entries(), (first + second).toStdString());
    EXPECT_EQ(driver->now(), 7) << "of the last entry, which is later than the answer";
    driver->log(Remark{QStringLiteral("expect nothing")});
    ExpectationChecked checked;
    checked.text = QStringLiteral("expect nothing");
    driver->log(checked);
    EXPECT_EQ(driver.entries(),
              (first + second + toJsonLine({7'000, Remark{QStringLiteral("expect nothing")}})
               + toJsonLine({7'000, checked}))
                  .toStdString());
}

TEST_F(DrivenBenchTest, WaitsForEventsOneByOneUntilTheConditionHolds)
{
    const QByteArray published = toJsonLine({200'000, event()});
    Driver driver(answering({published + doneAt(200), doneAt(300), published + doneAt(400)}));
    int asked = 0;
    driver->runUntil(1000, [&asked] { return ++asked > 3; });
    EXPECT_EQ(asked, 4);
    EXPECT_EQ(driver->now(), 400);
    // It holds already.
    driver->runUntil(1000, [] { return true; });
    // The time is over.
    driver->runUntil(400, [] { return false; });
    EXPECT_EQ(
        driver.sent(),
        lines({Operations::Wait{1000, 0}, Operations::Wait{1000, 1}, Operations::Wait{1000, 1}}));
}

TEST_F(DrivenBenchTest, TellsWhatTheProgramHasNotDoneInTime)
{
    EXPECT_TRUE(stopsAnswering(
        {}, QStringLiteral("the program has made no QCoreApplication within %1 (--timeout)")));
    EXPECT_TRUE(stopsAnswering(
        {toLine(hello())},
        QStringLiteral("the program has made no device manager of the library's, or has not come "
                       "to its event loop, within %1 (--timeout)")));
    EXPECT_TRUE(stopsAnswering(
        {toLine(hello()), doneAt(1)},
        QStringLiteral("the program has not answered for %1: its event loop hangs or is never "
                       "idle (--timeout)")));
}

TEST_F(DrivenBenchTest, HasTheTimeOfTheProgramsClockInRealTime)
{
    using std::chrono::microseconds;
    const auto sinceBoot = std::chrono::steady_clock::now().time_since_epoch();
    Answer answer = hello();
    answer.monotonicClock = std::chrono::duration_cast<microseconds>(sinceBoot).count() - 7'000'000;
    QElapsedTimer timer;
    timer.start();
    Driver driver(answering({toLine(answer), doneAt(99)}), patienceMs, false);
    driver->begin(scenario());
    const qint64 now = driver->now();
    EXPECT_GE(now, 7000);
    EXPECT_LE(now, 7000 + timer.elapsed() + 1);
    EXPECT_EQ(
        driver.sent(),
        lines({Operations::Begin{"1.2.3", false, 1'772'600'767'000}, Operations::AwaitManager()}));
}

TEST_F(DrivenBenchTest, GivesAWaitInRealTimeTheTimeThatItTakes)
{
    const auto failure = QStringLiteral("the program has not answered for %1: its event loop hangs "
                                        "or is never idle (--timeout)")
                             .arg(durationText(1))
                             .toStdString();
    Driver real(answering({}), 1, false);
    QElapsedTimer timer;
    timer.start();
    real->runUntil(real->now() + 200);
    EXPECT_EQ(real.failure(), failure);
    EXPECT_GE(timer.elapsed(), 200);
    // Virtual time takes none.
    timer.start();
    Driver virtually(answering({}), 1);
    virtually->runUntil(1'000'000'000);
    EXPECT_EQ(virtually.failure(), failure);
    EXPECT_LT(timer.elapsed(), patienceMs);
}

TEST_F(DrivenBenchTest, TellsHowTheProgramEnded)
{
    Driver early(script("exit 3"));
    early->begin(scenario());
    EXPECT_EQ(early.failure(), "the program exited with status 3 before it could be driven");
    EXPECT_EQ(early->folder().toStdString(), "");
    EXPECT_EQ(early.entries(), "");
    Driver middle(answering({toLine(hello())}, "kill -SEGV $$"));
    middle->begin(scenario());
    EXPECT_EQ(middle.failure(),
              "the program was killed by SIGSEGV (Segmentation fault) before it could be driven");
    Driver late(answering({toLine(hello()), doneAt(1)}, "exit 0"));
    late->begin(scenario());
    EXPECT_EQ(late.failure(), "");
    late->settle();
    EXPECT_EQ(late.failure(), "the program exited with status 0");
}

TEST_F(DrivenBenchTest, TellsThatTheProgramGoesOnWithoutItsConnection)
{
    const QString close =
        QStringLiteral("eval \"exec $VORN_DRIVE_SOCKET>&-\"; while :; do sleep 1000; done");
    ProgramRun::Start start = script(close);
    start.closedMs = 20;
    start.quitMs = 20;
    Driver early(start);
    early->begin(scenario());
    EXPECT_EQ(early.failure(),
              "the program has closed its connection before it could be driven, but goes on");
    start = answering({toLine(hello()), doneAt(1)}, close);
    start.closedMs = 20;
    start.quitMs = 20;
    Driver late(start);
    late->begin(scenario());
    late->settle();
    EXPECT_EQ(late.failure(), "the program has closed its connection, but goes on");
}

TEST_F(DrivenBenchTest, PassesOnWhatCannotBeDone)
{
    Answer wrong = hello();
    wrong.error = QStringLiteral("its version is 1.2.2");
    Driver driver(answering({toLine(wrong)}));
    driver->begin(scenario());
    EXPECT_EQ(driver.failure(), "the program cannot be driven: its version is 1.2.2");
    EXPECT_EQ(driver->folder().toStdString(), "");
    EXPECT_EQ(driver.entries(), "");
    // Nothing has an effect after that.
    driver->settle();
    driver->runUntil(1000, [] { return false; });
    EXPECT_EQ(driver->changeKeys(1, {KEY_A}, 1), std::nullopt);
    driver->end();
    EXPECT_EQ(driver.sent(), lines({Operations::Begin{"1.2.3", true, 1'772'600'767'000}}));
}

TEST_F(DrivenBenchTest, RefusesWhatIsNoEntry)
{
    for (const char *line : {"nonsense\n", "{\"kind\":\"unheard-of\",\"t\":1}\n", "\n"}) {
        Driver driver(answering({line}));
        driver->settle();
        EXPECT_EQ(driver.failure(), "the program sends something that is no entry of a session")
            << line;
    }
}

TEST_F(DrivenBenchTest, EndsTheEventLoopOfAProgramThatCanBeDriven)
{
    Driver driver(answering({doneAt(5)}));
    driver->end();
    EXPECT_EQ(driver.failure(), "");
    EXPECT_EQ(driver.sent(), lines({Operations::End()}));
}

TEST_F(DrivenBenchTest, IsInterrupted)
{
    const Interruption interruption;
    Driver driver(answering({}));
    std::raise(SIGINT);
    driver->settle();
    EXPECT_EQ(driver.failure(), "interrupted");
}

TEST_F(DrivenBenchTest, SendsMoreThanASocketHolds)
{
    const QVector<RecordedEvent> records(200'000, RecordedEvent{123'456, EV_KEY, KEY_A, 1});
    const QByteArray line = toLine(Operations::Send{0, records, 0});
    ASSERT_GT(line.size(), 1'000'000);
    Driver driver(script("head -c $1 <&$VORN_DRIVE_SOCKET | md5sum\n"
                         "printf %s \"$2\" >&$VORN_DRIVE_SOCKET\n",
                         {QByteArray::number(line.size()), doneAt(1)}));
    driver->send(0, records, 0);
    EXPECT_EQ(driver.failure(), "");
    EXPECT_EQ(
        driver.sent(),
        (QCryptographicHash::hash(line, QCryptographicHash::Md5).toHex() + "  -\n").toStdString());
}

TEST_F(DrivenBenchTest, NoticesAtOnceThatNobodyReadsWhatItSends)
{
    const QVector<RecordedEvent> records(200'000);
    Driver driver(script("exit 4"));
    EXPECT_EQ(driver.run().wait(patienceMs), ProgramRun::Ready::Ended);
    QElapsedTimer timer;
    timer.start();
    driver->send(0, records, 0);
    EXPECT_LT(timer.elapsed(), patienceMs);
    EXPECT_EQ(driver.failure(), "the program exited with status 4");
}
