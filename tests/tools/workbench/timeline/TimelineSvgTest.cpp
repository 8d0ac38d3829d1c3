#include "TimelineSvg.h"

#include "SessionEntries.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using namespace Vorn::Test;

namespace { } // namespace

TEST(TimelineSvg, ReplacesWhatXmlCannotHold)
{
    QString text = QStringLiteral("a<b>&\"'");
    for (const int bad : {0x0, 0x1b, 0xd800, 0xffff})
        text += QChar(bad);
    const Picture picture = draw({{0, SessionStart{text, text, 0}},
                                  plugged(0, front, "\x01\x02"),
                                  key(1, KEY_A, 1),
                                  {2, IdentifierSelected{text}},
                                  {3, Remark{text}},
                                  {4, ExpectationChecked{text, 1, text, false, text}}});
    EXPECT_THAT(picture.root().title.toStdString(), testing::StartsWith("a<b>&\"'"));
    EXPECT_THAT(picture.root().title.toStdString(),
                testing::HasSubstr(R"(\u0000\u001b\ud800\uffff)"));
}

TEST(TimelineSvg, LetsNoNameTurnOrHideAText)
{
    const QByteArray svg = timelineSvg({{0, SessionStart{"a", "p", 0}},
                                        plugged(0, front, "pa\xe2\x80\xaenel\xc2\x9b"),
                                        key(1, KEY_A, 1),
                                        {2, IdentifierSelected{"i\xe2\x81\xa6"}},
                                        {3, Remark{"two\nlines\xe2\x80\x8f"}}},
                                       {});
    for (const QChar character : QString::fromUtf8(svg))
        EXPECT_TRUE(character == '\n' || character.isPrint()) << character.unicode();
    EXPECT_THAT(Picture(svg).texts("device-name"), testing::ElementsAre(R"(pa\u202enel\u009b)"));
    EXPECT_THAT(Picture(svg).texts("flag-label"), testing::Contains(R"(two\nlines\u200f)"));
}

TEST(TimelineSvg, KeepsCharactersBeyondTheBasicPlane)
{
    TimelineSvg svg(10, 10, QString::fromUtf8("a 🎵 b"), {});
    EXPECT_EQ(Picture(svg.finished()).root().title.toStdString(), "a 🎵 b");
}

TEST(TimelineSvg, WritesTenthsOfAPixel)
{
    TimelineSvg svg(10, 10, "t", "d");
    svg.line(1.26, -0.04, 3, 4.96, "grid");
    const auto lines = Picture(svg.finished()).ofClass("grid");
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(lines.first().attributes.value("x1").toStdString(), "1.3");
    EXPECT_EQ(lines.first().attributes.value("y1").toStdString(), "0");
    EXPECT_EQ(lines.first().attributes.value("x2").toStdString(), "3");
    EXPECT_EQ(lines.first().attributes.value("y2").toStdString(), "5");
}

TEST(TimelineSvg, MarksTextsThatAreCut)
{
    EXPECT_EQ(TimelineSvg::shortened("abcd", 4).toStdString(), "abcd");
    EXPECT_EQ(TimelineSvg::shortened("abcde", 4).toStdString(), "abc…");
}
