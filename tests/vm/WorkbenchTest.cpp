#include "GuestTest.h"
#include "Program.h"
#include "UinputDevice.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <chrono>
#include <csignal>
#include <optional>
#include <thread>

namespace {

using testing::ElementsAre;

const QString workbench = QStringLiteral(VORN_WORKBENCH);
const QString profile = QStringLiteral(VORN_SOURCE_FOLDER "/examples/profiles/player.toml");
const UinputDescription panel = {
    "front-panel", BUS_HOST, {KEY_VOLUMEUP, KEY_VOLUMEDOWN, KEY_INFO, KEY_STOP, KEY_PLAY}, {}};

/// The objects that a program prints as JSON, one per line. Skips log lines and an incomplete last
/// line.
std::vector<QJsonObject> objects(Program &program)
{
    std::vector<QJsonObject> result;
    QList<QByteArray> lines = program.printed().split('\n');
    lines.removeLast();
    for (const QByteArray &line : lines) {
        if (!line.startsWith('{'))
            continue;
        const QJsonDocument document = QJsonDocument::fromJson(line);
        EXPECT_TRUE(document.isObject()) << line.constData();
        result.push_back(document.object());
    }
    return result;
}

std::string text(const QJsonValue &value)
{
    return value.toString().toStdString();
}

/// vorn-input monitor with the player's profile.
class LiveMonitor : public Program
{
public:
    explicit LiveMonitor(const QStringList &options = {})
        : Program(workbench,
                  QStringList{QStringLiteral("monitor"), QStringLiteral("--json"),
                              QStringLiteral("--profile"), profile}
                      + options)
    { }

    /// What was shown of a kind: events as "command state", devices as "change name".
    std::vector<std::string> shown(const QString &kind)
    {
        std::vector<std::string> result;
        for (const QJsonObject &object : objects(*this)) {
            if (object[QStringLiteral("kind")].toString() != kind)
                continue;
            const bool isEvent = kind == QStringLiteral("event");
            result.push_back(
                text(object[isEvent ? QStringLiteral("command") : QStringLiteral("change")]) + ' '
                + text(object[isEvent ? QStringLiteral("state") : QStringLiteral("name")]));
        }
        return result;
    }
    std::vector<std::string> events() { return shown(QStringLiteral("event")); }
    std::vector<std::string> devices() { return shown(QStringLiteral("device")); }

