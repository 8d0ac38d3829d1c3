#include "BasicInputHandler.h"

#include "EventRecorder.h"
#include "InputSubsystem.h"
#include "LogRecorder.h"
#include "Records.h"
#include "VirtualClock.h"

#include <gmock/gmock.h>

#include <memory>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Bus = InputEvent::Bus;

const char *const sourceFile = "src/lib/input/BasicInputHandler.cpp";

class SwitchHandlerTest : public testing::Test
{
protected:
    SwitchHandlerTest()
    {
        subsystem.plug(0, Vorn::Sim::DeviceDescription::switchBox("jacks", BUS_HOST, {0, 1}, {0}));
        listener = std::make_unique<LinuxInputListener>(
            nullptr, QStringLiteral("/dev/input/event0"), LinuxInputListener::Switch);
        handler = std::make_unique<BasicSwInputHandler>(QStringLiteral("jacks"));
        handler->setListener(listener.get());
        listener->setHandler(handler.get());
    }

    static std::string on(InputEvent::Command command)
    {
        return text(command, InputEvent::SwitchEnabled, Bus::LocalUI);
    }
    static std::string off(InputEvent::Command command)
    {
        return text(command, InputEvent::SwitchDisabled, Bus::LocalUI);
    }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    std::unique_ptr<LinuxInputListener> listener;
    std::unique_ptr<BasicSwInputHandler> handler;
    EventRecorder events;
};

TEST_F(SwitchHandlerTest, ReportsOnForEveryValueButZero)
{
    handler->registerSwitch(0, InputEvent::SWLineIn);
    handler->processEvent({switchRecord(0, 1)});
    EXPECT_THAT(events.take(), ElementsAre(on(InputEvent::SWLineIn)));
    handler->processEvent({switchRecord(0, 2)});
    handler->processEvent({switchRecord(0, -1)});
    EXPECT_THAT(events.take(), ElementsAre(on(InputEvent::SWLineIn), on(InputEvent::SWLineIn)));
    handler->processEvent({switchRecord(0, 0)});
    EXPECT_THAT(events.take(), ElementsAre(off(InputEvent::SWLineIn)));
}

TEST_F(SwitchHandlerTest, ReportsTheSamePositionAgain)
{
    handler->registerSwitch(0, InputEvent::SWLineIn);
    handler->processEvent({switchRecord(0, 1), switchRecord(0, 1)});
    EXPECT_THAT(events.take(), ElementsAre(on(InputEvent::SWLineIn), on(InputEvent::SWLineIn)));
}

TEST_F(SwitchHandlerTest, ReportsEachMappedRecordOfABatchInOrder)
{
    handler->registerSwitch(0, InputEvent::SWLineIn);
    handler->registerSwitch(1, InputEvent::SWLineOut);
    handler->processEvent({switchRecord(1, 1), keyRecord(0, 1), record(EV_SYN, 0, 0),
                           switchRecord(2, 1), switchRecord(0, 0), record(EV_MSC, 1, 1)});
    EXPECT_THAT(events.take(), ElementsAre(on(InputEvent::SWLineOut), off(InputEvent::SWLineIn)));
}

TEST_F(SwitchHandlerTest, ReportsSwitchesMappedToNone)
{
    handler->registerSwitch(0, InputEvent::None);
    handler->processEvent({switchRecord(0, 1)});
    EXPECT_THAT(events.take(), ElementsAre(on(InputEvent::None)));
}

TEST_F(SwitchHandlerTest, DropsEverythingElseWithoutALine)
{
    LogRecorder log;
    handler->registerSwitch(1, InputEvent::SWLineIn);
    handler->processEvent({switchRecord(0, 1)});
    for (const int type : {EV_SYN, EV_KEY, EV_MSC, EV_LED, EV_REP, EV_FF, EV_SW + 256})
        handler->processEvent({record(type, 1, 1)});
    handler->processEvent({});
    EXPECT_THAT(events.take(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SwitchHandlerTest, WarnsOfASecondRegistrationWhichWins)
{
    handler->registerSwitch(0, InputEvent::SWLineIn);
    LogRecorder log;
    handler->registerSwitch(0, InputEvent::SWMicIn);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{
                    "BasicInputHandler", log4cplus::WARN_LOG_LEVEL,
                    "Duplicate key in switch input map: 0, overwriting old value", sourceFile,
                    "void BasicSwInputHandler::registerSwitch(int, InputEvent::Command)"}));
    handler->processEvent({switchRecord(0, 1)});
    EXPECT_THAT(events.take(), ElementsAre(on(InputEvent::SWMicIn)));
}

TEST_F(SwitchHandlerTest, RemovesARegistration)
{
    handler->registerSwitch(0, InputEvent::SWLineIn);
    LogRecorder log;
    handler->deregisterSwitch(0);
    EXPECT_THAT(log.lines(), IsEmpty());
    handler->processEvent({switchRecord(0, 1)});
    EXPECT_THAT(events.take(), IsEmpty());
}

