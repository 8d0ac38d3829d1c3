#include "TimelineCollector.h"

#include "SessionEntries.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using namespace Vorn::Test;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using What = DetectorStep::What;

const TimelineLane &lane(const TimelineModel &model, const char *label)
{
    static const TimelineLane none;
    for (const TimelineLane &lane : model.lanes) {
        if (lane.label == label)
            return lane;
    }
    ADD_FAILURE() << "no lane " << label;
    return none;
}

TimelineBar onlyBar(const TimelineLane &lane)
{
    EXPECT_THAT(lane.bars, SizeIs(1));
    return lane.bars.value(0);
}

} // namespace

TEST(TimelineCollector, CollectsTheLaneOfAHeldKey)
{
    const TimelineModel model = collected(longPress());
    const TimelineLane &info = lane(model, "KEY_INFO");
    const TimelineBar bar = onlyBar(info);
    EXPECT_EQ(bar.from, 200 * ms);
    EXPECT_EQ(bar.to, 2200 * ms);
    EXPECT_FALSE(bar.isOpen);
    EXPECT_EQ(bar.withdrawn, std::nullopt);
    ASSERT_THAT(info.timed, SizeIs(1));
    EXPECT_EQ(info.timed.first().from, 200 * ms);
    EXPECT_EQ(info.timed.first().to, 2200 * ms);
    ASSERT_THAT(info.events, SizeIs(2));
    EXPECT_EQ(info.events.first().due(), 1210 * ms);
    EXPECT_EQ(info.events.last().due(), std::nullopt);
    ASSERT_THAT(info.marks, SizeIs(1));
    EXPECT_EQ(info.marks.first().kind, TimelineMark::Kind::Due);
    EXPECT_EQ(info.marks.first().time, 1210 * ms);
}

TEST(TimelineCollector, KeepsTheBarOfAWithdrawnKeyOpenUntilItsRelease)
{
    const TimelineModel model = collected(chord());
    const TimelineBar bar = onlyBar(lane(model, "KEY_STOP"));
    EXPECT_EQ(bar.withdrawn, 500 * ms);
    EXPECT_EQ(bar.to, 1000 * ms);
    EXPECT_FALSE(bar.isOpen);
}

TEST(TimelineCollector, HasNoWithdrawnPartOfAKeyThatIsUp)
{
    const TimelineModel model =
        collected({key(0, KEY_STOP, 1), key(100 * ms, KEY_STOP, 0),
                   detector(200 * ms, What::FirstKeyWithdrawn, {KEY_STOP})});
    EXPECT_EQ(onlyBar(lane(model, "KEY_STOP")).withdrawn, std::nullopt);
}

TEST(TimelineCollector, TimesAnEventByTheFirstOfItsKeysThatIsTimed)
{
    const auto statedOf = [](const QVector<int> &codes) {
        const TimelineModel model =
            collected({detector(100 * ms, What::LongPressDue, {KEY_STOP}, 1000 * ms),
                       detector(300 * ms, What::LongPressDue, {KEY_PLAY}, 1000 * ms),
                       {1100 * ms,
                        EventPublished{InputEvent::FactoryReset, InputEvent::KeyLongPress,
                                       InputEvent::Bus::LocalUI, front, EV_KEY, codes, 100 * ms}}});
        for (const TimelineLane &lane : model.lanes) {
            if (!lane.events.isEmpty())
                return lane.events.first().stated;
        }
        return std::optional<qint64>();
    };
    EXPECT_EQ(statedOf({KEY_STOP, KEY_PLAY}), 100 * ms);
    EXPECT_EQ(statedOf({KEY_PLAY, KEY_STOP}), 300 * ms);
    EXPECT_EQ(statedOf({KEY_INFO, KEY_PLAY}), 300 * ms);
    EXPECT_EQ(statedOf({KEY_INFO}), std::nullopt);
}

