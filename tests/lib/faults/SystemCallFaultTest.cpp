#include "FaultRig.h"

#include <gmock/gmock.h>

#include <cstring>
#include <functional>
#include <ostream>

using testing::IsEmpty;
using Vorn::Sim::InputNode;

namespace {

constexpr int victim = FaultRig::victimNumber;
constexpr int other = FaultRig::otherNumber;
constexpr int later = FaultRig::laterNumber;

/// What is left of a device whose arrival met with a fault.
struct Remains
{
    bool isFound;
    bool hasKeys;
    bool hasSwitches;
    InputEvent::Bus bus = InputEvent::Bus::LocalUI;
};

constexpr Remains everything = {true, true, true};
constexpr Remains nothing = {false, false, false};
constexpr Remains switchesOnly = {true, false, true};
constexpr Remains keysOnly = {true, true, false};
constexpr Remains allButItsBus = {true, true, true, InputEvent::Bus::NoBus};

/// One call on the victim's node that fails once.
struct Fault
{
    const char *name;
    std::function<void(InputNode &, int error)> arm;
    /// When it fails while the device arrives.
    Remains remains;
    /// Whether a pass takes a known device for gone when it fails.
    bool isGone;
    /// Whether Qt makes it and so makes it again if it was interrupted.
    bool isQts = false;
};

void PrintTo(const Fault &fault, std::ostream *stream)
{
    *stream << fault.name;
}

std::function<void(InputNode &, int)> failsOpen(int after)
{
    return [after](InputNode &node, int error) { node.failOpen(error, 1, after); };
}

std::function<void(InputNode &, int)> failsIoctl(unsigned long request, int after)
{
    return
        [request, after](InputNode &node, int error) { node.failIoctl(request, error, 1, after); };
}

class SystemCallFault : public testing::TestWithParam<Fault>
{
protected:
    /// Whether nobody notices @p error, because the call is made again.
    static bool isRetried(int error) { return GetParam().isQts && error == EINTR; }

    static Remains remainsAfter(int error)
    {
        return isRetried(error) ? everything : GetParam().remains;
    }

    static void expectRemains(FaultRig &rig, const Remains &remains)
    {
        EXPECT_EQ(rig.isKnown(victim), remains.isFound);
        using Texts = std::vector<std::string>;
        EXPECT_EQ(rig.tap(victim), remains.hasKeys ? FaultRig::taps(victim, remains.bus) : Texts());
        EXPECT_EQ(rig.flip(victim), remains.hasSwitches ? FaultRig::flips(victim) : Texts());
        EXPECT_EQ(rig.subsystem.node(victim).openDescriptors(),
                  (remains.hasKeys ? 1 : 0) + (remains.hasSwitches ? 1 : 0));
    }

