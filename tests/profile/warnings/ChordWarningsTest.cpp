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

/// What is found in the lines of a handler with a chord of KEY_STOP and KEY_PLAY, from line 4 on.
std::vector<std::string> problemsBeside(const QByteArray &keys)
{
    return problemsIn("[[device]]\n[device.handler]\n"
                      "chords.\"KEY_STOP+KEY_PLAY\" = \"FactoryReset\"\n"
                      + keys);
}

} // namespace

TEST(ChordWarnings, AreNoneForDeferredKeysWithoutALongPress)
{
    EXPECT_THAT(problemsBeside("keys.KEY_STOP = \"Stop\"\nkeys.KEY_PLAY = \"StartPlay\"\n"
                               "keys.KEY_INFO = { command = \"Info\", immediate = true, "
                               "long-press = 700 }"),
                ElementsAre());
}

TEST(ChordWarnings, NameAnImmediateKey)
{
    EXPECT_THAT(
        problemsBeside("keys.KEY_STOP = { command = \"Stop\", immediate = true }\n"
                       "keys.KEY_PLAY = \"StartPlay\""),
        ElementsAre("p:4:49: warning: KEY_STOP is part of the chord in line 3: its own press and "
                    "release are reported before the chord; leave out 'immediate'"));
    // Nothing of it is reported.
    EXPECT_THAT(problemsBeside("keys.KEY_STOP = { command = \"None\", immediate = true }\n"
                               "keys.KEY_PLAY = \"StartPlay\""),
                ElementsAre());
}

TEST(ChordWarnings, NameAKeyWithALongPress)
{
    EXPECT_THAT(
        problemsBeside("keys.KEY_STOP = \"Stop\"\n"
                       "keys.KEY_PLAY = { command = \"StartPlay\", long-press = 700 }"),
        ElementsAre("p:5:55: warning: KEY_PLAY is part of the chord in line 3: pressed first, its "
                    "own long press is reported while the chord is held; use a key that is in no "
                    "chord"));
}

TEST(ChordWarnings, AreAboutKeysOfTheSameBus)
{
    const QByteArray keys =
        "keys.2 = [ \"Stop\", { command = \"Stop\", immediate = true, bus = \"USB\" } ]\n"
        "keys.3 = \"Next\"\n";
    const QByteArray chord = "chords.\"2+3\" = { command = \"Mute\", bus = ";
    EXPECT_THAT(problemsIn("[[device]]\n[device.handler]\n" + keys + chord + "\"I2C\" }"),
                ElementsAre());
    EXPECT_EQ(problemsIn("[[device]]\n[device.handler]\n" + keys + chord + "\"USB\" }").size(), 1U);
}

TEST(ChordWarnings, AreNoneForAKeyThatALaterOneReplaces)
{
    const auto problems = [](const QByteArray &later) {
        return problemsBeside("keys.KEY_STOP = [ { command = \"Stop\", immediate = true }, " + later
                              + " ]\nkeys.KEY_PLAY = \"StartPlay\"");
    };
    EXPECT_THAT(problems("\"Mute\""),
                ElementsAre("p:4:6: warning: KEY_STOP already has a command, in line 4; this one "
                            "wins"));
    // On the other buses it stays.
    EXPECT_THAT(problems("{ command = \"Mute\", bus = \"USB\" }"),
                ElementsAre(testing::HasSubstr("leave out 'immediate'")));
}

TEST(ChordWarnings, NameKeysThatAreSilentAlone)
{
    EXPECT_THAT(problemsBeside(""),
                ElementsAre("p:3:8: warning: nothing is reported when KEY_STOP or KEY_PLAY is "
                            "pressed alone; give it a command, or 'None' if that is meant"));
    EXPECT_THAT(
        problemsBeside("keys.KEY_STOP = \"Stop\"\nchords.\"KEY_PLAY+KEY_INFO\" = \"Mute\"\n"),
        ElementsAre("p:3:8: warning: nothing is reported when KEY_PLAY is pressed alone; "
                    "give it a command, or 'None' if that is meant",
                    "p:5:8: warning: nothing is reported when KEY_INFO is pressed alone; "
                    "give it a command, or 'None' if that is meant"));
    EXPECT_THAT(problemsBeside("keys.KEY_STOP = \"None\"\nkeys.KEY_PLAY = \"None\""),
                ElementsAre());
    // While another identifier is selected, they are not.
    EXPECT_THAT(problemsIn("[[device]]\n"
                           "[[device.handler]]\nkeys.2 = \"Stop\"\nkeys.3 = \"Next\"\n"
                           "[[device.handler]]\nidentifiers = [\"service\"]\n"
                           "chords.\"2+3\" = \"FactoryReset\"\n"),
                ElementsAre());
    // The mistake may be what their commands were in.
    EXPECT_THAT(problemsBeside("keys.KEY_STP = \"Stop\"").size(), 1U);
}

TEST(ChordWarnings, AreNoneForAKeyThatALaterOneOfTheSameBusReplaces)
{
    const auto count = [](const char *first, const char *second) {
        const QByteArray keys = QByteArray("keys.2 = [ { command = \"Stop\", immediate = true")
            + first + " }, { command = \"Mute\"" + second + " } ]\nkeys.3 = \"Next\"\n";
        int warnings = 0;
        for (const std::string &problem :
             problemsIn("[[device]]\n[device.handler]\nchords.\"2+3\" = \"Info\"\n" + keys))
            warnings += problem.find("leave out 'immediate'") == std::string::npos ? 0 : 1;
        return warnings;
    };
    const char *onUsb = ", bus = \"USB\"";
    EXPECT_EQ(count("", ""), 0);
    EXPECT_EQ(count(onUsb, ""), 0);
    EXPECT_EQ(count(onUsb, onUsb), 0);
    EXPECT_EQ(count("", onUsb), 1);
    EXPECT_EQ(count(onUsb, ", bus = \"PCI\""), 1);
}

TEST(ChordWarnings, AreAboutAChordOfAnyBus)
{
    const QByteArray key =
        "keys.2 = { command = \"Stop\", immediate = true, bus = \"USB\" }\nkeys.3 = \"Next\"\n";
    EXPECT_EQ(problemsIn("[[device]]\n[device.handler]\nchords.\"2+3\" = \"Info\"\n" + key).size(),
              1U);
    const QByteArray general =
        "keys.2 = { command = \"Stop\", immediate = true }\nkeys.3 = \"Next\"\n";
    EXPECT_EQ(problemsIn("[[device]]\n[device.handler]\nchords.\"2+3\" = { command = \"Info\", bus "
                         "= \"USB\" }\n"
                         + general)
                  .size(),
              1U);
}
