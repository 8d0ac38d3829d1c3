#include "GuestTest.h"
#include "Program.h"
#include "UinputDevice.h"

#include <QFile>
#include <QTemporaryFile>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <iostream>
#include <memory>
#include <thread>

namespace {

const QString player = QStringLiteral(VORN_PLAYER);

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s: %s", qPrintable(path), qPrintable(file.errorString()));
    return file.readAll();
}

/// A record of the recorded session.
struct RecordedRecord
{
    qint64 usecs; ///< since the start of the session
    std::size_t device;
    input_event record;
};

/// Reads the records of an evemu file: lines "E: <seconds> <type> <code> <value>", with type and
/// code in hexadecimal.
std::vector<RecordedRecord> readRecording(const QString &path, std::size_t device)
{
    std::vector<RecordedRecord> records;
    for (const QByteArray &line : contentOf(path).split('\n')) {
        if (!line.startsWith("E:"))
            continue;
        const QList<QByteArray> words = line.mid(2).simplified().split(' ');
        if (words.size() < 4)
            qFatal("%s: not a record: %s", qPrintable(path), line.constData());
        const QByteArray time = QByteArray(words[0]).remove(words[0].indexOf('.'), 1);
        RecordedRecord recorded = {time.toLongLong(), device, {}};
        recorded.record.type = words[1].toUShort(nullptr, 16);
        recorded.record.code = words[2].toUShort(nullptr, 16);
        recorded.record.value = words[3].toInt();
        records.push_back(recorded);
    }
    return records;
}

class PlayerTest : public GuestTest
{ };

TEST_F(PlayerTest, PrintsTheRecordedSessionOnRealDevices)
{
    struct Recorded
    {
        const char *name;
        unsigned int bus;
    };
    // In the order of their nodes.
    const Recorded recordedDevices[] = {{"front-panel", BUS_HOST},
                                        {"ir-receiver", BUS_I2C},
                                        {"hostlink", BUS_VIRTUAL},
                                        {"front-panel-jacks", BUS_HOST}};
    const QString source = QStringLiteral(VORN_SOURCE_FOLDER);
    std::vector<RecordedRecord> session;
    std::vector<std::unique_ptr<UinputDevice>> devices;
    for (const Recorded &recorded : recordedDevices) {
        const auto records =
            readRecording(source + QStringLiteral("/examples/player/recordings/")
                              + QString::fromLatin1(recorded.name) + QStringLiteral(".evemu"),
                          devices.size());
        UinputDescription description{recorded.name, recorded.bus, {}, {}};
        for (const RecordedRecord &entry : records) {
            if (entry.record.type == EV_KEY)
                description.keys.push_back(entry.record.code);
            else if (entry.record.type == EV_SW)
                description.switches.push_back(entry.record.code);
        }
        devices.push_back(std::make_unique<UinputDevice>(description));
        session.insert(session.end(), records.begin(), records.end());
    }
    std::stable_sort(session.begin(), session.end(),
                     [](const auto &a, const auto &b) { return a.usecs < b.usecs; });
    ASSERT_GT(session.size(), 50U);

    Program program(player);
    // It has printed what it found out about the devices.
    ASSERT_TRUE(waitFor([&] { return program.lines() >= 2; }));
    for (const QByteArray &line :
         contentOf(QStringLiteral("/proc/%1/smaps_rollup").arg(program.processId())).split('\n'))
    {
        if (line.startsWith("Private_"))
            std::cout << "the idle player's " << line.simplified().constData() << '\n';
    }
    const auto begin = std::chrono::steady_clock::now();
    for (const RecordedRecord &entry : session) {
        std::this_thread::sleep_until(begin + std::chrono::microseconds(entry.usecs));
        const input_event &record = entry.record;
        if (::write(devices[entry.device]->descriptor(), &record, sizeof(record)) != sizeof(record))
            qFatal("the kernel refuses a record: %s", std::strerror(errno));
    }
    const QByteArray expected =
        contentOf(source + QStringLiteral("/tests/integration/session.expected"));
    EXPECT_TRUE(waitFor([&] { return program.lines() >= expected.count('\n'); }));
    EXPECT_EQ(program.finish(), 0);
    EXPECT_EQ(program.printed().toStdString(), expected.toStdString());
}

TEST_F(PlayerTest, AnOrdinaryUsersProcessFindsANodeThatIsOpenedUpLater)
{
    QTemporaryFile configuration;
    ASSERT_TRUE(configuration.open());
    configuration.write("log4cplus.rootLogger=DEBUG, STDERR\n"
                        "log4cplus.appender.STDERR=log4cplus::ConsoleAppender\n"
                        "log4cplus.appender.STDERR.logToStdErr=true\n"
                        "log4cplus.appender.STDERR.layout=log4cplus::PatternLayout\n"
                        "log4cplus.appender.STDERR.layout.ConversionPattern=%-5p %c: %m%n\n");
    configuration.close();
    ASSERT_TRUE(configuration.setPermissions(QFileDevice::ReadOwner | QFileDevice::ReadOther));

    // Another device keeps the folder in existence, so that it is watched from the start.
    UinputDevice other({"hostlink", BUS_VIRTUAL, {KEY_POWER}, {}});
    ASSERT_EQ(::chmod(qPrintable(other.node()), 0444), 0);
    Program program(player, {QStringLiteral("--config"), configuration.fileName()},
                    Program::User::Nobody);
    const auto hasPrinted = [&](const char *line) {
        return waitFor([&] { return program.printed().contains(line); });
    };
    ASSERT_TRUE(hasPrinted("DEBUG BasicInputHandler:  ---> added '/dev/input/event0'\n"))
        << program.printed().constData();

    UinputDevice panel({"front-panel", BUS_HOST, {KEY_VOLUMEUP}, {}});
    ASSERT_EQ(::chmod(qPrintable(panel.node()), 0), 0);
    // A third one guarantees a scan after the arrival of the second.
    UinputDevice third({"third", BUS_HOST, {KEY_OK}, {}});
    ASSERT_EQ(::chmod(qPrintable(third.node()), 0444), 0);
    ASSERT_TRUE(hasPrinted("DEBUG BasicInputHandler:  ---> added '/dev/input/event2'\n"))
        << program.printed().constData();
    EXPECT_FALSE(program.printed().contains("event1")) << program.printed().constData();

    ASSERT_EQ(::chmod(qPrintable(panel.node()), 0444), 0);
    ASSERT_TRUE(hasPrinted("DEBUG BasicInputHandler:  ---> added '/dev/input/event1'\n"))
        << program.printed().constData();
    EXPECT_TRUE(hasPrinted("DEBUG LinuxInputListener: name: front-panel\n"));
    panel.press(KEY_VOLUMEUP);
    panel.release(KEY_VOLUMEUP);
    EXPECT_TRUE(hasPrinted("[cmd=VolumeUp, state=KeyReleased, bus=LocalUI]\n"))
        << program.printed().constData();

    // Making it unreadable again has the same effect as unplugging it.
    ASSERT_EQ(::chmod(qPrintable(panel.node()), 0), 0);
    EXPECT_TRUE(hasPrinted("INFO  BasicInputHandler: Removing /dev/input/event1\n"));
    EXPECT_EQ(program.finish(), 0);
    EXPECT_FALSE(program.printed().contains("ERROR")) << program.printed().constData();
}

} // namespace
