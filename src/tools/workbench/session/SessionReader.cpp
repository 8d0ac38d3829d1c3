#include "SessionReader.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "Diagnostic.h"
#include "EventNames.h"
#include "Session.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <linux/input.h>

#include <cmath>
#include <limits>

namespace Vorn::Workbench {

namespace {

constexpr int maxDiagnostics = 20;
constexpr int maxCode = 0xffff;
/// The version of the format that is read.
constexpr int knownVersion = 1;
/// µs. Beyond it (about 142 years) the number of a JSON text no longer tells every microsecond.
constexpr double maxTime = 4503599627370496.0;

/// The members of one line. The first that is missing or makes no sense is remembered, and the
/// values that are returned then mean nothing.
class Line
{
public:
    explicit Line(const QJsonObject &object)
        : m_object(object)
    { }

    QString error() const { return m_error; }
    bool has(const char *key) const { return m_object.contains(QLatin1String(key)); }

    QString text(const char *key)
    {
        const QJsonValue value = m_object.value(QLatin1String(key));
        if (!value.isString())
            fail(key, "must be a text");
        return value.toString();
    }

    QString optionalText(const char *key) { return has(key) ? text(key) : QString(); }

    bool truth(const char *key)
    {
        const QJsonValue value = m_object.value(QLatin1String(key));
        if (!value.isBool())
            fail(key, "must be true or false");
        return value.toBool();
    }

    int integer(const char *key, int min, int max)
    {
        const double number = m_object.value(QLatin1String(key)).toDouble(std::nan(""));
        if (number >= min && number <= max && std::floor(number) == number)
            return static_cast<int>(number);
        fail(key, QStringLiteral("must be a whole number from %1 to %2").arg(min).arg(max));
        return min;
    }

    /// A time in ms, as µs.
    qint64 time(const char *key)
    {
        const double number = m_object.value(QLatin1String(key)).toDouble(std::nan("")) * 1000;
        if (number >= -maxTime && number <= maxTime)
            return std::llround(number);
        fail(key, "must be a number of milliseconds, within 142 years");
        return 0;
    }

    /// A point in time as text, as µs since the epoch.
    qint64 wallClock(const char *key)
    {
        const QString written = text(key);
        const QDateTime seconds =
            QDateTime::fromString(written.left(19) + QLatin1Char('Z'), Qt::ISODate);
        bool isNumber = false;
        const uint fraction = written.mid(20, 6).toUInt(&isNumber);
        const bool hasForm = written.size() == 27 && written.at(19) == QLatin1Char('.')
            && written.at(26) == QLatin1Char('Z');
        if (hasForm && isNumber && seconds.isValid()) {
            const qint64 value = seconds.toSecsSinceEpoch() * 1'000'000 + fraction;
            if (std::abs(static_cast<double>(value)) <= maxTime)
                return value;
        }
        fail(key, "must be a time like '2024-03-01T12:00:00.000000Z'");
        return 0;
    }

    /// One of the names that @p parse knows, or the number of a value without a name.
    template <typename Value, typename Parse>
    Value named(const char *key, Parse parse)
    {
        const QString name = text(key);
        if (const std::optional<Value> value = parse(name))
            return *value;
        bool isNumber = false;
        const int number = name.toInt(&isNumber);
        if (!isNumber)
            fail(key, QStringLiteral("is '%1', which is not known").arg(name));
        return static_cast<Value>(number);
    }

    QVector<int> codes(const char *key, int type)
    {
        const QJsonValue list = m_object.value(QLatin1String(key));
        if (!list.isArray())
            fail(key, "must be a list of names");
        QVector<int> codes;
        const QJsonArray names = list.toArray();
        for (const QJsonValue name : names) {
            const std::optional<int> code = eventCode(type, name.toString());
            if (!code)
                fail(key, QStringLiteral("has '%1', which is no code").arg(name.toString()));
            codes.append(code.value_or(0));
        }
        return codes;
    }

    void fail(const char *key, const QString &what)
    {
        if (!m_error.isEmpty())
            return;
        if (has(key))
            m_error = QStringLiteral("'%1' %2").arg(QLatin1String(key), what);
        else
            m_error = QStringLiteral("'%1' is missing").arg(QLatin1String(key));
    }

private:
    void fail(const char *key, const char *what) { fail(key, QString::fromLatin1(what)); }

