#include "LongPressMirror.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class LongPressMirrorTest : public testing::Test
{
protected:
    void registerKey(int code, InputEvent::Command command, const QList<int> &timeouts,
                     bool repeats = false, std::optional<InputEvent::Bus> bus = {})
    {
        KeyMapping key{code, command, false, {}, {}};
        if (!timeouts.isEmpty())
            key.longPress = LongPress{timeouts, repeats};
        key.bus = bus;
        m_mirror.registerKey(key);
    }

    void process(int code, int value, qint64 stampMs)
    {
        input_event event = {};
        event.type = EV_KEY;
        event.code = static_cast<__u16>(code);
        event.value = value;
        event.input_event_sec = static_cast<decltype(event.input_event_sec)>(stampMs / 1000);
        event.input_event_usec =
            static_cast<decltype(event.input_event_usec)>(stampMs % 1000 * 1000);
        m_mirror.process(event);
    }

    /// The code of the key that is due, or -1.
    int dueKey(InputEvent::Command command, qint64 now) const
    {
        const auto key = m_mirror.dueKey(command, now);
        return key ? key->code : -1;
    }

    /// What was told since the last time.
    std::vector<std::string> take() { return std::exchange(m_told, {}); }

    LongPressMirror &mirror() { return m_mirror; }

private:
    std::vector<std::string> m_told;
    LongPressMirror m_mirror{[this](DetectorStep::What what, int code, qint64 due) {
        m_told.push_back(what == DetectorStep::What::LongPressDue
                             ? std::to_string(code) + " due " + std::to_string(due)
                             : std::to_string(code) + " ended");
    }};
};

} // namespace

TEST_F(LongPressMirrorTest, IsDueATimeoutAfterTheStampOfThePress)
{
    registerKey(KEY_A, InputEvent::Info, {700});
    process(KEY_A, 1, 10'000);
    EXPECT_THAT(take(), ElementsAre("30 due 10700"));
    EXPECT_EQ(dueKey(InputEvent::Info, 10'699), -1);
    EXPECT_EQ(dueKey(InputEvent::Info, 10'700), KEY_A);
    EXPECT_EQ(dueKey(InputEvent::Mute, 10'700), -1);
}

TEST_F(LongPressMirrorTest, MeasuresTheNextTimeoutFromTheReportAndRepeatsTheLast)
{
    registerKey(KEY_A, InputEvent::VolumeUp, {800, 200}, true);
    process(KEY_A, 1, 10'000);
    mirror().reported(KEY_A, 10'830);
    mirror().reported(KEY_A, 11'040);
    EXPECT_THAT(take(), ElementsAre("30 due 10800", "30 due 11030", "30 due 11240"));
    EXPECT_EQ(dueKey(InputEvent::VolumeUp, 11'239), -1);
    EXPECT_EQ(dueKey(InputEvent::VolumeUp, 11'240), KEY_A);
}

TEST_F(LongPressMirrorTest, IsDueOnceIfItDoesNotRepeat)
{
    registerKey(KEY_A, InputEvent::Info, {700, 100});
    process(KEY_A, 1, 10'000);
    take();
    mirror().reported(KEY_A, 10'700);
    EXPECT_THAT(take(), IsEmpty());
    EXPECT_EQ(dueKey(InputEvent::Info, 60'000), -1);
}

TEST_F(LongPressMirrorTest, StartsWithTheFirstTimeoutAfterARelease)
{
    registerKey(KEY_A, InputEvent::VolumeUp, {800, 200}, true);
    process(KEY_A, 1, 10'000);
    mirror().reported(KEY_A, 10'800);
    process(KEY_A, 0, 10'900);
    EXPECT_EQ(dueKey(InputEvent::VolumeUp, 60'000), -1);
    take();
    process(KEY_A, 0, 10'950);
    process(KEY_A, 1, 20'000);
    // Nothing ends twice.
    EXPECT_THAT(take(), ElementsAre("30 due 20800"));
}

TEST_F(LongPressMirrorTest, StaysAtItsTimeoutWhenAPressComesDuringAHold)
{
    registerKey(KEY_A, InputEvent::VolumeUp, {800, 200}, true);
    process(KEY_A, 1, 10'000);
    mirror().reported(KEY_A, 10'800);
    take();
    process(KEY_A, 2, 10'900);
    EXPECT_THAT(take(), ElementsAre("30 due 11100"));
}

TEST_F(LongPressMirrorTest, NamesTheKeyThatWasDueFirst)
{
    registerKey(KEY_A, InputEvent::Info, {700});
    registerKey(KEY_B, InputEvent::Info, {500});
    registerKey(KEY_C, InputEvent::Info, {500});
    process(KEY_A, 1, 10'000);
    process(KEY_C, 1, 10'100);
    process(KEY_B, 1, 10'100);
    EXPECT_EQ(dueKey(InputEvent::Info, 11'000), KEY_C);
    mirror().reported(KEY_C, 11'000);
    EXPECT_EQ(dueKey(InputEvent::Info, 11'000), KEY_B);
    mirror().reported(KEY_B, 11'000);
    EXPECT_EQ(dueKey(InputEvent::Info, 11'000), KEY_A);
}

TEST_F(LongPressMirrorTest, LosesItsLongPressWhenItIsRegisteredAnewUnlessByTheBus)
{
    registerKey(KEY_A, InputEvent::Info, {700});
    registerKey(KEY_A, InputEvent::Mute, {}, false, InputEvent::Bus::USB);
    process(KEY_A, 1, 10'000);
    EXPECT_EQ(dueKey(InputEvent::Mute, 11'000), KEY_A);
    process(KEY_A, 0, 11'000);
    registerKey(KEY_A, InputEvent::Info, {});
    take();
    process(KEY_A, 1, 12'000);
    EXPECT_THAT(take(), IsEmpty());
    EXPECT_EQ(dueKey(InputEvent::Info, 60'000), -1);
}
