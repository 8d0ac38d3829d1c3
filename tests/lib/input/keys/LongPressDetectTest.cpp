#include "LongPressDetectTest.h"

#include "LogRecorder.h"
#include "QtDifferences.h"

#include <QMetaMethod>

#include <gmock/gmock.h>

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST_F(LongPressDetectTest, NotifiesOnceWithoutRepeat)
{
    detector->registerEvent(30, false, {1000});
    press(30);
    clock.advance(10s);
    EXPECT_THAT(take(), ElementsAre(Notification{1000, 30, 1}));
    release(30);
    clock.advance(1s);
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(LongPressDetectTest, RepeatsWithTheLastTimeout)
{
    detector->registerEvent(30, true, {800, 200});
    press(30);
    clock.advance(1500ms);
    EXPECT_THAT(take(),
                ElementsAre(Notification{800, 30, 1}, Notification{1000, 30, 2},
                            Notification{1200, 30, 3}, Notification{1400, 30, 4}));
    release(30);
    clock.advance(1s);
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(LongPressDetectTest, WalksThroughTheTimeouts)
{
    detector->registerEvent(30, true, {500, 300, 100});
    press(30);
    clock.advance(1100ms);
    EXPECT_THAT(take(),
                ElementsAre(Notification{500, 30, 1}, Notification{800, 30, 2},
                            Notification{900, 30, 3}, Notification{1000, 30, 4},
                            Notification{1100, 30, 5}));
}

TEST_F(LongPressDetectTest, WithoutRepeatStillWalksThroughTheTimeouts)
{
    detector->registerEvent(30, false, {500, 300, 100});
    press(30);
    clock.advance(850ms);
    EXPECT_THAT(take(), ElementsAre(Notification{500, 30, 1}));
    // Stage 2 was reached: an auto-repeat restarts the count, but keeps the 100 ms.
    feed(30, 2);
    clock.advance(500ms);
    EXPECT_THAT(take(), ElementsAre(Notification{950, 30, 1}));
}

TEST_F(LongPressDetectTest, RoundsEachDelayUpToTheNextTickAndAddsTheLatenessUp)
{
    detector->registerEvent(30, true, {70, 70});
    press(30);
    clock.advance(300ms);
    EXPECT_THAT(
        take(),
        ElementsAre(Notification{100, 30, 1}, Notification{200, 30, 2}, Notification{300, 30, 3}));
}

TEST_F(LongPressDetectTest, NotifiesAtTheTickAtWhichATimeoutIsJustOver)
{
    detector->registerEvent(30, true, {50, 50});
    press(30);
    clock.advance(150ms);
    EXPECT_THAT(
        take(),
        ElementsAre(Notification{50, 30, 1}, Notification{100, 30, 2}, Notification{150, 30, 3}));
}

TEST_F(LongPressDetectTest, IsNeverAMillisecondEarly)
{
    detector->registerEvent(30, false, {51});
    detector->registerEvent(31, false, {50});
    press(30);
    feedAt(31, 1, clock.now() + 1);
    clock.advance(150ms);
    EXPECT_THAT(take(), UnorderedElementsAre(Notification{100, 30, 1}, Notification{100, 31, 1}));
}

TEST_F(LongPressDetectTest, ATimeoutOfZeroOrLessNotifiesAtEachTick)
{
    detector->registerEvent(30, true, {0, -100});
    press(30);
    clock.advance(100ms);
    EXPECT_THAT(take(), ElementsAre(Notification{50, 30, 1}, Notification{100, 30, 2}));
}

TEST_F(LongPressDetectTest, AReleaseBeforeTheTimeoutNotifiesNothing)
{
    detector->registerEvent(30, true, {800, 200});
    press(30);
    clock.advance(799ms);
    release(30);
    clock.advance(5s);
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(LongPressDetectTest, BeginsTheNextHoldWithTheFirstTimeout)
{
    detector->registerEvent(30, true, {800, 200});
    press(30);
    clock.advance(1200ms);
    release(30);
    take();
    press(30);
    clock.advance(1s);
    EXPECT_THAT(take(), ElementsAre(Notification{2000, 30, 1}, Notification{2200, 30, 2}));
}

TEST_F(LongPressDetectTest, BeginsTheNextHoldOfASingleTimeoutAnew)
{
    detector->registerEvent(30, false, {300});
    for (int hold = 0; hold < 3; ++hold) {
        press(30);
        clock.advance(500ms);
        release(30);
        clock.advance(500ms);
    }
    EXPECT_THAT(take(),
                ElementsAre(Notification{300, 30, 1}, Notification{1300, 30, 1},
                            Notification{2300, 30, 1}));
}

TEST_F(LongPressDetectTest, AnUnregisteredPressDoesNotStartTheTimer)
{
    detector->registerEvent(30, false, {100});
    press(31);
    clock.advance(1s);
    release(31);
    EXPECT_EQ(ticks.take(), 0);
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(LongPressDetectTest, TicksEveryFiftyMillisecondsUntilTheTickAfterTheRelease)
{
    detector->registerEvent(30, false, {10000});
    press(30);
    clock.advance(1s);
    EXPECT_EQ(ticks.take(), 20);
    clock.advance(10ms);
    release(30);
    clock.advance(60s);
    EXPECT_EQ(ticks.take(), 1);
}

TEST_F(LongPressDetectTest, ASecondKeyDoesNotRestartTheTimer)
{
    detector->registerEvent(30, false, {100});
    detector->registerEvent(31, false, {100});
    press(30);
    clock.advance(40ms);
    press(31);
    clock.advance(10ms);
    EXPECT_EQ(ticks.take(), 1);
    clock.advance(100ms);
    EXPECT_THAT(take(), ElementsAre(Notification{100, 30, 1}, Notification{150, 31, 1}));
}

TEST_F(LongPressDetectTest, TimesSeveralKeysAtOnce)
{
    detector->registerEvent(30, true, {300, 300});
    detector->registerEvent(31, false, {600});
    press(30);
    press(31);
    clock.advance(600ms);
    EXPECT_THAT(take(),
                UnorderedElementsAre(Notification{300, 30, 1}, Notification{600, 30, 2},
                                     Notification{600, 31, 1}));
    release(30);
    clock.advance(600ms);
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(LongPressDetectTest, AnAutoRepeatRestartsTheWaitWithTheCountAtOne)
{
    detector->registerEvent(30, true, {800, 200});
    press(30);
    clock.advance(500ms);
    feed(30, 2);
    clock.advance(700ms);
    EXPECT_THAT(take(), IsEmpty());
    clock.advance(100ms);
    EXPECT_THAT(take(), ElementsAre(Notification{1300, 30, 1}));
    clock.advance(100ms);
    feed(30, 2);
    clock.advance(400ms);
    // The stage reached is kept, 200 ms, but the count restarts from 1.
    EXPECT_THAT(take(), ElementsAre(Notification{1600, 30, 1}, Notification{1800, 30, 2}));
}

TEST_F(LongPressDetectTest, AnAutoRepeatLetsAKeyWithoutRepeatNotifyAgain)
{
    detector->registerEvent(30, false, {200});
    press(30);
    clock.advance(300ms);
    feed(30, 2);
    clock.advance(300ms);
    EXPECT_THAT(take(), ElementsAre(Notification{200, 30, 1}, Notification{500, 30, 1}));
}

TEST_F(LongPressDetectTest, AutoRepeatsFasterThanTheTimeoutKeepItFromFiring)
{
    detector->registerEvent(30, true, {100});
    press(30);
    for (int i = 0; i < 100; ++i) {
        clock.advance(33ms);
        feed(30, 2);
    }
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(LongPressDetectTest, ASecondPressWithoutReleaseStaysAtTheReachedStage)
{
    detector->registerEvent(30, true, {800, 200});
    press(30);
    clock.advance(900ms);
    take();
    press(30);
    clock.advance(200ms);
    EXPECT_THAT(take(), ElementsAre(Notification{1100, 30, 1}));
}

TEST_F(LongPressDetectTest, ResetStopsNotificationsUntilTheNextPressOfAnyKey)
{
    detector->registerEvent(30, false, {300});
    detector->registerEvent(31, false, {10000});
    press(30);
    clock.advance(200ms);
    detector->reset();
    ticks.take();
    clock.advance(1s);
    EXPECT_EQ(ticks.take(), 0);
    EXPECT_THAT(take(), IsEmpty());
    // The held key is still known, and its notification is long overdue.
    press(31);
    clock.advance(50ms);
    EXPECT_THAT(take(), ElementsAre(Notification{1250, 30, 1}));
}

TEST_F(LongPressDetectTest, ResetKeepsTheReachedStage)
{
    detector->registerEvent(30, true, {800, 200});
    press(30);
    clock.advance(900ms);
    take();
    detector->reset();
    press(30);
    clock.advance(200ms);
    EXPECT_THAT(take(), ElementsAre(Notification{1100, 30, 1}));
}

TEST_F(LongPressDetectTest, AReleaseAfterResetForgetsTheKey)
{
    detector->registerEvent(30, false, {300});
    detector->registerEvent(31, false, {10000});
    press(30);
    detector->reset();
    release(30);
    press(31);
    clock.advance(1s);
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(LongPressDetectTest, RegisteringAgainReplacesTheTimeoutsInTheMiddleOfAHold)
{
    detector->registerEvent(30, true, {500, 100});
    press(30);
    clock.advance(600ms);
    EXPECT_THAT(take(), ElementsAre(Notification{500, 30, 1}, Notification{600, 30, 2}));
    detector->registerEvent(30, true, {300, 50});
    clock.advance(350ms);
    // Back to stage 0, measured from the last notification; the count continues.
    EXPECT_THAT(take(), ElementsAre(Notification{900, 30, 3}, Notification{950, 30, 4}));
    detector->registerEvent(30, false, {100});
    clock.advance(1s);
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(LongPressDetectTest, DeregisteringAnIdleKeySilencesIt)
{
    detector->registerEvent(30, false, {100});
    detector->deregisterEvent(30);
    press(30);
    clock.advance(1s);
    EXPECT_EQ(ticks.take(), 0);
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(LongPressDetectTest, AReleaseOfADeregisteredKeyEndsTheHoldBeforeTheTick)
{
    detector->registerEvent(30, true, {100, 100});
    press(30);
    clock.advance(60ms);
    detector->deregisterEvent(30);
    release(30);
    clock.advance(1s);
    EXPECT_THAT(take(), IsEmpty());
}

TEST_F(LongPressDetectTest, APressStampedInTheFutureWaitsThatMuchLonger)
{
    detector->registerEvent(30, false, {300});
    feedAt(30, 1, clock.now() + 1000);
    clock.advance(5s);
    EXPECT_THAT(take(), ElementsAre(Notification{1300, 30, 1}));
}

TEST_F(LongPressDetectTest, APressStampedFarInThePastFiresAtTheFirstTick)
{
    detector->registerEvent(30, false, {300});
    feedAt(30, 1, 0);
    clock.advance(5s);
    EXPECT_THAT(take(), ElementsAre(Notification{50, 30, 1}));
}

TEST_F(LongPressDetectTest, AWallClockSetForwardFiresAtTheNextTick)
{
    detector->registerEvent(30, true, {800, 200});
    press(30);
    clock.advance(100ms);
    clock.stepWallClock(1h);
    clock.advance(250ms);
    const qint64 hour = 3'600'000;
    EXPECT_THAT(take(),
                ElementsAre(Notification{hour + 150, 30, 1}, Notification{hour + 350, 30, 2}));
}

TEST_F(LongPressDetectTest, AWallClockSetBackDelaysTheNextNotification)
{
    detector->registerEvent(30, true, {800, 200});
    press(30);
    clock.advance(100ms);
    clock.stepWallClock(-1s);
    clock.advance(1700ms);
    EXPECT_THAT(take(), ElementsAre(Notification{800, 30, 1}));
    clock.advance(200ms);
    EXPECT_THAT(take(), ElementsAre(Notification{1000, 30, 2}));
}

TEST_F(LongPressDetectTest, ANegativeValueIsAPress)
{
    detector->registerEvent(30, false, {100});
    feed(30, -1);
    clock.advance(100ms);
    EXPECT_THAT(take(), ElementsAre(Notification{100, 30, 1}));
}

TEST_F(LongPressDetectTest, TypeOfTheRecordDoesNotMatter)
{
    detector->registerEvent(3, false, {100});
    input_event event = switchRecord(3, 1, clock.now());
    detector->process(event);
    clock.advance(100ms);
    EXPECT_THAT(take(), ElementsAre(Notification{100, 3, 1}));
}

TEST_F(LongPressDetectTest, LeavesItsTimerBehindStopped)
{
    detector->registerEvent(30, true, {100});
    press(30);
    clock.advance(60ms);
    QPointer<QTimer> timer = ticks.timer;
    ASSERT_NE(timer, nullptr);
    EXPECT_EQ(timer->parent(), nullptr);
    EXPECT_EQ(timer->interval(), 50);
    EXPECT_FALSE(timer->isSingleShot());
    EXPECT_EQ(timer->timerType(), Qt::CoarseTimer);
    detector.reset();
    ASSERT_NE(timer, nullptr);
    ticks.take();
    clock.advance(60s);
    EXPECT_EQ(ticks.take(), 0);
    delete timer;
}

TEST_F(LongPressDetectTest, LogsNothing)
{
    LogRecorder log;
    detector->registerEvent(30, true, {100});
    press(30);
    clock.advance(1s);
    release(30);
    detector->deregisterEvent(30);
    detector->deregisterEvent(31);
    detector->reset();
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LongPressDetectTest, TakesAParent)
{
    QObject parent;
    EXPECT_EQ((new LongPressDetect(&parent))->parent(), &parent);
    EXPECT_EQ(detector->parent(), nullptr);
}

TEST(LongPressDetectMetaObject, HasItsSignalAndItsPrivateSlot)
{
    const QMetaObject &meta = LongPressDetect::staticMetaObject;
    EXPECT_STREQ(meta.className(), "LongPressDetect");
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 2);
    const QMetaMethod signal = meta.method(meta.methodOffset());
    EXPECT_EQ(signal.methodType(), QMetaMethod::Signal);
    EXPECT_EQ(signal.methodSignature(), "keyLongPress(int,int)");
    EXPECT_THAT(signal.parameterNames(), ElementsAre(QByteArray("key"), QByteArray("repeat")));
    const QMetaMethod slot = meta.method(meta.methodOffset() + 1);
    EXPECT_EQ(slot.methodType(), QMetaMethod::Slot);
    EXPECT_EQ(slot.methodSignature(), "update()");
    EXPECT_EQ(slot.access(), QMetaMethod::Private);
}

TEST(LongPressDetectRecords, DefaultsAreAnUnregisteredKey)
{
    EXPECT_TRUE(LongPressDetect::Event().timeouts.isEmpty());
    EXPECT_FALSE(LongPressDetect::Event().repeat);
    EXPECT_EQ(LongPressDetect::KeyData().count, 0);
}

void tick(LongPressDetect &detector)
{
    QMetaObject::invokeMethod(&detector, "update", Qt::DirectConnection);
}

TEST(LongPressDetectDeathTest, AHeldKeyWithoutTimeoutsIsFatal)
{
    LongPressDetect detector;
    detector.registerEvent(30, false, {});
    input_event press = keyRecord(30, 1);
    detector.process(press);
    EXPECT_DEATH(tick(detector), QtDifferences::indexAssertion);
}

TEST(LongPressDetectDeathTest, AKeyDeregisteredWhileHeldIsFatal)
{
    LongPressDetect detector;
    detector.registerEvent(30, false, {1000});
    input_event press = keyRecord(30, 1);
    detector.process(press);
    tick(detector);
    detector.deregisterEvent(30);
    EXPECT_DEATH(tick(detector), QtDifferences::indexAssertion);
}

} // namespace
