#include "Timeline.h"

#include "SessionEntries.h"

#include <gmock/gmock.h>

#include <cmath>

using namespace Vorn::Workbench;
using namespace Vorn::Test;

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using What = DetectorStep::What;

} // namespace

TEST(Timeline, HasATitleAndADescriptionForThoseWhoDoNotSeeIt)
{
    const Picture picture = draw(longPress());
    EXPECT_EQ(picture.root().name.toStdString(), "svg");
    EXPECT_EQ(picture.root().attributes.value("role").toStdString(), "img");
    EXPECT_EQ(picture.root().title.toStdString(), "a.scenario");
    EXPECT_EQ(picture.elements().at(2).name.toStdString(), "desc");
    EXPECT_EQ(picture.elements().at(2).text.toStdString(),
              "1 lane and 2 events from 0.000 s to 2.200 s. Profile: player.toml.");
    EXPECT_THAT(picture.texts("title"), ElementsAre("a.scenario"));
    const Picture failed =
        draw({{0, Remark{"a"}},
              {1000 * ms, ExpectationChecked{"a.scenario", 4, "expect Mute", false, "Info"}}});
    EXPECT_EQ(failed.elements().at(2).text.toStdString(),
              "0 lanes and 0 events from 0.000 s to 1.000 s. Expectations failed.");
}

