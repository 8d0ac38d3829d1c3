#include "BasicInputHandler.h"

#include "EventRecorder.h"
#include "InputSubsystem.h"
#include "KeyProcessing.h"
#include "LogRecorder.h"
#include "Records.h"
#include "VirtualClock.h"

#include <QMetaMethod>

#include <log4cplus/logger.h>

#include <gmock/gmock.h>

#include <memory>

namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Bus = InputEvent::Bus;
using Vorn::Sim::DeviceDescription;

constexpr int A = 30;
constexpr int B = 31;
constexpr int C = 32;

const char *const sourceFile = "src/lib/input/BasicInputHandler.cpp";

/// A key handler on the front panel's listener, fed records stamped with the current time.
class KeyHandlerTest : public testing::Test
{
protected:
    KeyHandlerTest()
    {
        subsystem.plug(0, DeviceDescription::keyboard("front-panel", BUS_HOST, {A, B, C}));
        listener = std::make_unique<LinuxInputListener>(
            nullptr, QStringLiteral("/dev/input/event0"), LinuxInputListener::Key);
        handler = std::make_unique<BasicKeyInputHandler>(QStringLiteral("panel"));
        handler->setListener(listener.get());
        handler->setId(QStringLiteral("browse"));
        listener->setHandler(handler.get());
    }

    void feed(int code, int value)
    {
        handler->processEvent(
            {keyRecord(code, value, clock.now()), record(EV_SYN, SYN_REPORT, 0, clock.now())});
    }
    void press(int code) { feed(code, 1); }
    void release(int code) { feed(code, 0); }
    void repeat(int code) { feed(code, 2); }

    /// Passes records directly to the slot of the chord detection.
    void detect(const QList<input_event> &keys, bool fake)
    {
        QMetaObject::invokeMethod(handler.get(), "on_doubleKeyDetect", Qt::DirectConnection,
                                  Q_ARG(QList<input_event>, keys), Q_ARG(bool, fake));
    }

    static std::string pressed(InputEvent::Command command)
    {
        return text(command, InputEvent::KeyPressed, Bus::LocalUI);
    }
    static std::string released(InputEvent::Command command)
    {
        return text(command, InputEvent::KeyReleased, Bus::LocalUI);
    }
    static std::string longPressed(InputEvent::Command command)
    {
        return text(command, InputEvent::KeyLongPress, Bus::LocalUI);
    }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    std::unique_ptr<LinuxInputListener> listener;
    std::unique_ptr<BasicKeyInputHandler> handler;
    EventRecorder events;
};

using ImmediateKey = KeyHandlerTest;
using DeferredKey = KeyHandlerTest;
using KeyRegistration = KeyHandlerTest;
using KeyRecords = KeyHandlerTest;
using LongPress = KeyHandlerTest;
using Chord = KeyHandlerTest;
using ChordRegistration = KeyHandlerTest;
using KeyReport = KeyHandlerTest;
using KeySlots = KeyHandlerTest;
using Invalidation = KeyHandlerTest;

TEST_F(ImmediateKey, IsReportedOnPressAndRelease)
{
    handler->registerKey(A, InputEvent::VolumeUp, true);
    press(A);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::VolumeUp)));
    release(A);
    EXPECT_THAT(events.take(), ElementsAre(released(InputEvent::VolumeUp)));
}

TEST_F(ImmediateKey, IsReportedAsPressedByEachAutoRepeat)
{
    handler->registerKey(A, InputEvent::VolumeUp, true);
    press(A);
    repeat(A);
    repeat(A);
    release(A);
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::VolumeUp), pressed(InputEvent::VolumeUp),
                            pressed(InputEvent::VolumeUp), released(InputEvent::VolumeUp)));
}

TEST_F(ImmediateKey, HasItsReleaseAfterALongPress)
{
    handler->registerKey(A, InputEvent::VolumeUp, true);
    handler->enableLongPress(A, true, {600, 200});
    press(A);
    clock.advance(900ms);
    release(A);
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::VolumeUp), longPressed(InputEvent::VolumeUp),
                            longPressed(InputEvent::VolumeUp), released(InputEvent::VolumeUp)));
}

TEST_F(DeferredKey, IsReportedAsAClickOnRelease)
{
    handler->registerKey(A, InputEvent::Confirm, false);
    press(A);
    repeat(A);
    EXPECT_THAT(events.take(), IsEmpty());
    release(A);
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::Confirm), released(InputEvent::Confirm)));
}

