#ifndef VORN_PROFILE_CODEREADER_H
#define VORN_PROFILE_CODEREADER_H

#include "Findings.h"
#include "TomlValue.h"

#include <QPair>
#include <QString>
#include <QStringList>

#include <optional>

namespace Vorn {

/// Reads the codes of keys and switches in a profile. Each function returns nothing for a mistake,
/// which it has reported.
class CodeReader
{
public:
    /// @param findings must live longer
    explicit CodeReader(Findings *findings)
        : m_findings(findings)
    { }

    /// "KEY_OK" or "352".
    std::optional<int> keyNamed(const QString &text, const TextPosition &position);
    std::optional<int> switchNamed(const QString &text, const TextPosition &position);
    /// "KEY_STOP+KEY_PLAY", with or without spaces.
    std::optional<QPair<int, int>> pairNamed(const QString &text, const TextPosition &position);

    /// The same as values: a string or a number, a list of two of them.
    std::optional<int> key(const TomlValue &value);
    std::optional<int> switchOf(const TomlValue &value);
    std::optional<QPair<int, int>> pair(const TomlValue &list);

    Findings *findings() const { return m_findings; }

    /// suggestion(), but not for each of a thousand mistakes: every one is compared with all names,
    /// which a file of nonsense is not worth.
    QString suggest(const QString &unknown, const QStringList &known);

private:
    struct Kind;
    static const Kind keyKind;
    static const Kind switchKind;

    std::optional<int> named(const QString &text, const TextPosition &position, const Kind &kind);
    std::optional<int> code(const TomlValue &value, const Kind &kind);
    void reportCount(const TextPosition &position, int count);

    Findings *const m_findings;
    int m_suggestions = 0;
};

} // namespace Vorn

#endif
