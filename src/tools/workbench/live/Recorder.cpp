#include "Recorder.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "Evemu.h"
#include "EventNames.h"
#include "Ioctls.h"
#include "LibraryFacts.h"
#include "NodeInfo.h"
#include "Recording.h"
#include "ReplayFiles.h"
#include "Session.h"
#include "SessionWriter.h"
#include "Umockdev.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <linux/input.h>

namespace Vorn::Workbench {

namespace {

constexpr qint64 second = 1'000'000;

QByteArray nodeName(int number)
{
    return "event" + QByteArray::number(number);
}

// umockdev leaks one of a few slots with every attempt to open a missing node, and the library
// tries all of them. A file that is not a device costs nothing.
QByteArray absentBlock(int number)
{
    const QByteArray node = nodeName(number);
    return "P: /devices/absent/" + node + "\nN: input/" + node + "=00\nE: DEVNAME=/dev/input/"
        + node + "\nE: SUBSYSTEM=input\n";
}

int numberOf(const QString &device)
{
    const QLatin1String prefix("/dev/input/event");
    const QString rest = device.mid(prefix.size());
    bool isNumber = false;
    const int number = rest.toInt(&isNumber);
    return device.startsWith(prefix) && isNumber ? number : -1;
}

// A device may have a line break in its name, which would end a comment.
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
    : m_folder(folder,
               showText ? RecordingFolder::Readers::Owner : RecordingFolder::Readers::AsUsual)
    , m_showsText(showText)
    , m_blanking(profile)
{ }

Recorder::~Recorder()
{
    close();
}

QString Recorder::open()
{
    QString error = m_folder.open();
    if (!error.isEmpty())
        return error;
    m_session = m_folder.create(QStringLiteral("session.jsonl"), {});
    m_expectations = m_folder.create(QStringLiteral("session.expect"), expectationsHeader());
    writeDevices();
    m_folder.replace(QStringLiteral("README"), replayReadme());
    m_folder.replace(QStringLiteral("replay.sh"), replayScript());
    m_folder.makeExecutable(QStringLiteral("replay.sh"));
    error = m_folder.error();
    if (!error.isEmpty()) {
        closeFiles();
        m_folder.discard();
    }
    return error;
}

QString Recorder::close()
{
    closeFiles();
    return m_folder.error();
}

void Recorder::closeFiles()
{
    m_nodes.clear();
    m_session.reset();
    m_expectations.reset();
}

void Recorder::add(const SessionEntry &entry)
{
    if (!m_session)
        return;
    noteKeys(entry);
    // In this order: the blanking must know of a device before its description is read.
    const auto kept = m_showsText ? entry : m_blanking.blanked(entry);
    if (const auto *change = std::get_if<DeviceChange>(&entry.what))
        addNode(*change, entry.time);
    if (kept)
        keep(*kept);
    // With a gap in it, the rest would tell of something that did not happen.
    if (!m_folder.error().isEmpty())
        closeFiles();
}

// Before the entry is blanked, which may make another key of it.
void Recorder::noteKeys(const SessionEntry &entry)
{
    const auto *record = std::get_if<RecordRead>(&entry.what);
    if (!record || record->type != EV_KEY || record->value != 1)
        return;
    if (m_showsText || !m_blanking.keysThatDoNotType(record->device, {record->code}).isEmpty())
        m_keysKept.insert(record->code);
    else
        ++m_blankedPresses;
}

QString Recorder::summary() const
{
    QStringList kept;
    for (const int code : m_keysKept)
        kept += keyName(code);
    const QString keys = kept.isEmpty() ? QStringLiteral("none") : kept.join(QStringLiteral(", "));
    if (m_showsText) {
        return QStringLiteral("recorded in '%1', with everything that was typed; keys: %2")
            .arg(m_folder.path(), keys);
    }
    const QString blanked = m_blankedPresses == 1
        ? QStringLiteral("1 typed key is blanked")
        : QStringLiteral("%1 typed keys are blanked").arg(m_blankedPresses);
    return QStringLiteral("recorded in '%1'; %2; keys recorded as they are: %3")
        .arg(m_folder.path(), blanked, keys);
}

void Recorder::keep(const SessionEntry &entry)
{
    m_folder.append(m_session.get(), toJsonLine(entry));
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
        const QString what = change.added
            ? QStringLiteral("device '%1' plugged in").arg(change.name)
            : QStringLiteral("device unplugged");
        m_folder.append(known->second.events.get(),
                        "# " + seconds(time) + ": " + onOneLine(what) + '\n');
        m_blanking.describe(change.device, known->second.device);
        return;
    }
    if (!change.added)
        return;

