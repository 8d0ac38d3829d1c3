#include "ObservedKeyHandler.h"
#include "ProductFixture.h"

using namespace Vorn::Sim;
using namespace Vorn;
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

TEST_F(ObservedKeyHandlerTest, FindsNoChordThatASelectionEndedBeforeItBegan)
{
    Profile profile = panelProfile();
    profile.devices[0].handlers[0].keys[2].immediate = true;
    profile.select = {SelectRule{InputEvent::Stop, InputEvent::KeyReleased, "text"}};
    start(profile);
    InputNode &panel = plugPanel();
    panel.press(KEY_STOP);
    take();
    panel.press(KEY_PLAY);
    // The release that the chord detector makes up selects, which resets the detector.
    EXPECT_THAT(take(),
                ElementsAre("KEY_PLAY press", "[withdrawn KEY_STOP]",
                            "[cmd=Stop, state=KeyReleased, bus=LocalUI] of KEY_STOP after 0",
                            "select text", "[forgotten KEY_STOP+KEY_PLAY]"));
}

TEST_F(ObservedKeyHandlerTest, KnowsTheKeyAndTheLatencyOfEveryLongPress)
{
    Profile profile = panelProfile();
    profile.devices[0].handlers[0].keys[1].longPress = LongPress{{700, 100}, true};
    // Another key with the same command is no reason to guess.
    profile.devices[0].handlers[0].keys[0] =
        keyOf(KEY_INFO, InputEvent::VolumeUp, true, {650, 150}, true);
    start(profile);
    InputNode &panel = plugPanel();
    panel.press(KEY_VOLUMEUP);
    wait(60'000);
    int count = 0;
    for (const SessionEntry &entry : entries()) {
        const auto *event = std::get_if<EventPublished>(&entry.what);
        if (!event || event->state != InputEvent::KeyLongPress)
            continue;
        ++count;
        EXPECT_EQ(event->device.toStdString(), "/dev/input/event0");
        EXPECT_EQ(event->codes, QVector<int>{KEY_VOLUMEUP});
        ASSERT_TRUE(event->latency);
        EXPECT_GE(*event->latency, 0);
        EXPECT_LE(*event->latency, 55'000);
    }
    EXPECT_GT(count, 300);
}

TEST_F(ObservedKeyHandlerTest, SaysWhenAResetStopsTheTimerAndWhenItRunsAgain)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_VOLUMEUP);
    take();
    devices().selectHandler("text");
    EXPECT_THAT(take(),
                ElementsAre("select text", "[forgotten KEY_VOLUMEUP]", "[ended KEY_VOLUMEUP]"));
    devices().selectHandler("");
    wait(2000);
    take();
    const std::string due =
        "[due KEY_INFO " + std::to_string(clock().elapsed().count() + 700) + "]";
    panel.press(KEY_INFO);
    // The first key is still down for the long-press detector, and overdue since long.
    EXPECT_THAT(take(),
                ElementsAre("KEY_INFO press", testing::StartsWith("[due KEY_VOLUMEUP"), due));
    wait(60);
    EXPECT_THAT(take(), Contains(testing::StartsWith("[cmd=VolumeUp, state=KeyLongPress")));
}

TEST_F(ObservedKeyHandlerTest, EndsTheTimingOfADeviceThatGoes)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_VOLUMEUP);
    take();
    subsystem().unplug(0);
    clock().waitUntil([&] { return devices().devices().isEmpty(); });
    // No release has come to end it.
    EXPECT_THAT(take(),
                ElementsAre("[ended KEY_VOLUMEUP]", "-/dev/input/event0 front-panel LocalUI"));
}

TEST_F(ObservedKeyHandlerTest, DoesNotMeasureItsOutput)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    // A terminal on a slow line: every entry takes a second to print.
    setSink([this](const SessionEntry &) { clock().stepWallClock(std::chrono::seconds(1)); });
    const qint64 now = clock().now();
    panel.send({InputNode::record(EV_KEY, KEY_STOP, 1, now), InputNode::record(EV_SYN, 0, 0, now),
                InputNode::record(EV_KEY, KEY_STOP, 0, now), InputNode::record(EV_SYN, 0, 0, now)});
    EXPECT_THAT(take(),
                ElementsAre("KEY_STOP press", "KEY_STOP release",
                            "[cmd=Stop, state=KeyPressed, bus=LocalUI] of KEY_STOP after 0",
                            "[cmd=Stop, state=KeyReleased, bus=LocalUI] of KEY_STOP after 0"));
}

