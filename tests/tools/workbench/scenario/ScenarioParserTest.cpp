#include "ScenarioParser.h"

#include "ScenarioText.h"

#include <gmock/gmock.h>

namespace {

using namespace ScenarioText;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

} // namespace

TEST(ScenarioParser, AnEmptyFileHasNoSteps)
{
    const ParsedScenario result = parsed("\n  \n# only a comment\r\n");
    EXPECT_THAT(result.diagnostics, IsEmpty());
    EXPECT_THAT(result.scenario.steps, IsEmpty());
    EXPECT_FALSE(result.scenario.hasExpectations());
    EXPECT_EQ(result.scenario.file.toStdString(), "dir/a.scenario");
}

TEST(ScenarioParser, FilesAreRelativeToTheFileThatNamesThem)
{
    const Scenario scenario =
        parsed("include \"sub/b\"\n", {{"dir/sub/b", "profile \"../p.toml\"\nwait 1s\n"}}).scenario;
    EXPECT_EQ(scenario.profile.toStdString(), "dir/p.toml");
    EXPECT_EQ(scenario.profileNamedIn.toStdString(), "dir/sub/b");
    EXPECT_EQ(scenario.profileLine, 1);
    ASSERT_THAT(scenario.steps, SizeIs(1));
    EXPECT_EQ(scenario.steps.first().file.toStdString(), "dir/sub/b");
    EXPECT_EQ(parsed("profile \"/p.toml\"").scenario.profile.toStdString(), "/p.toml");
}

TEST(ScenarioParser, AFileThatIncludesItselfIsAMistake)
{
    EXPECT_THAT(
        mistakes("include \"b\"\n", {{"dir/b", "\n  include \"./../dir/a.scenario\" # again\n"}}),
        ElementsAre("dir/b:2:11: error: 'dir/a.scenario' includes itself, by way of "
                    "dir/a.scenario, dir/b"));
}

TEST(ScenarioParser, IncludesAreLimitedInDepthAndNumber)
{
    QMap<QString, QByteArray> chain;
    for (int i = 0; i < 20; ++i)
        chain.insert(QStringLiteral("dir/f%1").arg(i),
                     "include \"f" + QByteArray::number(i + 1) + "\"\n");
    EXPECT_THAT(mistakes("include \"f0\"\n", chain),
                ElementsAre("dir/f14:1:9: error: includes are nested more than 16 deep"));

    // Each file includes the next one a hundred times.
    for (int i = 0; i < 14; ++i)
        chain[QStringLiteral("dir/f%1").arg(i)] =
            ("include \"f" + QByteArray::number(i + 1) + "\"\n").repeated(100);
    chain[QStringLiteral("dir/f14")] = QByteArray();
    EXPECT_THAT(mistakes("include \"f0\"\n", chain),
                ElementsAre(HasSubstr("a scenario has at most 100000 lines, with those of the "
                                      "files that it includes; split it into several")));
}

TEST(ScenarioParser, AnIncludeThatCannotBeReadSaysWhy)
{
    EXPECT_EQ(mistake("include \"b\""),
              "dir/a.scenario:1:9: error: cannot include 'dir/b': no such file");
}

TEST(ScenarioParser, NamesTheStepOrDeviceThatWasProbablyMeant)
{
    EXPECT_EQ(mistakeOf("pannel press KEY_A"),
              "dir/a.scenario:2:1: error: unknown step or device 'pannel', did you mean 'panel'?");
    EXPECT_EQ(
        mistakeOf("exspect nothing"),
        "dir/a.scenario:2:1: error: unknown step or device 'exspect', did you mean 'expect'?");
    EXPECT_EQ(mistakeOf("\tpanel prss KEY_A"),
              "dir/a.scenario:2:8: error: unknown action 'prss', did you mean 'press'?");
}

TEST(ScenarioParser, EveryMistakenLineIsToldOnce)
{
    EXPECT_THAT(mistakes("device panel bus=Foo keys=KEY_FOO\npanel press KEY_A\nfoo bar\nwait\n"),
                ElementsAre(HasSubstr(":1:18:"), HasSubstr(":3:1:"), HasSubstr(":4:5:")));
    const std::vector<std::string> many = mistakes(QByteArray("wait\n").repeated(1000));
    ASSERT_THAT(many, SizeIs(101));
    EXPECT_EQ(many.back(),
              "dir/a.scenario:100: error: these are 100 errors; the rest of the scenario is not "
              "read");
}

TEST(ScenarioParser, SurvivesEveryPrefixOfAScenario)
{
    const QByteArray text =
        "profile \"p\"\nstart 2026-01-02T10:00:00Z\n"
        "device panel name=\"a\\\"b\" bus=USB node=event3 keys=KEY_A switches= on=SW_LID\n"
        "panel press KEY_A\npanel record EV_KEY KEY_A 1 stamped -1s\npanel replace name=\"x\"\n"
        "expect Info KeyPressed LocalUI from panel after 1ms..2ms within 1s\n"
        "play \"x\" on panel\nexpect identifier \"\"\nclock +1h\n\xff\xfe\x00\x80\n";
    for (int length = 0; length <= text.size(); ++length) {
        const ParsedScenario result = parsed(text.left(length));
        EXPECT_LE(result.diagnostics.size(), 101) << length;
    }
}

TEST(ScenarioParser, ThereIsOneProfile)
{
    EXPECT_THAT(
        mistake("profile \"a\"\nprofile \"b\""),
        HasSubstr(":2:1: error: the scenario already has a profile, see dir/a.scenario, line 1"));
}

