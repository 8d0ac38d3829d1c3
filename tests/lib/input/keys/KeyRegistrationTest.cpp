#include "KeyHandlerTest.h"

#include "LogRecorder.h"

#include <gmock/gmock.h>

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Bus = InputEvent::Bus;

const char *const sourceFile = "src/lib/input/BasicInputHandler.cpp";

using KeyRegistration = KeyHandlerTest;

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

TEST_F(KeyRegistration, OfAnotherBusLeavesWhatIsThere)
{
    handler->registerKey(A, InputEvent::Info, true);
    handler->registerDoubleKey(A, B, InputEvent::Mute);
    handler->registerKey(A, Bus::Hostlink, InputEvent::Power, false);
    handler->registerDoubleKey(A, B, Bus::Hostlink, InputEvent::Power);
    press(A);
    EXPECT_THAT(events.take(), ElementsAre(pressed(InputEvent::Info)));
    EXPECT_EQ(handler->getDoubleKeyEvent({A, B}), InputEvent::Mute);
    EXPECT_EQ(handler->getDoubleKeyEvent({B, A}), InputEvent::Mute);
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

TEST_F(KeyRegistration, OfAnUnknownCodeKeepsItsLongPressThroughARemoval)
{
    handler->enableLongPress(A, false, {100});
    handler->deregisterKey(A);
    handler->registerKey(A, InputEvent::Info, false);
    press(A);
    clock.advance(100ms);
    EXPECT_THAT(events.take(), ElementsAre(longPressed(InputEvent::Info)));
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

} // namespace
