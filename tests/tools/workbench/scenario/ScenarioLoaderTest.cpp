#include "ScenarioLoader.h"

#include "FilledPipe.h"
#include "ScenarioFiles.h"

#include <QDir>

#include <gmock/gmock.h>

namespace {

using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class ScenarioLoader : public ScenarioFiles
{ };

} // namespace

TEST_F(ScenarioLoader, WhatCannotBeReadIsNamedWithTheLineThatAsksForIt)
{
    EXPECT_THAT(mistakes(write("a.scenario", "wait 1s\n")),
                ElementsAre(HasSubstr("a.scenario: error: no profile to say what the keys mean")));
    EXPECT_THAT(mistakes(write("b.scenario", "\nprofile \"absent.toml\"\n")),
                testing::Contains(HasSubstr("b.scenario:2: error: the profile ")));
    EXPECT_THAT(mistakes(write("c.scenario", "profile \"keys.toml\"\nplay \"absent.evemu\"\n")),
                testing::Contains(HasSubstr("c.scenario:2: error: the recording 'absent.evemu'")));
    EXPECT_THAT(mistakes(path("absent.scenario")), SizeIs(1));
    LoadOptions options;
    options.expectations = path("x");
    EXPECT_THAT(mistakes(write("d.scenario", "profile \"keys.toml\"\nwait 1s\n"), options),
                ElementsAre(HasSubstr("--expectations is for recordings")));
}

TEST_F(ScenarioLoader, DevicesWithoutANodeTakeTheLowestOneThatIsFree)
{
    const LoadedScenario scenario =
        loadScenario(write("a.scenario",
                           "profile \"keys.toml\"\ndevice a\ndevice b node=event0\n"
                           "device c node=event2\ndevice d\n"),
                     {});
    EXPECT_THAT(scenario.deviceNodes, ElementsAre(1, 0, 2, 3));
}

TEST_F(ScenarioLoader, ARecordingKeepsItsNodesAndDeclaredDevicesMakeRoom)
{
    const QByteArray recording = "P: /devices/virtual/input/input5/event0\n"
                                 "N: input/event0\nE: DEVNAME=/dev/input/event0\n"
                                 "E: SUBSYSTEM=input\nE: NAME=\"panel\"\n";
    write("event0.evemu", "E: 1.000000 0001 0073 1\n");
    write("a.umockdev", recording);
    const LoadedScenario moved = loadScenario(
        write("a.scenario", "profile \"keys.toml\"\ndevice a\nplay \"a.umockdev\"\n"), {});
    EXPECT_THAT(moved.diagnostics, IsEmpty());
    EXPECT_THAT(moved.deviceNodes, ElementsAre(1));

    EXPECT_THAT(mistakes(write("b.scenario",
                               "profile \"keys.toml\"\ndevice a node=event0\n"
                               "play \"a.umockdev\"\n")),
                ElementsAre("b.scenario:3: error: the recording needs event0, which is already "
                            "taken; give the other device a different node="));
}

TEST_F(ScenarioLoader, ADeviceIsDescribedByARecordingOfOneDevice)
{
    write("none.evemu", "E: 0.000000 0000 0000 0000\n");
    EXPECT_THAT(
        mistakes(write("a.scenario", "profile \"keys.toml\"\ndevice a from \"none.evemu\"\n")),
        ElementsAre("a.scenario:2: error: 'none.evemu' does not describe exactly one device"));
}

TEST_F(ScenarioLoader, AMistakeInADeepFolderNamesTheFile)
{
    const QString folder = QStringLiteral("a-rather-long-folder-name/").repeated(3);
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(folder));
    const std::string file = folder.toStdString() + "none.evemu";
    write(file.c_str(), "E: 0.000000 0000 0000 0000\n");
    EXPECT_THAT(
        mistakes(write("a.scenario",
                       ("profile \"keys.toml\"\ndevice a from \"" + file + "\"\n").c_str())),
        ElementsAre("a.scenario:2: error: '" + file + "' does not describe exactly one device"));
}

TEST_F(ScenarioLoader, AScenarioWithoutStepsIsAMistake)
{
    for (const char *text : {"", "# nothing yet\n", "profile \"keys.toml\"\n"}) {
        LoadOptions options;
        options.profile = path("keys.toml");
        EXPECT_THAT(
            mistakes(write("a.scenario", text), options),
            ElementsAre("a.scenario: error: contains no steps, so there is nothing to run"));
    }
}

