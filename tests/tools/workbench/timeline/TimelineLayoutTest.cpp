#include "TimelineLayout.h"

#include "LabelRows.h"
#include "SessionEntries.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using namespace Vorn::Test;

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::SizeIs;
using What = DetectorStep::What;

struct Box
{
    double left = 0;
    double right = 0;
    double top = 0;
    double bottom = 0;
    std::string text;
};

/// Where the texts in and above the lanes are.
QVector<Box> boxesOf(const Picture &picture)
{
    QVector<Box> boxes;
    for (const char *cssClass : {"event", "flag-label", "failure-label", "tick"}) {
        for (const Element &element : picture.ofClass(cssClass)) {
            const QString text = element.text.trimmed();
            const QString anchor = element.attributes.value("text-anchor");
            const double width = LabelRows::width(text);
            const double shift = anchor == "end" ? width : anchor == "middle" ? width / 2 : 0;
            const double left = element.number("x") - shift;
            boxes.append({left, left + width, element.number("y") - 8, element.number("y") + 1,
                          text.toStdString()});
        }
    }
    return boxes;
}

bool overlap(const Box &a, const Box &b)
{
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

bool crosses(const Element &line, const Box &text)
{
    const double x = line.number("x1");
    return x > text.left + 1 && x < text.right - 1 && line.number("y1") < text.bottom
        && line.number("y2") > text.top;
}

/// 200 presses a minute of three keys, with all that can get in the way of their labels.
QVector<SessionEntry> manyPresses()
{
    using State = InputEvent::State;
    QVector<SessionEntry> entries{start(), plugged(0)};
    for (qint64 i = 0; i < 200; ++i) {
        const qint64 time = i * 300 * ms + i * i % 7 * 20 * ms + i / 20 * 4000 * ms;
        const int code = i % 5 == 0 ? KEY_STOP : i % 3 == 0 ? KEY_PLAY : KEY_INFO;
        entries +=
            {key(time, code, 1), event(time, InputEvent::VolumeUp, State::KeyPressed, {code})};
        if (i % 11 == 0)
            entries.append(detector(time, What::ChordFound, {KEY_STOP, KEY_PLAY}, 0, true));
        if (i % 3 == 0)
            entries.append({time, ExpectationChecked{"a", 4, "expect Mute", false, "Info"}});
        if (i % 4 == 0)
            entries.append(remark(time + 50 * ms));
        if (i % 7 == 0)
            entries.append(event(time + 70 * ms, InputEvent::Stop, State::KeyLongPress, {code}));
        entries += {key(time + 90 * ms, code, 0),
                    event(time + 90 * ms, InputEvent::VolumeUp, State::KeyReleased, {code})};
    }
    return entries;
}

} // namespace

TEST(TimelineLayout, LetsNoTextsOverlapAndNoLineCrossOne)
{
    const Picture picture = draw(manyPresses());
    const QVector<Box> texts = boxesOf(picture);
    ASSERT_GT(texts.size(), 60);
    for (int i = 0; i < texts.size(); ++i) {
        EXPECT_GE(texts.at(i).left, 0);
        EXPECT_LE(texts.at(i).right, picture.root().number("width") + 1);
        for (int other = 0; other < i; ++other)
            EXPECT_FALSE(overlap(texts.at(i), texts.at(other)))
                << texts.at(i).text << " and " << texts.at(other).text;
    }
    for (const char *lines :
         {"leader", "leader-long-press", "device", "remark", "failure", "break-edge"})
    {
        for (const Element &line : picture.ofClass(lines)) {
            for (const Box &text : texts)
                EXPECT_FALSE(crosses(line, text)) << lines << " through " << text.text;
        }
    }
}

TEST(TimelineLayout, KeepsTheSymbolsOfEventsWithoutRoomForALabel)
{
    QVector<SessionEntry> entries{start()};
    for (qint64 i = 0; i < 60; ++i)
        entries.append(event(i * 37 * ms, i % 3 ? InputEvent::Info : InputEvent::FactoryReset,
                             i % 2 ? InputEvent::KeyPressed : InputEvent::KeyLongPress));
    const Picture picture = draw(entries);
    EXPECT_LT(picture.texts("event").size(), 40U);
    EXPECT_EQ(picture.titles("press").size() + picture.titles("long-press").size(),
              60U + 2U); // with the legend's
}

