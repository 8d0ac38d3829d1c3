#include "ProfileInputHandler.h"

#include "EventRecorder.h"
#include "InputSubsystem.h"
#include "LogRecorder.h"
#include "ProfileReader.h"
#include "VirtualClock.h"

#include <QSignalSpy>
#include <QTimer>

#include <gmock/gmock.h>

#include <memory>

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Vorn::Profile;
using Vorn::Sim::DeviceDescription;
using Vorn::Sim::InputNode;
using KeysDown = ProfileInputHandler::KeysDown;

Profile profileOf(const QByteArray &toml)
{
    const Vorn::ParsedProfile parsed = Vorn::parseProfile(toml, QStringLiteral("p.toml"));
    EXPECT_FALSE(Vorn::hasErrors(parsed.diagnostics))
        << parsed.diagnostics.first().toString().toStdString();
    return parsed.profile;
}

/// A profile for one panel with these keys.
Profile keys(const QByteArray &lines, const QByteArray &identifiers = "\"\"")
{
    return profileOf("[[device]]\nname = \"panel\"\n[device.handler]\nidentifiers = [" + identifiers
                     + "]\n[device.handler.keys]\n" + lines);
}

const char *const volume = "KEY_VOLUMEUP = { command = \"VolumeUp\", immediate = true }\n";
const char *const louder = "KEY_VOLUMEUP = { command = \"Next\", immediate = true }\n";

class ProfileInputHandlerTest : public testing::Test
{
protected:
    void start(const Profile &profile)
    {
        devices = std::make_unique<ProfileInputHandler>(profile);
        clock.settle();
    }

    InputNode &plug(int number, const QByteArray &name, int bus = BUS_HOST)
    {
        InputNode &node = subsystem.plug(
            number,
            DeviceDescription::keyboard(name, bus, {KEY_VOLUMEUP, KEY_INFO, KEY_STOP, KEY_PLAY})
                .withSwitches({SW_LINEIN_INSERT}));
        clock.settle();
        return node;
    }

    std::vector<std::string> press(InputNode &node, int code)
    {
        node.press(code);
        clock.settle();
        return events.take();
    }

    std::vector<std::string> release(InputNode &node, int code)
    {
        node.release(code);
        clock.settle();
        return events.take();
    }

    std::vector<std::string> click(InputNode &node, int code)
    {
        std::vector<std::string> published = press(node, code);
        for (const std::string &event : release(node, code))
            published.push_back(event);
        return published;
    }

    static std::string pressed(InputEvent::Command command)
    {
        return text(command, InputEvent::KeyPressed, InputEvent::Bus::LocalUI);
    }
    static std::string released(InputEvent::Command command)
    {
        return text(command, InputEvent::KeyReleased, InputEvent::Bus::LocalUI);
    }
    static std::string longPress(InputEvent::Command command)
    {
        return text(command, InputEvent::KeyLongPress, InputEvent::Bus::LocalUI);
    }

    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    EventRecorder events;
    std::unique_ptr<ProfileInputHandler> devices;
};

} // namespace

TEST_F(ProfileInputHandlerTest, RegistersTheFirstEntryThatMatchesADevice)
{
    start(profileOf("[[device]]\nname = \"panel\"\nbus = \"USB\"\n"
                    "handler.keys.KEY_INFO = \"Pause\"\n"
                    "[[device]]\nname = \"panel\"\nhandler.keys.KEY_INFO = \"Info\"\n"
                    "[[device]]\nhandler.keys.KEY_INFO = \"Stop\"\n"));
    EXPECT_THAT(click(plug(0, "panel"), KEY_INFO),
                ElementsAre(pressed(InputEvent::Info), released(InputEvent::Info)));
    EXPECT_THAT(click(plug(1, "panel", BUS_USB), KEY_INFO).front(),
                testing::HasSubstr("cmd=Pause"));
    EXPECT_THAT(click(plug(2, "remote"), KEY_INFO).front(), testing::HasSubstr("cmd=Stop"));
}

