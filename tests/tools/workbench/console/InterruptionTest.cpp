#include "Interruption.h"
#include "InputFile.h"

#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <thread>

using namespace Vorn::Workbench;

namespace {

class InterruptionTest : public testing::Test
{
protected:
    // A request stays until the process ends, or until the next one is waited for: the tests after
    // these would find themselves interrupted.
    void TearDown() override { const Interruption forgetsTheLast; }
};

} // namespace

TEST_F(InterruptionTest, IsNoticedOnce)
{
    int calls = 0;
    {
        const Interruption interruption([&] { ++calls; });
        EXPECT_FALSE(Interruption::isRequested());
        std::raise(SIGINT);
        EXPECT_TRUE(Interruption::isRequested());
        EXPECT_TRUE(QTest::qWaitFor([&] { return calls == 1; }));
    }
    std::raise(SIGINT);
    const Interruption next;
    EXPECT_FALSE(Interruption::isRequested());
}

// A signal that comes just before the wait interrupts no system call.
TEST_F(InterruptionTest, EndsTheWaitForAPipeThatBeginsAfterTheSignal)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(mkfifo(qPrintable(path), 0600), 0);
    const Interruption interruption;
    InputFile file;
    ASSERT_EQ(file.openForReading(path), QString());
    const int writer = open(qPrintable(path), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(writer, 0);
    std::raise(SIGTERM);

    const QByteArray writes = "while it is waited for, so that the test ends in any case";
    std::thread later([writer, &writes] {
        pollfd nothing = {-1, 0, 0};
        poll(&nothing, 1, 1000);
        EXPECT_EQ(write(writer, writes.constData(), static_cast<std::size_t>(writes.size())),
                  writes.size());
    });
    char byte = 0;
    EXPECT_EQ(file.read(&byte, 1), -1);
    EXPECT_EQ(file.errorString(), QLatin1String("interrupted"));
    later.join();
    close(writer);
}

TEST_F(InterruptionTest, LeavesTheSignalsAsTheyWereWhenNoneCame)
{
    {
        const Interruption interruption;
    }
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        EXPECT_EQ(action.sa_handler, SIG_DFL) << signal;
    }
}

TEST_F(InterruptionTest, TakesTheSameOneThatIsPassedOnByAnotherProgram)
{
    int calls = 0;
    const Interruption interruption([&] { ++calls; });
    std::raise(SIGINT);
    std::raise(SIGINT);
    std::raise(SIGTERM);
    EXPECT_TRUE(QTest::qWaitFor([&] { return calls == 1; }));
    EXPECT_TRUE(Interruption::isRequested());
}

TEST_F(InterruptionTest, ComesOfEverySignalThatAsksToEnd)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        int calls = 0;
        const Interruption interruption([&] { ++calls; });
        EXPECT_FALSE(Interruption::isRequested());
        errno = ENOENT;
        std::raise(signal);
        EXPECT_EQ(errno, ENOENT);
        EXPECT_TRUE(Interruption::isRequested()) << signal;
        EXPECT_TRUE(QTest::qWaitFor([&] { return calls == 1; })) << signal;
        // One signal at a time, so that none is taken for a repetition of another.
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        for (const int other : {SIGINT, SIGTERM, SIGHUP})
            EXPECT_EQ(sigismember(&action.sa_mask, other), 1) << signal << ' ' << other;
    }
}

TEST_F(InterruptionTest, MayBeRequestedByTheProgramItself)
{
    const Interruption interruption;
    EXPECT_FALSE(Interruption::isRequested());
    Interruption::request();
    EXPECT_TRUE(Interruption::isRequested());
}

TEST_F(InterruptionTest, LeavesNoDescriptorBehind)
{
    const int next = dup(STDIN_FILENO);
    close(next);
    {
        const Interruption interruption([] {});
        const int during = dup(STDIN_FILENO);
        EXPECT_NE(during, next);
        close(during);
    }
    const int after = dup(STDIN_FILENO);
    EXPECT_EQ(after, next);
    close(after);
}

TEST(InterruptionDeathTest, EndsAProcessThatDoesNotReactTheSecondTime)
{
    EXPECT_EXIT(
        {
            const Interruption interruption;
            std::raise(SIGINT);
            QThread::msleep(Interruption::repetitionMs + 50);
            std::raise(SIGINT);
            std::exit(0);
        },
        testing::KilledBySignal(SIGINT), "");
}
