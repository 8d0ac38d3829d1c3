#include "Hints.h"

#include <gmock/gmock.h>

#include <linux/input.h>

using namespace Vorn;
using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const QString panel = QStringLiteral("/dev/input/event0");

class HintsTest : public testing::Test
{
protected:
    HintsTest()
    {
        m_hints.add({0, DeviceChange{panel, "front-panel", InputEvent::Bus::LocalUI, true}},
                    nullptr, {});
    }

    /// @param stamp of a record, µs. All are read at once, as by a process that was stopped: only
    /// their stamps tell how long a key was held.
    std::vector<std::string> add(qint64 stamp, const decltype(SessionEntry::what) &what,
                                 const Profile *profile = nullptr, const QString &identifier = {})
    {
        SessionEntry entry{0, what};
        if (auto *record = std::get_if<RecordRead>(&entry.what))
            record->stamp = 1'700'000'000'000'000 + stamp;
        const auto hint = m_hints.add(entry, profile, identifier);
        m_device = hint ? hint->device.toStdString() : std::string();
        return hint ? std::vector{hint->registration.toStdString()} : std::vector<std::string>();
    }

    /// Of the latest hint.
    const std::string &device() const { return m_device; }

private:
    Hints m_hints;
    std::string m_device;
};

RecordRead key(int code, int value)
{
    return RecordRead{panel, EV_KEY, code, value, 1};
}

Profile profileWith(const HandlerProfile &handler)
{
    Profile profile;
    DeviceProfile device;
    device.name = QStringLiteral("front-panel");
    device.handlers += handler;
    profile.devices += device;
    return profile;
}

} // namespace

TEST_F(HintsTest, ShowTheRegistrationOfAKeyOnce)
{
    EXPECT_THAT(add(0, key(KEY_INFO, 1)),
                ElementsAre("keys->registerKey(KEY_INFO, InputEvent::Info, false);"));
    EXPECT_THAT(add(0, key(KEY_INFO, 0)), IsEmpty());
    EXPECT_THAT(add(0, key(KEY_INFO, 1)), IsEmpty());
    EXPECT_THAT(add(0, key(KEY_VOLUMEUP, 1)),
                ElementsAre("keys->registerKey(KEY_VOLUMEUP, InputEvent::VolumeUp, true);"));
    EXPECT_THAT(add(0, key(KEY_F12, 1)),
                ElementsAre("keys->registerKey(KEY_F12, InputEvent::\u2026, false);"));
}