TEST(TimelineCollector, HasNoLaneForWhatIsPublishedAfterThePicture)
{
    const TimelineModel model =
        collected({key(0, KEY_A, 1), key(100 * ms, KEY_A, 0),
                   event(2000 * ms, InputEvent::Info, InputEvent::KeyPressed),
                   lineInEvent(2000 * ms, InputEvent::SwitchEnabled)},
                  {0, 1000 * ms});
    ASSERT_THAT(model.lanes, SizeIs(1));
    EXPECT_EQ(model.lanes.first().label.toStdString(), "KEY_A");
    EXPECT_EQ(model.marksLeftOut, 0);
}

TEST(TimelineCollector, ExtendsWhatHasNoEndToTheEndOfTheSession)
{
    const TimelineModel model = collected(
        {key(0, KEY_A, 1), detector(0, What::LongPressDue, {KEY_A}, 5000 * ms), remark(900 * ms)});
    const TimelineLane &a = lane(model, "KEY_A");
    EXPECT_TRUE(onlyBar(a).isOpen);
    EXPECT_EQ(onlyBar(a).to, 900 * ms);
    EXPECT_EQ(a.timed.first().to, 900 * ms);
    EXPECT_THAT(a.marks, IsEmpty());
}

TEST(TimelineCollector, EndsBarAndTimingWhenTheDeviceIsRemoved)
{
    const TimelineModel model =
        collected({key(0, KEY_A, 1), detector(0, What::LongPressDue, {KEY_A}, 5000 * ms),
                   key(0, KEY_A, 1, keyboard), unplugged(400 * ms), remark(900 * ms)});
    const TimelineLane &a = model.lanes.at(0);
    EXPECT_FALSE(onlyBar(a).isOpen);
    EXPECT_EQ(onlyBar(a).to, 400 * ms);
    EXPECT_EQ(a.timed.first().to, 400 * ms);
    EXPECT_TRUE(onlyBar(model.lanes.at(1)).isOpen) << "another device's";
}

TEST(TimelineCollector, TakesARepeatWithoutAPressAsThePress)
{
    const TimelineModel model = collected({key(0, KEY_A, 2), key(100 * ms, KEY_A, 2)});
    const TimelineLane &a = lane(model, "KEY_A");
    EXPECT_EQ(onlyBar(a).from, 0);
    ASSERT_THAT(a.marks, SizeIs(1));
    EXPECT_EQ(a.marks.first().kind, TimelineMark::Kind::Repeat);
    EXPECT_EQ(a.marks.first().time, 100 * ms);
}

TEST(TimelineCollector, LinksAChordToItsKeys)
{
    const TimelineModel model = collected(chord());
    ASSERT_THAT(model.links, SizeIs(1));
    EXPECT_EQ(model.links.first().time, 500 * ms);
    EXPECT_THAT(model.links.first().lanes, ElementsAre(0, 1, 2));
}

TEST(TimelineCollector, SortsMarksByTime)
{
    // That the long press was due is known only once the key is released.
    const TimelineModel model =
        collected({key(0, KEY_A, 1), detector(0, What::LongPressDue, {KEY_A}, 300 * ms),
                   key(400 * ms, KEY_A, 2), key(500 * ms, KEY_A, 0),
                   detector(500 * ms, What::LongPressEnded, {KEY_A})});
    const auto &marks = lane(model, "KEY_A").marks;
    ASSERT_THAT(marks, SizeIs(2));
    EXPECT_EQ(marks.first().kind, TimelineMark::Kind::Due);
    EXPECT_EQ(marks.last().kind, TimelineMark::Kind::Repeat);
}

TEST(TimelineCollector, KeepsTheFirstStartOnly)
{
    const TimelineModel model = collected({start(), {5, SessionStart{"other", {}, 0}}});
    EXPECT_TRUE(model.hasStart);
    EXPECT_EQ(model.start.source.toStdString(), "a.scenario");
}

