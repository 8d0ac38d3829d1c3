#include "GuestTest.h"
#include "UinputDevice.h"

#include <QElapsedTimer>

#include <ctime>

namespace {

using testing::ElementsAre;

/// Steps this guest's wall clock, and back again in the destructor.
class ClockStep
{
public:
    explicit ClockStep(int seconds)
        : m_seconds(seconds)
    {
        move(m_seconds);
    }
    ~ClockStep() { move(-m_seconds); }
    ClockStep(const ClockStep &) = delete;
    ClockStep &operator=(const ClockStep &) = delete;

private:
    static void move(int seconds)
    {
        timespec now = {};
        clock_gettime(CLOCK_REALTIME, &now);
        now.tv_sec += seconds;
        if (clock_settime(CLOCK_REALTIME, &now) != 0)
            qFatal("cannot set the clock; run these tests as root in a guest");
    }

    const int m_seconds;
};

class ClockStepTest : public GuestTest
{
protected:
    /// Presses a key that has these timeouts, and waits until the library reports it.
    void hold(const QList<int> &timeouts)
    {
        devices.onAdd = [&](const QString &node, const QString &name) {
            auto *keys = new BasicKeyInputHandler(name);
            keys->registerKey(KEY_OK, InputEvent::Confirm, true);
            keys->enableLongPress(KEY_OK, true, timeouts);
            devices.addKeyHandler(node, keys, QString());
        };
        ASSERT_TRUE(waitFor([this] { return !devices.calls.empty(); }));
        panel.press(KEY_OK);
        ASSERT_TRUE(waitFor([this] { return !events.texts().empty(); }));
    }

    UinputDevice panel{{"front-panel", BUS_HOST, {KEY_OK}, {}}};
    Devices devices;
    const std::string pressed = local(InputEvent::Confirm, InputEvent::KeyPressed);
    const std::string held = local(InputEvent::Confirm, InputEvent::KeyLongPress);
    const std::string released = local(InputEvent::Confirm, InputEvent::KeyReleased);
};

// The press is suddenly an hour old, so the long press is due at the next tick.
TEST_F(ClockStepTest, ForwardsFiresALongPressThatWasFarAway)
{
    constexpr int hour = 3600;
    hold({hour * 1000 / 2});
    const ClockStep step(hour);
    EXPECT_TRUE(waitFor([this] { return events.texts().size() >= 2; }));
    panel.release(KEY_OK);
    EXPECT_TRUE(waitFor([this] { return events.texts().back() == released; }));
    // Only once: the next one is measured from that tick.
    EXPECT_THAT(events.texts(), ElementsAre(pressed, held, released));
    EXPECT_THAT(log.texts(log4cplus::WARN_LOG_LEVEL), testing::IsEmpty());
}

// The press is now in the future, so the long press is delayed by as much as the clock went back.
TEST_F(ClockStepTest, BackwardsDelaysALongPressByTheStep)
{
    constexpr int seconds = 3;
    QElapsedTimer elapsed;
    elapsed.start();
    hold({200, 60'000});
    const ClockStep step(-seconds);
    EXPECT_TRUE(waitFor([this] { return events.texts().size() >= 2; }));
    EXPECT_GE(elapsed.elapsed(), seconds * 1000 + 200);
    panel.release(KEY_OK);
    EXPECT_TRUE(waitFor([this] { return events.texts().back() == released; }));
    EXPECT_THAT(events.texts(), ElementsAre(pressed, held, released));
}

} // namespace
