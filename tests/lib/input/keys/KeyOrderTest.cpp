#include "KeyHandlerTest.h"

#include "LogRecorder.h"

#include <gmock/gmock.h>

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

/// What is already done when an application's slot is called, and what is not yet.
using KeyOrder = KeyHandlerTest;

TEST_F(KeyOrder, APressIsTimedBeforeItIsReported)
{
    handler->registerKey(A, InputEvent::Info, true);
    // A long press that is registered in response to the press is for the next one.
    events.onEvent([&](const InputEvent &) { handler->enableLongPress(A, false, {100}); });
    press(A);
    events.onEvent({});
    clock.advance(1s);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::Info)));
    release(A);
    press(A);
    clock.advance(1s);
    EXPECT_THAT(events.take(),
                ElementsAre(released(InputEvent::Info), pressed(InputEvent::Info),
                            longPressed(InputEvent::Info)));
}

TEST_F(KeyOrder, AReleaseEndsTheTimingBeforeItIsReported)
{
    handler->registerKey(A, InputEvent::Info, true);
    handler->enableLongPress(A, true, {100, 100});
    press(A);
    clock.advance(150ms);
    events.take();
    events.onEvent([&](const InputEvent &event) {
        if (event.state() == InputEvent::KeyReleased)
            clock.advance(1s);
    });
    release(A);
    EXPECT_THAT(events.take(), ElementsAre(released(InputEvent::Info)));
}

TEST_F(KeyOrder, AReleaseInTheSlotOfALongPressIsNoClick)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->enableLongPress(A, false, {100});
    events.onEvent([&](const InputEvent &event) {
        if (event.state() == InputEvent::KeyLongPress)
            release(A);
    });
    press(A);
    clock.advance(1s);
    EXPECT_THAT(events.take(),
                ElementsAre(longPressed(InputEvent::Info), released(InputEvent::Info)));
}

TEST_F(KeyOrder, AHoldThatBeginsInTheSlotOfAReleaseIsNotForgotten)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->enableLongPress(A, false, {100});
    for (const bool isLong : {false, true}) {
        SCOPED_TRACE(isLong);
        press(A);
        if (isLong)
            clock.advance(100ms);
        events.onEvent([&](const InputEvent &event) {
            if (event.state() != InputEvent::KeyReleased)
                return;
            events.onEvent({});
            press(A);
            clock.advance(100ms);
        });
        release(A);
        events.take();
        release(A);
        EXPECT_THAT(events.take(), ElementsAre(released(InputEvent::Info)));
    }
}

TEST_F(KeyOrder, AChordIsTimedBeforeItIsReported)
{
    handler->registerKey(A, InputEvent::Info, false);
    handler->registerDoubleKey(A, B, InputEvent::FactoryReset);
    press(A);
    events.onEvent([&](const InputEvent &) { handler->enableLongPress(A, false, {100}); });
    press(B);
    events.onEvent({});
    clock.advance(1s);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::FactoryReset)));
}

TEST_F(KeyOrder, TheReleaseOfAClickIsTracedWithTheIdentifierOfThatMoment)
{
    handler->registerKey(A, InputEvent::Confirm, false);
    LogRecorder log;
    events.onEvent([&](const InputEvent &event) {
        if (event.state() == InputEvent::KeyPressed)
            handler->setId(QStringLiteral("text"));
    });
    press(A);
    release(A);
    EXPECT_THAT(log.texts(log4cplus::TRACE_LOG_LEVEL),
                ElementsAre("Device: panel; id: browse; command [cmd=Confirm, state=KeyPressed]",
                            "Device: panel; id: text; command [cmd=Confirm, state=KeyReleased]"));
}

TEST_F(KeyOrder, TheReleaseOfAClickIsTracedAlsoForAHandlerThatThePressDeleted)
{
    handler->registerKey(A, InputEvent::Confirm, false);
    LogRecorder log;
    events.onEvent([&](const InputEvent &event) {
        if (event.state() != InputEvent::KeyPressed)
            return;
        // The handler takes the listener with it.
        Q_UNUSED(listener.release())
        handler.reset();
    });
    press(A);
    BasicKeyInputHandler *deleted = handler.get();
    deleted->processEvent({keyRecord(A, 0, clock.now())});
    clock.settle();
    EXPECT_THAT(log.texts(log4cplus::TRACE_LOG_LEVEL),
                ElementsAre("Device: panel; id: browse; command [cmd=Confirm, state=KeyPressed]",
                            "Device: panel; id: browse; command [cmd=Confirm, state=KeyReleased]"));
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::Confirm), released(InputEvent::Confirm)));
}

} // namespace
