#include "NodeInfo.h"

#include "InputSubsystem.h"
#include "NodeTable.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <cerrno>
#include <string>

using namespace Vorn::Sim;
using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

const DeviceDescription panel =
    DeviceDescription::keyboard("front-panel", BUS_HOST, {KEY_VOLUMEUP, KEY_INFO})
        .withKeys({KEY_OK}, {KEY_OK})
        .withSwitches({SW_LINEIN_INSERT, SW_HEADPHONE_INSERT}, {SW_LINEIN_INSERT})
        .withId(BUS_HOST, 0x46d, 0xc31c, 0x110)
        .withAutoRepeat();

std::string tableOf(const QVector<NodeInfo> &nodes)
{
    return nodeTable(nodes).toStdString();
}

QJsonObject jsonOf(const NodeInfo &node)
{
    return QJsonDocument::fromJson(nodeJson(node)).object();
}

NodeInfo infoOf(const QByteArray &name, int number = 0)
{
    NodeInfo info;
    info.number = number;
    info.path = QStringLiteral("/dev/input/event%1").arg(number);
    info.device.name = name;
    info.device.id.bustype = BUS_USB;
    info.hasIdentity = true;
    info.hasTypes = true;
    return info;
}

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
              "no EV_KEY: keys are not read, the library warns of it");

    subsystem.plug(2, DeviceDescription().withEventTypes({EV_REL}));
    EXPECT_EQ(readNode("/dev/input/event2").libraryView().reason.toStdString(),
              "it has neither keys nor switches");

    subsystem.plug(10, panel);
    const LibraryView far = readNode("/dev/input/event10").libraryView();
    EXPECT_FALSE(far.isUsed);
    EXPECT_EQ(far.reason.toStdString(), "the library looks at event0 to event9 only");
}

TEST(NodeInfo, SaysWhyANodeCannotBeRead)
{
    InputSubsystem subsystem;
    EXPECT_EQ(readNode("/dev/input/event0").error.toStdString(), "there is no such node");
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
    EXPECT_EQ(info.libraryView().reason.toStdString(), "it does not tell its name");

    node.clearFailures();
    node.failIoctl(EVIOCGID, EIO);
    info = readNode(node.path());
    EXPECT_EQ(info.libraryView().bus, InputEvent::Bus::NoBus);
    EXPECT_TRUE(info.libraryView().isUsed);

    node.clearFailures();
    node.failIoctl(EVIOCGBIT(0, 0), EIO);
    info = readNode(node.path());
    EXPECT_FALSE(info.libraryView().isUsed);
    EXPECT_EQ(info.libraryView().reason.toStdString(), "it does not tell its event types");
}

TEST(NodeInfo, TellsAFileFromADevice)
{
    QTemporaryDir folder;
    QFile file(folder.filePath("event0"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const NodeInfo info = readNode(file.fileName());
    EXPECT_FALSE(info.isDevice);
    EXPECT_FALSE(info.isReadable());
    EXPECT_EQ(info.number, -1);
    const NodeInfo null = readNode("/dev/null");
    EXPECT_TRUE(null.isDevice);
    EXPECT_EQ(null.error.toStdString(), "it does not answer as an input device does");
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

TEST(NodeTable, ShowsEachNodeWithItsKeysAndSwitches)
{
    InputSubsystem subsystem;
    subsystem.plug(0, panel);
    subsystem.plug(12, DeviceDescription::keyboard("remote", BUS_I2C, {KEY_OK}));
    QVector<NodeInfo> nodes;
    for (const QString &path : inputNodes())
        nodes += readNode(path);
    EXPECT_EQ(tableOf(nodes),
              "NODE     NAME         KERNEL BUS  BUS      THE LIBRARY READS\n"
              "event0   front-panel  BUS_HOST    LocalUI  keys, switches\n"
              "         3 keys: KEY_VOLUMEUP, KEY_OK, KEY_INFO\n"
              "         2 switches: SW_HEADPHONE_INSERT (off), SW_LINEIN_INSERT (on)\n"
              "event12  remote       BUS_I2C     I2C      nothing\n"
              "         1 key: KEY_OK\n"
              "         the library looks at event0 to event9 only\n");
}

TEST(NodeTable, ShortensListsToAHundredColumns)
{
    NodeInfo info = infoOf("keyboard");
    for (int code = 1; code < 100; ++code)
        info.device.declare(EV_KEY, code);
    const QStringList lines = nodeTable({info}).split('\n');
    for (const QString &line : lines)
        EXPECT_LE(line.size(), 100) << line.toStdString();
    EXPECT_THAT(lines.at(2).toStdString(),
                testing::StartsWith("        99 keys: KEY_ESC, KEY_1, "));
    EXPECT_THAT(lines.at(2).toStdString(), testing::EndsWith(" more"));
}

TEST(NodeTable, DoesNotSendToTheTerminalWhatADeviceIsNamed)
{
    const NodeInfo info = infoOf("\x1b[2J\nevil" + QByteArray(300, 'x'));
    const std::string table = tableOf({info});
    EXPECT_THAT(table, Not(HasSubstr("\x1b")));
    EXPECT_THAT(table, HasSubstr("?[2J?evil"));
    EXPECT_THAT(nodeTable({info}, true).toStdString(), HasSubstr("\x1b[1mNODE"));
}

TEST(NodeJson, TellsEverythingOnOneLine)
{
    InputSubsystem subsystem;
    const NodeInfo info = readNode(subsystem.plug(0, panel).path());
    EXPECT_EQ(nodeJson(info).count('\n'), 1);
    const QJsonObject json = jsonOf(info);
    EXPECT_EQ(json.value("device").toString().toStdString(), "/dev/input/event0");
    EXPECT_EQ(json.value("number").toInt(-1), 0);
    EXPECT_EQ(json.value("name").toString().toStdString(), "front-panel");
    EXPECT_EQ(json.value("kernelBus").toInt(), BUS_HOST);
    EXPECT_EQ(json.value("kernelBusName").toString().toStdString(), "BUS_HOST");
    EXPECT_EQ(json.value("bus").toString().toStdString(), "LocalUI");
    EXPECT_EQ(json.value("vendor").toInt(), 0x46d);
    EXPECT_EQ(json.value("product").toInt(), 0xc31c);
    EXPECT_EQ(json.value("version").toInt(), 0x110);
    EXPECT_EQ(json.value("keys").toVariant().toStringList().join(' ').toStdString(),
              "KEY_VOLUMEUP KEY_OK KEY_INFO");
    EXPECT_EQ(json.value("switches").toVariant().toStringList().join(' ').toStdString(),
              "SW_HEADPHONE_INSERT SW_LINEIN_INSERT");
    EXPECT_TRUE(json.value("readable").toBool());
    EXPECT_TRUE(json.value("used").toBool());
    EXPECT_EQ(json.value("keySide").toString().toStdString(), "used");
    EXPECT_EQ(json.value("reason").toString().toStdString(), "");
}

TEST(NodeJson, TellsWhyANodeIsNotUsed)
{
    InputSubsystem subsystem;
    const QJsonObject json = jsonOf(readNode(subsystem.plug(0, panel.withMode(0)).path()));
    EXPECT_FALSE(json.value("readable").toBool(true));
    EXPECT_FALSE(json.value("used").toBool(true));
    EXPECT_THAT(json.value("error").toString().toStdString(), HasSubstr("permission denied"));
    EXPECT_THAT(json.value("reason").toString().toStdString(), HasSubstr("permission denied"));
    EXPECT_THAT(json.value("keySide").toString().toStdString(), HasSubstr("permission denied"));
}
