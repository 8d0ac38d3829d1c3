#include "KeyHandlerTest.h"

#include "LogRecorder.h"

#include <gmock/gmock.h>

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Bus = InputEvent::Bus;

const char *const sourceFile = "src/lib/input/BasicInputHandler.cpp";

using KeyReport = KeyHandlerTest;

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

TEST_F(KeyReport, TakesEveryCommandButNone)
{
    constexpr auto below = static_cast<InputEvent::Command>(-1);
    constexpr auto nameless = static_cast<InputEvent::Command>(57);
    handler->registerKey(A, below, true);
    handler->registerDoubleKey(A, B, below);
    handler->registerKey(C, nameless, true);
    press(A);
    press(B);
    EXPECT_THAT(events.take(), ElementsAre(pressed(below), released(below), pressed(below)));
    release(A);
    release(B);
    EXPECT_THAT(events.take(), ElementsAre(released(below)));
    press(C);
    EXPECT_THAT(events.take(), ElementsAre(pressed(nameless)));
}

} // namespace
