#include "TerminalText.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace Vorn::Workbench;

namespace {

using testing::ElementsAre;

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

std::vector<std::string> lines(const char *utf8, int width)
{
    std::vector<std::string> result;
    for (const QString &line : wrapped(text(utf8), width))
        result.push_back(line.toStdString());
    return result;
}

} // namespace

TEST(TerminalText, CountsColumns)
{
    EXPECT_EQ(textWidth(QString()), 0);
    EXPECT_EQ(textWidth(text("panel")), 5);
    EXPECT_EQ(textWidth(text("…→")), 2);
    EXPECT_EQ(textWidth(text("键盘")), 4);
    EXPECT_EQ(textWidth(text("e\u0301")), 1);
    EXPECT_EQ(textWidth(text("\U0001F3B5")), 2);
}

TEST(TerminalText, PadsByColumns)
{
    EXPECT_EQ(padded(text("ab"), 4), text("ab  "));
    EXPECT_EQ(padded(text("键"), 4), text("键  "));
    EXPECT_EQ(padded(text("abcde"), 4), text("abcde"));
}

TEST(TerminalText, LeavesOutTheMiddleOfALongName)
{
    EXPECT_EQ(elided(text("front-panel"), 11), text("front-panel"));
    EXPECT_EQ(elided(text("front-panel"), 10), text("front…anel"));
    EXPECT_EQ(elided(text("front-panel"), 9), text("fron…anel"));
    EXPECT_EQ(elided(text("front-panel"), 1), text("…"));
    EXPECT_EQ(elided(text("键盘键盘"), 6), text("键…盘")) << "a character is never halved";
    EXPECT_EQ(elided(text("\U0001F3B5\U0001F3B5\U0001F3B5"), 5), text("\U0001F3B5…\U0001F3B5"));
}

TEST(TerminalText, WrapsAtBlanks)
{
    EXPECT_THAT(lines("", 5), ElementsAre(""));
    EXPECT_THAT(lines("a b", 5), ElementsAre("a b"));
    EXPECT_THAT(lines("one two three", 7), ElementsAre("one two", "three"));
    EXPECT_THAT(lines("one two three", 8), ElementsAre("one two", "three"));
    EXPECT_THAT(lines("one  two", 4), ElementsAre("one", "two"));
    EXPECT_THAT(lines("one ", 3), ElementsAre("one"));
}

TEST(TerminalText, BreaksAWordThatIsWiderThanTheLine)
{
    EXPECT_THAT(lines("abcdefgh", 3), ElementsAre("abc", "def", "gh"));
    EXPECT_THAT(lines("a bcdefgh", 4), ElementsAre("a", "bcde", "fgh"));
    EXPECT_THAT(lines("键盘", 3), ElementsAre("键", "盘"));
    EXPECT_THAT(lines("键盘", 1), ElementsAre("键", "盘")) << "it always goes on";
}

TEST(TerminalText, WrapsAMegabyteInNoTime)
{
    EXPECT_EQ(wrapped(QString(1 << 20, QLatin1Char('x')), 80).size(), (1 << 20) / 80 + 1);
}