    const QJsonObject m_object;
    QString m_error;
};

SessionStart readStart(Line &line)
{
    const int version = line.integer("version", 1, std::numeric_limits<int>::max());
    if (version > knownVersion)
        line.fail("version",
                  QStringLiteral("is %1, and only version %2 is known; a newer vorn-input reads it")
                      .arg(version)
                      .arg(knownVersion));
    return {line.text("source"), line.text("profile"), line.wallClock("wallClock")};
}

DeviceChange readDevice(Line &line)
{
    const QString change = line.text("change");
    if (change != QLatin1String("added") && change != QLatin1String("removed"))
        line.fail("change", QStringLiteral("must be 'added' or 'removed'"));
    return {line.text("device"), line.text("name"), line.named<InputEvent::Bus>("bus", bus),
            change == QLatin1String("added")};
}

RecordRead readRecord(Line &line)
{
    return {line.text("device"), line.integer("typeNumber", 0, maxCode),
            line.integer("codeNumber", 0, maxCode),
            line.integer("value", std::numeric_limits<int>::min(), std::numeric_limits<int>::max()),
            line.time("stamp")};
}

std::optional<DetectorStep::What> step(const QString &name)
{
    using What = DetectorStep::What;
    static const QHash<QString, What> steps{
        {QStringLiteral("long-press-due"), What::LongPressDue},
        {QStringLiteral("long-press-ended"), What::LongPressEnded},
        {QStringLiteral("first-key-withdrawn"), What::FirstKeyWithdrawn},
        {QStringLiteral("chord-found"), What::ChordFound},
        {QStringLiteral("chord-released"), What::ChordReleased},
        {QStringLiteral("dropped"), What::Dropped},
    };
    const auto found = steps.find(name);
    return found == steps.end() ? std::nullopt : std::optional<What>(*found);
}

DetectorStep readDetector(Line &line, DetectorStep::What what)
{
    DetectorStep read;
    read.what = what;
    read.device = line.text("device");
    read.keys = line.codes("keys", EV_KEY);
    if (read.keys.isEmpty())
        line.fail("keys", QStringLiteral("must have a key"));
    if (what == DetectorStep::What::LongPressDue)
        read.due = line.time("due");
    if (what == DetectorStep::What::ChordFound)
        read.mapped = line.truth("mapped");
    return read;
}

EventPublished readEvent(Line &line)
{
    EventPublished event;
    event.command = line.named<InputEvent::Command>("command", command);
    event.state = line.named<InputEvent::State>("state", state);
    event.bus = line.named<InputEvent::Bus>("bus", bus);
    event.device = line.optionalText("device");
    if (line.has("codeType")) {
        const std::optional<int> type = eventType(line.text("codeType"));
        if (!type)
            line.fail("codeType", QStringLiteral("is no type of records"));
        event.type = type.value_or(0);
        event.codes = line.codes("codes", event.type);
    }
    if (line.has("latency"))
        event.latency = line.time("latency");
    return event;
}

ExpectationChecked readExpectation(Line &line)
{
    return {line.text("file"), line.integer("line", 0, std::numeric_limits<int>::max()),
            line.text("text"), line.truth("met"), line.optionalText("found")};
}

/// Nothing for a line of a kind that is not known.
std::optional<SessionEntry> readEntry(Line &line)
{
    const QString kind = line.text("kind");
    SessionEntry entry;
    entry.time = line.time("time");
    if (kind == QLatin1String("start")) {
        entry.what = readStart(line);
    } else if (kind == QLatin1String("device")) {
        entry.what = readDevice(line);
    } else if (kind == QLatin1String("record")) {
        entry.what = readRecord(line);
    } else if (kind == QLatin1String("detector")) {
        const std::optional<DetectorStep::What> what = step(line.text("what"));
        if (!what)
            return std::nullopt;
        entry.what = readDetector(line, *what);
    } else if (kind == QLatin1String("event")) {
        entry.what = readEvent(line);
    } else if (kind == QLatin1String("identifier")) {
        entry.what = IdentifierSelected{line.text("identifier")};
    } else if (kind == QLatin1String("expectation")) {
        entry.what = readExpectation(line);
    } else if (kind == QLatin1String("remark")) {
        entry.what = Remark{line.text("text")};
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

    void read(const QByteArray &line, int number)
    {
        if (line.trimmed().isEmpty())
            return;
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(line, &error);
        if (error.error != QJsonParseError::NoError) {
            tell(number, positionOf(line, error.offset).column,
                 QStringLiteral("not JSON: ") + error.errorString());
            return;
        }
        if (!document.isObject()) {
            tell(number, 0, QStringLiteral("must be a JSON object, {…}"));
            return;
        }
        Line members(document.object());
        const std::optional<SessionEntry> entry = readEntry(members);
        if (!members.error().isEmpty())
            tell(number, 0, members.error());
        else if (entry)
            m_session.entries.append(*entry);
    }

    ParsedSession session() const { return m_session; }

private:
    void tell(int line, int column, const QString &message)
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
    for (int begin = 0; begin < text.size();) {
        int end = text.indexOf('\n', begin);
        if (end < 0)
            end = text.size();
        parser.read(QByteArray::fromRawData(text.constData() + begin, end - begin), ++number);
        begin = end + 1;
    }
    return parser.session();
}

} // namespace Vorn::Workbench
