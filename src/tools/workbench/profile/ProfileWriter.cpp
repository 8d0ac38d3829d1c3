#include "ProfileWriter.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "EventNames.h"
#include "ProfileReader.h"
#include "Quoting.h"

#include <QSet>
#include <QStringList>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

/// A basic string. Half a surrogate pair, which UTF-8 and so TOML lack, becomes a question mark.
QString string(const QString &text)
{
    QString result(QLatin1Char('"'));
    const QByteArray utf8 = text.toUtf8();
    const QString valid = QString::fromUtf8(utf8.constData(), utf8.size());
    for (const QChar character : valid) {
        if (character == QLatin1Char('"') || character == QLatin1Char('\\'))
            result += QLatin1Char('\\');
        result += character;
    }
    // People open profiles in terminals, and the escapes are those of TOML.
    return printable(result) + QLatin1Char('"');
}

QString member(const char *name, const QString &value)
{
    return QLatin1String(name) + QStringLiteral(" = ") + value;
}

QString braces(const QStringList &members)
{
    return QStringLiteral("{ ") + members.join(QStringLiteral(", ")) + QStringLiteral(" }");
}

QString brackets(const QStringList &elements)
{
    return QLatin1Char('[') + elements.join(QStringLiteral(", ")) + QLatin1Char(']');
}

/// A code as a string, or as a number if it has no name.
QString codeValue(int code, const QString &name)
{
    return name == QString::number(code) ? name : string(name);
}

/// What is registered for a code: its name in a table, the member that names it in a list, and the
/// other members, the command first.
struct Entry
{
    QString name;
    QString code;
    QStringList members;
};

QStringList busMember(const std::optional<InputEvent::Bus> &bus)
{
    return bus ? QStringList{member("bus", string(busName(*bus)))} : QStringList();
}

QStringList commandMember(InputEvent::Command command)
{
    return {member("command", string(commandName(command)))};
}

Entry entryOf(const KeyMapping &key)
{
    const QString name = keyName(key.code);
    QStringList members = commandMember(key.command);
    if (key.immediate)
        members += QStringLiteral("immediate = true");
    if (key.longPress) {
        QStringList timeouts;
        for (const int timeout : key.longPress->timeouts)
            timeouts += QString::number(timeout);
        members +=
            member("long-press", timeouts.size() == 1 ? timeouts.first() : brackets(timeouts));
        if (key.longPress->repeat)
            members += QStringLiteral("repeat = true");
    }
    return {name, member("key", codeValue(key.code, name)), members + busMember(key.bus)};
}

Entry entryOf(const ChordMapping &chord)
{
    const QString first = keyName(chord.first);
    const QString second = keyName(chord.second);
    return {
        string(first + QLatin1Char('+') + second),
        member("keys", brackets({codeValue(chord.first, first), codeValue(chord.second, second)})),
        commandMember(chord.command) + busMember(chord.bus)};
}

Entry entryOf(const SwitchMapping &mapping)
{
    const QString name = switchName(mapping.code);
    return {name, member("switch", codeValue(mapping.code, name)), commandMember(mapping.command)};
}

/// The registration as the value of a table's member: the command alone, if there is nothing else.
QString value(const Entry &entry)
{
    constexpr int prefix = 10; // "command = "
    return entry.members.size() == 1 ? entry.members.first().mid(prefix) : braces(entry.members);
}

/// Whether registrations of one code are next to each other, so that a table, which holds them
/// together, keeps the order.
bool isGrouped(const QVector<Entry> &entries)
{
    QSet<QString> seen;
    for (int i = 0; i < entries.size(); ++i) {
        const QString &name = entries.at(i).name;
        if (seen.contains(name) && entries.at(i - 1).name != name)
            return false;
        seen.insert(name);
    }
    return true;
}

/// A value for each of @p elements on a line of its own.
QString list(const QStringList &elements)
{
    QString text = QStringLiteral("[\n");
    for (const QString &element : elements)
        text += QStringLiteral("    ") + element + QStringLiteral(",\n");
    return text + QLatin1Char(']');
}

class Writer
{
public:
    explicit Writer(bool hasComments)
        : m_hasComments(hasComments)
    { }

    QByteArray write(const Profile &profile);

private:
    void writeDevice(const DeviceProfile &device);
    void writeHandler(const HandlerProfile &handler, bool isOnly);
    template <typename Mapping>
    void writeEntries(const char *group, const QVector<Mapping> &mappings, const char *text);
    void writeList(const char *group, const QVector<Entry> &entries);

