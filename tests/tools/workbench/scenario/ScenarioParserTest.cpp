#include "ScenarioParser.h"

#include "ScenarioLine.h"

#include <QMap>

#include <gmock/gmock.h>

#include <linux/input.h>

namespace {

using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// Parses "dir/a.scenario"; includes are answered from a map.
ParsedScenario parsed(const QByteArray &text, const QMap<QString, QByteArray> &files = {})
{
    return parseScenario(text, QStringLiteral("dir/a.scenario"),
                         [&files](const QString &path, QString *error) {
                             if (files.contains(path))
                                 return std::optional<QByteArray>(files.value(path));
                             *error = QStringLiteral("no such file");
                             return std::optional<QByteArray>();
                         });
}

std::vector<std::string> mistakes(const QByteArray &text,
                                  const QMap<QString, QByteArray> &files = {})
{
    std::vector<std::string> list;
    for (const Diagnostic &diagnostic : parsed(text, files).diagnostics)
        list.push_back(diagnostic.toString().toStdString());
    return list;
}

/// The only mistake of a text.
std::string mistake(const QByteArray &text)
{
    const std::vector<std::string> list = mistakes(text);
    return list.size() == 1 ? list.front() : std::to_string(list.size()) + " mistakes";
}

/// The only mistake of a step after the declaration of a panel, which is line 1.
std::string mistakeOf(const QByteArray &step)
{
    return mistake("device panel\n" + step);
}

template <typename Kind>
Kind step(const Scenario &scenario, int index)
{
    if (index < scenario.steps.size()) {
        if (const auto *found = std::get_if<Kind>(&scenario.steps[index].what))
            return *found;
    }
    ADD_FAILURE() << "step " << index << " is another one";
    return {};
}

} // namespace

TEST(Scenario, AnEmptyFileHasNoSteps)
{
    const ParsedScenario result = parsed("\n  \n# only a comment\r\n");
    EXPECT_THAT(result.diagnostics, IsEmpty());
    EXPECT_THAT(result.scenario.steps, IsEmpty());
    EXPECT_FALSE(result.scenario.hasExpectations());
    EXPECT_EQ(result.scenario.file.toStdString(), "dir/a.scenario");
}

TEST(Scenario, ADeviceIsPluggedInWhereItIsDeclared)
{
    const Scenario scenario =
        parsed("device panel name=\"front panel # 1\" bus=BUS_USB node=event3 keys=KEY_A,KEY_B "
               "switches=SW_LID on=SW_DOCK held=KEY_A auto-repeat # comment\n")
            .scenario;
    ASSERT_THAT(scenario.devices, SizeIs(1));
    const ScenarioDevice &device = scenario.devices.first();
    EXPECT_EQ(device.label.toStdString(), "panel");
    EXPECT_EQ(device.name->toStdString(), "front panel # 1");
    EXPECT_EQ(device.bus, BUS_USB);
    EXPECT_EQ(device.node, 3);
    EXPECT_THAT(*device.keys, ElementsAre(KEY_A, KEY_B));
    EXPECT_THAT(*device.switches, ElementsAre(SW_LID));
    EXPECT_THAT(device.on, ElementsAre(SW_DOCK));
    EXPECT_THAT(device.held, ElementsAre(KEY_A));
    EXPECT_TRUE(device.autoRepeat);
    EXPECT_EQ(step<Step::Plug>(scenario, 0).device, 0);
    EXPECT_EQ(scenario.steps.first().line, 1);
}

TEST(Scenario, ADeviceMayBeDeclaredUnplugged)
{
    const Scenario scenario = parsed("device panel unplugged\npanel plug").scenario;
    ASSERT_THAT(scenario.steps, SizeIs(1));
    EXPECT_EQ(scenario.steps.first().line, 2);
    EXPECT_FALSE(scenario.devices.first().name) << "its name follows from the label";
    EXPECT_FALSE(scenario.devices.first().keys) << "its keys follow from the profile";
}

TEST(Scenario, SeveralKeysGoInOnePacket)
{
    const Scenario scenario = parsed("device panel\npanel press KEY_A 48").scenario;
    const auto keys = step<Step::Keys>(scenario, 1);
    EXPECT_THAT(keys.codes, ElementsAre(KEY_A, KEY_B));
    EXPECT_EQ(keys.value, 1);
    EXPECT_THAT(scenario.devices.first().usedKeys, ElementsAre(KEY_A, KEY_B));
}

