#include "LongPressDetectTest.h"

#include <QEventLoop>

#include <gmock/gmock.h>

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::UnorderedElementsAreArray;

/// What a slot of the detector's signal may do.
using LongPressSlot = LongPressDetectTest;

TEST_F(LongPressSlot, SurvivesAResetFromItsSlot)
{
    detector->registerEvent(30, true, {100, 100});
    onNotification = [this](int, int) { detector->reset(); };
    press(30);
    clock.advance(1s);
    EXPECT_THAT(take(), ElementsAre(Notification{100, 30, 1}));
}

TEST_F(LongPressSlot, ARegistrationFromItsSlotBeginsAtItsFirstTimeout)
{
    detector->registerEvent(30, true, {100, 100});
    onNotification = [this](int, int repeat) {
        if (repeat == 1)
            detector->registerEvent(30, true, {300});
    };
    press(30);
    clock.advance(800ms);
    EXPECT_THAT(
        take(),
        ElementsAre(Notification{100, 30, 1}, Notification{400, 30, 2}, Notification{700, 30, 3}));
}

TEST_F(LongPressSlot, AReleaseFromItsSlotEndsTheHold)
{
    detector->registerEvent(30, true, {100, 100});
    detector->registerEvent(31, true, {100, 100});
    onNotification = [this](int, int) {
        release(30);
        release(31);
    };
    press(30);
    press(31);
    clock.advance(1s);
    // The first of the two notifications ended both holds.
    EXPECT_EQ(take().size(), 1U);
    ticks.take();
    clock.advance(1s);
    EXPECT_EQ(ticks.take(), 0);
}

TEST_F(LongPressSlot, ANestedEventLoopInItsSlotIsNotNotifiedAgainAtEachTick)
{
    detector->registerEvent(30, true, {100, 400});
    onNotification = [](int, int repeat) {
        if (repeat == 1) {
            QEventLoop loop;
            QTimer::singleShot(300, &loop, &QEventLoop::quit);
            loop.exec();
        }
    };
    press(30);
    clock.advance(600ms);
    EXPECT_THAT(take(), ElementsAre(Notification{100, 30, 1}, Notification{500, 30, 2}));
}

TEST_F(LongPressSlot, MayBeDestroyedFromItsOwnSlotsTimer)
{
    detector->registerEvent(30, true, {100});
    press(30);
    clock.advance(60ms);
    ASSERT_NE(ticks.timer, nullptr);
    QObject context;
    QObject::connect(ticks.timer, &QTimer::timeout, &context, [this] { detector.reset(); });
    clock.advance(1s);
    EXPECT_EQ(detector, nullptr);
    EXPECT_EQ(take().size(), 1U);
}

TEST_F(LongPressSlot, AKeyThatItReleasesDoesNotKeepOthersFromTheirNotification)
{
    const std::vector<int> keys = {30, 31, 32};
    for (const int key : keys)
        detector->registerEvent(key, false, {100});
    // The order within a tick is unspecified, so the key between the two is released in some round.
    for (const int spared : keys) {
        SCOPED_TRACE(spared);
        for (const int key : keys)
            press(key);
        const qint64 due = clock.now() - start + 100;
        std::vector<Notification> expected;
        onNotification = [&](int notified, int) {
            onNotification = {};
            expected.push_back({due, notified, 1});
            if (notified != spared)
                expected.push_back({due, spared, 1});
            for (const int key : keys) {
                if (key != notified && key != spared)
                    release(key);
            }
        };
        clock.advance(100ms);
        EXPECT_THAT(take(), UnorderedElementsAreArray(expected));
        for (const int key : keys)
            release(key);
        clock.advance(100ms);
    }
}

TEST_F(LongPressSlot, AReleaseInItStopsTheTimerWithTheSameTick)
{
    detector->registerEvent(30, true, {100, 100});
    onNotification = [this](int, int) { release(30); };
    press(30);
    clock.advance(1s);
    EXPECT_EQ(ticks.take(), 2);
}

TEST_F(LongPressSlot, APressInItKeepsTheTimerRunning)
{
    detector->registerEvent(30, false, {100});
    detector->registerEvent(31, false, {100});
    onNotification = [this](int key, int) {
        onNotification = {};
        release(key);
        press(31);
    };
    press(30);
    clock.advance(1s);
    EXPECT_THAT(take(), ElementsAre(Notification{100, 30, 1}, Notification{200, 31, 1}));
}

TEST_F(LongPressSlot, IsCalledForEachKeyThatRepeatsWhateverOthersDo)
{
    // Both orders of the codes, since that of the keys within a tick is unspecified.
    for (const int repeating : {30, 31}) {
        SCOPED_TRACE(repeating);
        for (const int key : {30, 31}) {
            detector->registerEvent(key, key == repeating, {100, 100});
            press(key);
        }
        const qint64 begin = clock.now() - start;
        clock.advance(100ms);
        take();
        clock.advance(200ms);
        EXPECT_THAT(take(),
                    ElementsAre(Notification{begin + 200, repeating, 2},
                                Notification{begin + 300, repeating, 3}));
        for (const int key : {30, 31})
            release(key);
        clock.advance(100ms);
    }
}

TEST_F(LongPressSlot, IsToldTheNumberThatSilentTimeoutsHaveReached)
{
    detector->registerEvent(30, false, {100});
    press(30);
    clock.advance(300ms);
    EXPECT_THAT(take(), ElementsAre(Notification{100, 30, 1}));
    detector->registerEvent(30, true, {100});
    clock.advance(100ms);
    EXPECT_THAT(take(), ElementsAre(Notification{400, 30, 4}));
}

} // namespace
