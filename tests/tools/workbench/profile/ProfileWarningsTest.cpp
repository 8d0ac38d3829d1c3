#include "Profile.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using testing::ElementsAre;

namespace {

std::vector<std::string> problemsIn(const QByteArray &text)
{
    std::vector<std::string> lines;
    for (const Diagnostic &diagnostic : parseProfile(text, QStringLiteral("p")).diagnostics)
        lines.push_back(diagnostic.toString().toStdString());
    return lines;
}

/// What is found in the members of a handler, that of a device entry with some members, which
/// begin in line 2 and end before line 100.
std::vector<std::string> problemsInHandler(const QByteArray &members, const QByteArray &device = "")
{
    return problemsIn("{\"devices\": [{" + device + "\"handlers\": [{\n" + members + "}]}]}");
}

std::vector<std::string> problemsInDevices(const QByteArray &devices)
{
    QByteArray text = devices;
    text.replace("HANDLERS", R"("handlers": [{"keys": [{"code": 1, "command": "Info"}]}])");
    return problemsIn("{\"devices\": [\n" + text + "\n]}");
}

std::string warning(const char *place, const std::string &message)
{
    return std::string("p:") + place + ": warning: " + message;
}

} // namespace

TEST(ProfileWarnings, TellOfKeysThatAreNeverReported)
{
    EXPECT_THAT(problemsInHandler(R"("keys": [{"code": 1, "command": "None"}])"),
                ElementsAre(warning("2:33", "with 'None' the key is never reported")));
    EXPECT_THAT(
        problemsInHandler(
            R"("keys": [{"code": 1, "command": "None", "longPress": {"timeouts": [700]}}])"),
        ElementsAre(warning("2:33", "with 'None' nothing but the long press is reported")));
    EXPECT_THAT(problemsInHandler(R"("keys": [{"code": 0, "command": "Info"}])"),
                ElementsAre(warning("2:19", "0 is KEY_RESERVED, which no device has a key for")));
}

TEST(ProfileWarnings, TellOfChordsThatNeverHappen)
{
    EXPECT_THAT(problemsInHandler(R"("chords": [{"keys": [1, "KEY_ESC"], "command": "Info"}])"),
                ElementsAre(warning("2:21", "a chord of a key with itself never happens")));
    EXPECT_THAT(problemsInHandler(R"("chords": [{"keys": [1, 2], "command": "None"}])"),
                ElementsAre(warning("2:40",
                                    "with 'None' this is no chord, and its second key is reported "
                                    "as if it had been pressed alone")));
    EXPECT_THAT(problemsInHandler(R"("chords": [{"keys": [1, 0], "command": "Info"}])"),
                ElementsAre(warning("2:21", "0 is KEY_RESERVED, which no device has a key for")));
}

TEST(ProfileWarnings, TellOfASecondCommandForAKey)
{
    EXPECT_THAT(
        problemsInHandler("\"keys\": [\n"
                          "{\"code\": \"KEY_UP\", \"command\": \"Info\"},\n"
                          "{\"code\": 103, \"command\": \"Stop\"}]"),
        ElementsAre(warning("4:10", "KEY_UP has a command at line 3 already; this one wins")));
}

TEST(ProfileWarnings, TellOfALongPressThatASecondCommandLoses)
{
    const QByteArray first = "\"keys\": [{\"code\": 103, \"command\": \"Info\", \"longPress\": "
                             "{\"timeouts\": [700]}},\n{\"code\": 103, \"command\": \"Stop\"";
    const std::string start = "KEY_UP has a command at line 2 already; this one wins";
    EXPECT_THAT(problemsInHandler(first + "}]"),
                ElementsAre(warning("3:10", start + ", and the long press from there is lost")));
    EXPECT_THAT(problemsInHandler(first + R"(, "bus": "USB"}])", "\"bus\": \"USB\", "),
                ElementsAre(warning("3:10", start + ", with the long press from there")));
    EXPECT_THAT(problemsInHandler(first + R"(, "longPress": {"timeouts": [800]}}])"),
                ElementsAre(warning("3:10", start)));
}

