#include "ProfileReader.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <linux/input-event-codes.h>
#include <sys/stat.h>

using namespace Vorn;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

namespace {

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(content), content.size());
}

std::vector<std::string> problemsIn(const QByteArray &text)
{
    std::vector<std::string> lines;
    for (const Diagnostic &diagnostic : parseProfile(text, QStringLiteral("p")).diagnostics)
        lines.push_back(diagnostic.toString().toStdString());
    return lines;
}

/// A profile with some lines below [device.handler.keys], from line 3 on.
QByteArray withKeys(const QByteArray &lines)
{
    return "[[device]]\n[device.handler.keys]\n" + lines + "\n";
}

/// A profile with some lines below [device.handler], from line 3 on.
QByteArray withHandler(const QByteArray &lines)
{
    return "[[device]]\n[device.handler]\n" + lines + "\n";
}

struct Mistake
{
    const char *text;
    const char *problem; ///< without "p:3:"
};

void expectEach(const std::vector<Mistake> &mistakes, QByteArray (*wrap)(const QByteArray &))
{
    for (const Mistake &mistake : mistakes) {
        EXPECT_THAT(problemsIn(wrap(mistake.text)),
                    ElementsAre(std::string("p:3:") + mistake.problem))
            << mistake.text;
    }
}

HandlerProfile handlerIn(const QByteArray &text)
{
    const ParsedProfile parsed = parseProfile(text, QStringLiteral("p"));
    for (const Diagnostic &diagnostic : parsed.diagnostics)
        ADD_FAILURE() << diagnostic.toString().toStdString();
    const auto &devices = parsed.profile.devices;
    return devices.isEmpty() || devices.at(0).handlers.isEmpty() ? HandlerProfile()
                                                                 : devices.at(0).handlers.at(0);
}

/// "352 Confirm", with what else there is.
std::vector<std::string> keysIn(const QByteArray &text)
{
    std::vector<std::string> keys;
    for (const KeyMapping &key : handlerIn(text).keys) {
        std::string line = std::to_string(key.code) + " " + std::to_string(key.command);
        if (key.immediate)
            line += " immediate";
        if (key.longPress) {
            for (const int timeout : key.longPress->timeouts)
                line += " " + std::to_string(timeout);
            line += key.longPress->repeat ? " repeat" : "";
        }
        if (key.bus)
            line += " @" + std::to_string(static_cast<int>(*key.bus));
        keys.push_back(line);
    }
    return keys;
}

} // namespace

TEST(Profile, IsReadWithAllItsParts)
{
    const ParsedProfile parsed = parseProfile(R"(
#:schema x
initial = "a" # a comment
select = [ { command = "Info", state = "KeyLongPress", identifier = "b" }, ]

[[device]]
name = "panel"
bus = "LocalUI"

[device.handler]
identifiers = ["a", "b"]
positions-at-start = true

[device.handler.keys]
KEY_INFO = { command = "Info", immediate = true, long-press = [700, 600], repeat = true, bus = "LocalUI" }

[device.handler.chords]
"KEY_STOP + 207" = { command = "FactoryReset", bus = "LocalUI" }

[device.handler.switches]
SW_LINEIN_INSERT = "SWLineIn"
)",
                                              "p");
    ASSERT_FALSE(hasErrors(parsed.diagnostics));
    const Profile &profile = parsed.profile;
    EXPECT_EQ(profile.initial.toStdString(), "a");
    ASSERT_THAT(profile.select, SizeIs(1));
    EXPECT_EQ(profile.select.at(0).command, InputEvent::Info);
    EXPECT_EQ(profile.select.at(0).state, InputEvent::KeyLongPress);
    EXPECT_EQ(profile.select.at(0).identifier.toStdString(), "b");
    ASSERT_THAT(profile.devices, SizeIs(1));
    EXPECT_EQ(profile.devices.at(0).name->toStdString(), "panel");
    EXPECT_EQ(profile.devices.at(0).bus, InputEvent::Bus::LocalUI);
    ASSERT_THAT(profile.devices.at(0).handlers, SizeIs(1));
    const HandlerProfile &handler = profile.devices.at(0).handlers.at(0);
    EXPECT_EQ(handler.identifiers.join(' ').toStdString(), "a b");
    ASSERT_THAT(handler.keys, SizeIs(1));
    EXPECT_EQ(handler.keys.at(0).code, KEY_INFO);
    EXPECT_EQ(handler.keys.at(0).command, InputEvent::Info);
    EXPECT_TRUE(handler.keys.at(0).immediate);
    EXPECT_EQ(handler.keys.at(0).longPress->timeouts, (QList<int>{700, 600}));
    EXPECT_TRUE(handler.keys.at(0).longPress->repeat);
    EXPECT_EQ(handler.keys.at(0).bus, InputEvent::Bus::LocalUI);
    ASSERT_THAT(handler.chords, SizeIs(1));
    EXPECT_EQ(handler.chords.at(0).first, KEY_STOP);
    EXPECT_EQ(handler.chords.at(0).second, KEY_PLAY);
    EXPECT_EQ(handler.chords.at(0).command, InputEvent::FactoryReset);
    EXPECT_EQ(handler.chords.at(0).bus, InputEvent::Bus::LocalUI);
    ASSERT_THAT(handler.switches, SizeIs(1));
    EXPECT_EQ(handler.switches.at(0).code, SW_LINEIN_INSERT);
    EXPECT_EQ(handler.switches.at(0).command, InputEvent::SWLineIn);
    EXPECT_TRUE(handler.positionsAtStart);
}

