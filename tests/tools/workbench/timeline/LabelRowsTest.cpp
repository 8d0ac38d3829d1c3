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

TEST(LabelRows, AreToTheLeftWhereThePictureEnds)
{
    LabelRows rows(1, LabelRows::Lines::FromAbove, {0, 200});
    const std::optional<LabelPlace> place = rows.place(180, text, gap);
    ASSERT_TRUE(place);
    EXPECT_TRUE(place->isLeft);
    LabelRows narrow(1, LabelRows::Lines::FromAbove, {0, 60});
    EXPECT_FALSE(narrow.place(30, text, gap));
}

TEST(LabelRows, NeedMoreRoomForLongerTexts)
{
    EXPECT_GT(LabelRows::width("ab"), LabelRows::width("a"));
    EXPECT_GT(LabelRows::width("a"), 0);
}
