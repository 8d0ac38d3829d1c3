#include "KeyHandlerTest.h"

#include "LogRecorder.h"
#include "QtDifferences.h"

#include <QMetaMethod>

#include <log4cplus/logger.h>

#include <gmock/gmock.h>

namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Bus = InputEvent::Bus;

const char *const sourceFile = "src/lib/input/BasicInputHandler.cpp";

using ImmediateKey = KeyHandlerTest;
using DeferredKey = KeyHandlerTest;
using KeyRecords = KeyHandlerTest;
using LongPress = KeyHandlerTest;
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

TEST_F(ImmediateKey, OfANegativeValueIsPressed)
{
    handler->registerKey(A, InputEvent::VolumeUp, true);
    feed(A, -1);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::VolumeUp)));
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

TEST_F(DeferredKey, ThatWasImmediateWhenItWentDownIsStillAClick)
{
    handler->registerKey(A, InputEvent::Info, true);
    press(A);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::Info)));
    handler->registerKey(A, Bus::LocalUI, InputEvent::Info, false);
    release(A);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::Info), released(InputEvent::Info)));
}

TEST_F(DeferredKey, ThatWasImmediateAtItsLongPressIsStillAClick)
{
    handler->registerKey(A, InputEvent::Info, true);
    handler->enableLongPress(A, false, {100});
    press(A);
    clock.advance(100ms);
    events.take();
    handler->registerKey(A, Bus::LocalUI, InputEvent::Info, false);
    release(A);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::Info), released(InputEvent::Info)));
}

TEST_F(DeferredKey, MadeImmediateWhileItIsDownKeepsItsHold)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->enableLongPress(A, false, {100});
    press(A);
    clock.advance(100ms);
    events.take();
    handler->registerKey(A, Bus::LocalUI, InputEvent::Info, true);
    release(A);
    EXPECT_THAT(events.take(), ElementsAre(released(InputEvent::Info)));
    // Only the release of a deferred key ends a hold, so the long press still counts for it.
    handler->registerKey(A, Bus::LocalUI, InputEvent::Info, false);
    detect({keyRecord(A, 0)}, false);
    EXPECT_THAT(events.take(), ElementsAre(released(InputEvent::Info)));
    detect({keyRecord(A, 0)}, false);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::Info), released(InputEvent::Info)));
}

TEST_F(DeferredKey, OfANegativeValueIsDown)
{
    handler->registerKey(A, InputEvent::Confirm, false);
    feed(A, -1);
    EXPECT_THAT(events.take(), IsEmpty());
    release(A);
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::Confirm), released(InputEvent::Confirm)));
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

TEST_F(KeySlots, ALongPressOfARemovedKeyLeavesItsHoldAClick)
{
    handler->registerKey(A, InputEvent::Info, false);
    press(A);
    handler->deregisterKey(A);
    QMetaObject::invokeMethod(handler.get(), "on_keyLongPress", Q_ARG(int, A), Q_ARG(int, 1));
    EXPECT_THAT(events.take(), IsEmpty());
    handler->registerKey(A, InputEvent::Info, false);
    release(A);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::Info), released(InputEvent::Info)));
}

TEST_F(KeySlots, OfThreeRecordsOnlyTheFirstCounts)
{
    handler->registerKey(A, InputEvent::VolumeUp, true);
    handler->registerKey(B, InputEvent::VolumeDown, true);
    handler->registerDoubleKey(A, B, InputEvent::Mute);
    handler->registerDoubleKey(A, C, InputEvent::Mute);
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
    for (const int type : {EV_SYN, EV_REL, EV_SW})
        detect({record(type, A, 1)}, false);
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

TEST_F(LongPress, HasEachOfItsTimeoutsInBothForms)
{
    handler->registerKey(A, InputEvent::Info, true);
    handler->registerKey(B, InputEvent::Search, true);
    handler->enableLongPress(A, true, {300, 200, 100});
    handler->enableLongPress(B, Bus::LocalUI, true, {300, 200, 100});
    for (const int code : {A, B}) {
        SCOPED_TRACE(code);
        press(code);
        std::vector<qint64> times;
        const qint64 start = clock.now();
        events.onEvent([&](const InputEvent &) { times.push_back(clock.now() - start); });
        clock.advance(700ms);
        events.onEvent({});
        EXPECT_THAT(times, ElementsAre(300, 500, 600, 700));
        release(code);
    }
}

TEST_F(LongPress, OfTheListenersBusRepeatsOnlyOnRequest)
{
    handler->registerKey(A, InputEvent::Info, true);
    handler->enableLongPress(A, Bus::LocalUI, false, {100, 100});
    press(A);
    clock.advance(1s);
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::Info), longPressed(InputEvent::Info)));
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
    EXPECT_DEATH(clock.advance(20ms), QtDifferences::indexAssertion);
}

} // namespace
