#include "NodeInfo.h"

#include "InputSubsystem.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

using namespace Vorn::Sim;
using namespace Vorn::Workbench;
using testing::ElementsAre;

namespace {

const DeviceDescription panel =
    DeviceDescription::keyboard("front-panel", BUS_HOST, {KEY_VOLUMEUP, KEY_INFO})
        .withKeys({KEY_OK}, {KEY_OK})
        .withSwitches({SW_LINEIN_INSERT, SW_HEADPHONE_INSERT}, {SW_LINEIN_INSERT})
        .withId(BUS_HOST, 0x46d, 0xc31c, 0x110)
        .withAutoRepeat();

} // namespace

TEST(NodeInfo, TellsWhatTheDeviceAnswers)
{
    InputSubsystem subsystem;
    const NodeInfo info = readNode(subsystem.plug(3, panel).path());
    EXPECT_TRUE(info.isReadable()) << info.error.toStdString();
    EXPECT_EQ(info.number, 3);
    EXPECT_EQ(info.name().toStdString(), "front-panel");
    EXPECT_EQ(info.device.id.bustype, BUS_HOST);
    EXPECT_EQ(info.device.id.product, 0xc31c);
    EXPECT_TRUE(info.device.phys.isNull());
    EXPECT_THAT(info.device.codesOf(EV_KEY), ElementsAre(KEY_VOLUMEUP, KEY_OK, KEY_INFO));
    EXPECT_THAT(info.device.codesOf(EV_SW), ElementsAre(SW_HEADPHONE_INSERT, SW_LINEIN_INSERT));
    EXPECT_TRUE(info.device.has(EV_REP));
    EXPECT_TRUE(info.hasCodes);
    EXPECT_THAT(info.device.keysDown, ElementsAre(KEY_OK));
    EXPECT_THAT(info.device.switchesOn, ElementsAre(SW_LINEIN_INSERT));
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST(NodeInfo, TellsWhatTheLibraryMakesOfIt)
{
    InputSubsystem subsystem;
    const LibraryView both = readNode(subsystem.plug(0, panel).path()).libraryView();
    EXPECT_TRUE(both.isUsed && both.readsKeys && both.readsSwitches);
    EXPECT_EQ(both.bus, InputEvent::Bus::LocalUI);

    subsystem.plug(1, DeviceDescription::switchBox("hostlink", BUS_VIRTUAL, {SW_LID}));
    const LibraryView jacks = readNode("/dev/input/event1").libraryView();
    EXPECT_TRUE(jacks.isUsed);
    EXPECT_EQ(jacks.bus, InputEvent::Bus::Hostlink);
    EXPECT_EQ(jacks.keyReason.toStdString(),
              "no EV_KEY: keys are not read, and the library logs a warning");

    subsystem.plug(2, DeviceDescription().withEventTypes({EV_REL}));
    EXPECT_EQ(readNode("/dev/input/event2").libraryView().reason.toStdString(),
              "it has neither keys nor switches");

    subsystem.plug(10, panel);
    const LibraryView far = readNode("/dev/input/event10").libraryView();
    EXPECT_FALSE(far.isUsed);
    EXPECT_EQ(far.reason.toStdString(), "the library reads event0 to event9 only");
}

TEST(NodeInfo, SaysWhyANodeCannotBeRead)
{
    InputSubsystem subsystem;
    EXPECT_EQ(readNode("/dev/input/event0").error.toStdString(), "no such node");
    InputNode &node = subsystem.plug(0, panel.withMode(0));
    const NodeInfo denied = readNode(node.path());
    EXPECT_EQ(denied.error.toStdString(),
              "permission denied; add yourself to the group 'input' and log in again");
    EXPECT_EQ(denied.libraryView().reason.toStdString(), denied.error.toStdString());
    subsystem.setPermissions(0, 0660);
    node.failOpen(ENODEV);
    EXPECT_EQ(readNode(node.path()).error.toStdString(), "the device is gone");
    node.failOpen(EMFILE);
    EXPECT_EQ(readNode(node.path()).error.toStdString(), "too many open files");
}

TEST(NodeInfo, LeavesOutWhatIsNotAnswered)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    node.failIoctl(EVIOCGNAME(0), EIO);
    NodeInfo info = readNode(node.path());
    EXPECT_TRUE(info.isReadable());
    EXPECT_TRUE(info.device.name.isNull());
    EXPECT_EQ(info.libraryView().reason.toStdString(), "it does not report its name");

    node.clearFailures();
    node.failIoctl(EVIOCGID, EIO);
    info = readNode(node.path());
    EXPECT_EQ(info.libraryView().bus, InputEvent::Bus::NoBus);
    EXPECT_TRUE(info.libraryView().isUsed);

    node.clearFailures();
    node.failIoctl(EVIOCGBIT(0, 0), EIO);
    info = readNode(node.path());
    EXPECT_FALSE(info.libraryView().isUsed);
    EXPECT_EQ(info.libraryView().reason.toStdString(), "it does not report its event types");
}