TEST(Profile, HasDefaultsForWhatIsOmitted)
{
    const ParsedProfile parsed = parseProfile(R"(
[[select]]
command = "Info"
identifier = ""
[[device]]
[device.handler.keys]
KEY_INFO = { command = "Info", long-press = 700 }
)",
                                              "p");
    ASSERT_THAT(parsed.diagnostics, SizeIs(0));
    EXPECT_EQ(parsed.profile.initial.toStdString(), "");
    EXPECT_EQ(parsed.profile.select.at(0).state, InputEvent::KeyReleased);
    const DeviceProfile &device = parsed.profile.devices.at(0);
    EXPECT_FALSE(device.name);
    EXPECT_FALSE(device.bus);
    const HandlerProfile &handler = device.handlers.at(0);
    EXPECT_EQ(handler.identifiers, QStringList{QString()});
    EXPECT_FALSE(handler.positionsAtStart);
    EXPECT_FALSE(handler.keys.at(0).immediate);
    EXPECT_EQ(handler.keys.at(0).longPress->timeouts, QList<int>{700});
    EXPECT_FALSE(handler.keys.at(0).longPress->repeat);
    EXPECT_FALSE(handler.keys.at(0).bus);
}

TEST(Profile, RegistersKeysInTheOrderOfTheFile)
{
    EXPECT_THAT(keysIn(withKeys("KEY_Z = \"Info\"\nKEY_A = \"Stop\"\n358 = \"Mute\"")),
                ElementsAre("44 32", "30 11", "358 18"));
}

TEST(Profile, RegistersAKeySeveralTimes)
{
    EXPECT_THAT(keysIn(withKeys(R"(KEY_OK = [
    "Confirm", # everywhere
    { command = "Submit", bus = "I2C" },
]
KEY_UP = "CursorUp")")),
                ElementsAre("352 1", "352 36 @7", "103 5"));
}

TEST(Profile, TakesAListOfTablesWhereTheOrderMatters)
{
    EXPECT_THAT(keysIn(R"(
[[device]]
[[device.handler.keys]]
key = "KEY_OK"
command = "Confirm"
[[device.handler.keys]]
key = 103
command = "CursorUp"
immediate = true
[[device.handler.keys]]
key = "0x160"
command = "Submit"
bus = "I2C"
)"),
                ElementsAre("352 1", "103 5 immediate", "352 36 @7"));
    const HandlerProfile handler = handlerIn(R"(
[[device]]
[device.handler]
keys = [ { key = "KEY_STOP", command = "Stop" }, { key = 207, command = "StartPlay" } ]
chords = [ { keys = ["KEY_STOP", 207], command = "FactoryReset" } ]
switches = [ { switch = 13, command = "SWLineIn" } ]
)");
    ASSERT_THAT(handler.chords, SizeIs(1));
    EXPECT_EQ(handler.chords.at(0).first, KEY_STOP);
    EXPECT_EQ(handler.chords.at(0).second, KEY_PLAY);
    ASSERT_THAT(handler.switches, SizeIs(1));
    EXPECT_EQ(handler.switches.at(0).code, SW_LINEIN_INSERT);
}

