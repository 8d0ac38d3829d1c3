#include "FaultRig.h"

#include <QFile>
#include <QFileSystemWatcher>

#include <gmock/gmock.h>

#include <cstring>
#include <memory>

#include <dlfcn.h>
#include <sys/inotify.h>
#include <sys/time.h>

namespace {

using PathCall = Vorn::Sim::InputSubsystem::PathCall;

constexpr int victim = FaultRig::victimNumber;
constexpr int other = FaultRig::otherNumber;
constexpr int later = FaultRig::laterNumber;

int inotifyError = 0;

} // namespace

// In place of the C library's; QFileSystemWatcher calls it for each watcher.
extern "C" __attribute__((visibility("default"))) int inotify_init1(int flags) noexcept
{
    if (inotifyError != 0) {
        errno = inotifyError;
        return -1;
    }
    static auto *const next = reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "inotify_init1"));
    return next(flags);
}

extern "C" __attribute__((visibility("default"))) int inotify_init() noexcept
{
    return inotify_init1(0);
}

namespace {

/// Which of the calls on the directories fails: so many of one kind, after so many others.
struct DirectoryFault
{
    PathCall call;
    int after;
    int times;
};

void PrintTo(const DirectoryFault &fault, std::ostream *stream)
{
    *stream << (fault.call == PathCall::Status ? "Status" : "Watch") << fault.after << "Times"
            << fault.times;
}

class DirectoryFaultTest : public testing::TestWithParam<DirectoryFault>
{
protected:
    static void arm(FaultRig &rig, int error)
    {
        const DirectoryFault fault = GetParam();
        rig.subsystem.setPathHook(
            [=, count = std::make_shared<int>(0)](PathCall call, const QByteArray &path) {
                if (call != fault.call || path.startsWith("/dev/input/event"))
                    return 0;
                const int index = (*count)++;
                return index >= fault.after && index < fault.after + fault.times ? error : 0;
            });
    }

    /// If it cannot be, the library goes by changes of /dev/ until it can.
    static bool isDirectoryWatched(const FaultRig &rig)
    {
        const QStringList watched = rig.devices->findChild<QFileSystemWatcher *>()->directories();
        return watched.contains(QStringLiteral("/dev/input/"));
    }

    /// Some other device appears, as they do all the time.
    static void changeDev(FaultRig &rig)
    {
        QFile disk(rig.subsystem.folder() + QStringLiteral("/sda"));
        EXPECT_TRUE(disk.open(QIODevice::WriteOnly));
        rig.clock.settle();
        EXPECT_TRUE(isDirectoryWatched(rig));
    }
};

TEST_P(DirectoryFaultTest, AtTheStartLeavesNobodyDeaf)
{
    for (const int error : kernelErrors) {
        SCOPED_TRACE(std::strerror(error));
        FaultRig rig;
        rig.plug(victim);
        rig.plug(other);
        arm(rig, error);
        rig.start();
        rig.subsystem.setPathHook({});
        if (!isDirectoryWatched(rig))
            changeDev(rig);
        rig.expectToHearOf(later);
        rig.expectToWork(victim);
        rig.expectToWork(other);
    }
}

TEST_P(DirectoryFaultTest, InAHoldLosesNoReleaseAndLeavesNobodyDeaf)
{
    for (const int error : kernelErrors) {
        SCOPED_TRACE(std::strerror(error));
        FaultRig rig;
        rig.plug(victim);
        rig.plug(other);
        rig.start();
        EXPECT_EQ(rig.press(victim), FaultRig::pressed(victim));
        arm(rig, error);
        rig.causePass();
        EXPECT_EQ(rig.release(victim), FaultRig::released(victim));
        rig.subsystem.setPathHook({});
        if (!isDirectoryWatched(rig))
            changeDev(rig);
        rig.expectToHearOf(later);
        rig.expectToWork(victim);
        rig.expectToWork(other);
    }
}

std::vector<DirectoryFault> directoryFaults()
{
    std::vector<DirectoryFault> faults;
    for (const PathCall call : {PathCall::Status, PathCall::Watch}) {
        for (int after = 0; after < 6; ++after) {
            for (int times = 1; times <= 2; ++times)
                faults.push_back({call, after, times});
        }
    }
    return faults;
}

INSTANTIATE_TEST_SUITE_P(Calls, DirectoryFaultTest, testing::ValuesIn(directoryFaults()),
                         testing::PrintToStringParamName());

// Qt then looks at the directory once a second.
TEST(InotifyFault, LeavesDevicesToBeFoundWithinSeconds)
{
    for (const int error : {EMFILE, ENFILE, ENOMEM}) {
        SCOPED_TRACE(std::strerror(error));
        inotifyError = error;
        FaultRig rig;
        rig.plug(victim);
        // So that the next change has another time, though no time passes here.
        const QByteArray folder = rig.subsystem.folder().toLocal8Bit() + "/input";
        const timeval longAgo[2] = {{1, 0}, {1, 0}};
        ASSERT_EQ(::utimes(folder, longAgo), 0);
        rig.start();
        inotifyError = 0;
        rig.expectToWork(victim);
        rig.plug(other);
        EXPECT_TRUE(
            rig.clock.waitUntil([&rig] { return rig.isKnown(other); }, std::chrono::seconds(5)));
        rig.expectToWork(victim);
        rig.expectToWork(other);
    }
}

} // namespace