TEST(TimelineLayout, ContinuesALongSessionInTheNextRow)
{
    QVector<SessionEntry> entries{start(), plugged(0), {0, IdentifierSelected{"main"}}};
    entries += {key(0, KEY_A, 1), key(29'900 * ms, KEY_A, 0)};
    for (qint64 i = 0; i < 30; ++i)
        entries.append(event(i * 1000 * ms, InputEvent::Info, InputEvent::KeyLongPress));
    const Picture picture = draw(entries);
    EXPECT_THAT(picture.texts("lane"),
                ElementsAre("KEY_A", "KEY_INFO", "KEY_A", "KEY_INFO", "KEY_A", "KEY_INFO"));
    EXPECT_THAT(picture.titles("identifier"), SizeIs(3));
    EXPECT_THAT(picture.texts("flag-label"), SizeIs(1));
    EXPECT_EQ(picture.titles("long-press").size(), 30U + 1U) << "each event is in one row";
    EXPECT_LE(picture.root().number("width"), 1600);
}

TEST(TimelineLayout, HasAHeadingForEachDevice)
{
    const Picture picture =
        draw({plugged(0), plugged(0, keyboard, "USB Keyboard"), key(10 * ms, KEY_PLAY, 1),
              key(20 * ms, KEY_A, 1, keyboard), key(30 * ms, KEY_STOP, 1)});
    EXPECT_THAT(picture.texts("device-name"), ElementsAre("front-panel", "USB Keyboard"));
    EXPECT_THAT(picture.texts("lane"), ElementsAre("KEY_PLAY", "KEY_STOP", "KEY_A"));
    EXPECT_THAT(picture.texts("muted"), Contains("event3"));
}

TEST(TimelineLayout, HasALaneForEachKeyInOrderOfAppearance)
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
                ElementsAre("KEY_PLAY", "SW_LINEIN_INSERT", "KEY_A", "KEY_PLAY"));
    EXPECT_THAT(picture.ofClass("bar-switch"), SizeIs(1));
}

TEST(TimelineLayout, PutsEventsOfUnknownKeysIntoALaneOfTheirOwn)
{
    const Picture picture =
        draw({start(), event(0, InputEvent::Power, InputEvent::KeyPressed, {})});
    EXPECT_THAT(picture.texts("lane"), ElementsAre("events"));
    EXPECT_THAT(picture.texts("device-name"), ElementsAre("unknown cause"));
    EXPECT_THAT(picture.texts("event"), ElementsAre("Power press"));
}

TEST(TimelineLayout, MakesLanesForEventsWithoutRecords)
{
    EXPECT_THAT(draw({event(0, InputEvent::Info, InputEvent::KeyPressed)}).texts("lane"),
                ElementsAre("KEY_INFO"));
}

TEST(TimelineLayout, HasItsRowsBelowEachOtherAndTheLegendBelowThem)
{
    QVector<SessionEntry> entries{start(), key(0, KEY_A, 1)};
    for (qint64 i = 0; i < 30; ++i)
        entries.append(remark(i * 1000 * ms));
    const Picture picture = draw(entries);
    double bottom = 0;
    double time = -1;
    int rows = 0;
    for (const Element &tick : picture.ofClass("tick")) {
        rows += tick.number("y") > bottom ? 1 : 0;
        EXPECT_GE(tick.number("y"), bottom);
        bottom = tick.number("y");
        const double labelled = tick.text.trimmed().section(' ', 0, 0).toDouble();
        EXPECT_GT(labelled, time);
        time = labelled;
    }
    EXPECT_EQ(rows, 3);
    const Element lanes = picture.ofClass("stripe").last();
    const Element legend = picture.ofClass("muted").last();
    EXPECT_EQ(legend.text.trimmed().toStdString(), "key down");
    EXPECT_EQ(legend.number("y"), lanes.number("y") + lanes.number("height") + 22 + 4);
    EXPECT_EQ(picture.root().number("height"), legend.number("y") - 4 + 36);
}

