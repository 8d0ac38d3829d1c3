#include "Learner.h"
#include "CommandNames.h"
#include "EventNames.h"
#include "Session.h"

#include <gmock/gmock.h>

#include <linux/input.h>

using namespace Vorn;
using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const QString panel = QStringLiteral("/dev/input/event0");
const QString remote = QStringLiteral("/dev/input/event1");

class LearnerTest : public testing::Test
{
protected:
    void learn(const QVector<InputEvent::Command> &commands, bool acceptsAll = false)
    {
        m_learner = std::make_unique<Learner>(commands, acceptsAll, [this](const QString &line) {
            m_said.push_back(line.toStdString());
        });
        m_learner->add({0, DeviceChange{panel, "front-panel", InputEvent::Bus::LocalUI, true}});
        m_learner->add({0, DeviceChange{remote, "ir-receiver", InputEvent::Bus::I2C, true}});
        m_said.clear();
        m_learner->start();
    }

    /// @param latenessMs how long the record waits until it is read
    void key(int code, int value, const QString &device = panel, int latenessMs = 0)
    {
        const qint64 stamp = 1'700'000'000'000'000 + m_now;
        m_learner->add({m_now + latenessMs * 1000, RecordRead{device, EV_KEY, code, value, stamp}});
    }

    void wait(int ms) { m_now += ms * 1000; }

    void click(int code, int ms = 100, const QString &device = panel)
    {
        key(code, 1, device);
        wait(ms);
        key(code, 0, device);
        wait(100);
    }

    Learner &learner() { return *m_learner; }
    std::string lastSaid() const { return m_said.empty() ? "" : m_said.back(); }
    const std::vector<std::string> &said() const { return m_said; }

    /// The handler of a device in what was learnt.
    HandlerProfile handlerOf(const QString &name) const
    {
        for (const DeviceProfile &device : m_learner->profile().devices) {
            if (device.name == name)
                return device.handlers.value(0);
        }
        return {};
    }

    std::vector<std::string> keysOf(const QString &name) const
    {
        std::vector<std::string> texts;
        for (const KeyMapping &key : handlerOf(name).keys) {
            QString text = keyName(key.code) + " " + commandName(key.command);
            if (key.immediate)
                text += " immediate";
            if (key.longPress) {
                for (const int timeout : key.longPress->timeouts)
                    text += " " + QString::number(timeout);
                text += key.longPress->repeat ? " repeat" : "";
            }
            texts.push_back(text.toStdString());
        }
        return texts;
    }

private:
    std::unique_ptr<Learner> m_learner;
    std::vector<std::string> m_said;
    qint64 m_now = 1'000'000;
};

} // namespace

TEST_F(LearnerTest, AsksForOneCommandAfterTheOther)
{
    learn({InputEvent::Info, InputEvent::Mute});
    EXPECT_THAT(lastSaid(), HasSubstr("[1/2] Info"));
    click(KEY_INFO);
    EXPECT_THAT(lastSaid(), HasSubstr("[2/2] Mute"));
    EXPECT_FALSE(learner().isFinished());
    click(KEY_MUTE, 100, remote);
    EXPECT_TRUE(learner().isFinished());
    EXPECT_THAT(keysOf("front-panel"), ElementsAre("KEY_INFO Info"));
    EXPECT_THAT(keysOf("ir-receiver"), ElementsAre("KEY_MUTE Mute"));
}

TEST_F(LearnerTest, MakesKeysThatFollowTheFingerImmediate)
{
    learn({InputEvent::VolumeUp, InputEvent::Confirm});
    click(KEY_VOLUMEUP);
    click(KEY_OK);
    EXPECT_THAT(keysOf("front-panel"),
                ElementsAre("KEY_VOLUMEUP VolumeUp immediate", "KEY_OK Confirm"));
}