TEST_F(ObservedKeyHandlerTest, SaysWhatBecameOfEachRecord)
{
    Profile profile = panelProfile();
    HandlerProfile text;
    text.identifiers = QStringList{"text"};
    text.keys = {keyOf(KEY_PLAY, InputEvent::Confirm, true)};
    profile.devices[0].handlers += text;
    profile.devices[0].handlers[0].keys[3].command = InputEvent::None;
    start(profile);
    InputNode &panel = plugPanel();
    panel.press(KEY_INFO);
    panel.release(KEY_INFO);
    panel.press(KEY_PLAY);
    panel.release(KEY_PLAY);
    EXPECT_THAT(takeOutcomes(),
                ElementsAre(testing::MatchesRegex("KEY_INFO press held back until the release or "
                                                  "the long press due at [0-9.]+ s"),
                            "KEY_INFO release Info KeyPressed, Info KeyReleased",
                            "KEY_PLAY press mapped to None, which is never published",
                            "KEY_PLAY release mapped to None, which is never published"));
    panel.press(KEY_STOP);
    panel.press(KEY_PLAY);
    panel.press(KEY_INFO);
    panel.release(KEY_STOP);
    panel.release(KEY_PLAY);
    EXPECT_THAT(takeOutcomes(),
                ElementsAre("KEY_STOP press held back until the release",
                            "KEY_PLAY press FactoryReset KeyPressed",
                            testing::MatchesRegex("KEY_INFO press dropped, since KEY_STOP \\+ "
                                                  "KEY_PLAY are down since [0-9.]+ s"),
                            "KEY_STOP release KEY_STOP + KEY_PLAY are a pair until both are up",
                            "KEY_PLAY release FactoryReset KeyReleased"));
    panel.release(KEY_INFO);
    clock().settle();
    devices().selectHandler("text");
    panel.press(KEY_STOP);
    clock().settle();
    devices().selectHandler("");
    panel.release(KEY_STOP);
    EXPECT_THAT(takeOutcomes(),
                ElementsAre("KEY_INFO release dropped: a release without a press",
                            "KEY_STOP press not mapped under identifier 'text', but under ''",
                            "KEY_STOP release dropped: a release without a press"));
}

TEST_F(ObservedKeyHandlerTest, SaysThatAKeyIsMappedOnlyInAChord)
{
    Profile profile = panelProfile();
    profile.devices[0].handlers[0].keys.remove(2, 2);
    start(profile);
    InputNode &panel = plugPanel();
    panel.press(KEY_STOP);
    EXPECT_THAT(takeOutcomes(), ElementsAre("KEY_STOP press mapped only together with KEY_PLAY"));
}

TEST_F(ObservedKeyHandlerTest, SaysWhenASelectionEndedAPress)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_STOP);
    clock().settle();
    devices().selectHandler("text");
    devices().selectHandler("");
    take();
    panel.release(KEY_STOP);
    EXPECT_THAT(takeOutcomes(),
                ElementsAre(testing::MatchesRegex(
                    "KEY_STOP release dropped: the handlers were selected at [0-9.]+ s, which "
                    "ended its press")));
}

TEST_F(ObservedKeyHandlerTest, StatesWhatTheLibraryBelieves)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_INFO);
    panel.press(KEY_PLAY);
    take();
    devices().logStates();
    ASSERT_EQ(entries().size(), 1);
    const auto *states = std::get_if<KeyStates>(&entries().first().what);
    ASSERT_TRUE(states);
    EXPECT_TRUE(states->hasHandler);
    EXPECT_TRUE(states->isChord);
    ASSERT_EQ(states->keys.size(), 2);
    const KeyState &play = states->keys.first();
    EXPECT_EQ(play.code, KEY_PLAY);
    EXPECT_TRUE(play.isDown);
    EXPECT_FALSE(play.isWithdrawn);
    const KeyState &info = states->keys.last();
    EXPECT_EQ(info.code, KEY_INFO);
    EXPECT_TRUE(info.isDown);
    EXPECT_TRUE(info.isWithdrawn);
    // The synthetic release ended both the hold and its timing.
    EXPECT_FALSE(info.isHeld);
    EXPECT_FALSE(info.isCounting);
}

TEST_F(ObservedKeyHandlerTest, SaysWhenASetClockPutsALongPressOff)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    const qint64 pressed = clock().elapsed().count();
    panel.press(KEY_INFO);
    take();
    clock().stepWallClock(std::chrono::seconds(-10));
    wait(100);
    EXPECT_THAT(take(), ElementsAre("[due KEY_INFO " + std::to_string(pressed + 10'700) + "]"));
    wait(100);
    EXPECT_THAT(take(), ElementsAre()) << "once";
}

TEST_F(ObservedKeyHandlerTest, SaysUnderWhichIdentifierADetectorDidSomething)
{
    Profile profile = panelProfile();
    profile.initial = QStringLiteral("text");
    profile.devices[0].handlers[0].identifiers = QStringList{"text"};
    start(profile);
    InputNode &panel = plugPanel();
    panel.press(KEY_INFO);
    clock().settle();
    int steps = 0;
    for (const SessionEntry &entry : entries()) {
        if (const auto *step = std::get_if<DetectorStep>(&entry.what)) {
            EXPECT_EQ(step->identifier.toStdString(), "text");
            EXPECT_EQ(step->device.toStdString(), "/dev/input/event0");
            ++steps;
        }
    }
    EXPECT_EQ(steps, 1);
}

TEST_F(ObservedKeyHandlerTest, SaysSinceWhenAChordKeepsOtherKeysAway)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_STOP);
    clock().settle();
    wait(300);
    panel.press(KEY_PLAY);
    clock().settle();
    const qint64 since = clock().elapsed().count();
    const std::string time =
        QString::number(static_cast<double>(since) / 1000, 'f', 3).toStdString() + " s";
    wait(700);
    takeOutcomes();
    panel.press(KEY_INFO);
    EXPECT_THAT(
        takeOutcomes(),
        ElementsAre("KEY_INFO press dropped, since KEY_STOP + KEY_PLAY are down since " + time));
    panel.release(KEY_STOP);
    panel.release(KEY_INFO);
    EXPECT_THAT(takeOutcomes(),
                ElementsAre("KEY_STOP release KEY_STOP + KEY_PLAY are a pair until both are up",
                            "KEY_INFO release dropped, since KEY_PLAY of the chord KEY_STOP + "
                            "KEY_PLAY, begun at "
                                + time + ", is still down"));
}
