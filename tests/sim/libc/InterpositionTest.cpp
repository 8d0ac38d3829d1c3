#include "Interposition.h"

#include "InputSubsystem.h"
#include "OpenNode.h"
#include "VirtualClock.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <memory>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

using namespace Vorn::Sim;

namespace {

const DeviceDescription panel = DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK});

template <typename Function>
Function *lookUp(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_DEFAULT, name));
}

} // namespace

TEST(Interposition, IsInEffect)
{
    EXPECT_STREQ(missingInterposition(), nullptr);
}

TEST(Interposition, ServesEveryWayToOpen)
{
    InputSubsystem subsystem;
    subsystem.plug(0, panel);
    const char *path = "/dev/input/event0";
    const int flags = O_RDONLY | O_NONBLOCK;
    const int fds[] = {
        ::open(path, flags),
        ::open64(path, flags),
        ::openat(AT_FDCWD, path, flags),
        ::openat64(AT_FDCWD, path, flags),
        lookUp<int(const char *, int, ...)>("open")(path, flags),
        lookUp<int(const char *, int)>("__open_2")(path, flags),
        lookUp<int(const char *, int)>("__open64_2")(path, flags),
        lookUp<int(int, const char *, int)>("__openat_2")(AT_FDCWD, path, flags),
        lookUp<int(int, const char *, int)>("__openat64_2")(AT_FDCWD, path, flags),
    };
    subsystem.node(0).press(KEY_OK);
    int count = 0;
    for (const int fd : fds) {
        EXPECT_GE(fd, 0);
        EXPECT_EQ(subsystem.node(0).openDescriptors(), 9 - count++);
        char buffer[1024];
        EXPECT_EQ(lookUp<ssize_t(int, void *, size_t, size_t)>("__read_chk")(
                      fd, buffer, sizeof(buffer), sizeof(buffer)),
                  static_cast<ssize_t>(2 * sizeof(input_event)));
        EXPECT_EQ(::close(fd), 0);
    }
}

TEST(Interposition, ServesEveryWayToAskForAStatus)
{
    InputSubsystem subsystem;
    subsystem.plug(0, panel);
    const char *path = "/dev/input/event0";
    const OpenNode node(QString::fromLatin1(path));
    struct stat status = {};
    struct stat64 status64 = {};
    struct statx statusx = {};
    ASSERT_EQ(::stat64(path, &status64), 0);
    EXPECT_TRUE(S_ISCHR(status64.st_mode));
    ASSERT_EQ(::lstat64(path, &status64), 0);
    EXPECT_TRUE(S_ISCHR(status64.st_mode));
    ASSERT_EQ(::fstat64(node.fd(), &status64), 0);
    EXPECT_TRUE(S_ISCHR(status64.st_mode));
    ASSERT_EQ(::statx(AT_FDCWD, path, 0, STATX_BASIC_STATS, &statusx), 0);
    EXPECT_TRUE(S_ISCHR(statusx.stx_mode));
    ASSERT_EQ(::stat("/dev/input", &status), 0);
    EXPECT_TRUE(S_ISDIR(status.st_mode));
    EXPECT_NE(::stat("/dev/input/event1", &status), 0);
    EXPECT_EQ(errno, ENOENT);
}

TEST(Interposition, PassesOtherCallsOn)
{
    for (const bool isSimulated : {false, true}) {
        std::unique_ptr<InputSubsystem> subsystem;
        if (isSimulated)
            subsystem = std::make_unique<InputSubsystem>();
        char name[] = "/tmp/vorn-sim-test-XXXXXX";
        const int made = ::mkstemp(name);
        ASSERT_GE(made, 0);
        EXPECT_EQ(::close(made), 0);
        ASSERT_EQ(::unlink(name), 0);

        const int fd = ::open(name, O_RDWR | O_CREAT | O_EXCL, 0604);
        ASSERT_GE(fd, 0);
        ASSERT_EQ(::write(fd, "abc", 3), 3);
        ASSERT_EQ(::lseek(fd, 0, SEEK_SET), 0);
        char buffer[8];
        EXPECT_EQ(::read(fd, buffer, sizeof(buffer)), 3);
        struct stat status = {};
        EXPECT_EQ(::fstat(fd, &status), 0);
        EXPECT_TRUE(S_ISREG(status.st_mode));
        EXPECT_EQ(status.st_mode & 0077U, 0004U);
        EXPECT_EQ(::close(fd), 0);
        EXPECT_EQ(::close(fd), -1);
        EXPECT_EQ(errno, EBADF);
        EXPECT_EQ(::access(name, R_OK), 0);
        EXPECT_EQ(::unlink(name), 0);
        EXPECT_EQ(::open(name, O_RDONLY), -1);
        EXPECT_EQ(errno, ENOENT);
        EXPECT_EQ(lookUp<int(const char *, int)>("__open_2")(name, O_RDONLY), -1);

        const int watch = ::inotify_init1(IN_CLOEXEC);
        EXPECT_GE(::inotify_add_watch(watch, "/tmp", IN_CREATE), 0);
        EXPECT_EQ(::close(watch), 0);
    }
}

