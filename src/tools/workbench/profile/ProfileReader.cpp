#include "ProfileReader.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "EventNames.h"
#include "ProfileWarnings.h"
#include "Quoting.h"
#include "Suggestion.h"

#include <cmath>
#include <limits>

namespace Vorn::Workbench {

namespace {

// Each takes a comparison with all names, which a file of nonsense should not have to wait for.
constexpr int maxSuggestions = 500;

QString name(const char *text)
{
    return QString::fromLatin1(text);
}

QString typeText(JsonValue::Type type)
{
    switch (type) {
    case JsonValue::Type::Object:
        return QStringLiteral("an object");
    case JsonValue::Type::Array:
        return QStringLiteral("a list");
    case JsonValue::Type::Bool:
        return QStringLiteral("true or false");
    default:
        return QStringLiteral("a string");
    }
}

/// The value as it would have to stand in a list, for a value that stands there without one.
QString listHint(const char *member, const JsonValue &value)
{
    if (qstrcmp(member, "timeouts") == 0 && value.isNumber())
        return QStringLiteral("; write [%1]").arg(value.number());
    if (qstrcmp(member, "identifiers") == 0 && value.isString() && value.string().size() < 20)
        return QStringLiteral("; write [\"%1\"]").arg(value.string());
    return {};
}

bool isWhole(double number)
{
    return std::trunc(number) == number;
}

} // namespace

/// What there is to say about codes of keys and of switches.
struct ProfileReader::CodeKind
{
    const char *kind;
    const char *otherKind;
    const char *place; ///< of the other kind
    int largest;
    std::optional<int> (*code)(const QString &);
    std::optional<int> (*otherCode)(const QString &);
    QStringList (*names)();

