#include "ProfileWriter.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "Diagnostic.h"
#include "EventNames.h"
#include "Profile.h"
#include "ProfileReader.h"
#include "Quoting.h"

#include <gmock/gmock.h>

#include <linux/input-event-codes.h>

using namespace Vorn;
using namespace Vorn::Workbench;

namespace {

std::string text(const QString &value)
{
    std::string result;
    for (const QChar character : value)
        result += std::to_string(character.unicode()) + ",";
    return result;
}

std::string text(const std::optional<InputEvent::Bus> &bus)
{
    return bus ? " @" + std::to_string(static_cast<int>(*bus)) : std::string();
}

/// Every field of a profile.
std::string text(const Profile &profile)
{
    std::string all = "initial " + text(profile.initial) + "\n";
    for (const SelectRule &rule : profile.select) {
        all += "select " + std::to_string(rule.command) + " " + std::to_string(rule.state) + " "
            + text(rule.identifier) + "\n";
    }
    for (const DeviceProfile &device : profile.devices) {
        all += "device " + (device.name ? text(*device.name) : "any") + text(device.bus) + "\n";
        for (const HandlerProfile &handler : device.handlers) {
            all += handler.positionsAtStart ? "handler, positions" : "handler";
            for (const QString &identifier : handler.identifiers)
                all += " [" + text(identifier) + "]";
            for (const KeyMapping &key : handler.keys) {
                all += "\n  key " + std::to_string(key.code) + " " + std::to_string(key.command)
                    + (key.immediate ? " immediate" : "") + text(key.bus);
                if (key.longPress) {
                    all += key.longPress->repeat ? " repeat" : " once";
                    for (const int timeout : key.longPress->timeouts)
                        all += " " + std::to_string(timeout);
                }
            }
            for (const ChordMapping &chord : handler.chords) {
                all += "\n  chord " + std::to_string(chord.first) + " "
                    + std::to_string(chord.second) + " " + std::to_string(chord.command)
                    + text(chord.bus);
            }
            for (const SwitchMapping &mapping : handler.switches) {
                all += "\n  switch " + std::to_string(mapping.code) + " "
                    + std::to_string(mapping.command);
            }
            all += "\n";
        }
    }
    return all;
}

Profile withHandler(const HandlerProfile &handler)
{
    DeviceProfile device;
    device.handlers = {handler};
    Profile profile;
    profile.devices = {device};
    return profile;
}

void expectReadBack(const Profile &profile)
{
    const QByteArray toml = writeProfile(profile);
    const ParsedProfile parsed = parseProfile(toml, QStringLiteral("p"));
    for (const Diagnostic &diagnostic : parsed.diagnostics) {
        EXPECT_NE(diagnostic.severity, Diagnostic::Severity::Error)
            << diagnostic.toString().toStdString() << "\n"
            << toml.toStdString();
    }
    EXPECT_EQ(text(parsed.profile), text(profile)) << toml.toStdString();
    EXPECT_EQ(writeProfile(parsed.profile).toStdString(), toml.toStdString());
}

KeyMapping key(int code, InputEvent::Command command, bool immediate)
{
    KeyMapping mapping;
    mapping.code = code;
    mapping.command = command;
    mapping.immediate = immediate;
    return mapping;
}

KeyMapping key(int code, InputEvent::Command command, bool immediate, const LongPress &longPress)
{
    KeyMapping mapping = key(code, command, immediate);
    mapping.longPress = longPress;
    return mapping;
}

void addCharacters(HandlerProfile *handler, int firstCode, const char *characters)
{
    for (int code = firstCode; *characters; ++characters, ++code) {
        handler->keys.append(key(code, static_cast<InputEvent::Command>(1000 + *characters), true));
    }
}

const QStringList bothModes{QStringLiteral("browse"), QStringLiteral("text")};

HandlerProfile jacks()
{
    HandlerProfile handler;
    handler.identifiers = bothModes;
    handler.switches = {{SW_LINEIN_INSERT, InputEvent::SWLineIn}};
    handler.positionsAtStart = true;
    return handler;
}

HandlerProfile frontPanel()
{
    HandlerProfile handler = jacks();
    const LongPress repeated{{700, 600}, true};
    handler.keys = {key(KEY_VOLUMEUP, InputEvent::VolumeUp, true, repeated),
                    key(KEY_VOLUMEDOWN, InputEvent::VolumeDown, true, repeated),
                    key(KEY_INFO, InputEvent::Info, false, {{700}, false}),
                    key(KEY_STOP, InputEvent::Stop, false),
                    key(KEY_PLAY, InputEvent::StartPlay, false)};
    handler.chords = {{KEY_STOP, KEY_PLAY, InputEvent::FactoryReset, {}}};
    return handler;
}

HandlerProfile hostlink()
{
    HandlerProfile handler;
    handler.identifiers = bothModes;
    handler.keys = {key(KEY_POWER, InputEvent::Power, true)};
    handler.keys[0].bus = InputEvent::Bus::Hostlink;
    return handler;
}

HandlerProfile browseKeys()
{
    const LongPress repeated{{600, 200}, true};
    HandlerProfile handler;
    handler.identifiers = QStringList{bothModes.at(0)};
    handler.keys = {key(KEY_UP, InputEvent::CursorUp, true, repeated),
                    key(KEY_DOWN, InputEvent::CursorDown, true, repeated),
                    key(KEY_LEFT, InputEvent::CursorLeft, true),
                    key(KEY_RIGHT, InputEvent::CursorRight, true),
                    key(KEY_2, InputEvent::CursorUp, true, repeated),
                    key(KEY_8, InputEvent::CursorDown, true, repeated),
                    key(KEY_4, InputEvent::CursorLeft, true),
                    key(KEY_6, InputEvent::CursorRight, true),
                    key(KEY_OK, InputEvent::Confirm, false),
                    key(KEY_ENTER, InputEvent::Confirm, false),
                    key(KEY_BACK, InputEvent::Cancel, false),
                    key(KEY_ESC, InputEvent::Cancel, false),
                    key(KEY_SEARCH, InputEvent::Search, false),
                    key(KEY_F3, InputEvent::Search, false)};
    return handler;
}

HandlerProfile textKeys()
{
    HandlerProfile handler;
    handler.identifiers = QStringList{bothModes.at(1)};
    addCharacters(&handler, KEY_1, "1234567890");
    addCharacters(&handler, KEY_Q, "qwertyuiop");
    addCharacters(&handler, KEY_A, "asdfghjkl");
    addCharacters(&handler, KEY_Z, "zxcvbnm");
    addCharacters(&handler, KEY_SPACE, " ");
    handler.keys.append(key(KEY_BACKSPACE, InputEvent::Backspace, true, {{600, 200}, true}));
    handler.keys.append(key(KEY_LEFT, InputEvent::CursorLeft, true));
    handler.keys.append(key(KEY_RIGHT, InputEvent::CursorRight, true));
    for (const int code : {KEY_OK, KEY_ENTER})
        handler.keys.append(key(code, InputEvent::Submit, false));
    for (const int code : {KEY_BACK, KEY_ESC})
        handler.keys.append(key(code, InputEvent::Cancel, false));
    return handler;
}

/// What examples/player registers.
Profile player()
{
    const auto named = [](const char *name, const HandlerProfile &handler) {
        DeviceProfile device;
        device.name = QString::fromLatin1(name);
        device.handlers = {handler};
        return device;
    };
    DeviceProfile remote;
    remote.handlers = {browseKeys(), textKeys()};
    Profile profile;
    profile.initial = bothModes.at(0);
    profile.select = {{InputEvent::Search, InputEvent::KeyReleased, bothModes.at(1)},
                      {InputEvent::Submit, InputEvent::KeyReleased, bothModes.at(0)},
                      {InputEvent::Cancel, InputEvent::KeyReleased, bothModes.at(0)}};
    profile.devices = {named("front-panel", frontPanel()), named("front-panel-jacks", jacks()),
                       named("hostlink", hostlink()), remote};
    return profile;
}

} // namespace

