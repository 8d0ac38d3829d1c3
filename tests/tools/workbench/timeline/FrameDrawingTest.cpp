#include "FrameDrawing.h"

#include "LaneTable.h"
#include "SessionEntries.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <string>

using namespace Vorn::Workbench;
using namespace Vorn::Test;

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

} // namespace

TEST(FrameDrawing, ShowsWhichIdentifierIsSelected)
{
    const Picture picture = draw({start(),
                                  {0, IdentifierSelected{"main"}},
                                  {600 * ms, IdentifierSelected{"text"}},
                                  remark(1000 * ms)});
    EXPECT_THAT(picture.texts("identifier-label"), ElementsAre("'main'", "'text'"));
    const QVector<Element> bands = picture.ofClass("identifier");
    ASSERT_THAT(bands, SizeIs(2));
    EXPECT_NEAR(bands.at(0).number("width") * 4, bands.at(1).number("width") * 6, 1);
}

TEST(FrameDrawing, ShowsNoIdentifiersWhereThereIsOnlyTheUnnamedOne)
{
    const Picture picture = draw({start(), {0, IdentifierSelected{}}, remark(1000 * ms)});
    EXPECT_THAT(picture.ofClass("identifier"), IsEmpty());
}

TEST(FrameDrawing, ShowsDevicesThatComeAndGo)
{
    const DeviceChange gone{keyboard, "USB Keyboard", InputEvent::Bus::USB, false};
    const Picture picture =
        draw({start(), plugged(0), plugged(1, keyboard, "USB Keyboard"), {800 * ms, gone}});
    EXPECT_THAT(picture.texts("flag-label"), Contains("+ front-panel (2 in all)"));
    EXPECT_THAT(picture.texts("flag-label"), Contains("− USB Keyboard"));
    EXPECT_THAT(picture.titles("device"),
                Contains("0.000 s: /dev/input/event0 front-panel (LocalUI)\n"
                         "0.000 s: /dev/input/event3 USB Keyboard (LocalUI)"));
}

TEST(FrameDrawing, InterruptsTheLinesOfFlagsAtLabels)
{
    const Picture picture = draw({start(), event(0, InputEvent::Info, InputEvent::KeyLongPress),
                                  remark(150 * ms), remark(1000 * ms)});
    EXPECT_THAT(picture.texts("event"), ElementsAre("Info long press"));
    const Element label = picture.ofClass("event").first();
    const QVector<Element> lines = picture.ofClass("remark");
    ASSERT_GT(lines.first().number("x1"), label.number("x"));
    bool isAbove = false;
    bool isBelow = false;
    for (const Element &line : lines) {
        if (line.number("x1") != lines.first().number("x1"))
            continue;
        isAbove |= line.number("y2") < label.number("y") - 8;
        isBelow |= line.number("y1") > label.number("y");
        EXPECT_FALSE(line.number("y1") < label.number("y") - 5
                     && line.number("y2") > label.number("y") - 5);
    }
    EXPECT_TRUE(isAbove && isBelow);
}

TEST(FrameDrawing, ShowsExpectationsThatFailedOnly)
{
    const Picture picture =
        draw({start(),
              {100 * ms, ExpectationChecked{"a.scenario", 3, "expect Info", true, {}}},
              {500 * ms, ExpectationChecked{"a.scenario", 4, "expect Mute", false, "Info"}}});
    EXPECT_THAT(picture.texts("failure-label"), ElementsAre("✗ expect Mute"));
    EXPECT_THAT(picture.titles("failure"),
                Contains("0.500 s: a.scenario:4: failed: expect Mute, but found Info"));
    EXPECT_THAT(picture.titles("failure"), Not(Contains(HasSubstr("expect Info"))));
}