TEST_F(DeferredKey, LogsAtTheLevelThatAReceiverSetsBetweenItsTwoReports)
{
    LogRecorder log(log4cplus::WARN_LOG_LEVEL);
    events.onEvent([](const InputEvent &) {
        log4cplus::Logger::getRoot().setLogLevel(log4cplus::TRACE_LOG_LEVEL);
    });
    handler->registerKey(A, InputEvent::Confirm, false);
    press(A);
    release(A);
    EXPECT_THAT(log.texts(log4cplus::TRACE_LOG_LEVEL),
                Contains("Device: panel; id: browse; command [cmd=Confirm, state=KeyReleased]"));
    EXPECT_THAT(log.texts(log4cplus::TRACE_LOG_LEVEL), Not(Contains(HasSubstr("KeyPressed"))));
}

TEST_F(DeferredKey, HasALoneReleaseAfterALongPress)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->enableLongPress(A, false, {1000});
    press(A);
    clock.advance(1100ms);
    EXPECT_THAT(events.take(), ElementsAre(longPressed(InputEvent::Info)));
    release(A);
    EXPECT_THAT(events.take(), ElementsAre(released(InputEvent::Info)));
    // The next hold is a click again.
    press(A);
    release(A);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::Info), released(InputEvent::Info)));
}

TEST_F(DeferredKey, IsAClickAgainWhenAnAutoRepeatFollowsTheLongPress)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->enableLongPress(A, false, {1000});
    press(A);
    clock.advance(1000ms);
    events.take();
    repeat(A);
    release(A);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::Info), released(InputEvent::Info)));
}

TEST_F(DeferredKey, IsNoClickWithoutAPress)
{
    // The chord detection has seen no press, so it drops the release.
    handler->registerKey(A, InputEvent::Confirm, false);
    release(A);
    EXPECT_THAT(events.take(), IsEmpty());
}

TEST_F(DeferredKey, PressedBeforeItsRegistrationIsStillAClick)
{
    press(A);
    handler->registerKey(A, InputEvent::Confirm, false);
    release(A);
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::Confirm), released(InputEvent::Confirm)));
}

TEST_F(DeferredKey, KeepsItsHoldThroughADeregistration)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->enableLongPress(A, false, {100});
    press(A);
    clock.advance(100ms);
    events.take();
    handler->invalidate();
    handler->deregisterKey(A);
    handler->registerKey(A, InputEvent::Info, false);
    detect({keyRecord(A, 0)}, false);
    EXPECT_THAT(events.take(), ElementsAre(released(InputEvent::Info)));
}

TEST_F(KeySlots, AStrayReleaseIsAClickUnlessItIsMadeUp)
{
    handler->registerKey(A, InputEvent::Confirm, false);
    detect({keyRecord(A, 0)}, true);
    EXPECT_THAT(events.take(), IsEmpty());
    detect({keyRecord(A, 0)}, false);
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::Confirm), released(InputEvent::Confirm)));
}

TEST_F(KeySlots, AMadeUpReleaseEndsALongPressAndAnImmediateKey)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->registerKey(B, InputEvent::VolumeUp, true);
    detect({keyRecord(A, 1)}, false);
    QMetaObject::invokeMethod(handler.get(), "on_keyLongPress", Q_ARG(int, A), Q_ARG(int, 1));
    events.take();
    detect({keyRecord(A, 0)}, true);
    EXPECT_THAT(events.take(), ElementsAre(released(InputEvent::Info)));
    detect({keyRecord(B, 0)}, true);
    EXPECT_THAT(events.take(), ElementsAre(released(InputEvent::VolumeUp)));
}

TEST_F(KeySlots, OfThreeRecordsOnlyTheFirstCounts)
{
    handler->registerKey(A, InputEvent::VolumeUp, true);
    handler->registerKey(B, InputEvent::VolumeDown, true);
    detect({keyRecord(A, 1), keyRecord(B, 1), keyRecord(C, 1)}, false);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::VolumeUp)));
}

