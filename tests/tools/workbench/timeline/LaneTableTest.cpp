#include "LaneTable.h"

#include "SessionEntries.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using namespace Vorn::Test;

namespace {

using testing::ElementsAre;
using testing::SizeIs;

} // namespace

TEST(LaneTable, HasOneLaneForTheKeysOfAChordInEitherOrder)
{
    LaneTable table;
    const TimelineLane *lane = table.lane(front, EV_KEY, {KEY_PLAY, KEY_STOP});
    ASSERT_NE(lane, nullptr);
    EXPECT_EQ(lane->kind, TimelineLane::Kind::Chord);
    EXPECT_EQ(lane->label.toStdString(), "KEY_STOP + KEY_PLAY");
    table.lane(front, EV_KEY, {KEY_STOP, KEY_PLAY});
    EXPECT_THAT(table.lanes(), SizeIs(1));
}

TEST(LaneTable, KnowsLanesByDeviceTypeAndCodes)
{
    LaneTable table;
    EXPECT_EQ(table.keyLane(front, KEY_A)->kind, TimelineLane::Kind::Key);
    EXPECT_EQ(table.lane(front, EV_SW, {SW_LINEIN_INSERT})->kind, TimelineLane::Kind::Switch);
    EXPECT_EQ(table.lane({}, 0, {})->label.toStdString(), "events");
    table.keyLane(keyboard, KEY_A);
    EXPECT_THAT(table.lanes(), SizeIs(4));
    EXPECT_EQ(table.indexOf(keyboard, EV_KEY, {KEY_A}), 3);
    EXPECT_EQ(table.indexOf(keyboard, EV_KEY, {KEY_B}), -1);
    EXPECT_EQ(table.find(keyboard, EV_KEY, {KEY_B}), nullptr);
    ASSERT_NE(table.find(keyboard, EV_KEY, {KEY_A}), nullptr);
    EXPECT_EQ(table.find(keyboard, EV_KEY, {KEY_A})->device.toStdString(), keyboard);
}

TEST(LaneTable, UsesTheNodeUntilTheDeviceHasAName)
{
    LaneTable table;
    EXPECT_EQ(table.keyLane(front, KEY_A)->deviceName.toStdString(), "event0");
    table.setDeviceName(front, "front-panel");
    EXPECT_EQ(table.keyLane(front, KEY_B)->deviceName.toStdString(), "front-panel");
}

TEST(LaneTable, OrdersChordsBelowTheirKeys)
{
    LaneTable table;
    table.keyLane(front, KEY_STOP);
    table.lane(front, EV_KEY, {KEY_STOP, KEY_PLAY});
    table.keyLane(front, KEY_INFO);
    table.keyLane(front, KEY_PLAY);
    table.keyLane(keyboard, KEY_PLAY);
    EXPECT_THAT(table.drawingOrder(), ElementsAre(0, 2, 3, 1, 4));
}

TEST(LaneTable, KeepsTheLanesOfADeviceTogether)
{
    LaneTable table;
    table.keyLane(front, KEY_STOP);
    table.keyLane(keyboard, KEY_A);
    table.keyLane(front, KEY_PLAY);
    table.keyLane(keyboard, KEY_B);
    EXPECT_THAT(table.drawingOrder(), ElementsAre(0, 2, 1, 3));
}

TEST(LaneTable, CountsEachLaneThatIsLeftOutOnce)
{
    LaneTable table;
    for (int code = 0; code < maxTimelineLanes; ++code)
        ASSERT_NE(table.keyLane(front, code), nullptr);
    EXPECT_EQ(table.leftOutCount(), 0);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(table.keyLane(front, maxTimelineLanes), nullptr);
    EXPECT_EQ(table.keyLane(keyboard, maxTimelineLanes), nullptr);
    EXPECT_EQ(table.leftOutCount(), 2);
    // Codes without a name, whose numbers continue those of the devices.
    for (const auto &[device, code] :
         {std::pair("/dev/input/event1", 284), {"/dev/input/event12", 84}})
        EXPECT_EQ(table.keyLane(device, code), nullptr);
    EXPECT_EQ(table.leftOutCount(), 4);
    EXPECT_NE(table.keyLane(front, 0), nullptr) << "known lanes are still found";
}
