#include "InputSubsystem.h"
#include "OpenNode.h"
#include "VirtualClock.h"

#include <QDir>
#include <QFile>
#include <QFileSystemWatcher>
#include <QSignalSpy>
#include <QStringList>

#include <gmock/gmock.h>

#include <cstdlib>

#include <dirent.h>
#include <unistd.h>

using namespace Vorn::Sim;
using testing::SizeIs;

namespace {

const DeviceDescription panel = DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK});

const QString deviceFolder = QStringLiteral("/dev/");
const QString inputFolder = QStringLiteral("/dev/input/");

QStringList nodes()
{
    return QDir(inputFolder).entryList(QDir::System, QDir::Name);
}

// A watcher and the changes that it reported. Waiting for them takes no time on a virtual clock.
class Watch
{
public:
    explicit Watch(const QString &folder)
        : m_changes(&watcher, &QFileSystemWatcher::directoryChanged)
    {
        EXPECT_TRUE(watcher.addPath(folder));
    }

    /// The number of changes since the last call.
    int changes()
    {
        m_clock.settle();
        const auto count = static_cast<int>(m_changes.count());
        m_changes.clear();
        return count;
    }

    QFileSystemWatcher watcher;

private:
    VirtualClock m_clock;
    QSignalSpy m_changes;
};

} // namespace

TEST(Directory, IsThereAndEmptyAtTheStart)
{
    const InputSubsystem subsystem;
    EXPECT_TRUE(subsystem.inputDirectoryExists());
    for (const char *path : {"/dev", "/dev/", "/dev/input", "/dev/input/"})
        EXPECT_TRUE(QDir(QString::fromLatin1(path)).exists()) << path;
    EXPECT_EQ(nodes(), QStringList());
    EXPECT_EQ(QDir(deviceFolder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList(QStringLiteral("input")));
}

TEST(Directory, IsTheMachinesOwnWithoutASimulation)
{
    const QStringList before = QDir(deviceFolder).entryList(QDir::System | QDir::Dirs);
    EXPECT_TRUE(before.contains(QStringLiteral("null")));
    QString folder;
    {
        const InputSubsystem subsystem;
        folder = subsystem.folder();
        EXPECT_TRUE(QDir(folder).exists());
    }
    EXPECT_EQ(QDir(deviceFolder).entryList(QDir::System | QDir::Dirs), before);
    EXPECT_FALSE(QDir(folder).exists());
}

TEST(Directory, LeavesOtherDevicesAlone)
{
    InputSubsystem subsystem;
    EXPECT_TRUE(QFile::exists(QStringLiteral("/dev/null")));
    QFile null(QStringLiteral("/dev/null"));
    EXPECT_TRUE(null.open(QIODevice::ReadOnly));
    EXPECT_EQ(::access("/dev/null", R_OK), 0);
    EXPECT_NE(::access("/dev/inputs", F_OK), 0);
    EXPECT_NE(::access("/device", F_OK), 0);
}

TEST(Directory, ListsThePluggedNodes)
{
    InputSubsystem subsystem;
    subsystem.plug(2, panel);
    subsystem.plug(0, panel);
    subsystem.plug(12, panel);
    EXPECT_EQ(nodes(),
              QStringList() << QStringLiteral("event0") << QStringLiteral("event12")
                            << QStringLiteral("event2"));
    EXPECT_EQ(QDir(inputFolder).entryList(QDir::Files), QStringList());
    subsystem.unplug(0);
    EXPECT_FALSE(QFile::exists(QStringLiteral("/dev/input/event0")));
    EXPECT_TRUE(QFile::exists(QStringLiteral("/dev/input/event2")));
}

TEST(Directory, IsListedByTheCLibraryToo)
{
    InputSubsystem subsystem;
    subsystem.plug(4, panel);
    DIR *folder = ::opendir("/dev/input");
    ASSERT_NE(folder, nullptr);
    QStringList names;
    while (const dirent64 *entry = ::readdir64(folder))
        names << QString::fromLatin1(entry->d_name);
    ::closedir(folder);
    EXPECT_TRUE(names.contains(QStringLiteral("event4")));

    dirent64 **list = nullptr;
    const auto isNode = [](const dirent64 *entry) {
        return static_cast<int>(entry->d_name[0] == 'e');
    };
    ASSERT_EQ(::scandir64("/dev/input", &list, isNode, ::alphasort64), 1);
    EXPECT_STREQ(list[0]->d_name, "event4");
    ::free(list[0]);
    ::free(list);
}

// Where the two differ, as on 32-bit systems, scandir() fails on file systems whose offsets do not
// fit, and an emulator passes on those of its 64-bit host.
#if _DIRENT_MATCHES_DIRENT64
TEST(Directory, IsListedByTheShortFormToo)
{
    InputSubsystem subsystem;
    subsystem.plug(4, panel);
    dirent **list = nullptr;
    const auto isNode = [](const dirent *entry) {
        return static_cast<int>(entry->d_name[0] == 'e');
    };
    ASSERT_EQ(::scandir("/dev/input", &list, isNode, ::alphasort), 1);
    EXPECT_STREQ(list[0]->d_name, "event4");
    ::free(list[0]);
    ::free(list);
}
#endif

TEST(Watcher, SeesADevicePluggedAndUnplugged)
{
    InputSubsystem subsystem;
    Watch watch(inputFolder);
    subsystem.plug(0, panel);
    EXPECT_EQ(watch.changes(), 1);
    subsystem.unplug(0);
    EXPECT_EQ(watch.changes(), 1);
    EXPECT_EQ(watch.changes(), 0);
}

TEST(Watcher, SeesALaterChangeOfPermissions)
{
    InputSubsystem subsystem;
    Watch watch(inputFolder);
    subsystem.plug(0, panel.withMode(0));
    EXPECT_EQ(watch.changes(), 1);
    subsystem.setPermissions(0, 0660);
    EXPECT_EQ(watch.changes(), 1);
}

TEST(Watcher, DoesNotSeeThatADeviceTookTheNodeOfAnother)
{
    InputSubsystem subsystem;
    subsystem.plug(0, panel.withMode(0600));
    Watch watch(inputFolder);
    const OpenNode before(subsystem.node(0).path());
    DeviceDescription other = panel;
    other.name = "other";
    InputNode &node = subsystem.replace(0, other);
    EXPECT_EQ(watch.changes(), 0);
    const OpenNode after(node.path());
    char name[16] = {};
    EXPECT_EQ(after.ioctl(EVIOCGNAME(sizeof(name)), name), 6);
    EXPECT_STREQ(name, "other");
    EXPECT_EQ(before.readError(), ENODEV);
    node.press(KEY_OK);
    EXPECT_THAT(after.read(), SizeIs(2));
    EXPECT_EQ(before.readError(), ENODEV);
}

TEST(Watcher, SeesTheDirectoryGoAndComeBackWithItsDevices)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    Watch watch(inputFolder);
    const OpenNode open(node.path());
    subsystem.removeInputDirectory();
    EXPECT_FALSE(QDir(inputFolder).exists());
    EXPECT_GE(watch.changes(), 1);
    EXPECT_EQ(watch.watcher.directories(), QStringList());
    EXPECT_EQ(OpenNode(node.path()).openError(), ENOENT);
    EXPECT_NE(::access("/dev/input/event0", F_OK), 0);
    node.press(KEY_OK);
    EXPECT_THAT(open.read(), SizeIs(2)) << "open descriptors keep working";

    EXPECT_TRUE(watch.watcher.addPath(deviceFolder));
    subsystem.createInputDirectory();
    EXPECT_EQ(watch.changes(), 1);
    EXPECT_TRUE(QDir(inputFolder).exists());
    EXPECT_TRUE(OpenNode(node.path()).isOpen());
}

