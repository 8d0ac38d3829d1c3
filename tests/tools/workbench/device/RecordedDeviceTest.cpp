#include "RecordedDevice.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using testing::ElementsAre;

TEST(RecordedDevice, KnowsTheCodesThatAreDeclared)
{
    RecordedDevice device;
    EXPECT_FALSE(device.has(EV_KEY));
    device.declare(EV_KEY, KEY_INFO);
    device.declare(EV_KEY, KEY_VOLUMEUP);
    EXPECT_TRUE(device.has(EV_KEY));
    EXPECT_TRUE(device.has(EV_KEY, KEY_INFO));
    EXPECT_FALSE(device.has(EV_KEY, KEY_INFO + 1));
    EXPECT_FALSE(device.has(EV_KEY, -1));
    EXPECT_FALSE(device.has(EV_KEY, 1'000'000));
    EXPECT_THAT(device.codesOf(EV_KEY), ElementsAre(KEY_VOLUMEUP, KEY_INFO));
}

TEST(RecordedDevice, DeclaresNothingThatNoDeviceHas)
{
    RecordedDevice device;
    device.declare(EV_SYN, SYN_REPORT);
    device.declare(-1, 1);
    device.declare(EV_CNT, 1);
    device.declare(EV_KEY, -1);
    EXPECT_TRUE(device.codes.isEmpty());
    device.declare(EV_KEY, KEY_CNT);
    EXPECT_TRUE(device.has(EV_KEY));
    EXPECT_TRUE(device.codesOf(EV_KEY).isEmpty());
}