TEST_F(KeySlots, AnEmptyListReportsNothing)
{
    LogRecorder log;
    detect({}, false);
    EXPECT_THAT(events.take(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(KeySlots, ARecordOfAnotherTypeReportsNothing)
{
    handler->registerKey(A, InputEvent::VolumeUp, true);
    detect({switchRecord(A, 1)}, false);
    EXPECT_THAT(events.take(), IsEmpty());
}

TEST_F(KeySlots, LogEachRecord)
{
    LogRecorder log;
    detect({keyRecord(A, 1), keyRecord(B, 2), keyRecord(C, -1)}, false);
    const auto line = [](const std::string &message) {
        return LogLine{"BasicInputHandler", log4cplus::DEBUG_LOG_LEVEL, message, sourceFile,
                       "void BasicKeyInputHandler::on_doubleKeyDetect(const "
                       "QList<input_event>&, bool)"};
    };
    EXPECT_THAT(
        log.lines(),
        ElementsAre(line("key:30 value 1"), line("key:31 value 2"), line("key:32 value -1")));
}

TEST_F(KeyRecords, OfOtherTypesReachNeitherDetector)
{
    handler->registerKey(MSC_SCAN, InputEvent::VolumeUp, true);
    LogRecorder log;
    handler->processEvent({record(EV_SYN, SYN_REPORT, 0), record(EV_MSC, MSC_SCAN, 1),
                           switchRecord(MSC_SCAN, 1), record(EV_REP, 0, 0)});
    handler->processEvent({});
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(events.take(), IsEmpty());
}

TEST_F(KeyRecords, OfOneBatchAreHandledInOrder)
{
    handler->registerKey(A, InputEvent::VolumeUp, true);
    handler->registerKey(B, InputEvent::Confirm, false);
    handler->processEvent(
        {keyRecord(A, 1), record(EV_SYN, 0, 0), keyRecord(A, 0), keyRecord(B, 1), keyRecord(B, 0)});
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::VolumeUp), released(InputEvent::VolumeUp),
                            pressed(InputEvent::Confirm), released(InputEvent::Confirm)));
}

TEST_F(KeyRecords, OfAnUnmappedCodeReportNothing)
{
    press(A);
    release(A);
    EXPECT_THAT(events.take(), IsEmpty());
}

TEST_F(KeyRecords, OfACodeMappedToNoneReportNothingButLongPresses)
{
    handler->registerKey(A, InputEvent::None, true);
    handler->enableLongPress(A, false, {100});
    press(A);
    clock.advance(100ms);
    release(A);
    EXPECT_THAT(events.take(), ElementsAre(longPressed(InputEvent::None)));
}

TEST_F(KeyRegistration, ASecondOneWarnsAndWins)
{
    handler->registerKey(A, InputEvent::VolumeUp, true);
    LogRecorder log;
    handler->registerKey(A, InputEvent::Confirm, false);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{
                    "BasicInputHandler", log4cplus::WARN_LOG_LEVEL,
                    "Duplicate key in key input map: 30, overwriting old value", sourceFile,
                    "void BasicKeyInputHandler::registerKey(int, InputEvent::Command, bool)"}));
    press(A);
    EXPECT_THAT(events.take(), IsEmpty());
    release(A);
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::Confirm), released(InputEvent::Confirm)));
}

TEST_F(KeyRegistration, ASecondOneDropsTheLongPress)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->enableLongPress(A, false, {100});
    handler->registerKey(A, InputEvent::Confirm, false);
    press(A);
    clock.advance(1s);
    EXPECT_THAT(events.take(), IsEmpty());
}

TEST_F(KeyRegistration, OfAnotherBusIsIgnoredWithoutALine)
{
    LogRecorder log;
    handler->registerKey(A, Bus::Hostlink, InputEvent::Power, true);
    handler->registerKey(A, Bus::NoBus, InputEvent::Power, true);
    press(A);
    EXPECT_THAT(events.take(), IsEmpty());
    EXPECT_THAT(log.texts(log4cplus::WARN_LOG_LEVEL), IsEmpty());
}

TEST_F(KeyRegistration, OfTheListenersBusNeverWarnsAndKeepsTheLongPress)
{
    handler->registerKey(A, InputEvent::Info, true);
    handler->enableLongPress(A, false, {100});
    LogRecorder log;
    handler->registerKey(A, Bus::LocalUI, InputEvent::Confirm, false);
    handler->registerKey(A, Bus::LocalUI, InputEvent::Power, false);
    EXPECT_THAT(log.lines(), IsEmpty());
    press(A);
    // No longer immediate.
    EXPECT_THAT(events.take(), IsEmpty());
    clock.advance(100ms);
    release(A);
    EXPECT_THAT(events.take(),
                ElementsAre(longPressed(InputEvent::Power), released(InputEvent::Power)));
}

