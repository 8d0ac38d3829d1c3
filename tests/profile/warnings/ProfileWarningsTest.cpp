#include "ProfileReader.h"

#include <gmock/gmock.h>

using namespace Vorn;
using testing::ElementsAre;

namespace {

std::vector<std::string> problemsIn(const QByteArray &text)
{
    std::vector<std::string> lines;
    for (const Diagnostic &diagnostic : parseProfile(text, QStringLiteral("p")).diagnostics)
        lines.push_back(diagnostic.toString().toStdString());
    return lines;
}

/// What is found in the lines of a handler, which begin in line 3.
std::vector<std::string> problemsInHandler(const QByteArray &lines)
{
    return problemsIn("[[device]]\n[device.handler]\n" + lines);
}

const QByteArray keys = "[device.handler.keys]\nKEY_ESC = \"Info\"\n";

std::string warning(const char *place, const std::string &message)
{
    return std::string("p:") + place + ": warning: " + message;
}

} // namespace

TEST(ProfileWarnings, NameKeysThatAreNeverReported)
{
    EXPECT_THAT(problemsInHandler(R"(keys.1 = "None")"),
                ElementsAre(warning("3:10", "with 'None' the key is never reported")));
    EXPECT_THAT(problemsInHandler(R"(keys.1 = { command = "None", long-press = 700 })"),
                ElementsAre(warning("3:22", "with 'None' only the long press is reported")));
    EXPECT_THAT(problemsInHandler(R"(keys.0 = "Info")"),
                ElementsAre(warning("3:6", "0 is KEY_RESERVED, which no device has")));
}

TEST(ProfileWarnings, NameChordsThatNeverHappen)
{
    EXPECT_THAT(problemsInHandler(R"(chords."1+KEY_ESC" = "Info")"),
                ElementsAre(warning("3:8", "a chord of a key with itself never happens")));
    EXPECT_THAT(problemsInHandler(R"(chords."1+2" = "None")"),
                ElementsAre(warning("3:16",
                                    "with 'None' this is not a chord: its second key is reported "
                                    "as if it had been pressed alone")));
    EXPECT_THAT(problemsInHandler("chords.\"1+0\" = \"Info\"\nkeys.1 = \"None\""),
                ElementsAre(warning("3:8", "0 is KEY_RESERVED, which no device has")));
}

TEST(ProfileWarnings, NameASecondCommandForAKey)
{
    EXPECT_THAT(
        problemsInHandler("keys.KEY_UP = \"Info\"\nkeys.103 = \"Stop\""),
        ElementsAre(warning("4:6", "KEY_UP already has a command, in line 3; this one wins")));
}

TEST(ProfileWarnings, NameALongPressThatASecondCommandLoses)
{
    const auto problems = [](const QByteArray &second, const QByteArray &bus) {
        return problemsIn("[[device]]\n" + bus
                          + "\n[[device.handler.keys]]\nkey = 103\ncommand = \"Info\"\n"
                            "long-press = 700\n[[device.handler.keys]]\nkey = 103\n"
                            "command = \"Stop\"\n"
                          + second);
    };
    const std::string start = "KEY_UP already has a command, in line 4; this one wins";
    EXPECT_THAT(problems("", ""),
                ElementsAre(warning("8:7", start + ", and the long press from there is lost")));
    EXPECT_THAT(problems("bus = \"USB\"", "bus = \"USB\""),
                ElementsAre(warning("8:7", start + ", with the long press from there")));
    EXPECT_THAT(problems("long-press = 800", ""), ElementsAre(warning("8:7", start)));
}

TEST(ProfileWarnings, TakeACommandForOneBusAsARefinement)
{
    const QByteArray general = "\"Info\"";
    const QByteArray onUsb = R"({ command = "Stop", bus = "USB" })";
    const QByteArray onPci = R"({ command = "Stop", bus = "PCI" })";
    const auto problems = [](const QByteArray &first, const QByteArray &second,
                             const QByteArray &bus = "") {
        return problemsIn("[[device]]\n" + bus + "\n[device.handler.keys]\nKEY_UP = [\n" + first
                          + ",\n" + second + "]");
    };
    const auto replaced =
        ElementsAre(warning("4:1", "KEY_UP already has a command, in line 4; this one wins"));
    EXPECT_THAT(problems(general, onUsb), ElementsAre());
    EXPECT_THAT(problems(onPci, onUsb), ElementsAre());
    EXPECT_THAT(problems(onUsb, onUsb), replaced);
    EXPECT_THAT(problems(onUsb, general), replaced);
    EXPECT_THAT(problems(general, onUsb, "bus = \"USB\""), replaced);
}