TEST(Scenario, AHoldIsAPressAWaitAndARelease)
{
    const Scenario scenario = parsed("device panel\npanel hold KEY_A for 1.5s").scenario;
    ASSERT_THAT(scenario.steps, SizeIs(4));
    EXPECT_EQ(step<Step::Keys>(scenario, 1).value, 1);
    EXPECT_EQ(step<Step::Wait>(scenario, 2).duration, 1500);
    EXPECT_EQ(step<Step::Keys>(scenario, 3).value, 0);
    EXPECT_FALSE(scenario.steps[1].continues);
    EXPECT_TRUE(scenario.steps[2].continues && scenario.steps[3].continues);
}

TEST(Scenario, AClickLastsEightyMilliseconds)
{
    EXPECT_EQ(step<Step::Wait>(parsed("device panel\npanel click KEY_A").scenario, 2).duration, 80);
    EXPECT_EQ(
        step<Step::Wait>(parsed("device panel\npanel click KEY_A for 5ms").scenario, 2).duration,
        5);
}

TEST(Scenario, ARecordIsTakenAsItIs)
{
    const Scenario scenario =
        parsed("device panel\npanel record EV_KEY KEY_A -7 stamped -500ms\n").scenario;
    const auto record = step<Step::Record>(scenario, 1);
    EXPECT_EQ(record.type, EV_KEY);
    EXPECT_EQ(record.code, KEY_A);
    EXPECT_EQ(record.value, -7);
    EXPECT_EQ(record.offset, -500);
}

TEST(Scenario, ReadsWhatConcernsNoDevice)
{
    const Scenario scenario = parsed("start 2026-03-04T05:06:07Z\nclock -5s\nselect \"\"\n"
                                     "input-directory remove\ninput-directory create\nwait end\n"
                                     "ignore events\nplay \"../b.evemu\"\n")
                                  .scenario;
    ASSERT_THAT(scenario.steps, SizeIs(7));
    EXPECT_EQ(scenario.start, 1'772'600'767'000);
    EXPECT_EQ(step<Step::StepClock>(scenario, 0).delta, -5000);
    EXPECT_EQ(step<Step::Select>(scenario, 1).identifier.toStdString(), "");
    EXPECT_FALSE(step<Step::InputDirectory>(scenario, 2).exists);
    EXPECT_TRUE(step<Step::InputDirectory>(scenario, 3).exists);
    step<Step::WaitForEnd>(scenario, 4);
    step<Step::IgnoreEvents>(scenario, 5);
    EXPECT_EQ(step<Step::Play>(scenario, 6).file.toStdString(), "b.evemu");
    EXPECT_EQ(step<Step::Play>(scenario, 6).device, -1);
}

TEST(Scenario, AnExpectedEventMayBeNarrowedDown)
{
    const Scenario scenario =
        parsed("device panel\nexpect Info KeyLongPress LocalUI from panel after 700ms within 2s\n"
               "expect Info KeyReleased from \"front-panel\" after 1s..1.2s\nexpect nothing for 3s")
            .scenario;
    const auto first = step<Step::ExpectEvent>(scenario, 1);
    EXPECT_EQ(first.command, InputEvent::Info);
    EXPECT_EQ(first.state, InputEvent::KeyLongPress);
    EXPECT_EQ(first.bus, InputEvent::Bus::LocalUI);
    EXPECT_EQ(first.device, 0);
    EXPECT_EQ(first.earliest, 700);
    EXPECT_EQ(first.latest, 755) << "a tick later, as coarse as ticks are";
    EXPECT_EQ(first.within, 2000);
    const auto second = step<Step::ExpectEvent>(scenario, 2);
    EXPECT_EQ(second.deviceName.toStdString(), "front-panel");
    EXPECT_EQ(second.latest, 1200);
    EXPECT_FALSE(second.bus);
    EXPECT_EQ(step<Step::ExpectNothing>(scenario, 3).duration, 3000);
    EXPECT_TRUE(scenario.hasExpectations());
}

TEST(Scenario, FilesAreRelativeToTheFileThatNamesThem)
{
    const Scenario scenario =
        parsed("include \"sub/b\"\n", {{"dir/sub/b", "profile \"../p.toml\"\nwait 1s\n"}}).scenario;
    EXPECT_EQ(scenario.profile.toStdString(), "dir/p.toml");
    EXPECT_EQ(scenario.profileNamedIn.toStdString(), "dir/sub/b");
    ASSERT_THAT(scenario.steps, SizeIs(1));
    EXPECT_EQ(scenario.steps.first().file.toStdString(), "dir/sub/b");
    EXPECT_EQ(parsed("profile \"/p.toml\"").scenario.profile.toStdString(), "/p.toml");
}

