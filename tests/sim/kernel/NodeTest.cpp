#include "InputSubsystem.h"
#include "OpenNode.h"

#include <QFile>
#include <QFileInfo>

#include <gmock/gmock.h>

#include <cerrno>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Vorn::Sim;
using testing::SizeIs;

namespace {

const DeviceDescription panel = DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK});

int umaskCalls = 0;

} // namespace

// In place of the C library's: the mask belongs to all threads of the process.
extern "C" __attribute__((visibility("default"))) mode_t umask(mode_t mask)
{
    ++umaskCalls;
    return reinterpret_cast<mode_t (*)(mode_t)>(dlsym(RTLD_NEXT, "umask"))(mask);
}

TEST(Node, HasItsModeWhateverTheUmaskWhichStaysAsItIs)
{
    const mode_t former = ::umask(0077);
    umaskCalls = 0;
    InputSubsystem subsystem;
    subsystem.plug(3, panel.withMode(0666));
    struct stat status = {};
    EXPECT_EQ(::stat("/dev/input/event3", &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0666U);
    EXPECT_TRUE(OpenNode(QStringLiteral("/dev/input/event3")).isOpen());
    EXPECT_EQ(umaskCalls, 0);
    ::umask(former);
}

TEST(Node, GivesRecordsTheTimeOfAnyInstant)
{
    const input_event record = InputNode::record(EV_KEY, KEY_OK, 1, 1'700'000'000'123);
    EXPECT_EQ(record.input_event_sec, 1'700'000'000);
    EXPECT_EQ(record.input_event_usec, 123'000);
}

TEST(Node, IsExecutableToWhomeverABitSaysSo)
{
    InputSubsystem subsystem;
    subsystem.plug(0, panel.withMode(0666));
    EXPECT_NE(::access("/dev/input/event0", X_OK), 0);
    EXPECT_EQ(errno, EACCES);
    for (const mode_t mode : {0100U, 0010U, 0001U}) {
        subsystem.setPermissions(0, mode);
        EXPECT_EQ(::access("/dev/input/event0", X_OK), 0) << mode;
    }
}

TEST(Node, LooksLikeACharacterDevice)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(3, panel.withMode(0640));
    struct stat status = {};
    ASSERT_EQ(::stat("/dev/input/event3", &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode));
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
    EXPECT_EQ(status.st_rdev, static_cast<dev_t>(13 << 8 | 67));
    ASSERT_EQ(::lstat("/dev/input/event3", &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode));

    const OpenNode open(node.path());
    ASSERT_EQ(::fstat(open.fd(), &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode));
    struct statx wide = {};
    ASSERT_EQ(::statx(open.fd(), "", AT_EMPTY_PATH, STATX_BASIC_STATS, &wide), 0);
    EXPECT_TRUE(S_ISCHR(wide.stx_mode));
    EXPECT_EQ(wide.stx_rdev_minor, 67U);

    const QFileInfo info(node.path());
    EXPECT_TRUE(info.exists());
    EXPECT_FALSE(info.isFile());
    EXPECT_FALSE(info.isDir());
}

TEST(Node, WithoutAReadBitCannotBeOpenedNotEvenByRoot)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel.withMode(0));
    EXPECT_EQ(OpenNode(node.path()).openError(), EACCES);
    EXPECT_EQ(::access("/dev/input/event0", F_OK), 0);
    EXPECT_NE(::access("/dev/input/event0", R_OK), 0);
    EXPECT_EQ(errno, EACCES);
    EXPECT_FALSE(QFileInfo(node.path()).isReadable());
    EXPECT_FALSE(QFile(node.path()).open(QIODevice::ReadOnly));
    subsystem.setPermissions(0, 0440);
    EXPECT_TRUE(OpenNode(node.path()).isOpen());
    EXPECT_EQ(::access("/dev/input/event0", R_OK), 0);
    EXPECT_EQ(OpenNode(node.path(), O_RDWR).openError(), EACCES);
    EXPECT_NE(::access("/dev/input/event0", W_OK), 0);
}

TEST(Node, GivesAccessToWhomeverABitGivesIt)
{
    InputSubsystem subsystem;
    const QString path = subsystem.plug(0, panel).path();
    const struct
    {
        mode_t mode;
        int flags;
        int access;
    } ways[] = {
        {0400, O_RDONLY, R_OK},      {0040, O_RDONLY, R_OK},      {0004, O_RDONLY, R_OK},
        {0200, O_WRONLY, W_OK},      {0020, O_WRONLY, W_OK},      {0002, O_WRONLY, W_OK},
        {0600, O_RDWR, R_OK | W_OK}, {0420, O_RDWR, R_OK | W_OK},
    };
    for (const auto &way : ways) {
        SCOPED_TRACE(way.mode);
        subsystem.setPermissions(0, way.mode);
        for (const int flags : {O_RDONLY, O_WRONLY, O_RDWR}) {
            const bool isAllowed = flags == way.flags || way.flags == O_RDWR;
            EXPECT_EQ(OpenNode(path, flags).openError(), isAllowed ? 0 : EACCES) << flags;
        }
        for (const int access : {R_OK, W_OK, X_OK, R_OK | W_OK}) {
            const bool isAllowed = (access & ~way.access) == 0;
            EXPECT_EQ(::access("/dev/input/event0", access) == 0, isAllowed) << access;
        }
    }
    for (const mode_t mode : {0100U, 0010U, 0001U}) {
        subsystem.setPermissions(0, mode);
        EXPECT_EQ(::access("/dev/input/event0", X_OK), 0) << mode;
    }
}