TEST_F(ProfileInputHandlerTest, MakesTheCallsThatAProductMakesByHand)
{
    /// The same registrations, as a product would write them.
    class ByHand : public BasicInputHandler
    {
    public:
        void addDevice(const QString &device, const QString &name) override
        {
            auto *panel = new BasicKeyInputHandler(name);
            for (const char *id : {"browse", "text"})
                addKeyHandler(device, panel, QString::fromLatin1(id));
            panel->registerKey(KEY_VOLUMEUP, InputEvent::VolumeUp, true);
            panel->enableLongPress(KEY_VOLUMEUP, true, {700, 600});
            panel->registerKey(KEY_INFO, InputEvent::Bus::LocalUI, InputEvent::Info, false);
            panel->enableLongPress(KEY_INFO, InputEvent::Bus::LocalUI, false, {700});
            panel->registerKey(KEY_INFO, InputEvent::Bus::USB, InputEvent::Pause, false);
            panel->registerDoubleKey(KEY_STOP, KEY_PLAY, InputEvent::FactoryReset);
            panel->registerDoubleKey(KEY_INFO, KEY_PLAY, InputEvent::Bus::LocalUI,
                                     InputEvent::Sleep);
            auto *jacks = new BasicSwInputHandler(name);
            jacks->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
            for (const char *id : {"browse", "text"})
                addSwitchHandler(device, jacks, QString::fromLatin1(id));
            jacks->getInputStatus();
        }
    };
    const Profile profile = profileOf(R"(
initial = "browse"
[[device]]
name = "panel"
[device.handler]
identifiers = ["browse", "text"]
positions-at-start = true
[device.handler.keys]
KEY_VOLUMEUP = { command = "VolumeUp", immediate = true, long-press = [700, 600], repeat = true }
KEY_INFO = [
    { command = "Info", long-press = 700, bus = "LocalUI" },
    { command = "Pause", bus = "USB" },
]
[device.handler.chords]
"KEY_STOP+KEY_PLAY" = "FactoryReset"
"KEY_INFO+KEY_PLAY" = { command = "Sleep", bus = "LocalUI" }
[device.handler.switches]
SW_LINEIN_INSERT = "SWLineIn"
)");
    const auto logged = [this](const std::function<std::unique_ptr<BasicInputHandler>()> &make) {
        LogRecorder log;
        const std::unique_ptr<BasicInputHandler> manager = make();
        clock.settle();
        InputNode &node = plug(0, "panel");
        click(node, KEY_INFO);
        node.press(KEY_VOLUMEUP);
        clock.advance(2s);
        node.release(KEY_VOLUMEUP);
        node.press(KEY_STOP);
        node.press(KEY_PLAY);
        node.setSwitch(SW_LINEIN_INSERT, true);
        clock.settle();
        subsystem.unplug(0);
        clock.settle();
        std::vector<std::string> texts = log.texts();
        // Records' times and descriptors differ.
        for (std::string &line : texts)
            line = line.substr(0, line.find(" time:"));
        return texts;
    };
    const auto byHand = logged([] {
        auto manager = std::make_unique<ByHand>();
        manager->selectHandler(QStringLiteral("browse"));
        return manager;
    });
    const auto byProfile =
        logged([&profile] { return std::make_unique<ProfileInputHandler>(profile); });
    EXPECT_GT(byHand.size(), 50U);
    EXPECT_EQ(byProfile, byHand);
}

TEST_F(ProfileInputHandlerTest, FollowsItsRules)
{
    start(profileOf(
        "initial = \"browse\"\n"
        "select = [{ command = \"Info\", identifier = \"text\" },\n"
        "          { command = \"Info\", identifier = \"never\" },\n"
        "          { command = \"Stop\", state = \"KeyPressed\", identifier = \"browse\" }]\n"
        "[[device]]\n[[device.handler]]\nidentifiers = [\"browse\"]\n"
        "keys.KEY_INFO = \"Info\"\n"
        "[[device.handler]]\nidentifiers = [\"text\"]\nkeys.KEY_STOP = \"Stop\"\n"));
    EXPECT_EQ(devices->identifier(), QStringLiteral("browse"));
    InputNode &panel = plug(0, "panel");
    click(panel, KEY_STOP);
    EXPECT_EQ(devices->identifier(), QStringLiteral("browse"));
    click(panel, KEY_INFO);
    EXPECT_EQ(devices->identifier(), QStringLiteral("text"));
    click(panel, KEY_STOP);
    EXPECT_EQ(devices->identifier(), QStringLiteral("browse"));
}