TEST(TimelineCollector, KnowsThatASwitchThatGoesOffWasOn)
{
    const TimelineModel model =
        collected({start(), plugged(100 * ms), lineIn(700 * ms, 0), lineIn(900 * ms, 0)});
    const TimelineBar bar = onlyBar(lane(model, "SW_LINEIN_INSERT"));
    EXPECT_TRUE(bar.wasOpen);
    EXPECT_EQ(bar.from, 100 * ms);
    EXPECT_EQ(bar.to, 700 * ms);
}

TEST(TimelineCollector, KnowsNothingOfASwitchBeforeItsPositionIsQueried)
{
    const TimelineModel model = collected({start(), plugged(100 * ms), lineIn(100 * ms, 0, 0),
                                           lineIn(500 * ms, 1), lineIn(700 * ms, 0)});
    const TimelineBar bar = onlyBar(lane(model, "SW_LINEIN_INSERT"));
    EXPECT_FALSE(bar.wasOpen);
    EXPECT_EQ(bar.from, 500 * ms);
}

TEST(TimelineCollector, BelievesThePositionsThatArePublishedAtTheStart)
{
    using State = InputEvent::State;
    const TimelineModel on =
        collected({start(), plugged(100 * ms), lineInEvent(100 * ms, State::SwitchEnabled),
                   lineIn(700 * ms, 0)});
    EXPECT_EQ(onlyBar(lane(on, "SW_LINEIN_INSERT")).from, 100 * ms);
    EXPECT_EQ(onlyBar(lane(on, "SW_LINEIN_INSERT")).to, 700 * ms);
    const TimelineModel off =
        collected({start(), plugged(100 * ms), lineInEvent(100 * ms, State::SwitchDisabled),
                   lineIn(700 * ms, 0)});
    EXPECT_THAT(lane(off, "SW_LINEIN_INSERT").bars, IsEmpty());
}

TEST(TimelineCollector, ForgetsThePositionsOfADeviceThatGoes)
{
    const TimelineModel model =
        collected({start(), plugged(0), lineIn(100 * ms, 1), unplugged(300 * ms), plugged(500 * ms),
                   lineIn(700 * ms, 0)});
    const auto &bars = lane(model, "SW_LINEIN_INSERT").bars;
    ASSERT_THAT(bars, SizeIs(2));
    EXPECT_EQ(bars.at(1).from, 500 * ms);
    EXPECT_TRUE(bars.at(1).wasOpen);
}

TEST(TimelineCollector, ShowsTheKeyThatAResetMadeTheDetectorForget)
{
    const TimelineModel model = collected(
        {key(0, KEY_A, 1), detector(300 * ms, What::Forgotten, {KEY_A}), key(500 * ms, KEY_A, 0)});
    EXPECT_EQ(onlyBar(lane(model, "KEY_A")).withdrawn, 300 * ms);
    ASSERT_THAT(lane(model, "KEY_A").marks, SizeIs(1));
    EXPECT_EQ(lane(model, "KEY_A").marks.first().kind, TimelineMark::Kind::Forgotten);
}

TEST(TimelineCollector, CollectsThePartThatIsWanted)
{
    const TimelineModel model =
        collected({start(),
                   {0, IdentifierSelected{"a"}},
                   {1, IdentifierSelected{"b"}},
                   key(0, KEY_A, 1),
                   key(100 * ms, KEY_A, 0),
                   key(200 * ms, KEY_A, 1),
                   event(900 * ms, InputEvent::Info, InputEvent::KeyPressed),
                   key(1500 * ms, KEY_A, 0),
                   key(3000 * ms, KEY_A, 1),
                   event(3000 * ms, InputEvent::Info, InputEvent::KeyPressed),
                   remark(4000 * ms)},
                  {500 * ms, 2000 * ms});
    EXPECT_EQ(model.shown.from, 500 * ms);
    EXPECT_EQ(model.shown.to, 2000 * ms);
    EXPECT_EQ(model.session.to, 4000 * ms);
    const TimelineBar bar = onlyBar(lane(model, "KEY_A"));
    EXPECT_EQ(bar.from, 200 * ms);
    EXPECT_EQ(bar.to, 1500 * ms);
    EXPECT_THAT(lane(model, "KEY_INFO").events, SizeIs(1));
    EXPECT_THAT(model.flags, IsEmpty());
    ASSERT_THAT(model.identifiers, SizeIs(1));
    EXPECT_EQ(model.identifiers.first().identifier.toStdString(), "b");
    EXPECT_EQ(model.marksLeftOut, 0);
}

