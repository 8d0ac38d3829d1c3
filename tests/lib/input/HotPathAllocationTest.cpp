#include "AllocationCounter.h"
#include "BasicInputHandler.h"
#include "InputSubsystem.h"
#include "KeyProcessing.h"
#include "QtDifferences.h"
#include "Records.h"
#include "VirtualClock.h"

#include <QCoreApplication>
#include <QMetaMethod>

#include <log4cplus/logger.h>

#include <gmock/gmock.h>

#include <memory>

namespace {

using namespace std::chrono_literals;
using Vorn::Sim::DeviceDescription;

// Allocations that the interface's types make unavoidable. Anything beyond them is a bug.
//
// The double-key detector stores a press in an empty list: the list's array, and the record.
constexpr int storedPress = 1 + QtDifferences::listElement;
// An event's data block, which its copies share.
constexpr int event = 1;
// An entry of a hash table.
constexpr int tableEntry = QtDifferences::hashEntry;
// QDateTime stores an instant inline only if pointers have 64 bits.
constexpr int instant = sizeof(void *) < 8 ? 1 : 0;
// A separate list with one record.
constexpr int listOfOne = 1 + QtDifferences::listElement;

/// Sets the log level of a product: warnings and errors only.
class ProductLevel
{
public:
    explicit ProductLevel(log4cplus::LogLevel level = log4cplus::WARN_LOG_LEVEL)
    {
        root.setLogLevel(level);
    }
    ~ProductLevel() { root.setLogLevel(before); }
    ProductLevel(const ProductLevel &) = delete;
    ProductLevel &operator=(const ProductLevel &) = delete;

private:
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    const log4cplus::LogLevel before = root.getLogLevel();
};

class HotPathAllocation : public testing::Test
{
protected:
    HotPathAllocation()
    {
        node = &subsystem.plug(0,
                               DeviceDescription::keyboard("panel", BUS_HOST, {KEY_A, KEY_B, KEY_C})
                                   .withSwitches({SW_LINEIN_INSERT}));
        QObject::connect(Input::instance(), &Input::inputEvent, &context,
                         [this](const InputEvent &) { ++events; });
        // Count the calls of the code under test, not those of the simulated node.
        subsystem.setRecording(false);
    }

    /// The library's allocations for reading, in one read, and processing @p records.
    int allocations(const QList<input_event> &records)
    {
        node->send(records);
        const AllocationCounter counter;
        QCoreApplication::processEvents();
        return counter.allocations();
    }

    /// The same for a second time, when everything permanent has been allocated.
    int steadyAllocations(const QList<input_event> &records)
    {
        allocations(records);
        events = 0;
        return allocations(records);
    }

    /// A listener on the node, with @p receiver as its receiver.
    std::unique_ptr<LinuxInputListener>
    listen(InputHandler &receiver, LinuxInputListener::Type type = LinuxInputListener::Key)
    {
        auto listener = std::make_unique<LinuxInputListener>(&receiver, node->path(), type);
        receiver.setListener(listener.get());
        return listener;
    }

    static QList<input_event> click(int code)
    {
        return stamped({keyRecord(code, 1), record(EV_SYN, SYN_REPORT, 0), keyRecord(code, 0),
                        record(EV_SYN, SYN_REPORT, 0)});
    }

    static QList<input_event> chord(int first, int second)
    {
        return stamped(
            {keyRecord(first, 1), keyRecord(second, 1), keyRecord(first, 0), keyRecord(second, 0)});
    }

    static QList<input_event> stamped(QList<input_event> records)
    {
        timespec now = {};
        clock_gettime(CLOCK_REALTIME, &now);
        for (input_event &each : records)
            each.input_event_sec = static_cast<decltype(each.input_event_sec)>(now.tv_sec);
        return records;
    }

    const ProductLevel level;
    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    Vorn::Sim::InputNode *node = nullptr;
    BasicKeyInputHandler keys{QStringLiteral("panel")};
    QObject context;
    int events = 0;
};

class Receiver : public InputHandler
{
public:
    void setId(const QString &) override { }
    void invalidate() override { }
    void processEvent(const QList<input_event> &batch) override
    {
        if (isKeeping)
            kept = batch;
    }