TEST(FrameDrawing, LeavesOutLongTimesInWhichNothingHappens)
{
    const Picture picture = draw({start(), key(0, KEY_A, 1), key(100 * ms, KEY_A, 0),
                                  key(60'000 * ms, KEY_A, 1), key(60'100 * ms, KEY_A, 0)});
    EXPECT_THAT(picture.titles("break"), ElementsAre("59.400 s without activity"));
    EXPECT_THAT(picture.texts("muted"), Contains("⋯ 59.4 s"));
    const QVector<Element> bars = picture.ofClass("bar");
    EXPECT_NEAR(bars.at(0).number("width"), bars.at(1).number("width"), 0.2);
    EXPECT_GT(bars.at(0).number("width"), 20);
}

TEST(FrameDrawing, TellsHowManyLanesItLeavesOut)
{
    QVector<SessionEntry> entries{start()};
    for (int code = 0; code < 250; ++code)
        entries.append(key(qint64(code) * ms, code, 1));
    const Picture picture = draw(entries);
    EXPECT_THAT(picture.texts("lane"), SizeIs(200));
    EXPECT_THAT(picture.texts("failure-label"), ElementsAre("not shown: 50 lanes"));
}

TEST(FrameDrawing, CutsALongTitleAndALongProfile)
{
    const QString title(91, 't');
    const QString profile(61, 'p');
    const Picture picture = draw({{0, SessionStart{title, profile, 0}}});
    EXPECT_THAT(picture.texts("title"), ElementsAre(std::string(89, 't') + "…"));
    EXPECT_THAT(picture.titles("title"), ElementsAre(title.toStdString()));
    EXPECT_THAT(picture.texts("muted"), Contains(HasSubstr(std::string(59, 'p') + "… · ")));
    const Picture whole = draw({{0, SessionStart{QString(90, 't'), QString(60, 'p'), 0}}});
    EXPECT_THAT(whole.texts("title"), ElementsAre(std::string(90, 't')));
    EXPECT_THAT(whole.texts("muted"), Contains(HasSubstr(std::string(60, 'p') + " · ")));
}

TEST(FrameDrawing, TellsWhichPartOfTheSessionIsShown)
{
    const auto headingOf = [](std::optional<qint64> from, std::optional<qint64> to) {
        TimelineOptions options;
        options.from = from;
        options.to = to;
        return draw({start(), remark(4000 * ms)}, options).texts("muted").front();
    };
    const std::string before = "player.toml · 2023-11-14 22:13:20 UTC · ";
    EXPECT_EQ(headingOf({}, {}), before + "0.000 s to 4.000 s");
    EXPECT_EQ(headingOf(1000 * ms, {}), before + "1.000 s to 4.000 s of 4.000 s");
    EXPECT_EQ(headingOf({}, 3000 * ms), before + "0.000 s to 3.000 s of 4.000 s");
}

TEST(FrameDrawing, ShowsAnIdentifierThatIsReplacedAtOnce)
{
    const Picture picture = draw({start(),
                                  {0, IdentifierSelected{"first"}},
                                  {0, IdentifierSelected{"second"}},
                                  {990 * ms, IdentifierSelected{"last"}},
                                  remark(1000 * ms)});
    const QVector<Element> bands = picture.ofClass("identifier");
    ASSERT_THAT(bands, SizeIs(3));
    EXPECT_DOUBLE_EQ(bands.at(0).number("width"), 2);
    EXPECT_DOUBLE_EQ(bands.at(0).number("x"), bands.at(1).number("x"));
    const QVector<Element> grid = picture.ofClass("grid");
    EXPECT_NEAR(bands.at(2).number("x") + bands.at(2).number("width"), grid.last().number("x1"),
                0.2);
    // Too short for a name; the title has it.
    EXPECT_THAT(picture.texts("identifier-label"), ElementsAre("'second'"));
    EXPECT_THAT(picture.titles("identifier"),
                ElementsAre("0.000 s: identifier 'first' selected",
                            "0.000 s: identifier 'second' selected",
                            "0.990 s: identifier 'last' selected"));
}

TEST(FrameDrawing, NamesABandThatHasRoomForThreeCharacters)
{
    const auto labelsOf = [](qint64 end) {
        // 720 px for a second.
        return draw({start(),
                     {0, IdentifierSelected{"a"}},
                     {end, IdentifierSelected{"next"}},
                     remark(1000 * ms)})
            .texts("identifier-label");
    };
    EXPECT_THAT(labelsOf(41 * ms), ElementsAre("'a'", "'next'"));
    EXPECT_THAT(labelsOf(40 * ms), ElementsAre("'next'"));
}

