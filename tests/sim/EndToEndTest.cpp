#include "BasicInputHandler.h"
#include "Input.h"
#include "InputSubsystem.h"
#include "LinuxInputListener.h"
#include "VirtualClock.h"

#include <gmock/gmock.h>

#include <memory>

using namespace std::chrono_literals;
using namespace Vorn::Sim;

namespace {

class BatchRecorder : public InputHandler
{
public:
    void setId(const QString &) override { }
    void invalidate() override { }
    void processEvent(const QList<input_event> &events) override { batches.append(events); }

    QList<QList<input_event>> batches;
};

class DeviceManager : public BasicInputHandler
{
public:
    void addDevice(const QString &device, const QString &name) override
    {
        log << QStringLiteral("+%1 %2").arg(device, name);
    }

    void removeDevice(const QString &device) override
    {
        log << QStringLiteral("-%1").arg(device);
        BasicInputHandler::removeDevice(device);
    }

    QStringList log;
};

const DeviceDescription panel =
    DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK}).withAutoRepeat();

} // namespace

TEST(EndToEnd, AListenerReadsASimulatedDevice)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    BatchRecorder receiver;
    {
        const LinuxInputListener listener(&receiver, node.path(), LinuxInputListener::Key);
        EXPECT_EQ(listener.bus(), InputEvent::Bus::LocalUI);
        node.press(KEY_OK);
        clock.advance(10s);
        node.release(KEY_OK);
        clock.settle();
    }
    ASSERT_EQ(receiver.batches.size(), 2);
    EXPECT_EQ(receiver.batches[0].size(), 4) << "the new repeat settings, the press, its report";
    EXPECT_EQ(receiver.batches[1].size(), 2);
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST(EndToEnd, ADeviceManagerFollowsHotPlugging)
{
    VirtualClock clock;
    InputSubsystem subsystem(InputSubsystem::Directory::ComesAndGoes);
    {
        DeviceManager manager;
        clock.settle();
        EXPECT_EQ(manager.log, QStringList());
        subsystem.plug(0, panel);
        clock.settle();
        subsystem.plug(3, panel.withMode(0));
        clock.settle();
        subsystem.setPermissions(3, 0660);
        clock.settle();
        subsystem.unplug(0);
        clock.settle();
        EXPECT_EQ(manager.log,
                  QStringList() << QStringLiteral("+/dev/input/event0 panel")
                                << QStringLiteral("+/dev/input/event3 panel")
                                << QStringLiteral("-/dev/input/event0"));
        EXPECT_EQ(subsystem.node(0).openDescriptors(), 0);
        EXPECT_EQ(subsystem.node(3).openDescriptors(), 1) << "one listener finds no switches";
    }
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}