TEST(Interposition, PassesClocksAndPollsOnWithoutAVirtualClock)
{
    const std::time_t start = ::time(nullptr);
    std::time_t stored = 0;
    EXPECT_EQ(::time(&stored), stored);
    timespec real = {};
    EXPECT_EQ(::clock_gettime(CLOCK_REALTIME, &real), 0);
    struct timeval day = {};
    EXPECT_EQ(::gettimeofday(&day, nullptr), 0);
    // time() reads the coarse clock, which may be a tick behind the exact one.
    EXPECT_LE(start, real.tv_sec);
    EXPECT_LE(real.tv_sec, day.tv_sec);
    EXPECT_LE(day.tv_sec, start + 60);
    EXPECT_NE(start, VirtualClock::DefaultStart / 1000);

    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    pollfd descriptor = {ends[0], POLLIN, 0};
    timespec before = {};
    timespec after = {};
    ASSERT_EQ(::clock_gettime(CLOCK_MONOTONIC, &before), 0);
    EXPECT_EQ(::poll(&descriptor, 1, 20), 0);
    ASSERT_EQ(::clock_gettime(CLOCK_MONOTONIC, &after), 0);
    EXPECT_GE((after.tv_sec - before.tv_sec) * 1000 + (after.tv_nsec - before.tv_nsec) / 1'000'000,
              19);
    ASSERT_EQ(::write(ends[1], "x", 1), 1);
    EXPECT_EQ(::poll(&descriptor, 1, -1), 1);
    EXPECT_EQ(lookUp<int(pollfd *, nfds_t, int, size_t)>("__poll_chk")(&descriptor, 1, 0,
                                                                       sizeof(descriptor)),
              1);
    const timespec noTime = {};
    EXPECT_EQ(::ppoll(&descriptor, 1, &noTime, nullptr), 1);
    EXPECT_EQ((lookUp<int(pollfd *, nfds_t, const timespec *, const sigset_t *, size_t)>(
                  "__ppoll_chk")(&descriptor, 1, &noTime, nullptr, sizeof(descriptor))),
              1);
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST(Interposition, LetsAPathFailThatIsTooLongOrBecomesSo)
{
    InputSubsystem subsystem;
    for (const int length : {4080, 5000}) {
        const QByteArray path = "/dev/input/" + QByteArray(length, 'x');
        struct stat status;
        EXPECT_EQ(::stat(path.constData(), &status), -1);
        EXPECT_EQ(errno, ENAMETOOLONG);
        EXPECT_EQ(::access(path.constData(), F_OK), -1);
        EXPECT_EQ(errno, ENAMETOOLONG);
        EXPECT_EQ(::open(path.constData(), O_RDONLY), -1);
        EXPECT_EQ(errno, ENAMETOOLONG);
        EXPECT_EQ(::opendir(path.constData()), nullptr);
        EXPECT_EQ(errno, ENAMETOOLONG);
    }
}

TEST(Interposition, PassesRequestsOnWithoutASimulation)
{
    const OpenNode file(QStringLiteral("/dev/null"));
    char name[16];
    errno = 0;
    ASSERT_EQ(::syscall(SYS_ioctl, file.fd(), EVIOCGNAME(16), name), -1);
    // ENOTTY, or ENOSYS under an emulator that does not know the request.
    const int refusal = errno;
    ASSERT_NE(refusal, 0);
    errno = 0;
    EXPECT_EQ(::ioctl(file.fd(), EVIOCGNAME(16), name), -1);
    EXPECT_EQ(errno, refusal);
}

TEST(Interposition, LeavesErrnoAloneWhereAStatusIsServed)
{
    InputSubsystem subsystem;
    subsystem.plug(0, panel);
    struct stat status;
    errno = EDOM;
    EXPECT_EQ(::stat("/dev/input/event0", &status), 0);
    EXPECT_EQ(errno, EDOM);
}

TEST(Interposition, EndsWithTheSimulation)
{
    struct stat real = {};
    ASSERT_EQ(::stat("/dev", &real), 0);
    struct stat status = {};
    {
        const InputSubsystem subsystem;
        ASSERT_EQ(::stat("/dev", &status), 0);
        EXPECT_NE(status.st_ino, real.st_ino);
    }
    ASSERT_EQ(::stat("/dev", &status), 0);
    EXPECT_EQ(status.st_ino, real.st_ino);
}
