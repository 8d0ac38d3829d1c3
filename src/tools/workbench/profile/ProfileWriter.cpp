#include "ProfileWriter.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "EventNames.h"
#include "Profile.h"

#include <QStringList>

// Qt's writer puts every member on a line of its own and sorts them, so that a profile of thirty
// keys would be two hundred lines with the command before the code.

namespace Vorn::Workbench {

namespace {

QString json(const QString &text)
{
    QString result(QLatin1Char('"'));
    for (int i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        const bool isPair =
            character.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (isPair) {
            result += character;
            result += text.at(++i);
        } else if (character == QLatin1Char('"') || character == QLatin1Char('\\')) {
            result += QLatin1Char('\\');
            result += character;
        } else if (character.isSurrogate() || character.unicode() < 0x20
                   || character.unicode() == 0x7F) {
            // Half a pair is no UTF-8.
            result += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
        } else {
            result += character;
        }
    }
    return result + QLatin1Char('"');
}

QString member(const char *name, const QString &value)
{
    return json(QLatin1String(name)) + QStringLiteral(": ") + value;
}

QString oneLine(const QStringList &elements, char open, char close)
{
    return QLatin1Char(open) + elements.join(QStringLiteral(", ")) + QLatin1Char(close);
}

QString object(const QStringList &members)
{
    return oneLine(members, '{', '}');
}

QString list(const QStringList &elements)
{
    return oneLine(elements, '[', ']');
}

/// Each element on a line of its own.
QString lines(const QStringList &elements, char open, char close, int indent)
{
    if (elements.isEmpty())
        return oneLine({}, open, close);
    const QString end = QLatin1Char('\n') + QString(indent, QLatin1Char(' '));
    const QString between = end + QStringLiteral("  ");
    return QLatin1Char(open) + between + elements.join(QLatin1Char(',') + between) + end
        + QLatin1Char(close);
}

/// Codes without a name are numbers.
QString code(int value, const QString &name)
{
    const QString number = QString::number(value);
    return name == number ? number : json(name);
}

QStringList busMember(const std::optional<InputEvent::Bus> &bus)
{
    return bus ? QStringList{member("bus", json(busName(*bus)))} : QStringList();
}

QString toJson(const LongPress &longPress)
{
    QStringList timeouts;
    for (const int timeout : longPress.timeouts)
        timeouts += QString::number(timeout);
    QStringList members{member("timeouts", list(timeouts))};
    if (longPress.repeat)
        members += member("repeat", QStringLiteral("true"));
    return object(members);
}

QString toJson(const KeyMapping &key)
{
    QStringList members{member("code", code(key.code, keyName(key.code))),
                        member("command", json(commandName(key.command)))};
    if (key.immediate)
        members += member("immediate", QStringLiteral("true"));
    if (key.longPress)
        members += member("longPress", toJson(*key.longPress));
    return object(members + busMember(key.bus));
}

QString toJson(const ChordMapping &chord)
{
    const QString keys =
        list({code(chord.first, keyName(chord.first)), code(chord.second, keyName(chord.second))});
    const QStringList members{member("keys", keys),
                              member("command", json(commandName(chord.command)))};
    return object(members + busMember(chord.bus));
}

QString toJson(const SwitchMapping &mapping)
{
    return object({member("code", code(mapping.code, switchName(mapping.code))),
                   member("command", json(commandName(mapping.command)))});
}

QString toJson(const SelectRule &rule)
{
    QStringList members{member("command", json(commandName(rule.command)))};
    if (rule.state != InputEvent::KeyReleased)
        members += member("state", json(stateName(rule.state)));
    members += member("identifier", json(rule.identifier));
    return object(members);
}

template <typename Mapping>
QStringList mappings(const char *name, const QVector<Mapping> &elements, int indent)
{
    QStringList texts;
    for (const Mapping &element : elements)
        texts += toJson(element);
    return texts.isEmpty() ? texts : QStringList{member(name, lines(texts, '[', ']', indent))};
}

QString toJson(const HandlerProfile &handler, int indent)
{
    const int inner = indent + 2;
    QStringList members;
    if (handler.identifiers != QStringList{QString()}) {
        QStringList identifiers;
        for (const QString &identifier : handler.identifiers)
            identifiers += json(identifier);
        members += member("identifiers", list(identifiers));
    }
    members += mappings("keys", handler.keys, inner);
    members += mappings("chords", handler.chords, inner);
    members += mappings("switches", handler.switches, inner);
    if (handler.positionsAtStart)
        members += member("positionsAtStart", QStringLiteral("true"));
    return lines(members, '{', '}', indent);
}

QString toJson(const DeviceProfile &device, int indent)
{
    const int inner = indent + 2;
    QStringList members;
    if (device.name)
        members += member("name", json(*device.name));
    members += busMember(device.bus);
    QStringList handlers;
    for (const HandlerProfile &handler : device.handlers)
        handlers += toJson(handler, inner + 2);
    if (!handlers.isEmpty())
        members += member("handlers", lines(handlers, '[', ']', inner));
    return lines(members, '{', '}', indent);
}

} // namespace

QByteArray profileToJson(const Profile &profile)
{
    QStringList members;
    if (!profile.initial.isEmpty())
        members += member("initial", json(profile.initial));
    members += mappings("select", profile.select, 2);
    QStringList devices;
    for (const DeviceProfile &device : profile.devices)
        devices += toJson(device, 4);
    members += member("devices", lines(devices, '[', ']', 2));
    return lines(members, '{', '}', 0).toUtf8() + '\n';
}

} // namespace Vorn::Workbench