TEST(PlayerProfile, RegistersWhatThePlayerRegisters)
{
    const ParsedProfile parsed =
        loadProfile(QStringLiteral(VORN_SOURCE_DIR "/examples/profiles/player.toml"));
    for (const Diagnostic &diagnostic : parsed.diagnostics)
        ADD_FAILURE() << diagnostic.toString().toStdString();
    EXPECT_EQ(text(parsed.profile), text(player()));
}

TEST(PlayerProfile, IsReadBackAsItWasWritten)
{
    expectReadBack(player());
}

TEST(ProfileWriter, WritesOneRegistrationALineAndOmitsDefaults)
{
    HandlerProfile handler = frontPanel();
    handler.keys = {handler.keys.at(0), handler.keys.at(4)};
    DeviceProfile device;
    device.name = QStringLiteral("front-panel");
    device.bus = InputEvent::Bus::LocalUI;
    device.handlers = {handler};
    Profile profile;
    profile.initial = QStringLiteral("browse");
    profile.select = {{InputEvent::Search, InputEvent::KeyReleased, QStringLiteral("text")},
                      {InputEvent::Info, InputEvent::KeyLongPress, QStringLiteral("text")}};
    profile.devices = {device, DeviceProfile()};
    EXPECT_EQ(writeProfile(profile).toStdString(), R"(initial = "browse"
select = [
    { command = "Search", identifier = "text" },
    { command = "Info", state = "KeyLongPress", identifier = "text" },
]

[[device]]
name = "front-panel"
bus = "LocalUI"

[device.handler]
identifiers = ["browse", "text"]
positions-at-start = true

[device.handler.keys]
KEY_VOLUMEUP = { command = "VolumeUp", immediate = true, long-press = [700, 600], repeat = true }
KEY_PLAY = "StartPlay"

[device.handler.chords]
"KEY_STOP+KEY_PLAY" = "FactoryReset"

[device.handler.switches]
SW_LINEIN_INSERT = "SWLineIn"

[[device]]
)");
}