TEST(ProfileWarnings, NameASecondCommandForAChordInEitherOrder)
{
    EXPECT_THAT(problemsInHandler("[device.handler.chords]\n"
                                  "\"103+108\" = \"Info\"\n"
                                  "\"108+103\" = \"Stop\"\n"
                                  "\"108+105\" = \"Stop\"\n"
                                  "[device.handler.keys]\n"
                                  "103 = \"Info\"\n105 = \"Info\"\n108 = \"Info\""),
                ElementsAre(warning("5:1",
                                    "the chord of KEY_DOWN and KEY_UP already has a command, in "
                                    "line 4; this one wins")));
}

TEST(ProfileWarnings, AreAboutSwitchesToo)
{
    EXPECT_THAT(problemsInHandler("switches.13 = \"SWLineIn\"\n"
                                  "switches.SW_LINEIN_INSERT = \"SWLineOut\""),
                ElementsAre(warning("4:10",
                                    "SW_LINEIN_INSERT already has a command, in line 3; this one "
                                    "wins")));
    const QByteArray cover = "switches.16 = \"SWLineIn\"\n";
    EXPECT_THAT(problemsInHandler(cover), ElementsAre());
    EXPECT_THAT(problemsInHandler(cover + "positions-at-start = true"),
                ElementsAre(warning("3:10",
                                    "the position of SW_MACHINE_COVER is not reported at the "
                                    "start, only those of codes 0 to 15 are")));
    EXPECT_THAT(
        problemsInHandler("positions-at-start = true\n" + keys),
        ElementsAre(warning("3:22", "there are no switches whose positions could be reported")));
}

TEST(ProfileWarnings, AreAboutTimeouts)
{
    const auto problems = [](const QByteArray &longPress) {
        return problemsInHandler("keys.1 = { command = \"Info\", long-press = " + longPress + " }");
    };
    const std::string tooShort =
        "timeouts are checked every 50 ms; shorter ones make no difference";
    EXPECT_THAT(problems("[50, 49, 0], repeat = true"),
                ElementsAre(warning("3:48", tooShort), warning("3:52", tooShort)));
    EXPECT_THAT(problems("49"), ElementsAre(warning("3:43", tooShort)));
    EXPECT_THAT(problems("[700, 620], repeat = true"),
                ElementsAre(warning("3:49",
                                    "timeouts are checked every 50 ms, so this one is noticed "
                                    "later, at the next check; write 600 or 650")));
    EXPECT_THAT(
        problems("[700, 600]"),
        ElementsAre(warning("3:43", "only the first timeout is used without 'repeat = true'")));
}

TEST(ProfileWarnings, NameABusThatTheDevicesAreNotOn)
{
    const auto problems = [](const QByteArray &device, const QByteArray &bus) {
        return problemsIn("[[device]]\n" + device
                          + "\n[device.handler.keys]\n1 = { command = \"Info\", bus = \"" + bus
                          + "\" }");
    };
    const auto never = [](const std::string &bus) {
        return ElementsAre(
            warning("4:31", "this is never registered: no device of this entry is on " + bus));
    };
    EXPECT_THAT(problems("bus = \"USB\"", "PCI"), never("PCI"));
    EXPECT_THAT(problems("name = \"hostlink\"", "PCI"), never("PCI"));
    EXPECT_THAT(problems("name = \"panel\"", "Hostlink"), never("Hostlink"));
    EXPECT_THAT(problems("bus = \"USB\"", "USB"), ElementsAre());
    EXPECT_THAT(problems("name = \"hostlink\"", "Hostlink"), ElementsAre());
    EXPECT_THAT(problems("name = \"panel\"", "LocalUI"), ElementsAre());
    EXPECT_THAT(problems("", "Hostlink"), ElementsAre());
    EXPECT_THAT(problems("", "NoBus"), ElementsAre());
}

TEST(ProfileWarnings, NameABusThatAnEarlierEntryMatches)
{
    EXPECT_THAT(problemsIn("[[device]]\nbus = \"USB\"\n" + keys
                           + "[[device]]\n[device.handler.keys]\n"
                             "1 = { command = \"Info\", bus = \"USB\" }"),
                ElementsAre(warning("7:31",
                                    "this is never registered: the entry in line 1 matches the "
                                    "devices on USB")));
}

