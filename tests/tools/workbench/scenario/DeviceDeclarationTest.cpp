#include "DeviceDeclaration.h"

#include "ScenarioText.h"

#include <gmock/gmock.h>

#include <linux/input.h>

namespace {

using namespace ScenarioText;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

} // namespace

TEST(DeviceDeclaration, ADeviceIsPluggedInWhereItIsDeclared)
{
    const Scenario scenario =
        parsed("device panel name=\"front panel # 1\" bus=BUS_USB node=event3 keys=KEY_A,KEY_B "
               "switches=SW_LID on=SW_DOCK held=KEY_A auto-repeat # comment\n")
            .scenario;
    ASSERT_THAT(scenario.devices, SizeIs(1));
    const ScenarioDevice &device = scenario.devices.first();
    EXPECT_EQ(device.label.toStdString(), "panel");
    EXPECT_EQ(device.name->toStdString(), "front panel # 1");
    EXPECT_EQ(device.bus, BUS_USB);
    EXPECT_EQ(device.node, 3);
    EXPECT_THAT(*device.keys, ElementsAre(KEY_A, KEY_B));
    EXPECT_THAT(*device.switches, ElementsAre(SW_LID));
    EXPECT_THAT(device.on, ElementsAre(SW_DOCK));
    EXPECT_THAT(device.held, ElementsAre(KEY_A));
    EXPECT_TRUE(device.autoRepeat);
    EXPECT_EQ(step<Step::Plug>(scenario, 0).device, 0);
    EXPECT_EQ(scenario.steps.first().line, 1);
}

TEST(DeviceDeclaration, ADeviceMayBeDeclaredUnplugged)
{
    const Scenario scenario = parsed("device panel unplugged\npanel plug").scenario;
    ASSERT_THAT(scenario.steps, SizeIs(1));
    EXPECT_EQ(scenario.steps.first().line, 2);
    EXPECT_FALSE(scenario.devices.first().name) << "its name follows from the label";
    EXPECT_FALSE(scenario.devices.first().keys) << "its keys follow from the profile";
}

TEST(DeviceDeclaration, ADeviceIsDeclaredOnceOnANodeOfItsOwn)
{
    EXPECT_EQ(mistakeOf("device panel"),
              "dir/a.scenario:2:8: error: panel is already declared in dir/a.scenario, line 1");
    EXPECT_EQ(mistake("device a node=event1\ndevice b node=1"),
              "dir/a.scenario:2:1: error: event1 is already the node of a, line 1");
    EXPECT_THAT(mistake("device wait"), HasSubstr("'wait' is a keyword"));
    EXPECT_THAT(mistake("device \"a b\""), HasSubstr("'a b' cannot be the name of a device"));
    EXPECT_THAT(mistake("device a node=event100"), HasSubstr("'event100' is not a node"));
    EXPECT_THAT(mistake("device a bus=USB bus=USB"), HasSubstr(":18: error: 'bus' is given twice"));
}

TEST(DeviceDeclaration, OnlyTheNamePutsADeviceOnTheHostlinkBus)
{
    EXPECT_EQ(
        mistake("device link bus=Hostlink"),
        "dir/a.scenario:1:17: error: only its name puts a device on the bus Hostlink; give it "
        "name=\"hostlink\"");
    EXPECT_THAT(mistakes("device link bus=Hostlink name=hostlink\ndevice hostlink bus=Hostlink"),
                IsEmpty());
    EXPECT_THAT(mistakeOf("panel replace bus=Hostlink name=x"), HasSubstr("only its name puts"));
}

TEST(DeviceDeclaration, NamesTheOptionOrKeyThatWasProbablyMeant)
{
    EXPECT_EQ(mistake("device panel buss=USB"),
              "dir/a.scenario:1:14: error: unknown option 'buss', did you mean 'bus='?");
    EXPECT_EQ(mistake("device panel keys=KEY_A,KEY_BB"),
              "dir/a.scenario:1:25: error: unknown key 'KEY_BB', did you mean 'KEY_B'?");
}

TEST(DeviceDeclaration, ADeviceThatIsRefusedIsNone)
{
    const std::string unknown = "dir/a.scenario:3:33: error: unknown device 'nobody'; write panel";
    for (const char *declaration : {"device panel", "device wait", "device \"a\"", "device 1a"}) {
        const std::vector<std::string> list =
            mistakes(QByteArray("device panel\n") + declaration
                     + "\nexpect VolumeUp KeyPressed from nobody");
        ASSERT_THAT(list, SizeIs(2)) << declaration;
        EXPECT_EQ(list.back(), unknown) << declaration;
    }
}
