#include "FrontPanel.h"

#include <vorn/core/vorn.h>
#include <vorn/input/Input.h>
#include <vorn/sim/InputSubsystem.h>
#include <vorn/sim/VirtualClock.h>

#include <QCoreApplication>

#include <log4cplus/configurator.h>
#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using Vorn::Sim::DeviceDescription;
using namespace std::chrono_literals;

namespace {

using Events = std::vector<std::string>;

class FrontPanelTest : public testing::Test
{
protected:
    FrontPanelTest()
    {
        Vorn::connect(
            Input::instance(), &Input::inputEvent, &m_manager, [this](const InputEvent &event) {
                const char *const states[] = {"?", "press", "release", "long press", "on", "off"};
                m_events.push_back(event.cmdToString().toStdString() + ' ' + states[event.state()]);
            });
    }

    Vorn::Sim::InputNode &plugPanel(int bus = BUS_HOST)
    {
        auto &panel = m_devices.plug(
            0,
            DeviceDescription::keyboard("panel", bus, {KEY_VOLUMEUP, KEY_STOP, KEY_PLAY, KEY_POWER})
                .withSwitches({SW_HEADPHONE_INSERT}));
        m_clock.settle(); // the device manager finds it
        m_events.clear(); // the position of the switch
        return panel;
    }

    void click(Vorn::Sim::InputNode &panel, int code)
    {
        panel.press(code);
        m_clock.advance(80ms);
        panel.release(code);
        m_clock.settle();
    }

    Events takeEvents() { return std::exchange(m_events, {}); }

    // The clock first, so that all timers run on it, and the devices before who looks for them.
    Vorn::Sim::VirtualClock m_clock;
    Vorn::Sim::InputSubsystem m_devices;
    Events m_events;
    FrontPanel m_manager;
};

TEST_F(FrontPanelTest, GetsLouderWhileVolumeIsHeld)
{
    auto &panel = plugPanel();
    panel.press(KEY_VOLUMEUP);
    m_clock.advance(3s);
    // After 600 ms, and then every 400 ms.
    Events expected(8, "VolumeUp long press");
    expected.front() = "VolumeUp press";
    EXPECT_EQ(takeEvents(), expected);

    panel.release(KEY_VOLUMEUP);
    m_clock.settle();
    EXPECT_EQ(takeEvents(), Events({"VolumeUp release"}));
}

TEST_F(FrontPanelTest, ResetsOnlyByBothKeysTogether)
{
    auto &panel = plugPanel();
    click(panel, KEY_STOP);
    EXPECT_EQ(takeEvents(), Events({"Stop press", "Stop release"}));

    panel.press(KEY_STOP);
    panel.press(KEY_PLAY);
    m_clock.settle();
    panel.release(KEY_STOP);
    panel.release(KEY_PLAY);
    m_clock.settle();
    EXPECT_EQ(takeEvents(), Events({"FactoryReset press", "FactoryReset release"}));
}

TEST_F(FrontPanelTest, IsSwitchedOffOnlyByTheBuiltInPanel)
{
    click(plugPanel(BUS_HOST), KEY_POWER);
    EXPECT_EQ(takeEvents(), Events({"Power press", "Power release"}));
    m_devices.unplug(0);
    m_clock.settle();
    click(plugPanel(BUS_USB), KEY_POWER);
    EXPECT_EQ(takeEvents(), Events());
}

TEST_F(FrontPanelTest, TellsWhetherHeadphonesAreIn)
{
    auto &panel = plugPanel();
    panel.setSwitch(SW_HEADPHONE_INSERT, true);
    m_clock.settle();
    panel.setSwitch(SW_HEADPHONE_INSERT, false);
    m_clock.settle();
    EXPECT_EQ(takeEvents(), Events({"SWLineOut on", "SWLineOut off"}));
}

TEST_F(FrontPanelTest, StopsGettingLouderWhenThePanelGoes)
{
    plugPanel().press(KEY_VOLUMEUP);
    m_clock.advance(800ms);
    EXPECT_EQ(takeEvents(), Events({"VolumeUp press", "VolumeUp long press"}));
    m_devices.unplug(0, Vorn::Sim::InputSubsystem::Unread::Lost);
    m_clock.advance(1h);
    EXPECT_EQ(takeEvents(), Events()); // nor is there a release: a product must not wait for one
}

} // namespace

int main(int argc, char *argv[])
{
    const log4cplus::Initializer logging;
    log4cplus::BasicConfigurator::doConfigure(log4cplus::Logger::getDefaultHierarchy(), true);
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.setLogLevel(log4cplus::ERROR_LOG_LEVEL);
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
