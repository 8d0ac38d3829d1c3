#include "EmulatorMonitor.h"
#include "GuestTest.h"
#include "KeyProcessing.h"
#include "UinputDevice.h"

#include <QFileSystemWatcher>

#include <malloc.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <thread>

namespace {

using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

int openDescriptors()
{
    const QDir folder(QStringLiteral("/proc/self/fd"));
    return static_cast<int>(folder.entryList(QDir::AllEntries | QDir::System).size());
}

/// Bytes allocated and not freed.
qint64 usedMemory()
{
    return static_cast<qint64>(mallinfo2().uordblks);
}

/// The memory that long-press detectors leave behind: their timers, which they do not delete, on
/// purpose.
qint64 leftByDetectors(int count)
{
    const qint64 before = usedMemory();
    for (int i = 0; i < count; ++i)
        delete new LongPressDetect;
    return usedMemory() - before;
}

// How much the allocator's overhead may vary: in total, and per object that is left behind. A
// leaked listener or handler is several times as large.
constexpr qint64 allocatorSlack = 4096;
constexpr qint64 allocatorSlackPerCycle = 64;

class KernelHotPlugTest : public GuestTest
{
protected:
    void SetUp() override
    {
        GuestTest::SetUp();
        devices = std::make_unique<Devices>();
        devices->onAdd = [this](const QString &node, const QString &name) {
            if (hasHandlers) {
                auto *keys = new BasicKeyInputHandler(name);
                devices->addKeyHandler(node, keys, QString());
                keys->registerKey(KEY_OK, InputEvent::Confirm, true);
                keys->registerKey(KEY_INFO, InputEvent::Info, true);
                keys->enableLongPress(KEY_INFO, true, {1500, 100});
                auto *switches = new BasicSwInputHandler(name);
                devices->addSwitchHandler(node, switches, QString());
            }
        };
    }

    bool waitForCalls(std::size_t count)
    {
        return waitFor([&] { return devices->calls.size() >= count; });
    }

    QStringList watched() const
    {
        return devices->findChild<QFileSystemWatcher *>()->directories();
    }

    /// Plugs in and unplugs @p cycles times; the product must be notified of both each time.
    void plugAndUnplug(int cycles, const std::string &node, const std::function<void()> &plug,
                       const std::function<void()> &unplug)
    {
        for (int i = 0; i < cycles; ++i) {
            plug();
            ASSERT_TRUE(waitForCalls(1)) << "cycle " << i;
            unplug();
            ASSERT_TRUE(waitForCalls(2)) << "cycle " << i;
            const std::vector<std::string> calls = devices->take();
            ASSERT_THAT(calls, ElementsAre(StartsWith("add " + node + " "), "remove " + node))
                << "cycle " << i;
            const std::vector<std::string> texts = log.texts();
            ASSERT_EQ(std::count(texts.begin(), texts.end(), " ---> added '" + node + "'"), 1);
            ASSERT_EQ(std::count(texts.begin(), texts.end(), "Removing " + node), 1);
            log.clear();
        }
    }

    static UinputDescription panel(const std::string &name = "front-panel")
    {
        return {name, BUS_HOST, {KEY_OK, KEY_INFO}, {SW_LINEIN_INSERT}};
    }

