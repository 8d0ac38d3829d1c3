#include "Profiler.h"

#include <gtest/gtest.h>

namespace {

TEST(ProfilerStandIn, IsOneObjectThatAcceptsWatchers)
{
    ASSERT_NE(Profiler::instance(), nullptr);
    EXPECT_EQ(Profiler::instance(), Profiler::instance());
    Profiler::instance()->createWatcher(Profiler::UIResponseWatcher(), Profiler::UIDrawEvent());
}

TEST(ProfilerStandIn, HasTwoDifferentNames)
{
    EXPECT_FALSE(Profiler::UIResponseWatcher().isEmpty());
    EXPECT_FALSE(Profiler::UIDrawEvent().isEmpty());
    EXPECT_NE(Profiler::UIResponseWatcher(), Profiler::UIDrawEvent());
}

} // namespace
