#include "InputSubsystem.h"
#include "OpenNode.h"

#include <QFile>

#include <gmock/gmock.h>

#include <vector>

using namespace Vorn::Sim;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const DeviceDescription panel = DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK});

} // namespace

TEST(Recording, ShowsEveryCallAsItsCallerSawIt)
{
    InputSubsystem subsystem;
    InputNode &device = subsystem.plug(0, panel);
    int fd = -1;
    {
        const OpenNode node(device.path(), O_RDONLY | O_NONBLOCK);
        fd = node.fd();
        char buffer[1024];
        node.ioctl(EVIOCGNAME(255), buffer);
        node.ioctl(EVIOCGPHYS(10), buffer);
        device.press(KEY_OK);
        node.readInto(buffer, sizeof(buffer));
        node.readInto(buffer, sizeof(buffer));
    }
    const QVector<SystemCall> calls = subsystem.systemCalls();
    ASSERT_THAT(calls, SizeIs(6));
    for (const SystemCall &call : calls) {
        EXPECT_EQ(call.path, "/dev/input/event0");
        EXPECT_EQ(call.fd, fd);
    }
    EXPECT_EQ(calls[0].kind, SystemCall::Kind::Open);
    EXPECT_EQ(calls[0].openFlags, O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(calls[0].result, fd);
    EXPECT_EQ(calls[0].error, 0);
    EXPECT_EQ(calls[1].kind, SystemCall::Kind::Ioctl);
    EXPECT_EQ(calls[1].request, static_cast<unsigned long>(EVIOCGNAME(255)));
    EXPECT_EQ(calls[1].size, 255U);
    EXPECT_EQ(calls[1].result, 6);
    EXPECT_EQ(calls[2].result, -1);
    EXPECT_EQ(calls[2].error, ENOENT);
    EXPECT_EQ(calls[3].kind, SystemCall::Kind::Read);
    EXPECT_EQ(calls[3].size, 1024U);
    EXPECT_EQ(calls[3].result, static_cast<long>(2 * sizeof(input_event)));
    EXPECT_EQ(calls[4].result, -1);
    EXPECT_EQ(calls[4].error, EAGAIN);
    EXPECT_EQ(calls[5].kind, SystemCall::Kind::Close);
    EXPECT_EQ(calls[5].result, 0);
}

TEST(Recording, ShowsOpensThatFailAlsoWhereNoDeviceIs)
{
    InputSubsystem subsystem;
    QFile(QStringLiteral("/dev/input/event7")).open(QIODevice::ReadOnly);
    QFile(QStringLiteral("/dev/null")).open(QIODevice::ReadOnly);
    const QVector<SystemCall> calls = subsystem.systemCalls();
    ASSERT_THAT(calls, SizeIs(1));
    EXPECT_EQ(calls[0].path, "/dev/input/event7");
    EXPECT_EQ(calls[0].fd, -1);
    EXPECT_EQ(calls[0].result, -1);
    EXPECT_EQ(calls[0].error, ENOENT);
}

TEST(Recording, ShowsNothingOfTheDirectories)
{
    InputSubsystem subsystem;
    for (const char *path : {"/dev", "/dev/input", "/dev/input/"})
        EXPECT_TRUE(OpenNode(QString::fromLatin1(path), O_RDONLY | O_DIRECTORY).isOpen()) << path;
    EXPECT_THAT(subsystem.systemCalls(), IsEmpty());
}

TEST(Recording, CanBeAskedForOnePathAndForgotten)
{
    InputSubsystem subsystem;
    EXPECT_TRUE(OpenNode(subsystem.plug(0, panel).path()).isOpen());
    EXPECT_TRUE(OpenNode(subsystem.plug(1, panel).path()).isOpen());
    EXPECT_FALSE(OpenNode(QStringLiteral("/dev/input/event7")).isOpen());
    const auto pathsOf = [&](const QByteArray &path) {
        std::vector<QByteArray> paths;
        for (const SystemCall &call : subsystem.systemCalls(path))
            paths.push_back(call.path);
        return paths;
    };
    EXPECT_THAT(pathsOf("/dev/input/event1"),
                ElementsAre("/dev/input/event1", "/dev/input/event1"));
    EXPECT_THAT(pathsOf("/dev/input/event7"), ElementsAre("/dev/input/event7"));
    EXPECT_THAT(pathsOf("/dev/input/event2"), IsEmpty());
    subsystem.clearSystemCalls();
    EXPECT_THAT(subsystem.systemCalls(), IsEmpty());
    EXPECT_EQ(subsystem.callCounts().opens, 3U);
}

TEST(Recording, CanBeSwitchedOffWhileTheCountsGoOn)
{
    InputSubsystem subsystem;
    subsystem.setRecording(false);
    const OpenNode node(subsystem.plug(0, panel).path());
    int version = 0;
    node.ioctl(EVIOCGVERSION, &version);
    node.readError();
    EXPECT_THAT(subsystem.systemCalls(), IsEmpty());
    const CallCounts counts = subsystem.callCounts();
    EXPECT_EQ(counts.opens, 1U);
    EXPECT_EQ(counts.ioctls, 1U);
    EXPECT_EQ(counts.reads, 1U);
    EXPECT_EQ(counts.closes, 0U);
}

TEST(Recording, CountsEachKindOfCall)
{
    InputSubsystem subsystem;
    {
        const OpenNode node(subsystem.plug(0, panel).path());
        int version = 0;
        for (int i = 0; i < 3; ++i)
            node.ioctl(EVIOCGVERSION, &version);
        for (int i = 0; i < 4; ++i)
            node.readError();
    }
    EXPECT_FALSE(OpenNode(QStringLiteral("/dev/input/event1")).isOpen());
    const CallCounts counts = subsystem.callCounts();
    EXPECT_EQ(counts.opens, 2U);
    EXPECT_EQ(counts.closes, 1U);
    EXPECT_EQ(counts.ioctls, 3U);
    EXPECT_EQ(counts.reads, 4U);
}

TEST(Recording, StartsWithNothing)
{
    InputSubsystem subsystem;
    EXPECT_THAT(subsystem.systemCalls(), IsEmpty());
    EXPECT_EQ(subsystem.callCounts().opens, 0U);
}
