#include "SessionReader.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "Diagnostic.h"
#include "EventNames.h"
#include "Session.h"
#include "SessionFormat.h"
#include "SessionMembers.h"
#include "TextPosition.h"

#include <QBuffer>
#include <QJsonDocument>
#include <QJsonObject>

#include <linux/input.h>

#include <limits>

namespace Vorn::Workbench {

namespace {

/// A file that is not a session at all would give an error for every line.
constexpr int maxDiagnostics = 20;
constexpr int maxCode = 0xffff;
constexpr int chunkSize = 64 * 1024;
/// A device like /dev/zero has no line ends.
constexpr int maxLineMiB = 64;

SessionStart readStart(SessionMembers &members)
{
    // Only a later version may give known members another meaning; additions keep the version.
    const int version = members.integer("version", 1, std::numeric_limits<int>::max());
    if (version > sessionVersion)
        members.fail("version",
                     QStringLiteral("is %1, but this vorn-input reads only version %2")
                         .arg(version)
                         .arg(sessionVersion));
    return {members.text("source"), members.text("profile"), members.wallClock("wallClock")};
}

DeviceChange readDevice(SessionMembers &members)
{
    const QString change = members.text("change");
    if (change != QLatin1String("added") && change != QLatin1String("removed"))
        members.fail("change", QStringLiteral("must be 'added' or 'removed'"));
    return {members.text("device"), members.text("name"),
            members.named<InputEvent::Bus>("bus", bus), change == QLatin1String("added")};
}

RecordRead readRecord(SessionMembers &members)
{
    return {
        members.text("device"), members.integer("typeNumber", 0, maxCode),
        members.integer("codeNumber", 0, maxCode),
        members.integer("value", std::numeric_limits<int>::min(), std::numeric_limits<int>::max()),
        members.time("stamp")};
}

RecordOutcome readOutcome(SessionMembers &members, RecordOutcome::What what)
{
    RecordOutcome outcome;
    outcome.what = what;
    outcome.device = members.text("device");
    outcome.type = members.integer("typeNumber", 0, maxCode);
    outcome.code = members.integer("codeNumber", 0, maxCode);
    outcome.value =
        members.integer("value", std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    if (members.has("events"))
        outcome.events = members.texts("events");
    outcome.reason = members.optionalText("reason");
    return outcome;
}

KeyState readKeyState(SessionMembers &members)
{
    KeyState state;
    const std::optional<int> code = eventCode(EV_KEY, members.text("key"));
    if (!code)
        members.fail("key", QStringLiteral("is not a key"));
    state.code = code.value_or(0);
    state.isDown = members.truth("down");
    state.isWithdrawn = members.truth("withdrawn");
    state.isHeld = members.truth("held");
    state.isCounting = members.has("count");
    if (state.isCounting)
        state.count = members.integer("count", 0, std::numeric_limits<int>::max());
    if (members.has("due"))
        state.due = members.time("due");
    return state;
}

KeyStates readStates(SessionMembers &members)
{
    KeyStates states;
    states.device = members.text("device");
    states.hasHandler = members.truth("handler");
    states.isChord = members.truth("chord");
    const QVector<QJsonObject> keys = members.objects("keys");
    for (const QJsonObject &object : keys) {
        SessionMembers key(object);
        states.keys.append(readKeyState(key));
        if (!key.error().isEmpty())
            members.fail("keys", QStringLiteral("has an invalid entry: ") + key.error());
    }
    return states;
}

DetectorStep readDetector(SessionMembers &members, DetectorStep::What what)
{
    DetectorStep step;
    step.what = what;
    step.device = members.text("device");
    step.identifier = members.optionalText("identifier");
    step.keys = members.codes("keys", EV_KEY);
    if (step.keys.isEmpty())
        members.fail("keys", QStringLiteral("must name at least one key"));
    if (what == DetectorStep::What::LongPressDue)
        step.due = members.time("due");
    if (what == DetectorStep::What::ChordFound)
        step.mapped = members.truth("mapped");
    return step;
}

EventPublished readEvent(SessionMembers &members)
{
    EventPublished event;
    event.command = members.named<InputEvent::Command>("command", command);
    event.state = members.named<InputEvent::State>("state", state);
    event.bus = members.named<InputEvent::Bus>("bus", bus);
    event.device = members.optionalText("device");
    // Absent if no record or long press could be found that caused the event.
    if (members.has("codeType")) {
        const std::optional<int> type = eventType(members.text("codeType"));
        if (!type)
            members.fail("codeType", QStringLiteral("is not an event type"));
        event.type = type.value_or(0);
        event.codes = members.codes("codes", event.type);
    }
    if (members.has("latency"))
        event.latency = members.time("latency");
    return event;
}

ExpectationChecked readExpectation(SessionMembers &members)
{
    return {members.text("file"), members.integer("line", 0, std::numeric_limits<int>::max()),
            members.text("text"), members.truth("met"), members.optionalText("found")};
}

/// Nothing for a kind that a newer version may have introduced.
std::optional<SessionEntry> readEntry(SessionMembers &members)
{
    const QString kind = members.text("kind");
    SessionEntry entry;
    entry.time = members.time("time");
    if (kind == QLatin1String("start")) {
        entry.what = readStart(members);
    } else if (kind == QLatin1String("device")) {
        entry.what = readDevice(members);
    } else if (kind == QLatin1String("record")) {
        entry.what = readRecord(members);
    } else if (kind == QLatin1String("outcome")) {
        const std::optional<RecordOutcome::What> what = outcome(members.text("outcome"));
        if (!what)
            return std::nullopt;
        entry.what = readOutcome(members, *what);
    } else if (kind == QLatin1String("state")) {
        entry.what = readStates(members);
    } else if (kind == QLatin1String("detector")) {
        const std::optional<DetectorStep::What> what = detectorStep(members.text("what"));
        // What else a step of an unknown kind requires is unknown, too.
        if (!what)
            return std::nullopt;
        entry.what = readDetector(members, *what);
    } else if (kind == QLatin1String("event")) {
        entry.what = readEvent(members);
    } else if (kind == QLatin1String("identifier")) {
        entry.what = IdentifierSelected{members.text("identifier")};
    } else if (kind == QLatin1String("expectation")) {
        entry.what = readExpectation(members);
    } else if (kind == QLatin1String("remark")) {
        entry.what = Remark{members.text("text")};
    } else {
        return std::nullopt;
    }
    return entry;
}

} // namespace

bool openSession(const QString &path, InputFile *file, Diagnostics *diagnostics)
{
    const QString error = file->openForReading(path);
    if (!error.isEmpty())
        diagnostics->append(
            {Diagnostic::Severity::Error, path, 0, 0, QStringLiteral("cannot be read: ") + error});
    return error.isEmpty();
}

SessionReader::SessionReader(QIODevice *device, const QString &file)
    : m_device(device)
    , m_file(file)
{ }

std::optional<SessionEntry> SessionReader::next()
{
    while (const std::optional<QByteArray> line = takeLine()) {
        ++m_line;
        if (line->trimmed().isEmpty())
            continue;
        if (std::optional<SessionEntry> entry = parse(*line))
            return entry;
        if (m_diagnostics.size() == maxDiagnostics)
            giveUp(QStringLiteral("%1 lines are wrong; the rest is not read").arg(maxDiagnostics));
    }
    return std::nullopt;
}

/// Without its line end. It refers to the buffer, and so is valid until the next call.
std::optional<QByteArray> SessionReader::takeLine()
{
    auto searched = m_begin;
    QByteArray::size_type end = 0;
    while ((end = m_buffer.indexOf('\n', searched)) < 0) {
        const auto size = m_buffer.size() - m_begin;
        if (size > maxLineMiB * 1024 * 1024) {
            ++m_line;
            report(m_line, 0, QStringLiteral("the line is longer than %1 MiB").arg(maxLineMiB));
            m_isAtEnd = true;
        }
        if (m_isAtEnd)
            return std::nullopt;
        if (!fill()) {
            m_isAtEnd = true;
            end = m_buffer.size();
            break;
        }
        searched = m_begin + size;
    }
    if (m_begin == m_buffer.size())
        return std::nullopt;
    const auto begin = m_begin;
    // The last line may have no line end.
    m_begin = qMin(end + 1, m_buffer.size());
    m_bytesRead += m_begin - begin;
    return QByteArray::fromRawData(m_buffer.constData() + begin, end - begin);
}

bool SessionReader::fill()
{
    // Only once for each chunk: to remove every line would move the rest a thousand times.
    m_buffer.remove(0, m_begin);
    m_begin = 0;
    QByteArray part(chunkSize, Qt::Uninitialized);
    const auto size = static_cast<int>(m_device->read(part.data(), chunkSize));
    if (size < 0)
        report(0, 0, QStringLiteral("cannot be read: ") + m_device->errorString());
    if (size <= 0)
        return false;
    m_buffer.append(part.constData(), size);
    return true;
}

std::optional<SessionEntry> SessionReader::parse(const QByteArray &line)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(line, &error);
    if (error.error != QJsonParseError::NoError) {
        report(m_line, positionOf(line, error.offset).column,
               QStringLiteral("invalid JSON: ") + error.errorString());
        return std::nullopt;
    }
    if (!document.isObject()) {
        report(m_line, 0, QStringLiteral("must be a JSON object, {…}"));
        return std::nullopt;
    }
    SessionMembers members(document.object());
    std::optional<SessionEntry> entry = readEntry(members);
    // Without an error and without an entry, the line is of a kind that is not known.
    if (members.error().isEmpty())
        return entry;
    report(m_line, 0, members.error());
    return std::nullopt;
}

void SessionReader::report(int line, int column, const QString &message)
{
    m_diagnostics.append({Diagnostic::Severity::Error, m_file, line, column, message});
}

void SessionReader::giveUp(const QString &reason)
{
    report(0, 0, reason);
    m_begin = m_buffer.size();
    m_isAtEnd = true;
}

ParsedSession parseSession(const QByteArray &text, const QString &file)
{
    QBuffer buffer;
    buffer.setData(text);
    buffer.open(QIODevice::ReadOnly);
    SessionReader reader(&buffer, file);
    ParsedSession session;
    while (const std::optional<SessionEntry> entry = reader.next())
        session.entries.append(*entry);
    session.diagnostics = reader.diagnostics();
    return session;
}

} // namespace Vorn::Workbench
