#include "Progress.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

#include <ctime>
#include <memory>

using namespace Vorn::Workbench;

namespace {

/// Standard error is a terminal, eleven columns wide.
class ProgressTest : public testing::Test
{
protected:
    void SetUp() override
    {
        qputenv("TERM", "xterm");
        int terminal = -1;
        const winsize size = {25, 11, 0, 0};
        ASSERT_EQ(openpty(&m_screen, &terminal, nullptr, nullptr, &size), 0);
        fcntl(m_screen, F_SETFL, O_NONBLOCK);
        dup2(terminal, STDERR_FILENO);
        close(terminal);
    }
    void TearDown() override
    {
        dup2(m_saved, STDERR_FILENO);
        close(m_saved);
        close(m_screen);
    }

    /// What was shown since the last time.
    std::string screen() const
    {
        std::fflush(stderr);
        char bytes[1000] = {};
        const ssize_t size = read(m_screen, bytes, sizeof bytes);
        return size > 0 ? std::string(bytes, static_cast<std::size_t>(size)) : std::string();
    }

    /// Works until it is time to show something.
    static bool becomesDue(const Progress &progress)
    {
        const std::clock_t end = std::clock() + 5 * CLOCKS_PER_SEC;
        while (!progress.isDue() && std::clock() < end) {
        }
        return progress.isDue();
    }

private:
    const int m_saved = dup(STDERR_FILENO);
    int m_screen = -1;
};

} // namespace

TEST_F(ProgressTest, IsShownNowAndThenAndClearedAtTheEnd)
{
    const std::clock_t begin = std::clock();
    auto progress = std::make_unique<Progress>();
    progress->show("too early");
    EXPECT_EQ(screen(), "");
    ASSERT_TRUE(becomesDue(*progress));
    // Both moments are taken in whole milliseconds.
    EXPECT_GE(std::clock() - begin, 99 * CLOCKS_PER_SEC / 1000);
    progress->show("10 of 20");
    EXPECT_EQ(screen(), "\r\033[K10 of 20");
    EXPECT_FALSE(progress->isDue());
    progress->clear();
    EXPECT_EQ(screen(), "\r\033[K");
    progress->clear();
    EXPECT_EQ(screen(), "") << "there is nothing to be cleared";
    ASSERT_TRUE(becomesDue(*progress));
    // Shorter than a line, so that it does not wrap, and without what controls a terminal.
    progress->show("a\x1b 0123456789");
    EXPECT_EQ(screen(), "\r\033[Ka\\u00…6789");
    progress.reset();
    EXPECT_EQ(screen(), "\r\033[K");
}

TEST_F(ProgressTest, IsNotShownToWhatUnderstandsNoSequences)
{
    qputenv("TERM", "dumb");
    {
        Progress progress;
        EXPECT_FALSE(becomesDue(progress));
    }
    EXPECT_EQ(screen(), "");
    qputenv("TERM", "xterm");
}
