#include "Recorder.h"
#include "RecorderFixture.h"
#include "Umockdev.h"

#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Vorn::Sim;
using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

/// Runs a line of the shell; QProcess asks the kernel in a way that memcheck does not like.
int statusOfShell(QByteArray line)
{
    char shell[] = "sh";
    char option[] = "-c";
    char *arguments[] = {shell, option, line.data(), nullptr};
    pid_t child = 0;
    int status = -1;
    if (posix_spawnp(&child, shell, nullptr, nullptr, arguments, environ) != 0
        || waitpid(child, &status, 0) != child)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class RecorderTest : public RecorderFixture
{ };

} // namespace

TEST_F(RecorderTest, KeepsASessionThatIsReadBack)
{
    start(nullptr);
    plug(DeviceDescription::keyboard("panel", BUS_HOST, {KEY_INFO})
             .withSwitches({SW_LINEIN_INSERT}, {SW_LINEIN_INSERT}));
    record(EV_KEY, KEY_INFO, 1);
    m_time += 500'000;
    record(EV_KEY, KEY_INFO, 0);
    EXPECT_EQ(m_recorder->close().toStdString(), "");

    const ParsedRecording recording = load();
    EXPECT_TRUE(recording.diagnostics.isEmpty());
    ASSERT_EQ(recording.nodes.size(), 1);
    const RecordedNode &node = recording.nodes.first();
    EXPECT_EQ(node.number, 0);
    EXPECT_EQ(node.device->name.toStdString(), "panel");
    EXPECT_EQ(node.device->id.bustype, BUS_HOST);
    EXPECT_THAT(node.device->codesOf(EV_KEY), ElementsAre(KEY_INFO));
    EXPECT_THAT(node.device->switchesOn, ElementsAre(SW_LINEIN_INSERT));
    ASSERT_EQ(node.events.size(), 5);
    EXPECT_EQ(node.events.at(0).time, 0);
    EXPECT_EQ(node.events.at(0).type, EV_SYN);
    // As stamped, not as read.
    EXPECT_EQ(node.events.at(1).time, 999'700);
    EXPECT_EQ(node.events.at(3).time, 1'499'700);
    EXPECT_EQ(node.events.at(3).code, KEY_INFO);
    EXPECT_EQ(node.events.at(3).value, 0);
}

TEST_F(RecorderTest, DescribesEveryNodeThatTheLibraryLooksAt)
{
    start(nullptr);
    plug(remote, 3);
    const QByteArray devices = contentOf("session.umockdev");
    EXPECT_EQ(devices.count("\nN: input/event"), 10);
    EXPECT_THAT(devices.toStdString(), HasSubstr("\nN: input/event3\n"));
    EXPECT_THAT(devices.toStdString(), HasSubstr("\nN: input/event4=00\n"));
    EXPECT_TRUE(parseUmockdev(devices, "x").diagnostics.isEmpty());
    EXPECT_THAT(contentOf("event3.ioctl").toStdString(),
                testing::StartsWith(
                    "# What /dev/input/event3 answers, for ./replay.sh PROGRAM, which runs\n"
                    "# umockdev-run -d session.umockdev -i /dev/input/event3=event3.ioctl -- "
                    "PROGRAM\n"));
    EXPECT_THAT(contentOf("event3.evemu").toStdString(),
                HasSubstr("\n#\n# E: seconds type code value; seconds from the start of the "
                          "session.\n#\n"
                          "# ./replay.sh PROGRAM plays it on a machine without the device, and\n"
                          "# evemu-play /dev/input/event3 <event3.evemu on the device.\n#\n"
                          "# A replay delivers the first line immediately, so that line means "
                          "nothing.\n"
                          "E: 0.000000 0000 0000 0000\n"));
    EXPECT_EQ(contentOf("session.expect").toStdString(),
              "# The published events, in order.\n#\n# vorn-input simulate session.umockdev\n#\n"
              "# plays the recorded devices and fails if anything else is published.\n");
    EXPECT_THAT(contentOf("event3.ioctl").toStdString(), HasSubstr("\nEVIOCGBIT(0) 8 "));
    EXPECT_THAT(contentOf("event3.evemu").toStdString(),
                testing::StartsWith("# EVEMU 1.3\nN: remote\n"));
}

TEST_F(RecorderTest, WritesTheEventsAsExpectations)
{
    QDir(m_temporary.path()).mkdir("profiles");
    m_recorder = std::make_unique<Recorder>(folder(), nullptr, false);
    ASSERT_EQ(m_recorder->open().toStdString(), "");
    m_recorder->add(
        {0, SessionStart{"monitor", m_temporary.filePath("profiles/a.toml"), wallClock}});
    event(InputEvent::VolumeUp, InputEvent::KeyPressed, KEY_VOLUMEUP);
    add(EventPublished{InputEvent::SWLineIn,
                       InputEvent::SwitchEnabled,
                       InputEvent::Bus::NoBus,
                       device,
                       EV_SW,
                       {SW_LINEIN_INSERT},
                       {}});
    event(static_cast<InputEvent::Command>(57), InputEvent::KeyPressed, KEY_VOLUMEUP);
    EXPECT_THAT(expectations(), ElementsAre("VolumeUp KeyPressed I2C", "SWLineIn SwitchEnabled"));
    EXPECT_THAT(contentOf("session.expect").toStdString(),
                HasSubstr("\nprofile \"../profiles/a.toml\"\n"));
    EXPECT_THAT(contentOf("session.expect").toStdString(), HasSubstr("\n# expect 57 KeyPressed"));
}

TEST_F(RecorderTest, WritesEachEntryAtOnce)
{
    start(nullptr);
    plug(remote);
    record(EV_KEY, KEY_OK, 1);
    EXPECT_THAT(contentOf("event0.evemu").toStdString(),
                HasSubstr("E: 0.999700 0001 0160 0001\nE: 0.999700 0000 0000 0000\n"));
    EXPECT_EQ(contentOf("session.jsonl").count('\n'), 4);
}

TEST_F(RecorderTest, TakesTheTimeOfReadingWhereTheClockWasSet)
{
    start(nullptr);
    plug(remote);
    add(RecordRead{device, EV_KEY, KEY_OK, 1, wallClock + 3'600'000'000});
    m_time += 1'000'000;
    add(RecordRead{device, EV_KEY, KEY_OK, 0, wallClock - 3'600'000'000});
    const QVector<RecordedEvent> events = load().nodes.first().events;
    EXPECT_EQ(events.at(1).time, 1'000'000);
    EXPECT_EQ(events.at(2).time, 2'000'000);
}

TEST_F(RecorderTest, DoesNotReplayPositionsThatWereAskedFor)
{
    start(nullptr);
    plug(DeviceDescription::switchBox("jacks", BUS_HOST, {SW_LINEIN_INSERT}));
    add(RecordRead{device, EV_SW, SW_LINEIN_INSERT, 0, 0});
    EXPECT_EQ(load().nodes.first().events.size(), 1);
}

TEST_F(RecorderTest, GoesOnWhereADeviceReturns)
{
    start(nullptr);
    plug(remote);
    record(EV_KEY, KEY_OK, 1);
    add(DeviceChange{device, "remote", InputEvent::Bus::I2C, false});
    m_time += 1'000'000;
    add(DeviceChange{device, "other\nE: 9", InputEvent::Bus::I2C, true});
    record(EV_KEY, KEY_OK, 1);
    const ParsedRecording recording = load();
    EXPECT_TRUE(recording.diagnostics.isEmpty());
    EXPECT_EQ(recording.nodes.first().device->name.toStdString(), "remote");
    EXPECT_EQ(recording.nodes.first().events.size(), 5);
    EXPECT_THAT(contentOf("event0.evemu").toStdString(),
                HasSubstr("# 2.000000: device 'other E: 9' plugged in\n"));
}

TEST_F(RecorderTest, KeepsNamesThatAreNoTextOnOneLine)
{
    for (const QByteArray &name :
         {QByteArray("a\rb"), QByteArray("ends\r"), QByteArray("\r\nE: 9"),
          QByteArray("k\xe4se \xff"), QByteArray("\\n \\x0d %1 ' \""), QByteArray(" blank ")})
    {
        QDir(folder()).removeRecursively();
        start(nullptr);
        plug(DeviceDescription::keyboard(name, BUS_USB, {KEY_OK}));
        record(EV_KEY, KEY_OK, 1);
        EXPECT_EQ(m_recorder->close().toStdString(), "");
        const ParsedRecording recording = load();
        EXPECT_TRUE(recording.diagnostics.isEmpty()) << name.toStdString();
        ASSERT_EQ(recording.nodes.size(), 1) << name.toStdString();
        EXPECT_EQ(recording.nodes.first().device->name.toStdString(), name.toStdString());
        EXPECT_EQ(recording.nodes.first().events.size(), 3) << name.toStdString();
        // umockdev refuses other devices than these.
        const QByteArray devices = contentOf("session.umockdev");
        EXPECT_FALSE(devices.contains('\r'));
        EXPECT_EQ(QString::fromUtf8(devices).toUtf8(), devices);
        // Without the file of answers, as other programs read it.
        ASSERT_TRUE(QFile::remove(folder() + "/event0.ioctl"));
        ASSERT_TRUE(QFile::remove(folder() + "/event0.evemu"));
        EXPECT_EQ(load().nodes.first().device->name.toStdString(), name.toStdString());
        m_subsystem.unplug(0);
    }
}

TEST_F(RecorderTest, KeepsWhatIsKnownOfADeviceThatIsGoneAlready)
{
    start(nullptr);
    add(DeviceChange{"/dev/input/event7", "gone", InputEvent::Bus::USB, true});
    const ParsedRecording recording = load();
    ASSERT_EQ(recording.nodes.size(), 1);
    EXPECT_EQ(recording.nodes.first().device->name.toStdString(), "gone");
    EXPECT_EQ(recording.nodes.first().device->id.bustype, BUS_USB);
}

TEST_F(RecorderTest, BringsAScriptThatReplaysIt)
{
    start(nullptr);
    plug(remote);
    const QString script = folder() + "/replay.sh";
    EXPECT_TRUE(QFile::permissions(script) & QFileDevice::ExeUser);
    // Stands in for umockdev-run and shows what it is given.
    const QString stub = m_temporary.filePath("umockdev-run");
    QFile file(stub);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\nfor argument; do echo \"$argument\"; done\n"
               "sed 's/^/evemu: /' \"${6#*=}\"\n");
    file.close();
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    const QString shown = m_temporary.filePath("shown");
    const QString line = QStringLiteral("PATH='%1':$PATH '%2' player 'a b' >'%3'")
                             .arg(m_temporary.path(), script, shown);
    EXPECT_EQ(statusOfShell(line.toUtf8()), 0);
    QFile shownFile(shown);
    ASSERT_TRUE(shownFile.open(QIODevice::ReadOnly));
    const std::string output = shownFile.readAll().toStdString();
    EXPECT_THAT(output,
                HasSubstr("-d\n" + folder().toStdString() + "/session.umockdev\n-i\n"
                          + "/dev/input/event0=" + folder().toStdString()
                          + "/event0.ioctl\n-e\n/dev/input/event0="));
    EXPECT_THAT(output, HasSubstr("\n--\nplayer\na b\n"));
    // The description is for other programs.
    EXPECT_THAT(output, testing::ContainsRegex("evemu: E: [0-9]+[.][1-9][0-9]+ 0000 0000 0000\n"));
    EXPECT_THAT(output, Not(HasSubstr("evemu: N:")));
}

TEST_F(RecorderTest, RefusesAFolderThatHoldsASession)
{
    start(nullptr);
    m_recorder->close();
    Recorder second(folder(), nullptr, false);
    EXPECT_THAT(second.open().toStdString(), HasSubstr("already holds a recording"));
    second.add({0, Remark{"lost"}});
    EXPECT_THAT(everything(), Not(HasSubstr("lost")));
}

TEST_F(RecorderTest, TellsOfADiskThatIsFull)
{
    if (!QFile::exists("/dev/full"))
        GTEST_SKIP() << "no /dev/full";
    start(nullptr);
    ASSERT_TRUE(QFile::link("/dev/full", folder() + "/event0.evemu"));
    EXPECT_EQ(m_recorder->error().toStdString(), "");
    plug(remote);
    // At once, and not when hours of it are lost.
    EXPECT_THAT(m_recorder->error().toStdString(),
                testing::EndsWith("event0.evemu': No space left on device"));
    const auto entries = contentOf("session.jsonl").count('\n');
    record(EV_KEY, KEY_OK, 1);
    EXPECT_EQ(contentOf("session.jsonl").count('\n'), entries);
    EXPECT_EQ(m_recorder->close(), m_recorder->error());
}

TEST_F(RecorderTest, SaysWhichKeysAreReadable)
{
    start(nullptr);
    plug(remote);
    EXPECT_THAT(m_recorder->summary().toStdString(),
                testing::EndsWith("session'; 0 typed keys are blanked; keys recorded as they are: "
                                  "none"));
    type(KEY_A, InputEvent::CharA);
    type(KEY_OK, InputEvent::Confirm);
    type(KEY_OK, InputEvent::Confirm);
    type(KEY_INFO, InputEvent::Info);
    EXPECT_THAT(m_recorder->summary().toStdString(),
                testing::EndsWith("; 1 typed key is blanked; keys recorded as they are: KEY_OK, "
                                  "KEY_INFO"));
    struct stat status = {};
    ASSERT_EQ(stat(folder().toLocal8Bit().constData(), &status), 0);
    EXPECT_NE(status.st_mode & 0077, 0U);
}

TEST_F(RecorderTest, KeepsReadableTextToTheOwner)
{
    start(nullptr, true);
    plug(remote);
    type(KEY_A, InputEvent::CharA);
    EXPECT_THAT(m_recorder->summary().toStdString(),
                testing::EndsWith("session', with everything that was typed; keys: KEY_A"));
    struct stat status = {};
    ASSERT_EQ(stat(folder().toLocal8Bit().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700U);
}

TEST_F(RecorderTest, LeavesNothingBehindWhereItCannotBegin)
{
    ASSERT_TRUE(QDir(m_temporary.path()).mkdir("session"));
    ASSERT_TRUE(QDir(folder()).mkdir("README"));
    Recorder recorder(folder(), nullptr, false);
    EXPECT_THAT(recorder.open().toStdString(), HasSubstr("README cannot be written: "));
    EXPECT_TRUE(QDir(folder()).entryList(QDir::Files).isEmpty());
}

TEST_F(RecorderTest, TakesTheStampOfLessThanASecondAgo)
{
    start(nullptr);
    plug(remote);
    m_time = 5'000'000;
    add(RecordRead{device, EV_KEY, KEY_OK, 1, wallClock + 4'000'001});
    m_time = 6'000'000;
    add(RecordRead{device, EV_KEY, KEY_OK, 0, wallClock + 5'000'000});
    m_time = 7'000'000;
    add(RecordRead{device, EV_KEY, KEY_OK, 1, wallClock + 7'000'000});
    m_time = 8'000'000;
    add(RecordRead{device, EV_KEY, KEY_OK, 0, wallClock + 8'000'001});
    std::vector<qint64> times;
    const ParsedRecording recording = load();
    for (const RecordedEvent &recorded : recording.nodes.first().events)
        times.push_back(recorded.time);
    EXPECT_THAT(times, ElementsAre(0, 4'000'001, 6'000'000, 7'000'000, 8'000'000));
}

TEST_F(RecorderTest, LeavesOutWhatIsNoNode)
{
    start(nullptr);
    add(DeviceChange{"/dev/input/mouse0", "mouse", InputEvent::Bus::USB, true});
    add(DeviceChange{"/dev/input/eventx", "mouse", InputEvent::Bus::USB, true});
    add(DeviceChange{"/dev/input/event8", "never here", InputEvent::Bus::USB, false});
    EXPECT_EQ(contentOf("session.umockdev").count("=00\n"), 10);
    EXPECT_EQ(QDir(folder()).entryList(QDir::Files).size(), 5);
}

TEST_F(RecorderTest, SaysWhenADeviceWentAndCame)
{
    start(nullptr);
    plug(remote);
    add(DeviceChange{device, "remote", InputEvent::Bus::I2C, false});
    m_time += 500'000;
    add(DeviceChange{device, "remote", InputEvent::Bus::I2C, true});
    EXPECT_THAT(contentOf("event0.evemu").toStdString(),
                testing::EndsWith("\n# 1.000000: device unplugged\n"
                                  "# 1.500000: device 'remote' plugged in\n"));
}

TEST_F(RecorderTest, KeepsScanCodesOfADeviceThatCannotTypeAndReturns)
{
    start(nullptr);
    plug(DeviceDescription::keyboard("remote", BUS_I2C, {KEY_OK}).withEventTypes({EV_MSC}));
    record(EV_MSC, MSC_SCAN, 7);
    add(DeviceChange{device, "remote", InputEvent::Bus::I2C, false});
    add(DeviceChange{device, "remote", InputEvent::Bus::I2C, true});
    record(EV_MSC, MSC_SCAN, 8);
    EXPECT_EQ(contentOf("event0.evemu").count(" 0004 0004 "), 2);
}
