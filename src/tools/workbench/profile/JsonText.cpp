#include "JsonText.h"

#include "Diagnostic.h"
#include "Quoting.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

bool isSpace(char byte)
{
    return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
}

/// What people write that JSON does not have.
QString syntaxHint(const QJsonParseError &error, char found)
{
    if (found == '/' || found == '#')
        return QStringLiteral("there are no comments, write a \"description\" instead");
    if (found == '\'')
        return QStringLiteral("texts stand in double quotes");
    switch (error.error) {
    case QJsonParseError::MissingObject:
        return QStringLiteral("a comma stands before the closing bracket");
    case QJsonParseError::UnterminatedObject:
        if (found == '"')
            return QStringLiteral("a comma is missing before this");
        if (found == '\0')
            return QStringLiteral("the closing bracket is missing");
        return QStringLiteral("a name in double quotes, a comma or '}' belongs here");
    default:
        return error.errorString();
    }
}

} // namespace

JsonValue::Type JsonValue::type() const
{
    switch (m_text->m_text.at(m_text->m_nodes.at(m_index).begin)) {
    case '{':
        return Type::Object;
    case '[':
        return Type::Array;
    case '"':
        return Type::String;
    case 't':
    case 'f':
        return Type::Bool;
    case 'n':
        return Type::Null;
    default:
        return Type::Number;
    }
}

QString JsonValue::typeName() const
{
    switch (type()) {
    case Type::Object:
        return QStringLiteral("an object");
    case Type::Array:
        return QStringLiteral("a list");
    case Type::String:
        return QStringLiteral("a string");
    case Type::Number:
        return QStringLiteral("a number");
    case Type::Bool:
        return QStringLiteral("true or false");
    case Type::Null:
        break;
    }
    return QStringLiteral("null");
}

QString JsonValue::string() const
{
    const JsonText::Node &node = m_text->m_nodes.at(m_index);
    return isString() ? m_text->decoded(node.begin, node.end) : QString();
}

double JsonValue::number() const
{
    const JsonText::Node &node = m_text->m_nodes.at(m_index);
    return isNumber() ? m_text->m_text.mid(node.begin, node.end - node.begin).toDouble() : 0;
}

bool JsonValue::boolean() const
{
    return m_text->m_text.at(m_text->m_nodes.at(m_index).begin) == 't';
}

QVector<JsonValue> JsonValue::children() const
{
    QVector<JsonValue> list;
    int child = m_text->m_nodes.at(m_index).firstChild;
    for (; child >= 0; child = m_text->m_nodes.at(child).nextSibling)
        list.append({m_text, child});
    return list;
}

std::optional<JsonValue> JsonValue::member(const QString &name) const
{
    std::optional<JsonValue> found;
    if (!isObject())
        return found;
    for (const JsonValue &child : children()) {
        if (child.key() == name)
            found = child;
    }
    return found;
}

QString JsonValue::key() const
{
    const JsonText::Node &node = m_text->m_nodes.at(m_index);
    return node.keyBegin < 0 ? QString() : m_text->decoded(node.keyBegin, node.keyEnd);
}

int JsonValue::offset() const
{
    return m_text->m_nodes.at(m_index).begin;
}

int JsonValue::keyOffset() const
{
    const JsonText::Node &node = m_text->m_nodes.at(m_index);
    return node.keyBegin < 0 ? node.begin : node.keyBegin;
}

int JsonValue::line() const
{
    const QVector<int> &ends = m_text->m_lineEnds;
    const auto *const end = std::lower_bound(ends.begin(), ends.end(), offset());
    return static_cast<int>(end - ends.begin()) + 1;
}

JsonText::JsonText(const QByteArray &text)
    : m_text(text)
{
    checkSyntax();
    if (isValid() && !scan()) {
        m_error = QStringLiteral("no valid JSON: this was not expected here");
        m_errorOffset = m_position;
    }
    m_levels.clear();
    for (int end = m_text.indexOf('\n'); end >= 0; end = m_text.indexOf('\n', end + 1))
        m_lineEnds.append(end);
}

void JsonText::checkSyntax()
{
    QJsonParseError error = {};
    QJsonDocument::fromJson(m_text, &error);
    if (error.error == QJsonParseError::NoError)
        return;
    m_errorOffset = std::clamp(error.offset, 0, m_text.size());
    // Otherwise the offset is behind the byte that was read in vain.
    if (error.error != QJsonParseError::GarbageAtEnd
        && error.error != QJsonParseError::IllegalUTF8String && m_errorOffset > 0)
        --m_errorOffset;
    const auto isBlank = std::all_of(m_text.begin(), m_text.end(), isSpace);
    if (isBlank)
        m_errorOffset = 0;
    const char found = m_errorOffset < m_text.size() ? m_text.at(m_errorOffset) : '\0';
    m_error = QStringLiteral("no valid JSON: ")
        + (isBlank ? QStringLiteral("there is nothing in it") : syntaxHint(error, found));
}