TEST_F(ProfileInputHandlerTest, HasNoSlotOnTheBusWithoutRules)
{
    class Bus : public Input
    {
    public:
        static int listeners()
        {
            return static_cast<const Bus *>(instance())->receivers(SIGNAL(inputEvent(InputEvent)));
        }
    };
    const int before = Bus::listeners();
    start(keys(volume));
    EXPECT_EQ(Bus::listeners(), before);
    devices->setProfile(profileOf("select = [{ command = \"Info\", identifier = \"\" }]\n"
                                  "[[device]]\nhandler.keys.KEY_INFO = \"Info\"\n"));
    clock.settle();
    EXPECT_EQ(Bus::listeners(), before + 1);
    devices->setProfile(keys(volume));
    clock.settle();
    EXPECT_EQ(Bus::listeners(), before);
}

TEST_F(ProfileInputHandlerTest, ExchangesItsProfileWithoutLosingADevice)
{
    start(keys(volume));
    InputNode &panel = plug(0, "panel");
    EXPECT_THAT(press(panel, KEY_VOLUMEUP), ElementsAre(pressed(InputEvent::VolumeUp)));
    release(panel, KEY_VOLUMEUP);
    const quint64 opened = subsystem.callCounts().opens;
    const int descriptors = subsystem.openDescriptors();
    QSignalSpy changed(devices.get(), &ProfileInputHandler::profileChanged);
    devices->setProfile(keys(louder));
    EXPECT_TRUE(devices->isReloadPending());
    clock.settle();
    EXPECT_FALSE(devices->isReloadPending());
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(devices->profile(), keys(louder));
    EXPECT_THAT(click(panel, KEY_VOLUMEUP),
                ElementsAre(pressed(InputEvent::Next), released(InputEvent::Next)));
    // Once, to see which keys are down.
    EXPECT_EQ(subsystem.callCounts().opens, opened + 1);
    EXPECT_EQ(subsystem.openDescriptors(), descriptors);
    // Devices that arrive later get the new one.
    EXPECT_THAT(press(plug(1, "panel"), KEY_VOLUMEUP), ElementsAre(pressed(InputEvent::Next)));
}

TEST_F(ProfileInputHandlerTest, WaitsUntilAllKeysAreUp)
{
    start(keys(volume));
    InputNode &panel = plug(0, "panel");
    InputNode &other = plug(1, "other");
    press(panel, KEY_VOLUMEUP);
    devices->setProfile(keys(louder));
    clock.advance(10s);
    EXPECT_TRUE(devices->isReloadPending());
    // A key of any device counts, whether or not it means something.
    press(other, KEY_INFO);
    EXPECT_THAT(release(panel, KEY_VOLUMEUP), ElementsAre(released(InputEvent::VolumeUp)));
    clock.advance(1s);
    EXPECT_TRUE(devices->isReloadPending());
    EXPECT_THAT(press(panel, KEY_VOLUMEUP), ElementsAre(pressed(InputEvent::VolumeUp)));
    EXPECT_THAT(release(panel, KEY_VOLUMEUP), ElementsAre(released(InputEvent::VolumeUp)));
    release(other, KEY_INFO);
    clock.advance(100ms);
    EXPECT_FALSE(devices->isReloadPending());
    EXPECT_THAT(press(panel, KEY_VOLUMEUP), ElementsAre(pressed(InputEvent::Next)));
}

// The kernel has the key up before the library has read that.
TEST_F(ProfileInputHandlerTest, ReadsTheLastReleaseBeforeTheExchange)
{
    start(keys(volume));
    InputNode &panel = plug(0, "panel");
    press(panel, KEY_VOLUMEUP);
    // After the event loop has looked for what is ready, and before it is looked which keys are
    // down: timers of the same time go off in the order in which they were started.
    QTimer::singleShot(0, [&panel] { panel.release(KEY_VOLUMEUP); });
    devices->setProfile(keys(louder));
    clock.settle();
    EXPECT_THAT(events.take(), ElementsAre(released(InputEvent::VolumeUp)));
    EXPECT_FALSE(devices->isReloadPending());
}

