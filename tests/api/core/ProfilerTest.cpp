#include "Profiler.h"

#include <gtest/gtest.h>

namespace {

TEST(ProfilerStandIn, IsOneObjectThatAcceptsWatchers)
{
    ASSERT_NE(Profiler::instance(), nullptr);
    EXPECT_EQ(Profiler::instance(), Profiler::instance());
    Profiler::instance()->createWatcher(Profiler::UIResponseWatcher(), Profiler::UIDrawEvent());
}

TEST(ProfilerStandIn, NamesTheWatcherAndItsEnd)
{
    EXPECT_EQ(Profiler::UIResponseWatcher(), "UIResponse");
    EXPECT_EQ(Profiler::UIDrawEvent(), "UIDraw");
}

} // namespace