TEST(TimelineLayout, LabelsAPressAsAClickOnlyWithItsOwnReleaseSoonAfter)
{
    using State = InputEvent::State;
    const auto labelsOf = [](const SessionEntry &next) {
        // 120 px for a second, so that a press and what follows soon are close together.
        QVector<SessionEntry> entries{start(), event(0, InputEvent::Info, State::KeyPressed), next};
        for (qint64 i = 1; i <= 8; ++i)
            entries.append(remark(i * 2000 * ms));
        return draw(entries).texts("event");
    };
    EXPECT_THAT(labelsOf(event(250 * ms, InputEvent::Info, State::KeyReleased)),
                ElementsAre("Info click"));
    EXPECT_THAT(labelsOf(event(250 * ms + 1, InputEvent::Info, State::KeyReleased)),
                ElementsAre("Info press", "Info release"));
    EXPECT_THAT(labelsOf(event(100 * ms, InputEvent::Info, State::KeyLongPress)),
                ElementsAre("Info press", "Info long press"));
    EXPECT_THAT(labelsOf(event(100 * ms, InputEvent::Info, State::KeyPressed)),
                ElementsAre("Info press", "Info press"));
    EXPECT_THAT(labelsOf(event(100 * ms, InputEvent::Stop, State::KeyReleased)),
                ElementsAre("Info press", "Stop release"));
    SessionEntry other = event(100 * ms, InputEvent::Info, State::KeyReleased);
    std::get<EventPublished>(other.what).bus = InputEvent::Bus::USB;
    EXPECT_THAT(labelsOf(other), ElementsAre("Info press", "Info release"));
}

TEST(TimelineLayout, CountsTheFlagsOfEachMomentForItself)
{
    const Picture picture = draw({start(), remark(0), remark(0), remark(0), remark(500 * ms),
                                  remark(500 * ms), remark(1000 * ms)});
    EXPECT_THAT(picture.texts("flag-label"),
                ElementsAre("remark (3 in all)", "remark (2 in all)", "remark"));
    EXPECT_EQ(picture.ofClass("remark").first().title.toStdString(),
              "0.000 s: remark\n0.000 s: remark\n0.000 s: remark");
}

TEST(TimelineLayout, NamesTwentyFlagsOfAMoment)
{
    const auto titleOf = [](int count) {
        QVector<SessionEntry> entries{start()};
        for (int i = 0; i < count; ++i)
            entries.append(remark(0));
        const Picture picture = draw(entries);
        EXPECT_THAT(picture.texts("flag-label"),
                    ElementsAre("remark (" + std::to_string(count) + " in all)"));
        return picture.ofClass("remark").first().title;
    };
    EXPECT_EQ(titleOf(19).count('\n'), 18);
    EXPECT_EQ(titleOf(20).count('\n'), 19);
    EXPECT_EQ(titleOf(21).count('\n'), 19);
}

TEST(TimelineLayout, HasTheLabelsOfFlagsThatAreCloseBelowEachOther)
{
    const Picture picture = draw({start(), remark(0), remark(30 * ms), remark(60 * ms),
                                  remark(90 * ms), remark(120 * ms), remark(1000 * ms)});
    const QVector<Element> labels = picture.ofClass("flag-label");
    std::vector<double> places;
    for (const Element &label : labels)
        places.push_back(label.number("y"));
    ASSERT_THAT(places, SizeIs(5)) << "no room for that of the fifth";
    const double top = places.front();
    EXPECT_THAT(places, ElementsAre(top, top + 14, top + 28, top + 42, top));
}

TEST(TimelineLayout, MergesOnlyFlagsOfAKind)
{
    const Picture picture = draw({start(), plugged(0), remark(0), plugged(0, keyboard, "other")});
    EXPECT_THAT(picture.texts("flag-label"), ElementsAre("+ front-panel", "remark", "+ other"));
}