TEST_F(LearnerTest, OffersALongPressForAKeyThatIsHeld)
{
    learn({InputEvent::Info, InputEvent::VolumeUp, InputEvent::Mute});
    click(KEY_INFO, 1200);
    EXPECT_THAT(lastSaid(), HasSubstr("held for 1.2 s: report a long press of KEY_INFO"));
    learner().answer('y');
    click(KEY_VOLUMEUP, 700);
    EXPECT_THAT(lastSaid(), HasSubstr("repeating"));
    learner().answer('\n');
    click(KEY_MUTE, 600);
    learner().answer('n');
    EXPECT_TRUE(learner().isFinished());
    EXPECT_THAT(keysOf("front-panel"),
                ElementsAre("KEY_INFO Info 700", "KEY_VOLUMEUP VolumeUp immediate 700 600 repeat",
                            "KEY_MUTE Mute"));
}

TEST_F(LearnerTest, MeasuresAHoldByItsRecordsNotByWhenTheyAreRead)
{
    learn({InputEvent::Info, InputEvent::Mute, InputEvent::Stop});
    key(KEY_INFO, 1, panel, 600);
    wait(1000);
    key(KEY_INFO, 0);
    EXPECT_THAT(lastSaid(), HasSubstr("held for 1.0 s: report a long press of KEY_INFO"));
    learner().answer('y');
    key(KEY_MUTE, 1);
    wait(200);
    key(KEY_MUTE, 0, panel, 600);
    EXPECT_THAT(said(), Contains(HasSubstr("KEY_MUTE on front-panel, 0.2 s")));
    EXPECT_THAT(keysOf("front-panel"), ElementsAre("KEY_INFO Info 700", "KEY_MUTE Mute"));
}

TEST_F(LearnerTest, TakesTheNextKeyForADeclinedOffer)
{
    learn({InputEvent::Info, InputEvent::Mute});
    click(KEY_INFO, 1200);
    click(KEY_MUTE);
    EXPECT_THAT(keysOf("front-panel"), ElementsAre("KEY_INFO Info", "KEY_MUTE Mute"));
}

TEST_F(LearnerTest, AcceptsEveryOfferIfToldSo)
{
    learn({InputEvent::Info, InputEvent::Mute}, true);
    click(KEY_INFO, 1200);
    EXPECT_THAT(lastSaid(), HasSubstr("[2/2] Mute"));
    EXPECT_THAT(keysOf("front-panel"), ElementsAre("KEY_INFO Info 700"));
}

TEST_F(LearnerTest, LearnsAChordOfTwoKeys)
{
    learn({InputEvent::FactoryReset});
    key(KEY_STOP, 1);
    wait(100);
    key(KEY_PLAY, 1);
    wait(900);
    key(KEY_STOP, 0);
    EXPECT_FALSE(learner().isFinished());
    key(KEY_PLAY, 0);
    EXPECT_TRUE(learner().isFinished());
    const HandlerProfile handler = handlerOf("front-panel");
    EXPECT_TRUE(handler.keys.isEmpty());
    ASSERT_EQ(handler.chords.size(), 1);
    EXPECT_EQ(handler.chords.first().first, KEY_STOP);
    EXPECT_EQ(handler.chords.first().second, KEY_PLAY);
    EXPECT_EQ(handler.chords.first().command, InputEvent::FactoryReset);
}

TEST_F(LearnerTest, RefusesAChordOfThree)
{
    learn({InputEvent::FactoryReset});
    for (const int code : {KEY_A, KEY_B, KEY_C})
        key(code, 1);
    for (const int code : {KEY_A, KEY_B, KEY_C})
        key(code, 0);
    EXPECT_THAT(lastSaid(), HasSubstr("KEY_A + KEY_B + KEY_C: the library supports chords of two"));
    EXPECT_FALSE(learner().isFinished());
    EXPECT_EQ(learner().learntCount(), 0);
}

