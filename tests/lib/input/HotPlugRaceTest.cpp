#include "BasicInputHandler.h"

#include "Devices.h"
#include "InputSubsystem.h"
#include "VirtualClock.h"

#include <QFileSystemWatcher>

#include <gmock/gmock.h>

#include <cerrno>
#include <memory>
#include <set>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Vorn::Sim::DeviceDescription;
using PathCall = Vorn::Sim::InputSubsystem::PathCall;

const QByteArray inputDirectory = QByteArrayLiteral("/dev/input/");
const QByteArray deviceDirectory = QByteArrayLiteral("/dev/");

/// What happens to /dev/input between two system calls of a pass.
class HotPlugRaceTest : public testing::Test
{
protected:
    void plug(int number)
    {
        subsystem.plug(number, DeviceDescription::keyboard("keys", BUS_HOST, {KEY_A}));
    }

    void start()
    {
        devices = std::make_unique<Devices>();
        clock.settle();
    }

    /// Calls @p action once, before the next @p call on @p path.
    void before(PathCall call, const QByteArray &path, const std::function<void()> &action)
    {
        subsystem.setPathHook(
            [=, isDone = std::make_shared<bool>(false)](PathCall made, const QByteArray &on) {
                if (made == call && on == path && !std::exchange(*isDone, true))
                    action();
                return 0;
            });
    }

    QStringList watched() const
    {
        return devices->findChild<QFileSystemWatcher *>()->directories();
    }

    void toggleDirectory()
    {
        if (subsystem.inputDirectoryExists())
            subsystem.removeInputDirectory();
        else
            subsystem.createInputDirectory();
    }

    /// Whether a device that arrives from now on is found, even after the directory has gone once
    /// more.
    void expectToHearOfDevices()
    {
        subsystem.setPathHook({});
        subsystem.createInputDirectory();
        clock.settle();
        EXPECT_THAT(watched(), ElementsAre("/dev/input/"));
        plug(7);
        clock.settle();
        EXPECT_THAT(devices->calls, Contains("add /dev/input/event7 keys"));
        subsystem.removeInputDirectory();
        clock.settle();
        EXPECT_THAT(watched(), ElementsAre("/dev/"));
        subsystem.createInputDirectory();
        plug(8);
        clock.settle();
        EXPECT_THAT(devices->calls, Contains("add /dev/input/event8 keys"));
    }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    std::unique_ptr<Devices> devices;
};

TEST_F(HotPlugRaceTest, TheDirectoryMayGoAfterItWasSeenAndBeforeItIsWatched)
{
    before(PathCall::Watch, inputDirectory, [this] { subsystem.removeInputDirectory(); });
    start();
    EXPECT_FALSE(subsystem.inputDirectoryExists());
    EXPECT_THAT(watched(), ElementsAre("/dev/"));
    expectToHearOfDevices();
}

TEST_F(HotPlugRaceTest, TheDirectoryMayComeBackAfterItWasMissedAndBeforeDevIsWatched)
{
    start();
    before(PathCall::Watch, deviceDirectory, [this] {
        subsystem.createInputDirectory();
        plug(3);
    });
    subsystem.removeInputDirectory();
    clock.settle();
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event3 keys"));
    EXPECT_THAT(watched(), ElementsAre("/dev/input/"));
    expectToHearOfDevices();
}

TEST_F(HotPlugRaceTest, ADirectoryThatBlinksBeforeItIsWatchedIsNotTakenForAFile)
{
    // The watcher itself looks at the path first, and watches what is missing as a file.
    int looks = 0;
    subsystem.setPathHook([&](PathCall call, const QByteArray &path) {
        if (call == PathCall::Status && path.startsWith("/dev/input") && ++looks == 2)
            subsystem.removeInputDirectory();
        if (call == PathCall::Watch && path == inputDirectory)
            subsystem.createInputDirectory();
        return 0;
    });
    start();
    ASSERT_GE(looks, 2);
    EXPECT_THAT(devices->findChild<QFileSystemWatcher *>()->files(), IsEmpty());
    expectToHearOfDevices();
}

TEST_F(HotPlugRaceTest, DevStaysWatchedWhileTheDirectoryCannotBe)
{
    // As when the user's watches are used up.
    subsystem.setPathHook([](PathCall call, const QByteArray &path) {
        return call == PathCall::Watch && path == inputDirectory ? ENOSPC : 0;
    });
    plug(0);
    start();
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event0 keys"));
    EXPECT_THAT(watched(), ElementsAre("/dev/"));
    plug(1);
    subsystem.removeInputDirectory();
    subsystem.createInputDirectory();
    clock.settle();
    EXPECT_THAT(devices->take(), ElementsAre("add /dev/input/event1 keys"));
}

