#include "BusNames.h"
#include "CommandNames.h"
#include "Diagnostic.h"
#include "EventNames.h"
#include "Profile.h"
#include "TextFile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <linux/input-event-codes.h>

using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

std::vector<std::string> problemsIn(const QByteArray &text)
{
    std::vector<std::string> lines;
    for (const Diagnostic &diagnostic : parseProfile(text, QStringLiteral("p")).diagnostics)
        lines.push_back(diagnostic.toString().toStdString());
    return lines;
}

/// A profile with one key, on the line of its own that the text is put in.
QByteArray withKey(const QByteArray &key)
{
    return "{\"devices\": [{\"handlers\": [{\"keys\": [\n" + key + "\n]}]}]}";
}

QByteArray withHandler(const QByteArray &handler)
{
    return "{\"devices\": [{\"handlers\": [\n" + handler + "\n]}]}";
}

struct Mistake
{
    const char *text;
    const char *problem; ///< without "p:2:"
};

void expectEach(const std::vector<Mistake> &mistakes, QByteArray (*wrap)(const QByteArray &))
{
    for (const Mistake &mistake : mistakes) {
        EXPECT_THAT(problemsIn(wrap(mistake.text)),
                    ElementsAre(std::string("p:2:") + mistake.problem))
            << mistake.text;
    }
}

QJsonObject schema()
{
    QFile file(QStringLiteral(VORN_SOURCE_DIR "/share/vorn-input/profile.schema.json"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QJsonDocument::fromJson(file.readAll()).object();
}

std::string namesOf(const QJsonValue &definition)
{
    QStringList names;
    for (const auto &value : definition[QStringLiteral("enum")].toArray())
        names += value.toString();
    return names.join(' ').toStdString();
}

} // namespace

TEST(Profile, IsReadWithAllItsParts)
{
    const ParsedProfile parsed = parseProfile(R"({
        "$schema": "x", "description": "d", "initial": "a",
        "select": [{"command": "Info", "state": "KeyLongPress", "identifier": "b"}],
        "devices": [{
            "name": "panel", "bus": "LocalUI", "description": "d",
            "handlers": [{
                "identifiers": ["a", "b"], "description": "d",
                "keys": [{"code": "KEY_INFO", "command": "Info", "immediate": true, "bus": "LocalUI",
                          "longPress": {"timeouts": [700, 600], "repeat": true}}],
                "chords": [{"keys": ["KEY_STOP", 207], "command": "FactoryReset", "bus": "LocalUI"}],
                "switches": [{"code": "SW_LINEIN_INSERT", "command": "SWLineIn"}],
                "positionsAtStart": true}]}]})",
                                              "p");
    ASSERT_THAT(parsed.diagnostics, SizeIs(0));
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

TEST(Profile, HasDefaultsForWhatIsLeftOut)
{
    const ParsedProfile parsed = parseProfile(R"({
        "select": [{"command": "Info", "identifier": ""}],
        "devices": [{"handlers": [{"keys": [
            {"code": 358, "command": "Info", "longPress": {"timeouts": [700]}}]}]}]})",
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
    EXPECT_EQ(handler.keys.at(0).code, KEY_INFO);
    EXPECT_FALSE(handler.keys.at(0).immediate);
    EXPECT_FALSE(handler.keys.at(0).longPress->repeat);
    EXPECT_FALSE(handler.keys.at(0).bus);
}

TEST(Profile, NamesTheCommandThatWasProbablyMeant)
{
    expectEach(
        {{R"({"code": 115, "command": "VolumUp"})",
          "26: error: unknown command 'VolumUp', did you mean 'VolumeUp'?"},
         {R"({"code": 115, "command": "volumeup"})",
          "26: error: unknown command 'volumeup', did you mean 'VolumeUp'?"},
         {R"({"code": 115, "command": "xyzzyxyzzy"})", "26: error: unknown command 'xyzzyxyzzy'"},
         {R"({"code": 115, "command": ""})", "26: error: unknown command ''"},
         {R"({"code": 115, "command": 16})",
          "26: error: 'command' is a name, not a number; 16 is 'VolumeUp'"},
         {R"({"code": 115, "command": 57})", "26: error: 'command' is a name, not a number"},
         {R"({"code": 115, "command": true})",
          "26: error: 'command' is a string, not true or false"}},
        withKey);
    EXPECT_THAT(problemsIn(withKey(R"({"code": 115, "command": "InputEvent::VolumeUp"})")),
                ElementsAre(HasSubstr("p:2:26: error: unknown command 'InputEvent::VolumeUp'")));
}

