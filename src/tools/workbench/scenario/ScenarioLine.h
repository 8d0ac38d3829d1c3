#ifndef VORN_WORKBENCH_SCENARIOLINE_H
#define VORN_WORKBENCH_SCENARIOLINE_H

#include "Diagnostic.h"
#include "Quoting.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// One word of a line: `press`, `"a b"` or `name="a b"`.
struct ScenarioWord
{
    QString text; ///< without the quotes
    int column = 1; ///< from 1, in characters
    bool isQuoted = false; ///< begins with a quote, so that it is no keyword
    QString option; ///< "name" of `name=value`; empty for other words
    QString value; ///< what follows the sign
    int valueColumn = 1;
};

/// A line of a scenario that is read word by word, and what is wrong with it. The first mistake of
/// a line is told, the rest are consequences.
class ScenarioLine
{
public:
    /// Splits the line; a quote without its end is a mistake.
    ScenarioLine(const QString &line, const QString &file, int number, Diagnostics *diagnostics);

    /// The line without indentation and comment.
    const QString &text() const { return m_text; }
    int number() const { return m_number; }
    const QString &file() const { return m_file; }

    bool isOk() const { return m_isOk; }
    bool atEnd() const { return m_next >= m_words.size(); }

    /// The next word, which stays the next; null at the end.
    const ScenarioWord *peek() const { return atEnd() ? nullptr : &m_words[m_next]; }
    /// Takes the next word. At the end that @p what is missing is a mistake, and it is null.
    const ScenarioWord *take(const QString &what);
    /// Takes the next word if it is @p keyword.
    bool takeKeyword(QLatin1String keyword);
    /// "80ms" after @p keyword, the next word being the keyword: `for 80ms`.
    std::optional<qint64> takeDuration();
    /// Everything is read; what is left is a mistake.
    void finish();

    void error(int column, const QString &message);
    /// At the word that was taken last.
    void error(const QString &message);
    /// "unknown key 'KEY_INOF', did you mean 'KEY_INFO'?"
    void unknown(int column, const QString &what, const QString &text, const QStringList &known);

private:
    void split(const QString &line);

    const QString m_file;
    const int m_number;
    Diagnostics *const m_diagnostics;
    QString m_text;
    QVector<ScenarioWord> m_words;
    int m_next = 0;
    int m_endColumn = 1;
    bool m_isOk = true;
};

/// "1200ms", "1.5s", "2min", "1h" in milliseconds; nothing for what is no whole number of them.
std::optional<qint64> milliseconds(const QString &text);

/// The same with a sign, which may be left out: "+1h", "-500ms".
std::optional<qint64> signedMilliseconds(const QString &text);

/// The longest single wait.
constexpr qint64 maxWait = 7LL * 24 * 60 * 60 * 1000;

} // namespace Vorn::Workbench

#endif