TEST_F(KeyRegistration, OfABusComparesWithNoBusWhileThereIsNoListener)
{
    BasicKeyInputHandler lonely(QStringLiteral("lonely"));
    lonely.registerKey(A, Bus::LocalUI, InputEvent::Power, true);
    lonely.registerKey(B, Bus::NoBus, InputEvent::Mute, true);
    lonely.enableLongPress(B, Bus::LocalUI, false, {});
    lonely.registerDoubleKey(A, B, Bus::LocalUI, InputEvent::FactoryReset);
    lonely.processEvent({keyRecord(A, 1), keyRecord(A, 0), keyRecord(B, 1)});
    clock.advance(1s);
    EXPECT_THAT(events.take(), ElementsAre("[cmd=Mute, state=KeyPressed]"));
    EXPECT_EQ(lonely.getDoubleKeyEvent({A, B}), InputEvent::None);
}

TEST_F(KeyRegistration, OfAnUnknownCodeCannotBeRemoved)
{
    handler->registerKey(B, InputEvent::Info, true);
    LogRecorder log;
    handler->deregisterKey(A);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"BasicInputHandler", log4cplus::WARN_LOG_LEVEL,
                                    "Trying to remove a non-existing key 30", sourceFile,
                                    "void BasicKeyInputHandler::deregisterKey(int)"}));
    press(B);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::Info)));
}

TEST_F(KeyRegistration, IsRemovedWithItsImmediacyAndItsLongPress)
{
    handler->registerKey(A, InputEvent::Info, true);
    handler->enableLongPress(A, false, {100});
    LogRecorder log;
    handler->deregisterKey(A);
    EXPECT_THAT(log.lines(), IsEmpty());
    press(A);
    clock.advance(1s);
    release(A);
    EXPECT_THAT(events.take(), IsEmpty());
    handler->registerKey(A, InputEvent::Info, false);
    press(A);
    EXPECT_THAT(events.take(), IsEmpty());
    release(A);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::Info), released(InputEvent::Info)));
}

TEST_F(KeyRegistration, IsRemovedWithoutItsChords)
{
    handler->registerKey(A, InputEvent::Info, true);
    handler->registerDoubleKey(A, B, InputEvent::FactoryReset);
    handler->deregisterKey(A);
    EXPECT_EQ(handler->getDoubleKeyEvent({A, B}), InputEvent::FactoryReset);
}

TEST_F(LongPress, ReportsOneEventForEachRepetition)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->enableLongPress(A, true, {800, 200});
    press(A);
    clock.advance(1300ms);
    release(A);
    const std::string event = longPressed(InputEvent::Info);
    EXPECT_THAT(events.take(), ElementsAre(event, event, event, released(InputEvent::Info)));
}

TEST_F(LongPress, OfAnUnmappedCodeIsSwallowed)
{
    handler->enableLongPress(A, true, {100, 100});
    press(A);
    clock.advance(1s);
    release(A);
    EXPECT_THAT(events.take(), IsEmpty());
}

TEST_F(LongPress, OfAnUnmappedCodeIsTimedAndReportsOnceItIsMapped)
{
    handler->enableLongPress(A, true, {100, 100});
    press(A);
    clock.advance(150ms);
    handler->registerKey(A, InputEvent::Info, false);
    clock.advance(50ms);
    EXPECT_THAT(events.take(), ElementsAre(longPressed(InputEvent::Info)));
}

TEST_F(LongPress, OfAnotherBusIsIgnored)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->enableLongPress(A, Bus::USB, false, {100});
    press(A);
    clock.advance(1s);
    EXPECT_THAT(events.take(), IsEmpty());
    release(A);
    events.take();
    handler->enableLongPress(A, Bus::LocalUI, false, {100});
    press(A);
    clock.advance(1s);
    EXPECT_THAT(events.take(), ElementsAre(longPressed(InputEvent::Info)));
}

