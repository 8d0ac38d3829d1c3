#include "LinuxInputListener.h"

#include "InputSubsystem.h"
#include "LogRecorder.h"
#include "RecordingHandler.h"
#include "VirtualClock.h"

#include <QSocketNotifier>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Vorn::Sim::DeviceDescription;

const QString path = QStringLiteral("/dev/input/event0");

bool isOpen(int fd)
{
    return ::fcntl(fd, F_GETFD) != -1;
}

int descriptorOf(const LinuxInputListener &listener)
{
    const auto *notifier = listener.findChild<QSocketNotifier *>();
    return notifier ? static_cast<int>(notifier->socket()) : -1;
}

/// A descriptor that something else in the process opens, of the lowest free number.
int openAnotherFile()
{
    return ::open("/dev/null", O_RDONLY | O_CLOEXEC);
}

/// Frees the number of a standard stream while it exists, as in a daemon that has closed them.
class FreeNumber
{
public:
    explicit FreeNumber(int number)
        : m_number(number)
        , m_saved(::fcntl(number, F_DUPFD_CLOEXEC, 3))
    {
        ::close(number);
    }
    ~FreeNumber()
    {
        ::dup2(m_saved, m_number);
        ::close(m_saved);
    }
    FreeNumber(const FreeNumber &) = delete;
    FreeNumber &operator=(const FreeNumber &) = delete;

private:
    const int m_number;
    const int m_saved;
};

/// In which order a listener does what others can see, and what it leaves behind.
class ListenerOrder : public testing::Test
{
protected:
    std::unique_ptr<LinuxInputListener> listen(LinuxInputListener::Type type)
    {
        return std::make_unique<LinuxInputListener>(&receiver, path, type);
    }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    Vorn::Sim::InputNode &node = subsystem.plug(
        0, DeviceDescription::keyboard("both", BUS_HOST, {KEY_A}).withSwitches({0}, {0}));
    RecordingHandler receiver;
};

TEST_F(ListenerOrder, AReceiverIsStillTheReceiverWhileItIsInvalidated)
{
    class AskingHandler : public RecordingHandler
    {
    public:
        void invalidate() override { source->getInputStatus(); }
        LinuxInputListener *source = nullptr;
    } leaving;
    const auto listener = listen(LinuxInputListener::Switch);
    leaving.source = listener.get();
    listener->setHandler(&leaving);
    listener->setHandler(&receiver);
    EXPECT_THAT(leaving.batches, SizeIs(16));
    EXPECT_THAT(receiver.batches, IsEmpty());
}

TEST_F(ListenerOrder, ANumberThatWasClosedBelongsToItsNextOwner)
{
    auto listener = listen(LinuxInputListener::Key);
    const int number = descriptorOf(*listener);
    listener->close();
    const int another = openAnotherFile();
    ASSERT_EQ(another, number);
    listener->close();
    EXPECT_TRUE(isOpen(another));
    listener.reset();
    EXPECT_TRUE(isOpen(another));
    ::close(another);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        EXPECT_TRUE(isOpen(standard)) << standard;
}

TEST_F(ListenerOrder, ANumberThatAReadErrorClosedBelongsToItsNextOwner)
{
    auto listener = listen(LinuxInputListener::Key);
    const int number = descriptorOf(*listener);
    node.failRead(EIO);
    clock.settle();
    const int another = openAnotherFile();
    ASSERT_EQ(another, number);
    listener.reset();
    EXPECT_TRUE(isOpen(another));
    ::close(another);
}

TEST_F(ListenerOrder, TheNotifierIsGoneWhenCloseReturns)
{
    const auto listener = listen(LinuxInputListener::Key);
    ASSERT_THAT(listener->findChildren<QSocketNotifier *>(), SizeIs(1));
    node.send({keyRecord(KEY_A, 1)});
    listener->close();
    EXPECT_THAT(listener->findChildren<QSocketNotifier *>(), IsEmpty());
    EXPECT_EQ(node.openDescriptors(), 0);
}

TEST_F(ListenerOrder, TheNotifierIsGoneAsSoonAsAReadHasFailed)
{
    const auto listener = listen(LinuxInputListener::Key);
    const int number = descriptorOf(*listener);
    node.failRead(EIO);
    // As from inside the notifier's signal, before deferred deletions run.
    listener->readData(number);
    EXPECT_THAT(listener->findChildren<QSocketNotifier *>(), IsEmpty());
    EXPECT_EQ(node.openDescriptors(), 0);
}

TEST_F(ListenerOrder, TheNumbersOfStandardStreamsAreDescriptorsLikeAnyOther)
{
    for (const int number : {STDIN_FILENO, STDOUT_FILENO}) {
        SCOPED_TRACE(number);
        const FreeNumber free(number);
        LogRecorder log(log4cplus::INFO_LOG_LEVEL);
        {
            const auto listener = listen(LinuxInputListener::Key);
            ASSERT_EQ(descriptorOf(*listener), number);
            node.send({keyRecord(KEY_A, 1)});
            clock.settle();
            EXPECT_THAT(receiver.take(), ElementsAre("1/30=1@0"));
        }
        EXPECT_FALSE(isOpen(number));
        EXPECT_EQ(node.openDescriptors(), 0);
        EXPECT_THAT(log.texts(), ElementsAre("Event device /dev/input/event0 ready"));
    }
}

TEST_F(ListenerOrder, TheNumberZeroIsClosedAgainWithoutTheCapability)
{
    subsystem.unplug(0);
    subsystem.plug(0, DeviceDescription::keyboard("keys", BUS_HOST, {KEY_A}));
    const FreeNumber free(STDIN_FILENO);
    const auto listener = listen(LinuxInputListener::Switch);
    EXPECT_FALSE(isOpen(0));
}

TEST_F(ListenerOrder, AnEmptyNameIsLoggedLikeAnyOther)
{
    subsystem.unplug(0);
    subsystem.plug(0, DeviceDescription::keyboard("", BUS_USB, {KEY_A}));
    LogRecorder log;
    const auto listener = listen(LinuxInputListener::Key);
    EXPECT_THAT(log.texts(),
                ElementsAre("Event device /dev/input/event0 ready", "bustype: 3", "name: "));
    EXPECT_EQ(listener->bus(), InputEvent::Bus::USB);
}

TEST_F(ListenerOrder, AReadIsTracedBeforeItFails)
{
    const auto listener = listen(LinuxInputListener::Key);
    node.failRead(EIO);
    LogRecorder log;
    clock.settle();
    EXPECT_THAT(log.texts(),
                ElementsAre(testing::StartsWith("Enter LinuxInputListener::readData: "),
                            "Error reading from event device /dev/input/event0"));
}

TEST_F(ListenerOrder, ABatchIsCompleteAndLoggedBeforeItIsDelivered)
{
    const auto listener = listen(LinuxInputListener::Key);
    LogRecorder log(log4cplus::DEBUG_LOG_LEVEL);
    receiver.onBatch = [&] {
        EXPECT_THAT(log.texts(),
                    ElementsAre(" type: 1 code:30 value:1", " type: 1 code:30 value:0"));
    };
    node.send({keyRecord(KEY_A, 1), keyRecord(KEY_A, 0)});
    clock.settle();
    EXPECT_THAT(receiver.take(), ElementsAre("1/30=1@0 1/30=0@0"));
}

} // namespace