TEST(Profile, TellsWrongKeys)
{
    expectEach(
        {{R"({"code": "KEY_VOLUMUP", "command": "Info"})",
          "10: error: unknown key 'KEY_VOLUMUP', did you mean 'KEY_VOLUMEUP'?"},
         {R"({"code": "SW_LINEIN_INSERT", "command": "Info"})",
          "10: error: 'SW_LINEIN_INSERT' is a switch, not a key; it belongs under 'switches'"},
         {R"({"code": 768, "command": "Info"})",
          "10: error: the code of a key is a whole number from 0 to 767, not 768"},
         {R"({"code": -1, "command": "Info"})",
          "10: error: the code of a key is a whole number from 0 to 767, not -1"},
         {R"({"code": 1.5, "command": "Info"})",
          "10: error: the code of a key is a whole number from 0 to 767, not 1.5"},
         {R"({"code": "0x300", "command": "Info"})",
          "10: error: the code of a key is a whole number from 0 to 767, not '0x300'"},
         {R"({"code": [1], "command": "Info"})",
          "10: error: the code of a key is a name or a number, not a list"},
         {R"({"code": "KEY_INFO\u0000", "command": "Info"})",
          "10: error: unknown key 'KEY_INFO\xEF\xBF\xBD', did you mean 'KEY_INFO'?"}},
        withKey);
}

TEST(Profile, TakesCodesAsNumbersInTexts)
{
    const auto parsed = parseProfile(withKey(R"({"code": "0x166", "command": "Info"})"), "p");
    ASSERT_THAT(parsed.diagnostics, SizeIs(0));
    EXPECT_EQ(parsed.profile.devices.at(0).handlers.at(0).keys.at(0).code, KEY_INFO);
}

TEST(Profile, TellsWrongSwitches)
{
    expectEach({{R"({"switches": [{"code": "KEY_INFO", "command": "Info"}]})",
                 "24: error: 'KEY_INFO' is a key, not a switch; it belongs under 'keys'"},
                {R"({"switches": [{"code": 17, "command": "Info"}]})",
                 "24: error: the code of a switch is a whole number from 0 to 16, not 17"},
                {R"({"switches": [{"code": "SW_PEN_INSERTE", "command": "Info"}]})",
                 "24: error: unknown switch 'SW_PEN_INSERTE', did you mean 'SW_PEN_INSERTED'?"}},
               withHandler);
}

TEST(Profile, TellsWrongTypes)
{
    expectEach({{R"({"code": 1, "command": "Info", "immediate": "yes"})",
                 "45: error: 'immediate' is true or false, not a string"},
                {R"({"code": 1, "command": "Info", "longPress": 700})",
                 "45: error: a long press is an object, not a number"},
                {R"({"code": 1, "command": "Info", "longPress": {"timeouts": 700}})",
                 "58: error: 'timeouts' is a list, not a number; write [700]"},
                {R"({"code": 1, "command": "Info", "bus": null})",
                 "39: error: 'bus' is a string, not null"},
                {R"({"code": 1, "command": "Info", "description": 1})",
                 "47: error: 'description' is a string, not a number"},
                {R"("KEY_INFO")", "1: error: a key is an object, not a string"}},
               withKey);
    expectEach({{R"({"identifiers": "a", "keys": [{"code": 1, "command": "Info"}]})",
                 "17: error: 'identifiers' is a list, not a string; write [\"a\"]"},
                {R"({"identifiers": [1], "keys": [{"code": 1, "command": "Info"}]})",
                 "18: error: an identifier is a string, not a number"},
                {R"({"keys": [{"code": 1, "command": "Info"}], "chords": {}})",
                 "54: error: 'chords' is a list, not an object"}},
               withHandler);
    EXPECT_THAT(problemsIn("[]"), ElementsAre("p:1:1: error: a profile is an object, not a list"));
}

TEST(Profile, TellsUnknownAndMissingMembers)
{
    expectEach({{R"({"code": 1, "command": "Info", "imediate": true})",
                 "32: error: a key has no member 'imediate', did you mean 'immediate'?"},
                {R"({"command": "Info"})", "1: error: a key needs 'code'"},
                {R"({"code": 1})", "1: error: a key needs 'command'"},
                {R"({"code": 1, "command": "Info", "longPress": {}})",
                 "45: error: a long press needs 'timeouts'"}},
               withKey);
    EXPECT_THAT(problemsIn("{}"), ElementsAre("p:1:1: error: a profile needs 'devices'"));
    EXPECT_THAT(problemsIn(R"({"devices": [], "select": [{}]})"),
                ElementsAre("p:1:28: error: a select rule needs 'command'",
                            "p:1:28: error: a select rule needs 'identifier'"));
}

