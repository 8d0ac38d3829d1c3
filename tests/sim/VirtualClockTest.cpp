#include "VirtualClock.h"
#include "CpuTime.h"
#include "Pipe.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPointer>
#include <QSocketNotifier>
#include <QThread>
#include <QTimer>

#include <gmock/gmock.h>

#include <chrono>
#include <ctime>
#include <memory>
#include <sys/time.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace std::chrono_literals;
using testing::ElementsAre;
using Vorn::Sim::VirtualClock;

namespace {

qint64 msecsOf(clockid_t clock)
{
    const timespec time = clockOf(clock);
    return static_cast<qint64>(time.tv_sec) * 1000 + time.tv_nsec / 1'000'000;
}

} // namespace

TEST(VirtualClock, StartsAtTheDocumentedInstantAndStandsStill)
{
    const VirtualClock clock;
    EXPECT_EQ(QDateTime::currentDateTimeUtc(), QDateTime(QDate(2026, 1, 2), QTime(10, 0), Qt::UTC));
    const qint64 monotonic = msecsOf(CLOCK_MONOTONIC);
    EXPECT_EQ(monotonic, 10'000);
    std::this_thread::sleep_for(5ms);
    EXPECT_EQ(clock.now(), VirtualClock::DefaultStart);
    EXPECT_EQ(msecsOf(CLOCK_MONOTONIC), monotonic);
    EXPECT_EQ(clock.elapsed(), 0ms);
}

TEST(VirtualClock, CanStartAtAnyInstant)
{
    EXPECT_EQ(VirtualClock(0).now(), 0);
    EXPECT_EQ(VirtualClock(1).now(), 1);
    {
        const VirtualClock whole(2000);
        EXPECT_EQ(clockOf(CLOCK_REALTIME).tv_sec, 2);
        EXPECT_EQ(clockOf(CLOCK_REALTIME).tv_nsec, 0);
    }
    const VirtualClock clock(-1);
    EXPECT_EQ(clock.now(), -1);
    EXPECT_EQ(QDateTime::currentMSecsSinceEpoch(), -1);
    EXPECT_EQ(clockOf(CLOCK_REALTIME).tv_sec, -1);
    EXPECT_EQ(clockOf(CLOCK_REALTIME).tv_nsec, 999'000'000);
}

TEST(VirtualClock, IsWhatEveryClockShows)
{
    VirtualClock clock;
    QElapsedTimer elapsed;
    elapsed.start();
    const auto steady = std::chrono::steady_clock::now();
    clock.advance(1500ms);
    const qint64 now = VirtualClock::DefaultStart + 1500;
    EXPECT_EQ(clock.now(), now);
    EXPECT_EQ(QDateTime::currentMSecsSinceEpoch(), now);
    EXPECT_EQ(msecsOf(CLOCK_REALTIME), now);
    EXPECT_EQ(msecsOf(CLOCK_REALTIME_COARSE), now);
    EXPECT_EQ(::time(nullptr), now / 1000);
    std::time_t stored = 0;
    EXPECT_EQ(::time(&stored), now / 1000);
    EXPECT_EQ(stored, now / 1000);
    struct timeval day = {};
    ::gettimeofday(&day, nullptr);
    EXPECT_EQ(static_cast<qint64>(day.tv_sec) * 1000 + day.tv_usec / 1000, now);
    EXPECT_EQ(std::chrono::system_clock::now().time_since_epoch(), std::chrono::milliseconds(now));
    EXPECT_EQ(elapsed.elapsed(), 1500);
    EXPECT_EQ(std::chrono::steady_clock::now() - steady, 1500ms);
    for (const clockid_t id :
         {CLOCK_MONOTONIC, CLOCK_MONOTONIC_COARSE, CLOCK_MONOTONIC_RAW, CLOCK_BOOTTIME})
        EXPECT_EQ(msecsOf(id), 11'500);
    EXPECT_EQ(clock.elapsed(), 1500ms);
}

TEST(VirtualClock, IsSeenByOtherThreads)
{
    VirtualClock clock(5000);
    qint64 seen = 0;
    std::thread([&seen] { seen = QDateTime::currentMSecsSinceEpoch(); }).join();
    EXPECT_EQ(seen, 5000);
}

TEST(VirtualClock, LetsTheRealClocksBackWhenItGoes)
{
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    {
        VirtualClock clock;
        clock.advance(1h);
    }
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    EXPECT_GE(after, before);
    EXPECT_LT(after, before + 600'000);
}

TEST(Advance, FiresASingleShotAtItsTimeAndNotBefore)
{
    VirtualClock clock;
    std::vector<qint64> times;
    QTimer::singleShot(100, Qt::PreciseTimer, [&] { times.push_back(clock.now()); });
    clock.advance(99ms);
    EXPECT_TRUE(times.empty());
    clock.advance(1ms);
    EXPECT_THAT(times, ElementsAre(VirtualClock::DefaultStart + 100));
}

TEST(Advance, FiresAPeriodicTimerAtEveryPeriodTheLastInstantIncluded)
{
    VirtualClock clock(0);
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    std::vector<qint64> times;
    QObject::connect(&timer, &QTimer::timeout, [&] { times.push_back(clock.now()); });
    timer.start(50);
    clock.advance(200ms);
    EXPECT_THAT(times, ElementsAre(50, 100, 150, 200));
    EXPECT_EQ(clock.now(), 200);
}

TEST(Advance, FiresTimersInTheOrderOfTheirTimes)
{
    VirtualClock clock;
    std::vector<int> order;
    QTimer::singleShot(30, Qt::PreciseTimer, [&] { order.push_back(30); });
    QTimer::singleShot(10, Qt::PreciseTimer, [&] { order.push_back(10); });
    QTimer::singleShot(20, Qt::PreciseTimer, [&] {
        order.push_back(20);
        QTimer::singleShot(5, Qt::PreciseTimer, [&] { order.push_back(25); });
    });
    clock.advance(30ms);
    EXPECT_THAT(order, ElementsAre(10, 20, 25, 30));
}

TEST(Advance, KeepsCoarseTimersWithinFivePercentAndTheSameEachTime)
{
    const auto firings = [] {
        VirtualClock clock(0);
        QTimer timer;
        std::vector<qint64> times;
        QObject::connect(&timer, &QTimer::timeout, [&] { times.push_back(clock.now()); });
        timer.start(1001);
        clock.advance(10s);
        return times;
    };
    const std::vector<qint64> first = firings();
    ASSERT_GE(first.size(), 9U);
    for (std::size_t i = 0; i < first.size(); ++i)
        EXPECT_NEAR(static_cast<double>(first[i]), 1001.0 * static_cast<double>(i + 1), 51.0);
    EXPECT_EQ(firings(), first);
}

TEST(Advance, TakesATenSecondHoldWithoutWaiting)
{
    VirtualClock clock;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    int ticks = 0;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(50);
    const auto spent = cpuTimeOf([&] { clock.advance(10s); });
    EXPECT_EQ(ticks, 200);
    EXPECT_EQ(clock.elapsed(), 10s);
    EXPECT_LT(spent, 5s);
}

TEST(Advance, PassesWithoutAnythingToDo)
{
    VirtualClock clock;
    clock.settle();
    const quint64 before = clock.wakeUps();
    clock.advance(24h);
    EXPECT_EQ(clock.elapsed(), 24h);
    EXPECT_EQ(clock.wakeUps(), before);
}

TEST(Advance, ReturnsAtTheTargetWithATimerBeyondIt)
{
    VirtualClock clock;
    clock.settle();
    const quint64 before = clock.wakeUps();
    bool isFired = false;
    QTimer::singleShot(1000, Qt::PreciseTimer, [&] { isFired = true; });
    clock.advance(999ms);
    EXPECT_EQ(clock.elapsed(), 999ms);
    EXPECT_FALSE(isFired);
    EXPECT_EQ(clock.wakeUps(), before);
    clock.advance(1ms);
    EXPECT_TRUE(isFired);
    EXPECT_EQ(clock.wakeUps(), before + 1);
}

TEST(Advance, RunsWhatBecomesDueAtTheTargetItself)
{
    VirtualClock clock;
    std::vector<int> order;
    QTimer::singleShot(10, Qt::PreciseTimer, [&] {
        order.push_back(1);
        QTimer::singleShot(0, [&] {
            order.push_back(2);
            QMetaObject::invokeMethod(
                qApp, [&] { order.push_back(3); }, Qt::QueuedConnection);
        });
    });
    clock.advance(10ms);
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
    EXPECT_EQ(clock.elapsed(), 10ms);
}

TEST(Advance, DeletesWhatIsToBeDeletedLater)
{
    VirtualClock clock;
    const QPointer<QObject> ofTest = new QObject;
    ofTest->deleteLater();
    QPointer<QObject> ofSlot = new QObject;
    QTimer::singleShot(5, Qt::PreciseTimer, [&] { ofSlot->deleteLater(); });
    clock.advance(0ms);
    EXPECT_FALSE(ofTest);
    clock.advance(5ms);
    EXPECT_FALSE(ofSlot);
}

TEST(Advance, LeavesDeferredDeletionsOfASlotToTheSlotsOwnEventLoop)
{
    VirtualClock clock;
    QEventLoop loop;
    const QPointer<QObject> object = new QObject;
    QTimer::singleShot(1, Qt::PreciseTimer, [&] {
        object->deleteLater();
        clock.advance(10ms);
        EXPECT_TRUE(object) << "as in a product, whose slot still uses it";
        loop.quit();
    });
    loop.exec();
    clock.settle();
    EXPECT_FALSE(object);
}

TEST(Advance, ServesDescriptorsWhileTimersRun)
{
    VirtualClock clock(0);
    const Pipe pipe;
    std::vector<qint64> times;
    QSocketNotifier notifier(pipe.reader(), QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, [&] {
        pipe.read();
        times.push_back(clock.now());
    });
    QTimer::singleShot(7, Qt::PreciseTimer, [&] { pipe.write(); });
    clock.advance(20ms);
    EXPECT_THAT(times, ElementsAre(7));
}

TEST(Advance, MayBeCalledFromASlot)
{
    VirtualClock clock(0);
    std::vector<qint64> times;
    QTimer::singleShot(10, Qt::PreciseTimer, [&] {
        clock.advance(15ms);
        times.push_back(clock.now());
    });
    QTimer::singleShot(20, Qt::PreciseTimer, [&] { times.push_back(clock.now()); });
    clock.advance(100ms);
    EXPECT_THAT(times, ElementsAre(20, 25));
    EXPECT_EQ(clock.now(), 100);
}

TEST(Advance, OutlastsALongerEventLoopOfASlot)
{
    VirtualClock clock(0);
    QTimer::singleShot(10, Qt::PreciseTimer, [] {
        QEventLoop loop;
        QTimer::singleShot(100, Qt::PreciseTimer, &loop, &QEventLoop::quit);
        loop.exec();
    });
    clock.advance(20ms);
    EXPECT_EQ(clock.now(), 110);
}

TEST(AdvanceDeathTest, TimeThatCannotMoveOnIsFatal)
{
    EXPECT_DEATH(
        {
            VirtualClock clock;
            QTimer timer;
            timer.start(0);
            clock.advance(1ms);
        },
        "events keep coming without time moving on");
}

TEST(Settle, RunsWhatIsReadyWithoutMovingTime)
{
    VirtualClock clock;
    const Pipe pipe;
    std::vector<int> done;
    QSocketNotifier notifier(pipe.reader(), QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, [&] {
        pipe.read();
        done.push_back(1);
    });
    QTimer::singleShot(0, [&] { done.push_back(2); });
    QTimer later;
    later.setTimerType(Qt::PreciseTimer);
    QObject::connect(&later, &QTimer::timeout, [&] { done.push_back(9); });
    later.start(1);
    QMetaObject::invokeMethod(
        qApp, [&] { done.push_back(3); }, Qt::QueuedConnection);
    const QPointer<QObject> object = new QObject;
    object->deleteLater();
    pipe.write();
    clock.settle();
    EXPECT_THAT(done, testing::UnorderedElementsAre(1, 2, 3));
    EXPECT_FALSE(object);
    EXPECT_EQ(clock.elapsed(), 0ms);
}

TEST(WaitUntil, StopsAtTheEventThatMakesTheConditionHold)
{
    VirtualClock clock(0);
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    int ticks = 0;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(50);
    EXPECT_TRUE(clock.waitUntil([&] { return ticks == 3; }));
    EXPECT_EQ(clock.now(), 150);
    EXPECT_EQ(ticks, 3);
    EXPECT_TRUE(clock.waitUntil([] { return true; }));
    EXPECT_EQ(clock.now(), 150);
}

TEST(WaitUntil, GivesUpAtTheTimeout)
{
    VirtualClock clock(0);
    EXPECT_FALSE(clock.waitUntil([] { return false; }, 250ms));
    EXPECT_EQ(clock.now(), 250);
    EXPECT_FALSE(clock.waitUntil([] { return false; }));
    EXPECT_EQ(clock.now(), 60'250);
}

TEST(WaitUntil, SeesAConditionThatHoldsAtTheTimeoutItself)
{
    VirtualClock clock(0);
    bool isFired = false;
    QTimer::singleShot(100, Qt::PreciseTimer, [&] { isFired = true; });
    EXPECT_TRUE(clock.waitUntil([&] { return isFired; }, 100ms));
}

TEST(WallClock, IsSteppedBothWaysWithoutTheMonotonicOne)
{
    VirtualClock clock(100'000);
    clock.advance(5ms);
    clock.stepWallClock(1h);
    EXPECT_EQ(clock.now(), 100'005 + 3'600'000);
    EXPECT_EQ(QDateTime::currentMSecsSinceEpoch(), clock.now());
    clock.stepWallClock(-2h);
    EXPECT_EQ(clock.now(), 100'005 - 3'600'000);
    EXPECT_EQ(msecsOf(CLOCK_MONOTONIC), 10'005);
    EXPECT_EQ(clock.elapsed(), 5ms);
}

TEST(WallClock, StepsDoNotDisturbTimers)
{
    VirtualClock clock(0);
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    int ticks = 0;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(50);
    clock.advance(75ms);
    clock.stepWallClock(24h);
    clock.advance(75ms);
    EXPECT_EQ(ticks, 3);
    clock.stepWallClock(-48h);
    clock.advance(50ms);
    EXPECT_EQ(ticks, 4);
}

TEST(VirtualClockDeathTest, MisuseIsFatal)
{
    EXPECT_DEATH(
        {
            VirtualClock first;
            VirtualClock second;
        },
        "only one may be alive at a time");
    EXPECT_DEATH(
        {
            VirtualClock clock;
            std::thread([&clock] { clock.settle(); }).join();
        },
        "on another thread");
    EXPECT_DEATH(
        {
            VirtualClock clock;
            const std::unique_ptr<QThread> thread(QThread::create([&clock] { clock.settle(); }));
            thread->start();
            thread->wait();
        },
        "on another thread");
}