// A recording answers the requests that were recorded, and no other.
TEST(NodeInfo, KnowsWhatTheLibraryDoesOfANodeThatFailsAnotherRequest)
{
    InputSubsystem subsystem;
    InputNode &node = subsystem.plug(0, panel);
    for (const unsigned long request :
         {static_cast<unsigned long>(EVIOCGVERSION), static_cast<unsigned long>(EVIOCGPHYS(0)),
          static_cast<unsigned long>(EVIOCGBIT(EV_LED, 0)),
          static_cast<unsigned long>(EVIOCGKEY(0))})
    {
        node.failIoctl(request, EIO);
        const NodeInfo info = readNode(node.path());
        EXPECT_TRUE(info.isReadable()) << request;
        EXPECT_FALSE(info.hasCodes) << request;
        EXPECT_EQ(info.name().toStdString(), "front-panel");
        EXPECT_EQ(info.libraryView().bus, InputEvent::Bus::LocalUI);
        EXPECT_TRUE(info.libraryView().readsKeys);
        EXPECT_TRUE(info.libraryView().readsSwitches);
        EXPECT_TRUE(info.device.codesOf(EV_KEY).isEmpty());
        node.clearFailures();
    }
    EXPECT_EQ(subsystem.openDescriptors(), 0);
}

TEST(NodeInfo, TellsAFileFromADevice)
{
    QTemporaryDir folder;
    QFile file(folder.filePath("event0"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const NodeInfo info = readNode(file.fileName());
    EXPECT_FALSE(info.isDevice);
    EXPECT_FALSE(info.isReadable());
    EXPECT_EQ(info.error.toStdString(), "a file, not a device");
    EXPECT_EQ(info.number, -1);
    const NodeInfo null = readNode("/dev/null");
    EXPECT_TRUE(null.isDevice);
    EXPECT_EQ(null.error.toStdString(), "it does not respond like an input device");
}

TEST(NodeInfo, DoesNotOpenWhatIsNoDevice)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("event0");
    ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    const int watch = inotify_init1(IN_NONBLOCK);
    ASSERT_GE(inotify_add_watch(watch, QFile::encodeName(path).constData(), IN_OPEN), 0);
    const NodeInfo info = readNode(path);
    EXPECT_FALSE(info.isDevice);
    EXPECT_FALSE(info.isReadable());
    char opened[1024];
    EXPECT_EQ(read(watch, opened, sizeof opened), -1);
    close(watch);
}

TEST(InputNodes, AreListedByNumber)
{
    InputSubsystem subsystem;
    EXPECT_TRUE(inputNodes().isEmpty());
    for (const int number : {10, 2, 0})
        subsystem.plug(number, panel);
    EXPECT_EQ(inputNodes().join(' ').toStdString(),
              "/dev/input/event0 /dev/input/event2 /dev/input/event10");
    QString error;
    subsystem.removeInputDirectory();
    EXPECT_TRUE(inputNodes(&error).isEmpty());
    EXPECT_EQ(error.toStdString(), "");
}

TEST(NodeInfo, SaysWhyTheLibraryDoesNotReadASide)
{
    NodeInfo info;
    info.number = 9;
    info.hasIdentity = true;
    info.device.name = "panel";
    info.device.id.bustype = BUS_USB;
    const LibraryView silent = info.libraryView();
    EXPECT_FALSE(silent.isUsed);
    EXPECT_EQ(silent.bus, InputEvent::Bus::USB);
    EXPECT_EQ(silent.reason.toStdString(), "it does not report its event types");
    EXPECT_EQ(silent.keyReason.toStdString(),
              "it does not report its event types: keys are not read, and the library logs a "
              "warning");
    EXPECT_EQ(silent.switchReason.toStdString(),
              "it does not report its event types: switches are not read");
    info.hasTypes = true;
    const LibraryView none = info.libraryView();
    EXPECT_EQ(none.reason.toStdString(), "it has neither keys nor switches");
    EXPECT_EQ(none.keyReason.toStdString(),
              "no EV_KEY: keys are not read, and the library logs a warning");
    EXPECT_EQ(none.switchReason.toStdString(), "no EV_SW: switches are not read");
    info.device.codes.insert(EV_SW, {});
    const LibraryView switches = info.libraryView();
    EXPECT_TRUE(switches.isUsed && switches.readsSwitches && !switches.readsKeys);
    EXPECT_EQ(switches.reason.toStdString(), "");
    EXPECT_EQ(switches.switchReason.toStdString(), "");
    info.device.codes.insert(EV_KEY, {});
    const LibraryView both = info.libraryView();
    EXPECT_TRUE(both.isUsed && both.readsSwitches && both.readsKeys);
    EXPECT_EQ(both.keyReason.toStdString(), "");
}

TEST(NodeInfo, SaysWhyTheLibraryDoesNotUseANode)
{
    NodeInfo info;
    info.hasTypes = true;
    info.device.name = "panel";
    info.device.codes.insert(EV_KEY, {});
    const auto reasonAt = [&info](int number) {
        info.number = number;
        const LibraryView view = info.libraryView();
        EXPECT_EQ(view.isUsed, view.reason.isEmpty());
        EXPECT_TRUE(view.isUsed || (view.keyReason == view.reason && !view.readsKeys));
        EXPECT_TRUE(view.isUsed || view.switchReason == view.reason);
        return view.reason.toStdString();
    };
    EXPECT_EQ(reasonAt(-1), "the library reads event0 to event9 only");
    EXPECT_EQ(reasonAt(0), "");
    EXPECT_EQ(reasonAt(9), "");
    EXPECT_EQ(reasonAt(10), "the library reads event0 to event9 only");
    info.device.name = QByteArray();
    EXPECT_EQ(reasonAt(0), "it does not report its name");
    info.error = "no such node";
    EXPECT_EQ(reasonAt(0), "no such node");
    EXPECT_EQ(reasonAt(10), "the library reads event0 to event9 only");
}
