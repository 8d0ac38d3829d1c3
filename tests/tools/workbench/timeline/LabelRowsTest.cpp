#include "LabelRows.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

TEST(LabelRows, UsesTheFirstRowWithRoom)
{
    LabelRows rows(2);
    EXPECT_EQ(rows.place(0, 10), 0);
    EXPECT_EQ(rows.place(5, 15), 1);
    EXPECT_EQ(rows.place(10, 20), 0);
    EXPECT_EQ(rows.place(8, 12), std::nullopt);
    EXPECT_EQ(rows.count(), 2);
}

TEST(LabelRows, NeedsMoreRoomForLongerTexts)
{
    EXPECT_GT(LabelRows::width("ab"), LabelRows::width("a"));
    EXPECT_GT(LabelRows::width("a"), 0);
}