TEST(FrameDrawing, CutsANameToTheRoomOfItsBand)
{
    const Picture picture = draw({start(),
                                  {0, IdentifierSelected{"a name that is longer than its band"}},
                                  {100 * ms, IdentifierSelected{"b"}},
                                  remark(1000 * ms)});
    const std::string cut = picture.texts("identifier-label").front();
    EXPECT_THAT(cut, testing::StartsWith("'a name"));
    EXPECT_THAT(cut, testing::EndsWith("…"));
    const double width = picture.ofClass("identifier").first().number("width");
    const auto characters = static_cast<double>(QString::fromStdString(cut).size());
    EXPECT_LE(characters * 7, width - 8);
    EXPECT_GT((characters + 1) * 7, width - 8) << "as much of it as there is room for";
}

TEST(FrameDrawing, StripesEveryOtherLaneFromTheFirst)
{
    const Picture picture =
        draw({start(), key(0, KEY_A, 1), key(0, KEY_B, 1), key(0, KEY_C, 1), remark(500 * ms)});
    const QVector<Element> stripes = picture.ofClass("stripe");
    const QVector<Element> bars = picture.ofClass("bar");
    ASSERT_THAT(stripes, SizeIs(2));
    for (const int lane : {0, 1}) {
        const Element &stripe = stripes.at(lane);
        const double y = bars.at(2 * lane).number("y");
        EXPECT_LT(stripe.number("y"), y);
        EXPECT_GT(stripe.number("y") + stripe.number("height"), y);
        EXPECT_DOUBLE_EQ(stripe.number("width"), picture.root().number("width"));
    }
}

TEST(FrameDrawing, HasALineAndALabelForEachTick)
{
    const Picture picture = draw({start(), key(0, KEY_A, 1), remark(1000 * ms)});
    const QVector<Element> grid = picture.ofClass("grid");
    const QVector<Element> ticks = picture.ofClass("tick");
    ASSERT_THAT(ticks, SizeIs(grid.size()));
    for (int i = 0; i < grid.size(); ++i) {
        EXPECT_DOUBLE_EQ(grid.at(i).number("x1"), grid.at(i).number("x2"));
        EXPECT_DOUBLE_EQ(ticks.at(i).number("x"), grid.at(i).number("x1"));
        EXPECT_EQ(ticks.at(i).attributes.value("text-anchor").toStdString(), "middle");
        EXPECT_LT(ticks.at(i).number("y"), grid.at(i).number("y1"));
        EXPECT_LT(grid.at(i).number("y1"), grid.at(i).number("y2"));
    }
}

TEST(FrameDrawing, ClosesABreakAtItsEdgesInEachLane)
{
    const Picture picture = draw({start(), key(0, KEY_A, 1), key(0, KEY_B, 1),
                                  key(60'000 * ms, KEY_A, 0), key(60'100 * ms, KEY_B, 0)});
    const Element gap = picture.ofClass("break").first();
    const auto labels = picture.ofClass("muted");
    const QVector<Element>::const_iterator label =
        std::find_if(labels.begin(), labels.end(),
                     [](const Element &element) { return element.text.trimmed() == "⋯ 59.5 s"; });
    ASSERT_NE(label, labels.end());
    EXPECT_NEAR(label->number("x"), gap.number("x") + gap.number("width") / 2, 0.11);
    EXPECT_EQ(label->title, gap.title);
    const QVector<Element> edges = picture.ofClass("break-edge");
    ASSERT_THAT(edges, SizeIs(2 * 2));
    for (int i = 0; i < edges.size(); ++i) {
        const double x = gap.number("x") + (i % 2 == 0 ? 0 : gap.number("width"));
        EXPECT_NEAR(edges.at(i).number("x1"), x, 0.11);
        EXPECT_NEAR(edges.at(i).number("x2"), x, 0.11);
    }
    EXPECT_EQ(gap.title.toStdString(), "59.500 s without activity");
}

