#include "LinuxInputListener.h"

#include "InputSubsystem.h"
#include "LogRecorder.h"
#include "RecordingHandler.h"
#include "VirtualClock.h"
#include "dbglog.h"

#include <QCoreApplication>
#include <QMetaMethod>
#include <QSocketNotifier>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

namespace {

using namespace std::chrono_literals;
using testing::AnyOf;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;
using Bus = InputEvent::Bus;
using Vorn::Sim::DeviceDescription;
using Vorn::Sim::SystemCall;

constexpr std::size_t recordsPerRead = 1024 / sizeof(input_event);
const char *const sourceFile = "src/lib/input/LinuxInputListener.cpp";

/// Compilers differ on whether to qualify the last parameter's nested type with its class.
auto constructorLine(int level, const std::string &text)
{
    const std::string function = "LinuxInputListener::LinuxInputListener(InputHandler*, const "
                                 "QString&, ";
    const auto line = [&](const std::string &type) {
        return LogLine{"LinuxInputListener", level, text, sourceFile, function + type + ")"};
    };
    return AnyOf(line("LinuxInputListener::Type"), line("Type"));
}

LogLine readLine(int level, const std::string &text)
{
    return {"LinuxInputListener", level, text, sourceFile,
            "void LinuxInputListener::readData(int)"};
}

LogLine capabilityLine(const std::string &text)
{
    return {"LinuxInputListener", log4cplus::DEBUG_LOG_LEVEL, text, sourceFile,
            "bool LinuxInputListener::testCapability(int, int)"};
}

class LinuxInputListenerTest : public testing::Test
{
protected:
    std::unique_ptr<LinuxInputListener>
    listen(LinuxInputListener::Type type, const QString &path = QStringLiteral("/dev/input/event0"))
    {
        return std::make_unique<LinuxInputListener>(&receiver, path, type);
    }

    Vorn::Sim::InputNode &plugKeyboard(const QByteArray &name = "front-panel", int bus = BUS_HOST)
    {
        return subsystem.plug(
            0, DeviceDescription::keyboard(name, bus, {KEY_1, KEY_A, KEY_S, KEY_D, KEY_VOLUMEUP}));
    }

    Vorn::Sim::InputNode &plugSwitches()
    {
        return subsystem.plug(0, DeviceDescription::switchBox("jacks", BUS_HOST, {0, 1, 2}, {0}));
    }

