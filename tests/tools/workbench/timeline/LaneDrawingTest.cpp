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

/// Where the timer's ticks are in the first lane that has any; the legend has some, too.
QVector<double> ticksOfFirstLane(const Picture &picture)
{
    QVector<double> found;
    const QVector<Element> ticks = picture.ofClass("timer");
    for (const Element &tick : ticks) {
        if (tick.number("y1") == ticks.first().number("y1"))
            found.append(tick.number("x1"));
    }
    return found;
}

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
                Contains("1.250 s: [cmd=Info, state=KeyLongPress, bus=LocalUI] KEY_INFO"));
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

TEST(LaneDrawing, ShowsTheTimersTicksWhileAKeyIsTimed)
{
    const Picture picture = draw(longPress());
    const QVector<double> ticks = ticksOfFirstLane(picture);
    ASSERT_THAT(ticks, SizeIs(41));
    const Element bar = picture.ofClass("bar").first();
    EXPECT_NEAR(ticks.first(), bar.number("x"), 0.2);
    EXPECT_NEAR(ticks.last(), bar.number("x") + bar.number("width"), 0.2);
}

TEST(LaneDrawing, ShowsThatTheTimerOfADeviceServesAllItsKeys)
{
    const Picture picture =
        draw({start(), key(0, KEY_1, 1), detector(0, What::LongPressDue, {KEY_1}, 900 * ms),
              key(130 * ms, KEY_2, 1), detector(130 * ms, What::LongPressDue, {KEY_2}, 900 * ms),
              remark(600 * ms)});
    QMap<double, QVector<double>> lanes;
    for (const Element &tick : picture.ofClass("timer"))
        lanes[tick.number("y1")].append(tick.number("x1"));
    ASSERT_THAT(lanes, SizeIs(2));
    const QVector<double> first = lanes.first();
    const QVector<double> second = lanes.last();
    ASSERT_THAT(first, SizeIs(13)); // 0 to 600 ms
    ASSERT_THAT(second, SizeIs(10)); // 150 to 600 ms
    EXPECT_EQ(first.mid(3), second);
}

TEST(LaneDrawing, ShowsTicksOnBothSidesOfATimeThatIsLeftOut)
{
    const Picture picture =
        draw({start(), key(0, KEY_1, 1), detector(0, What::LongPressDue, {KEY_1}, 90'000 * ms),
              remark(20'000 * ms), remark(90'000 * ms)});
    const QVector<Element> breaks = picture.ofClass("break");
    ASSERT_THAT(breaks, SizeIs(2));
    int before = 0;
    int between = 0;
    int after = 0;
    for (const double x : ticksOfFirstLane(picture)) {
        before += x <= breaks.at(0).number("x") + 0.1;
        between += x >= breaks.at(0).number("x") + breaks.at(0).number("width") - 0.1
            && x <= breaks.at(1).number("x") + 0.1;
        after += x >= breaks.at(1).number("x") + breaks.at(1).number("width") - 0.1;
    }
    EXPECT_EQ(before, 6); // 0 to 250 ms
    EXPECT_EQ(between, 11); // 19.75 s to 20.25 s
    EXPECT_EQ(after, 6); // 89.75 s to 90 s
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
