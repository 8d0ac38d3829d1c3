#include "Timeline.h"

#include "TimelineAxis.h"

#include <QMap>
#include <QXmlStreamReader>

#include <gmock/gmock.h>

#include <linux/input.h>

#include <cmath>

using namespace Vorn::Workbench;

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using What = DetectorStep::What;

constexpr qint64 ms = 1000;
const char *const front = "/dev/input/event0";
const char *const keyboard = "/dev/input/event3";

/// An element of a picture.
struct Element
{
    QString name;
    QString cssClass;
    QMap<QString, QString> attributes;
    QString text; ///< without the title
    QString title;

    double number(const char *attribute) const { return attributes.value(attribute).toDouble(); }
};

class Picture
{
public:
    explicit Picture(const QByteArray &svg)
    {
        QXmlStreamReader reader(svg);
        QVector<int> open;
        while (!reader.atEnd()) {
            reader.readNext();
            if (reader.isStartElement()) {
                Element element;
                element.name = reader.name().toString();
                for (const QXmlStreamAttribute &attribute : reader.attributes())
                    element.attributes.insert(attribute.name().toString(),
                                              attribute.value().toString());
                element.cssClass = element.attributes.value("class");
                open.append(m_elements.size());
                m_elements.append(element);
            } else if (reader.isEndElement()) {
                open.removeLast();
            } else if (reader.isCharacters() && !open.isEmpty()) {
                addText(open, reader.text().toString());
            }
        }
        EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
        EXPECT_THAT(m_elements, Not(IsEmpty()));
    }

    QVector<Element> ofClass(const QString &cssClass) const
    {
        QVector<Element> found;
        for (const Element &element : m_elements) {
            if (element.cssClass == cssClass)
                found.append(element);
        }
        return found;
    }

    std::vector<std::string> texts(const QString &cssClass) const
    {
        std::vector<std::string> texts;
        for (const Element &element : ofClass(cssClass)) {
            if (element.name == "text")
                texts.push_back(element.text.trimmed().toStdString());
        }
        return texts;
    }

    std::vector<std::string> titles(const QString &cssClass) const
    {
        std::vector<std::string> titles;
        for (const Element &element : ofClass(cssClass))
            titles.push_back(element.title.toStdString());
        return titles;
    }

    const QVector<Element> &elements() const { return m_elements; }
    const Element &root() const { return m_elements.first(); }

private:
    void addText(const QVector<int> &open, const QString &text)
    {
        Element &element = m_elements[open.last()];
        if (element.name == "title" && open.size() > 1)
            m_elements[open.at(open.size() - 2)].title += text;
        else
            element.text += text;
    }

    QVector<Element> m_elements;
};

