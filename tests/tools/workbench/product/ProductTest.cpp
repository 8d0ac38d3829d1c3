#include "Product.h"
#include "BusNames.h"
#include "EventNames.h"
#include "InputSubsystem.h"
#include "Session.h"
#include "SessionLog.h"
#include "VirtualClock.h"

#include <gmock/gmock.h>

#include <memory>

using namespace Vorn::Workbench;
using namespace Vorn::Sim;
using std::chrono::milliseconds;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

QString names(const QVector<int> &codes, int type = EV_KEY)
{
    QStringList list;
    for (const int code : codes)
        list += eventCodeName(type, code);
    return list.join('+');
}

/// What an entry says, short.
struct Describe
{
    QString operator()(const SessionStart &) const { return QStringLiteral("start"); }
    QString operator()(const DeviceChange &change) const
    {
        return QStringLiteral("%1%2 %3 %4")
            .arg(change.added ? "+" : "-", change.device, change.name, busName(change.bus));
    }
    QString operator()(const RecordRead &record) const
    {
        return QStringLiteral("%1 %2").arg(eventCodeName(record.type, record.code),
                                           valueName(record.type, record.value));
    }
    QString operator()(const DetectorStep &step) const
    {
        const char *const what[] = {"due", "ended", "withdrawn", "chord", "released", "dropped"};
        QString text =
            QStringLiteral("[%1 %2").arg(what[static_cast<int>(step.what)], names(step.keys));
        if (step.what == DetectorStep::What::LongPressDue)
            text += QStringLiteral(" %1").arg(step.due / 1000);
        if (step.what == DetectorStep::What::ChordFound && !step.mapped)
            text += " unmapped";
        return text + "]";
    }
    QString operator()(const EventPublished &event) const
    {
        QString text = InputEvent(event.command, event.state, event.bus).toString();
        text += " of " + names(event.codes, event.type);
        if (event.latency)
            text += QStringLiteral(" after %1").arg(*event.latency / 1000);
        return text;
    }
    QString operator()(const IdentifierSelected &selected) const
    {
        return "select " + selected.identifier;
    }
    QString operator()(const ExpectationChecked &) const { return QStringLiteral("expectation"); }
    QString operator()(const Remark &remark) const { return remark.text; }
};

KeyMapping keyOf(int code, InputEvent::Command command, bool isImmediate,
                 const QList<int> &timeouts = {}, bool repeats = false)
{
    KeyMapping key{code, command, isImmediate, {}, {}};
    if (!timeouts.isEmpty())
        key.longPress = LongPress{timeouts, repeats};
    return key;
}

class ProductTest : public testing::Test
{
protected:
    void start(const Profile &profile)
    {
        m_devices = std::make_unique<Product>(profile, &m_log);
        m_clock.settle();
    }

    /// Plugs in and waits until the library has found the device.
    InputNode &plug(int number, const DeviceDescription &description)
    {
        InputNode &node = m_subsystem.plug(number, description);
        m_clock.waitUntil([&] { return devices().devices().contains(node.path()); });
        return node;
    }

    InputNode &plugPanel()
    {
        InputNode &node =
            plug(0,
                 DeviceDescription::keyboard("front-panel", BUS_HOST,
                                             {KEY_INFO, KEY_STOP, KEY_PLAY, KEY_VOLUMEUP}));
        take();
        return node;
    }

    Product &devices() { return *m_devices; }
    InputSubsystem &subsystem() { return m_subsystem; }
    VirtualClock &clock() { return m_clock; }

    void wait(int ms) { m_clock.advance(milliseconds(ms)); }

    /// What was told since the last time, records of synchronisation left out.
    std::vector<std::string> take()
    {
        m_clock.settle();
        std::vector<std::string> texts;
        for (const SessionEntry &entry : std::exchange(m_entries, {})) {
            const auto *record = std::get_if<RecordRead>(&entry.what);
            if (!record || record->type != EV_SYN)
                texts.push_back(std::visit(Describe(), entry.what).toStdString());
        }
        return texts;
    }

