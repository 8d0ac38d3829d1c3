#include "LegendDrawing.h"

#include "SessionEntries.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using namespace Vorn::Test;

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

} // namespace

TEST(LegendDrawing, ExplainsWhatIsInThePicture)
{
    EXPECT_THAT(draw(longPress()).texts("muted"),
                AllOf(Contains("key down"), Contains("timed for a long press"),
                      Contains("long press due"), Contains("due, not yet published"),
                      Contains("long press published"), Contains("release published")));
    EXPECT_THAT(draw(chord()).texts("muted"),
                AllOf(Contains("chord"), Contains("withdrawn for a chord"),
                      Contains("record dropped"), Contains("press published")));
}

TEST(LegendDrawing, LeavesOutWhatIsNot)
{
    EXPECT_THAT(draw(longPress()).texts("muted"),
                AllOf(Not(Contains("chord")), Not(Contains("auto-repeat")),
                      Not(Contains("press published")), Not(Contains("switch on"))));
    const Picture empty = draw({start()});
    EXPECT_THAT(empty.texts("muted"), Not(Contains("key down")));
    EXPECT_THAT(empty.ofClass("bar"), IsEmpty());
}

TEST(LegendDrawing, HasTheItemsOfThePictureAndNoOthers)
{
    using What = DetectorStep::What;
    using State = InputEvent::State;
    const auto legendOf = [](QVector<SessionEntry> entries) {
        entries.prepend(start());
        // The legend is what is in no other place of the picture: its texts are beside samples.
        std::vector<std::string> texts;
        const Picture picture = draw(entries);
        for (const Element &element : picture.ofClass("muted")) {
            if (element.title.isEmpty()
                && element.number("y") > picture.root().number("height") - 90
                && !element.attributes.contains("text-anchor"))
                texts.push_back(element.text.trimmed().toStdString());
        }
        return texts;
    };
    const SessionEntry down = key(0, KEY_INFO, 1);
    EXPECT_THAT(legendOf({down}), ElementsAre("key down"));
    EXPECT_THAT(legendOf({down, key(500 * ms, KEY_INFO, 2)}),
                ElementsAre("key down", "auto-repeat"));
    EXPECT_THAT(legendOf({down, detector(500 * ms, What::Forgotten, {KEY_INFO})}),
                ElementsAre("key down", "forgotten in a reset"));
    EXPECT_THAT(legendOf({down, detector(500 * ms, What::FirstKeyWithdrawn, {KEY_INFO})}),
                ElementsAre("key down", "withdrawn for a chord"));
    EXPECT_THAT(legendOf({detector(500 * ms, What::Dropped, {KEY_INFO})}),
                ElementsAre("key down", "record dropped"));
    EXPECT_THAT(legendOf({event(0, InputEvent::Info, State::KeyPressed)}),
                ElementsAre("key down", "press published"));
    EXPECT_THAT(legendOf({event(0, InputEvent::Info, State::KeyLongPress)}),
                ElementsAre("key down", "long press published"));
    EXPECT_THAT(legendOf({event(0, InputEvent::Info, State::KeyReleased)}),
                ElementsAre("key down", "release published"));
    EXPECT_THAT(legendOf({event(0, InputEvent::Info, State::KeyPressed),
                          event(0, InputEvent::Info, State::KeyReleased)}),
                ElementsAre("key down", "press and release published at once"));
    EXPECT_THAT(legendOf({lineIn(0, 1), lineInEvent(0, State::SwitchEnabled)}),
                ElementsAre("switch on"));
    EXPECT_THAT(legendOf({lineIn(0, 0), lineInEvent(0, State::SwitchDisabled)}),
                ElementsAre("switch off"));
    EXPECT_THAT(legendOf({remark(0)}), IsEmpty());
}

TEST(LegendDrawing, LeavesOutWhatIsBesideThePartThatIsShown)
{
    TimelineOptions options;
    options.from = 1300 * ms;
    options.to = 2000 * ms;
    const Picture picture = draw(longPress(), options);
    EXPECT_THAT(picture.texts("muted"),
                AllOf(Contains("key down"), Contains("timed for a long press"),
                      Not(Contains("long press due")), Not(Contains("due, not yet published")),
                      Not(Contains("long press published")), Not(Contains("release published"))));
}