    /// What has to be so whatever failed: the other devices go on, the next one is found, and so is
    /// the victim, at the latest when it is plugged in again.
    static void expectTheRestToWork(FaultRig &rig, const Remains &remains)
    {
        rig.expectToWork(other);
        rig.expectToHearOf(later);
        expectRemains(rig, remains.isFound ? remains : everything);
        rig.subsystem.unplug(victim);
        rig.clock.settle();
        rig.expectToHearOf(victim);
    }
};

TEST_P(SystemCallFault, AtTheStartLeavesTheRestWorking)
{
    for (const int error : kernelErrors) {
        SCOPED_TRACE(std::strerror(error));
        FaultRig rig;
        GetParam().arm(rig.plug(victim), error);
        rig.plug(other);
        rig.start();
        expectRemains(rig, remainsAfter(error));
        expectTheRestToWork(rig, remainsAfter(error));
    }
}

TEST_P(SystemCallFault, WhenTheDeviceArrivesLeavesTheRestWorking)
{
    for (const int error : kernelErrors) {
        SCOPED_TRACE(std::strerror(error));
        FaultRig rig;
        rig.plug(other);
        rig.start();
        GetParam().arm(rig.subsystem.node(victim), error);
        rig.plug(victim);
        expectRemains(rig, remainsAfter(error));
        expectTheRestToWork(rig, remainsAfter(error));
    }
}

// A device whose node cannot be opened or named for a moment is taken for unplugged; that loses its
// release, as unplugging may.
TEST_P(SystemCallFault, InAHoldLeavesTheReleaseUnlessTheDeviceSeemsGone)
{
    for (const int error : kernelErrors) {
        SCOPED_TRACE(std::strerror(error));
        FaultRig rig;
        rig.plug(victim);
        rig.plug(other);
        rig.start();
        EXPECT_EQ(rig.press(victim), FaultRig::pressed(victim));
        EXPECT_EQ(rig.press(other), FaultRig::pressed(other));
        GetParam().arm(rig.subsystem.node(victim), error);
        rig.causePass();
        const bool isGone = GetParam().isGone && !isRetried(error);
        EXPECT_EQ(rig.isKnown(victim), !isGone);
        if (isGone)
            EXPECT_THAT(rig.release(victim), IsEmpty());
        else
            EXPECT_EQ(rig.release(victim), FaultRig::released(victim));
        EXPECT_EQ(rig.release(other), FaultRig::released(other));
        rig.subsystem.node(victim).clearFailures();
        rig.expectToHearOf(later);
        rig.expectToWork(victim);
        rig.expectToWork(other);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Calls, SystemCallFault,
    testing::Values(
        Fault{"OpenOfTheScan", failsOpen(0), nothing, true, true},
        Fault{"OpenOfTheKeyListener", failsOpen(1), switchesOnly, false},
        Fault{"OpenOfTheSwitchListener", failsOpen(2), keysOnly, false},
        Fault{"NameForTheScan", failsIoctl(EVIOCGNAME(0), 0), nothing, true},
        Fault{"NameForTheKeyListener", failsIoctl(EVIOCGNAME(0), 1), everything, false},
        Fault{"NameForTheSwitchListener", failsIoctl(EVIOCGNAME(0), 2), everything, false},
        Fault{"TypesForTheKeyListener", failsIoctl(EVIOCGBIT(0, 0), 0), switchesOnly, false},
        Fault{"TypesForTheSwitchListener", failsIoctl(EVIOCGBIT(0, 0), 1), keysOnly, false},
        Fault{"Identity", failsIoctl(EVIOCGID, 0), allButItsBus, false},
        Fault{"AutoRepeatOff", failsIoctl(EVIOCSREP, 0), everything, false}),
    [](const auto &parameter) { return parameter.param.name; });

// Both listeners of the device close, and its release is lost; nobody else notices.
TEST(ReadFault, InAHoldClosesThatDeviceAlone)
{
    for (const int error : kernelErrors) {
        SCOPED_TRACE(std::strerror(error));
        FaultRig rig;
        InputNode &node = rig.plug(victim);
        rig.plug(other);
        rig.start();
        rig.press(victim);
        rig.press(other);
        node.failRead(error);
        rig.clock.settle();
        EXPECT_EQ(node.openDescriptors(), 0);
        EXPECT_THAT(rig.release(victim), IsEmpty());
        EXPECT_EQ(rig.release(other), FaultRig::released(other));
        rig.expectToHearOf(later);
        EXPECT_THAT(rig.tap(victim), IsEmpty());
        rig.subsystem.unplug(victim);
        rig.clock.settle();
        rig.expectToHearOf(victim);
        rig.expectToWork(other);
    }
}

TEST(ReadFault, OfTheFirstReadIsNoDifferent)
{
    for (const int error : kernelErrors) {
        SCOPED_TRACE(std::strerror(error));
        FaultRig rig;
        InputNode &node = rig.plug(victim);
        node.failRead(error, InputNode::Forever);
        rig.plug(other);
        rig.start();
        EXPECT_EQ(node.openDescriptors(), 0);
        rig.expectToWork(other);
        rig.expectToHearOf(later);
        node.clearFailures();
        rig.subsystem.unplug(victim);
        rig.clock.settle();
        rig.expectToHearOf(victim);
    }
}

/// A read that returns less than a packet: @p whole records of it, and then @p bytes.
QByteArray cut(int records, int bytes)
{
    const input_event record = InputNode::record(EV_KEY, KEY_OK, 2);
    const QByteArray one(reinterpret_cast<const char *>(&record), sizeof(record));
    return one.repeated(records) + one.left(bytes);
}

// A repeat is reported as a press: immediate keys are not filtered.
TEST(ShortRead, InAHoldLeavesTheDeviceOpenAndTheReleaseToCome)
{
    for (const int records : {0, 1, 2}) {
        for (const int bytes : {0, 1, static_cast<int>(sizeof(input_event)) - 1}) {
            SCOPED_TRACE(std::to_string(records) + " records and " + std::to_string(bytes));
            FaultRig rig;
            InputNode &node = rig.plug(victim);
            rig.plug(other);
            rig.start();
            rig.press(victim);
            rig.press(other);
            node.sendBytes(cut(records, bytes));
            rig.clock.settle();
            EXPECT_EQ(rig.recorder.take().size(), static_cast<std::size_t>(records));
            EXPECT_EQ(node.openDescriptors(), 2);
            EXPECT_EQ(rig.release(victim), FaultRig::released(victim));
            EXPECT_EQ(rig.release(other), FaultRig::released(other));
            rig.expectToHearOf(later);
            rig.expectToWork(victim);
        }
    }
}

/// The requests of getInputStatus(), and how many events it causes when they fail.
struct StatusFault
{
    const char *name;
    unsigned long request;
    std::size_t events;
};

class StatusRequestFault : public testing::TestWithParam<StatusFault>
{ };

// Without an answer, all switches are reported as last known; without the types, nothing is.
TEST_P(StatusRequestFault, InAHoldLeavesEverythingElseAsItIs)
{
    for (const int error : kernelErrors) {
        SCOPED_TRACE(std::strerror(error));
        FaultRig rig;
        InputNode &node = rig.plug(victim);
        rig.plug(other);
        rig.start();
        rig.press(victim);
        rig.press(other);
        node.failIoctl(GetParam().request, error, 2);
        rig.askForStatus(victim);
        EXPECT_EQ(rig.recorder.take().size(), GetParam().events);
        EXPECT_EQ(rig.release(victim), FaultRig::released(victim));
        EXPECT_EQ(rig.release(other), FaultRig::released(other));
        rig.expectToHearOf(later);
        rig.expectToWork(victim);
    }
}

INSTANTIATE_TEST_SUITE_P(Requests, StatusRequestFault,
                         testing::Values(StatusFault{"Types", EVIOCGBIT(0, 0), 0},
                                         StatusFault{"Keys", EVIOCGKEY(0), 1},
                                         StatusFault{"Switches", EVIOCGSW(0), 1}),
                         [](const auto &parameter) { return parameter.param.name; });

} // namespace
