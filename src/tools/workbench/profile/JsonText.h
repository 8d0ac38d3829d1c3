#ifndef VORN_WORKBENCH_JSONTEXT_H
#define VORN_WORKBENCH_JSONTEXT_H

#include "Diagnostic.h"
#include "Quoting.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

class JsonText;

/// A value in a JsonText, with the place where it stands. A light reference, which is valid as long
/// as the text is.
class JsonValue
{
public:
    enum class Type { Object, Array, String, Number, Bool, Null };

    Type type() const;
    /// "a string", "true or false", … to end a message with.
    QString typeName() const;
    bool isObject() const { return type() == Type::Object; }
    bool isArray() const { return type() == Type::Array; }
    bool isString() const { return type() == Type::String; }
    bool isNumber() const { return type() == Type::Number; }
    bool isBool() const { return type() == Type::Bool; }

    /// The text of a string; empty for everything else.
    QString string() const;
    /// 0 for everything that is no number.
    double number() const;
    /// False for everything but `true`.
    bool boolean() const;

    /// The elements of an array or the members of an object, in the order of the text. Duplicate
    /// members are all there.
    QVector<JsonValue> children() const;
    /// The last one of that name, as it is with all readers of JSON.
    std::optional<JsonValue> member(const QString &name) const;
    /// The name of this member of an object; empty for an element of an array.
    QString key() const;

    /// Where the value begins, in bytes.
    int offset() const;
    /// Where the member's name begins; offset() for an element of an array.
    int keyOffset() const;
    /// The line in which the value begins, from 1.
    int line() const;

private:
    friend class JsonText;
    JsonValue(const JsonText *text, int index)
        : m_text(text)
        , m_index(index)
    { }

    const JsonText *m_text;
    int m_index;
};

/// A JSON text that was read, of which every value knows its place.
class JsonText
{
public:
    explicit JsonText(const QByteArray &text);

    /// Whether it is JSON with an object or an array outside.
    bool isValid() const { return m_error.isEmpty(); }
    /// What is wrong with it, and where, in bytes.
    QString error() const { return m_error; }
    int errorOffset() const { return m_errorOffset; }

    /// Only of a valid text.
    JsonValue root() const { return {this, 0}; }

private:
    friend class JsonValue;

    // Offsets only, and in one block: the largest text that is read has millions of values.
    struct Node
    {
        int begin = 0;
        int end = 0;
        int keyBegin = -1;
        int keyEnd = -1;
        int firstChild = -1;
        int nextSibling = -1;
    };
    struct Level
    {
        int node = 0;
        int lastChild = -1;
    };

    void checkSyntax();
    bool scan();
    bool scanKey();
    bool scanString();
    bool scanLeaf();
    bool closeLevels();
    void addNode();
    void skipSpace();
    char current() const;
    QString decoded(int begin, int end) const;

    const QByteArray m_text;
    QVector<Node> m_nodes;
    QVector<int> m_lineEnds;
    QString m_error;
    int m_errorOffset = 0;

    // While scanning.
    QVector<Level> m_levels;
    int m_position = 0;
    int m_keyBegin = -1;
    int m_keyEnd = -1;
};

/// Collects mistakes by their place in a text, found in any order.
class Findings
{
public:
    void error(int offset, const QString &message);
    void warning(int offset, const QString &message);

    bool hasErrors() const { return m_hasErrors; }

    /// In the order of the text.
    Diagnostics toDiagnostics(const QByteArray &text, const QString &file) const;

private:
    struct Finding
    {
        int offset = 0;
        Diagnostic::Severity severity = Diagnostic::Severity::Error;
        QString message;
    };

    QVector<Finding> m_findings;
    bool m_hasErrors = false;
};

} // namespace Vorn::Workbench

#endif
