#include "Recorder.h"
#include "BusNames.h"
#include "InputSubsystem.h"
#include "Recording.h"
#include "RecordingLoader.h"
#include "Session.h"
#include "Umockdev.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

using namespace Vorn::Sim;
using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr qint64 wallClock = 1'795'246'800'000'000;
const QString device = QStringLiteral("/dev/input/event0");

/// A remote control whose keys are characters under "text".
Profile remoteProfile()
{
    Profile profile;
    profile.initial = QStringLiteral("browse");
    HandlerProfile browse;
    browse.identifiers = QStringList{QStringLiteral("browse")};
    browse.keys = {{KEY_2, InputEvent::CursorUp, true, {}, {}},
                   {KEY_OK, InputEvent::Confirm, false, {}, {}}};
    HandlerProfile text;
    text.identifiers = QStringList{QStringLiteral("text")};
    text.keys = {{KEY_2, InputEvent::Number2, true, {}, {}},
                 {KEY_A, InputEvent::CharA, true, {}, {}},
                 {KEY_S, InputEvent::CharS, true, {}, {}},
                 {KEY_OK, InputEvent::Submit, false, {}, {}}};
    DeviceProfile remote;
    remote.name = QStringLiteral("remote");
    remote.handlers = {browse, text};
    profile.devices = {remote};
    return profile;
}

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

class RecorderTest : public testing::Test
{
protected:
    RecorderTest() { m_subsystem.setRecording(false); }

    QString folder() const { return m_temporary.filePath(QStringLiteral("session")); }

