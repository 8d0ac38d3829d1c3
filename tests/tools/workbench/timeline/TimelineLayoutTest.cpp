#include "TimelineLayout.h"

#include "LabelRows.h"
#include "SessionEntries.h"

#include <QMap>

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using namespace Vorn::Test;

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

} // namespace

TEST(TimelineLayout, LetsNoLabelsOverlap)
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

TEST(TimelineLayout, ShowsNoTicksInALongPicture)
{
    QVector<SessionEntry> entries = longPress();
    for (qint64 i = 3; i < 8; ++i)
        entries.append(remark(i * 1000 * ms));
    EXPECT_THAT(draw(entries).ofClass("timer"), IsEmpty());
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
                ElementsAre("KEY_PLAY", "KEY_A", "KEY_PLAY", "SW_LINEIN_INSERT"));
    EXPECT_THAT(picture.texts("muted"), Contains("USB Keyboard"));
    EXPECT_THAT(picture.ofClass("bar-switch"), SizeIs(1));
}

TEST(TimelineLayout, PutsEventsOfUnknownKeysIntoALaneOfTheirOwn)
{
    const Picture picture =
        draw({start(), event(0, InputEvent::Power, InputEvent::KeyPressed, {})});
    EXPECT_THAT(picture.texts("lane"), ElementsAre("events"));
    EXPECT_THAT(picture.texts("event"), ElementsAre("Power press"));
}

TEST(TimelineLayout, MakesLanesForEventsWithoutRecords)
{
    EXPECT_THAT(draw({event(0, InputEvent::Info, InputEvent::KeyPressed)}).texts("lane"),
                ElementsAre("KEY_INFO"));
}