TEST(Timeline, DrawsEverythingFromBackToFront)
{
    using State = InputEvent::State;
    QVector<SessionEntry> entries = longPress();
    entries.insert(1, {0, IdentifierSelected{"main"}});
    entries += {key(2300 * ms, KEY_STOP, 1),
                key(2300 * ms, KEY_STOP, 2),
                event(2320 * ms, InputEvent::Stop, State::KeyPressed, {KEY_STOP}),
                key(2400 * ms, KEY_STOP, 0),
                event(2400 * ms, InputEvent::Stop, State::KeyReleased, {KEY_STOP}),
                {2450 * ms, ExpectationChecked{"a.scenario", 4, "expect Mute", false, "Stop"}},
                lineIn(6050 * ms, 1),
                lineInEvent(6050 * ms, State::SwitchEnabled)};
    EXPECT_EQ(draw(entries).drawing(), R"(paper 0 0 1134.2 380
title 16 30 'a.scenario'
  a.scenario
muted 16 48 'player.toml · 2023-11-14 22:13:20 UTC · 0.000 s to 6.050 s'
stripe 0 152 1134.2 46
stripe 0 258 1134.2 46
grid 179.2 128 179.2 304
axis 179.2 124 179.2 128
grid 309.2 128 309.2 304
axis 309.2 124 309.2 128
grid 439.2 128 439.2 304
axis 439.2 124 439.2 128
grid 569.2 128 569.2 304
axis 569.2 124 569.2 128
grid 699.2 128 699.2 304
axis 699.2 124 699.2 128
grid 829.2 128 829.2 304
axis 829.2 124 829.2 128
grid 991.2 128 991.2 304
axis 991.2 124 991.2 128
axis 179.2 128 1004.2 128
device-name 16 145 'front-panel'
  front-panel
muted 110 145 'event0'
lane 16 173 'KEY_INFO'
  KEY_INFO, front-panel /dev/input/event0
bar 231.2 162 520 14
  KEY_INFO: 0.200 s to 2.200 s (2.000 s)
timed 231.2 179 751.2 179
  KEY_INFO: timed from 0.200 s to 2.200 s
late 493.8 157 10.4 4
  due at 1.210 s, published at 1.250 s
lane 16 219 'KEY_STOP'
  KEY_STOP, front-panel /dev/input/event0
bar 777.2 208 26 14
  KEY_STOP: 2.300 s to 2.400 s (0.100 s)
lane 16 279 'SW_LINEIN_INSERT'
  SW_LINEIN_INSERT, front-panel /dev/input/event0
bar-switch 1004.2 268 2 14
  SW_LINEIN_INSERT: 6.050 s to 6.050 s (0.000 s), still active at the end
break 881.2 128 58 176
  3.100 s without activity
break-edge 881.2 152 881.2 181
break-edge 939.2 152 939.2 181
break-edge 881.2 198 881.2 227
break-edge 939.2 198 939.2 227
break-edge 881.2 258 881.2 287
break-edge 939.2 258 939.2 287
muted 910.2 120 middle '⋯ 3.1 s'
  3.100 s without activity
muted 16 77 'identifier'
identifier 179.2 64 825 18
  0.000 s: identifier 'main' selected
identifier-label 184.2 77 ''main''
  0.000 s: identifier 'main' selected
device 179.2 92 179.2 108
  0.000 s: /dev/input/event0 front-panel (LocalUI)
device 179.2 124 179.2 304
  0.000 s: /dev/input/event0 front-panel (LocalUI)
flag-label 183.2 101 '+ front-panel'
  0.000 s: /dev/input/event0 front-panel (LocalUI)
failure 816.2 92 816.2 108
  2.450 s: a.scenario:4: failed: expect Mute, but found Stop
failure 816.2 124 816.2 181
  2.450 s: a.scenario:4: failed: expect Mute, but found Stop
failure 816.2 195 816.2 241
  2.450 s: a.scenario:4: failed: expect Mute, but found Stop
failure 816.2 255 816.2 304
  2.450 s: a.scenario:4: failed: expect Mute, but found Stop
failure-label 820.2 101 '✗ expect Mute'
  2.450 s: a.scenario:4: failed: expect Mute, but found Stop
tick 179.2 120 middle '0.0 s'
tick 309.2 120 middle '0.5 s'
tick 439.2 120 middle '1.0 s'
tick 569.2 120 middle '1.5 s'
tick 699.2 120 middle '2.0 s'
tick 829.2 120 middle '2.5 s'
tick 991.2 120 middle '6.0 s'
due 493.8 155 493.8 181
  1.210 s: KEY_INFO long press due
flag translate(493.8 159)
  1.210 s: KEY_INFO long press due
leader-long-press 504.2 159 504.2 188
leader 751.2 176 751.2 188
repeat 777.2 211 777.2 219
  2.300 s: KEY_STOP repeat
leader 782.4 222 782.4 250
leader 803.2 222 803.2 234
leader 1004.2 282 1004.2 294
long-press translate(504.2 188)
  1.250 s: [cmd=Info, state=KeyLongPress, bus=LocalUI] KEY_INFO, 40.0 ms late
event 512.2 192 'Info long press'
  1.250 s: [cmd=Info, state=KeyLongPress, bus=LocalUI] KEY_INFO, 40.0 ms late
release translate(751.2 188)
  2.200 s: [cmd=Info, state=KeyReleased, bus=LocalUI] KEY_INFO
event 759.2 192 'Info release'
  2.200 s: [cmd=Info, state=KeyReleased, bus=LocalUI] KEY_INFO
press translate(782.4 234)
  2.320 s: [cmd=Stop, state=KeyPressed, bus=LocalUI] KEY_STOP
event 786.4 252 'Stop click'
  2.320 s: [cmd=Stop, state=KeyPressed, bus=LocalUI] KEY_STOP
release translate(803.2 234)
  2.400 s: [cmd=Stop, state=KeyReleased, bus=LocalUI] KEY_STOP
on translate(1004.2 294)
  6.050 s: [cmd=SWLineIn, state=SwitchEnabled, bus=LocalUI] SW_LINEIN_INSERT
event 1012.2 298 'SWLineIn on'
  6.050 s: [cmd=SWLineIn, state=SwitchEnabled, bus=LocalUI] SW_LINEIN_INSERT
bar 179.2 321 18 10
muted 203.2 330 'key down'
bar 272 321 18 10
repeat 278 323 278 329
repeat 284 323 284 329
muted 296 330 'auto-repeat'
timed 384.6 326 402.6 326
muted 408.6 330 'timed for a long press'
due 574.8 319 574.8 333
flag translate(574.8 327)
muted 593.8 330 'long press due'
late 702.2 324 18 4
muted 726.2 330 'due, not yet published'
press translate(188.2 344)
muted 203.2 348 'press published'
long-press translate(327.2 344)
muted 342.2 348 'long press published'
release translate(499.2 344)
muted 514.2 348 'release published'
on translate(651.4 344)
muted 666.4 348 'switch on'
)");
}

TEST(Timeline, HasTheTitleThatWasAskedFor)
{
    TimelineOptions options;
    options.title = "Info & <long> press";
    EXPECT_EQ(draw(longPress(), options).root().title.toStdString(), "Info & <long> press");
}

TEST(Timeline, IsTheSameForTheSameSession)
{
    EXPECT_EQ(timelineSvg(longPress(), {}), timelineSvg(longPress(), {}));
    EXPECT_EQ(timelineSvg(chord(), {}), timelineSvg(chord(), {}));
}