SessionEntry start()
{
    return {0, SessionStart{"a.scenario", "player.toml", 1'700'000'000'000'000}};
}

SessionEntry plugged(qint64 time, const char *device = front, const char *name = "front-panel")
{
    return {time, DeviceChange{device, name, InputEvent::Bus::LocalUI, true}};
}

SessionEntry key(qint64 time, int code, int value, const char *device = front)
{
    return {time, RecordRead{device, EV_KEY, code, value, 1}};
}

SessionEntry detector(qint64 time, What what, const QVector<int> &keys, qint64 due = 0,
                      bool mapped = false)
{
    return {time, DetectorStep{what, front, keys, due, mapped}};
}

SessionEntry event(qint64 time, InputEvent::Command command, InputEvent::State state,
                   const QVector<int> &codes = {KEY_INFO})
{
    return {time,
            EventPublished{command, state, InputEvent::Bus::LocalUI, front, EV_KEY, codes,
                           std::nullopt}};
}

SessionEntry remark(qint64 time)
{
    return {time, Remark{"remark"}};
}

/// Held from 200 ms to 2200 ms; the long press is due at 1210 ms, which a tick notices later.
QVector<SessionEntry> longPress()
{
    return {start(),
            plugged(0),
            key(200 * ms, KEY_INFO, 1),
            detector(200 * ms, What::LongPressDue, {KEY_INFO}, 1210 * ms),
            event(1250 * ms, InputEvent::Info, InputEvent::KeyLongPress),
            key(2200 * ms, KEY_INFO, 0),
            detector(2200 * ms, What::LongPressEnded, {KEY_INFO}),
            event(2200 * ms, InputEvent::Info, InputEvent::KeyReleased)};
}

QVector<SessionEntry> chord()
{
    const QVector<int> pair{KEY_STOP, KEY_PLAY};
    return {start(),
            plugged(0),
            key(300 * ms, KEY_STOP, 1),
            key(500 * ms, KEY_PLAY, 1),
            detector(500 * ms, What::FirstKeyWithdrawn, {KEY_STOP}),
            detector(500 * ms, What::ChordFound, pair, 0, true),
            event(500 * ms, InputEvent::FactoryReset, InputEvent::KeyPressed, pair),
            key(700 * ms, KEY_INFO, 1),
            detector(700 * ms, What::Dropped, {KEY_INFO}),
            key(1000 * ms, KEY_STOP, 0),
            key(1100 * ms, KEY_PLAY, 0),
            detector(1100 * ms, What::ChordReleased, pair),
            event(1100 * ms, InputEvent::FactoryReset, InputEvent::KeyReleased, pair)};
}

Picture draw(const QVector<SessionEntry> &entries, const TimelineOptions &options = {})
{
    return Picture(timelineSvg(entries, options));
}

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

TEST(Timeline, GivesEveryClassAColourInLightAndDarkSurroundings)
{
    for (const auto &entries : {longPress(), chord()}) {
        const QByteArray svg = timelineSvg(entries, {});
        const QList<QByteArray> styles{svg.left(svg.indexOf("@media")),
                                       svg.mid(svg.indexOf("@media (prefers-color-scheme: dark)"),
                                               svg.indexOf("</style>") - svg.indexOf("@media"))};
        const Picture picture(svg);
        for (const Element &element : picture.elements()) {
            // Titles and lanes are coloured as all texts are.
            if (element.cssClass.isEmpty() || element.name == "text")
                continue;
            const QByteArray selector = '.' + element.cssClass.toUtf8() + ' ';
            for (const QByteArray &style : styles)
                EXPECT_TRUE(style.contains(selector)) << selector.constData();
        }
    }
}

TEST(Timeline, IsTheSameForTheSameSession)
{
    EXPECT_EQ(timelineSvg(longPress(), {}), timelineSvg(longPress(), {}));
    EXPECT_EQ(timelineSvg(chord(), {}), timelineSvg(chord(), {}));
}

TEST(Timeline, HasALaneForEachKeyInOrderOfAppearance)
{
    const QVector<SessionEntry> entries{plugged(0),
                                        plugged(0, keyboard, "USB Keyboard"),
                                        key(10 * ms, KEY_PLAY, 1),
                                        key(20 * ms, KEY_A, 1, keyboard),
                                        key(30 * ms, KEY_PLAY, 0),
                                        key(40 * ms, KEY_PLAY, 1, keyboard),
                                        {50 * ms, RecordRead{front, EV_SW, SW_LINEIN_INSERT, 1, 1}},
                                        {60 * ms, RecordRead{front, EV_SYN, SYN_REPORT, 0, 1}}};
    const Picture picture = draw(entries);
    EXPECT_THAT(picture.texts("lane"),
                ElementsAre("KEY_PLAY", "KEY_A", "KEY_PLAY", "SW_LINEIN_INSERT"));
    EXPECT_THAT(picture.texts("muted"), Contains("USB Keyboard"));
    EXPECT_THAT(picture.ofClass("bar-switch"), SizeIs(1));
}

TEST(Timeline, DrawsBarsInProportionToTheTimeThatKeysWereDown)
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

TEST(Timeline, ShowsThatAKeyWasNeverReleased)
{
    const Picture picture = draw({start(), key(0, KEY_A, 1), remark(900 * ms)});
    EXPECT_THAT(picture.titles("bar"),
                Contains("KEY_A: 0.000 s to 0.900 s (0.900 s), did not end"));
    EXPECT_THAT(picture.ofClass("open"), Not(IsEmpty()));
}

TEST(Timeline, EndsTheBarsOfADeviceThatGoes)
{
    const DeviceChange gone{front, "front-panel", InputEvent::Bus::LocalUI, false};
    const Picture picture = draw({start(), key(0, KEY_A, 1), {400 * ms, gone}, remark(900 * ms)});
    EXPECT_THAT(picture.titles("bar"), Contains("KEY_A: 0.000 s to 0.400 s (0.400 s)"));
    EXPECT_THAT(picture.ofClass("open"), IsEmpty());
}

TEST(Timeline, ShowsAutoRepeatsWithinTheBar)
{
    const Picture picture =
        draw({start(), key(0, KEY_A, 1), key(250 * ms, KEY_A, 2), key(300 * ms, KEY_A, 0)});
    EXPECT_THAT(picture.titles("repeat"), Contains("0.250 s: KEY_A repeat"));
}

TEST(Timeline, ShowsHowLateALongPressWasNoticed)
{
    const Picture picture = draw(longPress());
    const QVector<Element> late = picture.ofClass("late");
    ASSERT_THAT(late, SizeIs(Ge(1)));
    EXPECT_EQ(late.first().title.toStdString(), "due at 1.210 s, published at 1.250 s");
    const Element bar = picture.ofClass("bar").first();
    EXPECT_NEAR(late.first().number("width"), bar.number("width") * 40 / 2000, 0.2);
    EXPECT_THAT(picture.titles("due"), Contains("1.210 s: KEY_INFO long press is due"));
    EXPECT_THAT(picture.titles("long-press"),
                Contains("1.250 s: [cmd=Info, state=KeyLongPress, bus=LocalUI] KEY_INFO"));
}

TEST(Timeline, TellsTheLatencyOfAnEvent)
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

TEST(Timeline, ShowsTheTimersTicksWhileAKeyIsTimed)
{
    const Picture picture = draw(longPress());
    const QVector<double> ticks = ticksOfFirstLane(picture);
    ASSERT_THAT(ticks, SizeIs(41));
    const Element bar = picture.ofClass("bar").first();
    EXPECT_NEAR(ticks.first(), bar.number("x"), 0.2);
    EXPECT_NEAR(ticks.last(), bar.number("x") + bar.number("width"), 0.2);
}

TEST(Timeline, ShowsThatTheTimerOfADeviceServesAllItsKeys)
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

TEST(Timeline, ShowsTicksOnBothSidesOfATimeThatIsLeftOut)
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

TEST(Timeline, ShowsNoTicksInALongPicture)
{
    QVector<SessionEntry> entries = longPress();
    for (qint64 i = 3; i < 8; ++i)
        entries.append(remark(i * 1000 * ms));
    EXPECT_THAT(draw(entries).ofClass("timer"), IsEmpty());
}

TEST(Timeline, ShowsNoLongPressThatWasCalledOffBeforeItWasDue)
{
    const Picture picture =
        draw({start(), key(0, KEY_INFO, 1), detector(0, What::LongPressDue, {KEY_INFO}, 1000 * ms),
              key(300 * ms, KEY_INFO, 0), detector(300 * ms, What::LongPressEnded, {KEY_INFO}),
              remark(2000 * ms)});
    EXPECT_THAT(picture.ofClass("due"), IsEmpty());
}

TEST(Timeline, ShowsALongPressThatAutoRepeatsPutOffOnce)
{
    QVector<SessionEntry> entries{start(), key(0, KEY_INFO, 1)};
    for (qint64 time = 0; time < 600; time += 100) {
        entries.append(key(time * ms, KEY_INFO, 2));
        entries.append(detector(time * ms, What::LongPressDue, {KEY_INFO}, (time + 400) * ms));
    }
    entries.append(remark(1000 * ms));
    EXPECT_THAT(draw(entries).titles("flag"),
                ElementsAre("0.900 s: KEY_INFO long press is due", "")) // "" is the legend's
        << "one in the lane";
}

TEST(Timeline, ShowsAChordInALaneUnderItsKeys)
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

TEST(Timeline, ShowsTheFirstKeyOfAChordAsWithdrawn)
{
    const Picture picture = draw(chord());
    EXPECT_THAT(picture.titles("withdrawn"),
                Contains("0.500 s: KEY_STOP is withdrawn for a chord"));
    const Element withdrawn = picture.ofClass("bar-withdrawn").first();
    const Element bar = picture.ofClass("bar").first();
    EXPECT_NEAR(withdrawn.number("x"), bar.number("x") + bar.number("width"), 0.2);
    EXPECT_NEAR(withdrawn.number("width"), bar.number("width") * 500 / 200, 0.5);
}

TEST(Timeline, ShowsRecordsThatWereDropped)
{
    EXPECT_THAT(draw(chord()).titles("dropped"), Contains("0.700 s: KEY_INFO record is dropped"));
}

TEST(Timeline, ShowsAChordWithoutACommand)
{
    const Picture picture = draw({start(), key(0, KEY_STOP, 1), key(100 * ms, KEY_PLAY, 1),
                                  detector(100 * ms, What::ChordFound, {KEY_STOP, KEY_PLAY})});
    EXPECT_THAT(picture.ofClass("bar-chord-unmapped"), SizeIs(1));
    EXPECT_THAT(picture.titles("link"),
                ElementsAre("0.100 s: chord KEY_STOP + KEY_PLAY, no command"));
}

TEST(Timeline, LetsNoLabelsOverlap)
{
    QVector<SessionEntry> entries{start()};
    for (qint64 i = 0; i < 60; ++i)
        entries.append(event(i * 37 * ms, i % 3 ? InputEvent::Info : InputEvent::FactoryReset,
                             i % 2 ? InputEvent::KeyPressed : InputEvent::KeyLongPress));
    QMap<double, QVector<QPair<double, double>>> rows;
    const Picture picture = draw(entries);
    const double right = picture.root().number("width");
    for (const Element &label : picture.ofClass("event")) {
        const double width = LabelRows::width(label.text.trimmed());
        const double x = label.number("x");
        const double from = label.attributes.value("text-anchor") == "end" ? x - width : x;
        EXPECT_GE(from, 0);
        EXPECT_LE(from + width, right + 1);
        for (const auto &other : rows.value(label.number("y"))) {
            EXPECT_FALSE(from < other.second && from + width > other.first)
                << label.text.toStdString() << " at " << x;
        }
        rows[label.number("y")].append({from, from + width});
    }
    EXPECT_THAT(rows, SizeIs(5));
    EXPECT_EQ(picture.titles("press").size() + picture.titles("long-press").size(),
              60U + 2U) // with the legend's
        << "an event without room for a label has its mark";
}

TEST(Timeline, PutsEventsOfUnknownKeysIntoALaneOfTheirOwn)
{
    const Picture picture =
        draw({start(), event(0, InputEvent::Power, InputEvent::KeyPressed, {})});
    EXPECT_THAT(picture.texts("lane"), ElementsAre("events"));
    EXPECT_THAT(picture.texts("event"), ElementsAre("Power press"));
}

TEST(Timeline, MakesLanesForEventsWithoutRecords)
{
    EXPECT_THAT(draw({event(0, InputEvent::Info, InputEvent::KeyPressed)}).texts("lane"),
                ElementsAre("KEY_INFO"));
}

TEST(Timeline, ShowsWhichIdentifierIsSelected)
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

TEST(Timeline, ShowsNoIdentifiersWhereThereIsOnlyTheUnnamedOne)
{
    const Picture picture = draw({start(), {0, IdentifierSelected{}}, remark(1000 * ms)});
    EXPECT_THAT(picture.ofClass("identifier"), IsEmpty());
}

TEST(Timeline, ShowsDevicesThatComeAndGo)
{
    const DeviceChange gone{keyboard, "USB Keyboard", InputEvent::Bus::USB, false};
    const Picture picture =
        draw({start(), plugged(0), plugged(1, keyboard, "USB Keyboard"), {800 * ms, gone}});
    EXPECT_THAT(picture.texts("muted"), Contains("+ front-panel (2 in all)"));
    EXPECT_THAT(picture.texts("muted"), Contains("− USB Keyboard"));
    EXPECT_THAT(picture.titles("device"), Contains(HasSubstr("/dev/input/event3 USB Keyboard")));
}

TEST(Timeline, ShowsExpectationsThatFailedOnly)
{
    const Picture picture =
        draw({start(),
              {100 * ms, ExpectationChecked{"a.scenario", 3, "expect Info", true, {}}},
              {500 * ms, ExpectationChecked{"a.scenario", 4, "expect Mute", false, "Info"}}});
    EXPECT_THAT(picture.texts("failure-label"), ElementsAre("✗ expect Mute"));
    EXPECT_THAT(picture.titles("failure"),
                ElementsAre("0.500 s: a.scenario:4: failed: expect Mute, but found Info"));
}

TEST(Timeline, LeavesOutLongTimesInWhichNothingHappens)
{
    const Picture picture = draw({start(), key(0, KEY_A, 1), key(100 * ms, KEY_A, 0),
                                  key(60'000 * ms, KEY_A, 1), key(60'100 * ms, KEY_A, 0)});
    EXPECT_THAT(picture.titles("break"), ElementsAre("59.400 s in which nothing happened"));
    EXPECT_THAT(picture.texts("muted"), Contains("⋯ 59.4 s"));
    const QVector<Element> bars = picture.ofClass("bar");
    EXPECT_NEAR(bars.at(0).number("width"), bars.at(1).number("width"), 0.2);
    EXPECT_GT(bars.at(0).number("width"), 20);
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

TEST(Timeline, IsDrawnForASessionOfOneMomentOrNone)
{
    EXPECT_THAT(draw({}).texts("title"), ElementsAre("session"));
    EXPECT_THAT(draw({start()}).texts("tick"), Contains("0.50 s"));
    EXPECT_THAT(draw({key(5, KEY_A, 0)}).texts("title"), ElementsAre("session"));
}

TEST(Timeline, TellsHowManyLanesItLeavesOut)
{
    QVector<SessionEntry> entries{start()};
    for (int code = 0; code < 250; ++code)
        entries.append(key(qint64(code) * ms, code, 1));
    const Picture picture = draw(entries);
    EXPECT_THAT(picture.texts("lane"), SizeIs(200));
    EXPECT_THAT(picture.texts("failure-label"), ElementsAre("left out: 50 lanes"));
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
    ASSERT_THAT(picture.texts("failure-label"), SizeIs(1));
    EXPECT_THAT(picture.texts("failure-label").front(), HasSubstr("left out: "));
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

TEST(Timeline, ReplacesWhatXmlCannotHold)
{
    QString text = QStringLiteral("a<b>&\"'");
    for (const int bad : {0x0, 0x1b, 0xd800, 0xffff})
        text += QChar(bad);
    const Picture picture = draw({{0, SessionStart{text, text, 0}},
                                  plugged(0, front, "\x01\x02"),
                                  key(1, KEY_A, 1),
                                  {2, IdentifierSelected{text}},
                                  {3, Remark{text}},
                                  {4, ExpectationChecked{text, 1, text, false, text}}});
    EXPECT_THAT(picture.root().title.toStdString(), testing::StartsWith("a<b>&\"'"));
    EXPECT_EQ(picture.root().title.count(QChar(QChar::ReplacementCharacter)), 4);
}
