#include "JournalLayout.h"

#include "LibrarySigns.h"
#include "LineReader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <vector>

namespace Vorn::Workbench {

namespace {

struct KindFormat
{
    const char *name;
    const char *format;
};

// In the order of JournalLayout::Kind.
constexpr std::array<KindFormat, 9> formats = {
    {{"journal (JSON)", ""},
     {"journal (short)", "%b %d %H:%M:%S"},
     {"journal (short-precise)", "%b %d %H:%M:%S.%f"},
     {"syslog", "%b %e %H:%M:%S"},
     {"journal (short-iso)", "%Y-%m-%dT%H:%M:%S%z"},
     {"journal (short-iso-precise)", "%Y-%m-%dT%H:%M:%S.%f%z"},
     {"journal (short-full)", "%a %F %T %Z"},
     {"journal (short-unix)", "%s.%f"},
     {"journal (short-monotonic)", ""}}};

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

std::string_view takeWord(std::string_view *rest)
{
    const std::string_view word = rest->substr(0, rest->find(' '));
    rest->remove_prefix(std::min(word.size() + 1, rest->size()));
    return word;
}

/// "<13>" in front of a line, as it travels between syslog servers.
void dropPriority(std::string_view *line)
{
    if (line->empty() || line->front() != '<')
        return;
    const std::size_t end = line->find_first_not_of("0123456789", 1);
    if (end != std::string_view::npos && end > 1 && end <= 4 && (*line)[end] == '>')
        line->remove_prefix(end + 1);
}

/// "[   12.345678] "
bool takeMonotonic(std::string_view *rest, LogFields *fields)
{
    const std::size_t end = rest->find("] ");
    if (rest->empty() || rest->front() != '[' || end == std::string_view::npos || end > 20)
        return false;
    std::string_view text = rest->substr(1, end - 1);
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const std::size_t point = text.find('.');
    if (point == std::string_view::npos || text.size() != point + 7)
        return false;
    const auto seconds = toNumber<quint32>(text.substr(0, point));
    const auto fraction = toNumber<quint32>(text.substr(point + 1));
    if (!seconds || !fraction)
        return false;
    fields->uptime = qint64{*seconds} * 1'000'000 + *fraction;
    rest->remove_prefix(end + 2);
    return true;
}

/// The number in front of @p words in a message, or behind them; 0 if they are not there.
qint64 countBeside(std::string_view message, std::string_view words, bool isBefore)
{
    const std::size_t at = message.find(words);
    if (at == std::string_view::npos)
        return 0;
    if (isBefore) {
        message = message.substr(0, at);
        message.remove_prefix(message.find_last_of(' ') + 1);
    } else {
        message.remove_prefix(at + words.size());
        message = message.substr(0, message.find(' '));
    }
    return toNumber<quint32>(message).value_or(0);
}

/// What journalctl shows for a message with bytes that it does not print: "[22B blob data]".
bool isHidden(std::string_view message)
{
    constexpr std::string_view end = " blob data]";
    return message.size() > end.size() && message.front() == '['
        && message.substr(message.size() - end.size()) == end
        && message.find_first_not_of("0123456789.BKMG", 1) == message.size() - end.size();
}

/// What the services say when they drop messages of a program that logs too much.
qint64 lostMessages(std::string_view unit, std::string_view message)
{
    if (unit.substr(0, 15) == "systemd-journal")
        return countBeside(message, "Suppressed ", false);
    if (unit.substr(0, 8) == "rsyslogd")
        return countBeside(message, "imuxsock lost ", false)
            + countBeside(message, " messages lost due to rate-limiting", true);
    return 0;
}

/// Texts that are no UTF-8 are lists of bytes in journald's JSON.
QByteArray bytesOf(const QJsonValue &value)
{
    if (!value.isArray())
        return value.toString().toUtf8();
    QByteArray bytes;
    const QJsonArray numbers = value.toArray();
    for (const QJsonValue &number : numbers)
        bytes += static_cast<char>(number.toInt());
    return bytes;
}

std::optional<qint64> microsecondsOf(const QJsonValue &value)
{
    bool isNumber = false;
    const qint64 number = value.toString().toLongLong(&isNumber);
    const bool isTime = isNumber && number >= 0 && number < endOfTimes;
    return isTime ? std::optional(number) : std::nullopt;
}

QByteArray firstText(const QJsonObject &object, std::initializer_list<const char *> names)
{
    for (const char *name : names) {
        QByteArray text = bytesOf(object.value(QLatin1String(name)));
        if (!text.isEmpty())
            return text;
    }
    return {};
}

std::string_view view(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

} // namespace

JournalLayout::JournalLayout(Kind kind)
    : m_kind(kind)
{
    TimeFormat::Error error;
    const char *format = formats.at(static_cast<std::size_t>(kind)).format;
    if (*format != '\0')
        m_format = TimeFormat::compile(format, &error);
}

std::optional<JournalLayout> JournalLayout::of(std::string_view line)
{
    static std::vector<JournalLayout> all = [] {
        std::vector<JournalLayout> layouts;
        for (std::size_t kind = 0; kind < formats.size(); ++kind)
            layouts.push_back(JournalLayout(static_cast<Kind>(kind)));
        return layouts;
    }();
    const auto found = std::find_if(all.begin(), all.end(), [line](JournalLayout &layout) {
        LogFields fields;
        return layout.parse(line, &fields);
    });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

bool JournalLayout::parse(std::string_view line, LogFields *fields)
{
    const bool isParsed = m_kind == Kind::Json ? parseJson(line, fields) : parseText(line, fields);
    if (isParsed)
        fields->lost = m_kind != Kind::Json && isHidden(fields->message)
            ? 1
            : lostMessages(fields->unit, fields->message);
    return isParsed;
}

QString JournalLayout::name() const
{
    return QString::fromLatin1(formats.at(static_cast<std::size_t>(m_kind)).name);
}

bool JournalLayout::takeTime(std::string_view *rest, LogFields *fields) const
{
    if (m_kind == Kind::Monotonic)
        return takeMonotonic(rest, fields);
    LogStamp stamp;
    if (!m_format->take(rest, &stamp) || rest->empty() || rest->front() != ' ')
        return false;
    rest->remove_prefix(1);
    fields->stamp = stamp;
    fields->hasFraction = m_format->hasFraction();
    return true;
}

/// "<time> host player[123]: message"
bool JournalLayout::parseText(std::string_view line, LogFields *fields) const
{
    dropPriority(&line);
    if (!takeTime(&line, fields))
        return false;
    const std::string_view host = takeWord(&line);
    const std::size_t colon = line.find(": ");
    // A program's own layout often has its level and logger there.
    if (host.empty() || levelOf(host) || colon == std::string_view::npos || colon == 0)
        return false;
    const std::string_view unit = line.substr(0, colon);
    if (unit.size() > 256 || unit.find(' ') != std::string_view::npos || isLibraryLogger(unit)
        || levelOf(unit))
        return false;
    fields->unit = unit;
    const std::size_t bracket = unit.rfind('[');
    if (bracket != std::string_view::npos && unit.back() == ']') {
        const std::string_view pid = unit.substr(bracket + 1, unit.size() - bracket - 2);
        if (!pid.empty() && std::all_of(pid.begin(), pid.end(), isDigit))
            fields->pid = pid;
    }
    fields->message = line.substr(colon + 2);
    return true;
}

bool JournalLayout::parseJson(std::string_view line, LogFields *fields)
{
    if (line.empty() || line.front() != '{')
        return false;
    const QJsonObject object =
        QJsonDocument::fromJson(QByteArray::fromRawData(line.data(), static_cast<int>(line.size())))
            .object();
    const std::optional<qint64> time =
        microsecondsOf(object.value(QLatin1String("__REALTIME_TIMESTAMP")));
    if (!time)
        return false;
    LogStamp stamp;
    stamp.microseconds = *time;
    stamp.isSinceEpoch = true;
    fields->stamp = stamp;
    fields->hasFraction = true;
    fields->uptime = microsecondsOf(object.value(QLatin1String("__MONOTONIC_TIMESTAMP")));

    m_unit = firstText(object, {"SYSLOG_IDENTIFIER", "_COMM", "_SYSTEMD_UNIT"});
    const QByteArray pid = firstText(object, {"_PID", "SYSLOG_PID"});
    if (!pid.isEmpty())
        m_unit += '[' + pid + ']';
    m_message = bytesOf(object.value(QLatin1String("MESSAGE")));
    fields->unit = view(m_unit);
    fields->message = view(m_message);
    return true;
}

} // namespace Vorn::Workbench
