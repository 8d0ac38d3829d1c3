#include "ProfileCompiler.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "EventNames.h"
#include "Quoting.h"

#include <QStringList>

namespace Vorn::Workbench {

namespace {

bool isHexDigit(ushort character)
{
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f')
        || (character >= 'A' && character <= 'F');
}

/// A literal in ASCII, whatever the compiler takes the source's encoding for.
QString literal(const QString &text)
{
    QString result = QStringLiteral("u\"");
    bool isEscaped = false; // the last character, with as many hexadecimal digits as follow
    for (const QChar character : text) {
        const ushort code = character.unicode();
        if (isEscaped && isHexDigit(code))
            result += QStringLiteral("\" u\"");
        isEscaped = code < ' ' || code > '~';
        // Question marks as well, since two of them begin a trigraph.
        if (isEscaped)
            result += QStringLiteral("\\x") + QString::number(code, 16);
        else if (code == '"' || code == '\\' || code == '?')
            result += QLatin1Char('\\') + character;
        else
            result += character;
    }
    return result + QLatin1Char('"');
}

QString enumerator(InputEvent::Command value)
{
    return QStringLiteral("InputEvent::") + commandName(value);
}

QString enumerator(InputEvent::State value)
{
    return QStringLiteral("InputEvent::") + stateName(value);
}

QString optional(const std::optional<InputEvent::Bus> &bus)
{
    return bus ? QStringLiteral("InputEvent::Bus::") + busName(*bus) : QStringLiteral("{}");
}

QString flag(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString row(const QStringList &members)
{
    return QLatin1Char('{') + members.join(QStringLiteral(", ")) + QLatin1Char('}');
}

/// Writes tables before what refers to them. Their names begin with the constant's, so that none of
/// them can be the same.
class Compiler
{
public:
    explicit Compiler(const QString &name)
        : m_name(name)
    { }

    QString compile(const Profile &profile);

private:
    QString deviceRow(const DeviceProfile &device);
    QString handlerRow(const HandlerProfile &handler);
    QString keyRow(const KeyMapping &key);

    /// Writes a table of @p rows. @return what refers to it
    QString table(const char *type, const char *what, const QStringList &rows);

    const QString m_name;
    QString m_tables;
    int m_count = 0;
};

QString Compiler::compile(const Profile &profile)
{
    QStringList rules;
    for (const SelectRule &rule : profile.select) {
        rules += row({enumerator(rule.command), enumerator(rule.state), literal(rule.identifier)})
            + QLatin1Char(',');
    }
    QStringList devices;
    for (const DeviceProfile &device : profile.devices)
        devices += deviceRow(device) + QLatin1Char(',');
    const QString select = table("Vorn::RuleData", "Rules", rules);
    const QString all = table("Vorn::DeviceData", "Devices", devices);
    return QStringLiteral("namespace {\n\n%1} // namespace\n\n"
                          "extern const Vorn::ProfileData %2;\n"
                          "constexpr Vorn::ProfileData %2 = %3;\n")
        .arg(m_tables, m_name, row({literal(profile.initial), select, all}));
}

QString Compiler::deviceRow(const DeviceProfile &device)
{
    QStringList handlers;
    for (const HandlerProfile &handler : device.handlers)
        handlers += handlerRow(handler) + QLatin1Char(',');
    return row({device.name ? literal(*device.name) : QStringLiteral("{}"), optional(device.bus),
                table("Vorn::HandlerData", "Handlers", handlers)});
}

QString Compiler::handlerRow(const HandlerProfile &handler)
{
    QStringList identifiers;
    for (const QString &identifier : handler.identifiers)
        identifiers += literal(identifier) + QLatin1Char(',');
    QStringList keys;
    for (const KeyMapping &key : handler.keys)
        keys += keyRow(key) + QStringLiteral(", // ") + keyName(key.code);
    QStringList chords;
    for (const ChordMapping &chord : handler.chords) {
        chords += row({QString::number(chord.first), QString::number(chord.second),
                       enumerator(chord.command), optional(chord.bus)})
            + QStringLiteral(", // ") + keyName(chord.first) + QLatin1Char('+')
            + keyName(chord.second);
    }
    QStringList switches;
    for (const SwitchMapping &mapping : handler.switches) {
        switches += row({QString::number(mapping.code), enumerator(mapping.command)})
            + QStringLiteral(", // ") + switchName(mapping.code);
    }
    // One after the other: the order of a call's arguments is not defined, and the numbers in the
    // tables' names depend on it.
    QStringList members{table("Vorn::TextData", "Identifiers", identifiers),
                        flag(handler.positionsAtStart)};
    members += table("Vorn::KeyData", "Keys", keys);
    members += table("Vorn::ChordData", "Chords", chords);
    members += table("Vorn::SwitchData", "Switches", switches);
    return row(members);
}

QString Compiler::keyRow(const KeyMapping &key)
{
    QString timeouts = QStringLiteral("{}");
    if (key.longPress) {
        QStringList values;
        for (const int timeout : key.longPress->timeouts)
            values += QString::number(timeout) + QLatin1Char(',');
        timeouts = table("int", "LongPress", values);
    }
    return row({QString::number(key.code), enumerator(key.command), flag(key.immediate), timeouts,
                flag(key.longPress && key.longPress->repeat), optional(key.bus)});
}

QString Compiler::table(const char *type, const char *what, const QStringList &rows)
{
    if (rows.isEmpty())
        return QStringLiteral("{}");
    QString name = m_name + QLatin1String(what) + QString::number(++m_count);
    m_tables += QStringLiteral("constexpr %1 %2[] = {\n").arg(QLatin1String(type), name);
    for (const QString &text : rows)
        m_tables += QStringLiteral("    ") + text + QLatin1Char('\n');
    m_tables += QStringLiteral("};\n\n");
    return name;
}

/// The file's name is not the end of the line, which a backslash would join with the next.
QByteArray opening(const CompiledProfile &compiled)
{
    return compiledSignature() + ' ' + printable(compiled.file).toUtf8()
        + ": change the profile, not this file.\n";
}

} // namespace

QByteArray compiledSource(const Profile &profile, const CompiledProfile &compiled)
{
    return opening(compiled) + "\n#include <vorn/profile/ProfileData.h>\n\n"
        + Compiler(compiled.name).compile(profile).toUtf8();
}

QByteArray compiledHeader(const CompiledProfile &compiled)
{
    const QByteArray name = compiled.name.toUtf8();
    const QByteArray guard = "COMPILED_PROFILE_" + name + "_H";
    return opening(compiled) + "\n#ifndef " + guard + "\n#define " + guard
        + "\n\n#include <vorn/profile/ProfileData.h>\n\nextern const Vorn::ProfileData " + name
        + ";\n\n#endif\n";
}

QByteArray compiledSignature()
{
    return QByteArrayLiteral("// Written by vorn-input compile from");
}

} // namespace Vorn::Workbench
