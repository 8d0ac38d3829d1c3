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

/// With a rule that selects "text" by an event.
std::vector<std::string> problemsOf(const QByteArray &event, const QByteArray &identifiers)
{
    return problemsIn("initial = \"browse\"\nselect = [ { " + event
                      + ", identifier = \"text\" } ]\n[[device]]\n[device.handler]\nidentifiers = "
                      + identifiers + R"(
keys.1 = { command = "Mute", immediate = true, long-press = 700 }
keys.2 = "Stop"
keys.3 = "Next"
chords."2+3" = "FactoryReset"
switches.1 = "SWLineIn"
)");
}

std::string lost(const std::string &command, const std::string &state)
{
    return "the key is still down when " + command + " is reported as " + state
        + ", and to select 'text' loses its release; use the state 'KeyReleased'";
}

} // namespace

TEST(RuleWarnings, NameASelectionWhileAKeyIsDown)
{
    const QByteArray both = "[\"browse\", \"text\"]";
    for (const char *command : {"Mute", "FactoryReset"})
        EXPECT_THAT(
            problemsOf(QByteArray("command = \"") + command + "\", state = \"KeyPressed\"", both),
            ElementsAre(testing::EndsWith(": warning: " + lost(command, "KeyPressed"))));
    EXPECT_THAT(problemsOf("command = \"Mute\", state = \"KeyLongPress\"", both),
                ElementsAre("p:2:40: warning: " + lost("Mute", "KeyLongPress")));
}

TEST(RuleWarnings, AreNoneForASelectionWhenTheKeyIsUp)
{
    const QByteArray both = "[\"browse\", \"text\"]";
    for (const char *event :
         {"command = \"Mute\"", "command = \"FactoryReset\"", "command = \"Stop\"",
          // A deferred key is up again when its press is reported.
          "command = \"Stop\", state = \"KeyPressed\"",
          "command = \"SWLineIn\", state = \"SwitchEnabled\""})
        EXPECT_THAT(problemsOf(event, both), ElementsAre()) << event;
    // Selected already, it changes nothing.
    EXPECT_THAT(problemsIn("initial = \"text\"\nselect = [ { command = \"Mute\", state = "
                           "\"KeyPressed\", identifier = \"text\" } ]\n[[device]]\n"
                           "[device.handler]\nidentifiers = [\"text\"]\n"
                           "keys.1 = { command = \"Mute\", immediate = true }\n"),
                ElementsAre());
}

TEST(RuleWarnings, NameTheIdentifierThatWasProbablyMeant)
{
    EXPECT_THAT(problemsIn("initial = \"browse\"\nselect = [ { command = \"Info\", identifier = "
                           "\"brwse\" } ]\n[[device]]\n[device.handler]\nidentifiers = "
                           "[\"browse\"]\nkeys.1 = \"Info\"\n"),
                ElementsAre("p:2:45: warning: no handler has the identifier 'brwse', did you mean "
                            "'browse'?"));
}

TEST(RuleWarnings, DoNotMissTheIdentifierOfARuleWhereThereAreNoHandlers)
{
    EXPECT_THAT(
        problemsIn("select = [ { command = \"Info\", identifier = \"text\" } ]\n[[device]]\n"),
        ElementsAre("p:1:12: warning: nothing reports Info with the state KeyReleased, so this "
                    "never happens",
                    "p:2:1: warning: there are no handlers, so nothing is reported"));
}