TEST_F(SwitchHandlerTest, WarnsWhenAnUnknownSwitchIsRemoved)
{
    handler->registerSwitch(1, InputEvent::SWLineIn);
    LogRecorder log;
    handler->deregisterSwitch(7);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"BasicInputHandler", log4cplus::WARN_LOG_LEVEL,
                                    "Trying to remove non-existing switch 7", sourceFile,
                                    "void BasicSwInputHandler::deregisterSwitch(int)"}));
    handler->processEvent({switchRecord(1, 1)});
    EXPECT_THAT(events.take(), ElementsAre(on(InputEvent::SWLineIn)));
}

TEST_F(SwitchHandlerTest, LogsEachReportWithoutTheBus)
{
    handler->registerSwitch(0, InputEvent::SWLineIn);
    handler->setId(QStringLiteral("any"));
    LogRecorder log;
    handler->processEvent({switchRecord(0, 1), switchRecord(0, 0)});
    const auto line = [](const std::string &state) {
        return LogLine{"BasicInputHandler", log4cplus::TRACE_LOG_LEVEL,
                       "Device: jacks; id: any; command [cmd=SWLineIn, state=" + state + "]",
                       sourceFile,
                       "virtual void BasicSwInputHandler::processEvent(const "
                       "QList<input_event>&)"};
    };
    EXPECT_THAT(log.lines(log4cplus::TRACE_LOG_LEVEL),
                ElementsAre(line("SwitchEnabled"), line("SwitchDisabled")));
}

TEST_F(SwitchHandlerTest, LearnsThePositionsOfItsSwitchesOnRequest)
{
    handler->registerSwitch(0, InputEvent::SWLineIn);
    handler->registerSwitch(1, InputEvent::SWLineOut);
    handler->getInputStatus();
    EXPECT_THAT(events.take(), ElementsAre(on(InputEvent::SWLineIn), off(InputEvent::SWLineOut)));
    handler->getInputStatus();
    EXPECT_THAT(events.take(), ElementsAre(on(InputEvent::SWLineIn), off(InputEvent::SWLineOut)));
}

TEST_F(SwitchHandlerTest, LosesUnreadMovesWhenItAsksForPositions)
{
    handler->registerSwitch(0, InputEvent::SWLineIn);
    Vorn::Sim::InputNode &node = subsystem.node(0);
    node.setSwitch(0, false);
    node.setSwitch(0, true);
    handler->getInputStatus();
    EXPECT_THAT(events.take(), ElementsAre(on(InputEvent::SWLineIn)));
    clock.settle();
    EXPECT_THAT(events.take(), IsEmpty());

    // Read in time, they are told.
    node.setSwitch(0, false);
    node.setSwitch(0, true);
    clock.settle();
    EXPECT_THAT(events.take(), ElementsAre(off(InputEvent::SWLineIn), on(InputEvent::SWLineIn)));
}

TEST_F(SwitchHandlerTest, LearnsNothingWhileItIsNotTheReceiver)
{
    handler->registerSwitch(0, InputEvent::SWLineIn);
    listener->setHandler(nullptr);
    handler->getInputStatus();
    EXPECT_THAT(events.take(), IsEmpty());
}

TEST_F(SwitchHandlerTest, WithoutAListenerLearnsNothingAndReportsWithoutABus)
{
    BasicSwInputHandler lonely(QStringLiteral("lonely"));
    lonely.registerSwitch(0, InputEvent::SWLineIn);
    LogRecorder log;
    lonely.getInputStatus();
    EXPECT_THAT(log.lines(), IsEmpty());
    lonely.processEvent({switchRecord(0, 1)});
    EXPECT_THAT(events.take(), ElementsAre("[cmd=SWLineIn, state=SwitchEnabled]"));
}

TEST_F(SwitchHandlerTest, HasNothingToInvalidate)
{
    handler->registerSwitch(0, InputEvent::SWLineIn);
    handler->invalidate();
    handler->processEvent({switchRecord(0, 1)});
    EXPECT_THAT(events.take(), ElementsAre(on(InputEvent::SWLineIn)));
}

TEST_F(SwitchHandlerTest, MayBeReregisteredFromInsideItsReport)
{
    handler->registerSwitch(0, InputEvent::SWLineIn);
    handler->registerSwitch(1, InputEvent::SWLineOut);
    events.onEvent([&](const InputEvent &) {
        for (int code = 0; code < 2; ++code)
            handler->deregisterSwitch(code);
        for (int code = 0; code < 100; ++code)
            handler->registerSwitch(code, InputEvent::SWMicIn);
        events.onEvent({});
    });
    handler->processEvent({switchRecord(0, 1), switchRecord(1, 1)});
    EXPECT_THAT(events.take(), ElementsAre(on(InputEvent::SWLineIn), on(InputEvent::SWMicIn)));
}

TEST(SwitchHandlerMetaObject, HasNothingOfItsOwn)
{
    const QMetaObject &meta = BasicSwInputHandler::staticMetaObject;
    EXPECT_STREQ(meta.className(), "BasicSwInputHandler");
    EXPECT_EQ(meta.superClass(), &InputHandler::staticMetaObject);
    EXPECT_EQ(meta.methodCount(), meta.methodOffset());
}

} // namespace