TEST_F(HotPlugRaceTest, ADirectoryThatCannotBeLookedAtForAMomentStaysWatched)
{
    plug(0);
    start();
    // The watcher itself looks at each path that it is given, and watches as a file what is none.
    for (int failing : {1, 2, 3}) {
        SCOPED_TRACE(failing);
        int looks = 0;
        subsystem.setPathHook([&](PathCall call, const QByteArray &) {
            return call == PathCall::Status && ++looks == failing ? ENOMEM : 0;
        });
        subsystem.setPermissions(0, 0666);
        clock.settle();
        subsystem.setPathHook({});
        plug(failing);
        clock.settle();
        EXPECT_THAT(devices->calls,
                    Contains("add /dev/input/event" + std::to_string(failing) + " keys"));
        EXPECT_THAT(watched(), ElementsAre("/dev/input/"));
    }
    expectToHearOfDevices();
}

/// The old watcher takes the directory for a file, since it went and came back. The new one finds
/// none, and has to watch the directory above.
TEST_F(HotPlugRaceTest, TheDirectoryMayGoBeforeANewWatcherFindsIt)
{
    start();
    devices->take();
    int calls = 0;
    subsystem.setPathHook([&](PathCall, const QByteArray &) {
        if (++calls >= 2 && calls <= 4)
            toggleDirectory();
        return 0;
    });
    plug(0);
    clock.settle();
    EXPECT_GT(calls, 4);
    expectToHearOfDevices();
}

/// The watches that are set, and whether the directory is looked at again after each.
TEST_F(HotPlugRaceTest, TheOrdinaryPassesMakeOneWatchEach)
{
    std::vector<QByteArray> watches;
    subsystem.setPathHook([&](PathCall call, const QByteArray &path) {
        if (call == PathCall::Watch)
            watches.push_back(path);
        return 0;
    });
    start();
    EXPECT_THAT(watches, ElementsAre(deviceDirectory, inputDirectory));
    watches.clear();
    plug(0);
    clock.settle();
    EXPECT_THAT(watches, IsEmpty());
    subsystem.removeInputDirectory();
    clock.settle();
    EXPECT_THAT(watches, ElementsAre(deviceDirectory));
    watches.clear();
    subsystem.createInputDirectory();
    clock.settle();
    EXPECT_THAT(watches, ElementsAre(inputDirectory));
}

/// /dev/ is watched before the second one, so that a directory that was away is found.
TEST_F(HotPlugRaceTest, AWatchThatIsRefusedIsTriedOnceMore)
{
    std::vector<QByteArray> watches;
    subsystem.setPathHook([&](PathCall call, const QByteArray &path) {
        if (call != PathCall::Watch)
            return 0;
        watches.push_back(path);
        return path == inputDirectory ? ENOSPC : 0;
    });
    start();
    EXPECT_THAT(watches, ElementsAre(deviceDirectory, inputDirectory, inputDirectory));
}

/// The directory goes or comes before each of two calls of a pass, in every combination; before up
/// to N calls with VORN_HOT_PLUG_CHANGES=N (3 takes half a minute).
class HotPlugRaceAtEveryCall : public HotPlugRaceTest,
                               public testing::WithParamInterface<const char *>
{
protected:
    void startAPass()
    {
        devices = std::make_unique<Devices>();
        if (QByteArray(GetParam()) == "Start")
            return;
        clock.settle();
        devices->take();
        if (QByteArray(GetParam()) == "Arrival")
            return plug(0);
        subsystem.removeInputDirectory();
        if (QByteArray(GetParam()) == "Departure")
            return;
        clock.settle();
        subsystem.createInputDirectory();
    }

    /// @return how many calls the pass made
    int passWithChangesAt(const std::set<int> &moments)
    {
        startAPass();
        int calls = 0;
        subsystem.setPathHook([&](PathCall, const QByteArray &) {
            if (moments.count(calls++) != 0)
                toggleDirectory();
            return 0;
        });
        clock.settle();
        const int result = calls;
        expectToHearOfDevices();
        devices.reset();
        for (int number : {0, 7, 8}) {
            if (subsystem.node(number).isPlugged())
                subsystem.unplug(number);
        }
        return result;
    }
};

TEST_P(HotPlugRaceAtEveryCall, LeavesNobodyDeaf)
{
    const int wanted = qEnvironmentVariableIntValue("VORN_HOT_PLUG_CHANGES");
    const std::size_t mostChanges = wanted > 0 ? static_cast<std::size_t>(wanted) : 2;
    const int calls = passWithChangesAt({});
    ASSERT_GE(calls, 3);
    std::vector<std::set<int>> all = {{}};
    for (int call = 0; call < calls; ++call) {
        for (std::size_t i = all.size(); i-- > 0;) {
            if (all[i].size() == mostChanges)
                continue;
            std::set<int> moments = all[i];
            moments.insert(call);
            all.push_back(moments);
        }
    }
    for (const std::set<int> &moments : all) {
        passWithChangesAt(moments);
        ASSERT_FALSE(HasFailure())
            << "after changes before the calls " << testing::PrintToString(moments);
    }
}

INSTANTIATE_TEST_SUITE_P(Pass, HotPlugRaceAtEveryCall,
                         testing::Values("Start", "Arrival", "Departure", "Return"),
                         [](const auto &pass) { return std::string(pass.param); });

} // namespace