TEST(Profile, HasOneHandlerOrSeveral)
{
    const ParsedProfile parsed = parseProfile(R"(
[[device]]
[[device.handler]]
[device.handler.keys]
KEY_OK = "Confirm"
[[device.handler]]
identifiers = ["b"]
[device.handler.keys]
KEY_OK = "Submit"
[[device]]
name = "x"
[device.handler.keys]
KEY_UP = "CursorUp"
)",
                                              "p");
    ASSERT_THAT(parsed.profile.devices, SizeIs(2));
    ASSERT_THAT(parsed.profile.devices.at(0).handlers, SizeIs(2));
    EXPECT_EQ(parsed.profile.devices.at(0).handlers.at(1).keys.at(0).command, InputEvent::Submit);
    ASSERT_THAT(parsed.profile.devices.at(1).handlers, SizeIs(1));
    EXPECT_EQ(parsed.profile.devices.at(1).handlers.at(0).keys.at(0).code, KEY_UP);
}

TEST(Profile, NamesTheCommandThatWasProbablyMeant)
{
    expectEach(
        {{R"(115 = { command = "VolumUp" })",
          "19: error: unknown command 'VolumUp', did you mean 'VolumeUp'?"},
         {R"(115 = "VolumUp")", "7: error: unknown command 'VolumUp', did you mean 'VolumeUp'?"},
         {R"(115 = "volumeup")", "7: error: unknown command 'volumeup', did you mean 'VolumeUp'?"},
         {R"(115 = "xyzzyxyzzy")", "7: error: unknown command 'xyzzyxyzzy'"},
         {R"(115 = "")", "7: error: unknown command ''"},
         {R"(115 = { command = 16 })",
          "19: error: 'command' is a name, not a number; 16 is 'VolumeUp'"},
         {R"(115 = { command = 57 })", "19: error: 'command' is a name, not a number"},
         {R"(115 = { command = 0 })", "19: error: 'command' is a name, not a number; 0 is 'None'"},
         // Not of the command that is left of it in 32 bits.
         {R"(115 = { command = 4294967312 })", "19: error: 'command' is a name, not a number"},
         {R"(115 = { command = -1 })", "19: error: 'command' is a name, not a number"},
         {R"(115 = { command = true })", "19: error: 'command' is a string, not true or false"}},
        withKeys);
    EXPECT_THAT(problemsIn(withKeys(R"(115 = "InputEvent::VolumeUp")")),
                ElementsAre(HasSubstr("p:3:7: error: unknown command 'InputEvent::VolumeUp'")));
}

TEST(Profile, RejectsWrongKeys)
{
    expectEach(
        {{R"(KEY_VOLUMUP = "Info")",
          "1: error: unknown key 'KEY_VOLUMUP', did you mean 'KEY_VOLUMEUP'?"},
         {R"(SW_LINEIN_INSERT = "Info")",
          "1: error: 'SW_LINEIN_INSERT' is a switch, not a key; it belongs under 'switches'"},
         {R"(768 = "Info")",
          "1: error: the code of a key is a whole number from 0 to 767, not '768'"},
         {R"(-1 = "Info")",
          "1: error: the code of a key is a whole number from 0 to 767, not '-1'"},
         {R"(0x300 = "Info")",
          "1: error: the code of a key is a whole number from 0 to 767, not '0x300'"},
         {R"("KEY_INFO\u0000" = "Info")",
          "1: error: unknown key 'KEY_INFO\\u0000', did you mean 'KEY_INFO'?"},
         {R"(identifiers = ["a"])",
          "1: error: 'identifiers' belongs to the handler; write it directly below "
          "[device.handler], above its tables"}},
        [](const QByteArray &line) {
            // A list that is not one of registrations is a mistake of its own.
            QByteArray text = withKeys(line);
            return text.replace("[\"a\"]", "[\"Info\"]");
        });
    expectEach({{R"(keys = [ { key = 1.5, command = "Info" } ])",
                 "18: error: the code of a key is a whole number from 0 to 767, not 1.5"},
                {R"(keys = [ { key = 768, command = "Info" } ])",
                 "18: error: the code of a key is a whole number from 0 to 767, not 768"},
                {R"(keys = [ { key = [1], command = "Info" } ])",
                 "18: error: the code of a key is a name or a number, not a list"}},
               withHandler);
}

