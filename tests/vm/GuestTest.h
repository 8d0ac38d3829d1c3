#ifndef GUESTTEST_H
#define GUESTTEST_H

#include "BasicInputHandler.h"
#include "Devices.h"
#include "EventRecorder.h"
#include "LogRecorder.h"
#include "Monitor.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTimer>

#include <gmock/gmock.h>

#include <functional>

/// Waits for what is bound to happen, with the event loop running. The limit is there for tests
/// that fail; how long something takes is never tested by it.
[[nodiscard]] inline bool waitFor(const std::function<bool()> &condition, int limitMs = 30'000)
{
    // Some conditions come without an event.
    QTimer look;
    look.start(10);
    QElapsedTimer elapsed;
    elapsed.start();
    while (!condition()) {
        if (elapsed.elapsed() > limitMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

/// A test on this machine's real /dev/input, which must be free of devices.
class GuestTest : public testing::Test
{
protected:
    // Before the members of derived classes plug their devices.
    GuestTest()
        : m_isFree(waitFor(isFree, 5000))
    {
        if (!m_isFree) {
            // Left by a test that was ended from outside.
            Monitor().unplugKeyboard();
            m_isFree = waitFor(isFree, 5000);
        }
    }

    void SetUp() override
    {
        ASSERT_TRUE(m_isFree)
            << "an input device is present; these tests run in a guest of their own";
    }

    LogRecorder log;
    EventRecorder events;

private:
    static bool isFree()
    {
        const QDir folder(QStringLiteral("/dev/input"));
        return folder.entryList({QStringLiteral("event*")}, QDir::System).isEmpty();
    }

    bool m_isFree;
};

#endif