    static Profile panelProfile()
    {
        HandlerProfile handler;
        handler.keys = {keyOf(KEY_INFO, InputEvent::Info, false, {700}),
                        keyOf(KEY_VOLUMEUP, InputEvent::VolumeUp, true, {800, 200}, true),
                        keyOf(KEY_STOP, InputEvent::Stop, false),
                        keyOf(KEY_PLAY, InputEvent::StartPlay, false)};
        handler.chords = {{KEY_STOP, KEY_PLAY, InputEvent::FactoryReset, {}}};
        DeviceProfile device;
        device.name = QStringLiteral("front-panel");
        device.handlers = {handler};
        Profile profile;
        profile.devices = {device};
        return profile;
    }

private:
    VirtualClock m_clock;
    InputSubsystem m_subsystem;
    QVector<SessionEntry> m_entries;
    SessionLog m_log{[this](const SessionEntry &entry) { m_entries.append(entry); }};
    std::unique_ptr<Product> m_devices;
};

} // namespace

TEST_F(ProductTest, TellOfTheIdentifierAndOfDevicesThatComeAndGo)
{
    start(panelProfile());
    EXPECT_THAT(take(), ElementsAre("select "));
    plug(0, DeviceDescription::keyboard("front-panel", BUS_HOST, {KEY_INFO}));
    plug(3, DeviceDescription::switchBox("jacks", BUS_I2C, {SW_LINEIN_INSERT}));
    EXPECT_THAT(
        take(),
        ElementsAre("+/dev/input/event0 front-panel LocalUI", "+/dev/input/event3 jacks I2C"));
    subsystem().unplug(0);
    clock().waitUntil([&] { return devices().devices().size() == 1; });
    EXPECT_THAT(take(), ElementsAre("-/dev/input/event0 front-panel LocalUI"));
}

TEST_F(ProductTest, TellOfARecordBeforeWhatItLeadsTo)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_STOP);
    panel.release(KEY_STOP);
    EXPECT_THAT(take(),
                ElementsAre("KEY_STOP press", "KEY_STOP release",
                            "[cmd=Stop, state=KeyPressed, bus=LocalUI] of KEY_STOP after 0",
                            "[cmd=Stop, state=KeyReleased, bus=LocalUI] of KEY_STOP after 0"));
}

TEST_F(ProductTest, TellWhenALongPressIsDueAndWhenItCame)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    const qint64 pressed = clock().elapsed().count();
    panel.press(KEY_VOLUMEUP);
    const auto due = [&](qint64 ms) {
        return "[due KEY_VOLUMEUP " + std::to_string(pressed + ms) + "]";
    };
    EXPECT_THAT(take(),
                ElementsAre("KEY_VOLUMEUP press", due(800),
                            "[cmd=VolumeUp, state=KeyPressed, bus=LocalUI] of KEY_VOLUMEUP "
                            "after 0"));
    wait(840);
    const auto entries = take();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_THAT(entries.front(),
                testing::MatchesRegex("\\[cmd=VolumeUp, state=KeyLongPress, bus=LocalUI\\] of "
                                      "KEY_VOLUMEUP after [0-9]+"));
    EXPECT_THAT(entries.back(), testing::StartsWith("[due KEY_VOLUMEUP 1"));
    panel.release(KEY_VOLUMEUP);
    EXPECT_THAT(
        take(),
        ElementsAre("KEY_VOLUMEUP release", "[ended KEY_VOLUMEUP]",
                    "[cmd=VolumeUp, state=KeyReleased, bus=LocalUI] of KEY_VOLUMEUP after 0"));
}

TEST_F(ProductTest, TellOnlyTheFirstLongPressOfAKeyThatDoesNotRepeat)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_INFO);
    wait(5000);
    const auto entries = take();
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_THAT(entries.at(1), testing::StartsWith("[due KEY_INFO"));
    EXPECT_THAT(entries.at(2), testing::StartsWith("[cmd=Info, state=KeyLongPress, bus=LocalUI]"));
}