    void line(const QString &text) { m_text += text + QLatin1Char('\n'); }
    void header(const char *text);
    void comment(const char *text);

    const bool m_hasComments;
    QString m_text;
};

QByteArray Writer::write(const Profile &profile)
{
    comment(
        "What each key does. vorn-input check finds mistakes in it, vorn-input monitor --profile\n"
        "# shows live what it does, and man vorn-input describes the format.");
    if (!profile.initial.isEmpty()) {
        comment("The identifier selected at the start.");
        line(member("initial", string(profile.initial)));
    }
    QStringList rules;
    for (const SelectRule &rule : profile.select) {
        QStringList members = commandMember(rule.command);
        if (rule.state != InputEvent::KeyReleased)
            members += member("state", string(stateName(rule.state)));
        rules += braces(members << member("identifier", string(rule.identifier)));
    }
    if (!rules.isEmpty())
        line(member("select", list(rules)));
    if (profile.devices.isEmpty())
        line(QStringLiteral("device = []"));
    for (const DeviceProfile &device : profile.devices)
        writeDevice(device);
    return m_text.toUtf8();
}

void Writer::writeDevice(const DeviceProfile &device)
{
    header("[[device]]");
    if (device.name)
        line(member("name", string(*device.name)));
    if (device.bus)
        line(member("bus", string(busName(*device.bus))));
    for (const HandlerProfile &handler : device.handlers)
        writeHandler(handler, device.handlers.size() == 1);
}

void Writer::writeHandler(const HandlerProfile &handler, bool isOnly)
{
    const bool hasIdentifiers = handler.identifiers != QStringList{QString()};
    const bool hasGroups =
        !handler.keys.isEmpty() || !handler.chords.isEmpty() || !handler.switches.isEmpty();
    // The tables below imply a single handler that has nothing else.
    if (!isOnly)
        header("[[device.handler]]");
    else if (hasIdentifiers || handler.positionsAtStart || !hasGroups)
        header("[device.handler]");
    if (hasIdentifiers) {
        QStringList identifiers;
        for (const QString &identifier : handler.identifiers)
            identifiers += string(identifier);
        line(member("identifiers", brackets(identifiers)));
    }
    if (handler.positionsAtStart)
        line(QStringLiteral("positions-at-start = true"));
    writeEntries(
        "keys", handler.keys,
        "Reported when released, as a click; with immediate = true, when pressed and when\n"
        "# released. long-press: ms until the first long press, then, with repeat = true,\n"
        "# until each further one.");
    writeEntries("chords", handler.chords, "Two keys pressed together.");
    writeEntries("switches", handler.switches, nullptr);
}

template <typename Mapping>
void Writer::writeEntries(const char *group, const QVector<Mapping> &mappings, const char *text)
{
    if (mappings.isEmpty())
        return;
    QVector<Entry> entries;
    for (const Mapping &mapping : mappings)
        entries += entryOf(mapping);
    if (!isGrouped(entries)) {
        writeList(group, entries);
        return;
    }
    header(qPrintable(QStringLiteral("[device.handler.%1]").arg(QLatin1String(group))));
    if (text)
        comment(text);
    for (int i = 0; i < entries.size();) {
        const QString &name = entries.at(i).name;
        QStringList values;
        for (; i < entries.size() && entries.at(i).name == name; ++i)
            values += value(entries.at(i));
        line(name + QStringLiteral(" = ") + (values.size() == 1 ? values.first() : list(values)));
    }
}

/// A list of tables, which keeps any order, one registration each.
void Writer::writeList(const char *group, const QVector<Entry> &entries)
{
    for (const Entry &entry : entries) {
        header(qPrintable(QStringLiteral("[[device.handler.%1]]").arg(QLatin1String(group))));
        line(entry.code);
        for (const QString &text : entry.members)
            line(text);
    }
}

void Writer::header(const char *text)
{
    if (!m_text.isEmpty())
        line(QString());
    line(QLatin1String(text));
}

void Writer::comment(const char *text)
{
    if (m_hasComments)
        line(QStringLiteral("# ") + QLatin1String(text));
}

} // namespace

QByteArray writeProfile(const Profile &profile)
{
    return Writer(false).write(profile);
}

QByteArray writeCommentedProfile(const Profile &profile)
{
    return Writer(true).write(profile);
}

bool isAsWritten(const QByteArray &text)
{
    const ParsedProfile parsed = parseProfile(text, QString());
    return !hasErrors(parsed.diagnostics) && writeCommentedProfile(parsed.profile) == text;
}

} // namespace Vorn::Workbench