TEST(Node, ShowsItsPermissionsOnOpenDescriptorsToo)
{
    InputSubsystem subsystem;
    const OpenNode open(subsystem.plug(0, panel).path());
    // Bits beyond those of access are not taken over.
    subsystem.setPermissions(0, S_IFREG | S_ISUID | 0444);
    struct stat status = {};
    ASSERT_EQ(::fstat(open.fd(), &status), 0);
    EXPECT_EQ(status.st_mode, static_cast<mode_t>(S_IFCHR | 0444));
    ASSERT_EQ(::stat("/dev/input/event0", &status), 0);
    EXPECT_EQ(status.st_mode, static_cast<mode_t>(S_IFCHR | 0444));
}

TEST(Node, StaysOpenWhenItsPermissionsGo)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode open(node.path());
    subsystem.setPermissions(0, 0);
    node.press(KEY_OK);
    EXPECT_THAT(open.read(), SizeIs(2));
}

TEST(Node, IsTheSameObjectForItsNumberPluggedOrNot)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.node(5);
    EXPECT_EQ(node.number(), 5);
    EXPECT_EQ(node.path(), QStringLiteral("/dev/input/event5"));
    EXPECT_EQ(&subsystem.plug(5, panel), &node);
    EXPECT_TRUE(node.isPlugged());
    subsystem.unplug(5);
    EXPECT_EQ(&subsystem.node(5), &node);
}

TEST(Node, WithALeadingZeroIsAnother)
{
    InputSubsystem subsystem;
    subsystem.plug(1, panel);
    EXPECT_EQ(OpenNode(QStringLiteral("/dev/input/event01")).openError(), ENOENT);
    EXPECT_EQ(OpenNode(QStringLiteral("/dev/input/event")).openError(), ENOENT);
    EXPECT_EQ(OpenNode(QStringLiteral("/dev/input/event1x")).openError(), ENOENT);
    EXPECT_EQ(OpenNode(QStringLiteral("/dev/input/mouse1")).openError(), ENOENT);
}

TEST(Node, IsToldFromNamesThatAreNearlyItsOwn)
{
    InputSubsystem subsystem;
    subsystem.plug(0, panel);
    subsystem.plug(5, panel);
    const OpenNode node(subsystem.plug(12, panel.withMode(0400)).path());
    EXPECT_TRUE(node.isOpen());
    EXPECT_EQ(OpenNode(QStringLiteral("/dev/input/event")).openError(), ENOENT);
    EXPECT_EQ(OpenNode(QStringLiteral("/dev/input/evenx5")).openError(), ENOENT);
    EXPECT_EQ(OpenNode(QStringLiteral("/dev/input/event11")).openError(), ENOENT);
    EXPECT_EQ(OpenNode(QStringLiteral("/dev/input/event12"), O_RDWR).openError(), EACCES);
}

TEST(Node, ShowsItsStatusByPathWhateverTheFlags)
{
    InputSubsystem subsystem;
    subsystem.plug(3, panel);
    struct statx status = {};
    ASSERT_EQ(::statx(AT_FDCWD, "/dev/input/event3", AT_EMPTY_PATH, STATX_BASIC_STATS, &status), 0);
    EXPECT_TRUE(S_ISCHR(status.stx_mode));
    EXPECT_EQ(status.stx_rdev_minor, 67U);
}

TEST(Node, HasANumberOfDigitsOnly)
{
    InputSubsystem subsystem;
    // As if a colon were a ten, and a slash one less than zero.
    subsystem.plug(10, panel);
    subsystem.plug(9, panel);
    EXPECT_EQ(OpenNode(QStringLiteral("/dev/input/event:")).openError(), ENOENT);
    EXPECT_NE(OpenNode(QStringLiteral("/dev/input/event1/")).openError(), 0);
    EXPECT_TRUE(OpenNode(QStringLiteral("/dev/input/event10")).isOpen());
}

TEST(OpenDescriptors, AreCountedByNodeAndTogether)
{
    InputSubsystem subsystem;
    InputNode &first = subsystem.plug(0, panel);
    InputNode &second = subsystem.plug(1, panel);
    EXPECT_EQ(subsystem.openDescriptors(), 0);
    OpenNode a(first.path());
    OpenNode b(first.path());
    OpenNode c(second.path());
    EXPECT_EQ(first.openDescriptors(), 2);
    EXPECT_EQ(second.openDescriptors(), 1);
    EXPECT_EQ(subsystem.openDescriptors(), 3);
    a.close();
    b.close();
    c.close();
    EXPECT_EQ(subsystem.openDescriptors(), 0);
    EXPECT_EQ(first.openDescriptors(), 0);
}
