#include "ChildStart.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

using namespace Vorn::Workbench;

namespace {

/// One descriptor less than these cannot be had.
rlimit limitOf(int descriptors)
{
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = static_cast<rlim_t>(descriptors);
    return limit;
}

int openDescriptors()
{
    int count = 0;
    for (int descriptor = 0; descriptor < 1024; ++descriptor)
        count += fcntl(descriptor, F_GETFD) >= 0 ? 1 : 0;
    return count;
}

/// Ends with status 0 if a child can be started with so many free descriptors.
[[noreturn]] void startWith(int free)
{
    close_range(STDERR_FILENO + 1, ~0U, 0);
    const rlimit limit = limitOf(STDERR_FILENO + 1 + free);
    setrlimit(RLIMIT_NOFILE, &limit);
    const int before = openDescriptors();
    const Child child = startChild("/bin/true", {"true"}, {});
    const bool isClean = child.pid >= 0 || openDescriptors() == before;
    if (child.error == QLatin1String("Too many open files") && child.socket == -1
        && child.output == -1 && isClean)
        std::_Exit(3);
    std::_Exit(child.error.isEmpty() && child.pid > 0 ? 0 : 4);
}

} // namespace

TEST(ChildStart, GivesBackWhatItHasOpened)
{
    const int before = openDescriptors();
    const Child missing = startChild("/nowhere/product", {"product"}, {});
    EXPECT_EQ(missing.error.toStdString(), "No such file or directory");
    EXPECT_EQ(missing.pid, -1);
    EXPECT_EQ(openDescriptors(), before);
    // No process is left of it either.
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    const Child child = startChild("/bin/true", {"true"}, {});
    EXPECT_EQ(child.error.toStdString(), "");
    EXPECT_EQ(openDescriptors(), before + 2);
    EXPECT_TRUE(fcntl(child.socket, F_GETFL) & O_NONBLOCK);
    EXPECT_TRUE(fcntl(child.output, F_GETFL) & O_NONBLOCK);
    EXPECT_TRUE(fcntl(child.socket, F_GETFD) & FD_CLOEXEC);
    EXPECT_TRUE(fcntl(child.output, F_GETFD) & FD_CLOEXEC);
    close(child.socket);
    close(child.output);
    int status = -1;
    EXPECT_EQ(waitpid(child.pid, &status, 0), child.pid);
    EXPECT_EQ(status, 0);
}

TEST(ChildStart, LeadsAGroupOfItsOwn)
{
    const Child child = startChild("/bin/cat", {"cat"}, {});
    ASSERT_GT(child.pid, 0);
    EXPECT_EQ(getpgid(child.pid), child.pid);
    close(child.socket);
    close(child.output);
    EXPECT_EQ(waitpid(child.pid, nullptr, 0), child.pid);
}

TEST(ChildStartDeathTest, TellsThatThereAreNoMoreDescriptors)
{
    for (int free = 0; free < 7; ++free)
        EXPECT_EXIT(startWith(free), testing::ExitedWithCode(3), "") << free;
    EXPECT_EXIT(startWith(7), testing::ExitedWithCode(0), "");
}
