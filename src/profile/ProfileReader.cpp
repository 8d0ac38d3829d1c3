#include "ProfileReader.h"

#include "BusNames.h"
#include "CodeReader.h"
#include "CommandNames.h"
#include "Findings.h"
#include "ProfilePlaces.h"
#include "ProfileWarnings.h"
#include "Quoting.h"
#include "Suggestion.h"
#include "TableReader.h"
#include "TomlValue.h"

#include <QFile>
#include <QFileInfo>

#include <limits>

namespace Vorn {

namespace {

using Type = TomlValue::Type;

/// Makes a profile of a TOML document, top down: profile, devices, handlers, registrations. Parts
/// with errors are left out, so that one mistake does not hide the others.
class ProfileReader
{
public:
    ProfileReader(const TomlValue &root, Findings *findings)
        : m_findings(findings)
        , m_codes(findings)
        , m_places{&root, {}, {}}
    {
        readRoot();
    }

    const Profile &profile() const { return m_profile; }
    const ProfilePlaces &places() const { return m_places; }

private:
    /// Which members a registration has beside its command, and how its code is written.
    struct EntryKind
    {
        const char *what; ///< "a key", for messages
        const char *group; ///< the member of the handler that holds them
        const char *codeMember; ///< that names the code in a list
        QStringList optional;
    };

    void readRoot();
    void readDevice(const TomlValue &value);
    void readHandler(const TomlValue &value, DeviceProfile *device, DevicePlaces *places);
    void readIdentifiers(const TableReader &table, HandlerProfile *handler, HandlerPlaces *places);
    template <typename ReadEntry>
    void readEntries(const TableReader &handler, const EntryKind &kind, ReadEntry readEntry);
    void readKeys(const TableReader &handler, HandlerProfile *profile, HandlerPlaces *places);
    void readChords(const TableReader &handler, HandlerProfile *profile, HandlerPlaces *places);
    void readSwitches(const TableReader &handler, HandlerProfile *profile, HandlerPlaces *places);
    std::optional<SelectRule> readRule(const TomlValue &value);
    std::optional<LongPress> readLongPress(const TableReader &table);
    std::optional<int> readTimeout(const TomlValue &value);
    std::optional<InputEvent::Command> readCommand(const TomlValue &value);
    std::optional<InputEvent::Command> readCommand(const TableReader &table);
    /// The bus of a table; a mistake in it is reported and counts as none.
    std::optional<InputEvent::Bus> readBus(const TableReader &table);

