#include "BasicInputHandler.h"

#include "Devices.h"
#include "InputSubsystem.h"
#include "VirtualClock.h"

#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Values;
using Vorn::Sim::CallCounts;
using Vorn::Sim::DeviceDescription;
using Vorn::Sim::SystemCall;

DeviceDescription keyboard()
{
    return DeviceDescription::keyboard("keys", BUS_HOST, {KEY_A});
}

/// A device manager and the calls each of its passes makes on the nodes.
class ScanCalls : public testing::TestWithParam<int>
{
protected:
    /// The number of nodes, starting at event0.
    static int nodes() { return GetParam(); }

    void plug(int count)
    {
        for (int number = 0; number < count; ++number)
            subsystem.plug(number, keyboard());
    }

    void start()
    {
        devices = std::make_unique<Devices>();
        clock.settle();
        devices->take();
        forget();
    }

    void pass()
    {
        QMetaObject::invokeMethod(devices.get(), "on_inputWatcher_changed",
                                  Q_ARG(QString, QStringLiteral("/dev/input/")));
    }

    void forget()
    {
        before = subsystem.callCounts();
        subsystem.clearSystemCalls();
    }

    /// Opens, ioctls, closes and reads since forget().
    std::vector<quint64> counts() const
    {
        const CallCounts now = subsystem.callCounts();
        return {now.opens - before.opens, now.ioctls - before.ioctls, now.closes - before.closes,
                now.reads - before.reads};
    }

    /// The calls made on node @p nodeNumber since forget(), in order.
    std::vector<std::string> calls(int nodeNumber) const
    {
        static const std::map<unsigned long, std::string> requests = {
            {EVIOCGNAME(255), "scanned name"},
            {EVIOCGBIT(0, 31), "capabilities"},
            {EVIOCGID, "identity"},
            {EVIOCGNAME(256), "name"},
            {EVIOCSREP, "auto-repeat"},
        };
        std::vector<std::string> result;
        const auto path = "/dev/input/event" + QByteArray::number(nodeNumber);
        for (const SystemCall &call : subsystem.systemCalls(path)) {
            switch (call.kind) {
            case SystemCall::Kind::Open:
                result.emplace_back(call.error == 0 ? "open" : "failed open");
                break;
            case SystemCall::Kind::Ioctl:
                result.push_back(requests.at(call.request));
                break;
            case SystemCall::Kind::Close:
                result.emplace_back("close");
                break;
            case SystemCall::Kind::Read:
                result.emplace_back("read");
                break;
            }
        }
        return result;
    }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    std::unique_ptr<Devices> devices;
    CallCounts before;
};

class ScanCallsOfAnIdlePass : public ScanCalls
{ };

TEST_P(ScanCallsOfAnIdlePass, AreOneOpenForEachNumberAndTwoMoreForEachNode)
{
    plug(nodes());
    start();
    pass();
    EXPECT_THAT(counts(), ElementsAre(10, nodes(), nodes(), 0));
    for (int number = 0; number < nodes(); ++number)
        EXPECT_THAT(calls(number), ElementsAre("open", "scanned name", "close"));
    for (int number = nodes(); number < 10; ++number)
        EXPECT_THAT(calls(number), ElementsAre("failed open"));
    EXPECT_THAT(devices->calls, IsEmpty());
}

TEST_P(ScanCallsOfAnIdlePass, AreTheSameInEveryPass)
{
    plug(nodes());
    start();
    for (int i = 0; i < 5; ++i)
        pass();
    EXPECT_THAT(counts(), ElementsAre(50, 5 * nodes(), 5 * nodes(), 0));
}

// The scan closes every node it opens; only the listeners' descriptors stay open.
TEST_P(ScanCallsOfAnIdlePass, LeaveOpenWhatWasOpen)
{
    plug(nodes());
    start();
    pass();
    EXPECT_EQ(subsystem.openDescriptors(), nodes());
}

INSTANTIATE_TEST_SUITE_P(Nodes, ScanCallsOfAnIdlePass, Values(0, 1, 5, 10));

class ScanCallsOfAnArrival : public ScanCalls
{ };

// Each listener opens the node itself and learns capabilities, identity and name. On a device
// without switches, the switch listener closes it again; its further requests reach no device.
TEST_P(ScanCallsOfAnArrival, AreThoseOfAnIdlePassAndOfTwoListeners)
{
    plug(nodes() - 1);
    start();
    const int arrived = nodes() - 1;
    subsystem.plug(arrived, keyboard());
    clock.settle();
    EXPECT_THAT(devices->calls,
                ElementsAre("add /dev/input/event" + std::to_string(arrived) + " keys"));
    EXPECT_THAT(calls(arrived),
                ElementsAre("open", "scanned name", "close", "open", "capabilities", "identity",
                            "name", "auto-repeat", "open", "capabilities", "close"));
    EXPECT_THAT(counts(), ElementsAre(10 + 2, nodes() + 4 + 1, nodes() + 1, 0));
    for (int number = 0; number < nodes() - 1; ++number)
        EXPECT_THAT(calls(number), ElementsAre("open", "scanned name", "close"));
}

TEST_P(ScanCallsOfAnArrival, WithSwitchesAreThoseOfTwoListenersThatStayOpen)
{
    plug(nodes() - 1);
    start();
    const int arrived = nodes() - 1;
    subsystem.plug(arrived, keyboard().withSwitches({SW_LINEIN_INSERT}));
    clock.settle();
    EXPECT_THAT(calls(arrived),
                ElementsAre("open", "scanned name", "close", "open", "capabilities", "identity",
                            "name", "auto-repeat", "open", "capabilities", "identity", "name",
                            "auto-repeat"));
    EXPECT_THAT(counts(), ElementsAre(10 + 2, nodes() + 4 + 4, nodes(), 0));
}

// When a device goes, only its two listeners' descriptors are closed.
TEST_P(ScanCallsOfAnArrival, AreFollowedByTwoClosesAtTheDeparture)
{
    plug(nodes() - 1);
    start();
    const int arrived = nodes() - 1;
    subsystem.plug(arrived, keyboard().withSwitches({SW_LINEIN_INSERT}));
    clock.settle();
    subsystem.unplug(arrived);
    forget();
    pass();
    EXPECT_THAT(calls(arrived), ElementsAre("failed open", "close", "close"));
    EXPECT_THAT(counts(), ElementsAre(10, nodes() - 1, nodes() - 1 + 2, 0));
}

INSTANTIATE_TEST_SUITE_P(Nodes, ScanCallsOfAnArrival, Values(1, 5, 10));

} // namespace
