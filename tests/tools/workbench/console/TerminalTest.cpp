#include "Terminal.h"

#include "TerminalInput.h"

#include <QByteArray>
#include <QtGlobal>

#include <gmock/gmock.h>

#include <unistd.h>

using namespace Vorn::Workbench;

TEST(Colour, IsUsedOnATerminalUnlessToldOtherwise)
{
    const TerminalInput terminal;
    qunsetenv("NO_COLOR");
    qputenv("TERM", "xterm");
    EXPECT_TRUE(isColoured(Colour::Auto, STDIN_FILENO));
    EXPECT_FALSE(isColoured(Colour::Never, STDIN_FILENO));
    qputenv("TERM", "dumb");
    EXPECT_FALSE(isColoured(Colour::Auto, STDIN_FILENO));
    qunsetenv("TERM");
    EXPECT_FALSE(isColoured(Colour::Auto, STDIN_FILENO));
    EXPECT_TRUE(isColoured(Colour::Always, STDIN_FILENO));
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
