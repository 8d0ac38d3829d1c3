#include "Terminal.h"

#include <QTest>
#include <QThread>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

using namespace Vorn::Workbench;

namespace {

/// Puts a new terminal in the place of the standard input.
class TerminalInput
{
public:
    TerminalInput()
        : m_saved(dup(STDIN_FILENO))
    {
        int terminal = -1;
        EXPECT_EQ(openpty(&m_keyboard, &terminal, nullptr, nullptr, nullptr), 0);
        dup2(terminal, STDIN_FILENO);
        close(terminal);
    }
    ~TerminalInput()
    {
        dup2(m_saved, STDIN_FILENO);
        close(m_saved);
        close(m_keyboard);
    }
    TerminalInput(const TerminalInput &) = delete;
    TerminalInput &operator=(const TerminalInput &) = delete;

    void type(char key) const { EXPECT_EQ(write(m_keyboard, &key, 1), 1); }

    static bool isLineBuffered()
    {
        termios state = {};
        return tcgetattr(STDIN_FILENO, &state) == 0 && (state.c_lflag & ICANON) != 0
            && (state.c_lflag & ECHO) != 0;
    }

private:
    int m_saved;
    int m_keyboard = -1;
};

} // namespace

TEST(Colour, IsUsedOnATerminalUnlessToldOtherwise)
{
    const TerminalInput terminal;
    qunsetenv("NO_COLOR");
    qputenv("TERM", "xterm");
    EXPECT_TRUE(isColoured(Colour::Auto, STDIN_FILENO));
    EXPECT_FALSE(isColoured(Colour::Never, STDIN_FILENO));
    qputenv("TERM", "dumb");
    EXPECT_FALSE(isColoured(Colour::Auto, STDIN_FILENO));
    qputenv("TERM", "xterm");
    qputenv("NO_COLOR", "1");
    EXPECT_FALSE(isColoured(Colour::Auto, STDIN_FILENO));
    EXPECT_TRUE(isColoured(Colour::Always, STDIN_FILENO));
    qunsetenv("NO_COLOR");
}

TEST(Colour, IsNotUsedInAPipe)
{
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    EXPECT_FALSE(isColoured(Colour::Auto, ends[1]));
    EXPECT_TRUE(isColoured(Colour::Always, ends[1]));
    close(ends[0]);
    close(ends[1]);
}

TEST(Interruption, IsNoticedOnce)
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

TEST(Interruption, LeavesTheSignalsAsTheyWereWhenNoneCame)
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

TEST(Interruption, TakesTheSameOneThatIsPassedOnByAnotherProgram)
{
    int calls = 0;
    const Interruption interruption([&] { ++calls; });
    std::raise(SIGINT);
    std::raise(SIGINT);
    std::raise(SIGTERM);
    EXPECT_TRUE(QTest::qWaitFor([&] { return calls == 1; }));
    EXPECT_TRUE(Interruption::isRequested());
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

TEST(Keyboard, GivesSingleKeysOfATerminalAndLeavesItAsItWas)
{
    const TerminalInput terminal;
    ASSERT_TRUE(TerminalInput::isLineBuffered());
    {
        std::string keys;
        const Keyboard keyboard([&](char key) { keys += key; });
        EXPECT_FALSE(TerminalInput::isLineBuffered());
        terminal.type('r');
        EXPECT_TRUE(QTest::qWaitFor([&] { return keys == "r"; }));
        terminal.type('2');
        EXPECT_TRUE(QTest::qWaitFor([&] { return keys == "r2"; }));
    }
    EXPECT_TRUE(TerminalInput::isLineBuffered());
}

TEST(Keyboard, ReadsAPipeToItsEnd)
{
    const int saved = dup(STDIN_FILENO);
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
    ASSERT_EQ(write(ends[1], "\nq", 2), 2);
    close(ends[1]);
    std::string keys;
    {
        const Keyboard keyboard([&](char key) { keys += key; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return keys == "\nq"; }));
        // The end of the pipe is no key, and is read once.
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(keys, "\nq");
    dup2(saved, STDIN_FILENO);
    close(saved);
}