TEST(Profile, RejectsWrongSwitches)
{
    expectEach({{R"(switches.KEY_INFO = "Info")",
                 "10: error: 'KEY_INFO' is a key, not a switch; it belongs under 'keys'"},
                {R"(switches.17 = "Info")",
                 "10: error: the code of a switch is a whole number from 0 to 16, not '17'"},
                {R"(switches.SW_PEN_INSERTE = "Info")",
                 "10: error: unknown switch 'SW_PEN_INSERTE', did you mean 'SW_PEN_INSERTED'?"}},
               withHandler);
}

TEST(Profile, RejectsWrongTypes)
{
    expectEach({{R"(1 = { command = "Info", immediate = "yes" })",
                 "37: error: 'immediate' is true or false, not a string"},
                {R"(1 = { command = "Info", long-press = "1s" })",
                 "38: error: a timeout is a number of milliseconds, not a string"},
                {R"(1 = { command = "Info", bus = 1979-05-27 })",
                 "31: error: 'bus' is a string, not a date or time"},
                {R"(1 = true)", "5: error: a key is a table, not true or false"}},
               withKeys);
    expectEach(
        {{"identifiers = \"a\"\nkeys.1 = \"Info\"",
          "15: error: 'identifiers' is a list, not a string; write [\"a\"]"},
         {"identifiers = [1]\nkeys.1 = \"Info\"",
          "16: error: an identifier is a string, not a number"},
         {"chords = 1\nkeys.1 = \"Info\"", "10: error: 'chords' is a table, not a number"},
         {"keys = [\"Info\"]", "9: error: a key in a list is a table with 'key', not a string"}},
        withHandler);
    EXPECT_THAT(problemsIn("device = 1"),
                ElementsAre("p:1:10: error: 'device' is a list, not a number"));
    EXPECT_THAT(problemsIn("device = [1]"),
                ElementsAre("p:1:11: error: a device is a table, not a number"));
}

TEST(Profile, RejectsUnknownAndMissingMembers)
{
    expectEach({{R"(1 = { command = "Info", imediate = true })",
                 "25: error: a key has no member 'imediate', did you mean 'immediate'?"},
                {R"(1 = { immediate = true })", "5: error: a key needs 'command'"},
                {R"(1 = { command = "Info", repeat = true })",
                 "25: error: 'repeat' needs 'long-press', e.g. [700, 600]"}},
               withKeys);
    expectEach({{"KEY_OK = \"Confirm\"\nkeys.1 = \"Info\"",
                 "1: error: a handler has no member 'KEY_OK'; keys belong under "
                 "[device.handler.keys]"},
                {"SW_LID = \"SWLineIn\"\nkeys.1 = \"Info\"",
                 "1: error: a handler has no member 'SW_LID'; switches belong under "
                 "[device.handler.switches]"},
                {R"(keys = [ { command = "Info" } ])", "10: error: a key needs 'key'"}},
               withHandler);
    EXPECT_THAT(problemsIn(""),
                ElementsAre("p:1:1: error: a profile needs at least one [[device]]"));
    EXPECT_THAT(problemsIn("device = []\nselect = [ {} ]"),
                ElementsAre("p:2:12: error: a select rule needs 'command'",
                            "p:2:12: error: a select rule needs 'identifier'"));
    EXPECT_THAT(problemsIn("device = []\nselect = [ { command = \"Info\" } ]"),
                ElementsAre("p:2:12: error: a select rule needs 'identifier'"));
    EXPECT_THAT(problemsIn("[[devices]]"),
                ElementsAre("p:1:1: error: a profile needs at least one [[device]]",
                            "p:1:3: error: a profile has no member 'devices', did you mean "
                            "'device'?"));
}

TEST(Profile, NamesTheHandlersMembersAmongTheKeys)
{
    for (const char *member : {"positions-at-start", "keys", "chords", "switches"}) {
        EXPECT_THAT(problemsIn(withKeys(QByteArray(member) + " = \"Info\"")),
                    ElementsAre(std::string("p:3:1: error: '") + member
                                + "' belongs to the handler; write it directly below "
                                  "[device.handler], above its tables"));
    }
}

