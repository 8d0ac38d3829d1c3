#include "LabelRows.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

constexpr double gap = 8;
const QString text = QStringLiteral("Info click"); // 68 px wide

int rowOf(const std::optional<LabelPlace> &place)
{
    return place ? place->row : -1;
}

} // namespace

TEST(LabelRows, UseTheFirstRowWithRoom)
{
    LabelRows rows(2, LabelRows::Lines::Below, {0, 1000});
    EXPECT_EQ(rowOf(rows.place(0, text, gap)), 0);
    EXPECT_EQ(rowOf(rows.place(40, text, gap)), 1);
    EXPECT_EQ(rowOf(rows.place(80, text, gap)), -1) << "its line would cross the second text";
    EXPECT_EQ(rowOf(rows.place(120, text, gap)), 0);
    EXPECT_EQ(rows.count(), 2);
}

TEST(LabelRows, LetNoLineFromAboveCrossAText)
{
    LabelRows rows(3, LabelRows::Lines::FromAbove, {0, 1000});
    for (const double x : {100.0, 136.0, 172.0})
        rows.addSymbol(x, 5);
    EXPECT_EQ(rowOf(rows.place(172, text, gap)), 0);
    EXPECT_EQ(rowOf(rows.place(136, text, gap)), 1);
    EXPECT_EQ(rowOf(rows.place(100, text, gap)), 2) << "the line of the second is in row 1";
}

TEST(LabelRows, KeepAwayFromLines)
{
    LabelRows rows(2, LabelRows::Lines::FromAbove, {0, 1000});
    rows.addLine(150);
    EXPECT_EQ(rowOf(rows.place(100, text, gap)), -1);
    EXPECT_EQ(rowOf(rows.place(150, text, gap)), 0) << "beside the line";
}

TEST(LabelRows, MayTouchALineOnEitherSide)
{
    // A line is 2 px wide: from 99 to 101.
    const auto rowAt = [](double x) {
        LabelRows rows(1, LabelRows::Lines::FromAbove, {0, 1000});
        rows.addLine(100);
        return rowOf(rows.place(x, text, gap));
    };
    EXPECT_EQ(rowAt(99 - 68 - gap), 0);
    EXPECT_EQ(rowAt(99 - 68 - gap + 0.5), -1);
    EXPECT_EQ(rowAt(101 - gap - 0.5), -1);
    EXPECT_EQ(rowAt(101 - gap), 0);
}

TEST(LabelRows, AvoidSymbolsInTheFirstRowOnly)
{
    LabelRows rows(2, LabelRows::Lines::FromAbove, {0, 1000});
    rows.addSymbol(100, 5);
    EXPECT_EQ(rowOf(rows.place(95 - 68 - gap, text, gap)), 0);
    EXPECT_EQ(rowOf(rows.place(105 - gap, text, gap)), 0);
    LabelRows others(2, LabelRows::Lines::FromAbove, {0, 1000});
    others.addSymbol(100, 5);
    EXPECT_EQ(rowOf(others.place(95 - 68 - gap + 0.5, text, gap)), 1);
    LabelRows right(2, LabelRows::Lines::FromAbove, {0, 1000});
    right.addSymbol(100, 5);
    EXPECT_EQ(rowOf(right.place(105 - gap - 0.5, text, gap)), 1);
}

TEST(LabelRows, RememberLinesAndSymbolsThatOverlap)
{
    const auto rowAt = [](double x) {
        LabelRows rows(1, LabelRows::Lines::FromAbove, {0, 1000});
        rows.addSymbol(500, 100);
        rows.addSymbol(450, 5);
        rows.addSymbol(405, 20);
        rows.addSymbol(600, 10);
        rows.addLine(520);
        return rowOf(rows.place(x, text, gap));
    };
    // Together they take 385 to 610.
    EXPECT_EQ(rowAt(385 - 68 - gap), 0);
    for (double x = 385 - 68 - gap + 0.5; x < 610 - gap; x += 0.5)
        EXPECT_EQ(rowAt(x), -1) << x;
    EXPECT_EQ(rowAt(610 - gap), 0);
}

TEST(LabelRows, KeepLessDistanceFromALineThanFromASymbol)
{
    // Only in the first row is there a symbol beside the text.
    LabelRows rows(2, LabelRows::Lines::FromAbove, {0, 1000});
    rows.addSymbol(120, 5);
    ASSERT_EQ(rowOf(rows.place(100, text, gap)), 1);
    EXPECT_EQ(rowOf(rows.place(100 + 4 + 68 - gap, text, gap)), 0);
    LabelRows full(2, LabelRows::Lines::FromAbove, {0, 1000});
    full.addLine(100 + 4 + 68 + 1);
    full.addSymbol(120, 5);
    EXPECT_EQ(rowOf(full.place(100, text, gap)), 1);
    LabelRows tight(2, LabelRows::Lines::FromAbove, {0, 1000});
    tight.addLine(100 + 4 + 68 + 0.5);
    tight.addSymbol(120, 5);
    EXPECT_EQ(rowOf(tight.place(100, text, gap)), -1);
}

TEST(LabelRows, AreToTheLeftWhereThePictureEnds)
{
    LabelRows rows(1, LabelRows::Lines::FromAbove, {0, 200});
    const std::optional<LabelPlace> place = rows.place(180, text, gap);
    ASSERT_TRUE(place);
    EXPECT_TRUE(place->isLeft);
    LabelRows exact(1, LabelRows::Lines::FromAbove, {0, 180 + gap + 68});
    EXPECT_FALSE(exact.place(180, text, gap)->isLeft);
    LabelRows edge(1, LabelRows::Lines::FromAbove, {180 - gap - 68, 200});
    EXPECT_TRUE(edge.place(180, text, gap)) << "from edge to point";
    LabelRows beyond(1, LabelRows::Lines::FromAbove, {180 - gap - 67.5, 200});
    EXPECT_FALSE(beyond.place(180, text, gap));
    LabelRows narrow(1, LabelRows::Lines::FromAbove, {0, 60});
    EXPECT_FALSE(narrow.place(30, text, gap));
}

TEST(LabelRows, NeedMoreRoomForLongerTexts)
{
    EXPECT_GT(LabelRows::width("ab"), LabelRows::width("a"));
    EXPECT_DOUBLE_EQ(LabelRows::width(text), 68);
    EXPECT_DOUBLE_EQ(LabelRows::width({}), 2);
}

TEST(LabelRows, LeadEachLineFromAboveThroughTheFirstRow)
{
    LabelRows rows(3, LabelRows::Lines::FromAbove, {0, 1000});
    EXPECT_EQ(rowOf(rows.place(172, text, gap)), 0);
    EXPECT_EQ(rowOf(rows.place(136, text, gap)), 1);
    EXPECT_EQ(rowOf(rows.place(70, text, gap)), 2) << "the line to the second is in the first row";
}

TEST(LabelRows, LeadEachLineBelowThroughTheLastRow)
{
    LabelRows rows(3, LabelRows::Lines::Below, {0, 1000});
    EXPECT_EQ(rowOf(rows.place(0, text, gap)), 0);
    EXPECT_EQ(rowOf(rows.place(40, text, gap)), 1);
    EXPECT_EQ(rowOf(rows.place(75, text, gap)), 2) << "its line would cross the second";
    EXPECT_EQ(rowOf(rows.place(110, text, gap)), -1) << "its line would cross both";
    EXPECT_EQ(rowOf(rows.place(150, text, gap)), 0);
    EXPECT_EQ(rows.count(), 3);
}