TEST(ProfileWarnings, NameAnEntryWithoutDevicesOnce)
{
    const QByteArray onUsb = "[device.handler.keys]\n1 = { command = \"Info\", bus = \"USB\" }\n";
    EXPECT_THAT(problemsIn("[[device]]\n" + keys + "[[device]]\n" + onUsb),
                ElementsAre(warning(
                    "4:1", "this entry is never used: the one in line 1 matches all its devices")));
    EXPECT_THAT(problemsIn("[[device]]\nname = \"panel\"\nbus = \"Hostlink\"\n" + onUsb),
                ElementsAre(testing::HasSubstr("no device matches")));
}

TEST(ProfileWarnings, NameAnEntryBehindOneThatMatchesItsDevices)
{
    const auto second = [](const QByteArray &first, const QByteArray &next) {
        return problemsIn("[[device]]\n" + first + "\n" + keys + "[[device]]\n" + next + "\n"
                          + keys);
    };
    const auto unused = ElementsAre(
        warning("5:1", "this entry is never used: the one in line 1 matches all its devices"));
    const QByteArray a = "name = \"a\"";
    const QByteArray usb = "bus = \"USB\"";
    EXPECT_THAT(second("", ""), unused);
    EXPECT_THAT(second("", a), unused);
    EXPECT_THAT(second("", a + "\n" + usb), unused);
    EXPECT_THAT(second(a, a + "\n" + usb), unused);
    EXPECT_THAT(second(usb, a + "\n" + usb), unused);
    EXPECT_THAT(second("name = \"hostlink\"", "bus = \"Hostlink\""), unused);
    EXPECT_THAT(second("bus = \"Hostlink\"", "name = \"hostlink\""), unused);

    EXPECT_THAT(second(a + "\n" + usb, a), ElementsAre());
    EXPECT_THAT(second(a, usb), ElementsAre());
    EXPECT_THAT(second(usb, "bus = \"PCI\""), ElementsAre());
    EXPECT_THAT(second(a, ""), ElementsAre());
}

TEST(ProfileWarnings, NameEntriesThatMatchNoDevice)
{
    const std::string none = "no device matches: only the device named 'hostlink' is on the bus "
                             "Hostlink";
    const auto problems = [](const QByteArray &device) {
        return problemsIn("[[device]]\n" + device + "\n" + keys);
    };
    EXPECT_THAT(problems("name = \"panel\"\nbus = \"Hostlink\""),
                ElementsAre(warning("3:7", none)));
    EXPECT_THAT(problems("name = \"hostlink\"\nbus = \"USB\""), ElementsAre(warning("3:7", none)));
    EXPECT_THAT(problems("name = \"hostlink\"\nbus = \"Hostlink\""), ElementsAre());
    EXPECT_THAT(problems("name = \"\""),
                ElementsAre(warning("2:8",
                                    "this matches only devices without a name; omit 'name' to "
                                    "match all")));
}

TEST(ProfileWarnings, NameWhatIsEmpty)
{
    EXPECT_THAT(problemsIn("device = []"),
                ElementsAre(warning("1:10", "there are no devices, so nothing is ever reported")));
    const std::string noHandlers = "there are no handlers, so nothing is reported";
    EXPECT_THAT(problemsIn("\n[[device]]"), ElementsAre(warning("2:1", noHandlers)));
    EXPECT_THAT(problemsIn("[[device]]\nhandler = []"), ElementsAre(warning("2:11", noHandlers)));
    const auto nothing =
        ElementsAre(warning("2:1", "this handler has no keys, chords or switches"));
    EXPECT_THAT(problemsIn("[[device]]\n[device.handler]"), nothing);
    EXPECT_THAT(problemsIn("[[device]]\n[device.handler]\nkeys = []\nswitches = {}"), nothing);
}

TEST(ProfileWarnings, NameIdentifiersInTwoHandlers)
{
    const QByteArray key = "keys.1 = \"Info\"";
    const QByteArray chord = "keys.2 = \"Stop\"\nchords.\"1+2\" = \"Info\"";
    const QByteArray switchOf = "switches.1 = \"SWLineIn\"";
    const auto problems = [](const QByteArray &first, const QByteArray &second) {
        return problemsIn("initial = \"a\"\n[[device]]\n"
                          "[[device.handler]]\nidentifiers = [\"a\"]\n"
                          + first + "\n[[device.handler]]\nidentifiers = [\"b\", \"a\"]\n"
                          + second);
    };
    const std::string end =
        " under 'a' in line 4 are never used: those of this handler replace them";
    EXPECT_THAT(problems(key, chord), ElementsAre(warning("7:21", "the keys" + end)));
    EXPECT_THAT(problems(switchOf, switchOf), ElementsAre(warning("7:21", "the switches" + end)));
    EXPECT_THAT(problems(key, switchOf), ElementsAre());
}

