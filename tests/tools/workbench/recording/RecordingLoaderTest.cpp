#include "RecordingLoader.h"

#include "Diagnostic.h"
#include "RecordedDevice.h"
#include "Recording.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <string>

using namespace Vorn;
using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class LoadRecording : public testing::Test
{
protected:
    QString write(const QString &name, const QByteArray &content)
    {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    static std::string textOf(const Diagnostics &diagnostics)
    {
        std::string text;
        for (const Diagnostic &diagnostic : diagnostics)
            text += diagnostic.toString().toStdString() + '\n';
        return text;
    }

    QTemporaryDir m_folder;
};

constexpr char twoNodes[] =
    "P: /devices/panel/event0\nN: input/event0\nE: DEVNAME=/dev/input/event0\n"
    "\nP: /devices/remote/event1\nN: input/event1\n";

} // namespace

TEST_F(LoadRecording, ReadsOneDevicesFile)
{
    const QString path = write("x.evemu", "N: panel\nE: 7.000000 0001 0073 1\n");
    const ParsedRecording recording = loadRecording(path);
    ASSERT_EQ(recording.nodes.size(), 1);
    EXPECT_EQ(recording.nodes.first().device->name.toStdString(), "panel");
    EXPECT_EQ(recording.nodes.first().events.first().time, 0);
}

TEST_F(LoadRecording, SaysWhichFileIsMissing)
{
    for (const char *name : {"x.evemu", "x.umockdev"}) {
        const ParsedRecording recording = loadRecording(m_folder.filePath(name));
        EXPECT_TRUE(recording.nodes.isEmpty());
        EXPECT_THAT(textOf(recording.diagnostics),
                    testing::EndsWith(std::string(name)
                                      + ": error: cannot be read: No such file or directory\n"));
    }
}

TEST_F(LoadRecording, FindsTheFilesBesideADeviceFile)
{
    const QString path = write("x.umockdev", twoNodes);
    write("panel.ioctl", "EVIOCGNAME(0) 6 70616e656c00\nEVIOCGBIT(0) 8 03\n");
    write("panel.evemu", "E: 100.000000 0001 0073 1\n");
    write("event1.evemu", "N: remote\nB: 01 02\nE: 102.500000 0001 0001 1\n");
    const ParsedRecording recording = loadRecording(path);
    EXPECT_EQ(textOf(recording.diagnostics), "");
    ASSERT_EQ(recording.nodes.size(), 2);
    EXPECT_EQ(recording.nodes.at(0).device->name.toStdString(), "panel");
    EXPECT_TRUE(recording.nodes.at(0).device->has(EV_KEY));
    EXPECT_EQ(recording.nodes.at(1).device->name.toStdString(), "remote");
    EXPECT_TRUE(recording.nodes.at(1).device->has(EV_KEY, 1));
}

TEST_F(LoadRecording, KeepsTheTimeBetweenTheNodes)
{
    const QString path = write("x.umockdev", twoNodes);
    write("event0.evemu", "E: 102.500000 0001 0073 1\n");
    write("event1.evemu", "E: 100.000000 0001 0001 1\n");
    const ParsedRecording recording = loadRecording(path);
    EXPECT_EQ(recording.nodes.at(0).events.first().time, 2'500'000);
    EXPECT_EQ(recording.nodes.at(1).events.first().time, 0);
}

TEST_F(LoadRecording, TellsOfMistakesInTheFilesBeside)
{
    const QString path = write("x.umockdev", twoNodes);
    write("event0.evemu", "E: 102.500000 0001 0073 1\nE: nonsense\n");
    write("event1.ioctl", "EVIOCGID 0 x\n");
    const ParsedRecording recording = loadRecording(path);
    EXPECT_THAT(textOf(recording.diagnostics), HasSubstr("/event0.evemu:2: error: "));
    EXPECT_THAT(textOf(recording.diagnostics), HasSubstr("/event1.ioctl:1: error: "));
}