TEST(ProfileWarnings, TakeACommandForOneBusForARefinement)
{
    const QByteArray general = R"({"code": 103, "command": "Info"})";
    const QByteArray onUsb = R"({"code": 103, "command": "Stop", "bus": "USB"})";
    const QByteArray onPci = R"({"code": 103, "command": "Stop", "bus": "PCI"})";
    const auto keys = [](const QByteArray &first, const QByteArray &second) {
        return "\"keys\": [" + first + ",\n" + second + "]";
    };
    const auto replaced =
        ElementsAre(warning("3:10", "KEY_UP has a command at line 2 already; this one wins"));
    EXPECT_THAT(problemsInHandler(keys(general, onUsb)), ElementsAre());
    EXPECT_THAT(problemsInHandler(keys(onPci, onUsb)), ElementsAre());
    EXPECT_THAT(problemsInHandler(keys(onUsb, onUsb)), replaced);
    EXPECT_THAT(problemsInHandler(keys(onUsb, general)), replaced);
    EXPECT_THAT(problemsInHandler(keys(general, onUsb), "\"bus\": \"USB\", "), replaced);
}

TEST(ProfileWarnings, TellOfASecondCommandForAChordInEitherOrder)
{
    EXPECT_THAT(problemsInHandler("\"chords\": [{\"keys\": [103, 108], \"command\": \"Info\"},\n"
                                  "{\"keys\": [108, 103], \"command\": \"Stop\"},\n"
                                  "{\"keys\": [108, 105], \"command\": \"Stop\"}]"),
                ElementsAre(warning("3:10",
                                    "the chord of KEY_DOWN and KEY_UP has a command at line 2 "
                                    "already; this one wins")));
}

TEST(ProfileWarnings, TellOfSwitches)
{
    EXPECT_THAT(problemsInHandler("\"switches\": [{\"code\": 13, \"command\": \"SWLineIn\"},\n"
                                  "{\"code\": 13, \"command\": \"SWLineOut\"}]"),
                ElementsAre(warning("3:10",
                                    "SW_LINEIN_INSERT has a command at line 2 already; this one "
                                    "wins")));
    const QByteArray cover = R"("switches": [{"code": 16, "command": "SWLineIn"}])";
    EXPECT_THAT(problemsInHandler(cover), ElementsAre());
    EXPECT_THAT(problemsInHandler(cover + ", \"positionsAtStart\": true"),
                ElementsAre(warning("2:23",
                                    "the position of SW_MACHINE_COVER is not asked for at the "
                                    "start, only those of codes 0 to 15 are")));
    EXPECT_THAT(
        problemsInHandler(R"("positionsAtStart": true, "keys": [{"code": 1, "command": "Info"}])"),
        ElementsAre(warning("2:21", "there are no switches whose positions could be asked for")));
}

TEST(ProfileWarnings, TellOfTimeouts)
{
    const auto withLongPress = [](const QByteArray &longPress) {
        return problemsInHandler("\"keys\": [{\"code\": 1, \"command\": \"Info\", \"longPress\":\n"
                                 + longPress + "}]");
    };
    EXPECT_THAT(withLongPress(R"({"timeouts": [50, 49, 0], "repeat": true})"),
                ElementsAre(warning("3:19",
                                    "timeouts are looked at every 50 ms, shorter ones make no "
                                    "difference"),
                            warning("3:23",
                                    "timeouts are looked at every 50 ms, shorter ones make no "
                                    "difference")));
    EXPECT_THAT(withLongPress(R"({"timeouts": [700, 600]})"),
                ElementsAre(warning(
                    "3:14", "only the first timeout is reported without \"repeat\": true")));
}

TEST(ProfileWarnings, TellOfABusThatTheDevicesAreNotOn)
{
    const auto problems = [](const QByteArray &device, const QByteArray &bus) {
        return problemsInHandler(
            "\"keys\": [{\"code\": 1, \"command\": \"Info\", \"bus\": \"" + bus + "\"}]", device);
    };
    const auto never = [](const std::string &bus) {
        return ElementsAre(warning(
            "2:48", "this is never registered, since no device of this entry is on " + bus));
    };
    EXPECT_THAT(problems("\"bus\": \"USB\", ", "PCI"), never("PCI"));
    EXPECT_THAT(problems("\"name\": \"hostlink\", ", "PCI"), never("PCI"));
    EXPECT_THAT(problems("\"name\": \"panel\", ", "Hostlink"), never("Hostlink"));
    EXPECT_THAT(problems("\"bus\": \"USB\", ", "USB"), ElementsAre());
    EXPECT_THAT(problems("\"name\": \"hostlink\", ", "Hostlink"), ElementsAre());
    EXPECT_THAT(problems("\"name\": \"panel\", ", "LocalUI"), ElementsAre());
    EXPECT_THAT(problems("", "Hostlink"), ElementsAre());
    EXPECT_THAT(problems("", "NoBus"), ElementsAre());
}

