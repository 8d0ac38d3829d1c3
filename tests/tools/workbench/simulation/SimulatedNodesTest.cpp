#include "SimulatedNodes.h"

#include "NodeInfo.h"

#include <QFile>

#include <gmock/gmock.h>

using namespace Vorn::Sim;
using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SimulatedNodesTest : public testing::Test
{
protected:
    SimulatedNodesTest()
    {
        m_nodes.plug(2,
                     DeviceDescription::keyboard("panel", BUS_USB, {KEY_ESC, KEY_A, KEY_MAX})
                         .withSwitches({SW_LID}));
    }

    static NodeInfo node() { return readNode("/dev/input/event2"); }

    SimulatedNodes m_nodes;
};

} // namespace

TEST_F(SimulatedNodesTest, ReleasesEveryKeyThatIsDown)
{
    EXPECT_EQ(m_nodes.changeKeys(2, {KEY_ESC, KEY_A, KEY_MAX}, 1), std::nullopt);
    EXPECT_THAT(node().device.keysDown, ElementsAre(KEY_ESC, KEY_A, KEY_MAX));
    m_nodes.releaseKeys(2);
    EXPECT_THAT(node().device.keysDown, IsEmpty());
}

TEST_F(SimulatedNodesTest, TellsTheFirstKeyThatCannotChange)
{
    EXPECT_EQ(m_nodes.changeKeys(2, {KEY_ESC, KEY_B, KEY_C}, 1), KEY_B);
    EXPECT_EQ(m_nodes.changeKeys(2, {KEY_ESC}, 1), KEY_ESC) << "it is down already";
    EXPECT_EQ(m_nodes.changeKeys(2, {KEY_ESC}, 0), std::nullopt);
    EXPECT_THAT(node().device.keysDown, IsEmpty());
}

TEST_F(SimulatedNodesTest, MovesASwitchOnce)
{
    EXPECT_TRUE(m_nodes.setSwitch(2, SW_LID, true));
    EXPECT_FALSE(m_nodes.setSwitch(2, SW_LID, true));
    EXPECT_THAT(node().device.switchesOn, ElementsAre(SW_LID));
    EXPECT_TRUE(m_nodes.setSwitch(2, SW_LID, false));
    EXPECT_FALSE(m_nodes.setSwitch(2, SW_DOCK, true));
}

TEST_F(SimulatedNodesTest, StampsRecordsBeforeAndAfterNowAsItIsTold)
{
    QFile file(QStringLiteral("/dev/input/event2"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    constexpr qint64 hour = 3'600'000; // ms
    qint64 last = 0;
    for (const qint64 offset : {-hour, qint64{0}, hour}) {
        m_nodes.send(2, {{0, EV_KEY, KEY_A, 1}}, offset);
        input_event record = {};
        ASSERT_EQ(file.read(reinterpret_cast<char *>(&record), sizeof(record)),
                  static_cast<qint64>(sizeof(record)));
        EXPECT_EQ(record.code, KEY_A);
        const qint64 stamp = record.input_event_sec * qint64{1000} + record.input_event_usec / 1000;
        // Time goes on in between.
        EXPECT_TRUE(last == 0 || stamp - last >= hour) << offset << ": " << stamp - last;
        last = stamp;
    }
}

TEST_F(SimulatedNodesTest, ComeAndGoAsOnASystem)
{
    m_nodes.setMode(2, 0);
    EXPECT_FALSE(node().isReadable());
    m_nodes.setMode(2, 0660);
    EXPECT_EQ(node().name().toStdString(), "panel");
    m_nodes.replace(2, DeviceDescription::keyboard("other", BUS_USB, {KEY_A}));
    EXPECT_EQ(node().name().toStdString(), "other");
    m_nodes.unplug(2, false);
    EXPECT_THAT(inputNodes(), IsEmpty());
    m_nodes.plug(7, DeviceDescription::keyboard("third", BUS_USB, {KEY_A}));
    EXPECT_THAT(inputNodes(), ElementsAre("/dev/input/event7"));
}
