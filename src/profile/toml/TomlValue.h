#ifndef VORN_PROFILE_TOMLVALUE_H
#define VORN_PROFILE_TOMLVALUE_H

#include "Diagnostic.h"
#include "Findings.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace Vorn {

/// A value of a TOML document that knows where it is in the file.
///
/// The TOML library's own tree sorts the members of a table by name. Here they are in the order of
/// the file, because a profile registers keys in the order in which they are written.
struct TomlValue
{
    enum class Type { Table, List, String, Integer, Other };

    Type type = Type::Other;
    /// "a table", "a string", "true or false", …, to end a message with.
    QString typeName;
    QString string; ///< of a string
    qint64 integer = 0; ///< of an integer
    std::optional<bool> boolean; ///< of true and false
    std::optional<double> fraction; ///< of a floating-point number
    TextPosition position;

    QString key; ///< this member's name in its table; empty for an element of a list
    TextPosition keyPosition; ///< of the name; `position` for an element of a list
    std::vector<TomlValue> children; ///< members of a table, elements of a list

    bool isTable() const { return type == Type::Table; }
    bool isList() const { return type == Type::List; }
    bool isString() const { return type == Type::String; }
    bool isInteger() const { return type == Type::Integer; }

    /// A number as the file has it, for a message.
    QString numberText() const;

    /// Null if the table has no such member, or if this is not a table.
    const TomlValue *member(const QString &name) const;
    /// Where the member's value is; where this value is if it has no such member.
    TextPosition positionOf(const char *name) const;
};

/// Reads a TOML document. A syntax error goes into @p findings, and the result is empty; the parser
/// stops at the first one.
std::optional<TomlValue> parseToml(const QByteArray &text, Findings *findings);

} // namespace Vorn

#endif