TEST_F(ProductTest, TellWhatTheChordDetectorDoes)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_STOP);
    panel.press(KEY_PLAY);
    EXPECT_THAT(take(),
                ElementsAre("KEY_STOP press", "KEY_PLAY press", "[withdrawn KEY_STOP]",
                            "[chord KEY_STOP+KEY_PLAY]",
                            "[cmd=FactoryReset, state=KeyPressed, bus=LocalUI] of "
                            "KEY_STOP+KEY_PLAY after 0"));
    panel.press(KEY_INFO);
    EXPECT_THAT(take(), ElementsAre("KEY_INFO press", "[dropped KEY_INFO]"));
    panel.release(KEY_STOP);
    EXPECT_THAT(take(), ElementsAre("KEY_STOP release"));
    panel.release(KEY_PLAY);
    EXPECT_THAT(take(),
                ElementsAre("KEY_PLAY release", "[released KEY_STOP+KEY_PLAY]",
                            "[cmd=FactoryReset, state=KeyReleased, bus=LocalUI] of "
                            "KEY_STOP+KEY_PLAY after 0"));
    panel.release(KEY_INFO);
    EXPECT_THAT(take(), ElementsAre("KEY_INFO release", "[dropped KEY_INFO]"));
}

TEST_F(ProductTest, TellOfTheReleaseOfAWithdrawnKeyAsItsOwn)
{
    Profile profile = panelProfile();
    profile.devices[0].handlers[0].keys[2].immediate = true;
    start(profile);
    InputNode &panel = plugPanel();
    panel.press(KEY_STOP);
    take();
    panel.press(KEY_PLAY);
    const auto entries = take();
    EXPECT_THAT(entries,
                Contains("[cmd=Stop, state=KeyReleased, bus=LocalUI] of KEY_STOP after 0"));
    EXPECT_THAT(entries,
                Contains("[cmd=FactoryReset, state=KeyPressed, bus=LocalUI] of KEY_STOP+KEY_PLAY "
                         "after 0"));
}

TEST_F(ProductTest, TellOfAnUnmappedPair)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_INFO);
    panel.press(KEY_STOP);
    const auto entries = take();
    EXPECT_THAT(entries, Contains("[chord KEY_INFO+KEY_STOP unmapped]"));
    EXPECT_THAT(entries,
                Contains("[cmd=Stop, state=KeyPressed, bus=LocalUI] of KEY_INFO+KEY_STOP after 0")
                    .Times(0));
    EXPECT_THAT(entries, Contains("[cmd=Stop, state=KeyPressed, bus=LocalUI] of KEY_STOP after 0"));
    // Whichever key is the last to come up, the second one is reported.
    panel.release(KEY_STOP);
    panel.release(KEY_INFO);
    EXPECT_THAT(take(), Contains("[cmd=Stop, state=KeyReleased, bus=LocalUI] of KEY_STOP after 0"));
}

TEST_F(ProductTest, TellOfTheRecordsOfDevicesThatTheProfileDoesNotMention)
{
    start(panelProfile());
    InputNode &other = plug(1, DeviceDescription::keyboard("other", BUS_USB, {KEY_INFO}));
    take();
    other.press(KEY_INFO);
    EXPECT_THAT(take(), ElementsAre("KEY_INFO press"));
}

TEST_F(ProductTest, TellOfTheRecordsUnderAnIdentifierWithoutHandlers)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    devices().select("text");
    panel.press(KEY_STOP);
    EXPECT_THAT(take(), ElementsAre("select text", "KEY_STOP press"));
    devices().select("");
    take();
    panel.release(KEY_STOP);
    // The release of a key that was pressed under another identifier.
    EXPECT_THAT(take(), ElementsAre("KEY_STOP release", "[dropped KEY_STOP]"));
}

TEST_F(ProductTest, LeaveOtherDevicesAloneWhenAnUnknownOneArrives)
{
    start(panelProfile());
    InputNode &panel = plugPanel();
    panel.press(KEY_STOP);
    wait(100);
    plug(1, DeviceDescription::keyboard("other", BUS_USB, {KEY_A}));
    take();
    panel.press(KEY_PLAY);
    // The chord that was begun before is found.
    EXPECT_THAT(take(), Contains("[chord KEY_STOP+KEY_PLAY]"));
}

