#include "Input.h"

#include "AllocationCounter.h"

#include <gtest/gtest.h>

#include <optional>
#include <utility>

namespace {

InputEvent makeEvent()
{
    return {InputEvent::Next, InputEvent::KeyPressed, InputEvent::Bus::LocalUI};
}

TEST(InputEventBlock, IsAllocatedOnceByConstruction)
{
    const AllocationCounter counter;
    const InputEvent event = makeEvent();
    EXPECT_EQ(counter.allocations(), 1);
    const InputEvent other;
    EXPECT_EQ(counter.allocations(), 2);
}

TEST(InputEventBlock, HoldsACountAndThreeNumbers)
{
    const AllocationCounter counter;
    const InputEvent event = makeEvent();
    EXPECT_EQ(counter.bytes(), 4 * sizeof(qint32));
}

TEST(InputEventBlock, IsSharedByCopiesAndFreedOnceWithTheLast)
{
    std::optional<InputEvent> event = makeEvent();
    const AllocationCounter counter;
    {
        std::optional<InputEvent> copy(*event);
        InputEvent assigned(*copy);
        assigned = *event;
        const InputEvent moved = std::move(*copy);
        EXPECT_EQ(moved.command(), InputEvent::Next);
        // A moved-from event is still a valid event.
        EXPECT_EQ(copy->command(), InputEvent::Next);
        event.reset();
        EXPECT_EQ(counter.deallocations(), 0);
        EXPECT_EQ(assigned.command(), InputEvent::Next);
    }
    EXPECT_EQ(counter.allocations(), 0);
    EXPECT_EQ(counter.deallocations(), 1);
}

TEST(InputEventBlock, IsReplacedByAssignment)
{
    InputEvent event;
    const InputEvent other = makeEvent();
    const AllocationCounter counter;
    event = other;
    EXPECT_EQ(counter.deallocations(), 1);
    EXPECT_EQ(event.command(), InputEvent::Next);
    const InputEvent &itself = event;
    event = itself;
    EXPECT_EQ(counter.deallocations(), 1);
    EXPECT_EQ(counter.allocations(), 0);
}

} // namespace