TEST(Directory, CanBeRemovedAndMadeTwice)
{
    InputSubsystem subsystem;
    subsystem.createInputDirectory();
    subsystem.removeInputDirectory();
    subsystem.removeInputDirectory();
    EXPECT_FALSE(subsystem.inputDirectoryExists());
    subsystem.createInputDirectory();
    EXPECT_TRUE(subsystem.inputDirectoryExists());
}

TEST(Directory, GetsWhatChangedWhileItWasMissing)
{
    InputSubsystem subsystem;
    subsystem.plug(0, panel);
    subsystem.plug(1, panel);
    subsystem.removeInputDirectory();
    subsystem.unplug(0);
    subsystem.plug(2, panel);
    subsystem.setPermissions(1, 0);
    EXPECT_EQ(nodes(), QStringList());
    subsystem.createInputDirectory();
    EXPECT_EQ(nodes(), QStringList() << QStringLiteral("event1") << QStringLiteral("event2"));
    EXPECT_EQ(OpenNode(subsystem.node(1).path()).openError(), EACCES);
}

TEST(Directory, ThatComesAndGoesDoesSoWithItsNodes)
{
    InputSubsystem subsystem(InputSubsystem::Directory::ComesAndGoes);
    EXPECT_FALSE(QDir(inputFolder).exists());
    Watch watch(deviceFolder);
    subsystem.plug(0, panel);
    EXPECT_EQ(watch.changes(), 1);
    EXPECT_EQ(nodes(), QStringList(QStringLiteral("event0")));
    subsystem.plug(1, panel);
    subsystem.unplug(0);
    EXPECT_TRUE(QDir(inputFolder).exists());
    EXPECT_EQ(watch.changes(), 0);
    subsystem.unplug(1);
    EXPECT_FALSE(QDir(inputFolder).exists());
    EXPECT_EQ(watch.changes(), 1);
}
