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
    device.declare(EV_SW, SW_LINEIN_INSERT);
    EXPECT_TRUE(device.has(EV_KEY, KEY_VOLUMEUP));
    EXPECT_FALSE(device.has(EV_KEY, SW_LINEIN_INSERT));
    EXPECT_TRUE(device.has(EV_SW, SW_LINEIN_INSERT));
    EXPECT_FALSE(device.has(EV_SW, KEY_INFO));
    EXPECT_FALSE(device.has(EV_REL));
    EXPECT_FALSE(device.has(EV_REL, 0));
    EXPECT_THAT(device.codesOf(EV_SW), ElementsAre(SW_LINEIN_INSERT));
    EXPECT_TRUE(device.codesOf(EV_REL).isEmpty());
    device.declare(EV_KEY, KEY_MAX);
    EXPECT_TRUE(device.has(EV_KEY, KEY_MAX));
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