TEST_F(ScenarioLoader, ExpectationsThatAreNamedExpectSomething)
{
    LoadOptions options;
    options.profile = path("keys.toml");
    const QString recording = write("a.evemu", "N: panel\nB: 01 00\nE: 1.000000 0001 0073 1\n");
    // Recorded where nothing was published, and found beside the recording.
    write("a.expect", "# recorded\n");
    EXPECT_THAT(mistakes(recording, options), IsEmpty());
    options.expectations = write("b.expect", "wait 1s\n");
    EXPECT_THAT(mistakes(recording, options),
                ElementsAre("b.expect: error: contains no expectations, steps that begin with "
                            "'expect'"));
}

TEST_F(ScenarioLoader, WarningsOfARecordingAreTold)
{
    LoadOptions options;
    options.profile = path("keys.toml");
    EXPECT_THAT(
        mistakes(write("a.evemu", "N: panel\nE: 2.000000 0001 0073 1\nE: 1.000000 0001 0073 0\n"),
                 options),
        ElementsAre("a.evemu:3: warning: earlier than the event before it; using that "
                    "event's time"));
}

TEST_F(ScenarioLoader, APipeIsReadOnlyIfThePersonNamesIt)
{
    const std::string refusal = "it is a pipe; only files named on the command line can be";
    const QByteArray profile = "[[device]]\n[device.handler.keys]\nKEY_INFO = \"Info\"\n";
    const FilledPipe steps("wait 1s\n");
    EXPECT_THAT(mistakes(write("a.scenario", "include \"" + steps.path().toUtf8() + "\"\n")),
                ElementsAre("a.scenario:1:9: error: cannot include '" + steps.path().toStdString()
                            + "': cannot be read: " + refusal));
    const FilledPipe keys(profile);
    EXPECT_THAT(
        mistakes(write("a.scenario", "profile \"" + keys.path().toUtf8() + "\"\nwait 1s\n")),
        ElementsAre("a.scenario:1: error: the profile '" + keys.path().toStdString()
                        + "' has errors",
                    keys.path().toStdString() + ": error: cannot be read: " + refusal));
    QFile::link(steps.path(), path("b.expect"));
    QFile::link(steps.path(), path("b.evemu"));
    EXPECT_THAT(mistakes(write("a.scenario", "profile \"keys.toml\"\nplay \"b.evemu\"\n")),
                ElementsAre("a.scenario:2: error: the recording 'b.evemu' cannot be used",
                            "b.evemu: error: cannot be read: " + refusal));

    LoadOptions options;
    options.profile = keys.path();
    EXPECT_THAT(mistakes(write("a.scenario", "wait 1s\n"), options), IsEmpty());
    EXPECT_EQ(loadScenario(steps.path(), {}).diagnostics.first().message.toStdString(),
              "no profile to say what the keys mean; write 'profile \"FILE\"' or use --profile "
              "FILE");
}

TEST_F(ScenarioLoader, ExpectationsAreReadFromAPipeIfThePersonNamesIt)
{
    LoadOptions options;
    options.profile = path("keys.toml");
    const QString recording = write("a.evemu", "N: panel\nB: 01 00\nE: 1.000000 0001 0073 1\n");
    const FilledPipe named("expect nothing\n");
    options.expectations = named.path();
    EXPECT_THAT(mistakes(recording, options), IsEmpty());
    const FilledPipe beside("expect nothing\n");
    QFile::link(beside.path(), path("a.expect"));
    options.expectations.clear();
    EXPECT_THAT(mistakes(recording, options),
                ElementsAre("a.expect: error: cannot be read: it is a pipe; only files named on "
                            "the command line can be"));
    // A recording that is a pipe itself.
    const FilledPipe events("N: panel\nB: 01 00\nE: 1.000000 0001 0073 1\n");
    QFile::link(events.path(), path("b.evemu"));
    EXPECT_THAT(mistakes(path("b.evemu"), options), IsEmpty());
}