TEST(LegendDrawing, ShowsASampleOfEachSymbol)
{
    // One in the lane, one in the legend.
    const Picture picture = draw(chord());
    EXPECT_THAT(picture.ofClass("withdrawn"), SizeIs(2));
    EXPECT_THAT(picture.ofClass("dropped"), SizeIs(2));
    EXPECT_THAT(picture.ofClass("bar-chord"), SizeIs(2));
}

TEST(LegendDrawing, StartsANewRowRatherThanCrossTheEdge)
{
    QVector<SessionEntry> entries = longPress();
    entries += chord();
    const Picture picture = draw(entries);
    const double right = picture.root().number("width");
    double firstRow = 0;
    double lastRow = 0;
    for (const Element &element : picture.ofClass("muted")) {
        EXPECT_LE(element.number("x"), right);
        if (element.text.trimmed() == "key down")
            firstRow = element.number("y");
        if (element.text.trimmed() == "release published")
            lastRow = element.number("y");
    }
    EXPECT_GT(firstRow, 0);
    EXPECT_GT(lastRow, firstRow);
    EXPECT_LT(lastRow, picture.root().number("height"));
}

TEST(LegendDrawing, HasTheSampleBesideItsText)
{
    const Picture picture = draw(
        {start(), key(0, KEY_INFO, 1), key(500 * ms, KEY_INFO, 2), key(900 * ms, KEY_INFO, 0)});
    const QVector<Element> bars = picture.ofClass("bar");
    const QVector<Element> repeats = picture.ofClass("repeat");
    ASSERT_THAT(bars, SizeIs(1 + 2));
    ASSERT_THAT(repeats, SizeIs(1 + 2));
    const QVector<Element> texts = picture.ofClass("muted");
    const Element &down = texts.at(texts.size() - 2);
    const Element &repeat = texts.last();
    EXPECT_EQ(down.text.trimmed().toStdString(), "key down");
    EXPECT_DOUBLE_EQ(bars.at(1).number("x"), down.number("x") - 24);
    EXPECT_DOUBLE_EQ(bars.at(1).number("y") + bars.at(1).number("height") / 2,
                     down.number("y") - 4);
    EXPECT_DOUBLE_EQ(bars.at(2).number("x"), repeat.number("x") - 24);
    for (const int sample : {1, 2}) {
        EXPECT_GT(repeats.at(sample).number("x1"), bars.at(2).number("x"));
        EXPECT_LT(repeats.at(sample).number("x1"),
                  bars.at(2).number("x") + bars.at(2).number("width"));
    }
    EXPECT_GT(repeat.number("x"), down.number("x") + 40) << "one after the other";
    EXPECT_DOUBLE_EQ(repeat.number("y"), down.number("y"));
}

TEST(LegendDrawing, DrawsASampleBesideEachText)
{
    using Item = PlacedLegend::Item;
    const TimelineModel model;
    TimelineLayout layout(model);
    layout.legend.clear();
    for (const Item item : {Item::Down, Item::Repeat, Item::Withdrawn, Item::Forgotten, Item::Timed,
                            Item::Due, Item::Late, Item::Click, Item::Press, Item::LongPress,
                            Item::Release, Item::On, Item::Off, Item::Chord, Item::Dropped})
        layout.legend.append({item, QString::number(static_cast<int>(item)), 100, 50});
    TimelineSvg svg(200, 100, "t", "d");
    TimelineCanvas canvas{model, layout, svg};
    drawLegend(&canvas);
    EXPECT_EQ(Picture(svg.finished()).drawing(), R"(paper 0 0 200 100
bar 100 45 18 10
muted 124 54 '0'
bar 100 45 18 10
repeat 106 47 106 53
repeat 112 47 112 53
muted 124 54 '1'
bar-withdrawn 100 45 18 10
withdrawn translate(109 50)
muted 124 54 '2'
bar-withdrawn 100 45 18 10
forgotten translate(109 50)
muted 124 54 '3'
timed 100 50 118 50
muted 124 54 '4'
due 105 43 105 57
flag translate(105 51)
muted 124 54 '5'
late 100 48 18 4
muted 124 54 '6'
press translate(109 50)
release translate(109 50)
muted 124 54 '7'
press translate(109 50)
muted 124 54 '8'
long-press translate(109 50)
muted 124 54 '9'
release translate(109 50)
muted 124 54 '10'
on translate(109 50)
muted 124 54 '11'
off translate(109 50)
muted 124 54 '12'
bar-chord 100 45 18 10
muted 124 54 '13'
dropped translate(109 50)
muted 124 54 '14'
)");
}