TEST(TimelineCollector, EndsWhereThePictureIsFullAndCountsTheRest)
{
    TimelineCollector collector(wholeSession);
    constexpr qint64 clicks = 15'000;
    for (qint64 i = 0; i < clicks; ++i) {
        collector.add(key(i * 100 * ms, KEY_A, 1));
        collector.add(event(i * 100 * ms, InputEvent::Info, InputEvent::KeyPressed, {KEY_A}));
        collector.add(key((i * 100 + 50) * ms, KEY_A, 0));
    }
    for (int code = KEY_B; code < KEY_B + 5; ++code)
        collector.add(key(clicks * 100 * ms, code, 1));
    const TimelineModel model = collector.finished();
    ASSERT_THAT(model.lanes, SizeIs(1)) << "no room for those at the end";
    const TimelineLane &a = model.lanes.first();
    const qint64 kept = a.bars.size() + a.events.size();
    EXPECT_NEAR(static_cast<double>(kept), maxTimelineMarks, 5);
    EXPECT_EQ(model.marksLeftOut, 2 * clicks + 5 - kept);
    EXPECT_NEAR(static_cast<double>(model.shown.to), maxTimelineMarks / 2 * 100.0 * ms, 200 * ms);
    EXPECT_EQ(model.session.to, clicks * 100 * ms);
    EXPECT_FALSE(a.bars.last().isOpen) << "its end is known";
}

TEST(TimelineCollector, EndsTheBarOfAChordThatIsForgotten)
{
    const TimelineModel model =
        collected({key(0, KEY_STOP, 1), key(100 * ms, KEY_PLAY, 1),
                   detector(100 * ms, What::ChordFound, {KEY_STOP, KEY_PLAY}, 0, true),
                   detector(300 * ms, What::Forgotten, {KEY_STOP, KEY_PLAY}), remark(900 * ms)});
    const TimelineBar bar = onlyBar(lane(model, "KEY_STOP + KEY_PLAY"));
    EXPECT_EQ(bar.from, 100 * ms);
    EXPECT_EQ(bar.to, 300 * ms);
    EXPECT_FALSE(bar.isOpen);
    EXPECT_TRUE(onlyBar(lane(model, "KEY_STOP")).isOpen) << "the keys are still down";
}

TEST(TimelineCollector, EndsWhereTheFirstMarkIsLeftOut)
{
    // A remark is a mark; those within two seconds are one stretch of activity, which is one, too.
    const auto collectedOf = [](int remarks) {
        QVector<SessionEntry> entries;
        for (int i = 0; i < remarks; ++i)
            entries.append(remark(i * ms));
        for (const int later : {500, 900})
            entries.append({(remarks + later) * ms, RecordRead{front, EV_SYN, SYN_REPORT, 0, 1}});
        return collected(entries);
    };
    const TimelineModel full = collectedOf(maxTimelineMarks - 1);
    EXPECT_EQ(full.marksLeftOut, 0);
    EXPECT_THAT(full.flags, SizeIs(maxTimelineMarks - 1));
    EXPECT_EQ(full.shown.to, (maxTimelineMarks - 1 + 900) * ms);
    const TimelineModel cut = collectedOf(maxTimelineMarks);
    EXPECT_EQ(cut.marksLeftOut, 1);
    EXPECT_THAT(cut.flags, SizeIs(maxTimelineMarks - 1));
    EXPECT_EQ(cut.shown.to, (maxTimelineMarks - 1) * ms);
}

