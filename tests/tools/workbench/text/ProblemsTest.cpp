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

TEST(Problems, KeepTheFirstTwentyOfEachKindAndSaySo)
{
    Problems problems("a.evemu");
    for (int line = 1; line <= 100; ++line)
        problems.warning(line, "odd");
    ASSERT_EQ(problems.diagnostics().size(), 21);
    EXPECT_EQ(problems.diagnostics().last().toString().toStdString(),
              "a.evemu:20: warning: these are 20 warnings; further ones are not told");
    EXPECT_FALSE(problems.hasErrors());
    EXPECT_FALSE(problems.isFull());
    for (int line = 1; line <= 19; ++line)
        problems.error(line, "wrong");
    EXPECT_FALSE(problems.isFull());
    for (int line = 20; line <= 100; ++line)
        problems.error(line, "wrong");
    EXPECT_TRUE(problems.isFull());
    EXPECT_EQ(problems.diagnostics().size(), 42);
    EXPECT_EQ(problems.diagnostics().last().toString().toStdString(),
              "a.evemu:20: error: these are 20 errors; the rest of the file is not read");
}
