#include "FrameDrawing.h"

#include "SessionEntries.h"

#include <gmock/gmock.h>

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
