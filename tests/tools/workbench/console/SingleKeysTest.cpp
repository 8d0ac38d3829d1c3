#include "SingleKeys.h"

#include "Interruption.h"
#include "TerminalInput.h"
#include "TerminalJob.h"

#include <QThread>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

using namespace Vorn::Workbench;

namespace {

class SingleKeysDeathTest : public testing::Test
{
protected:
    // The terminal is shared with the process that dies.
    void TearDown() override { EXPECT_TRUE(TerminalInput::isLineBuffered()); }

private:
    const TerminalInput m_terminal;
};

void confirmSingleKeys()
{
    if (!SingleKeys::areOn() || TerminalInput::isLineBuffered())
        std::_Exit(4);
}

} // namespace

TEST(SingleKeys, AreLeftAloneWhereNobodySeesWhatTheyDo)
{
    const TerminalInput terminal;
    const int elsewhere = open("/dev/null", O_WRONLY);
    const SingleKeys keys(elsewhere);
    EXPECT_FALSE(SingleKeys::areOn());
    EXPECT_TRUE(TerminalInput::isLineBuffered());
    close(elsewhere);
}

TEST(SingleKeys, TakeOneKeyAtATimeAndShowNone)
{
    const TerminalInput terminal;
    termios before = {};
    tcgetattr(STDIN_FILENO, &before);
    // As another program may have left it.
    before.c_cc[VMIN] = 4;
    before.c_cc[VTIME] = 3;
    tcsetattr(STDIN_FILENO, TCSANOW, &before);
    {
        const SingleKeys keys(STDIN_FILENO);
        EXPECT_TRUE(SingleKeys::areOn());
        termios during = {};
        tcgetattr(STDIN_FILENO, &during);
        EXPECT_EQ(during.c_lflag, before.c_lflag & ~static_cast<tcflag_t>(ICANON | ECHO));
        EXPECT_EQ(during.c_cc[VMIN], 1);
        EXPECT_EQ(during.c_cc[VTIME], 0);
        EXPECT_EQ(during.c_iflag, before.c_iflag);
    }
    EXPECT_FALSE(SingleKeys::areOn());
    termios after = {};
    tcgetattr(STDIN_FILENO, &after);
    EXPECT_EQ(after.c_lflag, before.c_lflag);
    EXPECT_EQ(after.c_cc[VMIN], 4);
    EXPECT_EQ(after.c_cc[VTIME], 3);
    for (const int signal : {SIGTSTP, SIGCONT}) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        EXPECT_EQ(action.sa_handler, SIG_DFL) << signal;
    }
}

TEST(SingleKeys, DisturbNobodyWhoIsGoingOn)
{
    const TerminalInput terminal;
    const SingleKeys keys(STDIN_FILENO);
    errno = 0;
    std::raise(SIGCONT);
    EXPECT_EQ(errno, 0);
    errno = ENOENT;
    std::raise(SIGCONT);
    EXPECT_EQ(errno, ENOENT);
    SingleKeys::undo();
    EXPECT_EQ(errno, ENOENT);
    EXPECT_TRUE(TerminalInput::isLineBuffered());
    // Undone, they are not back when the process goes on.
    std::raise(SIGCONT);
    EXPECT_TRUE(TerminalInput::isLineBuffered());
}

TEST(SingleKeys, AreNotUndoneTwice)
{
    const TerminalInput terminal;
    {
        const SingleKeys keys(STDIN_FILENO);
    }
    termios others = {};
    tcgetattr(STDIN_FILENO, &others);
    others.c_lflag ^= static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSANOW, &others);
    SingleKeys::undo();
    termios after = {};
    tcgetattr(STDIN_FILENO, &after);
    EXPECT_EQ(after.c_lflag, others.c_lflag);
}

TEST(SingleKeys, LeaveTheTerminalToOthersWhileTheyAreStopped)
{
    const int status = TerminalJob::run(
        TerminalJob::Place::Foreground,
        [] {
            const SingleKeys keys(STDIN_FILENO);
            // Twice: after the first time everything is as before.
            for (int i = 0; i < 2; ++i) {
                errno = ENOENT;
                std::raise(SIGTSTP);
                if (errno != ENOENT || TerminalInput::isLineBuffered())
                    return 10;
            }
            return 0;
        },
        [](TerminalJob *job) {
            for (int i = 0; i < 2; ++i) {
                if (job->stopped() != SIGTSTP || !TerminalInput::isLineBuffered())
                    return 20;
                job->goOn();
            }
            return job->status();
        });
    EXPECT_EQ(status, 0);
}

TEST(SingleKeys, BeginWhenTheyComeToTheForeground)
{
    const int status = TerminalJob::run(
        TerminalJob::Place::Background,
        [] {
            const SingleKeys keys(STDIN_FILENO);
            if (!SingleKeys::areOn() || !TerminalInput::isLineBuffered())
                return 10;
            std::raise(SIGSTOP);
            return TerminalInput::isLineBuffered() ? 11 : 0;
        },
        [](TerminalJob *job) {
            // It is not stopped for touching the terminal.
            if (job->stopped() != SIGSTOP || !TerminalInput::isLineBuffered())
                return 20;
            job->bringTo(TerminalJob::Place::Foreground);
            job->goOn();
            return job->status();
        });
    EXPECT_EQ(status, 0);
}

TEST(SingleKeys, LeaveTheTerminalAloneInTheBackground)
{
    const int status = TerminalJob::run(
        TerminalJob::Place::Foreground,
        [] {
            const SingleKeys keys(STDIN_FILENO);
            std::raise(SIGTSTP);
            return TerminalInput::isLineBuffered() ? 0 : 11;
        },
        [](TerminalJob *job) {
            if (job->stopped() != SIGTSTP)
                return 20;
            job->bringTo(TerminalJob::Place::Background);
            job->goOn();
            const int itsStatus = job->status();
            return TerminalInput::isLineBuffered() ? itsStatus : 21;
        });
    EXPECT_EQ(status, 0);
}

TEST_F(SingleKeysDeathTest, AreUndoneByExit)
{
    EXPECT_EXIT(
        {
            const SingleKeys keys(STDIN_FILENO);
            confirmSingleKeys();
            std::exit(3);
        },
        testing::ExitedWithCode(3), "");
}

TEST_F(SingleKeysDeathTest, AreUndoneByAFatalSignal)
{
    for (const int signal : {SIGQUIT, SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL}) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        // A sanitizer has handlers of its own.
        if (action.sa_handler != SIG_DFL)
            continue;
        EXPECT_EXIT(
            {
                const SingleKeys keys(STDIN_FILENO);
                confirmSingleKeys();
                std::raise(signal);
            },
            testing::KilledBySignal(signal), "");
    }
}

TEST_F(SingleKeysDeathTest, AreUndoneByTheSignalThatKillsAProcessThatDoesNotReact)
{
    EXPECT_EXIT(
        {
            const Interruption interruption;
            const SingleKeys keys(STDIN_FILENO);
            confirmSingleKeys();
            std::raise(SIGTERM);
            QThread::msleep(Interruption::repetitionMs + 50);
            std::raise(SIGTERM);
        },
        testing::KilledBySignal(SIGTERM), "");
}
