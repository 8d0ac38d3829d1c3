#include "Recorder.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "Evemu.h"
#include "Ioctls.h"
#include "NodeInfo.h"
#include "Recording.h"
#include "ReplayScript.h"
#include "Session.h"
#include "SessionWriter.h"
#include "TextFile.h"
#include "Umockdev.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace Vorn::Workbench {

namespace {

constexpr int libraryNodes = 10;
constexpr qint64 second = 1'000'000;

constexpr char readme[] = R"(A recorded session of input devices

session.umockdev   the nodes
eventN.ioctl       what the node eventN answers
eventN.evemu       what it is, and what it sent
session.expect     the events that were published, as expectations
session.jsonl      everything that happened
replay.sh          plays the session on a program

As a test, without devices and in no time:

    vorn-input simulate session.umockdev

On a machine without the devices, in real time, with umockdev-run:

    ./replay.sh PROGRAM

On the device itself, or on one like it, in real time (as root):

    evemu-play /dev/input/eventN <eventN.evemu
)";

constexpr char expectationsHeader[] =
    "# The events that were published, in their order.\n"
    "#\n"
    "# vorn-input simulate session.umockdev\n"
    "#\n"
    "# plays the recorded devices, and fails if anything else is published.\n";

QByteArray eventsHeader(const QByteArray &node)
{
    return "#\n# E: seconds type code value; seconds from the start of the session.\n#\n"
           "# ./replay.sh PROGRAM plays it on a machine without the device, and\n"
           "# evemu-play /dev/input/"
        + node + " <" + node
        + ".evemu on the device.\n#\n"
          "# A replay delivers the first line at once, so it is one that means nothing.\n";
}

QByteArray answersHeader(const QByteArray &node)
{
    return "# What /dev/input/" + node
        + " answers, for ./replay.sh PROGRAM, that is\n"
          "# umockdev-run -d session.umockdev -i /dev/input/"
        + node + '=' + node + ".ioctl -- PROGRAM\n";
}

QByteArray nodeName(int number)
{
    return "event" + QByteArray::number(number);
}

// Every attempt to open a node that is missing costs umockdev something of which it has little; a
// file that is no device costs nothing.
QByteArray absentBlock(int number)
{
    const QByteArray node = nodeName(number);
    return "P: /devices/absent/" + node + "\nN: input/" + node + "=00\nE: DEVNAME=/dev/input/"
        + node + "\nE: SUBSYSTEM=input\n";
}

int numberOf(const QString &device)
{
    const QLatin1String prefix("/dev/input/event");
    bool isNumber = false;
    const int number = device.mid(prefix.size()).toInt(&isNumber);
    return device.startsWith(prefix) && isNumber ? number : -1;
}

// A comment stays on its line.
QByteArray onOneLine(const QString &text)
{
    return text.simplified().toUtf8();
}

QByteArray seconds(qint64 time)
{
    return QByteArray::number(static_cast<double>(time) / static_cast<double>(second), 'f', 6);
}

} // namespace

Recorder::Recorder(const QString &folder, const Profile *profile, bool showText)
    : m_folder(folder)
    , m_showsText(showText)
    , m_blanking(profile)
{ }

Recorder::~Recorder()
{
    close();
}

QString Recorder::path(const QString &name) const
{
    return QDir(m_folder).filePath(name);
}

QString Recorder::open()
{
    const QDir folder(m_folder);
    const QStringList present =
        folder.entryList({QStringLiteral("session.*"), QStringLiteral("event*.evemu"),
                          QStringLiteral("event*.ioctl")},
                         QDir::Files | QDir::Hidden | QDir::System);
    if (!present.isEmpty()) {
        return QStringLiteral("'%1' holds a recording already ('%2'); name another folder, or "
                              "remove it")
            .arg(m_folder, present.first());
    }
    if (!QDir().mkpath(m_folder))
        return QStringLiteral("cannot make the folder '%1'").arg(m_folder);
    m_error.clear();
    m_session = create(QStringLiteral("session.jsonl"), {});
    m_expectations = create(QStringLiteral("session.expect"), expectationsHeader);
    writeDevices();
    replace(QStringLiteral("README"), readme);
    const QString script = QStringLiteral("replay.sh");
    replace(script, replayScript);
    QFile::setPermissions(path(script),
                          QFile::permissions(path(script)) | QFileDevice::ExeOwner
                              | QFileDevice::ExeGroup | QFileDevice::ExeOther);
    return m_error;
}

std::unique_ptr<QFile> Recorder::create(const QString &name, const QByteArray &start)
{
    auto file = std::make_unique<QFile>(path(name));
    if (!file->open(QIODevice::WriteOnly | QIODevice::Append)) {
        fail(QStringLiteral("cannot write '%1': %2").arg(file->fileName(), file->errorString()));
        return nullptr;
    }
    append(file.get(), start);
    return file;
}

void Recorder::append(QFile *file, const QByteArray &text)
{
    if (!file)
        return;
    if (file->write(text) != text.size() || !file->flush())
        fail(QStringLiteral("cannot write '%1': %2").arg(file->fileName(), file->errorString()));
}

