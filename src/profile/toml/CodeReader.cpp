#include "CodeReader.h"

#include "EventNames.h"
#include "Quoting.h"
#include "Suggestion.h"

namespace Vorn {

namespace {

constexpr int maxSuggestions = 500;

/// Members of a handler. People write them below [device.handler.keys], where TOML takes them for
/// the names of keys.
QStringList handlerMembers()
{
    return {QStringLiteral("identifiers"), QStringLiteral("positions-at-start"),
            QStringLiteral("keys"), QStringLiteral("chords"), QStringLiteral("switches")};
}

} // namespace

/// What differs between the codes of keys and those of switches.
struct CodeReader::Kind
{
    const char *name;
    const char *otherName;
    const char *otherGroup; ///< where the other kind belongs
    int largest;
    std::optional<int> (*code)(const QString &);
    std::optional<int> (*otherCode)(const QString &);
    QStringList (*names)();
};

const CodeReader::Kind CodeReader::keyKind{"key",   "switch",   "switches", maxKeyCode,
                                           keyCode, switchCode, keyNames};
const CodeReader::Kind CodeReader::switchKind{"switch",   "key",   "keys",     maxSwitchCode,
                                              switchCode, keyCode, switchNames};

std::optional<int> CodeReader::keyNamed(const QString &text, const TextPosition &position)
{
    return named(text, position, keyKind);
}

std::optional<int> CodeReader::switchNamed(const QString &text, const TextPosition &position)
{
    return named(text, position, switchKind);
}

std::optional<QPair<int, int>> CodeReader::pairNamed(const QString &text,
                                                     const TextPosition &position)
{
    const QStringList names = text.split(QLatin1Char('+'));
    if (names.size() != 2) {
        m_findings->error(position,
                          QStringLiteral("a chord is two keys, as in \"KEY_STOP+KEY_PLAY\", not %1")
                              .arg(quoted(text)));
        return std::nullopt;
    }
    const auto first = named(names.at(0).trimmed(), position, keyKind);
    const auto second = named(names.at(1).trimmed(), position, keyKind);
    if (!first || !second)
        return std::nullopt;
    return QPair<int, int>(*first, *second);
}

std::optional<int> CodeReader::key(const TomlValue &value)
{
    return code(value, keyKind);
}

std::optional<int> CodeReader::switchOf(const TomlValue &value)
{
    return code(value, switchKind);
}

std::optional<QPair<int, int>> CodeReader::pair(const TomlValue &list)
{
    QVector<int> codes;
    for (const TomlValue &value : list.children) {
        if (const auto found = key(value))
            codes.append(*found);
    }
    const auto count = static_cast<int>(list.children.size());
    if (count != 2) {
        m_findings->error(list.position,
                          QStringLiteral("a chord has exactly two keys, not %1").arg(count));
    }
    if (count != 2 || codes.size() != 2)
        return std::nullopt;
    return QPair<int, int>(codes.at(0), codes.at(1));
}

QString CodeReader::suggest(const QString &unknown, const QStringList &known)
{
    return ++m_suggestions > maxSuggestions ? QString() : suggestion(unknown, known);
}

std::optional<int> CodeReader::code(const TomlValue &value, const Kind &kind)
{
    if (value.isString())
        return named(value.string, value.position, kind);
    if (value.isInteger() && value.integer >= 0 && value.integer <= kind.largest)
        return static_cast<int>(value.integer);
    if (value.isInteger() || value.fraction) {
        m_findings->error(value.position,
                          QStringLiteral("the code of a %1 is a whole number from 0 to %2, not %3")
                              .arg(QLatin1String(kind.name))
                              .arg(kind.largest)
                              .arg(value.numberText()));
    } else {
        m_findings->error(value.position,
                          QStringLiteral("the code of a %1 is a name or a number, not %2")
                              .arg(QLatin1String(kind.name), value.typeName));
    }
    return std::nullopt;
}

std::optional<int> CodeReader::named(const QString &text, const TextPosition &position,
                                     const Kind &kind)
{
    if (const auto code = kind.code(text))
        return code;
    bool isNumber = false;
    static_cast<void>(text.toLongLong(&isNumber, 0));
    if (isNumber) {
        m_findings->error(position,
                          QStringLiteral("the code of a %1 is a whole number from 0 to %2, not %3")
                              .arg(QLatin1String(kind.name))
                              .arg(kind.largest)
                              .arg(quoted(text)));
    } else if (kind.otherCode(text)) {
        m_findings->error(position,
                          QStringLiteral("%1 is a %2, not a %3; it belongs under '%4'")
                              .arg(quoted(text), QLatin1String(kind.otherName),
                                   QLatin1String(kind.name), QLatin1String(kind.otherGroup)));
    } else if (handlerMembers().contains(text)) {
        m_findings->error(position,
                          QStringLiteral("%1 belongs to the handler; write it directly below "
                                         "[device.handler], above its tables")
                              .arg(quoted(text)));
    } else {
        m_findings->error(
            position,
            QStringLiteral("unknown %1 %2%3")
                .arg(QLatin1String(kind.name), quoted(text), suggest(text, kind.names())));
    }
    return std::nullopt;
}

} // namespace Vorn