    Bus busOfKeyboard(const QByteArray &name, int bus)
    {
        plugKeyboard(name, bus);
        const Bus result = listen(LinuxInputListener::Key)->bus();
        subsystem.unplug(0);
        return result;
    }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    RecordingHandler receiver;
};

TEST_F(LinuxInputListenerTest, WithoutANodeIsInertAfterOneErrorLine)
{
    LogRecorder log;
    const auto listener = listen(LinuxInputListener::Key);
    EXPECT_THAT(log.lines(),
                ElementsAre(constructorLine(log4cplus::ERROR_LOG_LEVEL,
                                            "Cannot open input device /dev/input/event0")));
    EXPECT_EQ(listener->bus(), Bus::NoBus);
    EXPECT_EQ(listener->device(), "/dev/input/event0");
    log.clear();
    listener->getInputStatus();
    EXPECT_THAT(receiver.batches, IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre(capabilityLine("ioctl error: -1")));
}

TEST_F(LinuxInputListenerTest, WithoutPermissionIsInert)
{
    plugKeyboard().failOpen(EACCES);
    LogRecorder log;
    const auto listener = listen(LinuxInputListener::Key);
    EXPECT_THAT(log.texts(), ElementsAre("Cannot open input device /dev/input/event0"));
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(LinuxInputListenerTest, ArmsItselfAndTellsWhatItLearns)
{
    plugKeyboard();
    LogRecorder log;
    const auto listener = listen(LinuxInputListener::Key);
    EXPECT_THAT(log.lines(),
                ElementsAre(constructorLine(log4cplus::INFO_LOG_LEVEL,
                                            "Event device /dev/input/event0 ready"),
                            constructorLine(log4cplus::DEBUG_LOG_LEVEL, "bustype: 25"),
                            constructorLine(log4cplus::DEBUG_LOG_LEVEL, "name: front-panel")));
    EXPECT_EQ(listener->bus(), Bus::LocalUI);
    EXPECT_EQ(listener->parent(), nullptr);
    const auto notifiers = listener->findChildren<QSocketNotifier *>();
    ASSERT_EQ(notifiers.size(), 1);
    EXPECT_EQ(notifiers.first()->type(), QSocketNotifier::Read);
}

TEST_F(LinuxInputListenerTest, MakesExactlyTheseSystemCallsInThisOrder)
{
    plugKeyboard();
    listen(LinuxInputListener::Key).reset();
    const auto calls = subsystem.systemCalls("/dev/input/event0");
    ASSERT_EQ(calls.size(), 6);
    EXPECT_EQ(calls[0].kind, SystemCall::Kind::Open);
    EXPECT_EQ(calls[0].openFlags & (O_ACCMODE | O_NONBLOCK), O_RDONLY);
    // EVIOCGBIT(0, 31), EVIOCGID, EVIOCGNAME(256) and EVIOCSREP as the product's kernel knows them.
    const unsigned long requests[] = {0x801F4520, 0x80084502, 0x81004506, 0x40084503};
    const std::size_t sizes[] = {31, 8, 256, 8};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(calls[i + 1].kind, SystemCall::Kind::Ioctl);
        EXPECT_EQ(calls[i + 1].request, requests[i]) << i;
        EXPECT_EQ(calls[i + 1].size, sizes[i]) << i;
    }
    // The keyboard has no auto-repeat to turn off, which is harmless.
    EXPECT_EQ(calls[4].error, ENOSYS);
    EXPECT_EQ(calls[5].kind, SystemCall::Kind::Close);
}

TEST_F(LinuxInputListenerTest, KeepsItsDescriptorFromChildren)
{
    subsystem.plug(0, DeviceDescription::keyboard("keys", BUS_HOST, {KEY_A}));
    const auto listener = listen(LinuxInputListener::Key);
    const int fd = subsystem.systemCalls().first().fd;
    const int inherited = ::dup(fd);
    const auto isOpenInAChild = [](int number) {
        const std::string command = "[ -e /proc/self/fd/" + std::to_string(number) + " ]";
        return std::system(command.c_str()) == 0;
    };
    EXPECT_FALSE(isOpenInAChild(fd));
    EXPECT_TRUE(isOpenInAChild(inherited));
    ::close(inherited);
}

TEST_F(LinuxInputListenerTest, ChecksTheCapabilityOfItsType)
{
    plugKeyboard();
    LogRecorder log;
    {
        const auto listener = listen(LinuxInputListener::Switch);
        EXPECT_THAT(
            log.lines(),
            ElementsAre(constructorLine(log4cplus::DEBUG_LOG_LEVEL,
                                        "Event device /dev/input/event0 does not support EV_SW")));
        EXPECT_EQ(listener->bus(), Bus::NoBus);
        EXPECT_EQ(subsystem.openDescriptors(), 0);
        EXPECT_THAT(listener->findChildren<QSocketNotifier *>(), IsEmpty());
    }
    subsystem.unplug(0);
    plugSwitches();
    log.clear();
    const auto listener = listen(LinuxInputListener::Key);
    EXPECT_THAT(
        log.lines(),
        ElementsAre(constructorLine(log4cplus::WARN_LOG_LEVEL,
                                    "Event device /dev/input/event0 does not support EV_KEY")));
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(LinuxInputListenerTest, ClosesWithoutAskingForTheIdentity)
{
    plugSwitches();
    const auto listener = listen(LinuxInputListener::Key);
    const auto calls = subsystem.systemCalls("/dev/input/event0");
    ASSERT_EQ(calls.size(), 3);
    EXPECT_EQ(calls[1].request, EVIOCGBIT(0, 31));
    EXPECT_EQ(calls[2].kind, SystemCall::Kind::Close);
}

TEST_F(LinuxInputListenerTest, TakesAFailingCapabilityRequestForAbsence)
{
    plugKeyboard().failIoctl(EVIOCGBIT(0, 0), EIO);
    LogRecorder log;
    const auto listener = listen(LinuxInputListener::Key);
    EXPECT_THAT(
        log.lines(),
        ElementsAre(capabilityLine("ioctl error: -1"),
                    constructorLine(log4cplus::WARN_LOG_LEVEL,
                                    "Event device /dev/input/event0 does not support EV_KEY")));
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(LinuxInputListenerTest, MapsTheBusTypes)
{
    const std::vector<std::pair<int, Bus>> buses = {
        {BUS_PCI, Bus::PCI}, {BUS_USB, Bus::USB}, {BUS_BLUETOOTH, Bus::Bluetooth},
        {BUS_ADB, Bus::ADB}, {BUS_I2C, Bus::I2C}, {BUS_HOST, Bus::LocalUI},
        {BUS_SPI, Bus::SPI}, {BUS_CEC, Bus::CEC}, {1, Bus::PCI},
        {3, Bus::USB},       {5, Bus::Bluetooth}, {23, Bus::ADB},
        {24, Bus::I2C},      {25, Bus::LocalUI},  {28, Bus::SPI},
        {30, Bus::CEC}};
    for (const auto &[linuxBus, bus] : buses)
        EXPECT_EQ(busOfKeyboard("keys", linuxBus), bus) << linuxBus;
}

TEST_F(LinuxInputListenerTest, LeavesEveryOtherBusTypeUnknown)
{
    for (int linuxBus : {0, 2, 4, 6, 16, 17, 22, 26, 27, 29, 31, 65535})
        EXPECT_EQ(busOfKeyboard("keys", linuxBus), Bus::NoBus) << linuxBus;
}

TEST_F(LinuxInputListenerTest, KnowsTheHostLinkByItsExactName)
{
    EXPECT_EQ(busOfKeyboard("hostlink", BUS_USB), Bus::Hostlink);
    EXPECT_EQ(busOfKeyboard("hostlink", BUS_VIRTUAL), Bus::Hostlink);
    for (const char *name : {"Hostlink", "HOSTLINK", "hostlink ", " hostlink", "hostlink2", "host"})
        EXPECT_EQ(busOfKeyboard(name, BUS_USB), Bus::USB) << name;
    EXPECT_EQ(busOfKeyboard("", BUS_USB), Bus::USB);
}

TEST_F(LinuxInputListenerTest, KeepsWhatItKnowsWhenTheIdentityCannotBeRead)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    LogRecorder log;
    node.failIoctl(EVIOCGID, EIO);
    EXPECT_EQ(listen(LinuxInputListener::Key)->bus(), Bus::NoBus);
    EXPECT_THAT(log.texts(),
                ElementsAre("Event device /dev/input/event0 ready", "name: front-panel"));
    log.clear();
    node.failIoctl(EVIOCGNAME(0), EIO);
    EXPECT_EQ(listen(LinuxInputListener::Key)->bus(), Bus::LocalUI);
    EXPECT_THAT(log.texts(), ElementsAre("Event device /dev/input/event0 ready", "bustype: 25"));
}

TEST_F(LinuxInputListenerTest, TakesTheHostLinksNameWithoutAnIdentity)
{
    plugKeyboard("hostlink", BUS_USB).failIoctl(EVIOCGID, EIO);
    EXPECT_EQ(listen(LinuxInputListener::Key)->bus(), Bus::Hostlink);
}

TEST_F(LinuxInputListenerTest, CutsAnOverlongName)
{
    for (int length : {254, 255, 256, 300}) {
        LogRecorder log;
        plugKeyboard(QByteArray(length, 'n'), BUS_USB);
        EXPECT_EQ(listen(LinuxInputListener::Key)->bus(), Bus::USB);
        EXPECT_EQ(log.texts().back(),
                  "name: " + std::string(static_cast<std::size_t>(qMin(length, 255)), 'n'));
        subsystem.unplug(0);
    }
}

TEST_F(LinuxInputListenerTest, OpensAPathInUtf8)
{
    const QString path = QString::fromUtf8("/dev/input/tür");
    LogRecorder log;
    listen(LinuxInputListener::Key, path);
    EXPECT_EQ(log.texts().front(), u8"Cannot open input device /dev/input/tür");
    EXPECT_EQ(subsystem.systemCalls(path.toUtf8()).size(), 1);
}

TEST_F(LinuxInputListenerTest, DeliversEachReadAsOneBatchWithItsSynchronisation)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    node.send({record(EV_MSC, MSC_SCAN, 458, 1000), keyRecord(KEY_A, 1, 1000),
               record(EV_SYN, SYN_REPORT, 0, 1000), keyRecord(KEY_S, 1, 1001)});
    clock.settle();
    EXPECT_THAT(receiver.take(), ElementsAre("4/4=458@1000 1/30=1@1000 0/0=0@1000 1/31=1@1001"));
    node.send({keyRecord(KEY_S, 0, 1002)});
    clock.settle();
    EXPECT_THAT(receiver.take(), ElementsAre("1/31=0@1002"));
}

TEST_F(LinuxInputListenerTest, PassesEveryTypeAndValueOn)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    node.send({record(EV_SYN, SYN_DROPPED, 0, 5), record(EV_SW, 2, 1, 5), record(EV_REL, 0, -7, 5),
               record(0xffff, 0xffff, -2147483647 - 1, 5)});
    clock.settle();
    EXPECT_THAT(receiver.take(), ElementsAre("0/3=0@5 5/2=1@5 2/0=-7@5 65535/65535=-2147483648@5"));
}

