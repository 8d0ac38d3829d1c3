#include "BasicInputHandler.h"

#include "Devices.h"
#include "InputSubsystem.h"
#include "vorn.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTest>
#include <QThread>

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace {

using testing::Each;
using Vorn::Sim::DeviceDescription;
using Vorn::Sim::InputNode;
using Vorn::Sim::InputSubsystem;

// So long that only a hang fails.
constexpr int patience = 60'000;

constexpr InputEvent::Command commandOf(int index)
{
    return static_cast<InputEvent::Command>(1 + index % 50);
}

/// Lets an object take events only once their emission is over. Qt is not instrumented, so the
/// thread sanitizer does not see that a posted event is handed over; it sees this. To be made
/// before whoever is connected queued, and closed after.
class Emissions
{
public:
    Emissions()
    {
        QObject::connect(
            Input::instance(), &Input::inputEvent, &m_context, [this] { ++m_begun; },
            Qt::DirectConnection);
    }

    void close()
    {
        m_isOpen = false;
        QObject::connect(
            Input::instance(), &Input::inputEvent, &m_context, [this] { ++m_ended; },
            Qt::DirectConnection);
    }

    /// Nobody takes anything between close() and this.
    void open() { m_isOpen = true; }

    void awaitEnd() const
    {
        const int begun = m_begun;
        while (m_ended < begun || !m_isOpen)
            QThread::yieldCurrentThread();
    }

private:
    std::atomic<int> m_begun{0};
    std::atomic<int> m_ended{0};
    std::atomic<bool> m_isOpen{true};
    QObject m_context;
};

/// The context of queued connections.
class Context : public QObject
{
public:
    explicit Context(const Emissions &emissions)
        : m_emissions(emissions)
    { }

    bool event(QEvent *event) override
    {
        m_emissions.awaitEnd();
        return QObject::event(event);
    }

private:
    const Emissions &m_emissions;
};

/// A thread with an event loop, which starts and ends in ways that the sanitizer understands as
/// well.
class LoopThread : public QThread
{
public:
    LoopThread()
    {
        m_inside.moveToThread(this);
        QObject::connect(
            this, &QThread::started, this, [this] { m_isStarted = true; }, Qt::DirectConnection);
    }
    ~LoopThread() override { stop(); }

    void startAndWait()
    {
        start();
        while (!m_isStarted)
            yieldCurrentThread();
    }

    void stop()
    {
        if (!isRunning())
            return;
        std::atomic<bool> isTold{false};
        QMetaObject::invokeMethod(&m_inside, [&isTold] {
            while (!isTold)
                yieldCurrentThread();
            currentThread()->quit();
        });
        isTold = true;
        wait();
    }

private:
    QObject m_inside;
    std::atomic<bool> m_isStarted{false};
};

/// An application's object on a thread of its own.
class Application
{
public:
    explicit Application(const Emissions &emissions)
        : m_context(emissions)
    {
        m_thread.startAndWait();
        m_context.moveToThread(&m_thread);
        Vorn::connect(Input::instance(), &Input::inputEvent, &m_context,
                      [this](const InputEvent &event) { take(event); });
    }
    ~Application() { m_thread.stop(); }
    Application(const Application &) = delete;
    Application &operator=(const Application &) = delete;

    int count() const { return m_count; }
    /// Events that were not the next one.
    int mistakes() const { return m_mistakes; }

private:
    // Keeps some events for a while, so that they go at other times than those that are published.
    void take(const InputEvent &event)
    {
        InputEvent &kept = m_kept[static_cast<std::size_t>(m_count) % m_kept.size()];
        kept = event;
        const InputEvent copy = kept;
        const int index = m_count;
        if (copy.command() != commandOf(index) || event.state() != InputEvent::KeyPressed)
            ++m_mistakes;
        ++m_count;
    }

    std::array<InputEvent, 7> m_kept;
    std::atomic<int> m_count{0};
    std::atomic<int> m_mistakes{0};
    Context m_context;
    LoopThread m_thread;
};

TEST(Threads, GetEveryEventInOrderWhileItIsCopiedAndDestroyedElsewhere)
{
    Emissions emissions;
    constexpr int total = 3000;
    constexpr int burst = 50;
    const std::array<Application, 3> applications = {Application(emissions), Application(emissions),
                                                     Application(emissions)};
    emissions.close();
    // Shared with the applications' copies until it goes here, at an arbitrary moment.
    std::array<InputEvent, 5> kept;
    for (int i = 0; i < total; ++i) {
        // At first nobody takes anything, so that the queues grow to their size, far more than a
        // burst: the sanitizer takes it for a race if one grows while it is emptied.
        if (i % burst == 0 && i >= total / 3) {
            emissions.open();
            for (const Application &application : applications) {
                while (application.count() < i)
                    QThread::yieldCurrentThread();
            }
        }
        InputEvent &event = kept[static_cast<std::size_t>(i) % kept.size()];
        event = InputEvent(commandOf(i), InputEvent::KeyPressed, InputEvent::Bus::USB);
        Input::reportInputEvent(event);
    }
    for (const Application &application : applications) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return application.count() == total; }, patience));
        EXPECT_EQ(application.mistakes(), 0);
    }
}