TEST(Scenario, AFileThatIncludesItselfIsAMistake)
{
    EXPECT_THAT(
        mistakes("include \"b\"\n", {{"dir/b", "\n  include \"./../dir/a.scenario\" # again\n"}}),
        ElementsAre("dir/b:2:11: error: 'dir/a.scenario' includes itself, by way of "
                    "dir/a.scenario, dir/b"));
}

TEST(Scenario, IncludesAreLimitedInDepthAndNumber)
{
    QMap<QString, QByteArray> chain;
    for (int i = 0; i < 20; ++i)
        chain.insert(QStringLiteral("dir/f%1").arg(i),
                     "include \"f" + QByteArray::number(i + 1) + "\"\n");
    EXPECT_THAT(mistakes("include \"f0\"\n", chain),
                ElementsAre("dir/f14:1:9: error: files include one another more than 16 deep"));

    // Each file includes the next one a hundred times.
    for (int i = 0; i < 14; ++i)
        chain[QStringLiteral("dir/f%1").arg(i)] =
            ("include \"f" + QByteArray::number(i + 1) + "\"\n").repeated(100);
    chain[QStringLiteral("dir/f14")] = QByteArray();
    EXPECT_THAT(mistakes("include \"f0\"\n", chain),
                ElementsAre(HasSubstr("the scenario is too long; split it into several")));
}

TEST(Scenario, AnIncludeThatCannotBeReadSaysWhy)
{
    EXPECT_EQ(mistake("include \"b\""),
              "dir/a.scenario:1:9: error: cannot include 'dir/b': no such file");
}

TEST(Scenario, NamesTheStepOrDeviceThatWasProbablyMeant)
{
    EXPECT_EQ(mistakeOf("pannel press KEY_A"),
              "dir/a.scenario:2:1: error: unknown step or device 'pannel', did you mean 'panel'?");
    EXPECT_EQ(
        mistakeOf("exspect nothing"),
        "dir/a.scenario:2:1: error: unknown step or device 'exspect', did you mean 'expect'?");
    EXPECT_EQ(mistakeOf("\tpanel prss KEY_A"),
              "dir/a.scenario:2:8: error: unknown action 'prss', did you mean 'press'?");
}

TEST(Scenario, NamesTheCodeCommandStateOrBusThatWasProbablyMeant)
{
    EXPECT_EQ(mistakeOf("panel press KEY_INOF"),
              "dir/a.scenario:2:13: error: unknown key 'KEY_INOF', did you mean 'KEY_INFO'?");
    EXPECT_EQ(mistakeOf("panel switch SW_LINEIN_INSRT on"),
              "dir/a.scenario:2:14: error: unknown switch 'SW_LINEIN_INSRT', did you mean "
              "'SW_LINEIN_INSERT'?");
    EXPECT_EQ(mistakeOf("expect VolumUp KeyPressed"),
              "dir/a.scenario:2:8: error: unknown command 'VolumUp', did you mean 'VolumeUp'?");
    EXPECT_EQ(mistakeOf("expect VolumeUp KeyPresed"),
              "dir/a.scenario:2:17: error: unknown state 'KeyPresed', did you mean 'KeyPressed'?");
    EXPECT_EQ(mistakeOf("expect VolumeUp KeyPressed LocalUi"),
              "dir/a.scenario:2:28: error: unknown bus or word 'LocalUi', did you mean 'LocalUI'?");
    EXPECT_EQ(mistakeOf("expect VolumeUp KeyPressed from panl"),
              "dir/a.scenario:2:33: error: unknown device 'panl', did you mean 'panel'?");
    EXPECT_EQ(mistake("device panel buss=USB"),
              "dir/a.scenario:1:14: error: unknown option 'buss', did you mean 'bus='?");
    EXPECT_EQ(mistake("device panel keys=KEY_A,KEY_BB"),
              "dir/a.scenario:1:25: error: unknown key 'KEY_BB', did you mean 'KEY_B'?");
}

TEST(Scenario, TellsKeysAndSwitchesApart)
{
    EXPECT_EQ(mistakeOf("panel press SW_LINEIN_INSERT"),
              "dir/a.scenario:2:13: error: 'SW_LINEIN_INSERT' is a switch; write 'panel switch "
              "SW_LINEIN_INSERT on'");
    EXPECT_EQ(mistakeOf("panel switch KEY_A on"),
              "dir/a.scenario:2:14: error: 'KEY_A' is a key; write 'panel press KEY_A'");
}