    bool isKeeping = false;
    QList<input_event> kept;
};

TEST_F(HotPathAllocation, ReadingTakesNoneFromTheSecondBatchOn)
{
    Receiver receiver;
    const auto listener = listen(receiver);
    EXPECT_EQ(steadyAllocations(click(KEY_A)), 0);
    EXPECT_EQ(allocations({keyRecord(KEY_A, 1)}), 0) << "a smaller batch";
}

TEST_F(HotPathAllocation, ReadingTakesOneForEachRecordWhileAReceiverKeepsTheBatch)
{
    Receiver receiver;
    receiver.isKeeping = true;
    const auto listener = listen(receiver);
    EXPECT_EQ(steadyAllocations(click(KEY_A)), 1 + 4 * QtDifferences::listElement)
        << "the array and its records";
}

TEST_F(HotPathAllocation, AnUnmappedKeyTakesItsStoredPress)
{
    const auto listener = listen(keys);
    EXPECT_EQ(steadyAllocations(click(KEY_A)), storedPress);
    EXPECT_EQ(events, 0);
}

TEST_F(HotPathAllocation, AnImmediateKeyTakesTwoEvents)
{
    const auto listener = listen(keys);
    keys.registerKey(KEY_A, InputEvent::Confirm, true);
    EXPECT_EQ(steadyAllocations(click(KEY_A)), storedPress + 2 * event);
    EXPECT_EQ(events, 2);
}

TEST_F(HotPathAllocation, ADeferredKeyTakesItsHoldAsWell)
{
    const auto listener = listen(keys);
    keys.registerKey(KEY_A, InputEvent::Confirm, false);
    EXPECT_EQ(steadyAllocations(click(KEY_A)), storedPress + tableEntry + 2 * event);
    EXPECT_EQ(events, 2);
}

TEST_F(HotPathAllocation, ARegisteredLongPressTakesItsInstantAsWell)
{
    const auto listener = listen(keys);
    keys.registerKey(KEY_A, InputEvent::Confirm, false);
    keys.enableLongPress(KEY_A, true, {700, 100});
    EXPECT_EQ(steadyAllocations(click(KEY_A)),
              storedPress + tableEntry + tableEntry + instant + 2 * event);
    EXPECT_EQ(events, 2);
}

TEST_F(HotPathAllocation, AChordTakesItsSecondPressAndTheWithdrawalOfTheFirst)
{
    const auto listener = listen(keys);
    keys.registerKey(KEY_A, InputEvent::Confirm, false);
    keys.registerDoubleKey(KEY_A, KEY_B, InputEvent::FactoryReset);
    constexpr int secondPress = QtDifferences::listElement; // the array has room for it
    EXPECT_EQ(steadyAllocations(chord(KEY_A, KEY_B)),
              storedPress + tableEntry + secondPress + listOfOne + 2 * event);
    EXPECT_EQ(events, 2);
}

TEST_F(HotPathAllocation, TheFirstChordTakesNoMoreThanTheNext)
{
    DoubleKeyDetect detector;
    const auto takenByAChord = [&] {
        const AllocationCounter counter;
        for (const input_event &key : chord(KEY_A, KEY_B))
            detector.checkDoubleKeyDetect(key);
        return counter.allocations();
    };
    const int first = takenByAChord();
    EXPECT_EQ(first, takenByAChord() + QtDifferences::clearedList);
}

TEST_F(HotPathAllocation, AnAutoRepeatTakesItsEvent)
{
    const auto listener = listen(keys);
    keys.registerKey(KEY_A, InputEvent::Confirm, true);
    allocations({keyRecord(KEY_A, 1)});
    EXPECT_EQ(steadyAllocations({keyRecord(KEY_A, 2)}), event);
    EXPECT_EQ(events, 1);
}

TEST_F(HotPathAllocation, ASwitchTakesItsEvent)
{
    BasicSwInputHandler switches(QStringLiteral("panel"));
    const auto listener = listen(switches, LinuxInputListener::Switch);
    switches.registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
    EXPECT_EQ(steadyAllocations({switchRecord(SW_LINEIN_INSERT, 1), record(EV_SYN, 0, 0)}), event);
    EXPECT_EQ(events, 1);
}

TEST_F(HotPathAllocation, ATickOfAHeldKeyTakesNone)
{
    LongPressDetect detector;
    detector.registerEvent(KEY_A, true, {100});
    detector.registerEvent(KEY_B, true, {100});
    int notifications = 0;
    QObject::connect(&detector, &LongPressDetect::keyLongPress, &context, [&] { ++notifications; });
    for (const int code : {KEY_A, KEY_B}) {
        input_event press = keyRecord(code, 1, clock.now());
        detector.process(press);
    }
    // Stop the timer: this test triggers the ticks itself.
    detector.reset();
    const QMetaMethod update =
        detector.metaObject()->method(detector.metaObject()->indexOfSlot("update()"));
    const auto tick = [&] {
        clock.advance(50ms);
        const AllocationCounter counter;
        EXPECT_TRUE(update.invoke(&detector, Qt::DirectConnection));
        return counter.allocations();
    };
    const int undue = tick();
    const int due = tick();
    EXPECT_EQ(undue + tick(), 0);
    EXPECT_EQ(due, 2 * instant);
    EXPECT_EQ(due, tick());
    EXPECT_EQ(notifications, 4);
}

// If log messages were composed needlessly, a disabled level would cost as much as an enabled one.
TEST_F(HotPathAllocation, ALevelThatIsOffComposesNothing)
{
    const auto listener = listen(keys);
    keys.registerKey(KEY_A, InputEvent::Confirm, true);
    const int atWarn = steadyAllocations(click(KEY_A));
    int atOff = 0;
    int atDebug = 0;
    {
        const ProductLevel off(log4cplus::OFF_LOG_LEVEL);
        atOff = steadyAllocations(click(KEY_A));
    }
    {
        const ProductLevel debug(log4cplus::DEBUG_LOG_LEVEL);
        atDebug = steadyAllocations(click(KEY_A));
    }
    EXPECT_EQ(atWarn, storedPress + 2 * event);
    EXPECT_EQ(atOff, atWarn);
    EXPECT_GT(atDebug, atWarn + 10);
}

} // namespace
