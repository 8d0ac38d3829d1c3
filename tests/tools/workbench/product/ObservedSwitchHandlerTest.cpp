#include "ObservedSwitchHandler.h"
#include "ProductFixture.h"

using namespace Vorn::Sim;
using namespace Vorn;
using namespace Vorn::Workbench;
using testing::ElementsAre;

namespace {

class ObservedSwitchHandlerTest : public ProductFixture
{ };

} // namespace

TEST_F(ObservedSwitchHandlerTest, ReportsPositionsAtStartWithoutRecords)
{
    HandlerProfile handler;
    handler.switches = {{SW_LINEIN_INSERT, InputEvent::SWLineIn}};
    handler.positionsAtStart = true;
    DeviceProfile device;
    device.handlers = {handler};
    Profile profile;
    profile.devices = {device};
    start(profile);
    take();
    InputNode &jacks = plug(
        0, DeviceDescription::switchBox("jacks", BUS_HOST, {SW_LINEIN_INSERT}, {SW_LINEIN_INSERT}));
    EXPECT_THAT(
        take(),
        ElementsAre("+/dev/input/event0 jacks LocalUI",
                    "[cmd=SWLineIn, state=SwitchEnabled, bus=LocalUI] of SW_LINEIN_INSERT"));
    jacks.setSwitch(SW_LINEIN_INSERT, false);
    EXPECT_THAT(take(),
                ElementsAre("SW_LINEIN_INSERT off",
                            "[cmd=SWLineIn, state=SwitchDisabled, bus=LocalUI] of "
                            "SW_LINEIN_INSERT after 0"));
}
