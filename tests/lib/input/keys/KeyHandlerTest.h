#ifndef KEYHANDLERTEST_H
#define KEYHANDLERTEST_H

#include "BasicInputHandler.h"

#include "EventRecorder.h"
#include "InputSubsystem.h"
#include "Records.h"
#include "VirtualClock.h"

#include <gtest/gtest.h>

#include <memory>

inline constexpr int A = 30;
inline constexpr int B = 31;
inline constexpr int C = 32;

/// A key handler on the front panel's listener, fed records stamped with the current time.
class KeyHandlerTest : public testing::Test
{
protected:
    KeyHandlerTest()
    {
        subsystem.plug(0,
                       Vorn::Sim::DeviceDescription::keyboard("front-panel", BUS_HOST, {A, B, C}));
        listener = std::make_unique<LinuxInputListener>(
            nullptr, QStringLiteral("/dev/input/event0"), LinuxInputListener::Key);
        handler = std::make_unique<BasicKeyInputHandler>(QStringLiteral("panel"));
        handler->setListener(listener.get());
        handler->setId(QStringLiteral("browse"));
        listener->setHandler(handler.get());
    }

    void feed(int code, int value)
    {
        handler->processEvent(
            {keyRecord(code, value, clock.now()), record(EV_SYN, SYN_REPORT, 0, clock.now())});
    }
    void press(int code) { feed(code, 1); }
    void release(int code) { feed(code, 0); }
    void repeat(int code) { feed(code, 2); }

    /// Passes records directly to the slot of the chord detection.
    void detect(const QList<input_event> &keys, bool fake)
    {
        QMetaObject::invokeMethod(handler.get(), "on_doubleKeyDetect", Qt::DirectConnection,
                                  Q_ARG(QList<input_event>, keys), Q_ARG(bool, fake));
    }

    static std::string pressed(InputEvent::Command command)
    {
        return text(command, InputEvent::KeyPressed, InputEvent::Bus::LocalUI);
    }
    static std::string released(InputEvent::Command command)
    {
        return text(command, InputEvent::KeyReleased, InputEvent::Bus::LocalUI);
    }
    static std::string longPressed(InputEvent::Command command)
    {
        return text(command, InputEvent::KeyLongPress, InputEvent::Bus::LocalUI);
    }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    std::unique_ptr<LinuxInputListener> listener;
    std::unique_ptr<BasicKeyInputHandler> handler;
    EventRecorder events;
};

#endif
