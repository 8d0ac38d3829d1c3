#include "CpuTime.h"
#include "Pipe.h"
#include "VirtualClock.h"

#include <QEventLoop>
#include <QSignalSpy>
#include <QSocketNotifier>
#include <QTimer>

#include <gmock/gmock.h>

#include <chrono>
#include <ctime>
#include <fstream>
#include <poll.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace std::chrono_literals;
using Vorn::Sim::VirtualClock;

namespace {

bool isMainThreadAsleep()
{
    const std::string pid = std::to_string(getpid());
    std::ifstream file("/proc/self/task/" + pid + "/stat");
    std::string status;
    std::getline(file, status);
    // The state follows the name, which may contain anything.
    return status.find(") S ", status.rfind(')')) != std::string::npos;
}

// Writes once the main thread sleeps, so that its poll finds nothing ready and really waits.
std::thread writeLater(const Pipe &pipe)
{
    return std::thread([&pipe] {
        while (!isMainThreadAsleep())
            std::this_thread::yield();
        pipe.write();
    });
}

} // namespace

TEST(OtherEventLoops, RunInVirtualTime)
{
    VirtualClock clock(0);
    QEventLoop loop;
    QTimer::singleShot(3'600'000, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    const auto spent = cpuTimeOf([&] { loop.exec(); });
    EXPECT_EQ(clock.now(), 3'600'000);
    EXPECT_LT(spent, 5s);
}

TEST(OtherEventLoops, LetASignalSpyWait)
{
    VirtualClock clock(0);
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QSignalSpy spy(&timer, &QTimer::timeout);
    timer.start(2000);
    EXPECT_TRUE(spy.wait(5000));
    EXPECT_EQ(clock.now(), 2000);
    timer.stop();
    EXPECT_FALSE(spy.wait(5000));
    EXPECT_NEAR(static_cast<double>(clock.now()), 7000.0, 250.0);
}

TEST(OtherEventLoops, ReallyWaitForAnotherThreadWithoutATimer)
{
    VirtualClock clock(0);
    const Pipe pipe;
    QEventLoop loop;
    QSocketNotifier notifier(pipe.reader(), QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &loop, &QEventLoop::quit);
    std::thread thread = writeLater(pipe);
    loop.exec();
    thread.join();
    EXPECT_EQ(clock.now(), 0);
}

TEST(OtherThreads, PollInRealTime)
{
    VirtualClock clock(0);
    int result = -1;
    std::thread([&result] {
        const Pipe pipe;
        pollfd descriptor = {pipe.reader(), POLLIN, 0};
        result = ::poll(&descriptor, 1, 2);
    }).join();
    EXPECT_EQ(result, 0);
    EXPECT_EQ(clock.now(), 0);
}

TEST(Poll, OnTheClocksThreadTakesVirtualTime)
{
    VirtualClock clock(0);
    const Pipe pipe;
    pollfd descriptor = {pipe.reader(), POLLIN, 0};
    EXPECT_EQ(::poll(&descriptor, 1, 5000), 0);
    EXPECT_EQ(clock.now(), 5000);
    pipe.write();
    EXPECT_EQ(::poll(&descriptor, 1, 5000), 1);
    EXPECT_EQ(clock.now(), 5000);
    EXPECT_EQ(::poll(nullptr, 0, 0), 0);
    EXPECT_EQ(clock.now(), 5000);
    const timespec time = {1, 500'000'000};
    EXPECT_EQ(::ppoll(nullptr, 0, &time, nullptr), 0);
    EXPECT_EQ(clock.now(), 6500);
}

TEST(WakeUps, AreCountedForTimersAndDescriptors)
{
    VirtualClock clock;
    clock.settle();
    const quint64 start = clock.wakeUps();
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    timer.start(50);
    clock.advance(1s);
    EXPECT_EQ(clock.wakeUps(), start + 20);
    timer.stop();
    const Pipe pipe;
    QSocketNotifier notifier(pipe.reader(), QSocketNotifier::Read);
    int activations = 0;
    QObject::connect(&notifier, &QSocketNotifier::activated, [&] {
        pipe.read();
        ++activations;
    });
    clock.settle();
    const quint64 before = clock.wakeUps();
    pipe.write();
    clock.settle();
    EXPECT_EQ(activations, 1);
    EXPECT_EQ(clock.wakeUps(), before + 1);
}

TEST(WakeUps, AreOneForEachTick)
{
    const std::pair<Qt::TimerType, std::vector<int>> timers[] = {
        {Qt::PreciseTimer, {1, 2, 7, 50, 1000}},
        {Qt::CoarseTimer, {1, 7, 20, 33, 50, 100, 330, 1000, 1001}},
        {Qt::VeryCoarseTimer, {1000, 20'000}},
    };
    VirtualClock clock;
    for (const auto &[type, intervals] : timers) {
        for (const int interval : intervals) {
            clock.settle();
            const quint64 before = clock.wakeUps();
            QTimer timer;
            timer.setTimerType(type);
            quint64 ticks = 0;
            QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
            timer.start(interval);
            clock.advance(std::chrono::milliseconds(20 * interval));
            EXPECT_NEAR(static_cast<double>(ticks), 20, 1) << "of " << interval << " ms";
            EXPECT_EQ(clock.wakeUps() - before, ticks) << "of " << interval << " ms";
        }
    }
}

TEST(WakeUps, AreNotCountedForWhatIsReadyWithoutASleep)
{
    VirtualClock clock;
    clock.settle();
    const quint64 before = clock.wakeUps();
    QTimer timer;
    timer.setSingleShot(true);
    int timeouts = 0;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++timeouts; });
    timer.start(0);
    clock.advance(1s);
    EXPECT_EQ(timeouts, 1);
    EXPECT_EQ(clock.wakeUps(), before);
}

TEST(WakeUps, AreCountedForPollsThatMayWait)
{
    VirtualClock clock;
    const Pipe pipe;
    pollfd descriptor = {pipe.reader(), POLLIN, 0};
    EXPECT_EQ(::poll(&descriptor, 1, 0), 0);
    EXPECT_EQ(clock.wakeUps(), 0);
    EXPECT_EQ(::poll(&descriptor, 1, 5), 0);
    EXPECT_EQ(clock.wakeUps(), 1);
    pipe.write();
    EXPECT_EQ(::poll(&descriptor, 1, 0), 1);
    EXPECT_EQ(clock.wakeUps(), 1);
    EXPECT_EQ(::poll(&descriptor, 1, 5), 1);
    EXPECT_EQ(clock.wakeUps(), 2);
    EXPECT_EQ(::poll(&descriptor, 1, -1), 1);
    EXPECT_EQ(clock.wakeUps(), 3);
}

TEST(WakeUps, AreCountedForRealWaits)
{
    VirtualClock clock;
    const Pipe pipe;
    pollfd descriptor = {pipe.reader(), POLLIN, 0};
    std::thread thread = writeLater(pipe);
    EXPECT_EQ(::poll(&descriptor, 1, -1), 1);
    thread.join();
    EXPECT_EQ(clock.wakeUps(), 1);
}
