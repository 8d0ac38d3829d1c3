#include "PendingEvents.h"

#include <gmock/gmock.h>

#include <string>

#include <linux/input.h>

using namespace Vorn::Workbench;

namespace {

const QString panel = QStringLiteral("/dev/input/event4");
const QString twin = QStringLiteral("/dev/input/event7");

/// An event 1.5 s after the start, half a second after the last action.
SessionEntry published(const QString &device = panel, qint64 time = 1'500'000)
{
    return {time,
            EventPublished{InputEvent::Info,
                           InputEvent::KeyPressed,
                           InputEvent::Bus::USB,
                           device,
                           EV_KEY,
                           {KEY_INFO},
                           {}}};
}

constexpr qint64 action = 1000; // ms

/// What is found instead of an expected event; "as expected" if nothing is.
std::string found(const Step::ExpectEvent &expected, const SessionEntry &entry = published())
{
    PendingEvents pending({4, 7});
    pending.add({0, DeviceChange{panel, "panel", InputEvent::Bus::USB, true}});
    pending.add(entry);
    const std::optional<QString> instead = pending.take(expected, action);
    EXPECT_TRUE(pending.isEmpty());
    return instead ? instead->toStdString() : "as expected";
}

Step::ExpectEvent infoPressed()
{
    Step::ExpectEvent expected;
    expected.command = InputEvent::Info;
    expected.state = InputEvent::KeyPressed;
    return expected;
}

const std::string asFound = "Info KeyPressed USB from \"panel\", 500 ms after the last action";

} // namespace

TEST(PendingEvents, AreOfTheCommandAndTheStateThatAreExpected)
{
    EXPECT_EQ(found(infoPressed()), "as expected");
    for (const auto command : {InputEvent::None, InputEvent::Mute, InputEvent::FactoryReset}) {
        Step::ExpectEvent expected = infoPressed();
        expected.command = command;
        EXPECT_EQ(found(expected), asFound) << command;
    }
    for (const auto state :
         {InputEvent::NoState, InputEvent::KeyReleased, InputEvent::SwitchDisabled}) {
        Step::ExpectEvent expected = infoPressed();
        expected.state = state;
        EXPECT_EQ(found(expected), asFound) << state;
    }
}

TEST(PendingEvents, AreOfTheBusThatIsExpected)
{
    Step::ExpectEvent expected = infoPressed();
    expected.bus = InputEvent::Bus::USB;
    EXPECT_EQ(found(expected), "as expected");
    for (const auto bus :
         {InputEvent::Bus::NoBus, InputEvent::Bus::LocalUI, InputEvent::Bus::Hostlink}) {
        expected.bus = bus;
        EXPECT_EQ(found(expected), asFound);
    }
}

TEST(PendingEvents, AreOfTheDeviceThatIsExpected)
{
    Step::ExpectEvent expected = infoPressed();
    expected.device = 0;
    EXPECT_EQ(found(expected), "as expected");
    EXPECT_EQ(found(expected, published(twin)),
              "Info KeyPressed USB from \"\" (event7), 500 ms after the last action");
    expected.device = 1;
    EXPECT_EQ(found(expected), asFound);
    EXPECT_EQ(found(expected, published(twin)), "as expected");
    expected.device = -1;
    expected.deviceName = "panel";
    EXPECT_EQ(found(expected), "as expected");
    expected.deviceName = "pane";
    EXPECT_EQ(found(expected), asFound);
    expected.deviceName = "";
    EXPECT_EQ(found(expected), asFound) << "empty is a name, too";
}

TEST(PendingEvents, ComeAtTheTimeThatIsExpected)
{
    Step::ExpectEvent expected = infoPressed();
    expected.earliest = 500;
    expected.latest = 500;
    EXPECT_EQ(found(expected), "as expected");
    EXPECT_EQ(found(expected, published(panel, 1'499'999)),
              "Info KeyPressed USB from \"panel\", 499 ms after the last action");
    EXPECT_EQ(found(expected, published(panel, 1'500'001)), asFound);
    expected.latest = 600;
    EXPECT_EQ(found(expected, published(panel, 1'600'000)), "as expected");
    EXPECT_EQ(found(expected, published(panel, 1'600'001)),
              "Info KeyPressed USB from \"panel\", 600 ms after the last action");
}

TEST(PendingEvents, AreTakenInOrder)
{
    PendingEvents pending({4, 7});
    EXPECT_TRUE(pending.isEmpty());
    pending.add({0, Remark{"no event"}});
    EXPECT_TRUE(pending.isEmpty());
    pending.add(published({}, 1'100'000));
    pending.add(published(twin, 1'200'000));
    EXPECT_EQ(pending.text(action).toStdString(),
              "Info KeyPressed USB, 100 ms after the last action");
    EXPECT_EQ(pending.take(infoPressed(), action), std::nullopt);
    EXPECT_EQ(pending.text(action).toStdString(),
              "Info KeyPressed USB from \"\" (event7), 200 ms after the last action");
    EXPECT_FALSE(pending.isEmpty());
    pending.clear();
    EXPECT_TRUE(pending.isEmpty());
}

TEST(PendingEvents, TellDevicesOfOneNameApart)
{
    PendingEvents pending({4, 7});
    for (const QString &device : {panel, twin})
        pending.add({0, DeviceChange{device, "panel", InputEvent::Bus::USB, true}});
    pending.add(published());
    EXPECT_EQ(pending.text(action).toStdString(),
              "Info KeyPressed USB from \"panel\" (event4), 500 ms after the last action");
}