TEST(Profile, TakesTheFirstAndTheLastCode)
{
    EXPECT_THAT(keysIn(withHandler("keys = [ { key = 1, command = \"Info\" }, { key = 767, command "
                                   "= \"Stop\" } ]")),
                ElementsAre("1 32", "767 11"));
    EXPECT_THAT(problemsIn(withHandler("keys = [ { key = 0, command = \"Info\" } ]")),
                ElementsAre("p:3:18: warning: 0 is KEY_RESERVED, which no device has"));
    EXPECT_THAT(problemsIn(withHandler("keys = [ { key = -1, command = \"Info\" } ]")),
                ElementsAre("p:3:18: error: the code of a key is a whole number from 0 to 767, not "
                            "-1"));
    const HandlerProfile handler = handlerIn(
        withHandler("switches = [ { switch = 0, command = \"SWLineIn\" }, { switch = 16, command = "
                    "\"SWLineOut\" } ]"));
    ASSERT_THAT(handler.switches, SizeIs(2));
    EXPECT_EQ(handler.switches.at(0).code, 0);
    EXPECT_EQ(handler.switches.at(1).code, 16);
}

TEST(Profile, SuggestsNoListForALongString)
{
    const auto problems = [](const QByteArray &text) {
        return problemsIn(withHandler("identifiers = \"" + text + "\"\nkeys.1 = \"Info\""));
    };
    const std::string start = "p:3:15: error: 'identifiers' is a list, not a string";
    EXPECT_THAT(problems(QByteArray(19, 'x')),
                ElementsAre(start + "; write [\"" + std::string(19, 'x') + "\"]"));
    EXPECT_THAT(problems(QByteArray(20, 'x')), ElementsAre(start));
    EXPECT_THAT(problemsIn(withHandler("identifiers = 1\nkeys.1 = \"Info\"")),
                ElementsAre("p:3:15: error: 'identifiers' is a list, not a number"));
    EXPECT_THAT(problemsIn("initial = [ \"a\" ]\ndevice = []"),
                ElementsAre("p:1:11: error: 'initial' is a string, not a list"));
}

TEST(Profile, MakesSomeSuggestionsAndThenNoMore)
{
    int suggestions = 0;
    QByteArray keys;
    for (int i = 0; i < 502; ++i)
        keys += "{ key = \"KEY_INOF\", command = \"Info\" },\n";
    for (const std::string &problem : problemsIn(withHandler("keys = [\n" + keys + "]")))
        suggestions += problem.find("did you mean") == std::string::npos ? 0 : 1;
    EXPECT_EQ(suggestions, 500);
}

TEST(Profile, RejectsImpossibleTimeouts)
{
    const auto problems = [](const QByteArray &timeouts) {
        return problemsIn(withKeys("1 = { command = \"Info\", long-press = " + timeouts + " }"));
    };
    EXPECT_THAT(problems("[]"),
                ElementsAre("p:3:38: error: an empty list of timeouts would end the process when "
                            "the key is held; give at least one timeout, e.g. [700]"));
    EXPECT_THAT(problems("[2147483647]"), ElementsAre());
    const std::string range = "error: a timeout is a whole number of milliseconds from 0 to "
                              "2147483647, not ";
    EXPECT_THAT(problems("[-1]"), ElementsAre("p:3:39: " + range + "-1"));
    EXPECT_THAT(problems("-1"), ElementsAre("p:3:38: " + range + "-1"));
    EXPECT_THAT(problems("[2147483648]"), ElementsAre("p:3:39: " + range + "2147483648"));
    EXPECT_THAT(problems("[700.5]"), ElementsAre("p:3:39: " + range + "700.5"));
    EXPECT_THAT(problems("[\"1s\"]"),
                ElementsAre("p:3:39: error: a timeout is a number of milliseconds, not a string"));
}

TEST(Profile, RejectsChordsThatAreNotPairs)
{
    expectEach({{R"(chords = [ { keys = [1], command = "Info" } ])",
                 "21: error: a chord has exactly two keys, not 1"},
                {R"(chords = [ { keys = [1, 2, 3], command = "Info" } ])",
                 "21: error: a chord has exactly two keys, not 3"},
                {R"(chords = [ { keys = [1, "KEY_OFNOTHING"], command = "Info" } ])",
                 "25: error: unknown key 'KEY_OFNOTHING'"},
                {R"(chords.KEY_STOP = "Info")",
                 "8: error: a chord is two keys, as in \"KEY_STOP+KEY_PLAY\", not 'KEY_STOP'"},
                {R"(chords."1+2+3" = "Info")",
                 "8: error: a chord is two keys, as in \"KEY_STOP+KEY_PLAY\", not '1+2+3'"},
                {R"(chords."KEY_STOP+KEY_PLYA" = "Info")",
                 "8: error: unknown key 'KEY_PLYA', did you mean 'KEY_PLAY'?"}},
               withHandler);
    // Nothing is said of a chord that it is not.
    EXPECT_THAT(problemsIn(withHandler("chords = [ { keys = [1, 1, \"KEY_OFNOTHING\"], command = "
                                       "\"Info\" } ]")),
                ElementsAre("p:3:21: error: a chord has exactly two keys, not 3",
                            "p:3:28: error: unknown key 'KEY_OFNOTHING'"));
}

