#include "SingleKeys.h"

#include "Interruption.h"
#include "TerminalInput.h"

#include <QThread>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

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
    for (const int signal : {SIGQUIT, SIGABRT}) {
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
