#include "InputSubsystem.h"
#include "OpenNode.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <memory>

using namespace Vorn::Sim;

namespace {

const DeviceDescription panel = DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK});

} // namespace

TEST(InputSubsystemDeathTest, MisuseIsFatal)
{
    EXPECT_DEATH(
        {
            InputSubsystem first;
            InputSubsystem second;
        },
        "only one may be alive at a time");
    EXPECT_DEATH(
        {
            InputSubsystem subsystem;
            subsystem.plug(0, panel);
            subsystem.plug(0, panel);
        },
        "already plugged in at /dev/input/event0");
    EXPECT_DEATH(
        {
            InputSubsystem subsystem;
            subsystem.unplug(6);
        },
        "no device is plugged in at /dev/input/event6");
    EXPECT_DEATH(
        {
            InputSubsystem subsystem;
            subsystem.node(-1);
        },
        "no node with the number -1");
}

TEST(InputSubsystemDeathTest, DescriptorsLeftOpenAreWarnedOf)
{
    EXPECT_EXIT(
        {
            auto subsystem = std::make_unique<InputSubsystem>();
            const OpenNode open(subsystem->plug(1, panel).path());
            subsystem.reset();
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^InputSubsystem: 1 descriptor\\(s\\) of /dev/input/event1 left open");
}