TEST(ProfileWarnings, TellOfABusThatAnEarlierEntryTakes)
{
    EXPECT_THAT(problemsInDevices(R"({"bus": "USB", HANDLERS},
{"handlers": [{"keys": [{"code": 1, "command": "Info", "bus": "USB"}]}]})"),
                ElementsAre(warning("3:63",
                                    "this is never registered, since the devices on USB fit the "
                                    "entry at line 2")));
}

TEST(ProfileWarnings, TellOfAnEntryBehindOneThatTakesItsDevices)
{
    const auto second = [](const QByteArray &first, const QByteArray &next) {
        return problemsInDevices("{" + first + "HANDLERS},\n{" + next + "HANDLERS}");
    };
    const auto unused = ElementsAre(
        warning("3:1", "this entry is never used, all its devices fit the one at line 2"));
    EXPECT_THAT(second("", ""), unused);
    EXPECT_THAT(second("", R"("name": "a", )"), unused);
    EXPECT_THAT(second("", R"("name": "a", "bus": "USB", )"), unused);
    EXPECT_THAT(second(R"("bus": "USB", )", R"("name": "a", "bus": "USB", )"), unused);
    EXPECT_THAT(second(R"("name": "a", )", R"("name": "a", "bus": "USB", )"), unused);
    EXPECT_THAT(second(R"("name": "hostlink", )", R"("bus": "Hostlink", )"), unused);
    EXPECT_THAT(second(R"("bus": "Hostlink", )", R"("name": "hostlink", )"), unused);

    EXPECT_THAT(second(R"("name": "a", "bus": "USB", )", R"("name": "a", )"), ElementsAre());
    EXPECT_THAT(second(R"("name": "a", )", R"("bus": "USB", )"), ElementsAre());
    EXPECT_THAT(second(R"("bus": "USB", )", R"("bus": "PCI", )"), ElementsAre());
    EXPECT_THAT(second(R"("name": "a", )", ""), ElementsAre());
}

TEST(ProfileWarnings, TellOfEntriesThatFitNoDevice)
{
    const std::string none = "no device fits, since the bus Hostlink is that of the device named "
                             "'hostlink' and of no other";
    EXPECT_THAT(problemsInDevices(R"({"name": "panel", "bus": "Hostlink", HANDLERS})"),
                ElementsAre(warning("2:26", none)));
    EXPECT_THAT(problemsInDevices(R"({"name": "hostlink", "bus": "USB", HANDLERS})"),
                ElementsAre(warning("2:29", none)));
    EXPECT_THAT(problemsInDevices(R"({"name": "hostlink", "bus": "Hostlink", HANDLERS})"),
                ElementsAre());
    EXPECT_THAT(problemsInDevices(R"({"name": "", HANDLERS})"),
                ElementsAre(warning("2:10",
                                    "this fits devices without a name only; leave 'name' out to "
                                    "fit all")));
}

TEST(ProfileWarnings, TellOfWhatIsEmpty)
{
    EXPECT_THAT(problemsIn(R"({"devices": []})"),
                ElementsAre(warning("1:13", "there are no devices, so nothing is ever reported")));
    const std::string noHandlers = "there are no handlers, so nothing is reported";
    EXPECT_THAT(problemsIn(R"({"devices": [{}]})"), ElementsAre(warning("1:14", noHandlers)));
    EXPECT_THAT(problemsIn(R"({"devices": [{"handlers": []}]})"),
                ElementsAre(warning("1:27", noHandlers)));
    const auto nothing = ElementsAre(
        warning("1:28", "there are neither keys nor chords nor switches in this handler"));
    EXPECT_THAT(problemsIn(R"({"devices": [{"handlers": [{}]}]})"), nothing);
    EXPECT_THAT(problemsIn(R"({"devices": [{"handlers": [{"keys": [], "switches": []}]}]})"),
                nothing);
}