TEST_F(ProfileInputHandlerTest, ForgetsKeysThatAreDownIfItIsTo)
{
    start(keys("KEY_VOLUMEUP = { command = \"VolumeUp\", immediate = true, long-press = 700 }\n"));
    InputNode &panel = plug(0, "panel");
    press(panel, KEY_VOLUMEUP);
    devices->setProfile(keys(volume));
    clock.advance(1s);
    EXPECT_THAT(events.take(), ElementsAre(longPress(InputEvent::VolumeUp)));
    devices->setProfile(keys(louder), KeysDown::AreForgotten);
    clock.settle();
    EXPECT_FALSE(devices->isReloadPending());
    EXPECT_THAT(release(panel, KEY_VOLUMEUP), IsEmpty());
    clock.advance(10s);
    EXPECT_THAT(events.take(), IsEmpty());
    EXPECT_THAT(click(panel, KEY_VOLUMEUP),
                ElementsAre(pressed(InputEvent::Next), released(InputEvent::Next)));
}

TEST_F(ProfileInputHandlerTest, WaitsForNoDeviceThatHasGone)
{
    start(keys(volume));
    InputNode &panel = plug(0, "panel");
    press(panel, KEY_VOLUMEUP);
    devices->setProfile(keys(louder));
    clock.advance(200ms);
    EXPECT_TRUE(devices->isReloadPending());
    subsystem.unplug(0);
    clock.advance(200ms);
    EXPECT_FALSE(devices->isReloadPending());
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(ProfileInputHandlerTest, WaitsForDevicesThatArriveMeanwhile)
{
    start(keys(volume));
    InputNode &panel = plug(0, "panel");
    press(panel, KEY_VOLUMEUP);
    devices->setProfile(keys(louder));
    clock.advance(200ms);
    InputNode &second = plug(1, "panel");
    press(second, KEY_VOLUMEUP);
    release(panel, KEY_VOLUMEUP);
    clock.advance(200ms);
    EXPECT_TRUE(devices->isReloadPending());
    release(second, KEY_VOLUMEUP);
    clock.advance(200ms);
    EXPECT_FALSE(devices->isReloadPending());
}

TEST_F(ProfileInputHandlerTest, UsesTheLatestOfSeveralProfiles)
{
    start(keys(volume));
    InputNode &panel = plug(0, "panel");
    QSignalSpy changed(devices.get(), &ProfileInputHandler::profileChanged);
    devices->setProfile(keys("KEY_VOLUMEUP = \"Mute\"\n"));
    devices->setProfile(keys(louder));
    clock.settle();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_THAT(press(panel, KEY_VOLUMEUP), ElementsAre(pressed(InputEvent::Next)));
}

TEST_F(ProfileInputHandlerTest, ChangesNothingBeforeASlotHasReturned)
{
    start(keys(volume));
    InputNode &panel = plug(0, "panel");
    events.onEvent([this](const InputEvent &event) {
        if (event.state() == InputEvent::KeyReleased)
            devices->setProfile(keys(louder), KeysDown::AreForgotten);
    });
    // Both clicks in one read: the second belongs to the old profile, too.
    panel.report(EV_KEY, KEY_VOLUMEUP, 1);
    panel.sync();
    panel.report(EV_KEY, KEY_VOLUMEUP, 0);
    panel.sync();
    panel.report(EV_KEY, KEY_VOLUMEUP, 1);
    panel.sync();
    panel.report(EV_KEY, KEY_VOLUMEUP, 0);
    panel.sync();
    clock.settle();
    EXPECT_THAT(events.take(),
                ElementsAre(pressed(InputEvent::VolumeUp), released(InputEvent::VolumeUp),
                            pressed(InputEvent::VolumeUp), released(InputEvent::VolumeUp)));
    EXPECT_EQ(devices->profile(), keys(louder));
}

TEST_F(ProfileInputHandlerTest, KeepsHandlersWhosePartIsTheSame)
{
    class Counting : public ProfileInputHandler
    {
    public:
        using ProfileInputHandler::ProfileInputHandler;
        int made = 0;

    protected:
        BasicKeyInputHandler *createKeyHandler(const QString &device, const QString &name) override
        {
            ++made;
            return ProfileInputHandler::createKeyHandler(device, name);
        }
    };
    const auto both = [](const QByteArray &second) {
        return profileOf("[[device]]\n"
                         "[[device.handler]]\nkeys.KEY_INFO = \"Info\"\n"
                         "[[device.handler]]\nidentifiers = [\"text\"]\n"
                         + second);
    };
    Counting counting(both("keys.KEY_STOP = \"Stop\"\n"));
    clock.settle();
    InputNode &panel = plug(0, "panel");
    EXPECT_EQ(counting.made, 2);
    counting.setProfile(both("keys.KEY_STOP = \"Pause\"\n"));
    clock.settle();
    EXPECT_EQ(counting.made, 3);
    EXPECT_THAT(click(panel, KEY_INFO).front(), pressed(InputEvent::Info));
    counting.selectHandler(QStringLiteral("text"));
    EXPECT_THAT(click(panel, KEY_STOP).front(), pressed(InputEvent::Pause));
    // The other way round: what was replaced is not used again.
    counting.setProfile(both("keys.KEY_STOP = \"Stop\"\n"));
    clock.settle();
    EXPECT_EQ(counting.made, 4);
    EXPECT_THAT(click(panel, KEY_STOP).front(), pressed(InputEvent::Stop));
}

TEST_F(ProfileInputHandlerTest, MutesWhatTheNewProfileDoesNotHave)
{
    start(profileOf("[[device]]\n[device.handler]\nidentifiers = [\"\", \"text\"]\n"
                    "keys.KEY_INFO = \"Info\"\nswitches.SW_LINEIN_INSERT = \"SWLineIn\"\n"));
    InputNode &panel = plug(0, "panel");
    devices->setProfile(keys("KEY_INFO = \"Info\"\n", "\"text\""));
    clock.settle();
    // "" is gone, and `initial` of the new profile is "".
    EXPECT_THAT(click(panel, KEY_INFO), IsEmpty());
    panel.setSwitch(SW_LINEIN_INSERT, true);
    clock.settle();
    EXPECT_THAT(events.take(), IsEmpty());
    devices->selectHandler(QStringLiteral("text"));
    EXPECT_THAT(click(panel, KEY_INFO).front(), pressed(InputEvent::Info));
    // No entry for the device at all.
    devices->setProfile(
        profileOf("[[device]]\nname = \"other\"\nhandler.keys.KEY_INFO = \"Info\"\n"));
    clock.settle();
    EXPECT_THAT(click(panel, KEY_INFO), IsEmpty());
    // And back.
    devices->setProfile(keys("KEY_INFO = \"Stop\"\n"));
    clock.settle();
    EXPECT_THAT(click(panel, KEY_INFO).front(), pressed(InputEvent::Stop));
}

TEST_F(ProfileInputHandlerTest, KeepsTheSelectionIfTheNewProfileHasIt)
{
    const auto under = [](const char *identifiers, const char *initial) {
        return profileOf(QByteArray("initial = \"") + initial
                         + "\"\n[[device]]\n[device.handler]\nidentifiers = [" + identifiers
                         + "]\nkeys.KEY_INFO = \"Info\"\n");
    };
    start(under("\"a\", \"b\"", "a"));
    InputNode &panel = plug(0, "panel");
    devices->selectHandler(QStringLiteral("b"));
    devices->setProfile(under("\"b\", \"c\"", "c"));
    clock.settle();
    EXPECT_EQ(devices->identifier(), QStringLiteral("b"));
    EXPECT_FALSE(click(panel, KEY_INFO).empty());
    devices->setProfile(under("\"a\", \"c\"", "c"));
    clock.settle();
    EXPECT_EQ(devices->identifier(), QStringLiteral("c"));
    EXPECT_FALSE(click(panel, KEY_INFO).empty());
}

TEST_F(ProfileInputHandlerTest, ReportsPositionsOfNewHandlersAgain)
{
    const auto jacks = [](const char *command) {
        return profileOf(QByteArray("[[device]]\n[device.handler]\npositions-at-start = true\n"
                                    "switches.SW_LINEIN_INSERT = \"")
                         + command + "\"\n");
    };
    start(jacks("SWLineIn"));
    subsystem.plug(
        0, DeviceDescription::switchBox("jacks", BUS_HOST, {SW_LINEIN_INSERT}, {SW_LINEIN_INSERT}));
    clock.settle();
    const auto on = [](InputEvent::Command command) {
        return text(command, InputEvent::SwitchEnabled, InputEvent::Bus::LocalUI);
    };
    EXPECT_THAT(events.take(), ElementsAre(on(InputEvent::SWLineIn)));
    devices->setProfile(jacks("SWLineIn"));
    clock.settle();
    EXPECT_THAT(events.take(), IsEmpty());
    devices->setProfile(jacks("Info"));
    clock.settle();
    EXPECT_THAT(events.take(), ElementsAre(on(InputEvent::Info)));
}

TEST_F(ProfileInputHandlerTest, LetsTheLastHandlerOfTheProfileReceive)
{
    const QByteArray info = "[[device.handler]]\nkeys.KEY_INFO = \"Info\"\n"
                            "switches.SW_LINEIN_INSERT = \"SWLineIn\"\n";
    const QByteArray stop = "[[device.handler]]\nkeys.KEY_INFO = \"Stop\"\n";
    start(profileOf("[[device]]\n" + info));
    InputNode &panel = plug(0, "panel");
    // The one that stays is behind the new one, as in a product that starts with this profile.
    devices->setProfile(profileOf("[[device]]\n" + stop + info));
    clock.settle();
    EXPECT_THAT(click(panel, KEY_INFO).front(), pressed(InputEvent::Info));
    devices->setProfile(profileOf("[[device]]\n" + info + stop));
    clock.settle();
    EXPECT_THAT(click(panel, KEY_INFO).front(), pressed(InputEvent::Stop));
    panel.setSwitch(SW_LINEIN_INSERT, true);
    clock.settle();
    EXPECT_FALSE(events.take().empty());
}

TEST_F(ProfileInputHandlerTest, ForgetsADeviceThatGoes)
{
    start(keys(volume));
    plug(0, "panel");
    subsystem.unplug(0);
    clock.settle();
    EXPECT_THAT(click(plug(0, "other"), KEY_VOLUMEUP), IsEmpty());
    subsystem.unplug(0);
    clock.settle();
    InputNode &panel = plug(0, "panel");
    EXPECT_FALSE(click(panel, KEY_VOLUMEUP).empty());
    devices->setProfile(keys(louder));
    clock.settle();
    EXPECT_THAT(click(panel, KEY_VOLUMEUP).front(), pressed(InputEvent::Next));
}

TEST_F(ProfileInputHandlerTest, SurvivesThatADeviceGoesWhileAnotherOneIsReported)
{
    const auto jacks = [](const char *command) {
        return profileOf(QByteArray("[[device]]\n[device.handler]\npositions-at-start = true\n"
                                    "switches.SW_LINEIN_INSERT = \"")
                         + command + "\"\n");
    };
    start(jacks("SWLineIn"));
    plug(0, "first");
    plug(1, "second");
    // The first one's position is reported before the second is registered.
    events.onEvent([this](const InputEvent &event) {
        if (event.command() == InputEvent::Info)
            devices->removeDevice(QStringLiteral("/dev/input/event1"));
    });
    events.take();
    devices->setProfile(jacks("Info"));
    clock.settle();
    EXPECT_THAT(events.take(), testing::SizeIs(1));
}

TEST_F(ProfileInputHandlerTest, SurvivesAThousandExchanges)
{
    start(keys(volume));
    InputNode &panel = plug(0, "panel");
    for (int i = 0; i < 500; ++i) {
        devices->setProfile(keys(louder, i % 3 == 0 ? "\"\", \"text\"" : "\"\""));
        clock.settle();
        ASSERT_THAT(click(panel, KEY_VOLUMEUP).front(), pressed(InputEvent::Next));
        devices->setProfile(keys(volume));
        clock.settle();
        ASSERT_THAT(click(panel, KEY_VOLUMEUP).front(), pressed(InputEvent::VolumeUp));
    }
    subsystem.unplug(0);
    clock.settle();
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST_F(ProfileInputHandlerTest, EndsWhileAProfileWaits)
{
    start(keys(volume));
    InputNode &panel = plug(0, "panel");
    press(panel, KEY_VOLUMEUP);
    devices->setProfile(keys(louder));
    clock.advance(100ms);
    devices.reset();
    clock.advance(1s);
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}