TEST(ProfileWarnings, NameAnIdentifierThatIsListedTwice)
{
    EXPECT_THAT(problemsInHandler("identifiers = [\"\", \"\"]\n" + keys),
                ElementsAre(warning("3:20", "'' is listed twice")));
}

TEST(ProfileWarnings, NameIdentifiersThatNoHandlerHas)
{
    const QByteArray devices = "[[device]]\n[device.handler]\nidentifiers = [\"browse\"]\n" + keys;
    EXPECT_THAT(problemsIn(devices),
                ElementsAre(warning("1:1",
                                    "the empty identifier is selected at the start, and no handler "
                                    "has it; name one in 'initial'")));
    EXPECT_THAT(problemsIn("\ninitial = \"\"\n" + devices),
                ElementsAre(warning("2:11",
                                    "the empty identifier is selected at the start, and no handler "
                                    "has it; name one in 'initial'")));
    EXPECT_THAT(problemsIn("initial = \"brows\"\n" + devices),
                ElementsAre(warning("1:11",
                                    "no handler has the identifier 'brows', did you mean "
                                    "'browse'?")));
    EXPECT_THAT(problemsIn("initial = \"browse\"\n[[select]]\ncommand = \"Info\"\n"
                           "identifier = \"text\"\n"
                           + devices),
                ElementsAre(warning("4:14", "no handler has the identifier 'text'")));
}

TEST(ProfileWarnings, NameRulesThatNothingTriggers)
{
    const auto problems = [](const QByteArray &rules) {
        return problemsIn("select = [\n" + rules + R"(]
[[device]]
[device.handler]
keys.1 = { command = "Info", long-press = 700 }
keys.2 = "Stop"
keys.3 = "Next"
chords."2+3" = "FactoryReset"
switches.1 = "SWLineIn"
)");
    };
    const auto rule = [](const QByteArray &command, const QByteArray &state) {
        return "{ command = \"" + command + "\", state = \"" + state + "\", identifier = \"\" }";
    };
    const auto never = [](const std::string &command, const std::string &state) {
        return ElementsAre(warning("2:1",
                                   "nothing reports " + command + " with the state " + state
                                       + ", so this never happens"));
    };
    for (const char *state : {"KeyPressed", "KeyReleased", "KeyLongPress"})
        EXPECT_THAT(problems(rule("Info", state)), ElementsAre());
    for (const char *state : {"KeyPressed", "KeyReleased"})
        EXPECT_THAT(problems(rule("FactoryReset", state)), ElementsAre());
    for (const char *state : {"SwitchEnabled", "SwitchDisabled"})
        EXPECT_THAT(problems(rule("SWLineIn", state)), ElementsAre());
    EXPECT_THAT(problems(rule("Stop", "KeyLongPress")), never("Stop", "KeyLongPress"));
    EXPECT_THAT(problems(rule("FactoryReset", "KeyLongPress")),
                never("FactoryReset", "KeyLongPress"));
    EXPECT_THAT(problems(rule("SWLineIn", "KeyPressed")), never("SWLineIn", "KeyPressed"));
    EXPECT_THAT(problems(rule("Info", "SwitchEnabled")), never("Info", "SwitchEnabled"));
    EXPECT_THAT(problems(rule("Mute", "KeyReleased")), never("Mute", "KeyReleased"));

    EXPECT_THAT(problems(rule("Info", "KeyPressed") + ",\n" + rule("Info", "KeyPressed")),
                ElementsAre(warning("3:1",
                                    "this rule is never used: the one in line 2 comes "
                                    "first")));
}

TEST(ProfileWarnings, DoNotGuessAtWhatAnErrorHides)
{
    EXPECT_THAT(
        problemsIn("initial = \"a\"\n[[select]]\ncommand = \"Info\"\nidentifier = \"a\"\n"
                   "[[device]]\n[device.handler]\nidentifiers = [\"a\"]\nkeys.1 = \"Inof\""),
        ElementsAre("p:8:10: error: unknown command 'Inof', did you mean 'Info'?"));
    EXPECT_THAT(
        problemsIn("[[device]]\nbus = \"Usb\"\n" + keys + "[[device]]\nname = \"a\"\n" + keys),
        ElementsAre("p:2:7: error: unknown bus 'Usb', did you mean 'USB'?"));
    EXPECT_THAT(problemsIn("[[device]]\n" + keys + "[[device]]\nname = 1\n" + keys),
                ElementsAre("p:5:8: error: 'name' is a string, not a number"));
    EXPECT_THAT(problemsInHandler("keys.KEY_ESC = \"Info\"\n"
                                  "keys.1 = { command = \"Info\", bus = \"Usb\" }"),
                ElementsAre("p:4:36: error: unknown bus 'Usb', did you mean 'USB'?"));
}

