#include "LaneDrawing.h"

#include "SessionEntries.h"

#include <QMap>

#include <gmock/gmock.h>

#include <cmath>
#include <utility>

using namespace Vorn::Workbench;
using namespace Vorn::Test;

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using What = DetectorStep::What;

} // namespace

TEST(LaneDrawing, DrawsBarsInProportionToTheTimeThatKeysWereDown)
{
    const QVector<SessionEntry> entries{start(), key(200 * ms, KEY_A, 1), key(400 * ms, KEY_A, 0),
                                        key(500 * ms, KEY_A, 1), key(1100 * ms, KEY_A, 0)};
    const QVector<Element> bars = draw(entries).ofClass("bar");
    ASSERT_THAT(bars, SizeIs(Ge(2)));
    const double scale = bars.at(0).number("width") / 200;
    EXPECT_GT(scale, 0.2);
    EXPECT_NEAR(bars.at(1).number("width"), 600 * scale, 0.5);
    EXPECT_NEAR(bars.at(1).number("x") - bars.at(0).number("x"), 300 * scale, 0.5);
    EXPECT_EQ(bars.at(0).title.toStdString(), "KEY_A: 0.200 s to 0.400 s (0.200 s)");
}

TEST(LaneDrawing, ShowsThatAKeyWasNeverReleased)
{
    const Picture picture = draw({start(), key(0, KEY_A, 1), remark(900 * ms)});
    EXPECT_THAT(picture.titles("bar"),
                Contains("KEY_A: 0.000 s to 0.900 s (0.900 s), still active at the end"));
    EXPECT_THAT(picture.ofClass("open"), Not(IsEmpty()));
}

TEST(LaneDrawing, EndsTheBarsOfADeviceThatGoes)
{
    const DeviceChange gone{front, "front-panel", InputEvent::Bus::LocalUI, false};
    const Picture picture = draw({start(), key(0, KEY_A, 1), {400 * ms, gone}, remark(900 * ms)});
    EXPECT_THAT(picture.titles("bar"), Contains("KEY_A: 0.000 s to 0.400 s (0.400 s)"));
    EXPECT_THAT(picture.ofClass("open"), IsEmpty());
}

TEST(LaneDrawing, ShowsAutoRepeatsWithinTheBar)
{
    const Picture picture =
        draw({start(), key(0, KEY_A, 1), key(250 * ms, KEY_A, 2), key(300 * ms, KEY_A, 0)});
    EXPECT_THAT(picture.titles("repeat"), Contains("0.250 s: KEY_A repeat"));
}

TEST(LaneDrawing, ShowsHowLateALongPressWasNoticed)
{
    const Picture picture = draw(longPress());
    const QVector<Element> late = picture.ofClass("late");
    ASSERT_THAT(late, SizeIs(Ge(1)));
    EXPECT_EQ(late.first().title.toStdString(), "due at 1.210 s, published at 1.250 s");
    const Element bar = picture.ofClass("bar").first();
    EXPECT_NEAR(late.first().number("width"), bar.number("width") * 40 / 2000, 0.2);
    EXPECT_THAT(picture.titles("due"), Contains("1.210 s: KEY_INFO long press due"));
    EXPECT_THAT(picture.titles("long-press"),
                Contains("1.250 s: [cmd=Info, state=KeyLongPress, bus=LocalUI] KEY_INFO, "
                         "40.0 ms late"));
}