TEST(Scenario, AStepThatTheKernelWouldDropIsAMistake)
{
    EXPECT_EQ(mistakeOf("panel press KEY_A\npanel press KEY_A"),
              "dir/a.scenario:3:13: error: KEY_A is down already, so the kernel would drop this; "
              "'panel record EV_KEY KEY_A 1' sends it all the same");
    EXPECT_THAT(mistakeOf("panel release KEY_A"), HasSubstr(":2:15: error: KEY_A is up already"));
    EXPECT_THAT(mistakeOf("panel press KEY_A KEY_A"), HasSubstr(":2:19: error: KEY_A is down"));
    EXPECT_THAT(mistakeOf("panel press KEY_A\npanel click KEY_A"), HasSubstr("KEY_A is down"));
    EXPECT_THAT(mistakeOf("panel switch SW_LID off"), HasSubstr("SW_LID is off already"));
    EXPECT_THAT(mistake("device panel held=KEY_A\npanel press KEY_A"), HasSubstr("KEY_A is down"));
    EXPECT_THAT(mistakes("device panel\npanel press KEY_A\npanel unplug\npanel plug\n"
                         "panel press KEY_A\npanel replace name=x\npanel press KEY_A"),
                IsEmpty())
        << "what was down is up on another device";
}

TEST(Scenario, ADeviceHasTheKeysThatItDeclares)
{
    EXPECT_EQ(mistake("\ndevice panel keys=KEY_A switches=\npanel press KEY_B"),
              "dir/a.scenario:3:13: error: panel has no KEY_B; add it to its keys= in line 2");
    EXPECT_EQ(mistake("device panel switches=\npanel switch SW_LID on"),
              "dir/a.scenario:2:14: error: panel has no SW_LID; add it to its switches= in line 1");
}

TEST(Scenario, OnlyADeviceThatIsPluggedInDoesSomething)
{
    EXPECT_EQ(mistakeOf("panel unplug\npanel press KEY_A"),
              "dir/a.scenario:3:7: error: panel is not plugged in; write 'panel plug' before");
    EXPECT_EQ(mistakeOf("panel plug"), "dir/a.scenario:2:7: error: panel is plugged in already");
    EXPECT_THAT(mistakeOf("panel unplug\nplay \"a.evemu\" on panel"),
                HasSubstr("panel is not plugged in"));
}

TEST(Scenario, ADeviceIsDeclaredOnceOnANodeOfItsOwn)
{
    EXPECT_EQ(mistakeOf("device panel"),
              "dir/a.scenario:2:8: error: panel is declared already in dir/a.scenario, line 1");
    EXPECT_EQ(mistake("device a node=event1\ndevice b node=1"),
              "dir/a.scenario:2:1: error: event1 is the node of a, line 1");
    EXPECT_THAT(mistake("device wait"), HasSubstr("'wait' begins a step of its own"));
    EXPECT_THAT(mistake("device \"a b\""), HasSubstr("'a b' cannot name a device"));
    EXPECT_THAT(mistake("device a node=event100"), HasSubstr("'event100' is no node"));
    EXPECT_THAT(mistake("device a bus=USB bus=USB"), HasSubstr(":18: error: 'bus' is given twice"));
}

TEST(Scenario, OnlyTheNamePutsADeviceOnTheHostlinkBus)
{
    EXPECT_EQ(mistake("device link bus=Hostlink"),
              "dir/a.scenario:1:17: error: a device is on the bus Hostlink by its name alone; give "
              "it name=\"hostlink\"");
    EXPECT_THAT(mistakes("device link bus=Hostlink name=hostlink\ndevice hostlink bus=Hostlink"),
                IsEmpty());
    EXPECT_THAT(mistakeOf("panel replace bus=Hostlink name=x"), HasSubstr("by its name alone"));
}

