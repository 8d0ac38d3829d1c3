#include "ScenarioNodes.h"

#include "IdleBench.h"
#include "ScenarioFiles.h"

#include <QMap>

#include <gmock/gmock.h>

#include <memory>

using namespace Vorn;
using namespace Vorn::Workbench;
using Sim::DeviceDescription;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Keeps what is plugged in.
class NodesBench : public IdleBench
{
public:
    void plug(int node, const DeviceDescription &device) override { m_nodes.insert(node, device); }
    void unplug(int node, bool losingRecords) override
    {
        m_nodes.remove(node);
        m_isLosing = losingRecords;
    }
    void replace(int node, const DeviceDescription &device) override
    {
        m_nodes.insert(node, device);
    }
    void setMode(int node, mode_t mode) override { m_nodes[node].mode = mode; }

    QMap<int, DeviceDescription> m_nodes;
    bool m_isLosing = false;
};

class ScenarioNodesTest : public ScenarioFiles
{
protected:
    ScenarioNodesTest()
    {
        write("keys.toml", R"([[device]]
name = "panel"
[device.handler.keys]
KEY_INFO = "Info"
[device.handler.chords]
"KEY_STOP+KEY_PLAY" = "FactoryReset"
[device.handler.switches]
SW_LINEIN_INSERT = "SWLineIn"

[[device]]
name = "other"
[device.handler.keys]
KEY_MUTE = "Mute"
)");
        write("events.evemu",
              "E: 0.000000 0001 001e 0001\nE: 0.000000 0005 0000 0001\n"
              "E: 0.000000 0001 001e 0000\nE: 0.000000 0002 0000 0001\n");
        write("described.evemu",
              "N: recorded\nI: 0003 0001 0002 0003\nB: 00 00 00 10\nB: 01 02\nB: 05 01\nS: 00 1\n"
              "E: 0.000000 0001 0001 0001\n");
    }

    void load(const QByteArray &text)
    {
        m_loaded = loadScenario(write("a.scenario", text), {path("keys.toml"), {}, false});
        for (const Diagnostic &diagnostic : m_loaded.diagnostics) {
            if (diagnostic.severity == Diagnostic::Severity::Error)
                ADD_FAILURE() << diagnostic.toString().toStdString();
        }
        m_bench.m_nodes.clear();
        m_nodes = std::make_unique<ScenarioNodes>(m_loaded, &m_bench);
    }

    /// What is plugged in for the first device of a scenario.
    DeviceDescription plugged(const QByteArray &text)
    {
        load(text);
        m_nodes->plug(0);
        return m_bench.m_nodes.value(m_nodes->number(0));
    }

    LoadedScenario m_loaded;
    NodesBench m_bench;
    std::unique_ptr<ScenarioNodes> m_nodes;
};

} // namespace

TEST_F(ScenarioNodesTest, HaveTheKeysAndSwitchesThatTheProfileMaps)
{
    const DeviceDescription panel = plugged("device panel\n");
    EXPECT_EQ(panel.name.toStdString(), "panel");
    EXPECT_THAT(panel.keys, ElementsAre(KEY_INFO, KEY_STOP, KEY_PLAY));
    EXPECT_THAT(panel.switches, ElementsAre(SW_LINEIN_INSERT));
    EXPECT_EQ(panel.mode, 0660U);
    EXPECT_FALSE(panel.autoRepeat);
    EXPECT_THAT(plugged("device unknown\n").keys, IsEmpty());
}

TEST_F(ScenarioNodesTest, HaveTheKeysThatStepsUseButNoneTwice)
{
    const DeviceDescription panel = plugged("device panel\npanel click KEY_INFO\n"
                                            "panel click KEY_A\npanel switch SW_LID on\n");
    EXPECT_THAT(panel.keys, ElementsAre(KEY_INFO, KEY_A, KEY_STOP, KEY_PLAY));
    EXPECT_THAT(panel.switches, ElementsAre(SW_LID, SW_LINEIN_INSERT));
}

TEST_F(ScenarioNodesTest, HaveWhatIsDeclaredAndNothingElse)
{
    const DeviceDescription keys =
        plugged("device panel name=\"a panel\" bus=USB keys=KEY_B held=KEY_B auto-repeat\n"
                "play \"events.evemu\" on panel\n");
    EXPECT_EQ(keys.name.toStdString(), "a panel");
    EXPECT_EQ(keys.id.bustype, BUS_USB);
    EXPECT_THAT(keys.keys, ElementsAre(KEY_B));
    EXPECT_THAT(keys.keysHeld, ElementsAre(KEY_B));
    EXPECT_THAT(keys.switches, ElementsAre(SW_LID)) << "those are not declared";
    EXPECT_TRUE(keys.autoRepeat);
    const DeviceDescription switches =
        plugged("device panel switches=SW_DOCK on=SW_DOCK\nplay \"events.evemu\" on panel\n");
    EXPECT_THAT(switches.keys, ElementsAre(KEY_INFO, KEY_STOP, KEY_PLAY, KEY_A));
    EXPECT_THAT(switches.switches, ElementsAre(SW_DOCK));
    EXPECT_THAT(switches.switchesOn, ElementsAre(SW_DOCK));
}