TEST(ScenarioParser, TooManyStepsAreAMistake)
{
    // Three steps a line, so the steps run out before the lines do.
    EXPECT_EQ(
        mistake("device panel\n" + QByteArray("panel click KEY_A for 1ms\n").repeated(40'000)),
        "dir/a.scenario:33336:1: error: a scenario has at most 100000 steps, where a click counts "
        "as three; split it into several");
}

TEST(ScenarioParser, TooManyDevicesAreAMistake)
{
    QByteArray text;
    for (int i = 0; i <= 100; ++i)
        text += "device d" + QByteArray::number(i) + '\n';
    const std::string tooMany = "dir/a.scenario:101:8: error: a scenario has at most 100 devices";
    EXPECT_EQ(mistake(text), tooMany);
    EXPECT_THAT(mistakes(text + "d100 press KEY_A\n"),
                ElementsAre(tooMany, HasSubstr(":102:1: error: unknown step or device 'd100'")));
}

TEST(ScenarioParser, QuotesNothingOfAFileThatIsNoScenario)
{
    const std::string refusal = "dir/a.scenario: error: this is no scenario: its lines do not "
                                "begin with steps like 'profile', 'device', 'wait' or 'expect'";
    EXPECT_EQ(mistake("# users\nroot:$y$secret:0:0\ndaemon:*:1:1\n"), refusal);
    EXPECT_EQ(mistake(QByteArray("\x7f"
                                 "ELF\0wait 1s\nwait 1s\n",
                                 20)),
              refusal);
    EXPECT_THAT(mistakes("include \"s\"\n", {{"dir/s", "root:$y$secret:0:0\n"}}),
                ElementsAre("dir/a.scenario:1:9: error: cannot include 'dir/s': it is no "
                            "scenario"));
}

TEST(ScenarioParser, LimitsMayBeReached)
{
    // The scenario itself and fifteen more.
    QMap<QString, QByteArray> chain;
    for (int i = 0; i < 14; ++i)
        chain.insert(QStringLiteral("dir/f%1").arg(i),
                     "include \"f" + QByteArray::number(i + 1) + "\"\n");
    chain.insert(QStringLiteral("dir/f14"), "wait 1s\n");
    const ParsedScenario nested = parsed("include \"f0\"\nwait 2s", chain);
    EXPECT_THAT(nested.diagnostics, IsEmpty());
    ASSERT_THAT(nested.scenario.steps, SizeIs(2));
    EXPECT_EQ(nested.scenario.steps.first().file.toStdString(), "dir/f14");
    EXPECT_EQ(nested.scenario.steps.last().file.toStdString(), "dir/a.scenario");

    const QByteArray lines = QByteArray("#\n").repeated(99'999) + "wait 1s\n";
    EXPECT_THAT(mistakes(lines), IsEmpty());
    EXPECT_THAT(mistake(lines + "wait 1s\n"),
                HasSubstr(":100001:1: error: a scenario has at most"));

    QByteArray devices;
    for (int i = 0; i < 100; ++i)
        devices += "device d" + QByteArray::number(i) + '\n';
    EXPECT_THAT(mistakes(devices), IsEmpty());
    EXPECT_THAT(mistakes(QByteArray("wait\n").repeated(99)), SizeIs(99));
}

TEST(ScenarioParser, AFileMayBeIncludedTwiceButNotFromWithinItself)
{
    const QMap<QString, QByteArray> files = {{"dir/b", "wait 1s\n"},
                                             {"dir/c", "include \"b\"\nwait 2s\n"}};
    EXPECT_THAT(parsed("include \"b\"\ninclude \"c\"\ninclude \"b\"\n", files).scenario.steps,
                SizeIs(4));
    EXPECT_THAT(mistakes("include \"b\"\n", {{"dir/b", "include \"b\"\n"}}),
                ElementsAre("dir/b:1:9: error: 'dir/b' includes itself, by way of dir/a.scenario, "
                            "dir/b"));
}

TEST(ScenarioParser, EndsWithTheLastLineOfTheScenarioItself)
{
    const QMap<QString, QByteArray> files = {{"dir/b", "\n\n\nwait 1s\n\n"}};
    const Scenario scenario = parsed("include \"b\"\nwait 1s\n", files).scenario;
    EXPECT_EQ(scenario.lastLine, 2);
    ASSERT_THAT(scenario.steps, SizeIs(2));
    EXPECT_EQ(scenario.steps.first().line, 4);
    EXPECT_EQ(scenario.steps.last().line, 2);
    EXPECT_EQ(parsed("").scenario.lastLine, 1);
}

TEST(ScenarioParser, TellsALineThatIncludesAndSaysMore)
{
    EXPECT_EQ(mistake("include \"b\" now"),
              "dir/a.scenario:1:13: error: unexpected 'now' at the end of the step");
}

TEST(ScenarioParser, TakesAByteOrderMarkAndNoKeywordInQuotes)
{
    EXPECT_THAT(parsed("\xef\xbb\xbfwait 1s\n").scenario.steps, SizeIs(1));
    EXPECT_THAT(mistakes("wait 1s\n\"wait\" 1s\n\"include\" \"b\"\n"),
                ElementsAre(HasSubstr(":2:1:"), HasSubstr(":3:1:")));
}

TEST(ScenarioParser, ReadsNothingOfAnIncludeWithAMistake)
{
    const QMap<QString, QByteArray> files = {{"dir/b", "wait\nwait 1s\n"}};
    EXPECT_THAT(mistakes("include \"b\" now\ninclude\n", files),
                ElementsAre("dir/a.scenario:1:13: error: unexpected 'now' at the end of the step",
                            "dir/a.scenario:2:8: error: the file's name in quotes is missing"));
    EXPECT_EQ(mistake("profile"),
              "dir/a.scenario:1:8: error: the file's name in quotes is missing");
    EXPECT_THAT(parsed("include \"b\" now\n", files).scenario.steps, IsEmpty());
}
