#include "InputSubsystem.h"
#include "OpenNode.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

#include <csignal>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>

using namespace Vorn::Sim;
using testing::AnyOf;
using testing::Each;

namespace {

const DeviceDescription panel = DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK});

/// For tests that leave descriptors open on purpose.
class NoWarnings
{
public:
    NoWarnings() { qInstallMessageHandler(ignore); }
    ~NoWarnings() { qInstallMessageHandler(nullptr); }
    NoWarnings(const NoWarnings &) = delete;
    NoWarnings &operator=(const NoWarnings &) = delete;

private:
    static void ignore(QtMsgType, const QMessageLogContext &, const QString &) { }
};

} // namespace

TEST(InputSubsystem, EndsTheReadsThatWaitWhenItIsDestroyed)
{
    const NoWarnings quiet;
    for (int i = 0; i < 20; ++i) {
        auto subsystem = std::make_unique<InputSubsystem>();
        const OpenNode node(subsystem->plug(0, panel).path(), O_RDONLY);
        int errors[3] = {};
        std::vector<std::thread> readers;
        for (int &error : errors)
            readers.emplace_back([&node, &error] { error = node.readError(); });
        subsystem.reset();
        for (std::thread &reader : readers)
            reader.join();
        // The latter if it came too late to wait.
        EXPECT_THAT(errors, Each(AnyOf(ENODEV, EAGAIN)));
    }
}

// Whether a call comes before, during or after the destruction, it is served or it is not.
TEST(InputSubsystem, CanBeDestroyedWhileOtherThreadsCallIt)
{
    const NoWarnings quiet;
    std::atomic<bool> isDone{false};
    std::atomic<int> rounds{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&] {
            while (!isDone) {
                const OpenNode node(QStringLiteral("/dev/input/event0"));
                struct stat status;
                const bool isThere = ::stat("/dev/input/event0", &status) == 0;
                if (isThere && node.isOpen() && S_ISCHR(status.st_mode))
                    node.read();
                ++rounds;
            }
        });
    }
    for (int i = 0; i < 50; ++i) {
        InputSubsystem subsystem;
        InputNode &node = subsystem.plug(0, panel);
        const int before = rounds;
        node.press(KEY_OK);
        while (rounds < before + 4)
            std::this_thread::yield();
    }
    isDone = true;
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_GE(rounds, 200);
}

TEST(InputSubsystem, LeavesDescriptorsBehindWhoseReadsFail)
{
    const NoWarnings quiet;
    auto subsystem = std::make_unique<InputSubsystem>();
    InputNode &panelNode = subsystem->plug(0, panel);
    const OpenNode node(panelNode.path(), O_RDONLY);
    const OpenNode other(panelNode.path(), O_RDONLY);
    panelNode.press(KEY_OK);
    subsystem.reset();
    for (const OpenNode *left : {&node, &other}) {
        EXPECT_FALSE(left->isReadable());
        EXPECT_NE(::fcntl(left->fd(), F_GETFL) & O_NONBLOCK, 0) << "a read would wait for ever";
    }
    EXPECT_EQ(node.readError(), EAGAIN);
}

TEST(InputSubsystem, DoesNotWaitForAReadThatASignalHasEnded)
{
    const NoWarnings quiet;
    auto subsystem = std::make_unique<InputSubsystem>();
    const OpenNode node(subsystem->plug(0, panel).path(), O_RDONLY);
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(::sigaction(SIGUSR1, &action, &before), 0);
    std::atomic<bool> hasReturned{false};
    std::thread reader([&] {
        EXPECT_EQ(node.readError(), EINTR);
        hasReturned = true;
    });
    while (!hasReturned) {
        ::pthread_kill(reader.native_handle(), SIGUSR1);
        std::this_thread::yield();
    }
    reader.join();
    ::sigaction(SIGUSR1, &before, nullptr);
    subsystem.reset();
    EXPECT_EQ(node.readError(), EAGAIN);
}

TEST(InputSubsystemDeathTest, MisuseIsFatal)
{
    EXPECT_DEATH(
        {
            InputSubsystem first;
            InputSubsystem second;
        },
        "only one may be alive at a time");
    EXPECT_DEATH(
        {
            InputSubsystem subsystem;
            subsystem.plug(0, panel);
            subsystem.plug(0, panel);
        },
        "already plugged in at /dev/input/event0");
    EXPECT_DEATH(
        {
            InputSubsystem subsystem;
            subsystem.unplug(6);
        },
        "no device is plugged in at /dev/input/event6");
    EXPECT_DEATH(
        {
            InputSubsystem subsystem;
            subsystem.node(-1);
        },
        "no node with the number -1");
}

TEST(InputSubsystemDeathTest, DescriptorsLeftOpenAreWarnedOf)
{
    EXPECT_EXIT(
        {
            auto subsystem = std::make_unique<InputSubsystem>();
            const OpenNode open(subsystem->plug(1, panel).path());
            subsystem.reset();
            std::exit(0);
        },
        testing::ExitedWithCode(0),
        "^InputSubsystem: 1 descriptor\\(s\\) of /dev/input/event1 left open");
}