    Node node;
    const NodeInfo info = readNode(change.device);
    node.device = info.device;
    // It may be gone already, and what is known of it must do.
    if (node.device.name.isNull())
        node.device.name = change.name.toUtf8();
    if (!info.hasIdentity)
        node.device.id.bustype = static_cast<__u16>(kernelBusOf(change.bus));
    m_blanking.describe(change.device, node.device);
    // The keys that are down at the start are part of what was typed.
    if (!m_showsText)
        node.device.keysDown = m_blanking.keysThatDoNotType(change.device, node.device.keysDown);
    m_keysKept.insert(node.device.keysDown.cbegin(), node.device.keysDown.cend());

    const QByteArray name = nodeName(number);
    node.events = m_folder.create(QString::fromLatin1(name + ".evemu"),
                                  evemuDescription(node.device) + eventsHeader(name)
                                      + evemuEvent(RecordedEvent()));
    m_folder.replace(QString::fromLatin1(name + ".ioctl"),
                     answersHeader(name) + ioctls(node.device));
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
    for (int number = 0; number < nodeCount; ++number) {
        if (m_nodes.find(number) == m_nodes.end())
            appendBlock(absentBlock(number));
    }
    m_folder.replace(QStringLiteral("session.umockdev"), text);
}

void Recorder::writeRecord(const RecordRead &record, qint64 time)
{
    const auto found = m_nodes.find(numberOf(record.device));
    // A record without a stamp is the answer to a request for a position; the device did not send
    // it.
    if (found == m_nodes.end() || record.stamp == 0)
        return;
    // The stamp says when it happened, unless the clock has been set in the meantime.
    const qint64 stamped = record.stamp - m_wallClock;
    Node &node = found->second;
    const qint64 happened = stamped <= time && stamped > time - second ? stamped : time;
    node.lastTime = qMax(node.lastTime, happened);
    RecordedEvent event;
    event.time = node.lastTime;
    event.type = record.type;
    event.code = record.code;
    event.value = record.value;
    m_folder.append(node.events.get(), evemuEvent(event));
}

void Recorder::writeExpectation(const EventPublished &event)
{
    const QString commandText = commandName(event.command);
    const QString stateText = stateName(event.state);
    QString line = QStringLiteral("expect %1 %2").arg(commandText, stateText);
    if (event.bus != InputEvent::Bus::NoBus)
        line += QLatin1Char(' ') + busName(event.bus);
    // An expectation needs names, and a number that has none cannot be read back.
    if (!command(commandText) || !state(stateText))
        line.prepend(QStringLiteral("# "));
    m_folder.append(m_expectations.get(), line.toUtf8() + '\n');
}

// Relative to the folder, because that is where the expectations are read.
void Recorder::writeProfile(const QString &profile)
{
    if (profile.isEmpty())
        return;
    const QString path = QDir(QFileInfo(m_folder.path()).absoluteFilePath())
                             .relativeFilePath(QFileInfo(profile).absoluteFilePath());
    m_folder.append(m_expectations.get(), "profile \"" + path.toUtf8() + "\"\n");
}

} // namespace Vorn::Workbench
