#include "Simulation.h"
#include "CommandNames.h"
#include "Diagnostic.h"
#include "ExitStatus.h"
#include "Input.h"
#include "RecordedDevice.h"
#include "Recording.h"
#include "ScenarioFiles.h"
#include "ScenarioParser.h"
#include "Session.h"
#include "SessionReader.h"
#include "SessionWriter.h"
#include "SimulateCommand.h"
#include "Terminal.h"

#include <QFile>

#include <gmock/gmock.h>

#include <csignal>
#include <thread>

#include <linux/input.h>
#include <unistd.h>

namespace {

using namespace Vorn;
using namespace Vorn::Workbench;
using Outcome = SimulationResult::Outcome;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

/// Two keys that are reported at once and one with a long press, on every device.
Profile keys()
{
    HandlerProfile handler;
    handler.keys = {
        KeyMapping{KEY_VOLUMEUP, InputEvent::VolumeUp, true, {}, {}},
        KeyMapping{KEY_INFO, InputEvent::Info, false, LongPress{{700}, false}, {}},
        KeyMapping{KEY_UP, InputEvent::CursorUp, true, LongPress{{600, 200}, true}, {}},
    };
    DeviceProfile device;
    device.handlers = {handler};
    Profile profile;
    profile.devices = {device};
    return profile;
}

/// A scenario that needs nothing from disk; device i is on node i.
LoadedScenario loaded(const QByteArray &text)
{
    const auto noInclude = [](const QString &, QString *) { return std::optional<QByteArray>(); };
    const ParsedScenario parsed = parseScenario(text, QStringLiteral("a.scenario"), noInclude);
    for (const Diagnostic &diagnostic : parsed.diagnostics)
        ADD_FAILURE() << diagnostic.toString().toStdString();
    LoadedScenario result;
    result.source = QStringLiteral("a.scenario");
    result.scenario = parsed.scenario;
    result.profile = keys();
    for (int i = 0; i < parsed.scenario.devices.size(); ++i)
        result.deviceNodes.append(i);
    return result;
}

struct Played
{
    SimulationResult result;
    QVector<SessionEntry> entries;

    QByteArray json() const
    {
        QByteArray lines;
        for (const SessionEntry &entry : entries)
            lines += toJsonLine(entry);
        return lines;
    }

    /// "700 Info KeyLongPress", for each event.
    std::vector<std::string> events() const
    {
        std::vector<std::string> list;
        for (const SessionEntry &entry : entries) {
            if (const auto *event = std::get_if<EventPublished>(&entry.what))
                list.push_back(std::to_string(entry.time / 1000) + " "
                               + commandName(event->command).toStdString() + " "
                               + stateName(event->state).toStdString());
        }
        return list;
    }

    /// "12: text, found", of the expectation that failed.
    std::string failure() const
    {
        for (const SessionEntry &entry : entries) {
            const auto *checked = std::get_if<ExpectationChecked>(&entry.what);
            if (checked && !checked->met)
                return QStringLiteral("%1: %2, found %3")
                    .arg(checked->line)
                    .arg(checked->text, checked->found)
                    .toStdString();
        }
        return "none";
    }
};

Played played(const LoadedScenario &scenario)
{
    Played played;
    played.result =
        simulate(scenario, [&](const SessionEntry &entry) { played.entries.append(entry); });
    return played;
}

Played played(const QByteArray &text)
{
    return played(loaded(text));
}

class SimulatedFiles : public ScenarioFiles
{ };

class SimulateCommand : public ScenarioFiles
{
protected:
    /// Runs the command and keeps what it writes.
    int run(const Vorn::Tools::SimulateOptions &options)
    {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int status = Vorn::Tools::simulate(options);
        m_out = withoutFolder(testing::internal::GetCapturedStdout());
        m_err = withoutFolder(testing::internal::GetCapturedStderr());
        return status;
    }