TEST_F(ScenarioNodesTest, HaveTheKeysThatArePlayedOnThem)
{
    const DeviceDescription panel =
        plugged("device panel\ndevice second\nplay \"events.evemu\" on panel\n");
    EXPECT_THAT(panel.keys, ElementsAre(KEY_INFO, KEY_STOP, KEY_PLAY, KEY_A));
    EXPECT_THAT(panel.switches, ElementsAre(SW_LINEIN_INSERT, SW_LID));
    m_nodes->plug(1);
    EXPECT_THAT(m_bench.m_nodes.value(1).keys, IsEmpty()) << "they are played on the other one";
}

TEST_F(ScenarioNodesTest, AreAsRecorded)
{
    const DeviceDescription recorded = plugged("device panel from \"described.evemu\"\n");
    EXPECT_EQ(recorded.name.toStdString(), "recorded");
    EXPECT_EQ(recorded.id.bustype, BUS_USB);
    EXPECT_EQ(recorded.id.version, 3);
    EXPECT_THAT(recorded.keys, ElementsAre(KEY_ESC));
    EXPECT_THAT(recorded.switches, ElementsAre(SW_LID));
    EXPECT_THAT(recorded.switchesOn, ElementsAre(SW_LID));
    EXPECT_THAT(recorded.eventTypes, ElementsAre(EV_KEY, EV_SW));
    EXPECT_TRUE(recorded.autoRepeat);
    const DeviceDescription renamed = plugged("device panel from \"described.evemu\" name=panel\n");
    EXPECT_EQ(renamed.name.toStdString(), "panel");
    EXPECT_THAT(renamed.keys, ElementsAre(KEY_ESC)) << "nothing is added";
}

TEST_F(ScenarioNodesTest, DescribeARecordedDevice)
{
    RecordedDevice device;
    device.declare(EV_KEY, KEY_A);
    device.declare(EV_MSC, MSC_SCAN);
    device.keysDown = {KEY_A};
    const DeviceDescription described = describe(device);
    EXPECT_FALSE(described.name.isNull()) << "a device whose name cannot be read";
    EXPECT_THAT(described.keysHeld, ElementsAre(KEY_A));
    EXPECT_THAT(described.switchesOn, IsEmpty());
    EXPECT_THAT(described.eventTypes, ElementsAre(EV_KEY, EV_MSC));
    EXPECT_FALSE(described.autoRepeat);
}

TEST_F(ScenarioNodesTest, AreReplacedByADeviceOfAnotherName)
{
    load("device panel bus=USB\npanel replace name=other bus=SPI\npanel replace name=other\n");
    m_nodes->replace(std::get<Step::Replace>(m_loaded.scenario.steps.at(1).what));
    const DeviceDescription other = m_bench.m_nodes.value(0);
    EXPECT_EQ(other.name.toStdString(), "other");
    EXPECT_EQ(other.id.bustype, BUS_SPI);
    EXPECT_THAT(other.keys, ElementsAre(KEY_INFO, KEY_STOP, KEY_PLAY, KEY_MUTE));
    m_nodes->replace(std::get<Step::Replace>(m_loaded.scenario.steps.at(2).what));
    EXPECT_EQ(m_bench.m_nodes.value(0).id.bustype, BUS_USB);
}

TEST_F(ScenarioNodesTest, StayClosedUntilTheyArePermitted)
{
    load("device panel\n");
    m_nodes->permit(0, false);
    EXPECT_EQ(m_bench.m_nodes.value(0).mode, 0U);
    m_nodes->plug(0);
    EXPECT_EQ(m_bench.m_nodes.value(0).mode, 0U);
    m_nodes->permit(0, true);
    EXPECT_EQ(m_bench.m_nodes.value(0).mode, 0660U);
    m_nodes->plug(0);
    EXPECT_EQ(m_bench.m_nodes.value(0).mode, 0660U);
}

TEST_F(ScenarioNodesTest, GoWithOrWithoutTheirLastRecords)
{
    load("device panel\n");
    for (const bool isLosing : {true, false}) {
        m_nodes->plug(0);
        m_nodes->unplug(0, isLosing);
        EXPECT_THAT(m_bench.m_nodes, IsEmpty());
        EXPECT_EQ(m_bench.m_isLosing, isLosing);
    }
}

TEST_F(ScenarioNodesTest, ArePluggedInForARecordingUnlessTheyAreThere)
{
    load("play \"described.evemu\"\nplay \"events.evemu\"\n");
    const auto fileOf = [this](int step) {
        return std::get<Step::Play>(m_loaded.scenario.steps.at(step).what).file;
    };
    m_nodes->plugRecorded(fileOf(0));
    ASSERT_EQ(m_bench.m_nodes.size(), 1);
    EXPECT_EQ(m_bench.m_nodes.first().name.toStdString(), "recorded");
    m_bench.m_nodes.clear();
    m_nodes->plugRecorded(fileOf(0));
    EXPECT_THAT(m_bench.m_nodes, IsEmpty());
    m_nodes->plugRecorded(fileOf(1));
    ASSERT_EQ(m_bench.m_nodes.size(), 1);
    EXPECT_EQ(m_bench.m_nodes.first().name.toStdString(), "device");
    EXPECT_THAT(m_bench.m_nodes.first().keys, ElementsAre(KEY_A));
    EXPECT_THAT(m_bench.m_nodes.first().switches, ElementsAre(SW_LID));
}