    static const CodeKind key;
    static const CodeKind switchOf;
};

const ProfileReader::CodeKind ProfileReader::CodeKind::key{
    "key", "switch", "switches", maxKeyCode, keyCode, switchCode, keyNames};
const ProfileReader::CodeKind ProfileReader::CodeKind::switchOf{
    "switch", "key", "keys", maxSwitchCode, switchCode, keyCode, switchNames};

ProfileReader::ProfileReader(const JsonText &text, Findings *findings)
    : m_findings(findings)
    , m_places{text.root(), {}, {}}
{
    readRoot();
}

void ProfileReader::readRoot()
{
    const auto members = membersOf(m_places.root, QStringLiteral("a profile"), {name("devices")},
                                   {name("$schema"), name("initial"), name("select")});
    if (!members)
        return;
    text(*members, "$schema");
    m_profile.initial = text(*members, "initial");
    for (const JsonValue &value : elements(*members, "select")) {
        if (const auto rule = readRule(value)) {
            m_profile.select.append(*rule);
            m_places.select.append(value);
        }
    }
    for (const JsonValue &value : elements(*members, "devices"))
        readDevice(value);
}

void ProfileReader::readDevice(const JsonValue &value)
{
    const auto members = membersOf(value, QStringLiteral("a device entry"), {},
                                   {name("name"), name("bus"), name("handlers")});
    if (!members)
        return;
    DeviceProfile device;
    DevicePlaces places{value, {}};
    if (const auto deviceName = member(*members, "name", JsonValue::Type::String))
        device.name = deviceName->string();
    device.bus = readBus(*members);
    for (const JsonValue &handler : elements(*members, "handlers"))
        readHandler(handler, &device, &places);
    m_profile.devices.append(device);
    m_places.devices.append(places);
}

void ProfileReader::readHandler(const JsonValue &value, DeviceProfile *device, DevicePlaces *places)
{
    const auto members = membersOf(value, QStringLiteral("a handler"), {},
                                   {name("identifiers"), name("keys"), name("chords"),
                                    name("switches"), name("positionsAtStart")});
    if (!members)
        return;
    HandlerProfile handler;
    HandlerPlaces handlerPlaces{value, {}, {}, {}, {}};
    readIdentifiers(*members, &handler, &handlerPlaces);
    for (const JsonValue &element : elements(*members, "keys")) {
        if (const auto key = readKey(element)) {
            handler.keys.append(*key);
            handlerPlaces.keys.append(element);
        }
    }
    for (const JsonValue &element : elements(*members, "chords")) {
        if (const auto chord = readChord(element)) {
            handler.chords.append(*chord);
            handlerPlaces.chords.append(element);
        }
    }
    for (const JsonValue &element : elements(*members, "switches")) {
        if (const auto mapping = readSwitch(element)) {
            handler.switches.append(*mapping);
            handlerPlaces.switches.append(element);
        }
    }
    handler.positionsAtStart = flag(*members, "positionsAtStart");
    device->handlers.append(handler);
    places->handlers.append(handlerPlaces);
}

void ProfileReader::readIdentifiers(const Members &members, HandlerProfile *handler,
                                    HandlerPlaces *places)
{
    const auto list = member(members, "identifiers", JsonValue::Type::Array);
    if (!list) {
        places->identifiers.append(places->handler);
        return;
    }
    handler->identifiers.clear();
    for (const JsonValue &value : list->children()) {
        if (!value.isString()) {
            m_findings->error(
                value.offset(),
                QStringLiteral("an identifier is a string, not %1").arg(value.typeName()));
            continue;
        }
        handler->identifiers.append(value.string());
        places->identifiers.append(value);
    }
    if (list->children().isEmpty()) {
        m_findings->error(list->offset(),
                          QStringLiteral("a handler without an identifier is never selected; leave "
                                         "'identifiers' out for the empty one"));
    }
}

std::optional<KeyMapping> ProfileReader::readKey(const JsonValue &value)
{
    const auto members = membersOf(value, QStringLiteral("a key"), {name("code"), name("command")},
                                   {name("immediate"), name("longPress"), name("bus")});
    if (!members)
        return std::nullopt;
    KeyMapping key;
    const auto codeValue = members->constFind(name("code"));
    const auto code =
        codeValue == members->cend() ? std::nullopt : readCode(*codeValue, CodeKind::key);
    const auto command = readCommand(*members);
    key.immediate = flag(*members, "immediate");
    const auto longPress = members->constFind(name("longPress"));
    if (longPress != members->cend())
        key.longPress = readLongPress(*longPress);
    key.bus = readBus(*members);
    const bool isBusWrong = members->contains(name("bus")) && !key.bus;
    if (!code || !command || isBusWrong)
        return std::nullopt;
    key.code = *code;
    key.command = *command;
    return key;
}

std::optional<ChordMapping> ProfileReader::readChord(const JsonValue &value)
{
    const auto members =
        membersOf(value, QStringLiteral("a chord"), {name("keys"), name("command")}, {name("bus")});
    if (!members)
        return std::nullopt;
    ChordMapping chord;
    const auto command = readCommand(*members);
    chord.bus = readBus(*members);
    const auto keys = member(*members, "keys", JsonValue::Type::Array);
    if (!keys)
        return std::nullopt;
    QVector<int> codes;
    for (const JsonValue &key : keys->children()) {
        if (const auto code = readCode(key, CodeKind::key))
            codes.append(*code);
    }
    const int count = keys->children().size();
    if (count != 2) {
        m_findings->error(keys->offset(),
                          QStringLiteral("a chord has exactly two keys, not %1").arg(count));
    }
    const bool isBusWrong = members->contains(name("bus")) && !chord.bus;
    if (count != 2 || codes.size() != 2 || !command || isBusWrong)
        return std::nullopt;
    chord.first = codes.at(0);
    chord.second = codes.at(1);
    chord.command = *command;
    return chord;
}

std::optional<SwitchMapping> ProfileReader::readSwitch(const JsonValue &value)
{
    const auto members =
        membersOf(value, QStringLiteral("a switch"), {name("code"), name("command")}, {});
    if (!members)
        return std::nullopt;
    const auto codeValue = members->constFind(name("code"));
    const auto code =
        codeValue == members->cend() ? std::nullopt : readCode(*codeValue, CodeKind::switchOf);
    const auto command = readCommand(*members);
    if (!code || !command)
        return std::nullopt;
    return SwitchMapping{*code, *command};
}

std::optional<SelectRule> ProfileReader::readRule(const JsonValue &value)
{
    const auto members = membersOf(value, QStringLiteral("a select rule"),
                                   {name("command"), name("identifier")}, {name("state")});
    if (!members)
        return std::nullopt;
    SelectRule rule;
    const auto command = readCommand(*members);
    rule.identifier = text(*members, "identifier");
    if (const auto stateValue = member(*members, "state", JsonValue::Type::String)) {
        const QString stateText = stateValue->string();
        const auto known = state(stateText);
        if (known) {
            rule.state = *known;
        } else {
            m_findings->error(stateValue->offset(),
                              QStringLiteral("unknown state %1%2")
                                  .arg(quoted(stateText), suggest(stateText, stateNames())));
        }
    }
    if (!command)
        return std::nullopt;
    rule.command = *command;
    return rule;
}

std::optional<LongPress> ProfileReader::readLongPress(const JsonValue &value)
{
    const auto members =
        membersOf(value, QStringLiteral("a long press"), {name("timeouts")}, {name("repeat")});
    if (!members)
        return std::nullopt;
    LongPress longPress;
    longPress.repeat = flag(*members, "repeat");
    const auto timeouts = member(*members, "timeouts", JsonValue::Type::Array);
    if (!timeouts)
        return std::nullopt;
    if (timeouts->children().isEmpty()) {
        m_findings->error(timeouts->offset(),
                          QStringLiteral("an empty list of timeouts would end the process when the "
                                         "key is held; give at least one timeout, e.g. [700]"));
    }
    for (const JsonValue &element : timeouts->children()) {
        if (const auto timeout = readTimeout(element))
            longPress.timeouts.append(*timeout);
    }
    return longPress;
}

std::optional<int> ProfileReader::readTimeout(const JsonValue &value)
{
    if (!value.isNumber()) {
        m_findings->error(
            value.offset(),
            QStringLiteral("a timeout is a number of milliseconds, not %1").arg(value.typeName()));
        return std::nullopt;
    }
    const double number = value.number();
    constexpr double largest = std::numeric_limits<int>::max();
    if (!isWhole(number) || number < 0 || number > largest) {
        m_findings->error(value.offset(),
                          QStringLiteral("a timeout is a whole number of milliseconds from 0 to "
                                         "2147483647, not %1")
                              .arg(number, 0, 'g', 12));
        return std::nullopt;
    }
    return static_cast<int>(number);
}

std::optional<int> ProfileReader::readCode(const JsonValue &value, const CodeKind &kind)
{
    if (value.isString())
        return readCodeName(value, kind);
    if (!value.isNumber()) {
        m_findings->error(value.offset(),
                          QStringLiteral("the code of a %1 is a name or a number, not %2")
                              .arg(name(kind.kind), value.typeName()));
        return std::nullopt;
    }
    const double number = value.number();
    if (!isWhole(number) || number < 0 || number > kind.largest) {
        m_findings->error(value.offset(),
                          QStringLiteral("the code of a %1 is a whole number from 0 to %2, not %3")
                              .arg(name(kind.kind))
                              .arg(kind.largest)
                              .arg(number, 0, 'g', 12));
        return std::nullopt;
    }
    return static_cast<int>(number);
}

std::optional<int> ProfileReader::readCodeName(const JsonValue &value, const CodeKind &kind)
{
    const QString codeText = value.string();
    // What is looked up ends at a NUL.
    const bool isWord = !codeText.contains(QChar::Null);
    const auto code = kind.code(codeText);
    if (isWord && code)
        return code;
    bool isNumber = false;
    codeText.toLongLong(&isNumber, 0);
    if (isNumber) {
        m_findings->error(value.offset(),
                          QStringLiteral("the code of a %1 is a whole number from 0 to %2, not %3")
                              .arg(name(kind.kind))
                              .arg(kind.largest)
                              .arg(quoted(codeText)));
    } else if (isWord && kind.otherCode(codeText)) {
        m_findings->error(
            value.offset(),
            QStringLiteral("%1 is a %2, not a %3; it belongs under '%4'")
                .arg(quoted(codeText), name(kind.otherKind), name(kind.kind), name(kind.place)));
    } else {
        m_findings->error(
            value.offset(),
            QStringLiteral("unknown %1 %2%3")
                .arg(name(kind.kind), quoted(codeText), suggest(codeText, kind.names())));
    }
    return std::nullopt;
}

std::optional<InputEvent::Command> ProfileReader::readCommand(const JsonValue &value)
{
    if (value.isNumber()) {
        const double number = value.number();
        QString hint;
        if (isWhole(number) && number >= 0 && number <= static_cast<int>(InputEvent::CharTilde)) {
            const QString text =
                commandName(static_cast<InputEvent::Command>(static_cast<int>(number)));
            if (commandNames().contains(text))
                hint = QStringLiteral("; %1 is '%2'").arg(number).arg(text);
        }
        m_findings->error(value.offset(),
                          QStringLiteral("'command' is a name, not a number") + hint);
        return std::nullopt;
    }
    const QString commandText = value.string();
    const auto known = command(commandText);
    // Qt's look-up takes "InputEvent::Stop" for "Stop".
    if (known && commandName(*known) == commandText)
        return known;
    m_findings->error(value.offset(),
                      QStringLiteral("unknown command %1%2")
                          .arg(quoted(commandText), suggest(commandText, commandNames())));
    return std::nullopt;
}

std::optional<InputEvent::Command> ProfileReader::readCommand(const Members &members)
{
    const auto value = members.constFind(name("command"));
    if (value == members.cend())
        return std::nullopt;
    if (value->isNumber())
        return readCommand(*value);
    const auto checked = member(members, "command", JsonValue::Type::String);
    return checked ? readCommand(*checked) : std::nullopt;
}

std::optional<InputEvent::Bus> ProfileReader::readBus(const Members &members)
{
    const auto value = member(members, "bus", JsonValue::Type::String);
    if (!value)
        return std::nullopt;
    const QString busText = value->string();
    const auto known = bus(busText);
    if (known && busName(*known) == busText)
        return known;
    m_findings->error(
        value->offset(),
        QStringLiteral("unknown bus %1%2").arg(quoted(busText), suggest(busText, busNames())));
    return std::nullopt;
}

std::optional<ProfileReader::Members> ProfileReader::membersOf(const JsonValue &value,
                                                               const QString &what,
                                                               const QStringList &required,
                                                               const QStringList &optional)
{
    if (!value.isObject()) {
        m_findings->error(value.offset(),
                          QStringLiteral("%1 is an object, not %2").arg(what, value.typeName()));
        return std::nullopt;
    }
    const QStringList known = required + optional + QStringList{name("description")};
    Members members;
    for (const JsonValue &child : value.children()) {
        const QString key = child.key();
        if (!known.contains(key)) {
            m_findings->error(child.keyOffset(),
                              QStringLiteral("%1 has no member %2%3")
                                  .arg(what, quoted(key), suggest(key, known)));
            continue;
        }
        if (members.contains(key)) {
            m_findings->warning(
                child.keyOffset(),
                QStringLiteral("%1 stands here again, only the last one counts").arg(quoted(key)));
        }
        members.insert(key, child);
    }
    for (const QString &key : required) {
        if (!members.contains(key))
            m_findings->error(value.offset(), QStringLiteral("%1 needs '%2'").arg(what, key));
    }
    text(members, "description");
    return members;
}

std::optional<JsonValue> ProfileReader::member(const Members &members, const char *key,
                                               JsonValue::Type type)
{
    const auto value = members.constFind(name(key));
    if (value == members.cend())
        return std::nullopt;
    if (value->type() == type)
        return *value;
    const QString hint = type == JsonValue::Type::Array ? listHint(key, *value) : QString();
    m_findings->error(
        value->offset(),
        QStringLiteral("'%1' is %2, not %3").arg(name(key), typeText(type), value->typeName())
            + hint);
    return std::nullopt;
}

QVector<JsonValue> ProfileReader::elements(const Members &members, const char *key)
{
    const auto list = member(members, key, JsonValue::Type::Array);
    return list ? list->children() : QVector<JsonValue>();
}

QString ProfileReader::text(const Members &members, const char *key)
{
    const auto value = member(members, key, JsonValue::Type::String);
    return value ? value->string() : QString();
}

bool ProfileReader::flag(const Members &members, const char *key)
{
    const auto value = member(members, key, JsonValue::Type::Bool);
    return value && value->boolean();
}

QString ProfileReader::suggest(const QString &unknown, const QStringList &known)
{
    return ++m_suggestions > maxSuggestions ? QString() : suggestion(unknown, known);
}

ParsedProfile parseProfile(const QByteArray &text, const QString &file)
{
    Findings findings;
    const JsonText json(text);
    if (!json.isValid()) {
        findings.error(json.errorOffset(), json.error());
        return {{}, findings.toDiagnostics(text, file)};
    }
    const ProfileReader reader(json, &findings);
    findProfileWarnings(reader.profile(), reader.places(), &findings);
    return {reader.profile(), findings.toDiagnostics(text, file)};
}

} // namespace Vorn::Workbench