TEST_F(LongPress, AnAutoRepeatRestartsIt)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->enableLongPress(A, false, {300});
    press(A);
    for (int i = 0; i < 10; ++i) {
        clock.advance(200ms);
        repeat(A);
    }
    EXPECT_THAT(events.take(), IsEmpty());
    clock.advance(300ms);
    EXPECT_THAT(events.take(), ElementsAre(longPressed(InputEvent::Info)));
}

TEST_F(Chord, WithdrawsADeferredKeyAndReportsItsOwnCommand)
{
    handler->registerKey(A, InputEvent::Stop, false);
    handler->registerKey(B, InputEvent::StartPlay, false);
    handler->registerDoubleKey(A, B, InputEvent::FactoryReset);
    press(A);
    EXPECT_THAT(events.take(), IsEmpty());
    press(B);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::FactoryReset)));
    release(A);
    EXPECT_THAT(events.take(), IsEmpty());
    release(B);
    EXPECT_THAT(events.take(), ElementsAre(released(InputEvent::FactoryReset)));
}

TEST_F(Chord, IsFoundInEitherOrder)
{
    handler->registerDoubleKey(A, B, InputEvent::FactoryReset);
    press(B);
    press(A);
    release(B);
    release(A);
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::FactoryReset), released(InputEvent::FactoryReset)));
}

TEST_F(Chord, EndsAnImmediateFirstKeyWithItsRelease)
{
    handler->registerKey(A, InputEvent::VolumeUp, true);
    handler->registerDoubleKey(A, B, InputEvent::Mute);
    press(A);
    press(B);
    release(B);
    release(A);
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::VolumeUp), released(InputEvent::VolumeUp),
                            pressed(InputEvent::Mute), released(InputEvent::Mute)));
}

TEST_F(Chord, EndsALongPressOfItsFirstKey)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->enableLongPress(A, false, {100});
    handler->registerDoubleKey(A, B, InputEvent::FactoryReset);
    press(A);
    clock.advance(100ms);
    press(B);
    release(A);
    release(B);
    EXPECT_THAT(events.take(),
                ElementsAre(longPressed(InputEvent::Info), released(InputEvent::Info),
                            pressed(InputEvent::FactoryReset), released(InputEvent::FactoryReset)));
}

TEST_F(Chord, FeedsItsFirstKeyToTheLongPressAgain)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->registerKey(B, InputEvent::Search, false);
    handler->enableLongPress(A, false, {500});
    handler->enableLongPress(B, false, {300});
    handler->registerDoubleKey(A, B, InputEvent::FactoryReset);
    press(A);
    clock.advance(100ms);
    press(B);
    events.take();
    clock.advance(1s);
    // Timed from the first key's own press; the second key is not timed.
    EXPECT_THAT(events.take(), ElementsAre(longPressed(InputEvent::Info)));
}

TEST_F(Chord, UnknownReportsItsSecondKeyAtOnceEvenWhenDeferred)
{
    handler->registerKey(A, InputEvent::Stop, false);
    handler->registerKey(B, InputEvent::StartPlay, false);
    press(A);
    press(B);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::StartPlay)));
    release(A);
    release(B);
    // The first key is neither reported nor a click.
    EXPECT_THAT(events.take(), ElementsAre(released(InputEvent::StartPlay)));
}

TEST_F(Chord, UnknownWithAnUnmappedSecondKeyReportsNothingButIsTimed)
{
    handler->registerKey(A, InputEvent::Stop, false);
    handler->enableLongPress(B, false, {100});
    press(A);
    press(B);
    EXPECT_THAT(events.take(), IsEmpty());
    handler->registerKey(B, InputEvent::Mute, false);
    clock.advance(100ms);
    EXPECT_THAT(events.take(), ElementsAre(longPressed(InputEvent::Mute)));
}

TEST_F(Chord, UnknownDoesNotFeedItsFirstKeyToTheLongPress)
{
    handler->registerKey(A, InputEvent::Stop, false);
    handler->enableLongPress(A, false, {100});
    handler->registerKey(B, InputEvent::StartPlay, false);
    press(A);
    press(B);
    events.take();
    clock.advance(1s);
    EXPECT_THAT(events.take(), IsEmpty());
}

TEST_F(Chord, UnknownWithASecondKeyMappedToNoneReportsNothing)
{
    handler->registerKey(B, InputEvent::None, true);
    press(A);
    press(B);
    EXPECT_THAT(events.take(), IsEmpty());
}