TEST_F(ScenarioLoader, ARecordingIsADeviceOrIsPlayedOnOne)
{
    const QByteArray two = "P: /devices/virtual/input/input5/event0\n"
                           "N: input/event0\nE: DEVNAME=/dev/input/event0\n"
                           "E: SUBSYSTEM=input\nE: NAME=\"panel\"\n\n"
                           "P: /devices/virtual/input/input6/event1\n"
                           "N: input/event1\nE: DEVNAME=/dev/input/event1\n"
                           "E: SUBSYSTEM=input\nE: NAME=\"remote\"\n";
    write("two.umockdev", two);
    EXPECT_THAT(
        mistakes(write("a.scenario", "profile \"keys.toml\"\ndevice a from \"two.umockdev\"\n")),
        testing::Contains(
            "a.scenario:2: error: 'two.umockdev' does not describe exactly one device"));
    const std::vector<std::string> played = mistakes(
        write("a.scenario", "profile \"keys.toml\"\ndevice a\nplay \"two.umockdev\" on a\n"));
    EXPECT_THAT(played,
                testing::Contains("a.scenario:3: error: 'two.umockdev' contains 2 devices, so it "
                                  "cannot be played on one; leave out 'on'"));
    EXPECT_THAT(
        mistakes(write("a.scenario", "profile \"keys.toml\"\ndevice a from \"absent.evemu\"\n")),
        SizeIs(2))
        << "that it cannot be read, and nothing about its devices";
}

TEST_F(ScenarioLoader, ReportsMistakesInTheirOrder)
{
    write("bad.toml", "initial = 1\nselect = 2\n[[device]]\n");
    EXPECT_THAT(mistakes(write("a.scenario", "profile \"bad.toml\"\nwait 1s\n")),
                ElementsAre("a.scenario:1: error: the profile 'bad.toml' has errors",
                            "bad.toml:1:11: error: 'initial' is a string, not a number",
                            "bad.toml:2:10: error: 'select' is a list, not a number"));
    LoadOptions options;
    options.profile = path("bad.toml");
    // The person named it, so nothing has to say where.
    EXPECT_THAT(mistakes(write("a.scenario", "wait 1s\n"), options), SizeIs(2));
    // Warnings are those of `check`.
    write("odd.toml", "[[device]]\n[device.handler.keys]\n0 = \"Info\"\n");
    EXPECT_THAT(mistakes(write("a.scenario", "profile \"odd.toml\"\nwait 1s\n")), IsEmpty());
}

TEST_F(ScenarioLoader, NodesOfRecordingsFollowThoseOfDevices)
{
    write("b.evemu", "N: remote\nB: 01 00\nE: 1.000000 0001 0073 1\n");
    const LoadedScenario loaded =
        loadScenario(write("a.scenario",
                           "profile \"keys.toml\"\ndevice a node=event1\nplay \"b.evemu\"\n"
                           "device b\nplay \"b.evemu\"\nplay \"b.evemu\" on a\n"),
                     {});
    EXPECT_THAT(loaded.diagnostics, IsEmpty());
    EXPECT_THAT(loaded.deviceNodes, ElementsAre(1, 0));
    EXPECT_EQ(loaded.recordingNodes.size(), 1);
    EXPECT_THAT(loaded.recordingNodes.cbegin().value(), ElementsAre(2));
}

TEST_F(ScenarioLoader, ARecordingIsPlayedAsAScenarioThatNamesIt)
{
    LoadOptions options;
    options.profile = path("keys.toml");
    const QString recording = write("a.evemu", "N: panel\nB: 01 00\nE: 1.000000 0001 0073 1\n");
    write("a.expect", "wait 1s\n");
    const LoadedScenario loaded = loadScenario(recording, options);
    EXPECT_EQ(loaded.source.toStdString(), recording.toStdString());
    ASSERT_THAT(loaded.scenario.steps, SizeIs(2));
    const ScenarioStep &step = loaded.scenario.steps.first();
    EXPECT_EQ(step.text.toStdString(), "play \"" + recording.toStdString() + "\"");
    EXPECT_EQ(step.line, 0);
    EXPECT_FALSE(step.continues);
    EXPECT_EQ(std::get<Step::Play>(step.what).device, -1);
    EXPECT_TRUE(isRecording(QStringLiteral("a.umockdev")));
    EXPECT_FALSE(isRecording(QStringLiteral("a.evemu.txt")));
}