void Recorder::replace(const QString &name, const QByteArray &content)
{
    const QString error = writeFile(path(name), content);
    if (!error.isEmpty())
        fail(error);
}

void Recorder::fail(const QString &error)
{
    if (m_error.isEmpty())
        m_error = error;
}

QString Recorder::close()
{
    m_nodes.clear();
    m_session.reset();
    m_expectations.reset();
    return std::exchange(m_error, QString());
}

void Recorder::add(const SessionEntry &entry)
{
    if (!m_session)
        return;
    const auto kept = m_showsText ? entry : m_blanking.blanked(entry);
    if (const auto *change = std::get_if<DeviceChange>(&entry.what))
        addNode(*change, entry.time);
    if (kept)
        keep(*kept);
}

void Recorder::keep(const SessionEntry &entry)
{
    append(m_session.get(), toJsonLine(entry));
    if (const auto *start = std::get_if<SessionStart>(&entry.what)) {
        m_wallClock = start->wallClock;
        writeProfile(start->profile);
    } else if (const auto *record = std::get_if<RecordRead>(&entry.what)) {
        writeRecord(*record, entry.time);
    } else if (const auto *event = std::get_if<EventPublished>(&entry.what)) {
        writeExpectation(*event);
    }
}

void Recorder::addNode(const DeviceChange &change, qint64 time)
{
    const int number = numberOf(change.device);
    if (number < 0)
        return;
    const auto known = m_nodes.find(number);
    if (known != m_nodes.end()) {
        const QString what = change.added ? QStringLiteral("the device '%1' comes").arg(change.name)
                                          : QStringLiteral("the device goes");
        append(known->second.events.get(), "# " + seconds(time) + ": " + onOneLine(what) + '\n');
        if (change.added)
            m_blanking.describe(change.device, known->second.device);
        return;
    }
    if (!change.added)
        return;

    Node node;
    const NodeInfo info = readNode(change.device);
    node.device = info.device;
    // It may be gone by now.
    if (node.device.name.isNull())
        node.device.name = change.name.toUtf8();
    if (!info.hasIdentity)
        node.device.id.bustype = static_cast<__u16>(kernelBusOf(change.bus));
    m_blanking.describe(change.device, node.device);
    if (!m_showsText)
        node.device.keysDown = m_blanking.keysThatDoNotType(change.device, node.device.keysDown);

    const QByteArray name = nodeName(number);
    node.events =
        create(QString::fromLatin1(name + ".evemu"),
               evemuDescription(node.device) + eventsHeader(name) + evemuEvent(RecordedEvent()));
    replace(QString::fromLatin1(name + ".ioctl"), answersHeader(name) + ioctls(node.device));
    m_nodes[number] = std::move(node);
    writeDevices();
}

void Recorder::writeDevices()
{
    QByteArray text;
    const auto appendBlock = [&text](const QByteArray &block) {
        text += (text.isEmpty() ? "" : "\n") + block;
    };
    for (const auto &[number, node] : m_nodes)
        appendBlock(umockdevBlock(number, node.device));
    for (int number = 0; number < libraryNodes; ++number) {
        if (m_nodes.find(number) == m_nodes.end())
            appendBlock(absentBlock(number));
    }
    replace(QStringLiteral("session.umockdev"), text);
}

void Recorder::writeRecord(const RecordRead &record, qint64 time)
{
    const auto found = m_nodes.find(numberOf(record.device));
    // A record without a stamp is no record of the device, but an answer about a position.
    if (found == m_nodes.end() || record.stamp == 0)
        return;
    // The stamp says when it happened, unless the clock was set since.
    const qint64 stamped = record.stamp - m_wallClock;
    Node &node = found->second;
    const qint64 happened = stamped <= time && stamped > time - second ? stamped : time;
    node.lastTime = qMax(node.lastTime, happened);
    RecordedEvent event;
    event.time = node.lastTime;
    event.type = record.type;
    event.code = record.code;
    event.value = record.value;
    append(node.events.get(), evemuEvent(event));
}

void Recorder::writeExpectation(const EventPublished &event)
{
    const QString commandText = commandName(event.command);
    const QString stateText = stateName(event.state);
    QString line = QStringLiteral("expect %1 %2").arg(commandText, stateText);
    if (event.bus != InputEvent::Bus::NoBus)
        line += QLatin1Char(' ') + busName(event.bus);
    // What has no name cannot be expected.
    if (!command(commandText) || !state(stateText))
        line.prepend(QStringLiteral("# "));
    append(m_expectations.get(), line.toUtf8() + '\n');
}

// Named from the folder, where the expectations are read.
void Recorder::writeProfile(const QString &profile)
{
    if (profile.isEmpty())
        return;
    const QString path = QDir(QFileInfo(m_folder).absoluteFilePath())
                             .relativeFilePath(QFileInfo(profile).absoluteFilePath());
    append(m_expectations.get(), "profile \"" + path.toUtf8() + "\"\n");
}

} // namespace Vorn::Workbench