TEST_F(LearnerTest, LearnsASwitchOnceThoughItIsMovedBack)
{
    learn({InputEvent::SWLineIn, InputEvent::SWLineOut});
    learner().add({0, RecordRead{panel, EV_SW, SW_LINEIN_INSERT, 1, 1}});
    EXPECT_THAT(lastSaid(), HasSubstr("[2/2] SWLineOut"));
    learner().add({0, RecordRead{panel, EV_SW, SW_LINEIN_INSERT, 0, 1}});
    EXPECT_FALSE(learner().isFinished());
    learner().add({0, RecordRead{panel, EV_SW, SW_LINEOUT_INSERT, 0, 1}});
    EXPECT_TRUE(learner().isFinished());
    const HandlerProfile handler = handlerOf("front-panel");
    ASSERT_EQ(handler.switches.size(), 2);
    EXPECT_EQ(handler.switches.first().code, SW_LINEIN_INSERT);
    EXPECT_EQ(handler.switches.last().command, InputEvent::SWLineOut);
    EXPECT_TRUE(handler.positionsAtStart);
}

TEST_F(LearnerTest, DoesNotGiveAKeyTwoMeanings)
{
    learn({InputEvent::Info, InputEvent::Mute});
    click(KEY_INFO);
    click(KEY_INFO);
    EXPECT_THAT(lastSaid(), HasSubstr("KEY_INFO already means Info"));
    EXPECT_FALSE(learner().isFinished());
    // The same code of another device is another key.
    click(KEY_INFO, 100, remote);
    EXPECT_TRUE(learner().isFinished());
}

TEST_F(LearnerTest, OffersTheLongPressOfAKeyThatIsAskedForAgain)
{
    learn({InputEvent::Info, InputEvent::Info});
    click(KEY_INFO);
    click(KEY_INFO, 1000);
    learner().answer('y');
    EXPECT_TRUE(learner().isFinished());
    EXPECT_THAT(keysOf("front-panel"), ElementsAre("KEY_INFO Info 700"));
}

TEST_F(LearnerTest, SkipsGoesBackAndFinishesAsAnswered)
{
    learn({InputEvent::Info, InputEvent::Mute, InputEvent::Power});
    learner().answer('\n');
    EXPECT_THAT(lastSaid(), HasSubstr("[2/3] Mute"));
    click(KEY_MUTE);
    learner().answer('b');
    EXPECT_THAT(lastSaid(), HasSubstr("[2/3] Mute"));
    EXPECT_EQ(learner().learntCount(), 0);
    click(KEY_M);
    learner().answer('q');
    EXPECT_TRUE(learner().isFinished());
    EXPECT_THAT(keysOf("front-panel"), ElementsAre("KEY_M Mute"));
    learner().answer('b');
    click(KEY_P);
    EXPECT_EQ(learner().learntCount(), 1);
}

TEST_F(LearnerTest, IgnoresOtherKeysOfTheTerminal)
{
    learn({InputEvent::Info});
    const auto before = said();
    for (const char key : {'y', 'n', 'x', '\t', '\0', '\x1b'})
        learner().answer(key);
    EXPECT_EQ(said(), before);
}

TEST_F(LearnerTest, IgnoresAutoRepeatAndReleasesWithoutAPress)
{
    learn({InputEvent::Info});
    key(KEY_INFO, 0);
    EXPECT_EQ(learner().learntCount(), 0);
    key(KEY_INFO, 1);
    key(KEY_INFO, 2);
    key(KEY_INFO, 2);
    key(KEY_INFO, 0);
    EXPECT_THAT(keysOf("front-panel"), ElementsAre("KEY_INFO Info"));
}

TEST_F(LearnerTest, ForgetsAKeyWhoseDeviceIsUnplugged)
{
    learn({InputEvent::Info});
    key(KEY_INFO, 1);
    learner().add({0, DeviceChange{panel, "front-panel", InputEvent::Bus::LocalUI, false}});
    click(KEY_SELECT, 100, remote);
    EXPECT_TRUE(learner().isFinished());
    EXPECT_THAT(keysOf("ir-receiver"), ElementsAre("KEY_SELECT Info"));
}

TEST_F(LearnerTest, IsFinishedAtOnceWithoutCommands)
{
    learn({});
    EXPECT_TRUE(learner().isFinished());
    EXPECT_TRUE(learner().profile().devices.isEmpty());
}

