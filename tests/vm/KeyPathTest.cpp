#include "GuestTest.h"
#include "UinputDevice.h"

#include <QElapsedTimer>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

/// A front panel with keys and a jack, and a product that listens to it.
class KeyPathTest : public GuestTest
{
protected:
    void SetUp() override
    {
        GuestTest::SetUp();
        devices.onAdd = [this](const QString &node, const QString &name) {
            keys = new BasicKeyInputHandler(name);
            devices.addKeyHandler(node, keys, QString());
            switches = new BasicSwInputHandler(name);
            devices.addSwitchHandler(node, switches, QString());
        };
        ASSERT_TRUE(waitFor([this] { return switches != nullptr; }));
        keys->registerKey(KEY_OK, InputEvent::Confirm, true);
        log.clear();
    }

    /// Checks that nothing is pending: this key's events are the first to arrive.
    void expectNothingBeforeASentinel()
    {
        panel.press(KEY_OK);
        panel.release(KEY_OK);
        EXPECT_THAT(waitForEvents(2),
                    ElementsAre(local(InputEvent::Confirm, InputEvent::KeyPressed),
                                local(InputEvent::Confirm, InputEvent::KeyReleased)));
    }

    UinputDevice panel{{"front-panel",
                        BUS_HOST,
                        {KEY_OK, KEY_INFO, KEY_STOP, KEY_PLAY, KEY_VOLUMEUP, KEY_VOLUMEDOWN},
                        {SW_LINEIN_INSERT}}};
    Devices devices;
    BasicKeyInputHandler *keys = nullptr;
    BasicSwInputHandler *switches = nullptr;
};

TEST_F(KeyPathTest, AnImmediateKeyIsReportedOnPressAndRelease)
{
    keys->registerKey(KEY_VOLUMEUP, InputEvent::VolumeUp, true);
    panel.press(KEY_VOLUMEUP);
    EXPECT_THAT(waitForEvents(1), ElementsAre(local(InputEvent::VolumeUp, InputEvent::KeyPressed)));
    panel.release(KEY_VOLUMEUP);
    EXPECT_THAT(waitForEvents(1),
                ElementsAre(local(InputEvent::VolumeUp, InputEvent::KeyReleased)));
    // Both listeners read the press; only the key listener handles it.
    EXPECT_THAT(
        log.texts(),
        IsSupersetOf({" type: 1 code:115 value:1", " type: 0 code:0 value:0", "key:115 value 1",
                      "Device: front-panel; id: ; command [cmd=VolumeUp, state=KeyPressed]",
                      "Vorn::InputEvent(16) press", " type: 1 code:115 value:0", "key:115 value 0",
                      "Found already event for code:115", "Vorn::InputEvent(16) release"}));
    EXPECT_THAT(log.texts(),
                Contains(MatchesRegex("Stored:\\(input_event: code:115 value:press "
                                      "time:[0-9:,]+\\)")));
}

TEST_F(KeyPathTest, ADeferredKeyIsReportedAsAClickOnRelease)
{
    keys->registerKey(KEY_INFO, InputEvent::Info, false);
    panel.press(KEY_INFO);
    panel.release(KEY_INFO);
    EXPECT_THAT(waitForEvents(2),
                ElementsAre(local(InputEvent::Info, InputEvent::KeyPressed),
                            local(InputEvent::Info, InputEvent::KeyReleased)));
    const std::vector<std::string> texts = log.texts();
    const auto release = std::find(texts.begin(), texts.end(), "key:358 value 0");
    const auto report = std::find(texts.begin(), texts.end(), "Vorn::InputEvent(32) press");
    ASSERT_NE(report, texts.end());
    EXPECT_LT(release, report) << "the press was reported before the release";
}

TEST_F(KeyPathTest, ALongPressFollowsItsListAndRepeatsTheLastEntry)
{
    keys->registerKey(KEY_VOLUMEDOWN, InputEvent::VolumeDown, true);
    keys->enableLongPress(KEY_VOLUMEDOWN, true, {600, 200});
    std::vector<qint64> times;
    QElapsedTimer clock;
    events.onEvent([&](const InputEvent &) { times.push_back(clock.elapsed()); });
    clock.start();
    panel.press(KEY_VOLUMEDOWN);
    ASSERT_TRUE(waitFor([this] { return events.texts().size() >= 5; }));
    panel.release(KEY_VOLUMEDOWN);
    ASSERT_TRUE(waitFor([this] {
        return events.texts().back() == local(InputEvent::VolumeDown, InputEvent::KeyReleased);
    }));
    // Another one may have been due before the release was read.
    std::vector<std::string> texts = events.take();
    ASSERT_GE(texts.size(), 6U);
    EXPECT_EQ(texts.front(), local(InputEvent::VolumeDown, InputEvent::KeyPressed));
    for (std::size_t i = 1; i + 1 < texts.size(); ++i)
        EXPECT_EQ(texts[i], local(InputEvent::VolumeDown, InputEvent::KeyLongPress)) << i;
    // Never early, apart from the fraction of a millisecond that stamps do not show; how late
    // depends on the machine.
    for (std::size_t i = 1; i + 1 < texts.size(); ++i)
        EXPECT_GE(times[i], 599 + 200 * static_cast<qint64>(i - 1)) << i;
    EXPECT_THAT(log.texts(), Contains("Vorn::InputEvent(17) long press"));

    // The next hold starts with the first entry again.
    times.clear();
    clock.start();
    panel.press(KEY_VOLUMEDOWN);
    ASSERT_TRUE(waitFor([&] { return times.size() >= 2; }));
    EXPECT_GE(times[1], 599);
    panel.release(KEY_VOLUMEDOWN);
}

