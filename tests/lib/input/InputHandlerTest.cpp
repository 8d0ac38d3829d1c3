#include "LinuxInputListener.h"

#include "InputSubsystem.h"
#include "LogRecorder.h"
#include "RecordingHandler.h"
#include "VirtualClock.h"

#include <QPointer>

#include <gmock/gmock.h>

#include <memory>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Vorn::Sim::DeviceDescription;

class InputHandlerTest : public testing::Test
{
protected:
    std::unique_ptr<LinuxInputListener> makeListener()
    {
        return std::make_unique<LinuxInputListener>(nullptr, node.path(), LinuxInputListener::Key);
    }

    void press()
    {
        node.press(KEY_OK);
        clock.settle();
        node.release(KEY_OK);
        clock.settle();
    }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    Vorn::Sim::InputNode &node =
        subsystem.plug(0, DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK}));
};

TEST_F(InputHandlerTest, BeginsWithoutParentAndListener)
{
    const RecordingHandler handler;
    EXPECT_EQ(handler.listener(), nullptr);
    EXPECT_EQ(handler.parent(), nullptr);
}

TEST_F(InputHandlerTest, KeepsItsFirstListener)
{
    const auto first = makeListener();
    const auto second = makeListener();
    {
        RecordingHandler handler;
        LogRecorder log;
        handler.setListener(first.get());
        EXPECT_THAT(log.lines(), IsEmpty());
        handler.setListener(second.get());
        EXPECT_EQ(handler.listener(), first.get());
        EXPECT_THAT(log.lines(),
                    ElementsAre(LogLine{"LinuxInputListener", log4cplus::DEBUG_LOG_LEVEL,
                                        "Linux Input Listerner already set, ignore",
                                        "src/lib/input/LinuxInputListener.cpp",
                                        "void InputHandler::setListener(LinuxInputListener*)"}));
    }
}

TEST_F(InputHandlerTest, TakesANullListenerForNone)
{
    const auto listener = makeListener();
    RecordingHandler handler;
    LogRecorder log;
    handler.setListener(nullptr);
    handler.setListener(listener.get());
    EXPECT_EQ(handler.listener(), listener.get());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(InputHandlerTest, StoringAListenerDoesNotMakeItTheReceiver)
{
    const auto listener = makeListener();
    RecordingHandler handler;
    handler.setListener(listener.get());
    press();
    EXPECT_THAT(handler.batches, IsEmpty());
}

TEST_F(InputHandlerTest, WarnsWhenThereIsNoListenerToRedirect)
{
    RecordingHandler handler;
    RecordingHandler other;
    LogRecorder log;
    handler.setHandler(&other);
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{"LinuxInputListener", log4cplus::WARN_LOG_LEVEL,
                                    "Linux Input Listerner does not exists",
                                    "src/lib/input/LinuxInputListener.cpp",
                                    "void InputHandler::setHandler(InputHandler*)"}));
    EXPECT_EQ(other.invalidations, 0);
    EXPECT_EQ(other.listener(), nullptr);
}

TEST_F(InputHandlerTest, RedirectsTheListenerAndInvalidatesTheOldReceiverOnce)
{
    const auto listener = makeListener();
    RecordingHandler owner;
    RecordingHandler first;
    RecordingHandler second;
    owner.setListener(listener.get());
    owner.setHandler(&first);
    EXPECT_EQ(owner.invalidations + first.invalidations + second.invalidations, 0);
    press();
    EXPECT_EQ(first.take().size(), 2U);
    owner.setHandler(&second);
    EXPECT_EQ(first.invalidations, 1);
    EXPECT_EQ(second.invalidations, 0);
    press();
    EXPECT_EQ(second.take().size(), 2U);
    EXPECT_THAT(first.batches, IsEmpty());
    // The owner keeps its listener, whoever is the receiver.
    EXPECT_EQ(owner.listener(), listener.get());
    EXPECT_EQ(second.listener(), nullptr);
}

TEST_F(InputHandlerTest, DestructionLeavesTheListenerAliveUntilDeferredDeletionsRun)
{
    QPointer<LinuxInputListener> listener = makeListener().release();
    auto handler = std::make_unique<RecordingHandler>();
    handler->setListener(listener);
    handler.reset();
    ASSERT_NE(listener, nullptr);
    EXPECT_EQ(node.openDescriptors(), 1);
    clock.settle();
    EXPECT_EQ(listener, nullptr);
    EXPECT_EQ(node.openDescriptors(), 0);
}

TEST_F(InputHandlerTest, DestructionWithoutAListenerIsSilent)
{
    static QStringList messages;
    messages.clear();
    const QtMessageHandler before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &text) { messages << text; });
    {
        const RecordingHandler handler;
    }
    qInstallMessageHandler(before);
    EXPECT_EQ(messages, QStringList());
}

TEST_F(InputHandlerTest, ADirectDeletionOfTheListenerWithdrawsTheDeferredOne)
{
    LinuxInputListener *listener = makeListener().release();
    int destroyed = 0;
    QObject::connect(listener, &QObject::destroyed, [&destroyed] { ++destroyed; });
    auto first = std::make_unique<RecordingHandler>();
    auto second = std::make_unique<RecordingHandler>();
    first->setListener(listener);
    second->setListener(listener);
    first.reset();
    second.reset();
    delete listener;
    clock.settle();
    EXPECT_EQ(destroyed, 1);
}

TEST_F(InputHandlerTest, SurvivesAListenerThatWasDeletedBySomebodyElse)
{
    RecordingHandler handler;
    auto listener = makeListener();
    handler.setListener(listener.get());
    listener.reset();
    EXPECT_EQ(handler.listener(), nullptr);
    LogRecorder log;
    handler.setHandler(nullptr);
    EXPECT_THAT(log.texts(), ElementsAre("Linux Input Listerner does not exists"));
}

TEST(InputHandlerMetaObject, IsBare)
{
    const QMetaObject &meta = InputHandler::staticMetaObject;
    EXPECT_STREQ(meta.className(), "InputHandler");
    EXPECT_EQ(meta.superClass(), &QObject::staticMetaObject);
    EXPECT_EQ(meta.methodCount(), meta.methodOffset());
    EXPECT_EQ(meta.propertyCount(), meta.propertyOffset());
}

} // namespace