    bool hasHandlers = true;
    std::unique_ptr<Devices> devices;
};

TEST_F(KernelHotPlugTest, AHundredArrivalsAndDeparturesLeaveNothingBehind)
{
    // The product's own panel stays; otherwise the whole folder would vanish each time.
    UinputDevice staying(panel());
    ASSERT_TRUE(waitForCalls(1));
    devices->take();
    log.clear();
    std::unique_ptr<UinputDevice> guest;
    const auto plug = [&] { guest = std::make_unique<UinputDevice>(panel("guest")); };
    const auto unplug = [&] { guest.reset(); };

    const auto cyclesLeave = [&](bool handlers, int &descriptors) {
        hasHandlers = handlers;
        // Warm up: some objects are created once.
        plugAndUnplug(5, "/dev/input/event1", plug, unplug);
        descriptors = openDescriptors();
        const qint64 memory = usedMemory();
        plugAndUnplug(100, "/dev/input/event1", plug, unplug);
        descriptors = openDescriptors() - descriptors;
        return usedMemory() - memory;
    };
    int descriptors = 0;
    const qint64 left = cyclesLeave(false, descriptors);
    std::cout << "100 cycles without handlers: " << left << " bytes, " << descriptors
              << " descriptors left\n";
    EXPECT_EQ(descriptors, 0);
    EXPECT_LT(left, allocatorSlack);

    const qint64 leftWithHandlers = cyclesLeave(true, descriptors);
    const qint64 timers = leftByDetectors(100);
    std::cout << "100 cycles with handlers: " << leftWithHandlers << " bytes, of them " << timers
              << " of the detectors' timers, " << descriptors << " descriptors left\n";
    EXPECT_EQ(descriptors, 0);
    EXPECT_LT(leftWithHandlers, timers + 100 * allocatorSlackPerCycle);

    staying.press(KEY_OK);
    EXPECT_THAT(waitForEvents(1), ElementsAre(local(InputEvent::Confirm, InputEvent::KeyPressed)));
}

TEST_F(KernelHotPlugTest, TenArrivalsAndDeparturesOfAUsbKeyboard)
{
    UinputDevice staying(panel());
    ASSERT_TRUE(waitForCalls(1));
    devices->take();
    log.clear();
    EmulatorMonitor monitor;
    const auto plug = [&] { monitor.plugKeyboard(); };
    const auto unplug = [&] { monitor.unplugKeyboard(); };
    hasHandlers = false;
    plugAndUnplug(2, "/dev/input/event1", plug, unplug);
    const int descriptors = openDescriptors();
    const qint64 memory = usedMemory();
    plugAndUnplug(10, "/dev/input/event1", plug, unplug);
    const qint64 left = usedMemory() - memory;
    std::cout << "10 cycles: " << left << " bytes, " << openDescriptors() - descriptors
              << " descriptors left\n";
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_LT(left, allocatorSlack);
}

TEST_F(KernelHotPlugTest, AKeyHeldAtTheUnplugFiresNoMore)
{
    UinputDevice staying(panel());
    ASSERT_TRUE(waitForCalls(1));
    auto guest = std::make_unique<UinputDevice>(panel("guest"));
    ASSERT_TRUE(waitForCalls(2));
    const std::string pressed = local(InputEvent::Info, InputEvent::KeyPressed);
    const std::string released = local(InputEvent::Info, InputEvent::KeyReleased);
    const std::string held = local(InputEvent::Info, InputEvent::KeyLongPress);

    guest->press(KEY_INFO);
    EXPECT_THAT(waitForEvents(1), ElementsAre(pressed));
    // In another thread, so that the library runs meanwhile.
    std::thread unplugging([&] { guest.reset(); });
    const bool isRemoved = waitForCalls(3);
    unplugging.join();
    ASSERT_TRUE(isRemoved);
    EXPECT_EQ(devices->calls.back(), "remove /dev/input/event1");
    // The release that the kernel adds is either read before the node is found dead, or never.
    const std::vector<std::string> atUnplug = events.take();
    std::cout << (atUnplug.empty() ? "without" : "with") << " the kernel's release\n";
    EXPECT_THAT(atUnplug, AnyOf(IsEmpty(), ElementsAre(released)));
    EXPECT_THAT(log.texts(log4cplus::WARN_LOG_LEVEL), IsEmpty());
    // Either a read finds the node dead, or a scan of the folder finds it gone, whichever is first.
    EXPECT_THAT(log.texts(log4cplus::ERROR_LOG_LEVEL),
                AnyOf(IsEmpty(), Each("Error reading from event device /dev/input/event1")));

    // Wait longer than the long press that was pending: it is never reported.
    staying.press(KEY_INFO);
    EXPECT_THAT(waitForEvents(4), ElementsAre(pressed, held, held, held));
}

TEST_F(KernelHotPlugTest, AnEleventhDeviceIsNeverReported)
{
    std::vector<std::unique_ptr<UinputDevice>> plugged;
    std::vector<std::string> expected;
    for (int i = 0; i < 11; ++i) {
        plugged.push_back(std::make_unique<UinputDevice>(panel("panel" + std::to_string(i))));
        ASSERT_EQ(plugged.back()->node(), QStringLiteral("/dev/input/event%1").arg(i));
        if (i < 10)
            expected.push_back("add " + plugged.back()->node().toStdString() + " panel"
                               + std::to_string(i));
    }
    ASSERT_TRUE(waitForCalls(10));
    EXPECT_EQ(devices->take(), expected);
    // Not even when a lower number becomes free.
    plugged[3].reset();
    ASSERT_TRUE(waitForCalls(1));
    EXPECT_THAT(devices->take(), ElementsAre("remove /dev/input/event3"));
    plugged[10]->press(KEY_OK);
    plugged[9]->press(KEY_OK);
    plugged[9]->release(KEY_OK);
    EXPECT_THAT(waitForEvents(2),
                ElementsAre(local(InputEvent::Confirm, InputEvent::KeyPressed),
                            local(InputEvent::Confirm, InputEvent::KeyReleased)));
    plugged[3] = std::make_unique<UinputDevice>(panel("back"));
    ASSERT_TRUE(waitForCalls(1));
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event3 back"));
    EXPECT_THAT(log.texts(), Not(Contains(testing::HasSubstr("event10"))));
}

TEST_F(KernelHotPlugTest, TheFolderMayGoWithItsLastNodeAndComeBack)
{
    auto only = std::make_unique<UinputDevice>(panel("first"));
    ASSERT_TRUE(waitForCalls(1));
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event0 first"));
    EXPECT_THAT(watched(), ElementsAre(QStringLiteral("/dev/input/")));

    only.reset();
    EXPECT_FALSE(QDir(QStringLiteral("/dev/input")).exists());
    ASSERT_TRUE(waitFor([this] { return watched().contains(QStringLiteral("/dev/")); }));
    EXPECT_THAT(devices->take(), IsEmpty()) << "known devices stay until the folder is back";
    // Both listeners find the node dead.
    const std::string dead = "Error reading from event device /dev/input/event0";
    ASSERT_TRUE(waitFor([&] { return log.texts(log4cplus::ERROR_LOG_LEVEL).size() >= 2; }));
    EXPECT_THAT(log.texts(log4cplus::ERROR_LOG_LEVEL), ElementsAre(dead, dead));
    EXPECT_THAT(log.texts(log4cplus::INFO_LOG_LEVEL), Not(Contains(StartsWith("Removing"))));

    UinputDevice second(panel("second"));
    ASSERT_TRUE(waitFor([this] { return watched().contains(QStringLiteral("/dev/input/")); }));
    UinputDevice third(panel("third"));
    ASSERT_TRUE(waitFor([this] {
        return testing::Matches(Contains("add /dev/input/event1 third"))(devices->calls);
    }));
    EXPECT_THAT(watched(), ElementsAre(QStringLiteral("/dev/input/")));
    // The device that reuses the first one's node is taken for it, unless the library scanned
    // between the return of the folder and that of the node.
    const bool isKept = devices->calls.size() == 1;
    std::cout << (isKept ? "kept" : "renewed") << " event0\n";
    if (!isKept) {
        EXPECT_THAT(devices->calls,
                    AnyOf(ElementsAre("remove /dev/input/event0", "add /dev/input/event0 second",
                                      "add /dev/input/event1 third"),
                          ElementsAre("remove /dev/input/event0", "add /dev/input/event1 third",
                                      "add /dev/input/event0 second")));
    }

    // If it was taken for the first one, its listeners died with the first one.
    second.press(KEY_OK);
    second.release(KEY_OK);
    third.press(KEY_INFO);
    std::vector<std::string> expected{local(InputEvent::Info, InputEvent::KeyPressed)};
    if (!isKept)
        expected.insert(expected.begin(),
                        {local(InputEvent::Confirm, InputEvent::KeyPressed),
                         local(InputEvent::Confirm, InputEvent::KeyReleased)});
    EXPECT_EQ(waitForEvents(expected.size()), expected);
}

TEST_F(KernelHotPlugTest, TheFolderMayComeAfterTheStart)
{
    ASSERT_TRUE(waitFor([this] { return watched() == QStringList{QStringLiteral("/dev/")}; }));
    EXPECT_THAT(devices->calls, IsEmpty());
    UinputDevice device(panel());
    ASSERT_TRUE(waitForCalls(1));
    EXPECT_THAT(devices->calls, ElementsAre("add /dev/input/event0 front-panel"));
    device.press(KEY_OK);
    EXPECT_THAT(waitForEvents(1), ElementsAre(local(InputEvent::Confirm, InputEvent::KeyPressed)));
}

TEST_F(KernelHotPlugTest, ANodeReplacedBetweenTwoPassesKeepsItsOldName)
{
    const UinputDevice staying(panel());
    auto replaced = std::make_unique<UinputDevice>(panel("old"));
    ASSERT_TRUE(waitForCalls(2));
    EXPECT_THAT(devices->take(),
                ElementsAre("add /dev/input/event0 front-panel", "add /dev/input/event1 old"));
    // The event loop only learns that something has changed.
    replaced.reset();
    replaced = std::make_unique<UinputDevice>(panel("new"));
    ASSERT_EQ(replaced->node(), QStringLiteral("/dev/input/event1"));
    UinputDevice third(panel("third"));
    ASSERT_TRUE(waitForCalls(1));
    EXPECT_THAT(devices->calls, ElementsAre("add /dev/input/event2 third"));
    EXPECT_EQ(devices->getDeviceNameMap().value(QStringLiteral("/dev/input/event1")),
              QStringLiteral("new"));

    // Its listeners belong to the old device, so its keys are not read.
    replaced->press(KEY_OK);
    replaced->release(KEY_OK);
    third.press(KEY_INFO);
    EXPECT_THAT(waitForEvents(1), ElementsAre(local(InputEvent::Info, InputEvent::KeyPressed)));

    // Until it is unplugged while the library runs.
    replaced.reset();
    ASSERT_TRUE(waitForCalls(2));
    EXPECT_THAT(devices->calls,
                ElementsAre("add /dev/input/event2 third", "remove /dev/input/event1"));
}

} // namespace
