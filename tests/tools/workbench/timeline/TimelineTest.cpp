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
