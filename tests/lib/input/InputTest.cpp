#include "Input.h"

#include "EventRecorder.h"
#include "LogRecorder.h"
#include "Profiler.h"
#include "ProfilerRecorder.h"
#include "QtDifferences.h"
#include "vorn.h"

#include <QCoreApplication>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QThread>

#include <gmock/gmock.h>

#include <atomic>

namespace {

using testing::ElementsAre;
using Bus = InputEvent::Bus;

void report(int command, int state, Bus bus = Bus::NoBus)
{
    Input::reportInputEvent(InputEvent(static_cast<InputEvent::Command>(command),
                                       static_cast<InputEvent::State>(state), bus));
}

TEST(InputBus, IsMadeByTheFirstCallAndRegistersTheMetaType)
{
    // Needs its own process; ctest runs it in one.
    if (Input::s_instance)
        GTEST_SKIP() << "another test of this process has used the bus already";
    EXPECT_FALSE(QtDifferences::isMetaType("InputEvent"));
    Input *first = Input::instance();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(Input::s_instance, first);
    EXPECT_TRUE(QtDifferences::isMetaType("InputEvent"));
    EXPECT_EQ(Input::instance(), first);
    EXPECT_EQ(first->parent(), nullptr);
}

TEST(InputBus, HasOneSignalAndNothingElse)
{
    const QMetaObject &meta = Input::staticMetaObject;
    EXPECT_STREQ(meta.className(), "Input");
    EXPECT_EQ(meta.superClass(), &QObject::staticMetaObject);
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 1);
    const QMetaMethod signal = meta.method(meta.methodOffset());
    EXPECT_EQ(signal.methodType(), QMetaMethod::Signal);
    EXPECT_EQ(signal.methodSignature(), "inputEvent(InputEvent)");
    EXPECT_THAT(signal.parameterNames(), ElementsAre(QByteArray()));
    EXPECT_EQ(meta.propertyCount() - meta.propertyOffset(), 0);
}

TEST(InputBus, LogsThenOpensTheWatcherThenEmits)
{
    std::vector<std::string> sequence;
    LogRecorder log;
    log.onLine([&](const LogLine &line) { sequence.push_back(line.text); });
    setProfilerCallback([&](const QString &watcher, const QString &event) {
        sequence.emplace_back("watcher");
        EXPECT_EQ(watcher, Profiler::UIResponseWatcher());
        EXPECT_EQ(event, Profiler::UIDrawEvent());
    });
    EventRecorder events;
    events.onEvent(
        [&](const InputEvent &event) { sequence.push_back(event.toString().toStdString()); });
    report(InputEvent::VolumeUp, InputEvent::KeyPressed, Bus::LocalUI);
    setProfilerCallback({});
    EXPECT_THAT(sequence,
                ElementsAre("Vorn::InputEvent(16) press", "watcher",
                            "[cmd=VolumeUp, state=KeyPressed, bus=LocalUI]"));
}

TEST(InputBus, DescribesEachStateInItsOwnWords)
{
    LogRecorder log;
    for (int state = 0; state <= 6; ++state)
        report(16, state);
    report(1065, -1);
    report(-5, 1);
    EXPECT_THAT(log.texts(),
                ElementsAre("Vorn::InputEvent(16) Unknown", "Vorn::InputEvent(16) press",
                            "Vorn::InputEvent(16) release", "Vorn::InputEvent(16) long press",
                            "Vorn::InputEvent(16) switch enable",
                            "Vorn::InputEvent(16) switch disable", "Vorn::InputEvent(16) Unknown",
                            "Vorn::InputEvent(1065) Unknown", "Vorn::InputEvent(-5) press"));
}

TEST(InputBus, LogsAtDebugFromItsOwnFunction)
{
    LogRecorder log;
    report(22, 2);
    EXPECT_THAT(
        log.lines(),
        ElementsAre(LogLine{"Input", log4cplus::DEBUG_LOG_LEVEL, "Vorn::InputEvent(22) release",
                            "src/lib/input/Input.cpp", "void Input::emitInputEvent(InputEvent)"}));
}

TEST(InputBus, WithoutDebugStillOpensTheWatcherAndEmits)
{
    LogRecorder log(log4cplus::INFO_LOG_LEVEL);
    int watchers = 0;
    setProfilerCallback([&](const QString &, const QString &) { ++watchers; });
    EventRecorder events;
    report(16, 1);
    report(16, 0);
    setProfilerCallback({});
    EXPECT_THAT(log.lines(), testing::IsEmpty());
    EXPECT_EQ(watchers, 2);
    EXPECT_THAT(events.texts(),
                ElementsAre("[cmd=VolumeUp, state=KeyPressed]", "[cmd=VolumeUp, state=Unknown]"));
}

TEST(InputBus, EmitsEachEventOnceInOrder)
{
    QSignalSpy spy(Input::instance(), &Input::inputEvent);
    report(1, 1);
    report(2, 6);
    report(3, 0, Bus::CEC);
    ASSERT_EQ(spy.count(), 3);
    EXPECT_EQ(spy[0][0].value<InputEvent>().toString(), "[cmd=Confirm, state=KeyPressed]");
    EXPECT_EQ(spy[1][0].value<InputEvent>().toString(), "[cmd=Cancel, state=6]");
    EXPECT_EQ(spy[2][0].value<InputEvent>().toString(), "[cmd=CursorLeft, state=Unknown, bus=CEC]");
}

TEST(InputBus, ReportsAnEventReportedFromInsideASlotAtOnce)
{
    EventRecorder events;
    events.onEvent([](const InputEvent &event) {
        if (event.command() == InputEvent::Power)
            report(InputEvent::Sleep, 1);
    });
    report(InputEvent::Power, 1);
    EXPECT_THAT(events.texts(),
                ElementsAre("[cmd=Power, state=KeyPressed]", "[cmd=Sleep, state=KeyPressed]"));
}

TEST(InputBus, ReachesAnotherThreadQueued)
{
    Input::instance();
    QThread thread;
    QObject receiver;
    receiver.moveToThread(&thread);
    std::atomic<int> command{-1};
    std::atomic<QThread *> where{nullptr};
    Vorn::connect(Input::instance(), &Input::inputEvent, &receiver, [&](const InputEvent &event) {
        where = QThread::currentThread();
        command = event.command();
        QThread::currentThread()->quit();
    });
    report(InputEvent::Next, 1);
    EXPECT_EQ(command, -1);
    thread.start();
    ASSERT_TRUE(thread.wait(10000));
    EXPECT_EQ(command, InputEvent::Next);
    EXPECT_EQ(where, &thread);
}

} // namespace
