#include "ScenarioChecks.h"

#include "ScenarioFiles.h"

#include <gmock/gmock.h>

namespace {

using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char silent[] = "N: panel\nB: 01 00\nE: 0.000000 0000 0000 0\n";

class ScenarioChecks : public ScenarioFiles
{
protected:
    std::vector<std::string> mistakesIn(const QByteArray &steps) const
    {
        return mistakes(write("a.scenario", "profile \"keys.toml\"\n" + steps));
    }
};

} // namespace

TEST_F(ScenarioChecks, WarnOfAnIdentifierThatTheProfileDoesNotHave)
{
    EXPECT_THAT(mistakesIn("select text\n"),
                ElementsAre("a.scenario:2: warning: the profile has no identifier 'text'"));
    write("keys.toml", "initial = \"browse\"\n[[device]]\n");
    EXPECT_THAT(mistakesIn("wait 1s\nexpect identifier brwse\n"),
                ElementsAre("a.scenario:3: warning: the profile has no identifier 'brwse', did you "
                            "mean 'browse'?"));
}

TEST_F(ScenarioChecks, RefuseToExpectAnEventOfADeviceThatThereIsNot)
{
    EXPECT_THAT(mistakesIn("device panel name=\"front-panel\"\n"
                           "expect Info KeyPressed from \"front-panle\"\n"),
                ElementsAre("a.scenario:3: error: no device is called 'front-panle', did you mean "
                            "'front-panel'?"));
    write("b.evemu", "N: remote\nB: 01 00\nE: 1.000000 0001 0073 1\n");
    EXPECT_THAT(mistakesIn("device panel\nplay \"b.evemu\" on panel\n"
                           "expect Info KeyPressed from \"remote\"\n"),
                ElementsAre("a.scenario:4: error: no device is called 'remote'"));
    EXPECT_THAT(mistakesIn("device panel\ndevice copy from \"b.evemu\"\nplay \"b.evemu\"\n"
                           "panel replace name=\"other\"\n"
                           "expect Info KeyPressed from \"panel\"\n"
                           "expect Info KeyPressed from \"remote\"\n"
                           "expect Info KeyPressed from \"other\"\n"),
                IsEmpty());
}

TEST_F(ScenarioChecks, WarnOfANameThatIsNearlyOneOfTheProfile)
{
    write("keys.toml", "[[device]]\nname = \"front-panel\"\n");
    EXPECT_THAT(mistakesIn("device panel name=\"front-panle\"\n"),
                ElementsAre("a.scenario:2: warning: the profile has nothing for a device called "
                            "'front-panle', did you mean 'front-panel'?"));
    EXPECT_THAT(mistakesIn("device a name=\"front-panel\"\ndevice b name=\"keyboard\"\n"),
                IsEmpty());
}

TEST_F(ScenarioChecks, RefuseARecordingWithoutEvents)
{
    write("b.evemu", silent);
    EXPECT_THAT(mistakesIn("play \"b.evemu\"\n").front(),
                testing::MatchesRegex("a.scenario:2: error: the recording '.*b.evemu' contains no "
                                      "events, so nothing is played"));
    EXPECT_THAT(mistakesIn("device a\nplay \"b.evemu\" on a\nexpect nothing\n").front(),
                HasSubstr("a.scenario:3: error: "));
    EXPECT_THAT(mistakesIn("play \"b.evemu\"\nexpect nothing\n").front(),
                HasSubstr("a.scenario:2: warning: "));
    LoadOptions options;
    options.profile = path("keys.toml");
    EXPECT_THAT(mistakes(path("b.evemu"), options).front(), HasSubstr("error: "));
    write("b.expect", "expect nothing\n");
    EXPECT_THAT(mistakes(path("b.evemu"), options).front(), HasSubstr("warning: "));
    // As the description of a device it needs none.
    EXPECT_THAT(mistakesIn("device a from \"b.evemu\"\n"), IsEmpty());
}

TEST_F(ScenarioChecks, WarnOfARecordingThatDescribesNoDevice)
{
    write("b.evemu", "E: 1.000000 0001 0073 1\n");
    EXPECT_THAT(mistakesIn("play \"b.evemu\"\n"),
                ElementsAre("b.evemu: warning: describes no device (lines like 'N: panel'); one "
                            "called 'device' takes its place"));
    EXPECT_THAT(mistakesIn("select text\nplay \"b.evemu\"\n"),
                ElementsAre("a.scenario:2: warning: the profile has no identifier 'text'",
                            HasSubstr("b.evemu: warning: describes no device")));
    EXPECT_THAT(mistakesIn("device a\nplay \"b.evemu\" on a\n"), IsEmpty());
}

TEST_F(ScenarioChecks, WarnOfADeviceThatTheLibraryDoesNotNotice)
{
    QByteArray devices;
    for (int i = 0; i < 10; ++i)
        devices += "device d" + QByteArray::number(i) + '\n';
    EXPECT_THAT(mistakesIn(devices), IsEmpty());
    EXPECT_THAT(mistakesIn(devices + "device d10\n"),
                ElementsAre("a.scenario:12: warning: this device gets event10, and the library "
                            "reads event0 to event9 only: it stays unnoticed"));
    // That is what a scenario with such a node wants to show.
    EXPECT_THAT(mistakesIn("device a node=event10\n"), IsEmpty());
}