TEST(Profile, RejectsWrongStatesAndBuses)
{
    EXPECT_THAT(problemsIn(withKeys(R"(1 = { command = "Info", bus = "Usb" })")),
                ElementsAre("p:3:31: error: unknown bus 'Usb', did you mean 'USB'?"));
    EXPECT_THAT(problemsIn("device = []\n[[select]]\ncommand = \"Info\"\nstate = "
                           "\"KeyRelease\"\nidentifier = \"\""),
                ElementsAre("p:4:9: error: unknown state 'KeyRelease', did you mean "
                            "'KeyReleased'?"));
}

TEST(Profile, RejectsAnEmptyListOfIdentifiers)
{
    EXPECT_THAT(problemsIn(withHandler("identifiers = []\nkeys.1 = \"Info\"")),
                ElementsAre("p:3:15: error: a handler without an identifier is never selected; "
                            "omit 'identifiers' for the empty one"));
}

TEST(Profile, ReportsAllMistakesInTheOrderOfTheFile)
{
    EXPECT_THAT(problemsIn("initial = 1\n[[device]]\n[device.handler.keys]\n"
                           "KEY_X = { command = \"Ok\", bsu = 1 }\n"
                           "999 = \"Info\"\n"),
                ElementsAre("p:1:11: error: 'initial' is a string, not a number",
                            HasSubstr("p:4:21: error: unknown command 'Ok'"),
                            HasSubstr("p:4:27: error: a key has no member 'bsu'"),
                            HasSubstr("p:5:1: error: the code of a key")));
}

TEST(Profile, ReportsTheFirstSyntaxErrorAlone)
{
    EXPECT_THAT(problemsIn("device = []\ninitial = browse\nselect = 1"),
                ElementsAre("p:2:11: error: TOML error while parsing value: could not determine "
                            "value type; strings need double quotes"));
}

TEST(Profile, SaysWhatToDoAboutJson)
{
    const auto advice = ElementsAre(HasSubstr("p:1:1: error: this is JSON, and profiles are TOML: "
                                              "rewrite it with [[device]]"));
    EXPECT_THAT(problemsIn("{\n  \"devices\": []\n}\n"), advice);
    EXPECT_THAT(problemsIn("\n {}"), advice);
    EXPECT_THAT(problemsIn("\xef\xbb\xbf{ broken"), advice);
}

TEST(Profile, IsLoadedFromAFile)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.toml"));
    const ParsedProfile missing = loadProfile(path);
    ASSERT_TRUE(hasErrors(missing.diagnostics));
    EXPECT_EQ(missing.diagnostics.at(0).line, 0);
    EXPECT_EQ(missing.diagnostics.at(0).file.toStdString(), path.toStdString());

    write(path, withKeys("1 = \"Info\""));
    const ParsedProfile loaded = loadProfile(path);
    EXPECT_THAT(loaded.diagnostics, SizeIs(0));
    EXPECT_EQ(loaded.profile.devices.size(), 1);

    write(path, QByteArray(maxProfileSize, '#'));
    EXPECT_THAT(loadProfile(path).diagnostics.value(0).message.toStdString(),
                Not(HasSubstr("larger")));
    write(path, QByteArray(maxProfileSize + 1, '#'));
    EXPECT_THAT(loadProfile(path).diagnostics.value(0).message.toStdString(),
                testing::StrEq("cannot be read: it is larger than 1 MiB"));
}

TEST(Profile, IsLoadedFromRegularFilesOnly)
{
    const auto problem = [](const QString &path) {
        return loadProfile(path).diagnostics.value(0).toString().toStdString();
    };
    QTemporaryDir folder;
    EXPECT_EQ(problem(folder.path()),
              folder.path().toStdString() + ": error: cannot be read: it is not a regular file");
    // Nobody writes to it, and a product that opened it would hang.
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_THAT(problem(pipe), HasSubstr("it is not a regular file"));
    EXPECT_THAT(problem({}), HasSubstr("cannot be read: "));
}
