#include "LibraryFacts.h"

#include "Devices.h"
#include "EventRecorder.h"
#include "InputSubsystem.h"
#include "LinuxInputListener.h"
#include "VirtualClock.h"

#include <gmock/gmock.h>

#include <chrono>
#include <numeric>
#include <set>

// Each test fails if its fact is off by one, in either direction.

using namespace Vorn::Sim;
using namespace Vorn;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

/// A receiver that keeps the codes of the records it gets.
class CodeCollector : public InputHandler
{
public:
    void setId(const QString &) override { }
    void invalidate() override { }
    void processEvent(const QList<input_event> &events) override
    {
        for (const input_event &event : events)
            codes.push_back(event.code);
    }

    std::vector<int> codes;
};

InputEvent::Bus busOfDeviceNamed(const char *name, int kernelBus)
{
    InputSubsystem subsystem;
    subsystem.plug(0, DeviceDescription::keyboard(name, kernelBus, {KEY_OK}));
    return LinuxInputListener(nullptr, "/dev/input/event0", LinuxInputListener::Key).bus();
}

/// The sizes with which a request was made.
std::set<int> sizesOf(unsigned long request, const QVector<SystemCall> &calls)
{
    std::set<int> sizes;
    for (const SystemCall &call : calls) {
        if (call.kind == SystemCall::Kind::Ioctl && _IOC_TYPE(call.request) == _IOC_TYPE(request)
            && _IOC_NR(call.request) == _IOC_NR(request))
            sizes.insert(static_cast<int>(call.size));
    }
    return sizes;
}

/// What the library calls while it looks for devices and finds one.
QVector<SystemCall> callsOfAScan()
{
    VirtualClock clock;
    InputSubsystem subsystem;
    subsystem.plug(0, DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK}));
    Devices devices;
    clock.settle();
    return subsystem.systemCalls();
}

/// What it calls to read a device, its keys and its switches.
QVector<SystemCall> callsOfListeners()
{
    InputSubsystem subsystem;
    subsystem.plug(0,
                   DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK})
                       .withSwitches({SW_LINEIN_INSERT}, {}));
    LinuxInputListener keys(nullptr, "/dev/input/event0", LinuxInputListener::Key);
    LinuxInputListener switches(nullptr, "/dev/input/event0", LinuxInputListener::Switch);
    keys.getInputStatus();
    switches.getInputStatus();
    return subsystem.systemCalls();
}

} // namespace

TEST(LibraryFacts, ALongPressIsReportedAtTheFirstTickAndNoEarlier)
{
    VirtualClock clock;
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, DeviceDescription::keyboard("panel", BUS_USB, {KEY_OK}));
    BasicKeyInputHandler handler("panel");
    handler.setListener(new LinuxInputListener(&handler, node.path(), LinuxInputListener::Key));
    handler.registerKey(KEY_OK, InputEvent::Confirm, false);
    handler.enableLongPress(KEY_OK, false, {1});
    EventRecorder events;

    node.press(KEY_OK);
    clock.advance(milliseconds(tickMs - 1));
    EXPECT_THAT(events.take(), IsEmpty());
    clock.advance(milliseconds(1));
    EXPECT_THAT(
        events.take(),
        ElementsAre(text(InputEvent::Confirm, InputEvent::KeyLongPress, InputEvent::Bus::USB)));
    delete handler.listener();
}

TEST(LibraryFacts, OpensTheNodesBelowNodeCount)
{
    std::set<QByteArray> opened;
    for (const SystemCall &call : callsOfAScan()) {
        if (call.kind == SystemCall::Kind::Open)
            opened.insert(call.path);
    }
    std::set<QByteArray> expected;
    for (int number = 0; number < nodeCount; ++number)
        expected.insert("/dev/input/event" + QByteArray::number(number));
    EXPECT_EQ(opened, expected);
}

TEST(LibraryFacts, OneNamePutsADeviceOnHostlinkWhateverItsKernelBus)
{
    for (const int kernelBus : {BUS_USB, BUS_HOST, BUS_VIRTUAL})
        EXPECT_EQ(busOfDeviceNamed(hostlinkName, kernelBus), InputEvent::Bus::Hostlink);
    for (const char *name : {"Hostlink", "hostlink2", "hostlin", " hostlink", ""})
        EXPECT_EQ(busOfDeviceNamed(name, BUS_USB), InputEvent::Bus::USB) << name;
}

TEST(LibraryFacts, AsksForThePositionsOfSwitchesBelowPositionCodes)
{
    InputSubsystem subsystem;
    subsystem.plug(0, DeviceDescription::switchBox("jacks", BUS_HOST, {SW_LID, SW_MAX}));
    CodeCollector collector;
    LinuxInputListener listener(&collector, "/dev/input/event0", LinuxInputListener::Switch);
    listener.getInputStatus();
    std::vector<int> expected(positionCodes);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_THAT(collector.codes, ElementsAreArray(expected));
}

TEST(LibraryFacts, RequestsHaveTheirSizes)
{
    EXPECT_THAT(sizesOf(EVIOCGNAME(0), callsOfAScan()),
                ElementsAre(scanNameBytes, listenerNameBytes));
    const QVector<SystemCall> calls = callsOfListeners();
    EXPECT_THAT(sizesOf(EVIOCGNAME(0), calls), ElementsAre(listenerNameBytes));
    EXPECT_THAT(sizesOf(EVIOCGBIT(0, 0), calls), ElementsAre(typeBytes));
    EXPECT_THAT(sizesOf(EVIOCGKEY(0), calls), ElementsAre(stateBytes));
    EXPECT_THAT(sizesOf(EVIOCGSW(0), calls), ElementsAre(stateBytes));
}