TEST_F(LinuxInputListenerTest, LogsTheEntryAndEachRecord)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    auto *const notifier = listener->findChild<QSocketNotifier *>();
    const std::string fd = std::to_string(notifier->socket());
    node.send({keyRecord(115, 1), record(EV_SYN, 0, 0), keyRecord(114, -1)});
    LogRecorder log;
    clock.settle();
    EXPECT_THAT(
        log.lines(),
        ElementsAre(readLine(log4cplus::TRACE_LOG_LEVEL,
                             "Enter "
                                 + dbglog_scopedFunction("void LinuxInputListener::readData(int)",
                                                         "LinuxInputListener")
                                 + ": " + fd),
                    readLine(log4cplus::DEBUG_LOG_LEVEL, " type: 1 code:115 value:1"),
                    readLine(log4cplus::DEBUG_LOG_LEVEL, " type: 0 code:0 value:0"),
                    readLine(log4cplus::DEBUG_LOG_LEVEL, " type: 1 code:114 value:-1")));
}

TEST_F(LinuxInputListenerTest, ReadsAtMost1024BytesOncePerActivation)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    QList<input_event> burst;
    for (std::size_t i = 0; i < 2 * recordsPerRead + 5; ++i)
        burst.append(keyRecord(KEY_A, static_cast<int>(i), 0));
    node.send(burst);
    subsystem.clearSystemCalls();
    clock.settle();
    const int size = static_cast<int>(recordsPerRead);
    EXPECT_THAT(receiver.take(),
                ElementsAre(describe(burst.mid(0, size)), describe(burst.mid(size, size)),
                            describe(burst.mid(2 * size))));
    const auto calls = subsystem.systemCalls();
    EXPECT_THAT(calls, SizeIs(3));
    EXPECT_THAT(calls, Each(Field(&SystemCall::kind, SystemCall::Kind::Read)));
    EXPECT_THAT(calls, Each(Field(&SystemCall::size, 1024U)));
}

