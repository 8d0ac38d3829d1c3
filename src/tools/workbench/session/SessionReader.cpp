#include "SessionReader.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "Diagnostic.h"
#include "EventNames.h"
#include "Session.h"
#include "SessionFormat.h"
#include "SessionMembers.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <linux/input.h>

#include <limits>

namespace Vorn::Workbench {

namespace {

/// A file that is not a session at all would give an error for every line.
constexpr int maxDiagnostics = 20;
constexpr int maxCode = 0xffff;

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
    for (const QJsonObject &object : members.objects("keys")) {
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

class SessionParser
{
public:
    explicit SessionParser(const QString &file)
        : m_file(file)
    { }

    void parseLine(const QByteArray &line, int number)
    {
        if (line.trimmed().isEmpty())
            return;
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(line, &error);
        if (error.error != QJsonParseError::NoError) {
            report(number, positionOf(line, error.offset).column,
                   QStringLiteral("invalid JSON: ") + error.errorString());
            return;
        }
        if (!document.isObject()) {
            report(number, 0, QStringLiteral("must be a JSON object, {…}"));
            return;
        }
        SessionMembers members(document.object());
        const std::optional<SessionEntry> entry = readEntry(members);
        if (!members.error().isEmpty())
            report(number, 0, members.error());
        else if (entry)
            m_session.entries.append(*entry);
    }

    ParsedSession session() const { return m_session; }

private:
    void report(int line, int column, const QString &message)
    {
        if (m_session.diagnostics.size() < maxDiagnostics)
            m_session.diagnostics.append(
                {Diagnostic::Severity::Error, m_file, line, column, message});
    }

    const QString m_file;
    ParsedSession m_session;
};

} // namespace

ParsedSession parseSession(const QByteArray &text, const QString &file)
{
    SessionParser parser(file);
    int number = 0;
    // Without copying: a line may be megabytes long.
    for (int begin = 0; begin < text.size();) {
        int end = text.indexOf('\n', begin);
        if (end < 0)
            end = text.size();
        parser.parseLine(QByteArray::fromRawData(text.constData() + begin, end - begin), ++number);
        begin = end + 1;
    }
    return parser.session();
}

} // namespace Vorn::Workbench
