#include "ObservedKeyHandler.h"
#include "ProductFixture.h"

using namespace Vorn::Sim;
using namespace Vorn::Workbench;
using testing::Contains;
using testing::ElementsAre;

namespace {

class ObservedKeyHandlerTest : public ProductFixture
{ };

} // namespace

TEST_F(ObservedKeyHandlerTest, LogsARecordBeforeWhatItLeadsTo)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_STOP);
    panel.release(KEY_STOP);
    EXPECT_THAT(take(),
                ElementsAre("KEY_STOP press", "KEY_STOP release",
                            "[cmd=Stop, state=KeyPressed, bus=LocalUI] of KEY_STOP after 0",
                            "[cmd=Stop, state=KeyReleased, bus=LocalUI] of KEY_STOP after 0"));
}

TEST_F(ObservedKeyHandlerTest, LogsWhenALongPressIsDueAndWhenItComes)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    const qint64 pressed = clock().elapsed().count();
    panel.press(KEY_VOLUMEUP);
    const auto due = [&](qint64 ms) {
        return "[due KEY_VOLUMEUP " + std::to_string(pressed + ms) + "]";
    };
    EXPECT_THAT(take(),
                ElementsAre("KEY_VOLUMEUP press", due(800),
                            "[cmd=VolumeUp, state=KeyPressed, bus=LocalUI] of KEY_VOLUMEUP "
                            "after 0"));
    wait(840);
    const auto entries = take();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_THAT(entries.front(),
                testing::MatchesRegex("\\[cmd=VolumeUp, state=KeyLongPress, bus=LocalUI\\] of "
                                      "KEY_VOLUMEUP after [0-9]+"));
    EXPECT_THAT(entries.back(), testing::StartsWith("[due KEY_VOLUMEUP 1"));
    panel.release(KEY_VOLUMEUP);
    EXPECT_THAT(
        take(),
        ElementsAre("KEY_VOLUMEUP release", "[ended KEY_VOLUMEUP]",
                    "[cmd=VolumeUp, state=KeyReleased, bus=LocalUI] of KEY_VOLUMEUP after 0"));
}

TEST_F(ObservedKeyHandlerTest, LogsOnlyTheFirstLongPressOfAKeyThatDoesNotRepeat)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_INFO);
    wait(5000);
    const auto entries = take();
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_THAT(entries.at(1), testing::StartsWith("[due KEY_INFO"));
    EXPECT_THAT(entries.at(2), testing::StartsWith("[cmd=Info, state=KeyLongPress, bus=LocalUI]"));
}

TEST_F(ObservedKeyHandlerTest, LogsWhatTheChordDetectorDoes)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_STOP);
    panel.press(KEY_PLAY);
    EXPECT_THAT(take(),
                ElementsAre("KEY_STOP press", "KEY_PLAY press", "[withdrawn KEY_STOP]",
                            "[chord KEY_STOP+KEY_PLAY]",
                            "[cmd=FactoryReset, state=KeyPressed, bus=LocalUI] of "
                            "KEY_STOP+KEY_PLAY after 0"));
    panel.press(KEY_INFO);
    EXPECT_THAT(take(), ElementsAre("KEY_INFO press", "[dropped KEY_INFO]"));
    panel.release(KEY_STOP);
    EXPECT_THAT(take(), ElementsAre("KEY_STOP release"));
    panel.release(KEY_PLAY);
    EXPECT_THAT(take(),
                ElementsAre("KEY_PLAY release", "[released KEY_STOP+KEY_PLAY]",
                            "[cmd=FactoryReset, state=KeyReleased, bus=LocalUI] of "
                            "KEY_STOP+KEY_PLAY after 0"));
    panel.release(KEY_INFO);
    EXPECT_THAT(take(), ElementsAre("KEY_INFO release", "[dropped KEY_INFO]"));
}

TEST_F(ObservedKeyHandlerTest, AttributesTheReleaseOfAWithdrawnKeyToThatKey)
{
    Profile profile = panelProfile();
    profile.devices[0].handlers[0].keys[2].immediate = true;
    start(profile);
    InputNode &panel = plugPanel();
    panel.press(KEY_STOP);
    take();
    panel.press(KEY_PLAY);
    const auto entries = take();
    EXPECT_THAT(entries,
                Contains("[cmd=Stop, state=KeyReleased, bus=LocalUI] of KEY_STOP after 0"));
    EXPECT_THAT(entries,
                Contains("[cmd=FactoryReset, state=KeyPressed, bus=LocalUI] of KEY_STOP+KEY_PLAY "
                         "after 0"));
}

TEST_F(ObservedKeyHandlerTest, LogsAnUnmappedPair)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_INFO);
    panel.press(KEY_STOP);
    const auto entries = take();
    EXPECT_THAT(entries, Contains("[chord KEY_INFO+KEY_STOP unmapped]"));
    EXPECT_THAT(entries,
                Contains("[cmd=Stop, state=KeyPressed, bus=LocalUI] of KEY_INFO+KEY_STOP after 0")
                    .Times(0));
    EXPECT_THAT(entries, Contains("[cmd=Stop, state=KeyPressed, bus=LocalUI] of KEY_STOP after 0"));
    // Whichever key is the last to come up, the second one is reported.
    panel.release(KEY_STOP);
    panel.release(KEY_INFO);
    EXPECT_THAT(take(), Contains("[cmd=Stop, state=KeyReleased, bus=LocalUI] of KEY_STOP after 0"));
}

TEST_F(ObservedKeyHandlerTest, FollowsTheBusFilter)
{
    Profile profile = panelProfile();
    auto &keys = profile.devices[0].handlers[0].keys;
    keys = {keyOf(KEY_INFO, InputEvent::Info, true, {700}),
            keyOf(KEY_STOP, InputEvent::Stop, true, {700})};
    keys[0].bus = InputEvent::Bus::USB;
    keys[1].bus = InputEvent::Bus::LocalUI;
    profile.devices[0].handlers[0].chords.clear();
    start(profile);
    InputNode &panel = plugPanel();
    panel.press(KEY_INFO);
    panel.release(KEY_INFO);
    EXPECT_THAT(take(), ElementsAre("KEY_INFO press", "KEY_INFO release"));
    panel.press(KEY_STOP);
    wait(1000);
    const auto entries = take();
    EXPECT_EQ(entries.size(), 4U);
    EXPECT_THAT(entries.back(), testing::StartsWith("[cmd=Stop, state=KeyLongPress"));
}