#if __SIZEOF_LONG__ == 4
TEST_F(LinuxInputListenerTest, ReadsUpTo64RecordsOf16BytesOnTheProduct)
{
    EXPECT_EQ(sizeof(input_event), 16U);
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    QList<input_event> burst;
    for (int i = 0; i < 65; ++i)
        burst.append(keyRecord(KEY_A, i, 0));
    node.send(burst);
    clock.settle();
    EXPECT_THAT(receiver.take(), ElementsAre(describe(burst.mid(0, 64)), describe(burst.mid(64))));
}
#endif

TEST_F(LinuxInputListenerTest, IgnoresAPartialRecordAtTheEnd)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    const input_event records[] = {keyRecord(KEY_A, 1, 1), keyRecord(KEY_A, 0, 2),
                                   keyRecord(KEY_S, 1, 3)};
    node.sendBytes(QByteArray(reinterpret_cast<const char *>(records),
                              static_cast<int>(2 * sizeof(input_event) + 8)));
    clock.settle();
    EXPECT_THAT(receiver.take(), ElementsAre("1/30=1@1 1/30=0@2"));
    node.sendBytes(
        QByteArray(reinterpret_cast<const char *>(records), static_cast<int>(sizeof(input_event))));
    clock.settle();
    EXPECT_THAT(receiver.take(), ElementsAre("1/30=1@1"));
}

TEST_F(LinuxInputListenerTest, StaysOpenAfterAShortRead)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    const std::string message = "Short read on event device /dev/input/event0";
    for (int bytes : {static_cast<int>(sizeof(input_event)) - 1, 1, 0}) {
        LogRecorder log(log4cplus::INFO_LOG_LEVEL);
        node.sendBytes(QByteArray(bytes, '\1'));
        clock.settle();
        EXPECT_THAT(log.lines(), ElementsAre(readLine(log4cplus::ERROR_LOG_LEVEL, message)));
        EXPECT_THAT(receiver.batches, IsEmpty());
        EXPECT_EQ(node.openDescriptors(), 1);
    }
    node.send({keyRecord(KEY_A, 1, 9)});
    clock.settle();
    EXPECT_THAT(receiver.take(), ElementsAre("1/30=1@9"));
}

