#ifndef GUESTTEST_H
#define GUESTTEST_H

#include "BasicInputHandler.h"
#include "Devices.h"
#include "EmulatorMonitor.h"
#include "EventRecorder.h"
#include "LogRecorder.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTimer>

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

/// Runs the event loop until the condition holds. The limit only makes failing tests end; it is
/// never used to test how long something takes.
[[nodiscard]] inline bool waitFor(const std::function<bool()> &condition, int limitMs = 30'000)
{
    // Some conditions become true without an event.
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

/// The text of an event from the product's own panel.
inline std::string local(InputEvent::Command command, InputEvent::State state)
{
    return text(command, state, InputEvent::Bus::LocalUI);
}

/// A test on this machine's real /dev/input, which must be empty at the start.
class GuestTest : public testing::Test
{
protected:
    // In the constructor, before members of derived classes plug in their devices.
    GuestTest()
        : m_isFree(waitFor(isFree, 5000))
    {
        if (!m_isFree) {
            // Left behind by a test that was killed.
            EmulatorMonitor().unplugKeyboard();
            m_isFree = waitFor(isFree, 5000);
        }
    }

    void SetUp() override
    {
        ASSERT_TRUE(m_isFree) << "an input device is present; run these tests in their guest";
    }

    /// Waits for this many events and takes them.
    std::vector<std::string> waitForEvents(std::size_t count)
    {
        EXPECT_TRUE(waitFor([&] { return events.texts().size() >= count; }));
        return events.take();
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