/// The library on an event loop that is not the main one.
class LibraryThread : public LoopThread
{
public:
    ~LibraryThread() override { stop(); }

    std::atomic<int> devices{0};
    std::atomic<QThread *> where{nullptr};

protected:
    void run() override
    {
        Devices manager;
        manager.onAdd = [&](const QString &path, const QString &name) {
            auto *keys = new BasicKeyInputHandler(name);
            manager.addKeyHandler(path, keys, QString());
            keys->registerKey(KEY_OK, InputEvent::Confirm, true);
            where = QThread::currentThread();
            ++devices;
        };
        exec();
    }
};

class LibraryOnAnotherThread : public testing::Test
{
protected:
    LibraryOnAnotherThread()
        : m_context(m_emissions)
    {
        QObject::connect(Input::instance(), &Input::inputEvent, &m_context,
                         [this](const InputEvent &event) {
                             EXPECT_EQ(QThread::currentThread(), m_context.thread());
                             states.push_back(event.state());
                         });
        m_emissions.close();
        m_emissions.open();
    }

    InputNode &plug(int number)
    {
        return subsystem.plug(number, DeviceDescription::keyboard("keys", BUS_HOST, {KEY_OK}));
    }

    bool waitForDevices(int count)
    {
        return QTest::qWaitFor([&] { return library.devices == count; }, patience);
    }

    bool waitForEvents(std::size_t count)
    {
        return QTest::qWaitFor([&] { return states.size() == count; }, patience);
    }

    InputSubsystem subsystem;
    std::vector<InputEvent::State> states;
    LibraryThread library;

private:
    Emissions m_emissions;
    Context m_context;
};

TEST_F(LibraryOnAnotherThread, PublishesToTheMainThread)
{
    InputNode &node = plug(0);
    library.start();
    ASSERT_TRUE(waitForDevices(1));
    EXPECT_EQ(library.where, &library);
    constexpr std::size_t taps = 500;
    std::vector<InputEvent::State> expected;
    for (std::size_t i = 0; i < taps; ++i) {
        node.press(KEY_OK);
        node.release(KEY_OK);
        expected.push_back(InputEvent::KeyPressed);
        expected.push_back(InputEvent::KeyReleased);
    }
    EXPECT_TRUE(waitForEvents(2 * taps));
    EXPECT_EQ(states, expected);
}

TEST_F(LibraryOnAnotherThread, HearsOfDevicesThatComeAndGo)
{
    library.start();
    for (int i = 1; i <= 20; ++i) {
        InputNode &node = plug(i % 3);
        ASSERT_TRUE(waitForDevices(i));
        node.press(KEY_OK);
        ASSERT_TRUE(waitForEvents(static_cast<std::size_t>(i)));
        subsystem.unplug(i % 3, InputSubsystem::Unread::Lost);
        ASSERT_TRUE(QTest::qWaitFor([&] { return subsystem.openDescriptors() == 0; }, patience));
    }
    EXPECT_THAT(states, Each(InputEvent::KeyPressed));
}

// As when a program ends: the library's thread first, with a device still held.
TEST_F(LibraryOnAnotherThread, CanEndWhileKeysArePressed)
{
    InputNode &node = plug(0);
    library.start();
    ASSERT_TRUE(waitForDevices(1));
    std::atomic<bool> isEnded{false};
    const std::unique_ptr<QThread> fingers(QThread::create([&] {
        while (!isEnded) {
            node.press(KEY_OK);
            node.release(KEY_OK);
            QThread::yieldCurrentThread();
        }
    }));
    fingers->start();
    EXPECT_TRUE(QTest::qWaitFor([&] { return states.size() > 100; }, patience));
    library.stop();
    isEnded = true;
    fingers->wait();
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

} // namespace