    /// The same, interrupted when the first output comes.
    int runUntilOutput(const Vorn::Tools::SimulateOptions &options)
    {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        const int standardOutput = dup(STDOUT_FILENO);
        dup2(ends[1], STDOUT_FILENO);
        close(ends[1]);
        std::string out;
        std::thread reader([&] {
            char buffer[4096];
            for (ssize_t size = 0; (size = read(ends[0], buffer, sizeof buffer)) > 0;) {
                if (out.empty())
                    std::raise(SIGINT);
                out.append(buffer, static_cast<std::size_t>(size));
            }
        });
        testing::internal::CaptureStderr();
        const int status = Vorn::Tools::simulate(options);
        m_err = withoutFolder(testing::internal::GetCapturedStderr());
        dup2(standardOutput, STDOUT_FILENO);
        close(standardOutput);
        reader.join();
        close(ends[0]);
        m_out = withoutFolder(out);
        return status;
    }

    Vorn::Tools::SimulateOptions with(const QStringList &files) const
    {
        Vorn::Tools::SimulateOptions options;
        options.files = files;
        options.profile = path("keys.toml");
        options.colour = Colour::Never;
        return options;
    }

    std::string content(const char *name) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll().toStdString();
    }

    std::string withoutFolder(const std::string &text) const
    {
        return QString::fromStdString(text)
            .replace(m_folder.path() + QLatin1Char('/'), QString())
            .toStdString();
    }

    /// Where a message is wrapped depends on the length of the folder's name.
    static std::string onOneLine(const std::string &text)
    {
        return QString::fromStdString(text).simplified().toStdString();
    }

    std::string m_out;
    std::string m_err;
};

const QByteArray failingScenario = "device panel\n"
                                   "panel press KEY_INFO\n"
                                   "wait 100ms\n"
                                   "panel release KEY_INFO\n"
                                   "expect Info KeyReleased  # not before its press\n";

} // namespace

TEST(Simulation, RunsThroughTheLibrary)
{
    const Played run = played("device panel\n"
                              "panel hold KEY_INFO for 1s\n"
                              "expect Info KeyLongPress LocalUI from panel after 700ms\n"
                              "expect Info KeyReleased LocalUI from panel after 1s..1s\n"
                              "expect identifier \"\"\n");
    EXPECT_EQ(run.result.outcome, Outcome::Passed);
    EXPECT_EQ(run.result.expectations, 3);
    EXPECT_EQ(run.result.duration, 1000);
    EXPECT_THAT(run.events(), ElementsAre("700 Info KeyLongPress", "1000 Info KeyReleased"));
}

TEST(Simulation, GivesTheSameEachTime)
{
    const QByteArray text = "device a\ndevice b bus=USB\n"
                            "a press KEY_UP\nb press KEY_UP\nwait 10s\na release KEY_UP\n"
                            "clock +1h\nb unplug\nwait 5s\n";
    const QByteArray first = played(text).json();
    EXPECT_GT(first.count('\n'), 100);
    EXPECT_EQ(first.toStdString(), played(text).json().toStdString());
}

TEST(Simulation, AnUnexpectedEventFailsWithItsLine)
{
    const Played run = played(failingScenario + "expect nothing\n");
    EXPECT_EQ(run.result.outcome, Outcome::Failed);
    EXPECT_EQ(run.result.expectations, 0);
    EXPECT_EQ(run.failure(),
              "5: expect Info KeyReleased, found Info KeyPressed LocalUI from \"panel\", 0 s after "
              "the last action");
    EXPECT_TRUE(std::holds_alternative<ExpectationChecked>(run.entries.last().what))
        << "nothing happens after it";
}

