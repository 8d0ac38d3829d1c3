#include "ScenarioLikeness.h"

#include <gtest/gtest.h>

using namespace Vorn::Workbench;

namespace {

bool isLike(const QByteArray &text)
{
    return looksLikeScenario(text, {"profile", "device", "wait", "expect"}, {"press", "click"});
}

} // namespace

TEST(ScenarioLikeness, IsThatOfMostLines)
{
    EXPECT_TRUE(isLike(""));
    EXPECT_TRUE(isLike("# nothing but a comment\n"));
    EXPECT_TRUE(isLike("\xef\xbb\xbfprofile \"p\"\n"));
    EXPECT_TRUE(isLike("\xef\xbb\xbf# a comment\nwait 1s\nnonsense\n"));
    EXPECT_TRUE(isLike("device panel\npanel press KEY_OK\npanel fly\nnonsense\n"));
    EXPECT_FALSE(isLike("device panel\nsecret\nsecret\n"));
}

TEST(ScenarioLikeness, SurvivesMistakes)
{
    EXPECT_TRUE(isLike("devise panel\n"));
    // Without the device, its steps are all unknown.
    EXPECT_TRUE(isLike("nonsense panel\npanel press KEY_OK\npanel click KEY_OK\n"));
}

TEST(ScenarioLikeness, OfOtherFilesIsNone)
{
    EXPECT_FALSE(isLike("root:x:0:0:root:/root:/bin/bash\n"));
    EXPECT_FALSE(isLike("N: panel\nE: 1.500000 0001 0073 0001\n"));
    EXPECT_FALSE(isLike("[[device]]\nname = \"panel\"\n"));
    EXPECT_FALSE(isLike("{\"kind\":\"start\"}\n"));
    EXPECT_FALSE(isLike(QByteArray("wait 1s\0", 8)));
    EXPECT_FALSE(isLike(QByteArray(1'000'000, 'x')));
}

TEST(ScenarioLikeness, IsToldByTheFirstTwoHundredLines)
{
    const auto steps = [](int count) { return QByteArray("wait 1s\n").repeated(count); };
    const auto others = [](int count) { return QByteArray("nonsense\n").repeated(count); };
    EXPECT_TRUE(isLike(steps(100) + others(1000)));
    EXPECT_TRUE(isLike(others(100) + steps(100)));
    EXPECT_FALSE(isLike(others(101) + steps(1000)));
    // Comments and empty lines are none.
    EXPECT_TRUE(isLike("# a\n\n  \n# b\nnonsense\nwait 1s # c\n"));
}
