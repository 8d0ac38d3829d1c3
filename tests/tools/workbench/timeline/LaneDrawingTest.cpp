#include "LaneDrawing.h"

#include "SessionEntries.h"

#include <QMap>

#include <gmock/gmock.h>

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