TEST(FrameDrawing, LeavesOutTheLabelOfABreakThatIsTooNarrow)
{
    QVector<SessionEntry> entries{start()};
    for (qint64 i = 0; i < 2000; ++i)
        entries.append(remark(i * 10'000 * ms));
    const Picture picture = draw(entries);
    EXPECT_GT(picture.ofClass("break").size(), 100);
    for (const std::string &text : picture.texts("muted"))
        EXPECT_THAT(text, Not(HasSubstr("⋯")));
}

TEST(FrameDrawing, TellsOfOneLaneThatItLeavesOutAndOfVeryMany)
{
    const auto noteOf = [](int lanes) {
        QVector<SessionEntry> entries{start()};
        for (int lane = 0; lane < lanes; ++lane) {
            const std::string device = "/dev/input/event" + std::to_string(lane / 500);
            entries.append(key(qint64(lane), lane % 500, 1, device.c_str()));
        }
        return draw(entries).texts("failure-label");
    };
    EXPECT_THAT(noteOf(200), IsEmpty());
    EXPECT_THAT(noteOf(201), ElementsAre("not shown: 1 lane"));
    EXPECT_THAT(noteOf(200 + maxCountedLanes - 1),
                ElementsAre("not shown: " + std::to_string(maxCountedLanes - 1) + " lanes"));
    for (const int more : {0, 1, 100})
        EXPECT_THAT(
            noteOf(200 + maxCountedLanes + more),
            ElementsAre("not shown: at least " + std::to_string(maxCountedLanes) + " lanes"));
}

TEST(FrameDrawing, TurnsALabelToTheLeftAtTheEdge)
{
    const Picture picture = draw({start(),
                                  {0, Remark{"at the start"}},
                                  {1000 * ms, Remark{"a remark that is near the right edge"}}});
    const QVector<Element> labels = picture.ofClass("flag-label");
    ASSERT_THAT(labels, SizeIs(2));
    EXPECT_FALSE(labels.at(0).attributes.contains("text-anchor"));
    EXPECT_EQ(labels.at(1).attributes.value("text-anchor").toStdString(), "end");
    const QVector<Element> lines = picture.ofClass("remark");
    EXPECT_DOUBLE_EQ(labels.at(0).number("x"), lines.first().number("x1") + 4);
    EXPECT_DOUBLE_EQ(labels.at(1).number("x"), lines.last().number("x1") - 4);
}

TEST(FrameDrawing, ShowsTheIdentifierToTheEdgeOfEachRow)
{
    QVector<SessionEntry> entries{start(), {0, IdentifierSelected{"main"}}};
    for (qint64 i = 0; i < 30; ++i)
        entries.append(remark(i * 1013 * ms));
    const QVector<Element> bands = draw(entries).ofClass("identifier");
    ASSERT_THAT(bands, SizeIs(3));
    for (const Element &band : bands)
        EXPECT_DOUBLE_EQ(band.number("width"), 1200);
}

TEST(FrameDrawing, ShowsAnIdentifierInTheRowsThatItReaches)
{
    QVector<SessionEntry> entries{start(), {0, IdentifierSelected{"main"}}};
    for (qint64 i = 0; i < 30; ++i) {
        entries.append(remark(i * 1013 * ms));
        if (i == 5)
            entries.append({i * 1013 * ms, IdentifierSelected{"text"}});
        if (i == 15)
            entries.append({i * 1013 * ms, IdentifierSelected{"search"}});
    }
    const Picture picture = draw(entries);
    const std::string main = "0.000 s: identifier 'main' selected";
    const std::string text = "5.065 s: identifier 'text' selected";
    const std::string search = "15.195 s: identifier 'search' selected";
    EXPECT_THAT(picture.titles("identifier"), ElementsAre(main, text, text, search, search));
    EXPECT_THAT(picture.texts("identifier-label"),
                ElementsAre("'main'", "'text'", "'text'", "'search'", "'search'"));
}