TEST_F(ProductTest, TellOfTheRecordsOfANodeWithKeysAndSwitchesOnce)
{
    start(Profile());
    InputNode &node = plug(
        0,
        DeviceDescription::keyboard("both", BUS_HOST, {KEY_INFO}).withSwitches({SW_LINEIN_INSERT}));
    take();
    node.press(KEY_INFO);
    node.setSwitch(SW_LINEIN_INSERT, true);
    EXPECT_THAT(take(), ElementsAre("KEY_INFO press", "SW_LINEIN_INSERT on"));
}

TEST_F(ProductTest, ReportPositionsAtStartWithoutRecords)
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

TEST_F(ProductTest, SelectAnIdentifierOnAnEventAsTheProfileSays)
{
    Profile profile = panelProfile();
    profile.devices[0].handlers[0].identifiers = QStringList{"browse", "text"};
    profile.initial = "browse";
    profile.select = {{InputEvent::Stop, InputEvent::KeyReleased, "text"}};
    start(profile);
    InputNode &panel = plugPanel();
    panel.press(KEY_STOP);
    EXPECT_EQ(devices().identifier().toStdString(), "browse");
    panel.release(KEY_STOP);
    EXPECT_THAT(take(), Contains("select text"));
    EXPECT_EQ(devices().identifier().toStdString(), "text");
}

TEST_F(ProductTest, FollowTheBusFilter)
{
    Profile profile = panelProfile();
    auto &keys = profile.devices[0].handlers[0].keys;
    keys = {keyOf(KEY_INFO, InputEvent::Info, true, {700}),
            keyOf(KEY_STOP, InputEvent::Stop, true, {700})};
    keys[0].bus = InputEvent::Bus::USB;
    keys[1].bus = InputEvent::Bus::LocalUI;
    profile.devices[0].handlers[0].chords.clear();
    start(profile);
    InputNode &panel = plugPanel();
    panel.press(KEY_INFO);
    panel.release(KEY_INFO);
    EXPECT_THAT(take(), ElementsAre("KEY_INFO press", "KEY_INFO release"));
    panel.press(KEY_STOP);
    wait(1000);
    const auto entries = take();
    EXPECT_EQ(entries.size(), 4U);
    EXPECT_THAT(entries.back(), testing::StartsWith("[cmd=Stop, state=KeyLongPress"));
}

TEST_F(ProductTest, UseTheFirstEntryThatFitsNameAndBus)
{
    const auto entry = [](const std::optional<QString> &name,
                          const std::optional<InputEvent::Bus> &bus, InputEvent::Command command) {
        HandlerProfile handler;
        handler.keys = {keyOf(KEY_INFO, command, true)};
        DeviceProfile device;
        device.name = name;
        device.bus = bus;
        device.handlers = {handler};
        return device;
    };
    Profile profile;
    profile.devices = {entry(QString("panel"), InputEvent::Bus::USB, InputEvent::Mute),
                       entry(QString("panel"), {}, InputEvent::Stop),
                       entry({}, InputEvent::Bus::I2C, InputEvent::Pause),
                       entry({}, {}, InputEvent::Info)};
    start(profile);
    const auto commandOf = [&](int number, const char *name, int bus) {
        InputNode &node = plug(number, DeviceDescription::keyboard(name, bus, {KEY_INFO}));
        take();
        node.press(KEY_INFO);
        return take().back();
    };
    EXPECT_THAT(commandOf(0, "panel", BUS_USB), testing::HasSubstr("cmd=Mute"));
    EXPECT_THAT(commandOf(1, "panel", BUS_I2C), testing::HasSubstr("cmd=Stop"));
    EXPECT_THAT(commandOf(2, "remote", BUS_I2C), testing::HasSubstr("cmd=Pause"));
    EXPECT_THAT(commandOf(3, "remote", BUS_SPI), testing::HasSubstr("cmd=Info"));
}