TEST(LaneDrawing, TellsTheLatencyOfAnEvent)
{
    const EventPublished late{InputEvent::Info,
                              InputEvent::KeyPressed,
                              InputEvent::Bus::NoBus,
                              front,
                              EV_KEY,
                              {KEY_INFO},
                              12'345};
    EXPECT_THAT(draw({{0, late}}).titles("press"),
                Contains("0.000 s: [cmd=Info, state=KeyPressed] KEY_INFO, 12.3 ms late"));
}

TEST(LaneDrawing, ShowsWhileAKeyIsTimed)
{
    const Picture picture = draw(longPress());
    EXPECT_THAT(picture.titles("timed"), Contains("KEY_INFO: timed from 0.200 s to 2.200 s"));
    const Element line = picture.ofClass("timed").first();
    const Element bar = picture.ofClass("bar").first();
    EXPECT_NEAR(line.number("x1"), bar.number("x"), 0.2);
    EXPECT_NEAR(line.number("x2"), bar.number("x") + bar.number("width"), 0.2);
    EXPECT_THAT(picture.ofClass("timer"), IsEmpty()) << "ticks are not in the session";
}

TEST(LaneDrawing, ShowsThatALongPressOfAChordWasLate)
{
    const Picture picture = draw({start(),
                                  key(0, KEY_STOP, 1),
                                  {1550 * ms,
                                   EventPublished{InputEvent::FactoryReset,
                                                  InputEvent::KeyLongPress,
                                                  InputEvent::Bus::LocalUI,
                                                  front,
                                                  EV_KEY,
                                                  {KEY_STOP, KEY_PLAY},
                                                  550 * ms}}});
    EXPECT_THAT(picture.titles("late"), Contains("due at 1.000 s, published at 1.550 s"));
}

TEST(LaneDrawing, ShowsNoDelayBeforeTheDueTimeWasKnown)
{
    const EventPublished published{InputEvent::Info,
                                   InputEvent::KeyLongPress,
                                   InputEvent::Bus::LocalUI,
                                   front,
                                   EV_KEY,
                                   {KEY_INFO},
                                   3'600'000 * ms};
    const SessionEntry press = key(0, KEY_INFO, 1);
    const auto due = [](qint64 time) {
        return detector(time, What::LongPressDue, {KEY_INFO}, -3'599'000 * ms);
    };
    // The clock was set: only the tick that finds the long press due knows of it.
    EXPECT_THAT(draw({start(), press, due(1000 * ms), {1000 * ms, published}}).ofClass("late"),
                IsEmpty());
    const Picture picture = draw({start(), press, due(800 * ms), {1000 * ms, published}});
    const Element bar = picture.ofClass("bar").first();
    ASSERT_THAT(picture.ofClass("late"), SizeIs(Ge(1)));
    EXPECT_NEAR(picture.ofClass("late").first().number("width"), bar.number("width") / 5, 0.2);
    EXPECT_THAT(picture.titles("late"), Contains("due at -3599.000 s, published at 1.000 s"));
}

TEST(LaneDrawing, ShowsAClickAsOneThing)
{
    const Picture picture =
        draw({start(), key(0, KEY_INFO, 1), key(80 * ms, KEY_INFO, 0),
              event(80 * ms, InputEvent::Info, InputEvent::KeyPressed),
              event(80 * ms, InputEvent::Info, InputEvent::KeyReleased), remark(1000 * ms)});
    EXPECT_THAT(picture.texts("event"), ElementsAre("Info click"));
    EXPECT_THAT(picture.texts("muted"), Contains("press and release published at once"));
    EXPECT_THAT(picture.titles("press"),
                Contains("0.080 s: [cmd=Info, state=KeyPressed, bus=LocalUI] KEY_INFO"));
    EXPECT_THAT(picture.titles("release"),
                Contains("0.080 s: [cmd=Info, state=KeyReleased, bus=LocalUI] KEY_INFO"));
    EXPECT_THAT(draw({start(), event(0, InputEvent::Info, InputEvent::KeyPressed),
                      event(150 * ms, InputEvent::Info, InputEvent::KeyReleased), remark(1500 * ms),
                      remark(3000 * ms)})
                    .texts("event"),
                ElementsAre("Info click"));
}

TEST(LaneDrawing, LabelsAPressAndAReleaseThatAreFarApart)
{
    const Picture picture = draw({start(), event(0, InputEvent::Info, InputEvent::KeyPressed),
                                  event(1000 * ms, InputEvent::Info, InputEvent::KeyReleased),
                                  event(2000 * ms, InputEvent::Info, InputEvent::KeyPressed),
                                  event(2000 * ms, InputEvent::Stop, InputEvent::KeyReleased)});
    EXPECT_THAT(picture.texts("event"),
                ElementsAre("Info press", "Info release", "Info press", "Stop release"));

    const Picture held =
        draw({start(), event(500 * ms, InputEvent::Info, InputEvent::KeyPressed),
              event(751 * ms, InputEvent::Info, InputEvent::KeyReleased), remark(15'000 * ms)});
    EXPECT_THAT(held.texts("event"), ElementsAre("Info press", "Info release"))
        << "too long for a click";
}

TEST(LaneDrawing, ShowsThatASwitchWasOnBefore)
{
    const Picture picture = draw({start(), plugged(0), lineIn(900 * ms, 0)});
    EXPECT_THAT(picture.titles("bar-switch"),
                ElementsAre("SW_LINEIN_INSERT: 0.000 s to 0.900 s (0.900 s), active before that "
                            "already"));
    EXPECT_THAT(picture.ofClass("open"), Not(IsEmpty()));
}

TEST(LaneDrawing, ShowsNoLongPressThatWasCalledOffBeforeItWasDue)
{
    const Picture picture =
        draw({start(), key(0, KEY_INFO, 1), detector(0, What::LongPressDue, {KEY_INFO}, 1000 * ms),
              key(300 * ms, KEY_INFO, 0), detector(300 * ms, What::LongPressEnded, {KEY_INFO}),
              remark(2000 * ms)});
    EXPECT_THAT(picture.ofClass("due"), IsEmpty());
}

TEST(LaneDrawing, ShowsALongPressThatAutoRepeatsPutOffOnce)
{
    QVector<SessionEntry> entries{start(), key(0, KEY_INFO, 1)};
    for (qint64 time = 0; time < 600; time += 100) {
        entries.append(key(time * ms, KEY_INFO, 2));
        entries.append(detector(time * ms, What::LongPressDue, {KEY_INFO}, (time + 400) * ms));
    }
    entries.append(remark(1000 * ms));
    EXPECT_THAT(draw(entries).titles("flag"),
                ElementsAre("0.900 s: KEY_INFO long press due", "")) // "" is the legend's
        << "one in the lane";
}

TEST(LaneDrawing, ShowsAChordInALaneUnderItsKeys)
{
    const Picture picture = draw(chord());
    EXPECT_THAT(picture.texts("lane"),
                ElementsAre("KEY_STOP", "KEY_PLAY", "KEY_STOP + KEY_PLAY", "KEY_INFO"));
    EXPECT_THAT(picture.titles("bar-chord"),
                Contains("KEY_STOP + KEY_PLAY: 0.500 s to 1.100 s (0.600 s)"));
    EXPECT_THAT(picture.titles("link"), ElementsAre("0.500 s: chord KEY_STOP + KEY_PLAY"));
    EXPECT_THAT(picture.ofClass("link-end"), SizeIs(3));
    EXPECT_THAT(picture.texts("event"), ElementsAre("FactoryReset press", "FactoryReset release"));
}

TEST(LaneDrawing, ShowsTheFirstKeyOfAChordAsWithdrawn)
{
    const Picture picture = draw(chord());
    EXPECT_THAT(picture.titles("withdrawn"), Contains("0.500 s: KEY_STOP withdrawn for a chord"));
    const Element withdrawn = picture.ofClass("bar-withdrawn").first();
    const Element bar = picture.ofClass("bar").first();
    EXPECT_NEAR(withdrawn.number("x"), bar.number("x") + bar.number("width"), 0.2);
    EXPECT_NEAR(withdrawn.number("width"), bar.number("width") * 500 / 200, 0.5);
}

TEST(LaneDrawing, ShowsRecordsThatWereDropped)
{
    EXPECT_THAT(draw(chord()).titles("dropped"), Contains("0.700 s: KEY_INFO record dropped"));
}

TEST(LaneDrawing, ShowsAChordWithoutACommand)
{
    const Picture picture = draw({start(), key(0, KEY_STOP, 1), key(100 * ms, KEY_PLAY, 1),
                                  detector(100 * ms, What::ChordFound, {KEY_STOP, KEY_PLAY})});
    EXPECT_THAT(picture.ofClass("bar-chord-unmapped"), SizeIs(1));
    EXPECT_THAT(picture.titles("link"),
                ElementsAre("0.100 s: chord KEY_STOP + KEY_PLAY, no command"));
}

TEST(LaneDrawing, DrawsNoLinkBetweenLanesOfWhichOneIsShown)
{
    // Without records of its keys, a chord has the only lane.
    const Picture picture =
        draw({start(), detector(100 * ms, What::ChordFound, {KEY_STOP, KEY_PLAY}, 0, true)});
    EXPECT_THAT(picture.texts("lane"), ElementsAre("KEY_STOP + KEY_PLAY"));
    EXPECT_THAT(picture.ofClass("link"), IsEmpty());
    EXPECT_THAT(picture.ofClass("link-end"), IsEmpty());
}

TEST(LaneDrawing, LinksTheLanesThatAreShown)
{
    const Picture picture = draw({start(), key(100 * ms, KEY_STOP, 1),
                                  detector(100 * ms, What::ChordFound, {KEY_STOP, KEY_PLAY}, 0)});
    EXPECT_THAT(picture.texts("lane"), ElementsAre("KEY_STOP", "KEY_STOP + KEY_PLAY"));
    EXPECT_THAT(picture.ofClass("link"), SizeIs(1));
    EXPECT_THAT(picture.ofClass("link-end"), SizeIs(2));
}

TEST(LaneDrawing, CutsTheNameOfALaneToThirtyCharacters)
{
    const auto nameOf = [](int first, int second) {
        const Picture picture =
            draw({start(), detector(100 * ms, What::ChordFound, {first, second}, 0, true)});
        EXPECT_THAT(picture.ofClass("lane"), SizeIs(1));
        return std::pair(picture.texts("lane").front(), picture.titles("lane").front());
    };
    const std::string whole = "KEY_LEFTBRACE + KEY_RIGHTBRACE";
    EXPECT_EQ(nameOf(KEY_LEFTBRACE, KEY_RIGHTBRACE),
              std::pair(whole, whole + ", event0 /dev/input/event0"));
    EXPECT_EQ(nameOf(KEY_RIGHTBRACE, KEY_RIGHTSHIFT),
              std::pair(std::string("KEY_RIGHTBRACE + KEY_RIGHTSHI…"),
                        std::string("KEY_RIGHTBRACE + KEY_RIGHTSHIFT, event0 /dev/input/event0")));
}

TEST(LaneDrawing, EndsAnOpenBarWithAsManyStripesAsFit)
{
    const auto stripesOf = [](qint64 length) {
        // A pixel is a millisecond.
        return draw({start(), key((720 - length) * ms, KEY_A, 1), remark(720 * ms)})
            .ofClass("open")
            .size();
    };
    EXPECT_EQ(stripesOf(3), 0);
    EXPECT_EQ(stripesOf(5), 1);
    EXPECT_EQ(stripesOf(9), 1);
    EXPECT_EQ(stripesOf(11), 2);
    EXPECT_EQ(stripesOf(15), 2);
    EXPECT_EQ(stripesOf(17), 3);
    EXPECT_EQ(stripesOf(100), 3);
}

TEST(LaneDrawing, PutsTheStripesOfAnOpenBarAtItsOpenEnds)
{
    const Picture open = draw({start(), key(620 * ms, KEY_A, 1), remark(720 * ms)});
    const Element bar = open.ofClass("bar").first();
    const double end = bar.number("x") + bar.number("width");
    std::vector<double> distances;
    for (const Element &stripe : open.ofClass("open")) {
        distances.push_back(std::round(end - stripe.number("x")));
        EXPECT_EQ(stripe.number("width"), 3);
        EXPECT_EQ(stripe.number("y"), bar.number("y"));
        EXPECT_EQ(stripe.number("height"), bar.number("height"));
    }
    EXPECT_THAT(distances, ElementsAre(4, 10, 16));

    const Picture before = draw({start(), plugged(0), lineIn(720 * ms, 0)});
    const double begin = before.ofClass("bar-switch").first().number("x");
    distances.clear();
    for (const Element &stripe : before.ofClass("open"))
        distances.push_back(std::round(stripe.number("x") - begin));
    EXPECT_THAT(distances, ElementsAre(1, 7, 13));
}

TEST(LaneDrawing, ThinsRepeatsThatWouldMerge)
{
    // A pixel is a millisecond.
    const Picture picture =
        draw({start(), key(0, KEY_A, 1), key(100 * ms, KEY_A, 2), key(101 * ms, KEY_A, 2),
              detector(101 * ms, What::Dropped, {KEY_A}), key(102 * ms, KEY_A, 2),
              key(103 * ms, KEY_A, 2), key(104 * ms, KEY_A, 2), remark(720 * ms)});
    std::vector<std::string> repeats = picture.titles("repeat");
    repeats.resize(repeats.size() - 2); // the legend's
    EXPECT_THAT(
        repeats,
        ElementsAre("0.100 s: KEY_A repeat", "0.102 s: KEY_A repeat", "0.104 s: KEY_A repeat"));
    EXPECT_THAT(picture.titles("dropped"), Contains("0.101 s: KEY_A record dropped"))
        << "other marks stay";
}

TEST(LaneDrawing, LeadsFromTheBarToALabelInALowerRow)
{
    // The second label has no room beside the first, so it is below.
    const Picture picture =
        draw({start(), key(0, KEY_INFO, 1), event(0, InputEvent::Info, InputEvent::KeyLongPress),
              event(30 * ms, InputEvent::Info, InputEvent::KeyReleased), remark(720 * ms)});
    const Element bar = picture.ofClass("bar").first();
    const double bottom = bar.number("y") + bar.number("height");
    const Element longPress = picture.ofClass("leader-long-press").first();
    const Element release = picture.ofClass("leader").first();
    const QVector<Element> labels = picture.ofClass("event");
    ASSERT_THAT(picture.texts("event"), ElementsAre("Info long press", "Info release"));
    EXPECT_EQ(longPress.number("x1"), bar.number("x"));
    EXPECT_EQ(longPress.number("y1"), bar.number("y") - 3);
    EXPECT_EQ(longPress.number("y2"), labels.at(0).number("y") - 4 + 2);
    EXPECT_EQ(longPress.number("y2"), bottom + 12 + 14 + 2);
    EXPECT_EQ(release.number("y1"), bottom);
    EXPECT_EQ(release.number("y2"), labels.at(1).number("y") - 4);
    EXPECT_EQ(release.number("y2"), bottom + 12);
    EXPECT_NEAR(labels.at(0).number("x"), longPress.number("x1") + 4, 0.11);
    EXPECT_NEAR(labels.at(1).number("x"), release.number("x1") + 8, 0.11);
}

TEST(LaneDrawing, ShowsALateLongPressAfterOneInTime)
{
    const auto longPressOf = [](qint64 time, qint64 latency) {
        return SessionEntry{time,
                            EventPublished{InputEvent::Info,
                                           InputEvent::KeyLongPress,
                                           InputEvent::Bus::LocalUI,
                                           front,
                                           EV_KEY,
                                           {KEY_INFO},
                                           latency}};
    };
    const Picture picture = draw(
        {start(), key(0, KEY_INFO, 1), longPressOf(500 * ms, 0), longPressOf(1000 * ms, 100 * ms)});
    EXPECT_THAT(picture.titles("late"),
                ElementsAre("due at 0.900 s, published at 1.000 s", "")); // "" is the legend's
}
