#include "KeyHandlerTest.h"

#include "LogRecorder.h"

#include <gmock/gmock.h>

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Bus = InputEvent::Bus;

const char *const sourceFile = "src/lib/input/BasicInputHandler.cpp";

using Chord = KeyHandlerTest;
using ChordRegistration = KeyHandlerTest;

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

TEST_F(ChordRegistration, OfAKeyWithItselfLeavesTheKeyASingleOne)
{
    handler->registerKey(A, InputEvent::Info, true);
    handler->registerDoubleKey(A, A, InputEvent::FactoryReset);
    press(A);
    press(A);
    release(A);
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::Info), pressed(InputEvent::Info),
                            released(InputEvent::Info)));
    detect({keyRecord(A, 1), keyRecord(A, 1)}, false);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::FactoryReset)));
}

TEST_F(ChordRegistration, OfAKeyWithItselfWarnsOfASecondOne)
{
    handler->registerDoubleKey(A, A, InputEvent::FactoryReset);
    LogRecorder log;
    handler->registerDoubleKey(A, A, InputEvent::Mute);
    EXPECT_THAT(log.texts(),
                ElementsAre("Duplicate keys in double key input map: QPair(30,30), overwriting old "
                            "value"));
    EXPECT_EQ(handler->getDoubleKeyEvent({A, A}), InputEvent::Mute);
}

TEST_F(ChordRegistration, OfAKeyWithItselfIsOneEntry)
{
    handler->registerDoubleKey(1, 1, InputEvent::FactoryReset);
    EXPECT_EQ(handler->getDoubleKeyEvent({1, 1}), InputEvent::FactoryReset);
    handler->deregisterDoubleKey(1, 1);
    EXPECT_EQ(handler->getDoubleKeyEvent({1, 1}), InputEvent::None);
}

} // namespace
