#include "TableReader.h"

#include "EventNames.h"
#include "Quoting.h"

namespace Vorn {

namespace {

QString typeText(TomlValue::Type type)
{
    switch (type) {
    case TomlValue::Type::Table:
        return QStringLiteral("a table");
    case TomlValue::Type::List:
        return QStringLiteral("a list");
    default:
        return QStringLiteral("a string");
    }
}

/// The value as a list, for one that was written without brackets.
QString listHint(const TomlValue &value)
{
    if (value.isString() && value.string.size() < 20)
        return QStringLiteral("; write [\"%1\"]").arg(value.string);
    return {};
}

/// Where a code belongs that was written among the members of a table.
QString codeHint(const QString &name)
{
    if (keyCode(name))
        return QStringLiteral("; keys belong under [device.handler.keys]");
    if (switchCode(name))
        return QStringLiteral("; switches belong under [device.handler.switches]");
    return {};
}

} // namespace

TableReader::TableReader(const TomlValue &value, const QString &what, CodeReader *codes)
    : m_value(value)
    , m_what(what)
    , m_codes(codes)
{
    if (!value.isTable()) {
        m_codes->findings()->error(
            value.position, QStringLiteral("%1 is a table, not %2").arg(what, value.typeName));
    }
}

TableReader::TableReader(const TomlValue &value, CodeReader *codes)
    : m_value(value)
    , m_codes(codes)
{ }

void TableReader::allow(const QStringList &names)
{
    if (!isTable())
        return;
    for (const TomlValue &child : m_value.children) {
        if (names.contains(child.key))
            continue;
        const QString where = codeHint(child.key);
        m_codes->findings()->error(
            child.keyPosition,
            QStringLiteral("%1 has no member %2%3")
                .arg(m_what, quoted(child.key),
                     where.isEmpty() ? m_codes->suggest(child.key, names) : where));
    }
}

void TableReader::allow(std::initializer_list<const char *> names)
{
    QStringList list;
    for (const char *name : names)
        list += QLatin1String(name);
    allow(list);
}

bool TableReader::require(const char *name)
{
    if (member(name))
        return true;
    m_codes->findings()->error(m_value.position,
                               QStringLiteral("%1 needs '%2'").arg(m_what, QLatin1String(name)));
    return false;
}

const TomlValue *TableReader::member(const char *name) const
{
    return m_value.member(QLatin1String(name));
}

const TomlValue *TableReader::member(const char *name, TomlValue::Type type) const
{
    const TomlValue *value = member(name);
    if (!value || value->type == type)
        return value;
    const QString hint = type == TomlValue::Type::List ? listHint(*value) : QString();
    m_codes->findings()->error(value->position,
                               QStringLiteral("'%1' is %2, not %3")
                                       .arg(QLatin1String(name), typeText(type), value->typeName)
                                   + hint);
    return nullptr;
}

QString TableReader::text(const char *name) const
{
    const TomlValue *value = member(name, TomlValue::Type::String);
    return value ? value->string : QString();
}

bool TableReader::flag(const char *name) const
{
    const TomlValue *value = member(name);
    if (!value)
        return false;
    if (!value->boolean) {
        m_codes->findings()->error(value->position,
                                   QStringLiteral("'%1' is true or false, not %2")
                                       .arg(QLatin1String(name), value->typeName));
    }
    return value->boolean.value_or(false);
}

QVector<const TomlValue *> TableReader::tables(const char *name) const
{
    const TomlValue *value = member(name);
    if (!value)
        return {};
    if (value->isTable())
        return {value};
    if (!member(name, TomlValue::Type::List))
        return {};
    QVector<const TomlValue *> elements;
    for (const TomlValue &element : value->children)
        elements.append(&element);
    return elements;
}

} // namespace Vorn
