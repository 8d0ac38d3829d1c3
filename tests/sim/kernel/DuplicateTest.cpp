#include "InputSubsystem.h"
#include "OpenNode.h"

#include <gmock/gmock.h>

#include <climits>
#include <functional>

#include <linux/close_range.h>
#include <unistd.h>

using namespace Vorn::Sim;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

const DeviceDescription panel = DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK});
// Beyond whatever is open in a test.
constexpr int target = 200;

ssize_t readFrom(int fd)
{
    char buffer[1024];
    const ssize_t result = ::read(fd, buffer, sizeof(buffer));
    return result < 0 ? -errno : result;
}

constexpr ssize_t packet = 2 * sizeof(input_event);

struct Way
{
    const char *name;
    std::function<int(int)> duplicate;
};

void PrintTo(const Way &way, std::ostream *stream)
{
    *stream << way.name;
}

class Duplicate : public testing::TestWithParam<Way>
{
protected:
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
};

TEST_P(Duplicate, SharesTheQueueOfTheOriginal)
{
    const OpenNode original(node.path());
    const int copy = GetParam().duplicate(original.fd());
    ASSERT_GE(copy, 0);
    EXPECT_EQ(node.openDescriptors(), 2);
    node.press(KEY_OK);
    EXPECT_EQ(readFrom(copy), packet);
    EXPECT_FALSE(original.isReadable());
    EXPECT_EQ(original.readError(), EAGAIN);
    char name[16] = {};
    EXPECT_EQ(::ioctl(copy, EVIOCGNAME(16), name), 6);
    EXPECT_EQ(::close(copy), 0);
    EXPECT_EQ(node.openDescriptors(), 1);
}

TEST_P(Duplicate, OutlivesTheOriginal)
{
    OpenNode original(node.path());
    const int copy = GetParam().duplicate(original.fd());
    original.close();
    // Of another file meanwhile, and not a node any more.
    const int other = ::open("/dev/null", O_RDONLY);
    node.press(KEY_OK);
    EXPECT_EQ(readFrom(other), 0);
    EXPECT_EQ(readFrom(copy), packet);
    ::close(copy);
    ::close(other);
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_P(Duplicate, HoldsTheGrabUntilTheLastIsClosed)
{
    OpenNode original(node.path());
    const OpenNode other(node.path());
    ASSERT_EQ(::ioctl(original.fd(), EVIOCGRAB, 1), 0);
    const int copy = GetParam().duplicate(original.fd());
    original.close();
    node.press(KEY_OK);
    EXPECT_EQ(other.readError(), EAGAIN);
    ::close(copy);
    node.release(KEY_OK);
    EXPECT_THAT(other.read(), SizeIs(2));
}

INSTANTIATE_TEST_SUITE_P(
    Ways, Duplicate,
    testing::Values(Way{"dup", [](int fd) { return ::dup(fd); }},
                    Way{"dup2", [](int fd) { return ::dup2(fd, target); }},
                    Way{"dup3", [](int fd) { return ::dup3(fd, target, O_CLOEXEC); }},
                    Way{"F_DUPFD", [](int fd) { return ::fcntl(fd, F_DUPFD, target); }},
                    Way{"F_DUPFD_CLOEXEC",
                        [](int fd) { return ::fcntl(fd, F_DUPFD_CLOEXEC, target); }}),
    [](const auto &parameter) { return parameter.param.name; });

struct End
{
    const char *name;
    /// Closes the descriptor of a node, or puts another file in its place.
    std::function<void(int)> end;
};

void PrintTo(const End &end, std::ostream *stream)
{
    *stream << end.name;
}

class DescriptorNumber : public testing::TestWithParam<End>
{
protected:
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
};

// Else reads of what uses the number next would be answered by the node.
TEST_P(DescriptorNumber, IsNoNodeAnyMoreWhateverEndsIt)
{
    const OpenNode original(node.path());
    const int fd = ::fcntl(original.fd(), F_DUPFD, target);
    ASSERT_EQ(fd, target);
    GetParam().end(fd);
    const int file = ::open("/dev/null", O_RDONLY);
    ASSERT_EQ(::dup2(file, fd), fd);
    node.press(KEY_OK);
    EXPECT_EQ(readFrom(fd), 0);
    char name[16];
    EXPECT_EQ(::ioctl(fd, EVIOCGNAME(16), name), -1);
    EXPECT_EQ(subsystem.openDescriptors(), 1);
    ::close(fd);
    ::close(file);
}

INSTANTIATE_TEST_SUITE_P(
    Ways, DescriptorNumber,
    testing::Values(End{"close", [](int fd) { ::close(fd); }},
                    End{"close_range",
                        [](int fd) { ::close_range(static_cast<unsigned>(fd), UINT_MAX, 0); }},
                    End{"closefrom", [](int fd) { ::closefrom(fd); }},
                    End{"dup2", [](int fd) { ::dup2(STDERR_FILENO, fd); }},
                    End{"dup3", [](int fd) { ::dup3(STDERR_FILENO, fd, 0); }}),
    [](const auto &parameter) { return parameter.param.name; });

TEST(DescriptorTable, KeepsTheHighNumbersWhenALowOneIsOpenedAgain)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    OpenNode low(node.path());
    const OpenNode high(node.path());
    ASSERT_LT(low.fd(), high.fd());
    low.close();
    const OpenNode lowAgain(node.path());
    ASSERT_LT(lowAgain.fd(), high.fd());
    node.press(KEY_OK);
    EXPECT_THAT(high.read(), ElementsAre(Event{EV_KEY, KEY_OK, 1}, report));
}

TEST(CloseRange, LeavesOpenWhatItOnlyMarksAndWhatIsOutside)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    ASSERT_EQ(::dup2(reader.fd(), target), target);
    ASSERT_EQ(::close_range(target, target, CLOSE_RANGE_CLOEXEC), 0);
    EXPECT_EQ(node.openDescriptors(), 2);
    ASSERT_EQ(::close_range(target, target, 0), 0);
    EXPECT_EQ(node.openDescriptors(), 1);
    EXPECT_EQ(::close_range(5, 4, 0), -1);
    EXPECT_EQ(errno, EINVAL);
    const auto fd = static_cast<unsigned>(reader.fd());
    constexpr unsigned unknownFlag = 1U << 30;
    EXPECT_EQ(::close_range(fd, fd, unknownFlag), -1);
    node.press(KEY_OK);
    EXPECT_THAT(reader.read(), ElementsAre(Event{EV_KEY, KEY_OK, 1}, report));
}

TEST(Dup2, OfANodeOntoItselfOrOfNothingChangesNothing)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    EXPECT_EQ(::dup2(reader.fd(), reader.fd()), reader.fd());
    EXPECT_EQ(::dup2(target, reader.fd()), -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(node.openDescriptors(), 1);
    node.press(KEY_OK);
    EXPECT_THAT(reader.read(), SizeIs(2));
}

} // namespace
