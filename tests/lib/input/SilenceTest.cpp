#include "BasicInputHandler.h"

#include "Devices.h"
#include "EventRecorder.h"
#include "InputSubsystem.h"
#include "VirtualClock.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFile>
#include <QTimer>

#include <gmock/gmock.h>

#include <utility>

namespace {

using namespace std::chrono_literals;
using testing::IsEmpty;
using testing::SizeIs;
using Vorn::Sim::DeviceDescription;
using Vorn::Sim::InputSubsystem;

constexpr int timedKey = KEY_VOLUMEUP;
constexpr int untimedKey = KEY_OK;
constexpr int unmappedKey = KEY_F1;

/// Runs the event loop for @p time.
/// @return how often the process was woken meanwhile, not counting what was already pending
quint64 wakeUpsIn(Vorn::Sim::VirtualClock &clock, std::chrono::milliseconds time)
{
    clock.settle();
    const quint64 before = clock.wakeUps();
    clock.advance(time);
    return clock.wakeUps() - before;
}

/// Counts the timeouts of all timers.
class TickCounter : public QObject
{
public:
    TickCounter() { QCoreApplication::instance()->installEventFilter(this); }

    int take() { return std::exchange(m_count, 0); }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        m_count += event->type() == QEvent::Timer ? 1 : 0;
        return false;
    }

private:
    int m_count = 0;
};

/// A complete product, hot-plug watch included, with nothing else to wake up for.
class Silence : public testing::Test
{
protected:
    Silence()
    {
        devices.onAdd = [this](const QString &path, const QString &name) {
            auto *keys = new BasicKeyInputHandler(name);
            devices.addKeyHandler(path, keys, QString());
            keys->registerKey(timedKey, InputEvent::VolumeUp, true);
            keys->enableLongPress(timedKey, true, {600, 200});
            keys->registerKey(untimedKey, InputEvent::Confirm, false);
            auto *jacks = new BasicSwInputHandler(name);
            devices.addSwitchHandler(path, jacks, QString());
            jacks->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
        };
        clock.settle();
    }

    quint64 wakeUpsIn(std::chrono::milliseconds time) { return ::wakeUpsIn(clock, time); }

    Vorn::Sim::VirtualClock clock;
    InputSubsystem subsystem;
    Vorn::Sim::InputNode &panel = subsystem.plug(
        0,
        DeviceDescription::keyboard("panel", BUS_HOST, {timedKey, untimedKey, unmappedKey})
            .withSwitches({SW_LINEIN_INSERT}));
    EventRecorder events;
    Devices devices;
};

TEST_F(Silence, IsKeptWhileNoKeyIsHeld)
{
    EXPECT_EQ(wakeUpsIn(60s), 0);
    // And the product was listening all along.
    panel.press(untimedKey);
    panel.release(untimedKey);
    clock.settle();
    EXPECT_THAT(events.texts(), SizeIs(2));
}

TEST(SilenceWithoutDevices, IsKeptUntilOneArrives)
{
    Vorn::Sim::VirtualClock clock;
    InputSubsystem subsystem(InputSubsystem::Directory::ComesAndGoes);
    const Devices devices;
    EXPECT_EQ(wakeUpsIn(clock, 60s), 0);
    subsystem.plug(0, DeviceDescription::keyboard("panel", BUS_HOST, {untimedKey}));
    clock.settle();
    EXPECT_THAT(devices.calls, SizeIs(1));
}

TEST_F(Silence, IsKeptWhileOtherDevicesComeAndGo)
{
    clock.settle();
    const quint64 before = clock.wakeUps();
    QFile disk(subsystem.folder() + QStringLiteral("/sda"));
    ASSERT_TRUE(disk.open(QIODevice::WriteOnly));
    disk.close();
    clock.advance(1s);
    ASSERT_TRUE(disk.remove());
    clock.advance(1s);
    EXPECT_EQ(clock.wakeUps(), before);
}

TEST_F(Silence, IsBrokenTwentyTimesASecondWhileATimedKeyIsHeld)
{
    TickCounter ticks;
    panel.press(timedKey);
    EXPECT_EQ(wakeUpsIn(10s), 200);
    EXPECT_EQ(ticks.take(), 200);
    // The press, and the long presses from 0.6 s on.
    EXPECT_THAT(events.texts(), SizeIs(1 + 48));
}

TEST_F(Silence, ReturnsWithOneTickWithinATenthOfASecondAfterTheRelease)
{
    TickCounter ticks;
    // Releases between two ticks and on a tick.
    for (auto hold = 1000ms; hold <= 1050ms; hold += 10ms) {
        panel.press(timedKey);
        clock.advance(hold);
        panel.release(timedKey);
        clock.settle();
        ticks.take();
        clock.advance(100ms);
        EXPECT_EQ(ticks.take(), 1) << hold.count() << " ms";
        EXPECT_EQ(wakeUpsIn(60s), 0) << hold.count() << " ms";
    }
}

TEST_F(Silence, ReturnsWithTheUnplugOfADeviceWhoseKeyIsHeld)
{
    panel.press(timedKey);
    clock.advance(1s);
    subsystem.unplug(0, InputSubsystem::Unread::Lost);
    EXPECT_EQ(wakeUpsIn(60s), 0);
}

TEST_F(Silence, ReturnsAtOnceWhenTheHandlerOfAHeldKeyIsDeselected)
{
    panel.press(timedKey);
    clock.advance(1s);
    devices.selectHandler(QStringLiteral("text"));
    EXPECT_EQ(wakeUpsIn(60s), 0);
}

TEST_F(Silence, IsKeptWhileAnUntimedKeyIsHeld)
{
    panel.press(untimedKey);
    EXPECT_EQ(wakeUpsIn(60s), 0);
    panel.release(untimedKey);
    clock.settle();
    EXPECT_THAT(events.texts(), SizeIs(2));
}

TEST_F(Silence, IsKeptWhileAnUnmappedKeyIsHeld)
{
    panel.press(unmappedKey);
    EXPECT_EQ(wakeUpsIn(60s), 0);
    EXPECT_THAT(events.texts(), IsEmpty());
}

TEST_F(Silence, IsKeptWhileASwitchIsOn)
{
    panel.setSwitch(SW_LINEIN_INSERT, true);
    EXPECT_EQ(wakeUpsIn(60s), 0);
    EXPECT_THAT(events.texts(), SizeIs(1));
}

} // namespace
