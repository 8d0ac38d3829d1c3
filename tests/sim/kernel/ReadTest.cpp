#include "InputSubsystem.h"
#include "OpenNode.h"

#include <QFile>

#include <gmock/gmock.h>

#include <thread>
#include <vector>

using namespace Vorn::Sim;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const DeviceDescription panel = DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK});

} // namespace

TEST(Read, ReturnsAsManyWholeRecordsAsFit)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    node.release(KEY_OK);
    char buffer[sizeof(input_event) * 3 + 5] = {};
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)),
              static_cast<ssize_t>(sizeof(input_event) * 3));
    EXPECT_TRUE(reader.isReadable());
    EXPECT_THAT(reader.read(), ElementsAre(report));
    EXPECT_FALSE(reader.isReadable());
}

TEST(Read, WithTooSmallABufferIsInvalidAndTakesNothing)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    char buffer[sizeof(input_event)];
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer) - 1), -EINVAL);
    EXPECT_EQ(reader.readInto(buffer, 0), 0);
    EXPECT_THAT(reader.read(), SizeIs(2));
    EXPECT_EQ(reader.readInto(buffer, 0), -EAGAIN);
}

TEST(Read, OfNothingNeverBlocks)
{
    InputSubsystem subsystem;
    const OpenNode reader(subsystem.plug(0, panel).path(), O_RDONLY);
    char byte = 'x';
    EXPECT_EQ(reader.readInto(&byte, 0), 0);
    EXPECT_EQ(byte, 'x');
}

TEST(Read, FollowsALaterChangeToNonBlocking)
{
    InputSubsystem subsystem;
    const OpenNode reader(subsystem.plug(0, panel).path(), O_RDONLY);
    ASSERT_EQ(::fcntl(reader.fd(), F_SETFL, O_NONBLOCK), 0);
    EXPECT_EQ(reader.readError(), EAGAIN);
}

TEST(Read, BlocksUntilThereIsSomething)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path(), O_RDONLY);
    std::vector<Event> records;
    std::thread thread([&] { records = reader.read(); });
    node.press(KEY_OK);
    thread.join();
    EXPECT_THAT(records, ElementsAre(Event{EV_KEY, KEY_OK, 1}, report));
}

TEST(Read, ThatBlocksEndsWhenTheDeviceGoes)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path(), O_RDONLY);
    int error = 0;
    std::thread thread([&] { error = reader.readError(); });
    subsystem.unplug(0);
    thread.join();
    EXPECT_EQ(error, ENODEV);
}

TEST(Read, ReturnsOddBytesExactlyAndAlone)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.press(KEY_OK);
    node.sendBytes(QByteArray(40, 'x'));
    node.sendBytes("12345678");
    node.release(KEY_OK);
    char buffer[1024] = {};
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)),
              static_cast<ssize_t>(2 * sizeof(input_event)));
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)), 40);
    EXPECT_EQ(QByteArray(buffer, 40), QByteArray(40, 'x'));
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)), 8);
    EXPECT_EQ(QByteArray(buffer, 8), QByteArray("12345678"));
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)),
              static_cast<ssize_t>(2 * sizeof(input_event)));
    EXPECT_FALSE(reader.isReadable());
}

TEST(Read, CutsOddBytesThatDoNotFit)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.sendBytes(QByteArray(100, 'x'));
    char buffer[sizeof(input_event)];
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)), static_cast<ssize_t>(sizeof(buffer)));
    EXPECT_EQ(reader.readError(), EAGAIN);
}

TEST(Read, ReturnsASingleByte)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.sendBytes("x");
    char buffer[sizeof(input_event)] = {};
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)), 1);
    EXPECT_EQ(buffer[0], 'x');
}

TEST(Read, OfNoBytesIsAnEndOfFile)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    node.sendBytes(QByteArray());
    EXPECT_TRUE(reader.isReadable());
    char buffer[1024];
    EXPECT_EQ(reader.readInto(buffer, sizeof(buffer)), 0);
    EXPECT_FALSE(reader.isReadable());
    EXPECT_EQ(reader.readError(), EAGAIN);
}

TEST(Read, ThroughAQtFileGivesTheRecords)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    QFile file(node.path());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    EXPECT_TRUE(file.isSequential());
    node.press(KEY_OK);
    // QFile reads until it has all that it was asked for.
    const int size = 2 * sizeof(input_event);
    EXPECT_EQ(file.read(size).size(), size);
}

TEST(Read, OfAReaderThatLagsKeepsTheOrder)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    const OpenNode reader(node.path());
    int expected = 0;
    for (int i = 0; i < 3000; ++i) {
        node.send({InputNode::record(EV_MSC, 0, i, 0), InputNode::record(EV_SYN, 0, i, 0)});
        // Always two records behind.
        if (i == 0)
            continue;
        const std::vector<input_event> records = reader.readRecords(2);
        ASSERT_THAT(records, SizeIs(2));
        ASSERT_EQ(records[0].value, expected);
        ASSERT_EQ(records[1].value, expected);
        ++expected;
    }
    EXPECT_THAT(reader.read(), SizeIs(2));
    EXPECT_THAT(reader.read(), IsEmpty());
}
