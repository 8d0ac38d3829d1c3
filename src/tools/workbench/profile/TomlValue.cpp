#include "TomlValue.h"

#include <algorithm>
#include <cmath>
#include <string_view>

// Errors come back as values. Tables nest four deep in a profile; the limit keeps hostile files from
// exhausting the stack.
#define TOML_EXCEPTIONS 0
#define TOML_MAX_NESTED_VALUES 16
// The parser asserts what a file can violate, "[{" for example, right before it checks the same and
// reports an error. With NDEBUG, clang would take the assertions for granted and drop the checks.
#undef NDEBUG
#define TOML_ASSERT(condition) static_cast<void>(0)
#include <toml++/toml.h>

namespace Vorn::Workbench {

namespace {

// The parser limits nested brackets, but not the nesting that dotted keys make.
constexpr int maxDotsPerLine = 100;

QString toQString(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size()));
}

TextPosition begin(const toml::source_region &region)
{
    return {static_cast<int>(region.begin.line), static_cast<int>(region.begin.column)};
}

bool isBefore(const TextPosition &a, const TextPosition &b)
{
    return a.line != b.line ? a.line < b.line : a.column < b.column;
}

QString typeName(const toml::node &node)
{
    switch (node.type()) {
    case toml::node_type::table:
        return QStringLiteral("a table");
    case toml::node_type::array:
        return QStringLiteral("a list");
    case toml::node_type::string:
        return QStringLiteral("a string");
    case toml::node_type::integer:
    case toml::node_type::floating_point:
        return QStringLiteral("a number");
    case toml::node_type::boolean:
        return QStringLiteral("true or false");
    default:
        return QStringLiteral("a date or time");
    }
}

TomlValue toValue(const toml::node &node)
{
    TomlValue value;
    value.typeName = typeName(node);
    value.position = begin(node.source());
    value.keyPosition = value.position;
    if (const toml::table *table = node.as_table()) {
        value.type = TomlValue::Type::Table;
        for (const auto &[key, child] : *table) {
            value.children.push_back(toValue(child));
            value.children.back().key = toQString(key.str());
            value.children.back().keyPosition = begin(key.source());
        }
        std::stable_sort(value.children.begin(), value.children.end(),
                         [](const TomlValue &a, const TomlValue &b) {
                             return isBefore(a.keyPosition, b.keyPosition);
                         });
    } else if (const toml::array *array = node.as_array()) {
        value.type = TomlValue::Type::List;
        for (const toml::node &child : *array)
            value.children.push_back(toValue(child));
    } else if (const auto *string = node.as_string()) {
        value.type = TomlValue::Type::String;
        value.string = toQString(string->get());
    } else if (const auto *integer = node.as_integer()) {
        value.type = TomlValue::Type::Integer;
        value.integer = integer->get();
    } else if (const auto *boolean = node.as_boolean()) {
        value.boolean = boolean->get();
    } else if (const auto *fraction = node.as_floating_point()) {
        value.fraction = fraction->get();
    }
    return value;
}

/// What people write that TOML does not have.
QString syntaxHint(const QString &message)
{
    if (message.contains(QLatin1String("could not determine value type"))
        || message.contains(QLatin1String("parsing boolean")))
        return QStringLiteral("; strings need double quotes");
    if (message.contains(QLatin1String("as table"))
        || message.contains(QLatin1String("table 'device'"))
        || message.contains(QLatin1String("table 'handler'")))
        return QStringLiteral("; write [[device]] and [[device.handler]] to add another one");
    if (message.contains(QLatin1String("cannot redefine")))
        return QStringLiteral("; to register a code twice, give it a list: [{ … }, { … }]");
    if (message.contains(QLatin1String("parsing inline table")))
        return QStringLiteral("; a table in braces is on one line, without a comma at its end");
    return {};
}

QString syntaxError(std::string_view description)
{
    // The parser names a macro of its own behind a limit.
    const QString text = toQString(description).section(QStringLiteral(" (TOML_"), 0, 0);
    const QString message = text.startsWith(QLatin1String("Error while "))
        ? QStringLiteral("TOML ") + text.at(0).toLower() + text.mid(1)
        : QStringLiteral("TOML error: ") + text;
    return message + syntaxHint(message);
}

/// The first line with more dots than any profile needs; 0 if there is none.
int firstLineOfDots(const QByteArray &text)
{
    int line = 1;
    int dots = 0;
    for (const char byte : text) {
        if (byte == '\n') {
            ++line;
            dots = 0;
        } else if (byte == '.' && ++dots > maxDotsPerLine) {
            return line;
        }
    }
    return 0;
}

} // namespace

QString TomlValue::numberText() const
{
    if (!fraction)
        return QString::number(integer);
    // 700.0 is not a whole number in TOML; "not 700" would be a riddle.
    const QString text = QString::number(*fraction, 'g', 12);
    return std::trunc(*fraction) == *fraction && !text.contains(QLatin1Char('e'))
        ? text + QStringLiteral(".0")
        : text;
}

const TomlValue *TomlValue::member(const QString &name) const
{
    if (!isTable())
        return nullptr;
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&name](const TomlValue &child) { return child.key == name; });
    return found == children.end() ? nullptr : &*found;
}

TextPosition TomlValue::positionOf(const char *name) const
{
    const TomlValue *found = member(QLatin1String(name));
    return found ? found->position : position;
}

std::optional<TomlValue> parseToml(const QByteArray &text, Findings *findings)
{
    if (const int line = firstLineOfDots(text)) {
        findings->error({line, 1},
                        QStringLiteral("more than %1 dots in one line").arg(maxDotsPerLine));
        return std::nullopt;
    }
    const std::string_view document(text.constData(), static_cast<std::size_t>(text.size()));
    const toml::parse_result result = toml::parse(document);
    if (!result) {
        findings->error(begin(result.error().source()), syntaxError(result.error().description()));
        return std::nullopt;
    }
    return toValue(result.table());
}

} // namespace Vorn::Workbench