TEST(Profile, TellsTimeoutsThatCannotBe)
{
    const auto withTimeouts = [](const QByteArray &timeouts) {
        return withKey("{\"code\": 1, \"command\": \"Info\", \"longPress\": {\"timeouts\":\n"
                       + timeouts + "}}");
    };
    EXPECT_THAT(problemsIn(withTimeouts("[]")),
                ElementsAre("p:3:1: error: an empty list of timeouts would end the process when "
                            "the key is held; give at least one timeout, e.g. [700]"));
    EXPECT_THAT(problemsIn(withTimeouts("[2147483647]")), ElementsAre());
    const std::string range = "error: a timeout is a whole number of milliseconds from 0 to "
                              "2147483647, not ";
    EXPECT_THAT(problemsIn(withTimeouts("[-1]")), ElementsAre("p:3:2: " + range + "-1"));
    EXPECT_THAT(problemsIn(withTimeouts("[2147483648]")),
                ElementsAre("p:3:2: " + range + "2147483648"));
    EXPECT_THAT(problemsIn(withTimeouts("[700.5]")), ElementsAre("p:3:2: " + range + "700.5"));
    EXPECT_THAT(problemsIn(withTimeouts("[\"1s\"]")),
                ElementsAre("p:3:2: error: a timeout is a number of milliseconds, not a string"));
}

TEST(Profile, TellsChordsThatAreNoPairs)
{
    expectEach({{R"({"chords": [{"keys": [1], "command": "Info"}]})",
                 "22: error: a chord has exactly two keys, not 1"},
                {R"({"chords": [{"keys": [1, 2, 3], "command": "Info"}]})",
                 "22: error: a chord has exactly two keys, not 3"},
                {R"({"chords": [{"keys": [1, "KEY_OFNOTHING"], "command": "Info"}]})",
                 "26: error: unknown key 'KEY_OFNOTHING'"}},
               withHandler);
}

TEST(Profile, TellsWrongStatesAndBuses)
{
    EXPECT_THAT(problemsIn(withKey(R"({"code": 1, "command": "Info", "bus": "Usb"})")),
                ElementsAre("p:2:39: error: unknown bus 'Usb', did you mean 'USB'?"));
    EXPECT_THAT(
        problemsIn(
            R"({"devices": [], "select": [{"command": "Info", "state": "KeyRelease", "identifier": ""}]})"),
        ElementsAre("p:1:57: error: unknown state 'KeyRelease', did you mean 'KeyReleased'?"));
}

TEST(Profile, TellsAnEmptyListOfIdentifiers)
{
    EXPECT_THAT(
        problemsIn(withHandler(R"({"identifiers": [], "keys": [{"code": 1, "command": "Info"}]})")),
        ElementsAre("p:2:17: error: a handler without an identifier is never selected; leave "
                    "'identifiers' out for the empty one"));
}

TEST(Profile, TellsAllMistakesInTheOrderOfTheFile)
{
    EXPECT_THAT(problemsIn("{\"devices\": [{\"handlers\": [{\"keys\": [\n"
                           "{\"code\": \"KEY_X\", \"command\": \"Ok\", \"bsu\": 1},\n"
                           "{\"command\": \"Info\", \"code\": 999}\n"
                           "]}]}],\n"
                           "\"initial\": 1}"),
                ElementsAre(HasSubstr("p:2:30: error: unknown command 'Ok'"),
                            HasSubstr("p:2:36: error: a key has no member 'bsu'"),
                            HasSubstr("p:3:29: error: the code of a key"),
                            "p:5:12: error: 'initial' is a string, not a number"));
}

TEST(Profile, TellsASyntaxErrorAlone)
{
    EXPECT_THAT(problemsIn("{\"devices\": [],\n \"initial\": \"x\",\n}"),
                ElementsAre("p:3:1: error: no valid JSON: a comma stands before the closing "
                            "bracket"));
}

TEST(Profile, IsLoadedFromAFile)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.json"));
    const ParsedProfile missing = loadProfile(path);
    ASSERT_TRUE(hasErrors(missing.diagnostics));
    EXPECT_EQ(missing.diagnostics.at(0).line, 0);
    EXPECT_EQ(missing.diagnostics.at(0).file.toStdString(), path.toStdString());

    ASSERT_EQ(writeFile(path, withKey(R"({"code": 1, "command": "Info"})")).toStdString(), "");
    const ParsedProfile loaded = loadProfile(path);
    EXPECT_THAT(loaded.diagnostics, SizeIs(0));
    EXPECT_EQ(loaded.profile.devices.size(), 1);
}

