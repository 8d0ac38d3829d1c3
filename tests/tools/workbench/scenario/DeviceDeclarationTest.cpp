#include "DeviceDeclaration.h"

#include "ScenarioText.h"

#include <gmock/gmock.h>

#include <linux/input.h>

#include <cstring>

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

TEST(DeviceDeclaration, SaysWhyADeviceIsRefused)
{
    EXPECT_EQ(mistake("device"), "dir/a.scenario:1:7: error: a name for the device is missing");
    const std::string rule = " cannot be the name of a device; use up to 64 letters, digits, '-' "
                             "and '_', and give the kernel's name with name=\"…\"";
    EXPECT_EQ(mistake("device 1a"), "dir/a.scenario:1:8: error: '1a'" + rule);
    // In quotes it is none, even if it could be one.
    EXPECT_EQ(mistake("device \"a\""), "dir/a.scenario:1:8: error: 'a'" + rule);
    EXPECT_EQ(mistake("device wait"),
              "dir/a.scenario:1:8: error: 'wait' is a keyword; choose another name for the device");
    EXPECT_EQ(mistake("device include"),
              "dir/a.scenario:1:8: error: 'include' is a keyword; choose another name for the "
              "device");
    EXPECT_THAT(mistakes("device " + QByteArray(64, 'a')), IsEmpty());
    EXPECT_THAT(mistake("device " + QByteArray(65, 'a')), HasSubstr("cannot be the name"));
    EXPECT_THAT(mistakes("device _a-B9"), IsEmpty());
}

TEST(DeviceDeclaration, NamesEveryOptionThatWasProbablyMeant)
{
    // Without its equals sign, it is a word that is none.
    for (const char *option : {"name=", "bus=", "node=", "keys=", "switches=", "held=", "on="}) {
        const std::string text(option, std::strlen(option) - 1);
        EXPECT_EQ(mistake("device panel " + QByteArray::fromStdString(text)),
                  "dir/a.scenario:1:14: error: unknown option '" + text + "', did you mean '"
                      + option + "'?");
    }
    for (const char *option : {"auto-repeat", "unplugged", "from"}) {
        EXPECT_EQ(mistake(QByteArray("device panel ") + option + "x"),
                  std::string("dir/a.scenario:1:14: error: unknown option '") + option
                      + "x', did you mean '" + option + "'?");
    }
    EXPECT_EQ(mistake("device panel from"),
              "dir/a.scenario:1:18: error: the recording's name is missing");
}

TEST(DeviceDeclaration, NamesEveryBusOrSwitchThatWasProbablyMeant)
{
    EXPECT_EQ(mistake("device panel bus=BUS_PARPROT"),
              "dir/a.scenario:1:18: error: unknown bus 'BUS_PARPROT', did you mean "
              "'BUS_PARPORT'?");
    EXPECT_EQ(mistake("device panel bus=LocalUi"),
              "dir/a.scenario:1:18: error: unknown bus 'LocalUi', did you mean 'LocalUI'?");
    // The last one of the kernel, and no numbers.
    EXPECT_EQ(mistake("device panel bus=BUS_INTEL_ISHTPP"),
              "dir/a.scenario:1:18: error: unknown bus 'BUS_INTEL_ISHTPP', did you mean "
              "'BUS_INTEL_ISHTP'?");
    EXPECT_EQ(mistake("device panel switches=SW_LID,SW_LIDD"),
              "dir/a.scenario:1:30: error: unknown switch 'SW_LIDD', did you mean 'SW_LID'?");
    EXPECT_EQ(mistake("device panel on=KEY_A"),
              "dir/a.scenario:1:17: error: unknown switch 'KEY_A'");
    EXPECT_EQ(mistake("device panel held=SW_LID"),
              "dir/a.scenario:1:19: error: unknown key 'SW_LID'");
}

TEST(DeviceDeclaration, ANodeIsWrittenInOneWay)
{
    EXPECT_EQ(parsed("device a node=event0\n").scenario.devices.first().node, 0);
    EXPECT_EQ(parsed("device a node=99\n").scenario.devices.first().node, 99);
    for (const char *node : {"100", "event100", "-1", "01", "+1", "event", "", "eventx", "1x"}) {
        EXPECT_EQ(mistake(QByteArray("device a node=") + node),
                  std::string("dir/a.scenario:1:15: error: '") + node
                      + "' is not a node; write one from event0 to event99")
            << node;
    }
}

TEST(DeviceDeclaration, TakesACodeOnceAndAnEmptyName)
{
    const ScenarioDevice device =
        parsed("device a name= bus=3 keys=KEY_A,30,KEY_B from \"b.evemu\"")
            .scenario.devices.first();
    EXPECT_TRUE(device.name && device.name->isEmpty() && !device.name->isNull());
    EXPECT_THAT(*device.keys, ElementsAre(KEY_A, KEY_B));
    EXPECT_EQ(device.bus, BUS_USB);
    EXPECT_EQ(device.recording.toStdString(), "dir/b.evemu");
    EXPECT_FALSE(device.autoRepeat);
    EXPECT_FALSE(device.switches);
}

TEST(DeviceDeclaration, AnotherDeviceHasANameAndABus)
{
    EXPECT_EQ(mistakeOf("panel replace node=1"),
              "dir/a.scenario:2:15: error: unknown option 'node='; write one of name=, bus=");
    EXPECT_EQ(mistakeOf("panel replace nme=remote"),
              "dir/a.scenario:2:15: error: unknown option 'nme=', did you mean 'name='?");
    EXPECT_EQ(mistakeOf("panel replace nonsense more"),
              "dir/a.scenario:2:15: error: unknown option 'nonsense'; write one of name=, bus=");
    EXPECT_EQ(mistakeOf("panel replace"),
              "dir/a.scenario:2:7: error: the other device's name=\"…\" is missing");
    const auto step =
        ScenarioText::step<Step::Replace>(parsed("device panel\npanel replace name=x").scenario, 1);
    EXPECT_FALSE(step.bus);
    EXPECT_EQ(mistakeOf("panel replace bus=Hostlink name=x"),
              "dir/a.scenario:2:19: error: only its name puts a device on the bus Hostlink; give "
              "it name=\"hostlink\"");
    EXPECT_THAT(mistakes("device a bus=Hostlink from \"b.evemu\""), IsEmpty())
        << "the recording may have the name";
    EXPECT_THAT(mistakes("device a bus=Hostlink from \"b.evemu\" name=x"), SizeIs(1));
}