TEST_F(LinuxInputListenerTest, ClosesAfterAReadErrorFromInsideTheNotifiersSignal)
{
    for (int error : {ENODEV, EIO, EINTR}) {
        Vorn::Sim::InputNode &node = plugKeyboard();
        const auto listener = listen(LinuxInputListener::Key);
        LogRecorder log(log4cplus::INFO_LOG_LEVEL);
        node.failRead(error);
        clock.settle();
        EXPECT_THAT(log.lines(),
                    ElementsAre(readLine(log4cplus::ERROR_LOG_LEVEL,
                                         "Error reading from event device /dev/input/event0")));
        EXPECT_EQ(node.openDescriptors(), 0);
        EXPECT_THAT(listener->findChildren<QSocketNotifier *>(), IsEmpty());
        // The receiver is not notified, and the bus stays known.
        EXPECT_THAT(receiver.batches, IsEmpty());
        EXPECT_EQ(receiver.invalidations, 0);
        EXPECT_EQ(listener->bus(), Bus::LocalUI);
        node.send({keyRecord(KEY_A, 1)});
        clock.advance(1s);
        EXPECT_THAT(receiver.batches, IsEmpty());
        subsystem.unplug(0);
    }
}

TEST_F(LinuxInputListenerTest, ClosesAfterAReadErrorAlsoWhenNothingIsLogged)
{
    LogRecorder log(log4cplus::OFF_LOG_LEVEL);
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    node.failRead(EIO);
    clock.settle();
    EXPECT_EQ(node.openDescriptors(), 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LinuxInputListenerTest, GetsTheReleaseOfAHeldKeyBeforeAnUnplugCloses)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    node.press(KEY_A);
    clock.settle();
    receiver.take();
    subsystem.unplug(0);
    clock.settle();
    ASSERT_EQ(receiver.batches.size(), 1U);
    EXPECT_THAT(receiver.batches[0], testing::StartsWith("1/30=0@"));
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(LinuxInputListenerTest, ReadsAndLogsWithoutAReceiver)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    LinuxInputListener listener(nullptr, node.path(), LinuxInputListener::Key);
    LogRecorder log(log4cplus::DEBUG_LOG_LEVEL);
    node.send({keyRecord(KEY_A, 1)});
    clock.settle();
    EXPECT_THAT(log.texts(), ElementsAre(" type: 1 code:30 value:1"));
    listener.setHandler(&receiver);
    node.send({keyRecord(KEY_A, 0)});
    clock.settle();
    EXPECT_THAT(receiver.take(), ElementsAre("1/30=0@0"));
}

TEST_F(LinuxInputListenerTest, InvalidatesTheReceiverThatItLeaves)
{
    plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    RecordingHandler other;
    listener->setHandler(&other);
    EXPECT_EQ(receiver.invalidations, 1);
    EXPECT_EQ(other.invalidations, 0);
    listener->setHandler(&other);
    EXPECT_EQ(other.invalidations, 1);
    subsystem.node(0).send({keyRecord(KEY_A, 1, 3)});
    clock.settle();
    EXPECT_THAT(other.take(), ElementsAre("1/30=1@3"));
    listener->setHandler(nullptr);
    listener->setHandler(nullptr);
    EXPECT_EQ(other.invalidations, 2);
}

TEST_F(LinuxInputListenerTest, ChangesTheReceiverWhileInert)
{
    const auto listener = listen(LinuxInputListener::Key);
    RecordingHandler other;
    listener->setHandler(&other);
    EXPECT_EQ(receiver.invalidations, 1);
    listener->setHandler(nullptr);
    EXPECT_EQ(other.invalidations, 1);
}

TEST_F(LinuxInputListenerTest, DropsRecordsOfADeletedReceiver)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    auto temporary = std::make_unique<RecordingHandler>();
    LinuxInputListener listener(temporary.get(), node.path(), LinuxInputListener::Key);
    temporary.reset();
    node.send({keyRecord(KEY_A, 1)});
    clock.settle();
    listener.getInputStatus();
    listener.setHandler(&receiver);
    node.send({keyRecord(KEY_A, 0)});
    clock.settle();
    EXPECT_THAT(receiver.take(), ElementsAre("1/30=0@0"));
}

TEST_F(LinuxInputListenerTest, MayBeClosedOrRedirectedByItsReceiver)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    receiver.onBatch = [&] {
        listener->close();
        listener->setHandler(nullptr);
    };
    node.send({keyRecord(KEY_A, 1)});
    clock.settle();
    EXPECT_EQ(receiver.invalidations, 1);
    EXPECT_EQ(node.openDescriptors(), 0);
}