TEST(TimelineCollector, KeepsOnlyTheTimingsThatBeginBeforeThePictureIsFull)
{
    QVector<SessionEntry> entries{key(0, KEY_A, 1)};
    const auto timed = [&entries](qint64 from, qint64 to) {
        entries.append(detector(from, What::LongPressDue, {KEY_A}, to + 1));
        entries.append(detector(to, What::LongPressEnded, {KEY_A}));
    };
    timed(0, 5 * ms);
    for (int i = 0; i < maxTimelineMarks - 10; ++i)
        entries.append(remark(10 * ms));
    entries.append(detector(20 * ms, What::LongPressDue, {KEY_A}, 100'000 * ms));
    for (int i = 0; i < 20; ++i)
        entries.append(remark(30 * ms));
    entries.append(detector(40 * ms, What::LongPressEnded, {KEY_A}));
    timed(50 * ms, 60 * ms);
    const TimelineModel model = collected(entries);
    EXPECT_GT(model.marksLeftOut, 0);
    const auto &spans = lane(model, "KEY_A").timed;
    ASSERT_THAT(spans, SizeIs(2));
    EXPECT_EQ(spans.at(0).to, 5 * ms);
    EXPECT_EQ(spans.at(1).from, 20 * ms);
    EXPECT_EQ(spans.at(1).to, 40 * ms);
}

TEST(TimelineCollector, KeepsWhatIsAtTheVeryEdgesOfThePart)
{
    const TimelineModel model =
        collected({start(), event(499 * ms, InputEvent::Info, InputEvent::KeyPressed),
                   event(500 * ms, InputEvent::Info, InputEvent::KeyPressed),
                   event(2000 * ms, InputEvent::Info, InputEvent::KeyPressed),
                   event(2001 * ms, InputEvent::Info, InputEvent::KeyPressed)},
                  {500 * ms, 2000 * ms});
    const auto &events = lane(model, "KEY_INFO").events;
    ASSERT_THAT(events, SizeIs(2));
    EXPECT_EQ(events.first().time, 500 * ms);
    EXPECT_EQ(events.last().time, 2000 * ms);
}

TEST(TimelineCollector, KeepsTheTimingsThatReachIntoThePart)
{
    const auto spansOf = [](qint64 from, qint64 to) {
        const TimelineModel model =
            collected({start(), key(0, KEY_A, 1), detector(from, What::LongPressDue, {KEY_A}, to),
                       detector(to, What::LongPressEnded, {KEY_A}), remark(3000 * ms)},
                      {500 * ms, 2000 * ms});
        return lane(model, "KEY_A").timed.size();
    };
    EXPECT_EQ(spansOf(0, 499 * ms), 0);
    EXPECT_EQ(spansOf(0, 500 * ms), 1);
    EXPECT_EQ(spansOf(2000 * ms, 2500 * ms), 1);
    EXPECT_EQ(spansOf(2001 * ms, 2500 * ms), 0);
}

TEST(TimelineCollector, HasNoLanesForOtherRecords)
{
    QVector<SessionEntry> entries{start(), key(0, KEY_A, 1)};
    for (const int type : {EV_SYN, EV_REL, EV_ABS, EV_MSC, EV_LED, EV_REP})
        entries.append({0, RecordRead{front, type, 0, 1, 1}});
    EXPECT_THAT(collected(entries).lanes, SizeIs(1));
}

TEST(TimelineCollector, EndsTheBarsOfADeviceWhoseLanesAreBelowAnothers)
{
    const TimelineModel model = collected(
        {key(0, KEY_A, 1, keyboard), key(0, KEY_A, 1), unplugged(400 * ms), remark(900 * ms)});
    EXPECT_TRUE(onlyBar(model.lanes.at(0)).isOpen);
    EXPECT_FALSE(onlyBar(model.lanes.at(1)).isOpen);
    EXPECT_EQ(onlyBar(model.lanes.at(1)).to, 400 * ms);
}