TEST(ProfileWriter, KeepsTheRegistrationsOfACodeTogether)
{
    HandlerProfile handler;
    handler.keys = {key(KEY_OK, InputEvent::Confirm, false), key(KEY_OK, InputEvent::Submit, true),
                    key(KEY_UP, InputEvent::CursorUp, true)};
    handler.keys[1].bus = InputEvent::Bus::I2C;
    EXPECT_EQ(writeProfile(withHandler(handler)).toStdString(), R"([[device]]

[device.handler.keys]
KEY_OK = [
    "Confirm",
    { command = "Submit", immediate = true, bus = "I2C" },
]
KEY_UP = { command = "CursorUp", immediate = true }
)");
    expectReadBack(withHandler(handler));
}

TEST(ProfileWriter, KeepsAnOrderThatATableCannotHold)
{
    HandlerProfile handler;
    handler.keys = {key(KEY_OK, InputEvent::Confirm, false),
                    key(KEY_UP, InputEvent::CursorUp, false),
                    key(KEY_OK, InputEvent::Submit, false)};
    handler.keys[2].bus = InputEvent::Bus::I2C;
    handler.chords = {{KEY_STOP, KEY_PLAY, InputEvent::FactoryReset, {}},
                      {KEY_UP, KEY_DOWN, InputEvent::Info, {}},
                      {KEY_STOP, KEY_PLAY, InputEvent::Info, InputEvent::Bus::USB}};
    EXPECT_THAT(writeProfile(withHandler(handler)).toStdString(), testing::StartsWith(R"([[device]]

[[device.handler.keys]]
key = "KEY_OK"
command = "Confirm"

[[device.handler.keys]]
key = "KEY_UP"
command = "CursorUp"

[[device.handler.keys]]
key = "KEY_OK"
command = "Submit"
bus = "I2C"

[[device.handler.chords]]
keys = ["KEY_STOP", "KEY_PLAY"]
)"));
    expectReadBack(withHandler(handler));
}

TEST(ProfileWriter, WritesSeveralHandlersAndEmptyOnes)
{
    Profile profile = withHandler(HandlerProfile());
    expectReadBack(profile);
    profile.devices[0].handlers = {HandlerProfile(), frontPanel(), HandlerProfile()};
    expectReadBack(profile);
}

TEST(ProfileWriter, ExplainsWhatItWritesInComments)
{
    const QByteArray written = writeCommentedProfile(player());
    EXPECT_THAT(written.toStdString(), testing::HasSubstr("# What each key does."));
    EXPECT_THAT(written.toStdString(),
                testing::HasSubstr("# The identifier selected at the start."));
    const ParsedProfile parsed = parseProfile(written, QStringLiteral("p"));
    EXPECT_EQ(text(parsed.profile), text(player()));
}

TEST(ProfileWriter, KnowsWhatItWrote)
{
    const QByteArray written = writeCommentedProfile(player());
    EXPECT_TRUE(isAsWritten(written));
    EXPECT_FALSE(isAsWritten(written + "# my comment\n"));
    EXPECT_FALSE(isAsWritten(QByteArray(written).replace("KEY_INFO =", "KEY_INFO  =")));
    EXPECT_FALSE(isAsWritten(writeProfile(player())));
    EXPECT_FALSE(isAsWritten("{}"));
}

TEST(ProfileWriter, WritesAnEmptyProfile)
{
    EXPECT_EQ(writeProfile(Profile()).toStdString(), "device = []\n");
    expectReadBack(Profile());
}

TEST(ProfileWriter, WritesEveryKeySwitchAndCommand)
{
    HandlerProfile handler;
    for (int code = 0; code <= maxKeyCode; ++code)
        handler.keys.append(key(code, InputEvent::Info, code % 2 == 0));
    for (int code = 0; code <= maxSwitchCode; ++code)
        handler.switches.append({code, InputEvent::SWLineIn});
    for (const QString &name : commandNames())
        handler.chords.append({KEY_STOP, KEY_PLAY, *command(name), {}});
    expectReadBack(withHandler(handler));
}

TEST(ProfileWriter, WritesEveryBusAndState)
{
    Profile profile;
    HandlerProfile handler;
    for (const QString &name : busNames()) {
        KeyMapping mapping = key(KEY_OK, InputEvent::Confirm, false);
        mapping.bus = bus(name);
        handler.keys.append(mapping);
        handler.chords.append({KEY_STOP, KEY_PLAY, InputEvent::Info, bus(name)});
        DeviceProfile device;
        device.bus = bus(name);
        profile.devices.append(device);
    }
    profile.devices[0].handlers = {handler};
    for (const QString &name : stateNames())
        profile.select.append({InputEvent::Info, *state(name), QString()});
    expectReadBack(profile);
}

TEST(ProfileWriter, WritesTextsOfAllCharacters)
{
    QString controls;
    for (ushort code = 0; code < 0x100; ++code)
        controls += QChar(code);
    controls += QStringLiteral("\u202e\u2028");
    const QString beyond = QString::fromUtf8("\U0001F3B5 \uFFFD");
    HandlerProfile handler;
    handler.identifiers = QStringList{controls, beyond, QString()};
    handler.keys = {key(KEY_OK, InputEvent::Confirm, false)};
    Profile profile = withHandler(handler);
    profile.initial = beyond;
    profile.devices[0].name = controls;
    profile.select = {{InputEvent::Confirm, InputEvent::KeyPressed, controls}};
    expectReadBack(profile);
    const QString text = QString::fromUtf8(writeProfile(profile)).remove(QLatin1Char('\n'));
    EXPECT_EQ(text, printable(text));
}

TEST(ProfileWriter, ReplacesHalfAPairWhichUtf8Lacks)
{
    Profile profile = withHandler(frontPanel());
    profile.initial = QString(QChar(0xD83C));
    const ParsedProfile parsed = parseProfile(writeProfile(profile), QStringLiteral("p"));
    EXPECT_EQ(parsed.profile.initial.toStdString(), "?");
}

TEST(ProfileWriter, WritesTheLargestTimeouts)
{
    HandlerProfile handler;
    handler.keys = {key(KEY_OK, InputEvent::Confirm, true, {{2147483647, 0, 1}, true}),
                    key(KEY_UP, InputEvent::CursorUp, false, {{50}, false})};
    expectReadBack(withHandler(handler));
}