TEST(Timeline, IsDrawnForASessionOfOneMomentOrNone)
{
    EXPECT_THAT(draw({}).texts("title"), ElementsAre("session"));
    EXPECT_THAT(draw({start()}).texts("tick"), Contains("0.50 s"));
    EXPECT_THAT(draw({key(5, KEY_A, 0)}).texts("title"), ElementsAre("session"));
}

TEST(Timeline, ShowsThePartThatWasAskedFor)
{
    TimelineOptions options;
    options.from = 1000 * ms;
    options.to = 2000 * ms;
    const Picture picture = draw(longPress(), options);
    EXPECT_THAT(picture.texts("event"), ElementsAre("Info long press"));
    const Element bar = picture.ofClass("bar").first();
    const QVector<Element> grid = picture.ofClass("grid");
    EXPECT_NEAR(bar.number("x"), grid.first().number("x1"), 0.2);
    EXPECT_NEAR(bar.number("x") + bar.number("width"), grid.last().number("x1"), 0.2);
    EXPECT_THAT(picture.texts("muted"), Contains(HasSubstr("1.000 s to 2.000 s of 2.200 s")));
    EXPECT_EQ(bar.title.toStdString(), "KEY_INFO: 0.200 s to 2.200 s (2.000 s)");
}

TEST(Timeline, ShowsAnEmptyPartAsSuch)
{
    TimelineOptions options;
    options.from = 60'000 * ms;
    EXPECT_THAT(draw(longPress(), options).texts("lane"), IsEmpty());
    options.from = 3000 * ms;
    options.to = 1000 * ms;
    EXPECT_THAT(draw(longPress(), options).texts("lane"), IsEmpty());
}

TEST(Timeline, StaysSmallForALongSession)
{
    QVector<SessionEntry> entries{start()};
    for (qint64 i = 0; i < 40'000; ++i) {
        entries.append(key(i * 1000 * ms, KEY_A, static_cast<int>(i % 2)));
        entries.append(event(i * 1000 * ms, InputEvent::Info, InputEvent::KeyPressed));
    }
    const QByteArray svg = timelineSvg(entries, {});
    EXPECT_LT(svg.size(), 8'000'000);
    const Picture picture(svg);
    EXPECT_LE(picture.root().number("width"), 1600);
    EXPECT_LE(picture.root().number("height"), 16'000);
    EXPECT_THAT(picture.texts("failure-label"),
                ElementsAre("not shown: 40001 marks from 13333.000 s on"));
    EXPECT_THAT(picture.texts("muted"),
                Contains(HasSubstr("0.000 s to 13333.000 s of 39999.000 s")));
}

TEST(Timeline, ShowsTheWaitAtTheEndOfASession)
{
    Timeline timeline;
    for (const SessionEntry &entry : longPress())
        timeline.add(entry);
    timeline.extendTo(3500 * ms);
    EXPECT_EQ(timeline.session().to, 3500 * ms);
    const Picture picture(timeline.svg());
    EXPECT_THAT(picture.texts("muted"), Contains(HasSubstr("0.000 s to 3.500 s")));
    EXPECT_THAT(picture.texts("tick"), Contains("3.5 s"));
}

TEST(Timeline, TellsWhichOfSeveralSessionsItShows)
{
    Timeline timeline;
    timeline.add(start());
    EXPECT_THAT(Picture(timeline.svg("session 2 of 3")).texts("muted"),
                Contains(HasSubstr("session 2 of 3 · player.toml")));
}

TEST(Timeline, IsDrawnForTimesThatCannotBe)
{
    constexpr qint64 far = 4'503'599'627'370'496;
    for (const qint64 time : {far, -far, far - 1, qint64(-1)}) {
        QVector<SessionEntry> entries = longPress();
        entries.append(key(time, KEY_A, 1));
        entries.append(detector(time, What::LongPressDue, {KEY_A}, -time));
        entries.append(detector(0, What::LongPressDue, {KEY_B}, time));
        entries.append(key(0, KEY_A, 0));
        entries.append({time, IdentifierSelected{"a"}});
        entries.append(event(-time, InputEvent::Info, InputEvent::KeyLongPress));
        const Picture picture = draw(entries);
        for (const Element &element : picture.elements()) {
            for (const char *attribute : {"x", "x1", "x2", "width"})
                EXPECT_TRUE(std::isfinite(element.number(attribute)));
            EXPECT_GE(element.number("width"), 0) << element.cssClass.toStdString();
        }
    }
}