TEST_F(Chord, OfTheCommandNoneCountsAsUnknown)
{
    handler->registerDoubleKey(A, B, InputEvent::None);
    handler->registerKey(B, InputEvent::StartPlay, false);
    press(A);
    press(B);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::StartPlay)));
}

TEST_F(Chord, DropsAThirdKey)
{
    handler->registerDoubleKey(A, B, InputEvent::FactoryReset);
    handler->registerKey(C, InputEvent::Mute, true);
    press(A);
    press(B);
    press(C);
    release(C);
    release(A);
    release(B);
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::FactoryReset), released(InputEvent::FactoryReset)));
}

TEST_F(ChordRegistration, HoldsBothOrders)
{
    handler->registerDoubleKey(1, 2, InputEvent::FactoryReset);
    EXPECT_EQ(handler->getDoubleKeyEvent({1, 2}), InputEvent::FactoryReset);
    EXPECT_EQ(handler->getDoubleKeyEvent({2, 1}), InputEvent::FactoryReset);
    EXPECT_EQ(handler->getDoubleKeyEvent({1, 3}), InputEvent::None);
    LogRecorder log;
    handler->deregisterDoubleKey(2, 1);
    EXPECT_EQ(handler->getDoubleKeyEvent({1, 2}), InputEvent::None);
    EXPECT_EQ(handler->getDoubleKeyEvent({2, 1}), InputEvent::None);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ChordRegistration, ALookUpInsertsNothing)
{
    EXPECT_EQ(handler->getDoubleKeyEvent({1, 2}), InputEvent::None);
    LogRecorder log;
    handler->registerDoubleKey(1, 2, InputEvent::FactoryReset);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ChordRegistration, ASecondOneWarnsAndWinsInBothOrders)
{
    handler->registerDoubleKey(1, 2, InputEvent::FactoryReset);
    LogRecorder log;
    handler->registerDoubleKey(1, 2, InputEvent::Mute);
    handler->registerDoubleKey(2, 1, InputEvent::Power);
    const auto line = [](const std::string &pair) {
        return LogLine{"BasicInputHandler", log4cplus::WARN_LOG_LEVEL,
                       "Duplicate keys in double key input map: " + pair
                           + ", overwriting old value",
                       sourceFile,
                       "void BasicKeyInputHandler::registerDoubleKey(int, int, "
                       "InputEvent::Command)"};
    };
    EXPECT_THAT(log.lines(), ElementsAre(line("QPair(1,2)"), line("QPair(2,1)")));
    EXPECT_EQ(handler->getDoubleKeyEvent({1, 2}), InputEvent::Power);
    EXPECT_EQ(handler->getDoubleKeyEvent({2, 1}), InputEvent::Power);
}

TEST_F(ChordRegistration, OfABusRemovesOneOrderSilently)
{
    handler->registerDoubleKey(1, 2, InputEvent::FactoryReset);
    LogRecorder log;
    handler->registerDoubleKey(1, 2, Bus::LocalUI, InputEvent::Mute);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(handler->getDoubleKeyEvent({1, 2}), InputEvent::Mute);
    EXPECT_EQ(handler->getDoubleKeyEvent({2, 1}), InputEvent::Mute);
    handler->registerDoubleKey(1, 2, Bus::CEC, InputEvent::Power);
    EXPECT_EQ(handler->getDoubleKeyEvent({1, 2}), InputEvent::Mute);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ChordRegistration, OfAnUnknownPairCannotBeRemoved)
{
    handler->registerDoubleKey(1, 2, InputEvent::FactoryReset);
    LogRecorder log;
    handler->deregisterDoubleKey(5, 6);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"BasicInputHandler", log4cplus::WARN_LOG_LEVEL,
                                    "Trying to remove a non-existing double key 5 + 6", sourceFile,
                                    "void BasicKeyInputHandler::deregisterDoubleKey(int, int)"}));
    EXPECT_EQ(handler->getDoubleKeyEvent({1, 2}), InputEvent::FactoryReset);
}

TEST_F(ChordRegistration, OfAKeyWithItselfIsOneEntry)
{
    handler->registerDoubleKey(1, 1, InputEvent::FactoryReset);
    EXPECT_EQ(handler->getDoubleKeyEvent({1, 1}), InputEvent::FactoryReset);
    handler->deregisterDoubleKey(1, 1);
    EXPECT_EQ(handler->getDoubleKeyEvent({1, 1}), InputEvent::None);
}

