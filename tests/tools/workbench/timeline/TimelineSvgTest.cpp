#include "TimelineSvg.h"

#include "SessionEntries.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using namespace Vorn::Test;

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

TEST(TimelineSvg, WritesEachElementWithItsClassItsPlaceAndItsTitle)
{
    TimelineSvg svg(300, 200.5, "Title", "Description");
    svg.rectangle(1, 2, 3, 4, "bar");
    svg.rectangle(1, 2, 3, 4, "bar", "a bar");
    svg.line(5, 6, 7, 8, "axis", "an axis");
    svg.shape(9, 10, "M 0 0 L 1 1", "flag", "two\nlines");
    svg.text(11, 12, "words", "tick", TimelineSvg::Anchor::Middle);
    svg.text(13, 14, "more <words>", "event", TimelineSvg::Anchor::End, "an event");
    svg.text(15, 16, "start", "lane", TimelineSvg::Anchor::Start);
    const QString text = QString::fromUtf8(svg.finished());
    EXPECT_THAT(text.section("<title>Title", 0, 0).toStdString(),
                testing::EndsWith("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"300\" "
                                  "height=\"200.5\" viewBox=\"0 0 300 200.5\" role=\"img\">\n "));
    EXPECT_THAT(text.toStdString(),
                testing::HasSubstr("<title>Title</title>\n <desc>Description</desc>\n <style>"));
    EXPECT_EQ(text.section("</style>\n", 1).toStdString(),
              R"svg( <rect class="paper" x="0" y="0" width="300" height="200.5"/>
 <rect class="bar" x="1" y="2" width="3" height="4"/>
 <rect class="bar" x="1" y="2" width="3" height="4">
  <title>a bar</title>
 </rect>
 <line class="axis" x1="5" y1="6" x2="7" y2="8">
  <title>an axis</title>
 </line>
 <path class="flag" transform="translate(9 10)" d="M 0 0 L 1 1">
  <title>two
lines</title>
 </path>
 <text class="tick" x="11" y="12" text-anchor="middle">words</text>
 <g>
  <title>an event</title>
  <text class="event" x="13" y="14" text-anchor="end">more &lt;words&gt;</text>
 </g>
 <text class="lane" x="15" y="16">start</text>
</svg>
)svg");
}

TEST(TimelineSvg, CutsNoCharacterInHalf)
{
    // A note takes two units of UTF-16.
    const QString notes = QString::fromUtf8("ab🎵🎵");
    EXPECT_EQ(TimelineSvg::shortened(notes, 6).toStdString(), "ab🎵🎵");
    EXPECT_EQ(TimelineSvg::shortened(notes, 5).toStdString(), "ab🎵…");
    EXPECT_EQ(TimelineSvg::shortened(notes, 4).toStdString(), "ab…");
    EXPECT_EQ(TimelineSvg::shortened(notes, 3).toStdString(), "ab…");
    EXPECT_EQ(TimelineSvg::shortened(notes, 2).toStdString(), "a…");
    EXPECT_EQ(TimelineSvg::shortened(notes.mid(2), 2).toStdString(), "…");
    EXPECT_EQ(TimelineSvg::shortened(notes, 1).toStdString(), "…");
}