TEST(Simulation, AnEventThatDoesNotComeFailsAtOnceOrWhenItsTimeIsOver)
{
    const auto failedAt = [](const QByteArray &expectation) {
        const Played run = played("device panel\npanel press KEY_INFO\nwait 100ms\n" + expectation);
        return run.failure() + " at " + std::to_string(run.result.duration);
    };
    EXPECT_EQ(failedAt("expect Info KeyLongPress"),
              "4: expect Info KeyLongPress, found nothing at 100");
    EXPECT_EQ(failedAt("expect Info KeyLongPress within 400ms"),
              "4: expect Info KeyLongPress within 400ms, found nothing at 500");
    EXPECT_EQ(failedAt("expect Info KeyLongPress after 200ms..600ms"),
              "4: expect Info KeyLongPress after 200ms..600ms, found nothing at 600");
    EXPECT_THAT(failedAt("expect Info KeyLongPress after 800ms"),
                HasSubstr("found Info KeyLongPress LocalUI from \"panel\", 700 ms after"));
}

TEST(Simulation, EachPartOfAnExpectationCounts)
{
    const QByteArray start = "device panel\ndevice other\npanel press KEY_VOLUMEUP\n";
    EXPECT_EQ(played(start + "expect VolumeUp KeyPressed LocalUI from panel").failure(), "none");
    for (const char *expectation :
         {"VolumeDown KeyPressed", "VolumeUp KeyReleased", "VolumeUp KeyPressed USB",
          "VolumeUp KeyPressed from other", "VolumeUp KeyPressed from \"Panel\"",
          "VolumeUp KeyPressed after 1ms..9ms"})
        EXPECT_EQ(played(start + "expect " + expectation).result.outcome, Outcome::Failed)
            << expectation;
}

TEST(Simulation, TellsDevicesOfTheSameNameByTheirNodes)
{
    const QByteArray start = "device a name=panel\ndevice b name=panel\n";
    EXPECT_EQ(played(start + "b press KEY_VOLUMEUP\nexpect nothing").failure(),
              "4: expect nothing, found VolumeUp KeyPressed LocalUI from \"panel\" (event1), 0 s "
              "after the last action");
    EXPECT_EQ(played(start + "b unplug\na press KEY_VOLUMEUP\nexpect nothing").failure(),
              "5: expect nothing, found VolumeUp KeyPressed LocalUI from \"panel\", 0 s after the "
              "last action");
    EXPECT_EQ(played("device a name=\"\"\na press KEY_VOLUMEUP\nexpect nothing").failure(),
              "3: expect nothing, found VolumeUp KeyPressed LocalUI from \"\" (event0), 0 s after "
              "the last action");
}

TEST(Simulation, NothingMeansNothingUntilItsTimeIsOver)
{
    const QByteArray start = "device panel\npanel press KEY_INFO\n";
    EXPECT_EQ(played(start + "expect nothing for 699ms").failure(), "none");
    const Played run = played(start + "expect nothing for 5s");
    EXPECT_EQ(run.failure(),
              "3: expect nothing for 5s, found Info KeyLongPress LocalUI from "
              "\"panel\", 700 ms after the last action");
    EXPECT_EQ(run.result.duration, 700) << "it fails as soon as something comes";
}

TEST(Simulation, WhatNobodyExpectedFailsAtTheEnd)
{
    const Played run = played("device panel\nexpect nothing\npanel press KEY_VOLUMEUP\n# end\n");
    EXPECT_EQ(run.failure(),
              "4: expect nothing more at the end, found VolumeUp KeyPressed LocalUI from "
              "\"panel\", 0 s after the last action");
    EXPECT_EQ(played("device panel\npanel press KEY_VOLUMEUP\n").result.outcome, Outcome::Passed)
        << "without an expectation it just shows what happens";
    EXPECT_EQ(played("device panel\npanel press KEY_VOLUMEUP\nignore events\nexpect nothing")
                  .result.outcome,
              Outcome::Passed);
}

TEST(Simulation, AWrongIdentifierFails)
{
    EXPECT_EQ(played("select text\nexpect identifier browse").failure(),
              "2: expect identifier browse, found 'text'");
}

TEST(Simulation, ASetClockIsSeenByTheLibrary)
{
    EXPECT_THAT(
        played("device panel\npanel press KEY_INFO\nwait 10ms\nclock +1h\nwait 1s").events(),
        ElementsAre(EndsWith("Info KeyLongPress")));
    const Played late = played("device panel\npanel press KEY_INFO\nclock -1s\nwait 1600ms");
    EXPECT_THAT(late.events(), IsEmpty());
}