TEST_F(LinuxInputListenerTest, LeavesABatchAloneThatItsReceiverKeeps)
{
    class KeepingHandler : public RecordingHandler
    {
    public:
        void processEvent(const QList<input_event> &events) override { kept.push_back(events); }
        std::vector<QList<input_event>> kept;
    } keeper;
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    listener->setHandler(&keeper);
    for (const int value : {1, 2, 0}) {
        node.send({keyRecord(KEY_A, value), keyRecord(KEY_S, value)});
        QCoreApplication::processEvents();
    }
    ASSERT_THAT(keeper.kept, SizeIs(3));
    EXPECT_EQ(describe(keeper.kept[0]), "1/30=1@0 1/31=1@0");
    EXPECT_EQ(describe(keeper.kept[1]), "1/30=2@0 1/31=2@0");
    EXPECT_EQ(describe(keeper.kept[2]), "1/30=0@0 1/31=0@0");
}

TEST_F(LinuxInputListenerTest, DeliversBatchesOfChangingSizes)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    for (const int size : {1, 3, 2, 4, 1}) {
        QList<input_event> records;
        std::string expected;
        for (int i = 0; i < size; ++i) {
            records.append(keyRecord(KEY_A + i, size));
            expected += (i == 0 ? "" : " ") + describe({records.last()});
        }
        node.send(records);
        QCoreApplication::processEvents();
        EXPECT_THAT(receiver.take(), ElementsAre(expected));
    }
}

TEST_F(LinuxInputListenerTest, MayReadOnWhileItsReceiverIsAtWork)
{
    // As when an application responds to a key by running a nested event loop.
    class NestingHandler : public RecordingHandler
    {
    public:
        void processEvent(const QList<input_event> &events) override
        {
            const std::string before = describe(events);
            while (!onDelivery.empty()) {
                const auto next = onDelivery.back();
                onDelivery.pop_back();
                next();
                QCoreApplication::processEvents();
            }
            EXPECT_EQ(describe(events), before);
            batches.push_back(describe(events));
        }
        std::vector<std::function<void()>> onDelivery;
    } nesting;
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    listener->setHandler(&nesting);
    nesting.onDelivery = {[&] {
                              node.send({keyRecord(KEY_D, 1), keyRecord(KEY_D, 0)});
                          },
                          [&] {
                              node.send({keyRecord(KEY_S, 1), keyRecord(KEY_S, 0)});
                          }};
    node.send({keyRecord(KEY_A, 1), keyRecord(KEY_A, 0)});
    QCoreApplication::processEvents();
    EXPECT_THAT(nesting.batches,
                ElementsAre("1/32=1@0 1/32=0@0", "1/31=1@0 1/31=0@0", "1/30=1@0 1/30=0@0"));
}

TEST_F(LinuxInputListenerTest, MayBeDeletedByItsReceiver)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    auto listener = listen(LinuxInputListener::Key);
    receiver.onBatch = [&] { listener.reset(); };
    node.send({keyRecord(KEY_A, 1), keyRecord(KEY_A, 0)});
    QCoreApplication::processEvents();
    EXPECT_THAT(receiver.take(), SizeIs(1));
    EXPECT_EQ(node.openDescriptors(), 0);
}

TEST_F(LinuxInputListenerTest, TwoListenersOnOneNodeReadEachForItself)
{
    Vorn::Sim::InputNode &node =
        subsystem.plug(0, DeviceDescription::keyboard("both", BUS_HOST, {KEY_A}).withSwitches({0}));
    const auto keys = listen(LinuxInputListener::Key);
    RecordingHandler other;
    LinuxInputListener switches(&other, node.path(), LinuxInputListener::Switch);
    node.send({keyRecord(KEY_A, 1, 1), switchRecord(0, 1, 1)});
    clock.settle();
    EXPECT_THAT(receiver.take(), ElementsAre("1/30=1@1 5/0=1@1"));
    EXPECT_THAT(other.take(), ElementsAre("1/30=1@1 5/0=1@1"));
    keys->close();
    node.send({keyRecord(KEY_A, 0, 2)});
    clock.settle();
    EXPECT_THAT(other.take(), ElementsAre("1/30=0@2"));
}

TEST_F(LinuxInputListenerTest, SwitchesTheKernelsAutoRepeatOff)
{
    Vorn::Sim::InputNode &node =
        subsystem.plug(0, DeviceDescription::keyboard("keys", BUS_HOST, {KEY_A}).withAutoRepeat());
    const auto listener = listen(LinuxInputListener::Key);
    node.press(KEY_A);
    clock.advance(2s);
    node.release(KEY_A);
    clock.settle();
    ASSERT_EQ(receiver.batches.size(), 2U);
    // The kernel reports the new delay and period with the next event.
    EXPECT_THAT(receiver.batches[0],
                testing::MatchesRegex("20/0=0@[0-9]+ 20/1=0@[0-9]+ 1/30=1@[0-9]+ 0/0=0@[0-9]+"));
    EXPECT_THAT(receiver.batches[1], testing::StartsWith("1/30=0@"));
}