// Walks through a text that is known to be JSON, without recursion. Whatever the text is, every
// round reads at least one byte of it or ends.
bool JsonText::scan()
{
    if (m_text.startsWith("\xEF\xBB\xBF"))
        m_position = 3;
    skipSpace();
    for (;;) {
        const char first = current();
        if (first != '{' && first != '[') {
            // Nothing else may stand outside.
            if (m_levels.isEmpty() || !scanLeaf())
                return false;
        } else {
            addNode();
            m_levels.append({m_nodes.size() - 1, -1});
            ++m_position;
            skipSpace();
            if (current() != '}' && current() != ']') {
                if (!scanKey())
                    return false;
                continue;
            }
        }
        if (!closeLevels())
            return false;
        if (m_levels.isEmpty()) {
            skipSpace();
            return m_position == m_text.size();
        }
        ++m_position; // the comma
        skipSpace();
        if (!scanKey())
            return false;
    }
}

/// Goes past closing brackets up to a comma or the end.
bool JsonText::closeLevels()
{
    while (!m_levels.isEmpty()) {
        skipSpace();
        if (current() == ',')
            return true;
        Node &node = m_nodes[m_levels.last().node];
        if (current() != (m_text.at(node.begin) == '{' ? '}' : ']'))
            return false;
        node.end = ++m_position;
        m_levels.removeLast();
    }
    return true;
}

/// In an object, reads the name of the member that begins here.
bool JsonText::scanKey()
{
    m_keyBegin = -1;
    if (m_text.at(m_nodes.at(m_levels.last().node).begin) == '[')
        return true;
    m_keyBegin = m_position;
    if (!scanString())
        return false;
    m_keyEnd = m_position;
    skipSpace();
    if (current() != ':')
        return false;
    ++m_position;
    skipSpace();
    return true;
}

bool JsonText::scanString()
{
    if (current() != '"')
        return false;
    for (++m_position; m_position < m_text.size(); ++m_position) {
        if (m_text.at(m_position) == '\\') {
            ++m_position;
        } else if (m_text.at(m_position) == '"') {
            ++m_position;
            return true;
        }
    }
    return false;
}

bool JsonText::scanLeaf()
{
    const int begin = m_position;
    addNode();
    if (current() == '"') {
        if (!scanString())
            return false;
    } else {
        while (m_position < m_text.size() && !isSpace(current()) && current() != ','
               && current() != ']' && current() != '}')
            ++m_position;
    }
    m_nodes.last().end = m_position;
    return m_position > begin;
}

void JsonText::addNode()
{
    Node node;
    node.begin = m_position;
    node.end = m_position;
    node.keyBegin = m_keyBegin;
    node.keyEnd = m_keyEnd;
    const int index = m_nodes.size();
    m_nodes.append(node);
    if (m_levels.isEmpty())
        return;
    Level &level = m_levels.last();
    if (level.lastChild < 0)
        m_nodes[level.node].firstChild = index;
    else
        m_nodes[level.lastChild].nextSibling = index;
    level.lastChild = index;
}

void JsonText::skipSpace()
{
    while (m_position < m_text.size() && isSpace(m_text.at(m_position)))
        ++m_position;
}

char JsonText::current() const
{
    return m_position < m_text.size() ? m_text.at(m_position) : '\0';
}

QString JsonText::decoded(int begin, int end) const
{
    const QByteArray literal = m_text.mid(begin, end - begin);
    if (!literal.contains('\\'))
        return QString::fromUtf8(literal.mid(1, literal.size() - 2));
    return QJsonDocument::fromJson('[' + literal + ']').array().at(0).toString();
}

void Findings::error(int offset, const QString &message)
{
    m_findings.append({offset, Diagnostic::Severity::Error, message});
    m_hasErrors = true;
}

void Findings::warning(int offset, const QString &message)
{
    m_findings.append({offset, Diagnostic::Severity::Warning, message});
}

Diagnostics Findings::toDiagnostics(const QByteArray &text, const QString &file) const
{
    QVector<Finding> findings = m_findings;
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding &a, const Finding &b) { return a.offset < b.offset; });
    // Counts on from the last finding, since a large file may be one line of mistakes.
    Diagnostics diagnostics;
    TextPosition position;
    int counted = 0;
    for (const Finding &finding : findings) {
        const int size = std::clamp(finding.offset, counted, text.size()) - counted;
        const auto between = QByteArray::fromRawData(text.constData() + counted, size);
        const TextPosition step = positionOf(between, size);
        position.column = step.line == 1 ? position.column + step.column - 1 : step.column;
        position.line += step.line - 1;
        counted += size;
        diagnostics.append(
            {finding.severity, file, position.line, position.column, finding.message});
    }
    return diagnostics;
}

} // namespace Vorn::Workbench