TEST(ProfileWarnings, GoOnAfterWhatNeverHappens)
{
    EXPECT_THAT(
        problemsInHandler("keys.2 = \"Stop\"\nkeys.3 = \"Next\"\n[device.handler.chords]\n"
                          "\"1+1\" = \"Info\"\n"
                          "\"2+3\" = \"Info\"\n"
                          "\"3+2\" = \"Mute\"\n"),
        ElementsAre(warning("6:1", "a chord of a key with itself never happens"),
                    warning("8:1",
                            "the chord of KEY_2 and KEY_1 already has a command, in line 7; this "
                            "one wins")));
    EXPECT_THAT(
        problemsIn("[[device]]\nname = \"panel\"\n[device.handler.keys]\n"
                   "1 = { command = \"Info\", bus = \"Hostlink\" }\n"
                   "KEY_ESC = [ \"Info\", \"Stop\" ]\n"),
        ElementsAre(warning("4:31",
                            "this is never registered: no device of this entry is on "
                            "Hostlink"),
                    warning("5:1", "KEY_ESC already has a command, in line 5; this one wins")));
}

TEST(ProfileWarnings, AreAboutWhatIsRegisteredOnly)
{
    // What is not registered replaces nothing, and nothing replaces it.
    const auto problems = [](const QByteArray &entries) {
        return problemsIn("[[device]]\nname = \"panel\"\n[device.handler]\n" + entries).size();
    };
    EXPECT_EQ(problems("keys.1 = [ { command = \"Info\", bus = \"Hostlink\" }, \"Stop\" ]"), 1U);
    EXPECT_EQ(problems("keys.2 = \"Stop\"\nkeys.3 = \"Next\"\nchords.\"2+3\" = [ { command = "
                       "\"Info\", bus = \"Hostlink\" }, \"Mute\" ]"),
              1U);
    EXPECT_THAT(problemsIn("[[device]]\nbus = \"USB\"\n" + keys
                           + "[[device]]\n[device.handler.keys]\n"
                             "1 = [ { command = \"Info\", bus = \"USB\" }, \"Stop\" ]")
                    .size(),
                1U);
}

TEST(ProfileWarnings, TellAKeyOfAChordFromOthers)
{
    // The first two are parts of the chord, and may be silent alone.
    const auto problems = [](int code) {
        return problemsInHandler("chords.\"20+30\" = \"Info\"\nkeys.20 = \"None\"\n"
                                 "keys.30 = \"None\"\nkeys."
                                 + QByteArray::number(code) + " = \"None\"");
    };
    for (const int code : {19, 21, 29, 31})
        EXPECT_EQ(problems(code).size(), 1U) << code;
    EXPECT_THAT(problemsInHandler("chords.\"20+30\" = \"Info\"\nkeys.20 = \"None\"\n"
                                  "keys.30 = \"None\""),
                ElementsAre());
}

TEST(ProfileWarnings, TellChordsWithOneKeyInCommonApart)
{
    EXPECT_THAT(problemsInHandler("keys.1 = \"Stop\"\nkeys.2 = \"Next\"\nkeys.3 = \"Mute\"\n"
                                  "chords.\"1+2\" = \"Info\"\nchords.\"1+3\" = \"Confirm\"\n"
                                  "chords.\"3+2\" = \"VolumeUp\""),
                ElementsAre());
}

TEST(ProfileWarnings, FindSeveralIdentifiersInTwoHandlers)
{
    EXPECT_THAT(
        problemsIn("initial = \"a\"\n[[device]]\n"
                   "[[device.handler]]\nidentifiers = [\"a\", \"b\", \"c\"]\nkeys.1 = \"Info\"\n"
                   "[[device.handler]]\nidentifiers = [\"x\", \"a\", \"a\", \"c\"]\nkeys.2 = "
                   "\"Stop\""),
        ElementsAre(
            warning("7:21",
                    "the keys under 'a' in line 4 are never used: those of this handler replace "
                    "them"),
            warning("7:26", "'a' is listed twice"),
            warning("7:31",
                    "the keys under 'c' in line 4 are never used: those of this handler replace "
                    "them")));
}