TEST_F(LearnerTest, TellsOfDevicesThatComeAndGo)
{
    learn({InputEvent::Info});
    learner().add({0, DeviceChange{"/dev/input/event2", "mouse", InputEvent::Bus::USB, true}});
    EXPECT_EQ(lastSaid(), "+ /dev/input/event2 mouse");
    learner().add({0, DeviceChange{"/dev/input/event2", "mouse", InputEvent::Bus::USB, false}});
    EXPECT_EQ(lastSaid(), "- /dev/input/event2 mouse");
}

TEST_F(LearnerTest, HasNoUseForOtherEntries)
{
    learn({InputEvent::Info});
    const auto before = said();
    learner().add({0, Remark{"a"}});
    learner().add({0, RecordRead{panel, EV_REL, REL_X, 1, 1}});
    EXPECT_EQ(said(), before);
    EXPECT_EQ(learner().learntCount(), 0);
}

TEST_F(LearnerTest, SaysEverythingInItsWords)
{
    learn({InputEvent::Info, InputEvent::VolumeUp, InputEvent::FactoryReset, InputEvent::SWLineIn,
           InputEvent::Mute});
    click(KEY_INFO, 1200);
    learner().answer('y');
    click(KEY_INFO);
    click(KEY_VOLUMEUP, 700);
    learner().answer('n');
    key(KEY_STOP, 1);
    key(KEY_PLAY, 1);
    wait(500);
    key(KEY_STOP, 0);
    key(KEY_PLAY, 0);
    learner().add({0, RecordRead{panel, EV_SW, SW_LINEIN_INSERT, 1, 1}});
    EXPECT_THAT(
        said(),
        ElementsAre(
            "[1/5] Info: press its key, two keys together, or move its switch",
            "      KEY_INFO on front-panel, 1.2 s",
            "      held for 1.2 s: report a long press of KEY_INFO after 700 ms? [Y/n]",
            "[2/5] VolumeUp: press its key, two keys together, or move its switch",
            "      KEY_INFO already means Info; press another key, or Enter to skip",
            "      KEY_VOLUMEUP on front-panel, 0.7 s",
            "      held for 0.7 s: report a long press of KEY_VOLUMEUP after 700 ms, repeating? "
            "[Y/n]",
            "[3/5] FactoryReset: press its key, two keys together, or move its switch",
            "      chord KEY_STOP + KEY_PLAY on front-panel, 0.5 s",
            "[4/5] SWLineIn: press its key, two keys together, or move its switch",
            "      switch SW_LINEIN_INSERT on front-panel",
            "[5/5] Mute: press its key, two keys together, or move its switch"));
}

TEST_F(LearnerTest, OffersNoLongPressForAChordThatIsAskedForAgain)
{
    learn({InputEvent::FactoryReset, InputEvent::FactoryReset, InputEvent::Mute});
    for (int time = 0; time < 2; ++time) {
        key(KEY_STOP, 1);
        key(KEY_PLAY, 1);
        wait(2000);
        key(KEY_STOP, 0);
        key(KEY_PLAY, 0);
    }
    EXPECT_THAT(lastSaid(), HasSubstr("[3/3] Mute"));
    EXPECT_EQ(learner().learntCount(), 1);
}

TEST_F(LearnerTest, OffersALongPressOfAKeyThatWasHeldForSixTenthsOfASecond)
{
    learn({InputEvent::Info, InputEvent::Mute, InputEvent::Stop});
    click(KEY_INFO, 599);
    EXPECT_THAT(lastSaid(), HasSubstr("[2/3] Mute"));
    click(KEY_MUTE, 600);
    EXPECT_THAT(lastSaid(), HasSubstr("held for 0.6 s: report"));
}

TEST_F(LearnerTest, LearnsAChordThoughAKeyOfItBounces)
{
    learn({InputEvent::FactoryReset});
    key(KEY_STOP, 1);
    key(KEY_PLAY, 1);
    key(KEY_STOP, 0);
    key(KEY_STOP, 1);
    key(KEY_STOP, 0);
    key(KEY_PLAY, 0);
    EXPECT_TRUE(learner().isFinished());
    EXPECT_EQ(handlerOf("front-panel").chords.size(), 1);
}