TEST_F(KeyReport, CarriesTheListenersBusWhileTheLineHasNone)
{
    handler->registerKey(A, InputEvent::Confirm, false);
    handler->enableLongPress(A, false, {100});
    LogRecorder log;
    press(A);
    clock.advance(100ms);
    release(A);
    press(A);
    release(A);
    const auto line = [](const std::string &state, const std::string &function) {
        return LogLine{"BasicInputHandler", log4cplus::TRACE_LOG_LEVEL,
                       "Device: panel; id: browse; command [cmd=Confirm, state=" + state + "]",
                       sourceFile, function};
    };
    const std::string detect =
        "void BasicKeyInputHandler::on_doubleKeyDetect(const QList<input_event>&, bool)";
    const std::string longPress = "void BasicKeyInputHandler::on_keyLongPress(int, int)";
    EXPECT_THAT(log.lines(log4cplus::TRACE_LOG_LEVEL),
                ElementsAre(line("KeyLongPress", longPress), line("KeyReleased", detect),
                            line("KeyPressed", detect), line("KeyReleased", detect)));
    EXPECT_THAT(events.take(),
                ElementsAre(longPressed(InputEvent::Confirm), released(InputEvent::Confirm),
                            pressed(InputEvent::Confirm), released(InputEvent::Confirm)));
}

TEST_F(KeyReport, IsLoggedBeforeItIsPublished)
{
    handler->registerKey(A, InputEvent::Mute, true);
    std::vector<std::string> sequence;
    LogRecorder log;
    log.onLine([&](const LogLine &line) {
        if (line.logger == "Input" || line.level == log4cplus::TRACE_LOG_LEVEL)
            sequence.push_back(line.text);
    });
    events.onEvent([&](const InputEvent &) { sequence.emplace_back("published"); });
    press(A);
    EXPECT_THAT(sequence,
                ElementsAre("Device: panel; id: browse; command [cmd=Mute, state=KeyPressed]",
                            "Vorn::InputEvent(18) press", "published"));
}

TEST_F(KeyReport, HasAnEmptyIdUntilItIsSet)
{
    BasicKeyInputHandler fresh(QStringLiteral("other"));
    fresh.registerKey(A, InputEvent::Mute, true);
    LogRecorder log;
    fresh.processEvent({keyRecord(A, 1)});
    EXPECT_THAT(log.texts(log4cplus::TRACE_LOG_LEVEL),
                ElementsAre("Device: other; id: ; command [cmd=Mute, state=KeyPressed]"));
    EXPECT_THAT(events.take(), ElementsAre("[cmd=Mute, state=KeyPressed]"));
}

TEST_F(KeyReport, ReachesASlotThatChangesTheRegistrations)
{
    handler->registerKey(A, InputEvent::Confirm, false);
    handler->registerDoubleKey(A, B, InputEvent::FactoryReset);
    events.onEvent([&](const InputEvent &event) {
        if (event.state() != InputEvent::KeyPressed)
            return;
        handler->deregisterKey(A);
        handler->registerKey(A, InputEvent::Cancel, true);
        handler->registerDoubleKey(A, B, InputEvent::Mute);
        handler->enableLongPress(A, true, {100});
    });
    press(A);
    release(A);
    // The click in progress completes with the registration it began with.
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::Confirm), released(InputEvent::Confirm)));
    events.onEvent({});
    press(A);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::Cancel)));
}

TEST_F(KeyReport, ReachesASlotThatTakesTheListenerAway)
{
    handler->registerKey(A, InputEvent::Confirm, false);
    handler->registerKey(B, InputEvent::Mute, true);
    handler->registerDoubleKey(A, B, InputEvent::FactoryReset);
    events.onEvent([&](const InputEvent &) { listener->setHandler(nullptr); });
    press(A);
    release(A);
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::Confirm), released(InputEvent::Confirm)));
    listener->setHandler(handler.get());
    press(B);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::Mute)));
    listener->setHandler(handler.get());
    // Invalidating the handler made it forget the press.
    release(B);
    EXPECT_THAT(events.take(), IsEmpty());
}