    QByteArray contentOf(const QString &name) const
    {
        QFile file(folder() + QLatin1Char('/') + name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
    }

    /// All bytes of all files.
    std::string everything() const
    {
        QByteArray all;
        for (const QString &name : QDir(folder()).entryList(QDir::Files | QDir::Hidden))
            all += "== " + name.toUtf8() + '\n' + contentOf(name);
        return all.toStdString();
    }

    void start(const Profile *profile, bool showText = false)
    {
        m_recorder = std::make_unique<Recorder>(folder(), profile, showText);
        ASSERT_EQ(m_recorder->open().toStdString(), "");
        m_recorder->add({0, SessionStart{"monitor", "", wallClock}});
    }

    void plug(const DeviceDescription &description, int number = 0)
    {
        const InputNode &node = m_subsystem.plug(number, description);
        add(DeviceChange{node.path(), QString::fromUtf8(description.name),
                         libraryBus(description.id.bustype, QString::fromUtf8(description.name)),
                         true});
    }

    template <typename What>
    void add(const What &what)
    {
        m_recorder->add({m_time, what});
    }

    /// A record 300 µs before now, with its end of the batch.
    void record(int type, int code, int value)
    {
        const qint64 stamp = wallClock + m_time - 300;
        add(RecordRead{device, type, code, value, stamp});
        add(RecordRead{device, EV_SYN, SYN_REPORT, 0, stamp});
    }

    void event(InputEvent::Command command, InputEvent::State state, int code)
    {
        add(EventPublished{command, state, InputEvent::Bus::I2C, device, EV_KEY, {code}, 300});
    }

    /// A key stroke with what the library makes of it.
    void type(int code, InputEvent::Command command)
    {
        record(EV_MSC, MSC_SCAN, 0x70000 + code);
        record(EV_KEY, code, 1);
        event(command, InputEvent::KeyPressed, code);
        m_time += 100'000;
        record(EV_KEY, code, 0);
        event(command, InputEvent::KeyReleased, code);
        m_time += 100'000;
    }

    ParsedRecording load() const { return loadRecording(folder() + "/session.umockdev"); }

    std::vector<int> codesOf(int value) const
    {
        std::vector<int> codes;
        const ParsedRecording recording = load();
        for (const RecordedEvent &recorded : recording.nodes.first().events) {
            if (recorded.type == EV_KEY && recorded.value == value)
                codes.push_back(recorded.code);
        }
        return codes;
    }

    std::vector<std::string> expectations() const
    {
        std::vector<std::string> lines;
        for (const QByteArray &line : contentOf("session.expect").split('\n')) {
            if (line.startsWith("expect "))
                lines.push_back(line.mid(7).toStdString());
        }
        return lines;
    }

    QTemporaryDir m_temporary;
    InputSubsystem m_subsystem;
    std::unique_ptr<Recorder> m_recorder;
    qint64 m_time = 1'000'000;
};

const DeviceDescription remote =
    DeviceDescription::keyboard("remote", BUS_I2C, {KEY_2, KEY_Q, KEY_A, KEY_S, KEY_OK})
        .withEventTypes({EV_MSC});

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

TEST_F(RecorderTest, SaysWhyItCannotMakeTheFolder)
{
    QFile file(folder());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    Recorder recorder(folder() + "/below", nullptr, false);
    EXPECT_THAT(recorder.open().toStdString(), HasSubstr("cannot create the folder"));
}

TEST_F(RecorderTest, TellsOfADiskThatIsFull)
{
    if (!QFile::exists("/dev/full"))
        GTEST_SKIP() << "no /dev/full";
    start(nullptr);
    ASSERT_TRUE(QFile::link("/dev/full", folder() + "/event0.evemu"));
    plug(remote);
    EXPECT_THAT(m_recorder->close().toStdString(), HasSubstr("event0.evemu': "));
}

TEST_F(RecorderTest, LeavesNoTraceOfTypedTextWithoutAProfile)
{
    start(nullptr);
    plug(DeviceDescription::keyboard("remote", BUS_I2C, {KEY_A, KEY_S, KEY_OK})
             .withKeys({}, {KEY_Q})
             .withEventTypes({EV_MSC}));
    type(KEY_Q, InputEvent::CharQ);
    type(KEY_OK, InputEvent::Confirm);
    add(DetectorStep{DetectorStep::What::LongPressDue, device, {KEY_Q}, 5, false});
    add(Remark{"KEY_Q is mapped to CharQ, KEY_OK is not"});
    m_recorder->close();

    EXPECT_THAT(codesOf(1), ElementsAre(KEY_A, KEY_OK));
    EXPECT_THAT(codesOf(0), ElementsAre(KEY_A, KEY_OK));
    EXPECT_THAT(expectations(),
                ElementsAre("CharA KeyPressed I2C", "CharA KeyReleased I2C",
                            "Confirm KeyPressed I2C", "Confirm KeyReleased I2C"));
    const std::string all = everything();
    EXPECT_THAT(all, Not(HasSubstr("KEY_Q")));
    EXPECT_THAT(all, Not(HasSubstr("CharQ")));
    EXPECT_THAT(all, Not(HasSubstr("0001 0010 ")));
    EXPECT_THAT(all, Not(HasSubstr("\"codeNumber\":16")));
    EXPECT_THAT(all, Not(HasSubstr("MSC_SCAN")));
    EXPECT_THAT(all, Not(HasSubstr(" 0004 0004 ")));
    EXPECT_THAT(all, HasSubstr("KEY_A is mapped to CharA, KEY_OK is not"));
    EXPECT_TRUE(load().nodes.first().device->keysDown.isEmpty());
}

TEST_F(RecorderTest, IsTheSameForEveryTextOfTheSameRhythm)
{
    const auto sessionOf = [this](const QVector<int> &keys,
                                  const QVector<InputEvent::Command> &as) {
        QDir(folder()).removeRecursively();
        const Profile profile = remoteProfile();
        m_time = 1'000'000;
        start(&profile);
        m_recorder->add({0, DeviceChange{device, "remote", InputEvent::Bus::I2C, true}});
        add(IdentifierSelected{"text"});
        for (int i = 0; i < keys.size(); ++i)
            type(keys.at(i), as.at(i));
        m_recorder->close();
        return everything();
    };
    const std::string one = sessionOf({KEY_2, KEY_S, KEY_Q},
                                      {InputEvent::Number2, InputEvent::CharS, InputEvent::None});
    const std::string other = sessionOf({KEY_A, KEY_2, KEY_W},
                                        {InputEvent::CharA, InputEvent::Number2, InputEvent::None});
    EXPECT_EQ(one, other);
    EXPECT_THAT(one, HasSubstr("expect CharA KeyPressed I2C"));
}

TEST_F(RecorderTest, KeepsKeysThatTypeOnlyUnderAnotherIdentifier)
{
    const Profile profile = remoteProfile();
    start(&profile);
    plug(remote);
    type(KEY_2, InputEvent::CursorUp);
    add(IdentifierSelected{"text"});
    type(KEY_2, InputEvent::Number2);
    type(KEY_OK, InputEvent::Submit);
    add(IdentifierSelected{"browse"});
    type(KEY_2, InputEvent::CursorUp);
    EXPECT_THAT(codesOf(1), ElementsAre(KEY_2, KEY_A, KEY_OK, KEY_2));
    EXPECT_THAT(codesOf(0), ElementsAre(KEY_2, KEY_A, KEY_OK, KEY_2));
    EXPECT_THAT(expectations(),
                ElementsAre("CursorUp KeyPressed I2C", "CursorUp KeyReleased I2C",
                            "CharA KeyPressed I2C", "CharA KeyReleased I2C",
                            "Submit KeyPressed I2C", "Submit KeyReleased I2C",
                            "CursorUp KeyPressed I2C", "CursorUp KeyReleased I2C"));
}

TEST_F(RecorderTest, ReleasesAKeyAsItWasPressed)
{
    const Profile profile = remoteProfile();
    start(&profile);
    plug(remote);
    record(EV_KEY, KEY_2, 1);
    add(IdentifierSelected{"text"});
    record(EV_KEY, KEY_2, 0);
    record(EV_KEY, KEY_2, 1);
    add(IdentifierSelected{"browse"});
    record(EV_KEY, KEY_2, 2);
    record(EV_KEY, KEY_2, 0);
    EXPECT_THAT(codesOf(1), ElementsAre(KEY_2, KEY_A));
    EXPECT_THAT(codesOf(2), ElementsAre(KEY_A));
    EXPECT_THAT(codesOf(0), ElementsAre(KEY_2, KEY_A));
}

TEST_F(RecorderTest, KeepsOverlappingStrokesApart)
{
    const Profile profile = remoteProfile();
    start(&profile);
    plug(remote);
    add(IdentifierSelected{"text"});
    record(EV_KEY, KEY_S, 1);
    record(EV_KEY, KEY_2, 1);
    record(EV_KEY, KEY_S, 0);
    record(EV_KEY, KEY_2, 0);
    EXPECT_THAT(codesOf(1), ElementsAre(KEY_A, KEY_2));
    EXPECT_THAT(codesOf(0), ElementsAre(KEY_A, KEY_2));
}

TEST_F(RecorderTest, BlanksADeviceThatTheProfileDoesNotMention)
{
    const Profile profile = remoteProfile();
    start(&profile);
    plug(DeviceDescription::keyboard("keyboard", BUS_USB, {KEY_Q, KEY_W, KEY_OK}));
    record(EV_KEY, KEY_W, 1);
    record(EV_KEY, KEY_OK, 1);
    // It has no KEY_A.
    EXPECT_THAT(codesOf(1), ElementsAre(KEY_Q, KEY_OK));
}

TEST_F(RecorderTest, KeepsScanCodesOfADeviceThatCannotType)
{
    start(nullptr);
    plug(DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK}).withEventTypes({EV_MSC}));
    record(EV_MSC, MSC_SCAN, 17);
    EXPECT_THAT(contentOf("event0.evemu").toStdString(), HasSubstr(" 0004 0004 0017\n"));
}

TEST_F(RecorderTest, ShowsTextIfItIsTo)
{
    start(nullptr, true);
    plug(remote);
    type(KEY_Q, InputEvent::CharQ);
    EXPECT_THAT(codesOf(1), ElementsAre(KEY_Q));
    EXPECT_THAT(expectations(), ElementsAre("CharQ KeyPressed I2C", "CharQ KeyReleased I2C"));
    EXPECT_THAT(everything(), HasSubstr("MSC_SCAN"));
}
