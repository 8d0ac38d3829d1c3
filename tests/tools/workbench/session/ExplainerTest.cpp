#include "Explainer.h"

#include <gmock/gmock.h>

#include <linux/input.h>

#include <string>
#include <vector>

using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using What = RecordOutcome::What;

const QString panel = "/dev/input/event0";

class ExplainerTest : public testing::Test
{
protected:
    ExplainerTest() { add(0, DeviceChange{panel, "front-panel", InputEvent::Bus::LocalUI, true}); }

    template <typename Entry>
    void add(qint64 ms, const Entry &entry)
    {
        m_explainer.add(SessionEntry{ms * 1000, entry});
    }

    /// A record and what the session says became of it.
    void record(qint64 ms, int code, int value, What what, const QString &reason,
                const QStringList &events = {})
    {
        add(ms, RecordRead{panel, EV_KEY, code, value, ms * 1000});
        add(ms, RecordOutcome{what, panel, EV_KEY, code, value, events, reason});
    }

    std::vector<std::string> take() { return std::exchange(m_texts, {}); }
    Explainer &explainer() { return m_explainer; }

private:
    std::vector<std::string> m_texts;
    Explainer m_explainer{[this](const Explanation &explanation) {
        m_texts.push_back(
            std::to_string(explanation.time / 1000) + " " + std::to_string(explanation.code) + " "
            + explanation.events.join(", ").toStdString() + "|" + explanation.reason.toStdString()
            + (explanation.isAnswered ? "" : " (silent)"));
    }};
};

} // namespace

TEST_F(ExplainerTest, PassesOverAnOutcomeWithoutItsRecord)
{
    add(10, RecordOutcome{What::Dropped, panel, EV_KEY, KEY_STOP, 1, {}, "a third key"});
    record(20, KEY_INFO, 1, What::Dropped, "a third key");
    EXPECT_THAT(take(), ElementsAre("20 358 |a third key (silent)"));
}

TEST_F(ExplainerTest, ExplainsARecordAtOnceIfNothingCanFollow)
{
    record(10, KEY_STOP, 1, What::Published, {}, {"Stop KeyPressed"});
    record(20, KEY_INFO, 1, What::Dropped, "a third key");
    EXPECT_THAT(take(), ElementsAre("10 128 Stop KeyPressed|", "20 358 |a third key (silent)"));
}

TEST_F(ExplainerTest, WaitsForTheReleaseOfAKeyThatIsHeldBack)
{
    record(10, KEY_STOP, 1, What::Held, "held back until the release");
    record(20, KEY_INFO, 1, What::Unmapped, "not mapped");
    EXPECT_THAT(take(), IsEmpty());
    record(30, KEY_STOP, 0, What::Published, {}, {"Stop KeyPressed", "Stop KeyReleased"});
    EXPECT_THAT(take(),
                ElementsAre("10 128 |held back until the release; published at the release, at "
                            "0.030 s",
                            "20 358 |not mapped (silent)",
                            "30 128 Stop KeyPressed, Stop KeyReleased|"));
}