TEST_F(LinuxInputListenerTest, DeliversThePositionsOfAllSwitches)
{
    plugSwitches();
    const auto listener = listen(LinuxInputListener::Switch);
    subsystem.clearSystemCalls();
    LogRecorder log;
    listener->getInputStatus();
    std::vector<std::string> expected = {"5/0=1@0"};
    for (int code = 1; code < 16; ++code)
        expected.push_back("5/" + std::to_string(code) + "=0@0");
    EXPECT_THAT(receiver.take(), ElementsAreArray(expected));
    EXPECT_THAT(log.lines(), IsEmpty());
    const auto calls = subsystem.systemCalls();
    ASSERT_EQ(calls.size(), 2);
    EXPECT_EQ(calls[0].request, EVIOCGBIT(0, 31));
    EXPECT_EQ(calls[1].request, 0x8004451BUL);
}

TEST_F(LinuxInputListenerTest, DeliversTheHeldKeysOfTheFirstThirtyTwoCodesOnly)
{
    subsystem.plug(
        0,
        DeviceDescription::keyboard("keys", BUS_HOST, {KEY_1, KEY_A, KEY_S, KEY_D, KEY_VOLUMEUP})
            .withKeys({}, {KEY_1, KEY_S, KEY_D, KEY_VOLUMEUP}));
    const auto listener = listen(LinuxInputListener::Key);
    subsystem.clearSystemCalls();
    listener->getInputStatus();
    EXPECT_THAT(receiver.take(), ElementsAre("1/2=1@0", "1/31=1@0"));
    EXPECT_EQ(subsystem.systemCalls().last().request, 0x80044518UL);
    EXPECT_EQ(subsystem.systemCalls().last().size, 4U);
}

TEST_F(LinuxInputListenerTest, DeliversNothingWhenNoKeyIsHeld)
{
    plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    listener->getInputStatus();
    EXPECT_THAT(receiver.batches, IsEmpty());
}

TEST_F(LinuxInputListenerTest, ForgetsAKeyThatWasReleasedSinceItWasAskedLast)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    node.press(KEY_A);
    clock.settle();
    receiver.take();
    listener->getInputStatus();
    EXPECT_THAT(receiver.take(), ElementsAre("1/30=1@0"));
    node.release(KEY_A);
    clock.settle();
    receiver.take();
    listener->getInputStatus();
    EXPECT_THAT(receiver.take(), IsEmpty());
}

TEST_F(LinuxInputListenerTest, DeliversTheLastKnownPositionsWhenTheRequestFails)
{
    Vorn::Sim::InputNode &node = plugSwitches();
    const auto listener = listen(LinuxInputListener::Switch);
    node.failIoctl(EVIOCGSW(0), EIO);
    listener->getInputStatus();
    EXPECT_THAT(receiver.batches, SizeIs(16));
    EXPECT_EQ(receiver.take().front(), "5/0=0@0");
    listener->getInputStatus();
    EXPECT_EQ(receiver.take().front(), "5/0=1@0");
    node.setSwitch(0, false);
    node.failIoctl(EVIOCGSW(0), EIO);
    listener->getInputStatus();
    EXPECT_EQ(receiver.take().front(), "5/0=1@0");
}

TEST_F(LinuxInputListenerTest, DeliversNoPositionsWhenTheCapabilityRequestFails)
{
    Vorn::Sim::InputNode &node = plugSwitches();
    const auto listener = listen(LinuxInputListener::Switch);
    node.failIoctl(EVIOCGBIT(0, 0), EIO);
    LogRecorder log;
    listener->getInputStatus();
    EXPECT_THAT(receiver.batches, IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre(capabilityLine("ioctl error: -1")));
}

TEST_F(LinuxInputListenerTest, DeliversPositionsToNobodyWithoutAReceiver)
{
    plugSwitches();
    const auto listener = listen(LinuxInputListener::Switch);
    listener->setHandler(nullptr);
    listener->getInputStatus();
    EXPECT_THAT(receiver.batches, IsEmpty());
}

TEST_F(LinuxInputListenerTest, StopsDeliveringPositionsToAReceiverThatIsTakenAwayMeanwhile)
{
    plugSwitches();
    const auto listener = listen(LinuxInputListener::Switch);
    receiver.onBatch = [&] {
        listener->close();
        listener->setHandler(nullptr);
    };
    listener->getInputStatus();
    EXPECT_THAT(receiver.batches, SizeIs(1));
}