TEST(ProfileWarnings, TellOfIdentifiersInTwoHandlers)
{
    const QByteArray keys = R"("keys": [{"code": 1, "command": "Info"}])";
    const QByteArray chords = R"("chords": [{"keys": [1, 2], "command": "Info"}])";
    const QByteArray switches = R"("switches": [{"code": 1, "command": "SWLineIn"}])";
    const auto problems = [](const QByteArray &first, const QByteArray &second) {
        return problemsIn("{\"initial\": \"a\", \"devices\": [{\"handlers\": [\n"
                          "{\"identifiers\": [\"a\"], "
                          + first + "},\n{\"identifiers\": [\"b\", \"a\"], " + second + "}]}]}");
    };
    const std::string end = " under 'a' at line 2 are never used, those of this handler take their "
                            "place";
    EXPECT_THAT(problems(keys, chords), ElementsAre(warning("3:23", "the keys" + end)));
    EXPECT_THAT(problems(switches, switches), ElementsAre(warning("3:23", "the switches" + end)));
    EXPECT_THAT(problems(keys, switches), ElementsAre());
}

TEST(ProfileWarnings, TellOfAnIdentifierThatIsListedTwice)
{
    EXPECT_THAT(
        problemsInHandler(R"("identifiers": ["", ""], "keys": [{"code": 1, "command": "Info"}])"),
        ElementsAre(warning("2:21", "'' stands here twice")));
}

TEST(ProfileWarnings, TellOfDuplicateMembers)
{
    EXPECT_THAT(
        problemsInHandler(R"("keys": [{"code": 1, "command": "Stop", "command": "Info"}])"),
        ElementsAre(warning("2:41", "'command' stands here again, only the last one counts")));
}

TEST(ProfileWarnings, TellOfIdentifiersThatNobodyHas)
{
    const QByteArray devices = R"("devices": [{"handlers": [{"identifiers": ["browse"],
        "keys": [{"code": 1, "command": "Info"}]}]}])";
    EXPECT_THAT(problemsIn("{" + devices + "}"),
                ElementsAre(warning("1:1",
                                    "the empty identifier is selected at first, and no handler has "
                                    "it; name one in 'initial'")));
    EXPECT_THAT(problemsIn("{\"initial\": \"brows\", " + devices + "}"),
                ElementsAre(warning("1:13",
                                    "no handler has the identifier 'brows', did you mean "
                                    "'browse'?")));
    EXPECT_THAT(problemsIn("{\"initial\": \"browse\", \"select\": [\n{\"command\": \"Info\", "
                           "\"identifier\": \"text\"}], "
                           + devices + "}"),
                ElementsAre(warning("2:35", "no handler has the identifier 'text'")));
}

TEST(ProfileWarnings, TellOfRulesThatNothingTriggers)
{
    const auto problems = [](const QByteArray &rules) {
        return problemsIn("{\"select\": [\n" + rules + R"(], "devices": [{"handlers": [{
            "keys": [{"code": 1, "command": "Info", "longPress": {"timeouts": [700]}},
                     {"code": 2, "command": "Stop"}],
            "chords": [{"keys": [1, 2], "command": "FactoryReset"}],
            "switches": [{"code": 1, "command": "SWLineIn"}]}]}]})");
    };
    const auto rule = [](const QByteArray &command, const QByteArray &state) {
        return "{\"command\": \"" + command + "\", \"state\": \"" + state
            + "\", \"identifier\": \"\"}";
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

    EXPECT_THAT(
        problems(rule("Info", "KeyPressed") + ",\n" + rule("Info", "KeyPressed")),
        ElementsAre(warning("3:1", "this rule is never used, the one at line 2 comes first")));
}

TEST(ProfileWarnings, DoNotGuessAtWhatAnErrorHides)
{
    EXPECT_THAT(problemsIn(R"({"initial": "a", "select": [{"command": "Info", "identifier": "a"}],
"devices": [{"handlers": [{"identifiers": ["a"], "keys": [{"code": 1, "command": "Inof"}]}]}]})"),
                ElementsAre("p:2:82: error: unknown command 'Inof', did you mean 'Info'?"));
    EXPECT_THAT(problemsInDevices("{\"bus\": \"Usb\", HANDLERS},\n{\"name\": \"a\", HANDLERS}"),
                ElementsAre("p:2:9: error: unknown bus 'Usb', did you mean 'USB'?"));
    EXPECT_THAT(problemsInDevices("{HANDLERS},\n{\"name\": 1, HANDLERS}"),
                ElementsAre("p:3:10: error: 'name' is a string, not a number"));
    EXPECT_THAT(problemsInHandler("\"keys\": [{\"code\": 1, \"command\": \"Info\"},\n"
                                  "{\"code\": 1, \"command\": \"Info\", \"bus\": \"Usb\"}]"),
                ElementsAre("p:3:39: error: unknown bus 'Usb', did you mean 'USB'?"));
}