TEST(Scenario, DurationsAreWholeMilliseconds)
{
    EXPECT_EQ(milliseconds(QStringLiteral("1200ms")), 1200);
    EXPECT_EQ(milliseconds(QStringLiteral("1.5s")), 1500);
    EXPECT_EQ(milliseconds(QStringLiteral("0.001s")), 1);
    EXPECT_EQ(milliseconds(QStringLiteral("0.5min")), 30'000);
    EXPECT_EQ(milliseconds(QStringLiteral("2h")), 7'200'000);
    for (const char *text : {"", "s", "1", "1.s", ".5s", "0.0001s", "0.5ms", "-1s", "1e3s", "1s ",
                             "1m", "1000000000000s", "1.0000000s"})
        EXPECT_EQ(milliseconds(QString::fromLatin1(text)), std::nullopt) << text;
    EXPECT_EQ(signedMilliseconds(QStringLiteral("-5s")), -5000);
    EXPECT_EQ(signedMilliseconds(QStringLiteral("+1h")), 3'600'000);
    EXPECT_EQ(signedMilliseconds(QStringLiteral("+-1h")), std::nullopt);
}

TEST(Scenario, TimesAreLimited)
{
    EXPECT_THAT(mistake("wait 169h"), HasSubstr("at most 7 days (168h)"));
    EXPECT_THAT(mistake(QByteArray("wait 168h\n").repeated(15)),
                HasSubstr(":15:6: error: a scenario lasts at most 100 days in all"));
    EXPECT_THAT(mistake("clock +1"), HasSubstr("'+1' is no step of the clock"));
    EXPECT_THAT(mistake("clock +87601h"), HasSubstr("at most 10 years"));
    EXPECT_THAT(mistake("start 1970-01-02T00:00:00Z\nclock -25h"), HasSubstr("1970 to 2104"));
    EXPECT_THAT(mistake("start 2105-01-01T00:00:00Z"), HasSubstr("1970 to 2104"));
    EXPECT_THAT(mistake("start 2026-01-02T10:00:00"), HasSubstr("is no time like"));
    EXPECT_THAT(mistakeOf("start 2026-01-02T10:00:00Z"), HasSubstr(":2:1: error: 'start' comes"));
    EXPECT_THAT(mistakeOf("expect Info KeyPressed after 2s..1s"), HasSubstr("before it begins"));
}

TEST(Scenario, WhatIsMissingOrTooMuchIsAMistake)
{
    EXPECT_EQ(mistakeOf("panel"), "dir/a.scenario:2:6: error: what panel does is missing");
    EXPECT_EQ(mistakeOf("panel press # KEY_A"),
              "dir/a.scenario:2:13: error: a key like KEY_OK is missing");
    EXPECT_EQ(mistakeOf("wait 1s 2s"),
              "dir/a.scenario:2:9: error: unexpected '2s' at the end of the step");
    EXPECT_THAT(mistakeOf("panel hold KEY_A"), HasSubstr("write 'panel hold KEY_A for 2s'"));
    EXPECT_THAT(mistakeOf("panel unplug losing"), HasSubstr("'unplug losing records'"));
    EXPECT_THAT(mistakeOf("panel replace bus=USB"), HasSubstr("name=\"…\" is missing"));
    EXPECT_THAT(mistakeOf("ignore event"), HasSubstr("'ignore events'"));
    EXPECT_THAT(mistake("input-directory create"), HasSubstr("/dev/input is there"));
    EXPECT_THAT(mistake("profile \"a\"\nprofile \"b\""),
                HasSubstr(":2:1: error: a profile is named already in dir/a.scenario, line 1"));
    EXPECT_EQ(mistake("select \"text"), "dir/a.scenario:1:8: error: this quote is not closed");
}

TEST(Scenario, EveryMistakenLineIsToldOnce)
{
    EXPECT_THAT(mistakes("device panel bus=Foo keys=KEY_FOO\npanel press KEY_A\nfoo bar\nwait\n"),
                ElementsAre(HasSubstr(":1:18:"), HasSubstr(":3:1:"), HasSubstr(":4:5:")));
    EXPECT_THAT(mistakes(QByteArray("foo\n").repeated(1000)), SizeIs(100));
}

TEST(Scenario, ColumnsCountCharacters)
{
    EXPECT_THAT(mistake("select \"ä😀\" x"), HasSubstr(":1:13: error: unexpected 'x'"));
}

TEST(Scenario, SurvivesEveryPrefixOfAScenario)
{
    const QByteArray text =
        "profile \"p\"\nstart 2026-01-02T10:00:00Z\n"
        "device panel name=\"a\\\"b\" bus=USB node=event3 keys=KEY_A switches= on=SW_LID\n"
        "panel press KEY_A\npanel record EV_KEY KEY_A 1 stamped -1s\npanel replace name=\"x\"\n"
        "expect Info KeyPressed LocalUI from panel after 1ms..2ms within 1s\n"
        "play \"x\" on panel\nexpect identifier \"\"\nclock +1h\n\xff\xfe\x00\x80\n";
    for (int length = 0; length <= text.size(); ++length) {
        const ParsedScenario result = parsed(text.left(length));
        EXPECT_LE(result.diagnostics.size(), 100) << length;
    }
}

TEST(Scenario, LongWordsAreShortenedInMessages)
{
    const std::string text = mistake(QByteArray("x").repeated(1'000'000));
    EXPECT_LT(text.size(), 300U);
    EXPECT_THAT(text, HasSubstr("unknown step or device 'xxx"));
}