TEST_F(KeyReport, OfALongPressReachesASlotThatRegistersTheKeyAnew)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->enableLongPress(A, true, {100, 100});
    events.onEvent([&](const InputEvent &event) {
        if (event.command() == InputEvent::Info)
            handler->registerKey(A, Bus::LocalUI, InputEvent::Context, false);
    });
    press(A);
    clock.advance(200ms);
    release(A);
    EXPECT_THAT(events.take(),
                ElementsAre(longPressed(InputEvent::Info), longPressed(InputEvent::Context),
                            released(InputEvent::Context)));
}

TEST_F(KeyReport, CannotLeaveAChordPressedWhenASlotDeselectsTheHandlerMeanwhile)
{
    handler->registerKey(A, InputEvent::VolumeUp, true);
    handler->registerDoubleKey(A, B, InputEvent::FactoryReset);
    press(A);
    events.onEvent([&](const InputEvent &event) {
        if (event.state() == InputEvent::KeyReleased)
            listener->setHandler(nullptr);
    });
    press(B);
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::VolumeUp), released(InputEvent::VolumeUp)));
}

TEST_F(Invalidation, StopsLongPressesAndForgetsAChord)
{
    handler->registerKey(A, InputEvent::Info, true);
    handler->enableLongPress(A, true, {100, 100});
    handler->registerDoubleKey(A, B, InputEvent::FactoryReset);
    press(A);
    press(B);
    events.take();
    handler->invalidate();
    clock.advance(1s);
    release(A);
    release(B);
    EXPECT_THAT(events.take(), IsEmpty());
    press(A);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::Info)));
}

TEST_F(Invalidation, KeepsTheHoldOfADeferredKeyUntilItsRelease)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->enableLongPress(A, false, {100});
    press(A);
    clock.advance(100ms);
    events.take();
    handler->invalidate();
    // The detector drops the stray release; otherwise it would end the long press.
    release(A);
    EXPECT_THAT(events.take(), IsEmpty());
    detect({keyRecord(A, 0)}, false);
    EXPECT_THAT(events.take(), ElementsAre(released(InputEvent::Info)));
}

TEST_F(KeyHandlerTest, ReportsNothingWhileItIsDestroyed)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->enableLongPress(A, true, {100, 100});
    press(A);
    clock.advance(60ms);
    // The handler deletes its listener.
    Q_UNUSED(listener.release())
    handler.reset();
    clock.advance(1s);
    EXPECT_THAT(events.take(), IsEmpty());
}

TEST_F(KeyHandlerTest, OwnsItsTwoDetectors)
{
    handler->registerKey(A, InputEvent::Info, false);
    EXPECT_THAT(handler->children(), IsEmpty());
    EXPECT_EQ(handler->parent(), nullptr);
}

TEST(KeyHandlerMetaObject, HasTwoPrivateSlots)
{
    const QMetaObject &meta = BasicKeyInputHandler::staticMetaObject;
    EXPECT_STREQ(meta.className(), "BasicKeyInputHandler");
    EXPECT_EQ(meta.superClass(), &InputHandler::staticMetaObject);
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 2);
    const QMetaMethod longPress = meta.method(meta.methodOffset());
    const QMetaMethod doubleKey = meta.method(meta.methodOffset() + 1);
    EXPECT_EQ(longPress.methodSignature(), "on_keyLongPress(int,int)");
    EXPECT_EQ(doubleKey.methodSignature(), "on_doubleKeyDetect(QList<input_event>,bool)");
    for (const QMetaMethod &slot : {longPress, doubleKey}) {
        EXPECT_EQ(slot.methodType(), QMetaMethod::Slot);
        EXPECT_EQ(slot.access(), QMetaMethod::Private);
    }
}

TEST(KeyHandlerDeathTest, AHeldKeyWithAnEmptyListOfTimeoutsIsFatal)
{
    Vorn::Sim::VirtualClock clock;
    BasicKeyInputHandler handler(QStringLiteral("panel"));
    handler.registerKey(A, InputEvent::Info, false);
    handler.enableLongPress(A, false, {});
    handler.processEvent({keyRecord(A, 1, clock.now())});
    clock.advance(40ms);
    EXPECT_DEATH(clock.advance(20ms),
                 "ASSERT failure in QList<T>::operator\\[\\]: \"index out of range\"");
}

} // namespace
