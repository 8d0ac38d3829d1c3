#include "NodeTable.h"

#include "InputSubsystem.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>

#include <string>

using namespace Vorn::Sim;
using namespace Vorn::Workbench;
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
    info.hasCodes = true;
    return info;
}

} // namespace

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
              "         the library reads event0 to event9 only\n");
}

TEST(NodeTable, DoesNotCountKeysThatAreUnknown)
{
    NodeInfo info = infoOf("panel");
    info.hasCodes = false;
    info.device.codes.insert(EV_KEY, {});
    EXPECT_EQ(tableOf({info}),
              "NODE    NAME   KERNEL BUS  BUS  THE LIBRARY READS\n"
              "event0  panel  BUS_USB     USB  keys\n"
              "        codes unknown: it does not answer every request\n");
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
    EXPECT_THAT(table, HasSubstr(R"(\u001b[2J\nevil)"));
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

TEST(NodeTable, ListsWhatFitsAndCountsTheRest)
{
    // The line is a hundred columns wide, and room is kept for "and … more" unless all fit.
    const auto listOf = [](int last) {
        NodeInfo info = infoOf("panel");
        for (const int code : {KEY_ESC, KEY_1, KEY_2, KEY_3, KEY_4, KEY_5, KEY_6, KEY_7, KEY_8})
            info.device.declare(EV_KEY, code);
        info.device.declare(EV_KEY, last);
        return nodeTable({info}).split('\n').at(2).toStdString();
    };
    const std::string nine = "        10 keys: KEY_ESC, KEY_1, KEY_2, KEY_3, KEY_4, KEY_5, KEY_6, "
                             "KEY_7, KEY_8";
    EXPECT_EQ(listOf(KEY_F1), nine + ", KEY_F1");
    const std::string whole = nine + ", KEY_BRIGHTNESSDOWN";
    EXPECT_EQ(whole.size(), 100U);
    EXPECT_EQ(listOf(KEY_BRIGHTNESSDOWN), whole);
    EXPECT_EQ(listOf(KEY_BRIGHTNESS_AUTO), nine + " and 1 more") << "a character longer";
}

TEST(NodeTable, ColoursHeadingsDetailsAndProblems)
{
    NodeInfo used = infoOf("panel");
    used.device.declare(EV_SW, SW_LID);
    NodeInfo other = infoOf("mouse", 1);
    other.device.declare(EV_REL, REL_X);
    EXPECT_EQ(nodeTable({used, other}, true).toStdString(),
              "\x1b[1mNODE    NAME   KERNEL BUS  BUS  THE LIBRARY READS\x1b[0m\n"
              "event0  panel  BUS_USB     USB  switches\n"
              "        \x1b[2m1 switch: SW_LID (off)\x1b[0m\n"
              "\x1b[2mevent1  mouse  BUS_USB     USB  nothing\x1b[0m\n"
              "        \x1b[31mit has neither keys nor switches\x1b[0m\n");
}

TEST(NodeTable, HasADashForWhatIsUnknown)
{
    NodeInfo info = infoOf(QByteArray());
    info.hasIdentity = false;
    info.error = "permission denied";
    EXPECT_EQ(tableOf({info}),
              "NODE    NAME  KERNEL BUS  BUS  THE LIBRARY READS\n"
              "event0  -     -           -    nothing\n"
              "        permission denied\n");
}

TEST(NodeTable, CutsANameToFortyCharacters)
{
    EXPECT_THAT(tableOf({infoOf(QByteArray(40, 'x'))}),
                HasSubstr("event0  " + std::string(40, 'x') + "  BUS_USB"));
    EXPECT_THAT(tableOf({infoOf(QByteArray(41, 'x'))}),
                HasSubstr("event0  " + std::string(39, 'x') + "…  BUS_USB"));
}

TEST(NodeTable, SaysThatTheCodesOfASwitchAreUnknown)
{
    NodeInfo info = infoOf("panel");
    info.hasCodes = false;
    info.device.codes.insert(EV_SW, {});
    EXPECT_THAT(tableOf({info}),
                HasSubstr("\n        codes unknown: it does not answer every request\n"));
    info.device.codes.clear();
    info.device.codes.insert(EV_REL, {});
    EXPECT_THAT(tableOf({info}), Not(HasSubstr("unknown")));
}

TEST(NodeJson, SaysWhatIsDownAndOn)
{
    NodeInfo info = infoOf("panel", 4);
    info.device.declare(EV_KEY, KEY_A);
    info.device.keysDown = {KEY_A};
    info.device.switchesOn = {SW_LID};
    info.device.phys = "here";
    info.device.uniq = "7";
    EXPECT_EQ(nodeJson(info).toStdString(),
              R"({"bus":"USB","device":"/dev/input/event4","error":"","kernelBus":3,)"
              R"("kernelBusName":"BUS_USB","keySide":"used","keys":["KEY_A"],)"
              R"("keysDown":["KEY_A"],"name":"panel","number":4,"phys":"here","product":0,)"
              R"("readable":true,"reason":"",)"
              R"("switchSide":"no EV_SW: switches are not read","switches":[],)"
              R"("switchesOn":["SW_LID"],"uniq":"7","used":true,"vendor":0,"version":0})"
              "\n");
}