    [[nodiscard]] bool waitForEvents(std::size_t count)
    {
        return waitFor([&] { return events().size() >= count; });
    }
    [[nodiscard]] bool waitForDevices(std::size_t count)
    {
        return waitFor([&] { return devices().size() >= count; });
    }
};

class WorkbenchTest : public GuestTest
{ };

TEST_F(WorkbenchTest, ListsTheDevicesOfTheKernel)
{
    const UinputDevice keys(panel);
    UinputDevice jacks({"front-panel-jacks", BUS_USB, {}, {SW_LINEIN_INSERT}});
    jacks.set(SW_LINEIN_INSERT, true);

    Program program(workbench, {QStringLiteral("devices"), QStringLiteral("--json")});
    EXPECT_EQ(program.wait(), 0);
    const std::vector<QJsonObject> devices = objects(program);
    ASSERT_EQ(devices.size(), 2U) << program.printed().constData();
    EXPECT_EQ(text(devices[0][QStringLiteral("name")]), "front-panel");
    EXPECT_EQ(text(devices[0][QStringLiteral("bus")]), "LocalUI");
    EXPECT_EQ(devices[0][QStringLiteral("keys")].toArray().size(), 5);
    EXPECT_EQ(text(devices[1][QStringLiteral("name")]), "front-panel-jacks");
    EXPECT_EQ(text(devices[1][QStringLiteral("bus")]), "USB");
    EXPECT_EQ(devices[1][QStringLiteral("switches")].toArray(),
              QJsonArray{QStringLiteral("SW_LINEIN_INSERT")});
    EXPECT_EQ(devices[1][QStringLiteral("switchesOn")].toArray(),
              QJsonArray{QStringLiteral("SW_LINEIN_INSERT")});
}

TEST_F(WorkbenchTest, MonitorsADeviceThatComesAndGoes)
{
    // Without it the whole folder would vanish, and the library would miss the removal.
    const UinputDevice staying({"hostlink", BUS_VIRTUAL, {KEY_POWER}, {}});
    LiveMonitor monitor;
    ASSERT_TRUE(monitor.waitForDevices(1)) << monitor.printed().constData();
    std::optional<UinputDevice> device(panel);
    ASSERT_TRUE(monitor.waitForDevices(2)) << monitor.printed().constData();
    device->press(KEY_VOLUMEUP);
    device->release(KEY_VOLUMEUP);
    ASSERT_TRUE(monitor.waitForEvents(2)) << monitor.printed().constData();
    device.reset();
    ASSERT_TRUE(monitor.waitForDevices(3)) << monitor.printed().constData();
    device.emplace(panel);
    ASSERT_TRUE(monitor.waitForDevices(4)) << monitor.printed().constData();
    device->press(KEY_STOP);
    device->release(KEY_STOP);
    ASSERT_TRUE(monitor.waitForEvents(4)) << monitor.printed().constData();

    EXPECT_EQ(monitor.finish(SIGINT), 0);
    EXPECT_THAT(monitor.devices(),
                ElementsAre("added hostlink", "added front-panel", "removed front-panel",
                            "added front-panel"));
    EXPECT_THAT(monitor.events(),
                ElementsAre("VolumeUp KeyPressed", "VolumeUp KeyReleased", "Stop KeyPressed",
                            "Stop KeyReleased"));
}

TEST_F(WorkbenchTest, RecordsWhatEvemuPlaysOnAnotherDevice)
{
    const QString evemuDevice = QStringLiteral("/usr/bin/evemu-device");
    if (!QFile::exists(evemuDevice))
        GTEST_SKIP() << "evemu-device is missing (Debian package evemu-tools)";
    const QTemporaryDir folder;
    const QString session = folder.filePath(QStringLiteral("session"));
    std::vector<std::string> recorded;
    {
        LiveMonitor monitor({QStringLiteral("--record"), session});
        UinputDevice device(panel);
        ASSERT_TRUE(monitor.waitForDevices(1)) << monitor.printed().constData();
        device.press(KEY_INFO);
        ASSERT_TRUE(monitor.waitForEvents(1)) << monitor.printed().constData();
        // A replay ticks at other moments, so hold the key for a few ticks more.
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        device.release(KEY_INFO);
        device.press(KEY_STOP);
        device.press(KEY_PLAY);
        device.release(KEY_PLAY);
        device.release(KEY_STOP);
        ASSERT_TRUE(monitor.waitForEvents(4)) << monitor.printed().constData();
        EXPECT_EQ(monitor.finish(SIGINT), 0);
        recorded = monitor.events();
    }
    EXPECT_THAT(recorded,
                ElementsAre("Info KeyLongPress", "Info KeyReleased", "FactoryReset KeyPressed",
                            "FactoryReset KeyReleased"));
    ASSERT_TRUE(waitFor([] { return !QFile::exists(QStringLiteral("/dev/input/event0")); }));

    const QString recording = session + QStringLiteral("/event0.evemu");
    Program device(evemuDevice, {recording});
    LiveMonitor monitor;
    ASSERT_TRUE(monitor.waitForDevices(1))
        << device.printed().constData() << monitor.printed().constData();
    QProcess player;
    player.setStandardInputFile(recording);
    player.start(QStringLiteral("/usr/bin/evemu-play"), {QStringLiteral("/dev/input/event0")});
    ASSERT_TRUE(player.waitForFinished());
    EXPECT_EQ(player.exitCode(), 0) << player.readAllStandardError().constData();
    EXPECT_TRUE(monitor.waitForEvents(recorded.size())) << monitor.printed().constData();
    EXPECT_EQ(monitor.finish(SIGINT), 0);
    EXPECT_THAT(monitor.devices(), ElementsAre("added front-panel"));
    EXPECT_EQ(monitor.events(), recorded);

    Program simulation(workbench,
                       {QStringLiteral("simulate"), session + QStringLiteral("/session.umockdev")});
    EXPECT_EQ(simulation.wait(), 0) << simulation.printed().constData();
}

} // namespace
