#ifndef VORN_PROFILE_TABLEREADER_H
#define VORN_PROFILE_TABLEREADER_H

#include "CodeReader.h"
#include "TomlValue.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <initializer_list>

namespace Vorn {

/// Reads the members of one table of a profile, and reports what is unknown, missing or of another
/// type.
class TableReader
{
public:
    /// A value that is not a table is reported.
    /// @param what "a key", for messages
    /// @param codes and @p value must live longer
    TableReader(const TomlValue &value, const QString &what, CodeReader *codes);

    /// A value without members, of which nothing is said.
    TableReader(const TomlValue &value, CodeReader *codes);

    bool isTable() const { return m_value.isTable(); }

    /// Reports members of other names.
    void allow(const QStringList &names);
    void allow(std::initializer_list<const char *> names);

    /// Whether there is such a member; reports that it is missing.
    bool require(const char *name);

    /// Null if there is none.
    const TomlValue *member(const char *name) const;
    /// Null if there is none; one of another type is reported.
    const TomlValue *member(const char *name, TomlValue::Type type) const;
    /// A string; empty if there is none.
    QString text(const char *name) const;
    /// True or false; false if there is none.
    bool flag(const char *name) const;
    /// The elements of a list of tables, [[name]]; a single table, [name], is a list of one.
    QVector<const TomlValue *> tables(const char *name) const;

private:
    const TomlValue &m_value;
    const QString m_what;
    CodeReader *const m_codes;
};

} // namespace Vorn

#endif
