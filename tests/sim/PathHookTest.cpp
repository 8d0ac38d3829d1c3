#include "InputSubsystem.h"
#include "OpenNode.h"

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>
#include <vector>

using namespace Vorn::Sim;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

using PathCall = InputSubsystem::PathCall;

const DeviceDescription panel = DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK});

bool exists(const char *path)
{
    struct stat status = {};
    return ::stat(path, &status) == 0;
}

class PathHook : public testing::Test
{
protected:
    PathHook()
    {
        subsystem.setPathHook([this](PathCall call, const QByteArray &path) {
            calls.emplace_back(call, path);
            return error;
        });
    }

    InputSubsystem subsystem;
    std::vector<std::pair<PathCall, QByteArray>> calls;
    int error = 0;
};

} // namespace

TEST_F(PathHook, IsCalledBeforeWhatIsDoneWithAPathOfTheSimulation)
{
    EXPECT_TRUE(exists("/dev/input"));
    EXPECT_FALSE(QFile(QStringLiteral("/dev/input/event0")).open(QIODevice::ReadOnly));
    const int inotify = ::inotify_init1(0);
    EXPECT_GE(::inotify_add_watch(inotify, "/dev/", IN_CREATE), 0);
    ::close(inotify);
    EXPECT_THAT(calls,
                ElementsAre(Pair(PathCall::Status, "/dev/input"),
                            Pair(PathCall::Open, "/dev/input/event0"),
                            Pair(PathCall::Watch, "/dev/")));
}

TEST_F(PathHook, IsNotCalledForOtherPaths)
{
    EXPECT_TRUE(exists("/dev/null"));
    EXPECT_TRUE(exists("/tmp"));
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(PathHook, LetsACallFail)
{
    subsystem.plug(0, panel);
    error = ENOSPC;
    const int inotify = ::inotify_init1(0);
    EXPECT_EQ(::inotify_add_watch(inotify, "/dev/input/", IN_CREATE), -1);
    EXPECT_EQ(errno, ENOSPC);
    ::close(inotify);
    error = EIO;
    EXPECT_FALSE(exists("/dev/input"));
    EXPECT_EQ(errno, EIO);
    error = ENFILE;
    EXPECT_EQ(OpenNode(QStringLiteral("/dev/input/event0")).openError(), ENFILE);
    error = 0;
    EXPECT_TRUE(OpenNode(QStringLiteral("/dev/input/event0")).isOpen());
}

TEST_F(PathHook, MayChangeWhatTheCallFinds)
{
    subsystem.setPathHook([this](PathCall, const QByteArray &) {
        subsystem.removeInputDirectory();
        // Its own calls do not come back to it.
        return exists("/dev/input") ? EIO : 0;
    });
    EXPECT_FALSE(exists("/dev/input"));
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(PathHook, EndsWithAnEmptyOne)
{
    subsystem.setPathHook({});
    EXPECT_TRUE(exists("/dev/input"));
    EXPECT_THAT(calls, IsEmpty());
}