TEST_F(LinuxInputListenerTest, OfAnyOtherTypeIsASwitchListenerThatReportsWhatIsOn)
{
    subsystem.plug(0, DeviceDescription::switchBox("jacks", BUS_HOST, {0, 1, 9, 15}, {1, 9, 15}));
    for (int type : {2, 7, -1}) {
        const auto listener = listen(static_cast<LinuxInputListener::Type>(type));
        listener->getInputStatus();
        // Code 9 is beyond the one byte that such a listener needs, but within the request.
        EXPECT_THAT(receiver.take(), ElementsAre("5/1=1@0", "5/9=1@0", "5/15=1@0"));
        EXPECT_EQ(subsystem.systemCalls().last().request, EVIOCGSW(4));
    }
    subsystem.unplug(0);
    plugKeyboard();
    for (int type : {2, -1}) {
        LogRecorder log;
        listen(static_cast<LinuxInputListener::Type>(type));
        EXPECT_THAT(
            log.lines(),
            ElementsAre(constructorLine(log4cplus::DEBUG_LOG_LEVEL,
                                        "Event device /dev/input/event0 does not support EV_SW")));
    }
}

TEST_F(LinuxInputListenerTest, ClosesAsOftenAsItIsAsked)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    const auto listener = listen(LinuxInputListener::Key);
    listener->close();
    listener->close();
    EXPECT_EQ(node.openDescriptors(), 0);
    EXPECT_EQ(subsystem.callCounts().closes, 1U);
    node.send({keyRecord(KEY_A, 1)});
    clock.settle();
    EXPECT_THAT(receiver.batches, IsEmpty());
    LogRecorder log;
    listener->getInputStatus();
    EXPECT_THAT(log.texts(), ElementsAre("ioctl error: -1"));
}

TEST_F(LinuxInputListenerTest, ClosesWhenDestroyedWithoutTellingTheReceiver)
{
    Vorn::Sim::InputNode &node = plugKeyboard();
    auto listener = listen(LinuxInputListener::Key);
    LogRecorder log;
    listener.reset();
    EXPECT_EQ(node.openDescriptors(), 0);
    EXPECT_EQ(receiver.invalidations, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LinuxInputListenerTest, TestsSingleBits)
{
    const auto listener = listen(LinuxInputListener::Key);
    const unsigned char bitmap[] = {0x01, 0x80, 0x10};
    std::vector<int> set;
    for (int bit = 0; bit < 24; ++bit) {
        if (listener->testBit(bit, bitmap))
            set.push_back(bit);
    }
    EXPECT_THAT(set, ElementsAre(0, 15, 20));
}

TEST_F(LinuxInputListenerTest, FindsEventTypesUpToThirty)
{
    Vorn::Sim::InputNode &node = subsystem.plug(
        0, DeviceDescription::keyboard("keys", BUS_HOST, {KEY_A}).withEventTypes({EV_MSC, 30, 31}));
    const auto listener = listen(LinuxInputListener::Key);
    const int fd = static_cast<int>(listener->findChild<QSocketNotifier *>()->socket());
    std::vector<int> found;
    for (int type = -1; type < 40; ++type) {
        if (listener->testCapability(fd, type))
            found.push_back(type);
    }
    EXPECT_THAT(found, ElementsAre(EV_SYN, EV_KEY, EV_MSC, 30));
    EXPECT_EQ(node.openDescriptors(), 1);
}

TEST(LinuxInputListenerMetaObject, HasItsOneSlot)
{
    const QMetaObject &meta = LinuxInputListener::staticMetaObject;
    EXPECT_STREQ(meta.className(), "LinuxInputListener");
    EXPECT_EQ(meta.superClass(), &QObject::staticMetaObject);
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 1);
    const QMetaMethod slot = meta.method(meta.methodOffset());
    EXPECT_EQ(slot.methodType(), QMetaMethod::Slot);
    EXPECT_EQ(slot.methodSignature(), "readData(int)");
    EXPECT_EQ(slot.access(), QMetaMethod::Public);
    EXPECT_THAT(slot.parameterNames(), ElementsAre(QByteArray()));
}

TEST(LinuxInputListenerTypes, HaveTheirNumbers)
{
    EXPECT_EQ(LinuxInputListener::Key, 0);
    EXPECT_EQ(LinuxInputListener::Type::Switch, 1);
}

} // namespace