TEST(Profile, UsesTheFirstEntryThatFitsADevice)
{
    using Bus = InputEvent::Bus;
    Profile profile;
    DeviceProfile both;
    both.name = QStringLiteral("panel");
    both.bus = Bus::LocalUI;
    DeviceProfile named;
    named.name = QStringLiteral("panel");
    DeviceProfile onBus;
    onBus.bus = Bus::USB;
    profile.devices = {both, named, onBus};
    const auto fitting = [&profile](const char *name, Bus bus) {
        const DeviceProfile *device = profile.deviceFor(QString::fromLatin1(name), bus);
        return device ? static_cast<int>(device - profile.devices.constData()) : -1;
    };
    EXPECT_EQ(fitting("panel", Bus::LocalUI), 0);
    EXPECT_EQ(fitting("panel", Bus::USB), 1);
    EXPECT_EQ(fitting("keyboard", Bus::USB), 2);
    EXPECT_EQ(fitting("keyboard", Bus::PCI), -1);
    EXPECT_EQ(fitting("panel2", Bus::NoBus), -1);
    profile.devices.append(DeviceProfile());
    EXPECT_EQ(fitting("keyboard", Bus::PCI), 3);
}

TEST(Profile, ListsEachIdentifierOnce)
{
    Profile profile;
    EXPECT_EQ(profile.identifiers(), QStringList{QString()});
    profile.initial = QStringLiteral("b");
    profile.select = {{InputEvent::Info, InputEvent::KeyReleased, QStringLiteral("c")}};
    HandlerProfile handler;
    handler.identifiers = QStringList{QStringLiteral("a"), QStringLiteral("b")};
    DeviceProfile device;
    device.handlers = {HandlerProfile(), handler, handler};
    profile.devices = {device};
    EXPECT_EQ(profile.identifiers().join('|').toStdString(), "b|c||a");
}

TEST(ProfileSchema, KnowsTheNamesThatTheReaderKnows)
{
    const QJsonValue definitions = QJsonValue(schema())["definitions"];
    EXPECT_EQ(namesOf(definitions["command"]), commandNames().join(' ').toStdString());
    EXPECT_EQ(namesOf(definitions["bus"]), busNames().join(' ').toStdString());
    EXPECT_EQ(namesOf(definitions["state"]), stateNames().join(' ').toStdString());
    EXPECT_EQ(namesOf(definitions["switchCode"]["anyOf"][0]),
              switchNames().join(' ').toStdString());
}

TEST(ProfileSchema, HasAPatternForEveryKey)
{
    const QJsonValue pattern =
        QJsonValue(schema())["definitions"]["keyCode"]["anyOf"][0]["pattern"];
    EXPECT_EQ(pattern.toString().toStdString(), "^(KEY|BTN)_[A-Z0-9_]+$");
    for (const QString &name : keyNames())
        EXPECT_THAT(name.toStdString(), testing::MatchesRegex("(KEY|BTN)_[A-Z0-9_]+"));
}

TEST(ProfileSchema, HasTheMembersThatTheReaderKnows)
{
    // The reader is asked by an object of all members, which it would call unknown otherwise.
    const QJsonObject definitions = schema()[QStringLiteral("definitions")].toObject();
    const auto unknownIn = [](const QJsonObject &object, const QByteArray &before,
                              const QByteArray &after) {
        QJsonObject all;
        for (const QString &name : object[QStringLiteral("properties")].toObject().keys())
            all.insert(name, QJsonValue());
        all.insert(QStringLiteral("unknown"), 1);
        std::vector<std::string> unknown;
        for (const std::string &problem :
             problemsIn(before + QJsonDocument(all).toJson(QJsonDocument::Compact) + after))
        {
            if (problem.find("has no member") != std::string::npos)
                unknown.push_back(problem);
        }
        return unknown;
    };
    const auto onlyUnknown = ElementsAre(HasSubstr("has no member 'unknown'"));
    EXPECT_THAT(unknownIn(schema(), "", ""), onlyUnknown);
    const auto definition = [&definitions](const char *name) {
        return definitions[QLatin1String(name)].toObject();
    };
    EXPECT_THAT(unknownIn(definition("rule"), "{\"select\": [", "]}"), onlyUnknown);
    EXPECT_THAT(unknownIn(definition("device"), "{\"devices\": [", "]}"), onlyUnknown);
    EXPECT_THAT(unknownIn(definition("handler"), withHandler("#").split('#').first(), "]}]}"),
                onlyUnknown);
    EXPECT_THAT(unknownIn(definition("key"), withKey("#").split('#').first(), "]}]}]}"),
                onlyUnknown);
    EXPECT_THAT(unknownIn(definition("longPress"), withKey("{\"longPress\": #").split('#').first(),
                          "}]}]}]}"),
                onlyUnknown);
    EXPECT_THAT(
        unknownIn(definition("chord"), withHandler("{\"chords\": [#").split('#').first(), "]}]}]}"),
        onlyUnknown);
    EXPECT_THAT(unknownIn(definition("switch"), withHandler("{\"switches\": [#").split('#').first(),
                          "]}]}]}"),
                onlyUnknown);
}
