#include "Problems.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

TEST(Problems, NameTheirFileAndLine)
{
    Problems problems("a.evemu");
    problems.warning(3, "odd");
    problems.error(4, "wrong");
    ASSERT_EQ(problems.diagnostics().size(), 2);
    EXPECT_EQ(problems.diagnostics().at(0).toString().toStdString(), "a.evemu:3: warning: odd");
    EXPECT_EQ(problems.diagnostics().at(1).toString().toStdString(), "a.evemu:4: error: wrong");
}

TEST(Problems, KeepTheFirstTwentyOfEachKind)
{
    Problems problems("a.evemu");
    for (int line = 1; line <= 100; ++line)
        problems.warning(line, "odd");
    EXPECT_EQ(problems.diagnostics().size(), 20);
    EXPECT_FALSE(problems.isFull());
    for (int line = 1; line <= 19; ++line)
        problems.error(line, "wrong");
    EXPECT_FALSE(problems.isFull());
    for (int line = 20; line <= 100; ++line)
        problems.error(line, "wrong");
    EXPECT_TRUE(problems.isFull());
    EXPECT_EQ(problems.diagnostics().size(), 40);
    EXPECT_EQ(problems.diagnostics().last().line, 20);
}