TEST_F(LoadRecording, DoesNotLeaveTheFolder)
{
    QDir(m_folder.path()).mkdir("inside");
    const QString path = write("inside/x.umockdev", "P: /devices/../event0\nN: input/event0\n");
    write("..evemu", "E: 1.000000 0001 0073 1\n");
    write("inside/...evemu", "E: 1.000000 0001 0073 1\n");
    const ParsedRecording recording = loadRecording(path);
    EXPECT_TRUE(recording.nodes.first().events.isEmpty());
}

TEST_F(LoadRecording, SaysWhereEventsAreLookedFor)
{
    const QString path = write("x.umockdev", twoNodes);
    write("event0.ioctl", "EVIOCGNAME(0) 6 70616e656c00\n");
    write("event1.ioctl", "EVIOCGNAME(0) 6 70616e656c00\n");
    const ParsedRecording recording = loadRecording(path);
    EXPECT_FALSE(hasErrors(recording.diagnostics));
    EXPECT_THAT(textOf(recording.diagnostics), HasSubstr("warning: no events"));
    EXPECT_EQ(recording.nodes.size(), 2);
}

TEST_F(LoadRecording, RefusesADeviceThatIsNotDescribed)
{
    const QString path = write("x.umockdev", twoNodes);
    write("event0.ioctl", "EVIOCGNAME(0) 6 70616e656c00\n");
    EXPECT_THAT(textOf(loadRecording(path).diagnostics),
                testing::EndsWith("x.umockdev: error: event1 is not described; its answers are "
                                  "missing, in 'event1.ioctl' in the same folder\n"));
}

TEST_F(LoadRecording, RefusesAFileThatSaysNothing)
{
    for (const char *text : {"", "# only a comment\n"})
        EXPECT_THAT(textOf(loadRecording(write("x.evemu", text)).diagnostics),
                    HasSubstr("x.evemu: error: contains neither a device"));
    // As a session without devices is recorded.
    for (const char *text : {"", "P: /devices/absent/event0\nN: input/event0=00\n"})
        EXPECT_THAT(textOf(loadRecording(write("x.umockdev", text)).diagnostics),
                    HasSubstr("x.umockdev: error: describes no input device"));
}

TEST_F(LoadRecording, SaysWhatCannotBeRead)
{
    const ParsedRecording recording = loadRecording(m_folder.filePath("missing.umockdev"));
    EXPECT_TRUE(hasErrors(recording.diagnostics));
    EXPECT_TRUE(recording.nodes.isEmpty());
}

TEST_F(LoadRecording, ReadsTheRecordedPlayer)
{
    const ParsedRecording recording = loadRecording(
        QStringLiteral(VORN_SOURCE_DIR "/examples/player/recordings/player.umockdev"));
    EXPECT_EQ(textOf(recording.diagnostics), "");
    ASSERT_EQ(recording.nodes.size(), 4);
    std::vector<std::string> names;
    for (const RecordedNode &node : recording.nodes) {
        names.push_back(node.device->name.toStdString());
        EXPECT_EQ(node.events.first().time, 0);
        EXPECT_EQ(node.events.first().type, EV_SYN);
        for (const RecordedEvent &event : node.events)
            EXPECT_TRUE(event.type == EV_SYN || node.device->has(event.type, event.code));
    }
    EXPECT_THAT(names, ElementsAre("front-panel", "ir-receiver", "hostlink", "front-panel-jacks"));
    EXPECT_EQ(recording.nodes.at(2).events.at(1).time, 11'100'000);
}

TEST_F(LoadRecording, TellsNothingMoreOfAFileWithMistakes)
{
    EXPECT_EQ(textOf(loadRecording(write("x.evemu", "N: x\nE: nonsense\n")).diagnostics)
                  .find("contains neither"),
              std::string::npos);
    const Diagnostics diagnostics = loadRecording(write("x.evemu", "E: nonsense\n")).diagnostics;
    EXPECT_EQ(diagnostics.size(), 1);
    EXPECT_EQ(textOf(loadRecording(write("x.evemu", "N: x\n")).diagnostics), "");
    EXPECT_EQ(textOf(loadRecording(write("x.evemu", "E: 1.000000 0001 0073 1\n")).diagnostics), "");
}