    Findings *const m_findings;
    CodeReader m_codes;
    Profile m_profile;
    ProfilePlaces m_places;
};

void ProfileReader::readRoot()
{
    TableReader table(*m_places.root, QStringLiteral("a profile"), &m_codes);
    table.allow({"initial", "select", "device"});
    m_profile.initial = table.text("initial");
    const auto rules = table.tables("select");
    for (const TomlValue *value : rules) {
        if (const auto rule = readRule(*value)) {
            m_profile.select.append(*rule);
            m_places.select.append(value);
        }
    }
    if (!table.member("device")) {
        m_findings->error(m_places.root->position,
                          QStringLiteral("a profile needs at least one [[device]]"));
    }
    const auto devices = table.tables("device");
    for (const TomlValue *value : devices)
        readDevice(*value);
}

void ProfileReader::readDevice(const TomlValue &value)
{
    TableReader table(value, QStringLiteral("a device"), &m_codes);
    table.allow({"name", "bus", "handler"});
    if (!table.isTable())
        return;
    DeviceProfile device;
    DevicePlaces places{&value, {}};
    if (const TomlValue *name = table.member("name", Type::String))
        device.name = name->string;
    device.bus = readBus(table);
    const auto handlers = table.tables("handler");
    for (const TomlValue *handler : handlers)
        readHandler(*handler, &device, &places);
    m_profile.devices.append(device);
    m_places.devices.append(places);
}

void ProfileReader::readHandler(const TomlValue &value, DeviceProfile *device, DevicePlaces *places)
{
    TableReader table(value, QStringLiteral("a handler"), &m_codes);
    table.allow({"identifiers", "positions-at-start", "keys", "chords", "switches"});
    if (!table.isTable())
        return;
    HandlerProfile handler;
    HandlerPlaces handlerPlaces;
    handlerPlaces.handler = &value;
    readIdentifiers(table, &handler, &handlerPlaces);
    handler.positionsAtStart = table.flag("positions-at-start");
    readKeys(table, &handler, &handlerPlaces);
    readChords(table, &handler, &handlerPlaces);
    readSwitches(table, &handler, &handlerPlaces);
    device->handlers.append(handler);
    places->handlers.append(handlerPlaces);
}

void ProfileReader::readIdentifiers(const TableReader &table, HandlerProfile *handler,
                                    HandlerPlaces *places)
{
    const TomlValue *list = table.member("identifiers", Type::List);
    if (!list) {
        places->identifiers.append(places->handler->position);
        return;
    }
    handler->identifiers.clear();
    for (const TomlValue &value : list->children) {
        if (!value.isString()) {
            m_findings->error(
                value.position,
                QStringLiteral("an identifier is a string, not %1").arg(value.typeName));
            continue;
        }
        handler->identifiers.append(value.string);
        places->identifiers.append(value.position);
    }
    if (list->children.empty()) {
        m_findings->error(list->position,
                          QStringLiteral("a handler without an identifier is never selected; omit "
                                         "'identifiers' for the empty one"));
    }
}

/// Registrations come in two forms. In a table, the member's name is the code, and its value the
/// registration, or a list of them. In a list of tables, each names its code, so that any order of
/// registration can be written.
///
/// @param readEntry is called with the value that holds or names the code, whether that is the name
///        of a member, and the registration; see readKeys()
template <typename ReadEntry>
void ProfileReader::readEntries(const TableReader &handler, const EntryKind &kind,
                                ReadEntry readEntry)
{
    const TomlValue *group = handler.member(kind.group);
    if (!group)
        return;
    QStringList known = kind.optional;
    known.prepend(QStringLiteral("command"));
    const auto readOne = [&](const TomlValue *code, const TomlValue &value) {
        if (value.isString()) {
            // KEY_OK = "Confirm"
            const TableReader empty(value, &m_codes);
            readEntry(code, value, empty, readCommand(value));
            return;
        }
        TableReader table(value, QLatin1String(kind.what), &m_codes);
        table.allow(code ? known : QStringList(known) << QLatin1String(kind.codeMember));
        if (!table.isTable())
            return;
        if (!code && !table.require(kind.codeMember))
            return;
        const auto command =
            table.require("command") ? readCommand(table) : std::optional<InputEvent::Command>();
        readEntry(code, value, table, command);
    };

    if (group->isList()) {
        for (const TomlValue &value : group->children) {
            if (value.isTable())
                readOne(nullptr, value);
            else
                m_findings->error(value.position,
                                  QStringLiteral("%1 in a list is a table with '%2', not %3")
                                      .arg(QLatin1String(kind.what), QLatin1String(kind.codeMember),
                                           value.typeName));
        }
        return;
    }
    if (!handler.member(kind.group, Type::Table))
        return;
    for (const TomlValue &member : group->children) {
        if (!member.isList()) {
            readOne(&member, member);
            continue;
        }
        for (const TomlValue &value : member.children)
            readOne(&member, value);
    }
}

void ProfileReader::readKeys(const TableReader &handler, HandlerProfile *profile,
                             HandlerPlaces *places)
{
    const EntryKind kind{"a key",
                         "keys",
                         "key",
                         {QStringLiteral("immediate"), QStringLiteral("long-press"),
                          QStringLiteral("repeat"), QStringLiteral("bus")}};
    readEntries(handler, kind,
                [&](const TomlValue *name, const TomlValue &value, const TableReader &table,
                    std::optional<InputEvent::Command> command) {
                    const TomlValue &codeValue = name ? *name : *table.member("key");
                    const auto code = name ? m_codes.keyNamed(name->key, name->keyPosition)
                                           : m_codes.key(codeValue);
                    KeyMapping key;
                    key.immediate = table.flag("immediate");
                    key.longPress = readLongPress(table);
                    key.bus = readBus(table);
                    const bool isBusWrong = table.member("bus") && !key.bus;
                    if (!code || !command || isBusWrong)
                        return;
                    key.code = *code;
                    key.command = *command;
                    profile->keys.append(key);
                    places->keys.append({&value, name ? name->keyPosition : codeValue.position});
                });
}

void ProfileReader::readChords(const TableReader &handler, HandlerProfile *profile,
                               HandlerPlaces *places)
{
    const EntryKind kind{"a chord", "chords", "keys", {QStringLiteral("bus")}};
    readEntries(handler, kind,
                [&](const TomlValue *name, const TomlValue &value, const TableReader &table,
                    std::optional<InputEvent::Command> command) {
                    const TomlValue *list = name ? nullptr : table.member("keys", Type::List);
                    const auto pair = name ? m_codes.pairNamed(name->key, name->keyPosition)
                        : list             ? m_codes.pair(*list)
                                           : std::nullopt;
                    ChordMapping chord;
                    chord.bus = readBus(table);
                    const bool isBusWrong = table.member("bus") && !chord.bus;
                    if (!pair || !command || isBusWrong)
                        return;
                    chord.first = pair->first;
                    chord.second = pair->second;
                    chord.command = *command;
                    profile->chords.append(chord);
                    places->chords.append({&value, name ? name->keyPosition : list->position});
                });
}

void ProfileReader::readSwitches(const TableReader &handler, HandlerProfile *profile,
                                 HandlerPlaces *places)
{
    const EntryKind kind{"a switch", "switches", "switch", {}};
    readEntries(
        handler, kind,
        [&](const TomlValue *name, const TomlValue &value, const TableReader &table,
            std::optional<InputEvent::Command> command) {
            const TomlValue &codeValue = name ? *name : *table.member("switch");
            const auto code = name ? m_codes.switchNamed(name->key, name->keyPosition)
                                   : m_codes.switchOf(codeValue);
            if (!code || !command)
                return;
            profile->switches.append({*code, *command});
            places->switches.append({&value, name ? name->keyPosition : codeValue.position});
        });
}

std::optional<SelectRule> ProfileReader::readRule(const TomlValue &value)
{
    TableReader table(value, QStringLiteral("a select rule"), &m_codes);
    table.allow({"command", "state", "identifier"});
    if (!table.isTable())
        return std::nullopt;
    const bool hasCommand = table.require("command");
    const bool hasIdentifier = table.require("identifier");
    SelectRule rule;
    const auto command = readCommand(table);
    rule.identifier = table.text("identifier");
    if (const TomlValue *stateValue = table.member("state", Type::String)) {
        const auto known = state(stateValue->string);
        if (known) {
            rule.state = *known;
        } else {
            m_findings->error(stateValue->position,
                              QStringLiteral("unknown state %1%2")
                                  .arg(quoted(stateValue->string),
                                       suggestionOrList(stateValue->string, stateNames())));
        }
    }
    if (!hasCommand || !hasIdentifier || !command)
        return std::nullopt;
    rule.command = *command;
    return rule;
}

std::optional<LongPress> ProfileReader::readLongPress(const TableReader &table)
{
    const TomlValue *timeouts = table.member("long-press");
    const bool repeat = table.flag("repeat");
    if (!timeouts) {
        if (const TomlValue *alone = table.member("repeat"))
            m_findings->error(alone->keyPosition,
                              QStringLiteral("'repeat' needs 'long-press', e.g. [700, 600]"));
        return std::nullopt;
    }
    LongPress longPress;
    longPress.repeat = repeat;
    if (!timeouts->isList()) {
        // long-press = 700
        if (const auto timeout = readTimeout(*timeouts))
            longPress.timeouts.append(*timeout);
        return longPress;
    }
    if (timeouts->children.empty()) {
        m_findings->error(timeouts->position,
                          QStringLiteral("an empty list of timeouts would end the process when the "
                                         "key is held; give at least one timeout, e.g. [700]"));
    }
    for (const TomlValue &element : timeouts->children) {
        if (const auto timeout = readTimeout(element))
            longPress.timeouts.append(*timeout);
    }
    return longPress;
}

std::optional<int> ProfileReader::readTimeout(const TomlValue &value)
{
    constexpr int largest = std::numeric_limits<int>::max();
    if (value.isInteger() && value.integer >= 0 && value.integer <= largest)
        return static_cast<int>(value.integer);
    if (value.isInteger() || value.fraction) {
        m_findings->error(value.position,
                          QStringLiteral("a timeout is a whole number of milliseconds from 0 to "
                                         "%1, not %2")
                              .arg(largest)
                              .arg(value.numberText()));
    } else {
        m_findings->error(
            value.position,
            QStringLiteral("a timeout is a number of milliseconds, not %1").arg(value.typeName));
    }
    return std::nullopt;
}

std::optional<InputEvent::Command> ProfileReader::readCommand(const TomlValue &value)
{
    if (value.isInteger()) {
        QString hint;
        if (value.integer >= 0 && value.integer <= InputEvent::CharTilde) {
            const QString text = commandName(static_cast<InputEvent::Command>(value.integer));
            if (commandNames().contains(text))
                hint = QStringLiteral("; %1 is '%2'").arg(value.integer).arg(text);
        }
        m_findings->error(value.position,
                          QStringLiteral("'command' is a name, not a number") + hint);
        return std::nullopt;
    }
    if (!value.isString()) {
        m_findings->error(value.position,
                          QStringLiteral("'command' is a string, not %1").arg(value.typeName));
        return std::nullopt;
    }
    const auto known = command(value.string);
    // Qt's lookup accepts "InputEvent::Stop" for "Stop".
    if (known && commandName(*known) == value.string)
        return known;
    m_findings->error(
        value.position,
        QStringLiteral("unknown command %1%2")
            .arg(quoted(value.string), m_codes.suggest(value.string, commandNames())));
    return std::nullopt;
}

std::optional<InputEvent::Command> ProfileReader::readCommand(const TableReader &table)
{
    const TomlValue *value = table.member("command");
    return value ? readCommand(*value) : std::nullopt;
}

std::optional<InputEvent::Bus> ProfileReader::readBus(const TableReader &table)
{
    const TomlValue *value = table.member("bus", Type::String);
    if (!value)
        return std::nullopt;
    const auto known = bus(value->string);
    if (known && busName(*known) == value->string)
        return known;
    m_findings->error(value->position,
                      QStringLiteral("unknown bus %1%2")
                          .arg(quoted(value->string), m_codes.suggest(value->string, busNames())));
    return std::nullopt;
}

/// Whether a file is one of the JSON profiles of before, or another JSON object. No TOML document
/// begins with a brace.
bool isJson(const QByteArray &text)
{
    const QByteArray content = text.startsWith("\xef\xbb\xbf") ? text.mid(3) : text;
    return content.trimmed().startsWith('{');
}

} // namespace

ParsedProfile parseProfile(const QByteArray &text, const QString &file) noexcept
{
    Findings findings;
    if (isJson(text)) {
        findings.error(
            {1, 1},
            QStringLiteral("this is JSON, and profiles are TOML: rewrite it with "
                           "[[device]] and [device.handler.keys], as in "
                           "'man vorn-input', or learn it again with 'vorn-input learn'"));
        return {{}, findings.toDiagnostics(file)};
    }
    const auto document = parseToml(text, &findings);
    if (!document)
        return {{}, findings.toDiagnostics(file)};
    const ProfileReader reader(*document, &findings);
    findProfileWarnings(reader.profile(), reader.places(), &findings);
    return {reader.profile(), findings.toDiagnostics(file)};
}

ParsedProfile loadProfile(const QString &path) noexcept
{
    const auto fail = [&path](const QString &reason) {
        return ParsedProfile{{},
                             {Diagnostic{Diagnostic::Severity::Error, path, 0, 0,
                                         QStringLiteral("cannot be read: ") + reason}}};
    };
    QFile file(path);
    // Asked first, because to open a pipe would wait for somebody to write to it.
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        return fail(QStringLiteral("it is not a regular file"));
    if (!file.open(QIODevice::ReadOnly))
        return fail(file.errorString());
    const QByteArray text = file.read(maxProfileSize + 1);
    if (file.error() != QFileDevice::NoError)
        return fail(file.errorString());
    if (text.size() > maxProfileSize)
        return fail(QStringLiteral("it is larger than %1 MiB").arg(maxProfileSize >> 20));
    return parseProfile(text, path);
}

} // namespace Vorn
