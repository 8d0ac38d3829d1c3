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
    const TimelineModel model = timelineModel(longPress());
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
    EXPECT_EQ(info.events.first().due, 1210 * ms);
    EXPECT_EQ(info.events.last().due, std::nullopt);
}

TEST(TimelineCollector, KeepsTheBarOfAWithdrawnKeyOpenUntilItsRelease)
{
    const TimelineModel model = timelineModel(chord());
    const TimelineBar bar = onlyBar(lane(model, "KEY_STOP"));
    EXPECT_EQ(bar.withdrawn, 500 * ms);
    EXPECT_EQ(bar.to, 1000 * ms);
    EXPECT_FALSE(bar.isOpen);
}

TEST(TimelineCollector, HasNoWithdrawnPartOfAKeyThatIsUp)
{
    const TimelineModel model =
        timelineModel({key(0, KEY_STOP, 1), key(100 * ms, KEY_STOP, 0),
                       detector(200 * ms, What::FirstKeyWithdrawn, {KEY_STOP})});
    EXPECT_EQ(onlyBar(lane(model, "KEY_STOP")).withdrawn, std::nullopt);
}

TEST(TimelineCollector, ExtendsWhatHasNoEndToTheEndOfTheSession)
{
    const TimelineModel model = timelineModel(
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
        timelineModel({key(0, KEY_A, 1), detector(0, What::LongPressDue, {KEY_A}, 5000 * ms),
                       key(0, KEY_A, 1, keyboard), unplugged(400 * ms), remark(900 * ms)});
    const TimelineLane &a = model.lanes.at(0);
    EXPECT_FALSE(onlyBar(a).isOpen);
    EXPECT_EQ(onlyBar(a).to, 400 * ms);
    EXPECT_EQ(a.timed.first().to, 400 * ms);
    EXPECT_TRUE(onlyBar(model.lanes.at(1)).isOpen) << "another device's";
}

TEST(TimelineCollector, TakesARepeatWithoutAPressAsThePress)
{
    const TimelineModel model = timelineModel({key(0, KEY_A, 2), key(100 * ms, KEY_A, 2)});
    const TimelineLane &a = lane(model, "KEY_A");
    EXPECT_EQ(onlyBar(a).from, 0);
    ASSERT_THAT(a.marks, SizeIs(1));
    EXPECT_EQ(a.marks.first().kind, TimelineMark::Kind::Repeat);
    EXPECT_EQ(a.marks.first().time, 100 * ms);
}

TEST(TimelineCollector, LinksAChordToItsKeys)
{
    const TimelineModel model = timelineModel(chord());
    ASSERT_THAT(model.links, SizeIs(1));
    EXPECT_EQ(model.links.first().time, 500 * ms);
    EXPECT_THAT(model.links.first().lanes, ElementsAre(0, 1, 2));
}

TEST(TimelineCollector, SortsMarksByTime)
{
    // That the long press was due is known only once the key is released.
    const TimelineModel model =
        timelineModel({key(0, KEY_A, 1), detector(0, What::LongPressDue, {KEY_A}, 300 * ms),
                       key(400 * ms, KEY_A, 2), key(500 * ms, KEY_A, 0),
                       detector(500 * ms, What::LongPressEnded, {KEY_A})});
    const auto &marks = lane(model, "KEY_A").marks;
    ASSERT_THAT(marks, SizeIs(2));
    EXPECT_EQ(marks.first().kind, TimelineMark::Kind::Due);
    EXPECT_EQ(marks.last().kind, TimelineMark::Kind::Repeat);
}

TEST(TimelineCollector, KeepsTheFirstStartOnly)
{
    const TimelineModel model = timelineModel({start(), {5, SessionStart{"other", {}, 0}}});
    EXPECT_TRUE(model.hasStart);
    EXPECT_EQ(model.start.source.toStdString(), "a.scenario");
}