TEST(Simulation, StartsAtTheGivenTime)
{
    const Played run = played("start 2026-05-06T07:08:09Z\n");
    ASSERT_FALSE(run.entries.isEmpty());
    const auto *start = std::get_if<SessionStart>(&run.entries.first().what);
    ASSERT_TRUE(start);
    EXPECT_EQ(start->wallClock, 1'778'051'289'000'000);
    EXPECT_EQ(start->source.toStdString(), "a.scenario");
}

TEST(Simulation, APressThatARecordedDeviceCannotDoIsAMistake)
{
    LoadedScenario scenario = loaded("device panel from \"x.evemu\"\npanel press KEY_INFO\n");
    RecordedNode node;
    node.device = RecordedDevice();
    node.device->name = "recorded";
    node.device->declare(EV_KEY, KEY_A);
    scenario.recordings[scenario.scenario.devices.first().recording].nodes = {node};
    const Played run = played(scenario);
    EXPECT_EQ(run.result.outcome, Outcome::Malformed);
    ASSERT_THAT(run.result.diagnostics, SizeIs(1));
    EXPECT_EQ(run.result.diagnostics.first().toString().toStdString(),
              "a.scenario:2: error: panel has no KEY_INFO, or it is already down");
}

TEST(Simulation, WhatARecordedDeviceCannotDoIsToldWithItsPosition)
{
    const auto mistakeOf = [](const QByteArray &step) {
        LoadedScenario scenario = loaded("device panel from \"x.evemu\"\n" + step);
        RecordedNode node;
        node.device = RecordedDevice();
        node.device->name = "recorded";
        scenario.recordings[scenario.scenario.devices.first().recording].nodes = {node};
        const Played run = played(scenario);
        EXPECT_EQ(run.result.outcome, Outcome::Malformed);
        return run.result.diagnostics.value(0).toString().toStdString();
    };
    const std::string start = "a.scenario:2: error: panel has no ";
    EXPECT_EQ(mistakeOf("panel release KEY_INFO"), start + "KEY_INFO, or it is already up");
    EXPECT_EQ(mistakeOf("panel switch SW_LID on"), start + "SW_LID, or it is already on");
    EXPECT_EQ(mistakeOf("panel switch SW_LID off"), start + "SW_LID, or it is already off");
}

TEST(Simulation, SaysWhatHappensToDevicesAndTheClock)
{
    const Played run = played("device panel\npanel replace name=other\npanel forbid\npanel allow\n"
                              "clock -1s\nclock +2s\n");
    std::vector<std::string> remarks;
    for (const SessionEntry &entry : run.entries) {
        if (const auto *remark = std::get_if<Remark>(&entry.what))
            remarks.push_back(remark->text.toStdString());
    }
    EXPECT_THAT(remarks,
                ElementsAre("panel is replaced by 'other'", "panel cannot be opened from now on",
                            "panel can be opened from now on", "the clock is set back by 1 s",
                            "the clock is set forward by 2 s"));
}

TEST_F(SimulatedFiles, ARecordingPlaysWhileTheScenarioGoesOn)
{
    write("up.evemu",
          "N: box\nI: 0003 0001 0001 0001\n"
          "E: 0.000000 0000 0000 0000\n"
          "E: 1.000000 0001 0073 0001\nE: 1.000000 0000 0000 0000\n"
          "E: 2.500000 0001 0073 0000\nE: 2.500000 0000 0000 0000\n");
    const LoadedScenario scenario = loadScenario(
        write("a.scenario",
              "profile \"keys.toml\"\ndevice panel\nplay \"up.evemu\" on panel\n"
              "wait 500ms\npanel click KEY_INFO\n"
              "expect Info KeyPressed after 80ms..80ms\nexpect Info KeyReleased\n"
              "expect VolumeUp KeyPressed from panel\nexpect VolumeUp KeyReleased from panel\n"),
        {});
    EXPECT_THAT(scenario.diagnostics, IsEmpty());
    const Played run = played(scenario);
    EXPECT_EQ(run.failure(), "none");
    EXPECT_THAT(run.events(),
                ElementsAre("580 Info KeyPressed", "580 Info KeyReleased",
                            "1000 VolumeUp KeyPressed", "2500 VolumeUp KeyReleased"));
}

TEST_F(SimulatedFiles, ARecordingIsComparedWithTheFileBesideIt)
{
    const QString recording = write("up.evemu",
                                    "E: 0.000000 0000 0000 0000\n"
                                    "E: 0.100000 0001 0073 0001\nE: 0.100000 0000 0000 0000\n");
    LoadOptions options;
    options.profile = path("keys.toml");
    EXPECT_EQ(played(loadScenario(recording, options)).events(),
              std::vector<std::string>{"100 VolumeUp KeyPressed"})
        << "a device without a description has the keys that it sent";

    write("up.expect", "expect VolumeUp KeyReleased\n");
    EXPECT_THAT(played(loadScenario(recording, options)).failure(), HasSubstr("1: expect"));
    options.expectations =
        write("other", "profile \"absent.toml\"\nexpect VolumeUp KeyPressed from \"device\"\n");
    EXPECT_EQ(played(loadScenario(recording, options)).result.expectations, 1);
}

TEST_F(SimulateCommand, SaysInOneLineThatAllIsAsExpected)
{
    const QString file = write("a.scenario",
                               "device panel\npanel press KEY_VOLUMEUP\n"
                               "expect VolumeUp KeyPressed\nwait 1s\n");
    EXPECT_EQ(run(with({file})), Vorn::Tools::Success);
    EXPECT_THAT(m_out, EndsWith("a.scenario: passed, 1 expectation, 1.000 s\n"));
    EXPECT_THAT(m_out, HasSubstr("  VolumeUp press  "));
    EXPECT_EQ(m_err, "");

    Vorn::Tools::SimulateOptions quiet = with({file});
    quiet.quiet = true;
    EXPECT_EQ(run(quiet), Vorn::Tools::Success);
    EXPECT_EQ(m_out, "");
}

TEST_F(SimulateCommand, TellsWhatFailedAndWhatCameBefore)
{
    Vorn::Tools::SimulateOptions options = with({write("a.scenario", failingScenario)});
    options.quiet = true;
    EXPECT_EQ(run(options), Vorn::Tools::Found);
    EXPECT_THAT(
        onOneLine(m_out),
        testing::StartsWith("a.scenario:5: expected Info KeyReleased, found Info KeyPressed "
                            "LocalUI from \"panel\", 0 s after the last action 0.000 "));
    EXPECT_THAT(m_out, HasSubstr("panel KEY_INFO press\n"));
    EXPECT_THAT(m_out,
                HasSubstr("      held back until the release or the long press due at "
                          "0.700 s\n"));
    EXPECT_THAT(m_out, HasSubstr("  Info press  "));
    EXPECT_THAT(m_out,
                EndsWith(">     0.100  here\na.scenario: FAILED at 0.100 s; 0 expectations met, "
                         "1 failed\n"));
}

TEST_F(SimulateCommand, PrintsNothingButJsonOnTheStandardOutput)
{
    Vorn::Tools::SimulateOptions options = with({write("a.scenario", failingScenario)});
    options.json = true;
    EXPECT_EQ(run(options), Vorn::Tools::Found);
    const ParsedSession session = parseSession(QByteArray::fromStdString(m_out), {});
    EXPECT_THAT(session.diagnostics, IsEmpty());
    ASSERT_FALSE(session.entries.isEmpty());
    const auto *last = std::get_if<ExpectationChecked>(&session.entries.last().what);
    ASSERT_TRUE(last);
    EXPECT_FALSE(last->met);
    EXPECT_THAT(onOneLine(m_err), HasSubstr("a.scenario:5: expected Info KeyReleased"));
}

TEST_F(SimulateCommand, MistakesGoToStderrAndTheOtherFilesAreRun)
{
    const QString bad = write("bad.scenario", "devise panel\n");
    const QString failing = write("failing.scenario", failingScenario);
    const QString good = write("good.scenario", "expect nothing\n");
    EXPECT_EQ(run(with({bad, failing, good})), Vorn::Tools::Failure);
    EXPECT_EQ(m_err,
              "bad.scenario:1:1: error: unknown step or device 'devise', did you mean "
              "'device'?\n");
    EXPECT_THAT(m_out, HasSubstr("failing.scenario: FAILED"));
    EXPECT_THAT(m_out,
                EndsWith("good.scenario: passed, 1 expectation, 0.000 s\n"
                         "3 files: 1 passed, 1 failed, 1 could not be run\n"
                         "    1 expectation met, 1 failed; 0.100 s\n"));
    EXPECT_EQ(run(with({failing, good})), Vorn::Tools::Found);
}

TEST_F(SimulateCommand, TotalsSeveralFilesUnlessNothingIsToBePrinted)
{
    const QString good = write("good.scenario", "expect nothing\n");
    Vorn::Tools::SimulateOptions options = with({good});
    EXPECT_EQ(run(options), Vorn::Tools::Success);
    EXPECT_THAT(m_out, testing::Not(HasSubstr("files")));

    options.files = QStringList{good, write("shown.scenario", "wait 1s\n")};
    EXPECT_EQ(run(options), Vorn::Tools::Success);
    EXPECT_THAT(
        m_out,
        EndsWith("shown.scenario: done, no expectations to check, 1.000 s\n"
                 "2 files: 1 passed, 1 without expectations; 1 expectation met; 1.000 s\n"));

    options.quiet = true;
    EXPECT_EQ(run(options), Vorn::Tools::Success);
    EXPECT_EQ(m_out, "");
    options.quiet = false;
    options.json = true;
    EXPECT_EQ(run(options), Vorn::Tools::Success);
    EXPECT_EQ(m_err, "");
    options.files += write("failing.scenario", failingScenario);
    EXPECT_EQ(run(options), Vorn::Tools::Found);
    EXPECT_THAT(m_err, HasSubstr("\n3 files: 1 passed, "));
    EXPECT_THAT(m_out, testing::Not(HasSubstr("files:")));
}

TEST_F(SimulateCommand, SaysWhichFilesAreNotRunAfterAnInterruption)
{
    // A key that is held for a day: it is still running when its first line comes.
    const QString held =
        write("held.scenario", "device panel\npanel hold KEY_UP for 24h\nexpect nothing\n");
    write("keys.toml",
          "[[device]]\n[device.handler.keys]\n"
          "KEY_UP = { command = \"CursorUp\", long-press = [600, 200], repeat = true }\n");
    const QString second = write("second.scenario", "expect nothing\n");
    Vorn::Tools::SimulateOptions options = with({held, second, second});
    options.junit = path("result.xml");
    EXPECT_EQ(runUntilOutput(options), Vorn::Tools::Failure);
    EXPECT_THAT(m_err,
                MatchesRegex("held.scenario: interrupted at [0-9.]+ s; 0 expectations met, 1 not "
                             "checked\nsecond.scenario: not run, interrupted\n"
                             "second.scenario: not run, interrupted\n"));
    const std::size_t end = m_out.rfind("3 files");
    ASSERT_NE(end, std::string::npos);
    EXPECT_THAT(m_out.substr(end),
                MatchesRegex("3 files: 1 interrupted, 2 not run(; |\n    )0 expectations met, 1 "
                             "not checked; [0-9.]+ s\n"));
    EXPECT_THAT(content("result.xml"), HasSubstr(R"(errors="1" skipped="2")"));
}

TEST_F(SimulateCommand, ReplacesOnlyResultsByResults)
{
    Vorn::Tools::SimulateOptions options = with({write("good.scenario", "expect nothing\n")});
    options.junit = write("mine.xml", "<mine/>");
    EXPECT_EQ(run(options), Vorn::Tools::Failure);
    EXPECT_EQ(m_out, "") << "that is found out before anything is run";
    EXPECT_THAT(m_err, testing::StartsWith("error: mine.xml exists, and vorn-input did not"));
    EXPECT_EQ(content("mine.xml"), "<mine/>");
    options.force = true;
    EXPECT_EQ(run(options), Vorn::Tools::Success);
    EXPECT_THAT(content("mine.xml"), HasSubstr("<testsuite"));

    options.junit = options.files.first();
    EXPECT_EQ(run(options), Vorn::Tools::Failure);
    EXPECT_THAT(m_err, testing::StartsWith("error: good.scenario is one of the files that were"));
    EXPECT_EQ(content("good.scenario"), "expect nothing\n");
}

TEST_F(SimulateCommand, WritesTheResultsForCiSystems)
{
    Vorn::Tools::SimulateOptions options =
        with({write("bad.scenario", "devise panel\n"),
              write("failing.scenario", failingScenario + "expect nothing\n"),
              write("good.scenario", "expect nothing\n")});
    options.junit = path("result.xml");
    EXPECT_EQ(run(options), Vorn::Tools::Failure);
    const std::string xml = withoutFolder(content("result.xml"));
    EXPECT_THAT(xml, HasSubstr(R"(tests="3" failures="1" errors="1" skipped="0" time="0.100")"));
    EXPECT_THAT(xml,
                HasSubstr("<failure message=\"failing.scenario:5: expected Info KeyReleased, "
                          "found Info KeyPressed LocalUI from &quot;panel&quot;, 0 s after "
                          "the last action\">"));
    EXPECT_THAT(xml, HasSubstr("panel KEY_INFO press\n"));
    EXPECT_THAT(xml, HasSubstr("1 failed, 1 not checked"));
    EXPECT_THAT(xml, HasSubstr("<error message=\"bad.scenario:1:1: error: unknown step or device"));

    options.files = QStringList{options.files.last()};
    EXPECT_EQ(run(options), Vorn::Tools::Success);
    EXPECT_THAT(content("result.xml"), HasSubstr(R"(tests="1")"));
    options.junit = path("absent/result.xml");
    EXPECT_EQ(run(options), Vorn::Tools::Failure);
    EXPECT_THAT(m_err, testing::StartsWith("error: absent/result.xml cannot be written: "));
    options.junit = QStringLiteral("-");
    EXPECT_EQ(run(options), Vorn::Tools::Failure);
    EXPECT_THAT(m_err, testing::StartsWith("error: --junit needs a file"));
    options.junit = options.timeline = path("both");
    EXPECT_EQ(run(options), Vorn::Tools::Failure);
    EXPECT_EQ(m_err, "error: --junit and --timeline both write to both\n");
    EXPECT_FALSE(QFile::exists(path("both")));
}

TEST_F(SimulateCommand, DrawsOneFileOnly)
{
    const QString good = write("good.scenario", "device panel\npanel click KEY_INFO\n");
    Vorn::Tools::SimulateOptions options = with({good, good});
    options.timeline = path("a.svg");
    EXPECT_EQ(run(options), Vorn::Tools::Failure);
    EXPECT_EQ(m_err, "error: --timeline draws one file, not several\n");
    EXPECT_FALSE(QFile::exists(options.timeline));

    options.files = QStringList{good};
    EXPECT_EQ(run(options), Vorn::Tools::Success);
    QFile picture(options.timeline);
    ASSERT_TRUE(picture.open(QIODevice::ReadOnly));
    EXPECT_THAT(picture.readAll().toStdString(), HasSubstr("<svg"));

    options.timeline = path("absent/a.svg");
    EXPECT_EQ(run(options), Vorn::Tools::Failure);
    EXPECT_THAT(m_err, testing::StartsWith("error: absent/a.svg cannot be written: "));
}