TEST_F(ExplainerTest, TellsTheFirstKeyOfAChord)
{
    record(10, KEY_STOP, 1, What::Held, "held back until the release");
    add(20, RecordRead{panel, EV_KEY, KEY_PLAY, 1, 20'000});
    add(20, DetectorStep{DetectorStep::What::FirstKeyWithdrawn, panel, {KEY_STOP}, 0, false});
    EXPECT_THAT(take(),
                ElementsAre("10 128 |held back until the release; first key of a chord, withdrawn "
                            "at 0.020 s (silent)"));
    add(20,
        RecordOutcome{
            What::Published, panel, EV_KEY, KEY_PLAY, 1, {"FactoryReset KeyPressed"}, {}});
    EXPECT_THAT(take(), ElementsAre("20 207 FactoryReset KeyPressed|"));
}

TEST_F(ExplainerTest, GivesALongPressALineOfItsOwn)
{
    record(10, KEY_INFO, 1, What::Held, "held back until the release or the long press");
    EventPublished event;
    event.command = InputEvent::Info;
    event.state = InputEvent::KeyLongPress;
    event.device = panel;
    event.type = EV_KEY;
    event.codes = {KEY_INFO};
    add(710, event);
    EXPECT_THAT(take(),
                ElementsAre("10 358 |held back until the release or the long press; its long press "
                            "was published at 0.710 s",
                            "710 358 Info KeyLongPress|"));
}

TEST_F(ExplainerTest, TellsWhatEndedAHoldInSilence)
{
    record(10, KEY_STOP, 1, What::Held, "held back");
    add(20, DetectorStep{DetectorStep::What::Forgotten, panel, {KEY_STOP}, 0, false});
    record(30, KEY_STOP, 1, What::Held, "held back");
    add(40, DeviceChange{panel, "front-panel", InputEvent::Bus::LocalUI, false});
    record(50, KEY_STOP, 1, What::Held, "held back");
    explainer().finish();
    EXPECT_THAT(take(),
                ElementsAre("10 128 |held back; forgotten when handlers were selected, at 0.020 s "
                            "(silent)",
                            "30 128 |held back; the device went at 0.040 s (silent)",
                            "50 128 |held back; still down at the end (silent)"));
}

TEST_F(ExplainerTest, DoesNotWaitForEver)
{
    record(10, KEY_STOP, 1, What::Held, "held back");
    for (int i = 0; i < 999; ++i)
        record(20, KEY_INFO, 1, What::Unmapped, "not mapped");
    EXPECT_THAT(take(), IsEmpty());
    record(20, KEY_INFO, 1, What::Unmapped, "not mapped");
    EXPECT_EQ(take().size(), 1001U);
}

TEST_F(ExplainerTest, NoticesASessionWithoutOutcomes)
{
    EXPECT_FALSE(explainer().lacksOutcomes());
    add(10, RecordRead{panel, EV_KEY, KEY_STOP, 1, 10'000});
    EXPECT_TRUE(explainer().lacksOutcomes());
    add(10, RecordOutcome{What::Dropped, panel, EV_KEY, KEY_STOP, 1, {}, "dropped"});
    EXPECT_FALSE(explainer().lacksOutcomes());
}

TEST_F(ExplainerTest, WritesOneLineOfJson)
{
    Explanation explanation;
    explanation.time = 10'500;
    explanation.device = panel;
    explanation.type = EV_KEY;
    explanation.code = KEY_STOP;
    explanation.value = 1;
    explanation.outcome = What::Held;
    explanation.reason = "held \"back\"";
    EXPECT_EQ(toJsonLine(explanation).toStdString(),
              "{\"answered\":false,\"code\":\"KEY_STOP\",\"codeNumber\":128,"
              "\"device\":\"/dev/input/event0\",\"events\":[],\"name\":\"\","
              "\"outcome\":\"held\",\"reason\":\"held \\\"back\\\"\",\"time\":10.5,"
              "\"type\":\"EV_KEY\",\"value\":1}\n");
}

TEST_F(ExplainerTest, AnswersThePressOfTheKeyThatIsReleased)
{
    const QString other = "/dev/input/event1";
    record(10, KEY_STOP, 1, What::Held, "stop");
    record(20, KEY_INFO, 1, What::Held, "info");
    add(30, RecordRead{other, EV_KEY, KEY_PLAY, 1, 30'000});
    add(30, RecordOutcome{What::Held, other, EV_KEY, KEY_PLAY, 1, {}, "play"});
    record(40, KEY_PLAY, 0, What::Dropped, "of nothing");
    record(50, KEY_INFO, 0, What::Published, {}, {"Info KeyPressed"});
    EXPECT_THAT(take(), IsEmpty());
    record(60, KEY_STOP, 0, What::Unmapped, "silent");
    EXPECT_THAT(take(),
                ElementsAre("10 128 |stop; released at 0.060 s (silent)",
                            "20 358 |info; published at the release, at 0.050 s"));
    explainer().finish();
    EXPECT_THAT(take(),
                ElementsAre("30 207 |play; still down at the end (silent)",
                            "40 207 |of nothing (silent)", "50 358 Info KeyPressed|",
                            "60 128 |silent (silent)"));
}

TEST(Explainer, NamesTheDeviceOfEachLine)
{
    std::vector<std::string> lines;
    Explainer explainer(
        [&lines](const Explanation &explanation) {
            lines.push_back(toJsonLine(explanation).trimmed().toStdString());
        },
        Explainer::LooseEvents::Explained);
    explainer.add({0, DeviceChange{panel, "front-panel", InputEvent::Bus::LocalUI, true}});
    explainer.add({1000, RecordRead{panel, EV_SW, SW_LID, 1, 1}});
    explainer.add(
        {2000, RecordOutcome{What::Published, panel, EV_SW, SW_LID, 1, {"a"}, "because"}});
    explainer.add({3000,
                   EventPublished{InputEvent::Info,
                                  InputEvent::KeyLongPress,
                                  InputEvent::Bus::LocalUI,
                                  panel,
                                  EV_KEY,
                                  {KEY_INFO},
                                  {}}});
    explainer.add({4000,
                   EventPublished{InputEvent::Info,
                                  InputEvent::KeyPressed,
                                  InputEvent::Bus::LocalUI,
                                  panel,
                                  0,
                                  {},
                                  {}}});
    const std::string device =
        R"("device":"/dev/input/event0","events":["%"],"name":"front-panel",)";
    const auto withEvent = [&device](const char *event) {
        return QString::fromStdString(device).replace('%', event).toStdString();
    };
    EXPECT_THAT(lines,
                ElementsAre(R"({"answered":true,"code":"SW_LID","codeNumber":0,)" + withEvent("a")
                                + R"("outcome":"published","reason":"because","time":1,)"
                                  R"("type":"EV_SW","value":1})",
                            R"({"answered":true,"code":"KEY_INFO","codeNumber":358,)"
                                + withEvent("Info KeyLongPress")
                                + R"("reason":"","time":3,"type":"EV_KEY","value":1})",
                            R"({"answered":true,)" + withEvent("Info KeyPressed")
                                + R"("reason":"the log does not say what caused it","time":4})"));
}

TEST(Explainer, SkipsEventsWithoutACauseUnlessAsked)
{
    int lines = 0;
    Explainer explainer([&lines](const Explanation &) { ++lines; });
    explainer.add({4000,
                   EventPublished{InputEvent::Info,
                                  InputEvent::KeyLongPress,
                                  InputEvent::Bus::LocalUI,
                                  panel,
                                  0,
                                  {},
                                  {}}});
    EXPECT_EQ(lines, 0);
}