TEST_F(KeyPathTest, ADeferredKeyEndsALongPressWithItsReleaseAlone)
{
    keys->registerKey(KEY_INFO, InputEvent::Info, false);
    keys->enableLongPress(KEY_INFO, false, {300});
    panel.press(KEY_INFO);
    EXPECT_THAT(waitForEvents(1), ElementsAre(local(InputEvent::Info, InputEvent::KeyLongPress)));
    panel.release(KEY_INFO);
    EXPECT_THAT(waitForEvents(1), ElementsAre(local(InputEvent::Info, InputEvent::KeyReleased)));
    expectNothingBeforeASentinel();
}

TEST_F(KeyPathTest, AChordWithdrawsItsFirstKey)
{
    keys->registerKey(KEY_STOP, InputEvent::Stop, false);
    keys->registerKey(KEY_PLAY, InputEvent::StartPlay, false);
    keys->registerDoubleKey(KEY_STOP, KEY_PLAY, InputEvent::FactoryReset);
    panel.press(KEY_STOP);
    panel.press(KEY_PLAY);
    EXPECT_THAT(waitForEvents(1),
                ElementsAre(local(InputEvent::FactoryReset, InputEvent::KeyPressed)));
    panel.release(KEY_STOP);
    panel.release(KEY_PLAY);
    EXPECT_THAT(waitForEvents(1),
                ElementsAre(local(InputEvent::FactoryReset, InputEvent::KeyReleased)));
    expectNothingBeforeASentinel();
    EXPECT_THAT(log.texts(),
                IsSupersetOf({"key:128 value 1", "key:128 value 0", "key:207 value 1",
                              "Vorn::InputEvent(44) press", "Vorn::InputEvent(44) release"}));
    EXPECT_THAT(log.texts(),
                Contains(MatchesRegex("Stored:\\(input_event: code:128 value:press time:[0-9:,]+, "
                                      "input_event: code:207 value:press time:[0-9:,]+\\)")));
}

TEST_F(KeyPathTest, AnImmediateFirstKeyIsReleasedWhenTheChordBegins)
{
    keys->registerKey(KEY_STOP, InputEvent::Stop, true);
    keys->registerDoubleKey(KEY_STOP, KEY_PLAY, InputEvent::FactoryReset);
    panel.press(KEY_STOP);
    EXPECT_THAT(waitForEvents(1), ElementsAre(local(InputEvent::Stop, InputEvent::KeyPressed)));
    panel.press(KEY_PLAY);
    EXPECT_THAT(waitForEvents(2),
                ElementsAre(local(InputEvent::Stop, InputEvent::KeyReleased),
                            local(InputEvent::FactoryReset, InputEvent::KeyPressed)));
    panel.release(KEY_PLAY);
    panel.release(KEY_STOP);
    EXPECT_THAT(waitForEvents(1),
                ElementsAre(local(InputEvent::FactoryReset, InputEvent::KeyReleased)));
    expectNothingBeforeASentinel();
}

TEST_F(KeyPathTest, ASwitchIsReportedOnEachChange)
{
    switches->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
    panel.set(SW_LINEIN_INSERT, true);
    EXPECT_THAT(waitForEvents(1),
                ElementsAre(local(InputEvent::SWLineIn, InputEvent::SwitchEnabled)));
    // The kernel does not report an unchanged position.
    panel.set(SW_LINEIN_INSERT, true);
    panel.set(SW_LINEIN_INSERT, false);
    EXPECT_THAT(waitForEvents(1),
                ElementsAre(local(InputEvent::SWLineIn, InputEvent::SwitchDisabled)));
    expectNothingBeforeASentinel();
    EXPECT_THAT(log.texts(),
                IsSupersetOf(
                    {" type: 5 code:13 value:1", " type: 5 code:13 value:0",
                     "Device: front-panel; id: ; command [cmd=SWLineIn, state=SwitchEnabled]",
                     "Vorn::InputEvent(40) switch enable", "Vorn::InputEvent(40) switch disable"}));
}

TEST_F(KeyPathTest, AnotherIdentifierForgetsAKeyThatIsDown)
{
    keys->registerKey(KEY_INFO, InputEvent::Info, false);
    keys->enableLongPress(KEY_INFO, true, {500, 100});
    auto *textKeys = new BasicKeyInputHandler(QStringLiteral("front-panel"));
    devices.addKeyHandler(panel.node(), textKeys, QStringLiteral("text"));
    textKeys->registerKey(KEY_INFO, InputEvent::Submit, false);
    textKeys->registerKey(KEY_PLAY, InputEvent::Search, false);
    textKeys->enableLongPress(KEY_PLAY, false, {1000});

    panel.press(KEY_INFO);
    ASSERT_TRUE(
        waitFor([this] { return testing::Matches(Contains("key:358 value 1"))(log.texts()); }));
    devices.selectHandler(QStringLiteral("text"));
    panel.release(KEY_INFO);
    // Its release is dropped, and its long press is never reported although another key's longer
    // timeout expires.
    panel.press(KEY_PLAY);
    EXPECT_THAT(waitForEvents(1), ElementsAre(local(InputEvent::Search, InputEvent::KeyLongPress)));
    panel.release(KEY_PLAY);
    EXPECT_THAT(waitForEvents(1), ElementsAre(local(InputEvent::Search, InputEvent::KeyReleased)));
    EXPECT_THAT(log.texts(),
                IsSupersetOf({"Received release for non existing press -> drop",
                              "Device: front-panel; id: text; command [cmd=Search, "
                              "state=KeyLongPress]"}));

    devices.selectHandler(QString());
    expectNothingBeforeASentinel();
    EXPECT_THAT(log.texts(), Not(Contains(StartsWith("Vorn::InputEvent(32)"))));
}

} // namespace