TEST_F(HintsTest, ShowTheLongPressOfAKeyThatWasHeld)
{
    add(0, key(KEY_INFO, 1));
    EXPECT_THAT(add(599'999, key(KEY_INFO, 0)), IsEmpty());
    add(1'000'000, key(KEY_INFO, 1));
    EXPECT_THAT(add(1'600'000, key(KEY_INFO, 0)),
                ElementsAre("keys->enableLongPress(KEY_INFO, false, {700});"));
}

TEST_F(HintsTest, ShowTheRegistrationOfAChordAndOfASwitch)
{
    DetectorStep chord;
    chord.what = DetectorStep::What::ChordFound;
    chord.device = panel;
    chord.keys = {KEY_STOP, KEY_PLAY};
    EXPECT_THAT(add(0, chord),
                ElementsAre("keys->registerDoubleKey(KEY_STOP, KEY_PLAY, InputEvent::\u2026);"));
    EXPECT_THAT(add(0, RecordRead{panel, EV_SW, SW_LINEIN_INSERT, 1, 1}),
                ElementsAre("switches->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);"));
}

TEST_F(HintsTest, ShowNoLongPressOfTheKeysOfAChord)
{
    add(0, key(KEY_STOP, 1));
    DetectorStep chord;
    chord.what = DetectorStep::What::ChordFound;
    chord.device = panel;
    chord.keys = {KEY_STOP, KEY_PLAY};
    add(0, chord);
    EXPECT_THAT(add(5'000'000, key(KEY_STOP, 0)), IsEmpty());
}

TEST_F(HintsTest, SayNothingOfWhatIsRegisteredUnderTheIdentifier)
{
    HandlerProfile handler;
    handler.identifiers = QStringList{QStringLiteral("browse")};
    handler.keys += KeyMapping{KEY_INFO, InputEvent::Info, false, {}, {}};
    handler.chords += ChordMapping{KEY_STOP, KEY_PLAY, InputEvent::FactoryReset, {}};
    handler.switches += SwitchMapping{SW_LINEIN_INSERT, InputEvent::SWLineIn};
    const Profile profile = profileWith(handler);

    for (const int code : {KEY_INFO, KEY_STOP, KEY_PLAY})
        EXPECT_THAT(add(0, key(code, 1), &profile, "browse"), IsEmpty());
    EXPECT_THAT(add(0, RecordRead{panel, EV_SW, SW_LINEIN_INSERT, 1, 1}, &profile, "browse"),
                IsEmpty());
    EXPECT_EQ(add(0, key(KEY_MUTE, 1), &profile, "browse").size(), 1U);
    EXPECT_EQ(add(0, key(KEY_INFO, 1), &profile, "text").size(), 1U);
}

TEST_F(HintsTest, SayNothingOfOtherRecords)
{
    EXPECT_THAT(add(0, RecordRead{panel, EV_MSC, MSC_SCAN, 7, 1}), IsEmpty());
    EXPECT_THAT(add(0, RecordRead{panel, EV_SYN, SYN_REPORT, 0, 1}), IsEmpty());
    EXPECT_THAT(add(0, IdentifierSelected{"text"}), IsEmpty());
}

TEST_F(HintsTest, NameTheDevice)
{
    add(0, key(KEY_INFO, 1));
    EXPECT_EQ(device(), "front-panel (event0)");
    const QString twin = QStringLiteral("/dev/input/event1");
    add(0, DeviceChange{twin, "front-panel", InputEvent::Bus::LocalUI, true});
    EXPECT_EQ(add(0, RecordRead{twin, EV_KEY, KEY_INFO, 1, 1}).size(), 1U);
    EXPECT_EQ(device(), "front-panel (event1)");
    add(0, RecordRead{"/dev/input/event2", EV_KEY, KEY_INFO, 1, 1});
    EXPECT_EQ(device(), "event2");
}

TEST_F(HintsTest, ShowARegistrationAgainForAnotherIdentifier)
{
    HandlerProfile handler;
    handler.identifiers = QStringList{QStringLiteral("other")};
    const Profile profile = profileWith(handler);
    EXPECT_EQ(add(0, key(KEY_INFO, 1), &profile, "browse").size(), 1U);
    EXPECT_THAT(add(0, key(KEY_INFO, 1), &profile, "browse"), IsEmpty());
    EXPECT_EQ(add(0, key(KEY_INFO, 1), &profile, "text").size(), 1U);
}

TEST_F(HintsTest, TimeAHoldFromItsPressAndNotFromItsRepeats)
{
    EXPECT_THAT(add(0, key(KEY_INFO, 2)), IsEmpty());
    EXPECT_THAT(add(700'000, key(KEY_INFO, 0)), IsEmpty()) << "never pressed";
    add(1'000'000, key(KEY_INFO, 1));
    EXPECT_THAT(add(1'500'000, key(KEY_INFO, 2)), IsEmpty());
    EXPECT_EQ(add(1'700'000, key(KEY_INFO, 0)).size(), 1U);
    add(2'000'000, key(KEY_MENU, 1));
    add(2'100'000, key(KEY_MENU, 0));
    EXPECT_THAT(add(9'000'000, key(KEY_MENU, 0)), IsEmpty()) << "released already";
}

TEST_F(HintsTest, ShowNoLongPressOfEitherKeyOfAChord)
{
    add(0, key(KEY_STOP, 1));
    add(0, key(KEY_PLAY, 1));
    add(0, key(KEY_INFO, 1));
    DetectorStep chord;
    chord.what = DetectorStep::What::ChordFound;
    chord.device = panel;
    chord.keys = {KEY_STOP, KEY_PLAY};
    add(0, chord);
    EXPECT_THAT(add(5'000'000, key(KEY_STOP, 0)), IsEmpty());
    EXPECT_THAT(add(5'000'000, key(KEY_PLAY, 0)), IsEmpty());
    EXPECT_EQ(add(5'000'000, key(KEY_INFO, 0)).size(), 1U) << "a third key";
}

TEST_F(HintsTest, SayNothingOfOtherStepsAndOfChordsWhereThereIsAProfile)
{
    const Profile profile = profileWith({});
    DetectorStep step;
    step.device = panel;
    step.keys = {KEY_STOP, KEY_PLAY};
    step.what = DetectorStep::What::ChordReleased;
    EXPECT_THAT(add(0, step), IsEmpty());
    step.what = DetectorStep::What::ChordFound;
    EXPECT_THAT(add(0, step, &profile), IsEmpty());
    EXPECT_EQ(add(0, step).size(), 1U);
    EXPECT_THAT(add(0, step), IsEmpty()) << "once";
    step.keys = {KEY_STOP, KEY_PLAY, KEY_INFO};
    EXPECT_THAT(add(0, step), IsEmpty());
    step.keys = {KEY_STOP};
    EXPECT_THAT(add(0, step), IsEmpty());
}

TEST_F(HintsTest, ForgetTheNameOfADeviceThatIsGone)
{
    add(0, DeviceChange{panel, "front-panel", InputEvent::Bus::LocalUI, false});
    add(0, key(KEY_INFO, 1));
    EXPECT_EQ(device(), "event0");
}

TEST(Hints, MakeKeysImmediateThatAreHeldOrTyped)
{
    using E = InputEvent;
    for (const E::Command command :
         {E::CursorLeft, E::CursorRight, E::CursorUp, E::CursorDown, E::CursorPageUp,
          E::CursorPageDown, E::VolumeUp, E::VolumeDown, E::PlaySpeedUp, E::PlaySpeedDown,
          E::PushToTalk, E::Backspace, E::Delete, E::CharSpace, E::Number0, E::CharTilde})
        EXPECT_TRUE(isUsuallyImmediate(command)) << command;
    for (const E::Command command : {E::None, E::Confirm, E::Cancel, E::StartPlay, E::Mute,
                                     E::Power, E::Info, E::SWLineIn, E::FactoryReset, E::Preset0})
        EXPECT_FALSE(isUsuallyImmediate(command)) << command;
}
